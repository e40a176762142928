#include "zulog/zlStats.h"

#include "zulog/zlFormat.h"
#include "zulog/zlJson.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <nlohmann/json.hpp>
#include <tuple>

namespace Zu
{

namespace
{

constexpr std::int64_t MILLISECOND = 1000000;
constexpr std::int64_t SECOND = 1000 * MILLISECOND;
constexpr std::int64_t MINUTE = 60 * SECOND;
constexpr std::int64_t HOUR = 60 * MINUTE;
constexpr std::int64_t DAY = 24 * HOUR;

// How many are kept before they get wider.
constexpr std::size_t MOST_SLICES = 16384;
constexpr std::size_t MOST_MINUTES = 100000;
constexpr std::size_t MOST_SECONDS = 4096;
// In place of an index: the recovery is not listed.
constexpr std::size_t NOT_LISTED = ~std::size_t{0};

std::vector<std::int64_t> widthsFrom(std::int64_t first)
{
    std::vector<std::int64_t> widths = {MILLISECOND,       10 * MILLISECOND,
                                        100 * MILLISECOND, SECOND,
                                        10 * SECOND,       MINUTE,
                                        10 * MINUTE,       HOUR,
                                        6 * HOUR,          DAY,
                                        10 * DAY,          100 * DAY,
                                        1000 * DAY};
    widths.erase(widths.begin(), std::find(widths.begin(), widths.end(), first));
    return widths;
}

// The lengths of time that rows of a histogram can have.
constexpr std::int64_t ROW_WIDTHS[] = {MILLISECOND,
                                       2 * MILLISECOND,
                                       5 * MILLISECOND,
                                       10 * MILLISECOND,
                                       20 * MILLISECOND,
                                       50 * MILLISECOND,
                                       100 * MILLISECOND,
                                       200 * MILLISECOND,
                                       500 * MILLISECOND,
                                       SECOND,
                                       2 * SECOND,
                                       5 * SECOND,
                                       10 * SECOND,
                                       15 * SECOND,
                                       30 * SECOND,
                                       MINUTE,
                                       2 * MINUTE,
                                       5 * MINUTE,
                                       10 * MINUTE,
                                       15 * MINUTE,
                                       30 * MINUTE,
                                       HOUR,
                                       2 * HOUR,
                                       3 * HOUR,
                                       6 * HOUR,
                                       12 * HOUR,
                                       DAY,
                                       2 * DAY,
                                       5 * DAY,
                                       10 * DAY,
                                       20 * DAY,
                                       50 * DAY,
                                       100 * DAY,
                                       200 * DAY,
                                       500 * DAY,
                                       1000 * DAY,
                                       2000 * DAY,
                                       5000 * DAY,
                                       10000 * DAY,
                                       20000 * DAY};

std::optional<std::uint32_t> processOf(const ZlRecord& record)
{
    return record._process ? record._process : record._owner->_process;
}

std::string fixed(double value, int decimals)
{
    constexpr std::size_t SIZE = 64;
    char text[SIZE];
    const auto result = std::to_chars(text, text + SIZE, value, std::chars_format::fixed, decimals);
    return {text, result.ptr};
}

// A length of time in seconds, truncated to microseconds.
std::string secondsOf(std::uint64_t nanoseconds)
{
    constexpr std::uint64_t PER_SECOND = 1000000000;
    const std::string fraction = std::to_string(nanoseconds % PER_SECOND / 1000);
    return std::to_string(nanoseconds / PER_SECOND) + "." + std::string(6 - fraction.size(), '0') +
           fraction + " s";
}

std::uint64_t lengthOf(std::int64_t begin, std::int64_t end)
{
    return static_cast<std::uint64_t>(end) - static_cast<std::uint64_t>(begin);
}

double perSecond(std::uint64_t events, std::uint64_t nanoseconds)
{
    return static_cast<double>(events) * 1e9 / static_cast<double>(nanoseconds);
}

// The beginning of a slice; the first time that there is, for one that begins before.
std::int64_t beginOf(std::int64_t number, std::int64_t width)
{
    const std::int64_t least = INT64_MIN / width;
    return number < least ? INT64_MIN : number * width;
}

} // namespace

ZlStats::ZlStats()
    : _slices(widthsFrom(MILLISECOND), MOST_SLICES), _minutes(widthsFrom(MINUTE), MOST_MINUTES)
{
}

void ZlStats::add(const ZlRecord& record)
{
    switch (record._kind)
    {
    case ZlRecord::Kind::Event:
        return addEvent(record);
    case ZlRecord::Kind::Overflow:
    case ZlRecord::Kind::NotWritten:
        return addLoss(record);
    case ZlRecord::Kind::Start:
        return addStart(record);
    case ZlRecord::Kind::Stop:
        _runs.add(record);
        return;
    case ZlRecord::Kind::RecoveryBegin:
        return beginRecovery(record);
    case ZlRecord::Kind::RecoveryEnd:
        return endRecovery(record);
    case ZlRecord::Kind::Unreadable:
        ++_unreadable;
    }
}

void ZlStats::addEvent(const ZlRecord& record)
{
    ++_events;
    ++_levels[static_cast<std::size_t>(record._level.value_or(LgTypes::NUM_LEVELS))];
    addGroup(record._group);
    addThread(record);
    if (record._wall)
        addTime(*record._wall);
    else
        ++_undated;
    if (_recovering.empty()) return;
    const auto place = _recovering.find(zlLogOf(*record._file));
    if (place == _recovering.end()) return;
    ++_recovered;
    if (place->second == NOT_LISTED) return;
    Recovery& recovery = _recoveries[place->second];
    ++recovery._events;
    // The mark has the process alone.
    const ZlOwner& owner = *record._owner;
    if (recovery._processStart || owner._process != recovery._process) return;
    recovery._host = owner._host;
    recovery._processStart = owner._processStart;
}

void ZlStats::addGroup(std::string_view group)
{
    if (group.empty())
    {
        ++_unknownGroups;
        return;
    }
    const auto place = _groups.find(group);
    if (place != _groups.end())
        ++place->second;
    else if (_groups.size() < MOST_GROUPS && group.size() <= LONGEST_GROUP)
        _groups.emplace(group, 1);
    else
        ++_otherGroups;
}

void ZlStats::addThread(const ZlRecord& record)
{
    const std::optional<std::uint32_t> process = processOf(record);
    const std::string& host = record._owner->_host;
    if (_lastThread && _lastThread->_thread == record._thread && _lastThread->_process == process &&
        _lastThread->_host == host)
    {
        ++_lastThread->_events;
        return;
    }
    const auto textOf = [](const std::optional<std::uint32_t>& number)
    { return number ? std::to_string(*number) : std::string("-"); };
    const std::string key = textOf(process) + " " + textOf(record._thread) + " " + host;
    auto place = _threads.find(key);
    if (place == _threads.end())
    {
        if (_threads.size() >= MOST_THREADS)
        {
            ++_otherThreads;
            return;
        }
        place = _threads.emplace(key, Thread{host, process, record._thread, 0}).first;
    }
    _lastThread = &place->second;
    ++_lastThread->_events;
}

void ZlStats::addTime(std::int64_t wall)
{
    _slices.add(wall);
    _minutes.add(wall);
    addSecond(wall);
    if (_first && wall > _last)
    {
        const std::uint64_t length = lengthOf(_last, wall);
        addGap(_last, static_cast<std::int64_t>(std::min<std::uint64_t>(length, INT64_MAX)));
    }
    if (!_first || wall > _last) _last = wall;
    if (!_first || wall < *_first) _first = wall;
}

void ZlStats::addGap(std::int64_t begin, std::int64_t length)
{
    if (_gaps.size() >= MOST_GAPS)
    {
        if (length <= _gaps.front()._length) return;
        _gaps.erase(_gaps.begin());
    }
    // Of equal ones, the first is the last here.
    const auto place =
        std::lower_bound(_gaps.begin(), _gaps.end(), length,
                         [](const Gap& gap, std::int64_t other) { return gap._length < other; });
    _gaps.insert(place, {begin, length});
}

// Only the latest seconds are kept: there nearly all events go.
void ZlStats::addSecond(std::int64_t wall)
{
    const std::int64_t second = ZlSlices::numberOf(wall, SECOND);
    if (!_secondCount || second != _second)
    {
        if (_seconds.size() >= MOST_SECONDS)
        {
            _busiest = getBusiest();
            auto half = _seconds.begin();
            std::advance(half, static_cast<std::ptrdiff_t>(MOST_SECONDS / 2));
            _seconds.erase(_seconds.begin(), half);
        }
        _second = second;
        _secondCount = &_seconds[second];
    }
    ++*_secondCount;
}

std::optional<ZlStats::Rate> ZlStats::getBusiest() const
{
    std::optional<Rate> busiest = _busiest;
    for (const auto& [second, events] : _seconds)
        if (!busiest || events > busiest->_events) busiest = Rate{events, second};
    return busiest;
}

void ZlStats::addLoss(const ZlRecord& record)
{
    const bool isOverflow = record._kind == ZlRecord::Kind::Overflow;
    (isOverflow ? _lost : _notWritten) += record._count;
    ++_lossCount;
    if (_losses.size() < MOST_ENTRIES)
        _losses.push_back(
            {record._wall, isOverflow, record._count, record._owner->_host, processOf(record)});
}

void ZlStats::addStart(const ZlRecord& record)
{
    if (_runs.add(record) && _starts.size() < MOST_ENTRIES)
        _starts.push_back({record._wall, record._owner->_host, record._owner->_process,
                           *record._file, record._line});
}

void ZlStats::beginRecovery(const ZlRecord& record)
{
    _runs.add(record);
    ++_recoveryCount;
    std::size_t index = NOT_LISTED;
    if (_recoveries.size() < MOST_ENTRIES)
    {
        index = _recoveries.size();
        const ZlOwner& owner = *record._owner;
        _recoveries.push_back(
            {record._wall, owner._host, processOf(record), owner._processStart, 0, false});
    }
    _recovering[std::string(zlLogOf(*record._file))] = index;
}

void ZlStats::endRecovery(const ZlRecord& record)
{
    const auto place = _recovering.find(zlLogOf(*record._file));
    if (place == _recovering.end()) return;
    if (place->second != NOT_LISTED) _recoveries[place->second]._isComplete = true;
    _recovering.erase(place);
}

std::vector<const ZlStats::Thread*> ZlStats::getThreads() const
{
    std::vector<const Thread*> threads;
    threads.reserve(_threads.size());
    for (const auto& [key, thread] : _threads) threads.push_back(&thread);
    std::sort(threads.begin(), threads.end(),
              [](const Thread* one, const Thread* other)
              {
                  if (one->_events != other->_events) return one->_events > other->_events;
                  return std::tie(one->_host, one->_process, one->_thread) <
                         std::tie(other->_host, other->_process, other->_thread);
              });
    return threads;
}

std::vector<std::pair<std::string, std::uint64_t>> ZlStats::getGroups() const
{
    std::vector<std::pair<std::string, std::uint64_t>> groups(_groups.begin(), _groups.end());
    std::sort(groups.begin(), groups.end(),
              [](const auto& one, const auto& other) {
                  return one.second != other.second ? one.second > other.second
                                                    : one.first < other.first;
              });
    return groups;
}

// Makes the text for people.
class ZlStats::Text
{
public:
    Text(const ZlStats& stats, std::string& out, const ZlStatsOptions& options)
        : _stats(stats), _out(out), _options(options), _times(options._times)
    {
    }

    void append()
    {
        appendTotals();
        if (_stats._events > 0)
        {
            appendLevels();
            appendGroups();
            appendThreads();
        }
        if (_stats._first)
        {
            appendMinutes();
            appendHistogram();
        }
        appendGaps();
        appendLosses();
        appendStarts();
        appendRecoveries();
    }

private:
    void appendTotals()
    {
        addRow("Lines", std::to_string(_stats._lines));
        addRow("Unreadable", std::to_string(_stats._unreadable));
        std::string events = std::to_string(_stats._events);
        if (_stats._undated > 0)
            events += ", " + std::to_string(_stats._undated) + " of them at an unknown time";
        addRow("Events", events);
        if (!_stats._first) return;
        const std::uint64_t length = lengthOf(*_stats._first, _stats._last);
        addRow("First", timeOf(*_stats._first));
        addRow("Last", timeOf(_stats._last));
        addRow("Duration", secondsOf(length));
        if (length > 0)
            addRow("Rate",
                   fixed(perSecond(_stats._events - _stats._undated, length), 3) + " per second");
        const Rate busiest = *_stats.getBusiest();
        addRow("Most", std::to_string(busiest._events) + " in the second from " +
                           timeOf(beginOf(busiest._second, SECOND)));
    }

    void appendLevels()
    {
        addTitle("Levels");
        for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
            addCount(_stats._levels[static_cast<std::size_t>(i)],
                     LgTypes::levelToString(static_cast<LgTypes::Level>(i)));
        addCount(_stats._levels[LgTypes::NUM_LEVELS], "unknown");
    }

    void appendGroups()
    {
        addTitle("Groups");
        const auto groups = _stats.getGroups();
        std::uint64_t rest = _stats._otherGroups;
        for (std::size_t i = 0; i < groups.size(); ++i)
        {
            if (i < _options._most)
                addCount(groups[i].second, groups[i].first);
            else
                rest += groups[i].second;
        }
        addCount(_stats._unknownGroups, "unknown");
        addCount(rest, otherNames(groups.size(), _stats._otherGroups, "group", "groups"));
    }

    void appendThreads()
    {
        addTitle("Threads");
        const std::vector<const Thread*> threads = _stats.getThreads();
        std::uint64_t rest = _stats._otherThreads;
        for (std::size_t i = 0; i < threads.size(); ++i)
        {
            const Thread& thread = *threads[i];
            if (i < _options._most)
                addCount(thread._events, threadName(thread));
            else
                rest += thread._events;
        }
        addCount(rest, otherNames(threads.size(), _stats._otherThreads, "thread", "threads"));
    }

    void appendMinutes()
    {
        const std::int64_t width = _stats._minutes.getWidth();
        addTitle(width == MINUTE ? "Busiest minutes"
                                 : "Busiest " + std::to_string(width / MINUTE) + " minutes");
        std::vector<std::pair<std::int64_t, std::uint64_t>> slices(
            _stats._minutes.getCounts().begin(), _stats._minutes.getCounts().end());
        std::stable_sort(slices.begin(), slices.end(),
                         [](const auto& one, const auto& other)
                         { return one.second > other.second; });
        std::uint64_t rest = 0;
        for (std::size_t i = 0; i < slices.size(); ++i)
        {
            if (i < _options._most)
                addCount(slices[i].second, timeOf(beginOf(slices[i].first, width)));
            else
                rest += slices[i].second;
        }
        addCount(rest, otherNames(slices.size(), 0, "slice of time", "slices of time"));
    }

    void appendHistogram()
    {
        const std::int64_t width = rowWidth();
        const std::int64_t first = ZlSlices::numberOf(*_stats._first, width);
        const std::int64_t last = ZlSlices::numberOf(_stats._last, width);
        std::vector<std::uint64_t> rows(static_cast<std::size_t>(last - first + 1), 0);
        const std::int64_t factor = width / _stats._slices.getWidth();
        for (const auto& [number, count] : _stats._slices.getCounts())
            rows[static_cast<std::size_t>(ZlSlices::numberOf(number, factor) - first)] += count;
        addTitle("Events over time, each row " + secondsOf(static_cast<std::uint64_t>(width)));
        const std::uint64_t most = *std::max_element(rows.begin(), rows.end());
        const std::size_t digits = std::to_string(most).size();
        const std::size_t taken = 2 + timeOf(*_stats._first).size() + 1 + digits + 1;
        constexpr std::size_t LEAST = 10;
        const std::size_t room =
            std::max(LEAST, _options._width - std::min(_options._width, taken));
        for (std::size_t i = 0; i < rows.size(); ++i)
        {
            const std::string count = std::to_string(rows[i]);
            _out += "  " + timeOf(beginOf(first + static_cast<std::int64_t>(i), width)) + " " +
                    std::string(digits - count.size(), ' ') + count;
            if (rows[i] > 0) _out += " " + barOf(rows[i], most, room);
            _out += '\n';
        }
    }

    // The narrowest one that gives no more rows than there may be.
    std::int64_t rowWidth() const
    {
        for (const std::int64_t width : ROW_WIDTHS)
        {
            if (width % _stats._slices.getWidth() != 0) continue;
            const std::int64_t rows = ZlSlices::numberOf(_stats._last, width) -
                                      ZlSlices::numberOf(*_stats._first, width) + 1;
            if (rows <= MOST_ROWS) return width;
        }
        return ROW_WIDTHS[std::size(ROW_WIDTHS) - 1];
    }

    // Never empty, and never longer than the room.
    std::string barOf(std::uint64_t count, std::uint64_t most, std::size_t room) const
    {
        const std::uint64_t units = _options._hasBlocks ? room * 8 : room;
        const double share = static_cast<double>(count) / static_cast<double>(most);
        const long long rounded = std::llround(share * static_cast<double>(units));
        const auto length =
            std::clamp<std::uint64_t>(static_cast<std::uint64_t>(rounded), 1, units);
        if (!_options._hasBlocks) return std::string(static_cast<std::size_t>(length), '#');
        std::string bar;
        for (std::uint64_t i = 0; i < length / 8; ++i) bar += "\u2588";
        constexpr const char* PARTS[] = {"",       "\u258f", "\u258e", "\u258d",
                                         "\u258c", "\u258b", "\u258a", "\u2589"};
        return bar + PARTS[length % 8];
    }

    void appendGaps()
    {
        if (_stats._gaps.empty()) return;
        addTitle("Longest silences");
        std::size_t count = 0;
        for (auto gap = _stats._gaps.rbegin(); gap != _stats._gaps.rend(); ++gap)
            if (count++ < _options._most)
                _out += "  " + secondsOf(static_cast<std::uint64_t>(gap->_length)) + " from " +
                        timeOf(gap->_begin) + "\n";
    }

    void appendLosses()
    {
        if (_stats._lossCount == 0) return;
        addTitle("Losses");
        addCount(_stats._lost, "lost because a queue was full");
        addCount(_stats._notWritten, "not written because a file failed");
        std::size_t shown = 0;
        for (const Loss& loss : _stats._losses)
        {
            if (shown == _options._most) break;
            ++shown;
            _out += "  " + timeOf(loss._wall) + " " + std::to_string(loss._count) +
                    (loss._isOverflow ? " lost, " : " not written, ") +
                    processName(loss._host, loss._process) + "\n";
        }
        addRest(_stats._lossCount - shown);
    }

    void appendStarts()
    {
        if (_stats._runs.getStarted() == 0 && _stats._runs.getStopped() == 0) return;
        addTitle("Starts");
        addCount(_stats._runs.getStarted(), "started");
        addCount(_stats._runs.getStopped(), "stopped in order");
        addCount(_stats._runs.getUnordered(), "ended without a stop mark");
        addCount(_stats._runs.getOpen(), "without an end in the log: running, or ended since");
        std::size_t shown = 0;
        for (const Start& start : _stats._starts)
        {
            if (shown == _options._most) break;
            ++shown;
            _out +=
                "  " + timeOf(start._wall) + " " + processName(start._host, start._process) + ", ";
            zlAppendPrintable(_out, start._file, false);
            _out += ":" + std::to_string(start._line) + "\n";
        }
        addRest(_stats._runs.getStarted() - shown);
    }

    void appendRecoveries()
    {
        if (_stats._recoveryCount == 0) return;
        addTitle("Recoveries");
        addCount(_stats._recoveryCount, _stats._recoveryCount == 1 ? "recovery" : "recoveries");
        addCount(_stats._recovered, "events in them");
        std::size_t shown = 0;
        for (const Recovery& recovery : _stats._recoveries)
        {
            if (shown == _options._most) break;
            ++shown;
            _out += "  " + std::to_string(recovery._events) +
                    (recovery._events == 1 ? " event of " : " events of ") +
                    processName(recovery._host, recovery._process) + ", started " +
                    timeOf(recovery._processStart) +
                    (recovery._isComplete ? "\n" : ", without an end\n");
        }
        addRest(_stats._recoveryCount - shown);
    }

    std::string timeOf(std::optional<std::int64_t> wall)
    {
        if (!wall) return "unknown time";
        std::string text;
        _times.append(text, *wall);
        return text;
    }

    static std::string processName(const std::string& host, std::optional<std::uint32_t> process)
    {
        std::string text = process ? "process " + std::to_string(*process) : "unknown process";
        if (host.empty()) return text;
        text += " on ";
        zlAppendPrintable(text, host, false);
        return text;
    }

    static std::string threadName(const Thread& thread)
    {
        std::string text = processName(thread._host, thread._process);
        if (!thread._thread) return text + ", unknown thread";
        constexpr int DIGITS = 8;
        char digits[DIGITS];
        for (int i = 0; i < DIGITS; ++i)
            digits[i] = "0123456789abcdef"[*thread._thread >> 4 * (DIGITS - 1 - i) & 15];
        return text + ", thread 0x" + std::string(digits, DIGITS);
    }

    // Those that have no row of their own: of so many that are known, and so many events of further
    // ones.
    std::string otherNames(std::size_t all, std::uint64_t further, const char* one,
                           const char* several) const
    {
        const std::size_t others = all - std::min(all, _options._most);
        if (further > 0) return "others, too many to be counted one by one";
        return std::to_string(others) + " other " + (others == 1 ? one : several);
    }

    void addRow(const char* name, const std::string& value)
    {
        constexpr std::size_t WIDTH = 12;
        const std::string text(name);
        _out += text + std::string(WIDTH - text.size(), ' ') + value + "\n";
    }

    void addTitle(const std::string& title)
    {
        _out += "\n" + title + "\n";
    }

    // Nothing for 0.
    void addCount(std::uint64_t count, const std::string& name)
    {
        if (count == 0) return;
        constexpr std::size_t WIDTH = 10;
        const std::string text = std::to_string(count);
        _out += "  " + std::string(WIDTH - std::min(WIDTH, text.size()), ' ') + text + " " + name +
                "\n";
    }

    void addRest(std::uint64_t count)
    {
        if (count > 0) _out += "  and " + std::to_string(count) + " more\n";
    }

    const ZlStats& _stats;
    std::string& _out;
    const ZlStatsOptions& _options;
    ZlTimeWriter _times;
};

// Makes the object for programs.
class ZlStats::Json
{
public:
    using Value = nlohmann::ordered_json;

    explicit Json(const ZlStats& stats) : _stats(stats), _times(ZlTimeWriter::Form::UtcIso) {}

    Value make()
    {
        Value object;
        object["lines"] = _stats._lines;
        object["unreadable"] = _stats._unreadable;
        object["events"] = _stats._events;
        object["undated"] = _stats._undated;
        addTimes(object);
        object["levels"] = levels();
        object["groups"] = groups();
        object["unknown_groups"] = _stats._unknownGroups;
        object["other_groups"] = _stats._otherGroups;
        object["threads"] = threads();
        object["other_threads"] = _stats._otherThreads;
        object["slice_minutes"] = _stats._minutes.getWidth() / MINUTE;
        object["slices"] = slices();
        object["gaps"] = gaps();
        object["losses"] = losses();
        object["starts"] = starts();
        object["recoveries"] = recoveries();
        return object;
    }

private:
    void addTimes(Value& object)
    {
        const bool isDated = _stats._first.has_value();
        const std::uint64_t length = isDated ? lengthOf(*_stats._first, _stats._last) : 0;
        object["first"] = timeOf(_stats._first);
        object["last"] = isDated ? timeOf(_stats._last) : Value();
        object["duration_ns"] = isDated ? Value(length) : Value();
        object["events_per_second"] =
            length > 0 ? Value(perSecond(_stats._events - _stats._undated, length)) : Value();
        object["busiest_second"] = Value();
        if (const std::optional<Rate> busiest = _stats.getBusiest())
            object["busiest_second"] = {{"time", timeOf(beginOf(busiest->_second, SECOND))},
                                        {"events", busiest->_events}};
    }

    Value levels() const
    {
        Value object;
        for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
            object[LgTypes::levelToString(static_cast<LgTypes::Level>(i))] =
                _stats._levels[static_cast<std::size_t>(i)];
        object["unknown"] = _stats._levels[LgTypes::NUM_LEVELS];
        return object;
    }

    Value groups() const
    {
        Value list = Value::array();
        for (const auto& [group, events] : _stats.getGroups())
            list.push_back({{"group", group}, {"events", events}});
        return list;
    }

    Value threads() const
    {
        Value list = Value::array();
        for (const Thread* const thread : _stats.getThreads())
            list.push_back({{"host", nameOf(thread->_host)},
                            {"process", numberOf(thread->_process)},
                            {"thread", numberOf(thread->_thread)},
                            {"events", thread->_events}});
        return list;
    }

    Value slices()
    {
        Value list = Value::array();
        const std::int64_t width = _stats._minutes.getWidth();
        for (const auto& [number, events] : _stats._minutes.getCounts())
            list.push_back({{"time", timeOf(beginOf(number, width))}, {"events", events}});
        return list;
    }

    Value gaps()
    {
        Value list = Value::array();
        for (auto gap = _stats._gaps.rbegin(); gap != _stats._gaps.rend(); ++gap)
            list.push_back({{"begin", timeOf(gap->_begin)}, {"ns", gap->_length}});
        return list;
    }

    Value losses()
    {
        Value list = Value::array();
        for (const Loss& loss : _stats._losses)
            list.push_back({{"time", timeOf(loss._wall)},
                            {"kind", loss._isOverflow ? "overflow" : "not-written"},
                            {"events", loss._count},
                            {"host", nameOf(loss._host)},
                            {"process", numberOf(loss._process)}});
        return {{"overflow", _stats._lost},
                {"not_written", _stats._notWritten},
                {"list", std::move(list)},
                {"more", _stats._lossCount - _stats._losses.size()}};
    }

    Value starts()
    {
        Value list = Value::array();
        for (const Start& start : _stats._starts)
            list.push_back({{"time", timeOf(start._wall)},
                            {"host", nameOf(start._host)},
                            {"process", numberOf(start._process)},
                            {"file", start._file},
                            {"line", start._line}});
        return {{"started", _stats._runs.getStarted()},
                {"stopped", _stats._runs.getStopped()},
                {"ended_without_stop_mark", _stats._runs.getUnordered()},
                {"without_end", _stats._runs.getOpen()},
                {"list", std::move(list)},
                {"more", _stats._runs.getStarted() - _stats._starts.size()}};
    }

    Value recoveries()
    {
        Value list = Value::array();
        for (const Recovery& recovery : _stats._recoveries)
            list.push_back({{"time", timeOf(recovery._wall)},
                            {"host", nameOf(recovery._host)},
                            {"process", numberOf(recovery._process)},
                            {"process_start", timeOf(recovery._processStart)},
                            {"events", recovery._events},
                            {"complete", recovery._isComplete}});
        return {{"count", _stats._recoveryCount},
                {"events", _stats._recovered},
                {"list", std::move(list)},
                {"more", _stats._recoveryCount - _stats._recoveries.size()}};
    }

    Value timeOf(std::optional<std::int64_t> wall)
    {
        if (!wall) return {};
        std::string text;
        _times.append(text, *wall);
        return text;
    }

    static Value nameOf(const std::string& name)
    {
        return name.empty() ? Value() : Value(name);
    }

    static Value numberOf(const std::optional<std::uint32_t>& number)
    {
        return number ? Value(*number) : Value();
    }

    const ZlStats& _stats;
    ZlTimeWriter _times;
};

void ZlStats::appendText(std::string& out, const ZlStatsOptions& options) const
{
    Text(*this, out, options).append();
}

void ZlStats::appendJson(std::string& out) const
{
    zlAppendJson(out,
                 Json(*this).make().dump(-1, ' ', false, Json::Value::error_handler_t::replace));
    out += '\n';
}

} // namespace Zu

#include "handOver.h"

#include "app/lgServiceLog.h"
#include "app/lgServiceRecovery.h"
#include "mapPlatform.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <sstream>
#include <string_view>

namespace handOver
{

namespace
{

namespace LgMap = Zu::LgMap;
using Change = LeftState::Change;

constexpr std::string_view OVERFLOW_TEXT = "Event overflow [";
constexpr std::string_view SERVICE_TEXT = "=====";
// A write that is not of one number is as many as it has words.
constexpr std::size_t WORD = 8;
constexpr std::size_t LARGEST_WRITE = 64;

bool isEvent(std::string_view line)
{
    return line.size() == 2 && line[0] >= 'a' && line[0] <= 'z' && line[1] == '.';
}

// The number of losses that a line reports; 0 if it is no such line.
std::uint64_t lossesOf(std::string_view line)
{
    if (!line.starts_with(OVERFLOW_TEXT) || !line.ends_with(']')) return 0;
    std::uint64_t count = 0;
    std::from_chars(line.data() + OVERFLOW_TEXT.size(), line.data() + line.size(), count);
    return count;
}

// What is left of a line in which a process was killed.
bool isBegun(std::string_view line)
{
    const bool isOfEvent = line.size() == 1 && line[0] >= 'a' && line[0] <= 'z';
    return isOfEvent || line.starts_with(OVERFLOW_TEXT) || OVERFLOW_TEXT.starts_with(line) ||
           SERVICE_TEXT.starts_with(line);
}

} // namespace

HandOver::HandOver(const Settings& settings)
    : Watcher(mapPlatform::map(), LeftState::SIZE), _settings(settings),
      _state(mapPlatform::kept()),
      _last(mapPlatform::kept(), mapPlatform::kept() + LeftState::SIZE),
      _seen(static_cast<std::size_t>(settings._killsOfRecovery) + 1)
{
}

void HandOver::begin()
{
    for (std::vector<Effect>& effects : _effects) effects.clear();
    _bytes.clear();
    _present = {};
    _state.undoTo(0);
    mapPlatform::reset();
    std::memcpy(_last.data(), mapPlatform::kept(), LeftState::TABLE_END);
    std::memcpy(_last.data() + LgMap::BLOCKS_AT, mapPlatform::kept() + LgMap::BLOCKS_AT,
                LeftState::SIZE - LgMap::BLOCKS_AT);
}

void HandOver::add(const Point& point, Effect effect)
{
    effect._time = point._time;
    std::copy_n(point._cause, THREADS, effect._cause.begin());
    _effects[static_cast<std::size_t>(point._thread)].push_back(effect);
}

void HandOver::written(const Point& point, const void* place, std::size_t size)
{
    const auto* const bytes = static_cast<const char*>(place);
    const auto at = static_cast<std::size_t>(bytes - mapPlatform::map());
    mapPlatform::noteChange(at, size);
    const std::size_t piece = size <= LARGEST_WRITE ? size : WORD;
    for (std::size_t i = 0; i < size; i += piece)
        addBytes(point, at + i, bytes + i, std::min(piece, size - i));
}

// Only what is new, and what a recovery looks at.
void HandOver::addBytes(const Point& point, std::size_t at, const char* bytes, std::size_t size)
{
    if (std::memcmp(_last.data() + at, bytes, size) == 0) return;
    std::memcpy(_last.data() + at, bytes, size);
    bool isRead = false;
    for (std::size_t i = at; i < at + size; ++i) isRead = isRead || mapPlatform::isRead(i);
    if (!isRead) return;
    Effect effect{};
    effect._size = static_cast<std::uint32_t>(size);
    effect._at = static_cast<std::uint32_t>(at);
    effect._bytes = _bytes.size();
    _bytes.insert(_bytes.end(), bytes, bytes + size);
    add(point, effect);
}

void HandOver::noted(const Point& point, std::uint64_t what)
{
    Effect effect{};
    effect._what = what;
    add(point, effect);
}

void HandOver::findNeeded()
{
    for (std::size_t thread = 0; thread < THREADS; ++thread)
        for (Effect& effect : _effects[thread])
            for (std::size_t other = 0; other < THREADS; ++other)
            {
                const std::vector<Effect>& effects = _effects[other];
                const auto end = std::upper_bound(
                    effects.begin(), effects.end(), effect._cause[other],
                    [](std::uint32_t time, const Effect& one) { return time < one._time; });
                effect._needed[other] =
                    other == thread ? 0 : static_cast<std::uint32_t>(end - effects.begin());
            }
}

std::string HandOver::end()
{
    findNeeded();
    std::size_t count = 1;
    for (std::size_t i = 0; i < THREADS; ++i)
    {
        _strides[i] = count;
        count *= _effects[i].size() + 1;
    }
    _seenMoments.assign(count, false);
    if (!isAllNoted()) return "something was written to the map that the checker has not seen";
    return visit();
}

// What was noted last is what is in the memory.
bool HandOver::isAllNoted() const
{
    const auto isSame = [this](std::size_t begin, std::size_t end)
    { return std::memcmp(_last.data() + begin, mapPlatform::map() + begin, end - begin) == 0; };
    return isSame(0, LeftState::TABLE_END) && isSame(LgMap::BLOCKS_AT, LeftState::SIZE);
}

bool HandOver::isNext(std::size_t thread) const
{
    if (_present[thread] == _effects[thread].size()) return false;
    const Effect& effect = _effects[thread][_present[thread]];
    for (std::size_t other = 0; other < THREADS; ++other)
        if (_present[other] < effect._needed[other]) return false;
    return true;
}

void HandOver::apply(const Effect& effect)
{
    if (effect._size > 0)
        return _state.write(effect._at, _bytes.data() + effect._bytes, effect._size);
    const auto character = static_cast<char>(effect._what & 0xFF);
    const auto event = static_cast<std::size_t>(character - 'a');
    switch (static_cast<mapPlatform::Note>(effect._what >> 8))
    {
    case mapPlatform::Note::Written:
        return _state.append(character);
    case mapPlatform::Note::Begun:
        return _state.note(event, Statement::Begun);
    case mapPlatform::Note::Accepted:
        return _state.note(event, Statement::Accepted);
    case mapPlatform::Note::Lost:
        return _state.note(event, Statement::Lost);
    }
}

std::string HandOver::visit()
{
    for (std::size_t thread = 0; thread < THREADS; ++thread)
    {
        std::string problem = visitNext(thread);
        if (!problem.empty()) return problem;
    }
    return {};
}

// Goes one effect further, and on from there.
std::string HandOver::visitNext(std::size_t thread)
{
    if (!isNext(thread)) return {};
    std::size_t number = _strides[thread];
    for (std::size_t i = 0; i < THREADS; ++i) number += _present[i] * _strides[i];
    if (_seenMoments[number]) return {};
    _seenMoments[number] = true;
    ++_moments;
    const std::size_t before = _state.getLength();
    apply(_effects[thread][_present[thread]]);
    ++_present[thread];
    std::string problem;
    if (isNew(_settings._killsOfRecovery))
    {
        ++_states;
        problem = check(_settings._killsOfRecovery);
    }
    if (problem.empty()) problem = visit();
    --_present[thread];
    _state.undoTo(before);
    return problem;
}

bool HandOver::isNew(int kills)
{
    const std::uint64_t key = _state.getKey();
    for (std::size_t i = static_cast<std::size_t>(kills); i < _seen.size(); ++i)
        if (_seen[i].contains(key)) return false;
    _seen[static_cast<std::size_t>(kills)].insert(key);
    return true;
}

// Recovers what is left; leaves the state as it was.
std::string HandOver::check(int kills)
{
    const std::size_t before = _state.getLength();
    mapPlatform::setState(&_state);
    std::string problem = recover();
    if (problem.empty()) problem = findProblem();
    if (!problem.empty()) problem = describe(problem);
    if (problem.empty() && kills > 0) problem = checkKills(kills, before);
    _state.undoTo(before);
    mapPlatform::setState(nullptr);
    return problem;
}

std::string HandOver::recover()
{
    ++_recoveries;
    Zu::LgServiceLog log("log");
    Zu::LgServiceRecovery::Logs logs;
    logs._ofLevels.fill(&log);
    Zu::LgLeftFile file;
    file.open("map");
    Zu::LgServiceRecovery recovery(file, Zu::LgLineForm::Plain, false, logs);
    const Zu::LgServiceRecovery::Outcome outcome = recovery.run();
    if (outcome != Zu::LgServiceRecovery::Outcome::Complete)
        return "the recovery is not complete: " + recovery.getReason();
    if (!recovery.getReason().empty()) return recovery.getReason();
    if (!_state.isRemoved()) return "the map is left over";
    if (mapPlatform::hasReadOther()) return "the recovery reads what is not compared";
    return {};
}

// Whether the recovery is killed there.
bool HandOver::isStepTaken(const std::vector<Change>& changes, std::size_t step) const
{
    const auto isAppend = [&](std::size_t i)
    { return i < changes.size() && changes[i]._kind == Change::Append; };
    const auto isLineFeed = [&](std::size_t i) { return isAppend(i) && changes[i]._new == '\n'; };
    if (step == 0 || !isAppend(step - 1) || _settings._isEachByte) return true;
    const bool isFirst = step == 1 || !isAppend(step - 2) || isLineFeed(step - 2);
    return isFirst || isLineFeed(step - 1) || isLineFeed(step);
}

// What the recovery leaves where it is killed.
std::string HandOver::checkKills(int kills, std::size_t before)
{
    const std::vector<std::size_t> steps = mapPlatform::getSteps();
    const std::vector<Change> changes = _state.getChangesFrom(before);
    _state.undoTo(before);
    std::size_t done = 0;
    for (const std::size_t step : steps)
    {
        while (done < step - before) _state.redo(changes[done++]);
        if (!isStepTaken(changes, done) || !isNew(kills - 1)) continue;
        std::string problem = check(kills - 1);
        if (!problem.empty()) return problem + "    (what a killed recovery has left)\n";
    }
    return {};
}

// In the log, after the recovery.
std::string HandOver::findProblem() const
{
    std::array<int, LeftState::EVENTS> counts{};
    std::uint64_t lost = 0;
    int begun = 0;
    std::istringstream lines(_state.getLog());
    char latest[2] = {};
    for (std::string line; std::getline(lines, line);)
    {
        lost += lossesOf(line);
        if (isEvent(line))
        {
            ++counts.at(static_cast<std::size_t>(line[0] - 'a'));
            // Each thread has one half of the letters.
            char& last = latest[line[0] >= 'n'];
            if (line[0] < last) return "events are not in the order of their thread";
            last = line[0];
        }
        else if (lossesOf(line) == 0 && !line.starts_with(SERVICE_TEXT))
        {
            ++begun;
            if (!isBegun(line)) return "a line that nobody has logged: " + line;
        }
    }
    // One by a file that failed, and one by each end.
    if (begun > 2 + _settings._killsOfRecovery) return "too many lines that were only begun";
    for (std::size_t i = 0; i < counts.size(); ++i)
    {
        const Statement statement = _state.getStatement(i);
        if (counts[i] > 1) return "an event is there twice";
        if (counts[i] == 0 && statement == Statement::Accepted) return "an event is missing";
        const bool isPossible = statement == Statement::Accepted || statement == Statement::Begun;
        if (counts[i] > 0 && !isPossible) return "an event is there that was not accepted";
    }
    return findProblemOfLosses(lost, counts);
}

// A statement that has not returned may have counted a loss.
std::string HandOver::findProblemOfLosses(std::uint64_t lost,
                                          const std::array<int, LeftState::EVENTS>& counts) const
{
    std::uint64_t least = 0;
    std::uint64_t most = 0;
    for (std::size_t i = 0; i < LeftState::EVENTS; ++i)
    {
        const Statement statement = _state.getStatement(i);
        least += statement == Statement::Lost;
        most += statement == Statement::Lost || (statement == Statement::Begun && counts[i] == 0);
    }
    if (lost < least) return "a loss is not counted";
    return lost > most ? "a loss is counted twice" : "";
}

std::string HandOver::describe(const std::string& problem) const
{
    static const char* const STATEMENTS[] = {"", " begun", " accepted", " lost"};
    std::ostringstream text;
    text << problem << "\n  killed behind";
    for (std::size_t i = 0; i < THREADS; ++i)
        if (!_effects[i].empty())
            text << ' ' << _present[i] << " of " << _effects[i].size() << " effects of thread " << i
                 << ',';
    for (std::size_t i = 0; i < LeftState::EVENTS; ++i)
        if (_state.getStatement(i) != Statement::None)
            text << ' ' << static_cast<char>('a' + i)
                 << STATEMENTS[static_cast<std::size_t>(_state.getStatement(i))];
    text << "; the log:\n";
    std::istringstream lines(_state.getLog());
    for (std::string line; std::getline(lines, line);) text << "    " << line << '\n';
    return text.str();
}

} // namespace handOver

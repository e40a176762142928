#include "zulog/zlShip.h"

#include "zulog/zlFile.h"
#include "zulog/zlFollow.h"
#include "zulog/zlJournal.h"
#include "zulog/zlNames.h"
#include "zulog/zlRelp.h"
#include "zulog/zlSyslog.h"
#include "zulog/zlTcp.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <queue>
#include <system_error>
#include <thread>
#include <utility>

namespace Zu
{

namespace
{

using Kind = ZlDestination::Kind;

// An event is written with its continuations at once, so they follow within this time.
constexpr int PATIENCE = 20;
// How often directories are looked at that can't be watched.
constexpr int PERIOD = 500;
// Between attempts, which come less and less often.
constexpr std::chrono::milliseconds SHORTEST_PAUSE{250};
constexpr std::chrono::milliseconds LONGEST_PAUSE{30000};
// Then somebody who asked for once only is no longer kept waiting.
constexpr int MOST_FAILURES = 6;

// A cursor is used from anywhere.
std::string absoluteOf(const std::string& name)
{
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(zlPathOf(name), error);
    return error ? name : zlNameOf(path.lexically_normal());
}

bool isPort(std::string_view text)
{
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto [place, error] = std::from_chars(text.data(), end, port);
    return error == std::errc() && place == end && port > 0;
}

// "host:port" or "[address]:port".
bool readAddress(std::string_view text, ZlDestination& destination)
{
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos || !isPort(text.substr(colon + 1))) return false;
    std::string_view host = text.substr(0, colon);
    const bool isBracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    if (isBracketed) host = host.substr(1, host.size() - 2);
    if (host.empty() || host.find_first_of("/[]") != std::string_view::npos) return false;
    if (!isBracketed && host.find(':') != std::string_view::npos) return false;
    destination._host = host;
    destination._port = text.substr(colon + 1);
    return true;
}

std::unique_ptr<ZlTransport> makeTransport(const ZlDestination& destination)
{
    if (destination._kind == Kind::Journal) return zlMakeJournal(destination._path);
    if (destination._kind == Kind::Relp) return zlMakeRelp(destination._host, destination._port);
    return std::make_unique<ZlTcp>(destination._host, destination._port);
}

std::unique_ptr<ZlMessageForm> makeForm(const ZlShipOptions& options)
{
    const bool isRaw = options._show._formatOptions._isRaw;
    if (options._destination._kind == Kind::Journal)
        return std::make_unique<ZlJournalForm>(options._app, isRaw);
    ZlSyslog::Options syslog;
    syslog._app = options._app;
    syslog._isRaw = isRaw;
    return std::make_unique<ZlSyslog>(syslog);
}

ZlCursor readCursor(const ZlCursorFile& file, const ZlShipOptions& options)
{
    ZlCursor cursor;
    cursor._destination = options._destinationText;
    const std::optional<std::string> text = file.read();
    if (!text) return cursor;
    cursor = zlReadCursor(*text, options._cursorFile);
    if (cursor._destination != options._destinationText)
        throw ZlError("\"" + options._cursorFile + "\" is the cursor for " + cursor._destination +
                      "; each destination has one of its own");
    return cursor;
}

} // namespace

std::optional<ZlDestination> zlParseDestination(std::string_view text)
{
    ZlDestination destination;
    const auto takes = [&text](std::string_view scheme)
    {
        if (text.substr(0, scheme.size()) != scheme) return false;
        text.remove_prefix(scheme.size());
        return true;
    };
    if (takes("journal:"))
    {
        destination._kind = Kind::Journal;
        destination._path = text;
        return destination;
    }
    destination._kind = takes("tcp://") ? Kind::Tcp : Kind::Relp;
    if (destination._kind == Kind::Relp && !takes("relp://")) return std::nullopt;
    if (!readAddress(text, destination)) return std::nullopt;
    return destination;
}

ZlShipper::ZlShipper(const ZlShipOptions& options, ZlTransport& transport, ZlMessageForm& form,
                     ZlCursorFile& file, ZlReports& reports)
    : _options(options), _transport(transport), _form(form), _file(file), _reports(reports),
      _filter(options._show._selection, reports), _cursor(readCursor(file, options)),
      _words(options._show._words)
{
}

ZlShipper::~ZlShipper() = default;

void ZlShipper::findLogs()
{
    ZlListing listing;
    const std::vector<std::string> names = _words.findLogs(listing);
    const ZlReader::Options reading = zlReaderOptions(_options._show, names.size());
    for (const std::string& name : names)
    {
        const std::string log = absoluteOf(name);
        if (!_names.insert(log).second) continue;
        ZlTail::Start start;
        start._areRotatedAdded = _options._show._areRotatedAdded;
        if (const auto place = _cursor._places.find(log); place != _cursor._places.end())
            start._place = place->second;
        _tails.push_back(std::make_unique<ZlTail>(log, start, _reports, reading));
    }
}

bool ZlShipper::isFull() const
{
    return _messages.size() >= MOST_MESSAGES || _bytes >= MOST_BYTES;
}

void ZlShipper::add(std::size_t tail)
{
    ZlTail& log = *_tails[tail];
    const std::size_t before = _messages.size();
    if (_filter.accepts(log.getRecord())) _form.append(_messages, log.getRecord(), log.getName());
    for (std::size_t i = before; i < _messages.size(); ++i) _bytes += _messages[i].size();
    _entries.push_back({tail, log.getPlace(), _messages.size()});
    log.take();
}

// The earliest record first, and of the same time those of the log that was found first.
void ZlShipper::collect()
{
    using Head = std::pair<std::int64_t, std::size_t>;
    std::priority_queue<Head, std::vector<Head>, std::greater<>> heads;
    const auto advance = [&](std::size_t tail)
    {
        if (_tails[tail]->next()) heads.emplace(_tails[tail]->getTime(), tail);
    };
    for (std::size_t i = 0; i < _tails.size(); ++i)
    {
        _tails[i]->look();
        advance(i);
    }
    // What is left out by the selection is not collected without end, either.
    constexpr std::size_t MOST_ENTRIES = 100 * MOST_MESSAGES;
    while (!heads.empty() && !isFull() && _entries.size() < MOST_ENTRIES)
    {
        const std::size_t earliest = heads.top().second;
        heads.pop();
        add(earliest);
        advance(earliest);
    }
}

// The cursor moves behind the records of which all messages were taken.
void ZlShipper::noteTaken(std::size_t taken)
{
    auto entry = _entries.begin();
    std::map<std::size_t, ZlPlace> places;
    for (; entry != _entries.end() && entry->_messages <= taken; ++entry)
        places[entry->_tail] = entry->_place;
    if (places.empty()) return;
    for (auto& [tail, place] : places)
    {
        _tails[tail]->complete(place);
        _cursor._places[_tails[tail]->getName()] = place;
    }
    const std::size_t messages = std::prev(entry)->_messages;
    for (std::size_t i = 0; i < messages; ++i) _bytes -= _messages[i].size();
    _messages.erase(_messages.begin(), _messages.begin() + static_cast<std::ptrdiff_t>(messages));
    _entries.erase(_entries.begin(), entry);
    for (Entry& rest : _entries) rest._messages -= messages;
    _file.replace(zlWriteCursor(_cursor));
}

ZlShipper::Outcome ZlShipper::step()
{
    findLogs();
    // What is left of a batch comes first; memory is bounded by it.
    if (_entries.empty()) collect();
    if (_entries.empty()) return Outcome::Idle;
    ZlTransport::Result result;
    if (!_messages.empty()) result = _transport.deliver(_messages);
    noteTaken(result._taken);
    if (result._failure.empty())
    {
        if (_isFailing) _reports.note(_options._destinationText + " works again");
        _isFailing = false;
        return Outcome::Shipped;
    }
    if (!_isFailing)
        _reports.note(_options._destinationText + ": " + result._failure + "; this is tried again");
    _isFailing = true;
    return Outcome::Failed;
}

void ZlShipper::release(bool isAll)
{
    for (const auto& tail : _tails) tail->release(isAll);
}

std::vector<std::string> ZlShipper::getDirectories() const
{
    return _words.getDirectories();
}

void zlShip(const ZlShipOptions& options, ZlReports& reports, const std::atomic<bool>& isStopped)
{
    ZlCursorFile file(options._cursorFile);
    const std::unique_ptr<ZlTransport> transport = makeTransport(options._destination);
    const std::unique_ptr<ZlMessageForm> form = makeForm(options);
    ZlShipper shipper(options, *transport, *form, file, reports);
    ZlWatch watch;
    std::chrono::milliseconds pause = SHORTEST_PAUSE;
    int failures = 0;
    bool isReleased = false;
    while (!isStopped)
    {
        const bool areAllWatched = watch.add(shipper.getDirectories());
        const ZlShipper::Outcome outcome = shipper.step();
        if (outcome == ZlShipper::Outcome::Failed)
        {
            if (options._isOnce && ++failures == MOST_FAILURES)
                throw ZlError(options._destinationText + " fails; the rest can be shipped later");
            std::this_thread::sleep_for(pause);
            pause = std::min(2 * pause, LONGEST_PAUSE);
            continue;
        }
        if (outcome == ZlShipper::Outcome::Shipped)
        {
            pause = SHORTEST_PAUSE;
            failures = 0;
            isReleased = false;
            continue;
        }
        if (isReleased && options._isOnce) break;
        if (isReleased)
        {
            watch.wait(areAllWatched ? -1 : PERIOD);
            isReleased = false;
            continue;
        }
        // More of the last event may be on its way.
        if (!options._isOnce && watch.wait(PATIENCE)) continue;
        shipper.release(options._isOnce);
        isReleased = true;
    }
    transport->finish();
}

} // namespace Zu

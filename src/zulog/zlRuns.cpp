#include "zulog/zlRuns.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace Zu
{

namespace
{

constexpr std::size_t MOST_RUNS = 10000;

// What identifies the process of a mark; without that, the log.
std::string idOf(const ZlRecord& record)
{
    const ZlOwner& owner = *record._owner;
    if (!owner._process) return "log " + std::string(zlLogOf(*record._file));
    std::string id = "process " + std::to_string(*owner._process) + " ";
    if (owner._processStart) id += std::to_string(*owner._processStart);
    return id + " " + owner._host;
}

} // namespace

std::string_view zlLogOf(std::string_view file)
{
    if (file.ends_with(".gz")) file.remove_suffix(3);
    const std::size_t dot = file.find_last_not_of("0123456789");
    const bool isNumbered =
        dot != std::string_view::npos && dot > 0 && file[dot] == '.' && dot + 1 < file.size();
    return isNumbered ? file.substr(0, dot) : file;
}

bool ZlRuns::add(const ZlRecord& record)
{
    switch (record._kind)
    {
    case ZlRecord::Kind::Start:
        return addStart(record);
    case ZlRecord::Kind::Stop:
        addStop(record);
        return false;
    case ZlRecord::Kind::RecoveryBegin:
        addRecovery(record);
        return false;
    default:
        return false;
    }
}

ZlRuns::Run* ZlRuns::find(const std::string& id)
{
    const auto place = _runs.find(id);
    return place == _runs.end() ? nullptr : &place->second;
}

void ZlRuns::keep(const std::string& id, Life life, const std::string& log)
{
    if (_runs.size() >= MOST_RUNS)
    {
        // It is forgotten with the life that it has.
        const std::string oldest = _order.front();
        _order.pop_front();
        const auto place = _openOf.find(_runs[oldest]._log);
        if (place != _openOf.end() && std::erase(place->second, oldest) > 0 &&
            place->second.empty())
            _openOf.erase(place);
        _runs.erase(oldest);
    }
    Run& run = _runs[id] = {life, log};
    _order.push_back(id);
    if (life == Life::Open) open(id, run, log);
}

void ZlRuns::open(const std::string& id, Run& run, const std::string& log)
{
    ++_open;
    run._life = Life::Open;
    run._log = log;
    _openOf[log].push_back(id);
}

// Of one that is open, or counts as ended without a mark.
void ZlRuns::end(const std::string& id, Run& run, Life life)
{
    if (run._life == Life::Open)
    {
        --_open;
        const auto place = _openOf.find(run._log);
        if (place != _openOf.end() && std::erase(place->second, id) > 0 && place->second.empty())
            _openOf.erase(place);
    }
    if (run._life == Life::Overtaken) --_unordered;
    if (life != Life::Stopped) ++_unordered;
    run._life = life;
}

// Those that are open in a log, where another process starts.
void ZlRuns::overtake(const std::string& log)
{
    const auto place = _openOf.find(log);
    if (place == _openOf.end()) return;
    const std::vector<std::string> ids = place->second;
    for (const std::string& id : ids) end(id, *find(id), Life::Overtaken);
}

bool ZlRuns::addStart(const ZlRecord& record)
{
    const std::string id = idOf(record);
    const std::string log(zlLogOf(*record._file));
    const bool isKnown = record._owner->_process.has_value();
    if (isKnown) ++_unendedOf[log];
    Run* const run = find(id);
    if (run && isKnown)
    {
        if (run->_life != Life::Overtaken) return false;
        // It lives, beside the other one.
        --_unordered;
        open(id, *run, log);
        return false;
    }
    overtake(log);
    ++_started;
    if (run)
        open(id, *run, log);
    else
        keep(id, Life::Open, log);
    return true;
}

// Takes away one of the marks of known processes that have no mark of an end yet. False if this log
// has none: then a mark that does not say whose it is can be of none of them.
bool ZlRuns::takeUnended(const std::string& log)
{
    const auto place = _unendedOf.find(log);
    if (place == _unendedOf.end()) return false;
    if (--place->second == 0) _unendedOf.erase(place);
    return true;
}

void ZlRuns::addStop(const ZlRecord& record)
{
    std::string id = idOf(record);
    const std::string log(zlLogOf(*record._file));
    const bool isKnown = record._owner->_process.has_value();
    const bool isOfItself = !isKnown && find(id);
    if (!isOfItself && takeUnended(log) && !isKnown)
    {
        // With several in the log, nobody can say which.
        const auto place = _openOf.find(log);
        if (place == _openOf.end()) return;
        id = place->second.front();
    }
    Run* const run = find(id);
    if (run && isKnown && (run->_life == Life::Stopped || run->_life == Life::Recovered)) return;
    ++_stopped;
    if (!run) return keep(id, Life::Stopped, log);
    if (run->_life == Life::Open || run->_life == Life::Overtaken) end(id, *run, Life::Stopped);
}

// Where the mark has no more than the number of the process, it is one that is open in this log.
void ZlRuns::addRecovery(const ZlRecord& record)
{
    const std::optional<std::uint32_t> process =
        record._process ? record._process : record._owner->_process;
    if (!process) return;
    const std::string log(zlLogOf(*record._file));
    if (!record._owner->_process)
    {
        const auto place = _openOf.find(log);
        if (place == _openOf.end()) return;
        const std::string begin = "process " + std::to_string(*process) + " ";
        const std::vector<std::string> ids = place->second;
        for (const std::string& id : ids)
            if (id.starts_with(begin)) end(id, *find(id), Life::Recovered);
        return;
    }
    const std::string id = idOf(record);
    Run* const run = find(id);
    if (!run) return keep(id, Life::Recovered, log);
    if (run->_life == Life::Open || run->_life == Life::Overtaken) end(id, *run, Life::Recovered);
}

} // namespace Zu

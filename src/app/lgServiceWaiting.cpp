#include "app/lgServiceWaiting.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

namespace Zu
{

namespace
{

// What is taken from the system at a time, in bytes.
constexpr std::uint64_t STEP = 65536;

std::uint64_t roundUp(std::uint64_t size)
{
    return (size + STEP - 1) / STEP * STEP;
}

} // namespace

void LgServiceWaiting::store(std::uint32_t number, const LgServiceLog& from, std::uint64_t batch)
{
    if (!_map.isOpen()) return;
    Log& log = _logs[number];
    LgMap::WaitingLog& slot = _map.header()._waiting[number];
    const LgMap::Waiting& before = slot._waiting[slot._current];
    LgMap::Waiting& next = slot._waiting[1 - slot._current];
    const std::string_view text = from.getWaiting();
    const bool isContinued = before._size > 0 && from.getChanges() == log._changes;
    if (text.size() == before._size && from.getDropped() == before._dropped &&
        (isContinued || text.empty()))
        return;
    const bool isAppended = isContinued && hasRoom(log, text.size());
    const bool isKept = isAppended || text.empty() || takeOtherRoom(log, text.size());
    // The part that is stored stays. Otherwise nothing may stay that was written meanwhile.
    if (!isKept && isContinued) return;
    next = {0, 0, LgMap::hashBytes("", 0), batch, from.getDropped(), from.getFailingSince()};
    if (isKept && !text.empty())
    {
        const LgServiceMap::Room& room = log._rooms[log._room];
        const std::uint64_t there = isAppended ? before._size : 0;
        std::memcpy(room._place + there, text.data() + there, text.size() - there);
        next._place = room._offset;
        next._size = text.size();
        next._hash = LgMap::hashBytes(text.data() + there, text.size() - there,
                                      isAppended ? before._hash : next._hash);
    }
    __atomic_store_n(&slot._current, 1 - slot._current, __ATOMIC_RELEASE);
    log._changes = from.getChanges();
}

// Whether the room in use has space for so much.
bool LgServiceWaiting::hasRoom(Log& log, std::uint64_t size)
{
    const LgServiceMap::Room& room = log._rooms[log._room];
    std::uint64_t& usable = log._usable[log._room];
    if (size <= usable) return true;
    const std::uint64_t wanted = std::min(roundUp(size), room._size);
    if (size > room._size || !_map.reserve(room, usable, wanted)) return false;
    usable = wanted;
    return true;
}

// What counts stays readable until the other one does.
bool LgServiceWaiting::takeOtherRoom(Log& log, std::uint64_t size)
{
    const std::uint32_t other = 1 - log._room;
    if (size > LgMap::MOST_WAITING)
    {
        _map.reportNotKept("more of them wait for a file that fails than are kept");
        return false;
    }
    if (size > log._rooms[other]._size)
    {
        _map.giveBack(log._rooms[other]);
        log._usable[other] = 0;
        // Twice as much, so that what grows is copied seldom.
        log._rooms[other] = _map.makeRoom(2 * roundUp(size));
    }
    const std::uint32_t former = std::exchange(log._room, other);
    if (hasRoom(log, size)) return true;
    _map.reportNotKept();
    log._room = former;
    return false;
}

bool LgServiceWaiting::keep(std::uint32_t number, LgServiceLog& from)
{
    if (!_map.isOpen()) return false;
    Log& log = _logs[number];
    const LgMap::WaitingLog& slot = _map.header()._waiting[number];
    const LgMap::Waiting& stored = slot._waiting[slot._current];
    if (from.getChanges() != log._changes || stored._size != from.getWaiting().size() ||
        stored._dropped != from.getDropped())
        return false;
    log._kept = from.takeWaiting();
    return true;
}

void LgServiceWaiting::giveBack(std::uint32_t number, LgServiceLog& to)
{
    Log& log = _logs[number];
    if (!log._kept) return;
    to.setWaiting(*std::exchange(log._kept, std::nullopt));
    log._changes = to.getChanges();
}

void LgServiceWaiting::leaveInChild()
{
    _logs = {};
}

} // namespace Zu

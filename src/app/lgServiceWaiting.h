/// @file
/// Lines that wait for log files that fail, kept in case the process ends. Internal to the
/// application kit.

#ifndef ZU_APP_LGSERVICEWAITING_H
#define ZU_APP_LGSERVICEWAITING_H

#include "lgMapLayout.h"
#include "lgServiceLog.h"
#include "lgServiceMap.h"

#include <array>
#include <cstdint>
#include <optional>

namespace Zu
{

/// Copies what waits for each log into the map, where the next service finds it however the process
/// ends. If the system refuses room, that is reported on standard error, and the lines are in this
/// process alone.
///
/// An object lives as long as the map.
///
/// Thread-safety: the thread that writes; leaveInChild() is for the child of a fork.
class LgServiceWaiting
{
public:
    explicit LgServiceWaiting(LgServiceMap& map) : _map(map) {}

    /// Stores what waits for a log after the attempt of a batch, by one store that counts. `log` is
    /// less than LgMap::MOST_FILES, and one for each log.
    void store(std::uint32_t log, const LgServiceLog& from, std::uint64_t batch);

    /// For the end of a service: takes it out of the log if it is stored whole. Returns whether it
    /// is.
    bool keep(std::uint32_t log, LgServiceLog& from);

    /// For the next service of this process: gives the log what was kept.
    void giveBack(std::uint32_t log, LgServiceLog& to);

    /// Forgets all: it is the parent's.
    void leaveInChild();

private:
    struct Log
    {
        // Used in turn, and how much of them is taken from the system; the second number is which
        // one is in use.
        std::array<LgServiceMap::Room, 2> _rooms;
        std::array<std::uint64_t, 2> _usable{};
        std::uint32_t _room = 0;
        // Of the log when it was stored.
        std::uint64_t _changes = 0;
        std::optional<LgServiceLog::Waiting> _kept;
    };

    bool hasRoom(Log& log, std::uint64_t size);
    bool takeOtherRoom(Log& log, std::uint64_t size);

    LgServiceMap& _map;
    std::array<Log, LgMap::MOST_FILES> _logs;
};

} // namespace Zu

#endif

/// @file
/// What dead processes have left in maps: to be listed, shown, written into the logs, or removed.

#ifndef ZU_ZULOG_ZLRECOVER_H
#define ZU_ZULOG_ZLRECOVER_H

#include "../app/lgServiceOptions.h"
#include "zlOutput.h"
#include "zlReports.h"
#include "zlTime.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Zu
{

/// Whose maps, and how they are used.
struct ZlRecoverOptions
{
    /// Where the maps are; empty for the directory that a log service chooses by itself.
    std::string _mapDirectory;
    /// Only what services with this log directory left, however it is spelled, also through links;
    /// empty for any. That there are maps but none of them is a failure. If a service had a
    /// relative log directory, that counts from the current one, and only if it is named here as
    /// a relative one.
    std::string _logDirectory;
    /// Paths, or names in the directory; empty for all. One that is named and can't be used is
    /// reported as a failure.
    std::vector<std::string> _maps;
    /// For removing: without names, all are removed only if this is set.
    bool _isAll = false;
    /// The set-up of the next service, as LgServiceOptions::fromEnvironment() returns it. In effect
    /// are the names of the files, the form of the lines, and what is about files; its two
    /// directories are not. With the process id in the names, that is the dead process's.
    LgServiceOptions _service;
    /// Of the list. Lines are shown in UTC if this says so, otherwise in the form of the service.
    ZlTimeWriter::Form _times = ZlTimeWriter::Form::Local;
    /// For the list.
    bool _isJson = false;
    /// Whether the output goes to a terminal: control characters are then escaped whatever the
    /// form of the lines.
    bool _isTerminal = false;
};

/// What is known of a map.
struct ZlLeft
{
    enum class State
    {
        /// Its process has ended.
        Left,
        /// Its process lives, or another one is recovering it. The file is not touched.
        Running,
        /// The file can't be opened, or it is not one that only this user can change.
        Refused,
        /// It has another version, or is damaged.
        Unreadable
    };

    State _state = State::Left;
    std::string _path;
    /// Why it can't be read.
    std::string _reason;
    /// When it was made: UTC, in nanoseconds since 1970.
    std::optional<std::int64_t> _made;
    std::optional<std::uint32_t> _process;

    /// @{
    /// Only of one that could be read.
    std::int64_t _processStart = 0;
    std::string _host;
    std::string _logDirectory;
    std::uint64_t _events = 0;
    /// How many of them may be in the log already, since they were being written at the end.
    std::uint64_t _unsure = 0;
    /// Events that wait as lines, because a log file failed.
    std::uint64_t _lines = 0;
    /// Events that were lost because a queue was full.
    std::uint64_t _lost = 0;
    /// Events that were lost because a log file failed.
    std::uint64_t _notWritten = 0;
    /// Entries that can't be read.
    std::uint64_t _damaged = 0;
    /// @}
};

/// The maps, the oldest first.
std::vector<ZlLeft> zlFindLeft(const ZlRecoverOptions& options, ZlReports& reports);

/// Writes what zlFindLeft() finds, as text or as one JSON object. Nothing is changed.
///
/// A service that starts in the very moment in which a map is being read leaves that map to the
/// service after it; so it does for the other functions.
void zlRecoverList(const ZlRecoverOptions& options, ZlOutput& out, ZlReports& reports);

/// Writes the events as the lines that the next service would write, without those that are known
/// to be in the log already. Nothing is changed.
void zlRecoverShow(const ZlRecoverOptions& options, ZlOutput& out, ZlReports& reports);

/// Writes the events into the log files, as the next service would do, and removes the maps; a line
/// for each map goes to `out`. The log directory must be there. This process may be ended at any
/// point: whoever goes on, this or a service, writes each event once.
///
/// The environment's variables of the logger count: those that name a file for a level, the one
/// that turns time stamps off, and the one of the lock. Files that fail are also reported on
/// standard error. One such call at a time in a process, in which no logger is running.
void zlRecoverWrite(const ZlRecoverOptions& options, ZlOutput& out, ZlReports& reports);

/// Removes maps with all that is in them; a line for each goes to `out`.
void zlRecoverRemove(const ZlRecoverOptions& options, ZlOutput& out, ZlReports& reports);

} // namespace Zu

#endif

/// @file
/// How a log service is doing.

#ifndef ZU_APP_LGSERVICEHEALTH_H
#define ZU_APP_LGSERVICEHEALTH_H

#include "../base/lgTypes.h"
#include "appApi.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace Zu
{

/// What a log service has done and what it is about to do: plain values, for a page of figures or
/// an alarm. LgService::health() fills them. All counts begin with the service, but those of
/// limited statements with the process.
struct LgServiceHealth
{
    /// The queue of a thread that logs.
    struct Queue
    {
        /// The id of the thread.
        std::uint32_t _thread = 0;
        /// How many entries it has.
        std::uint32_t _entries = 0;
        /// How many events are waiting.
        std::uint32_t _waiting = 0;
        /// How many were waiting at most when the service took some.
        std::uint32_t _largest = 0;
        /// How many events the thread has lost since its first one.
        std::uint64_t _lost = 0;
    };

    /// A log file.
    struct File
    {
        /// Where its next line goes.
        std::string _path;
        /// Whether the last attempt to write to it failed.
        bool _isFailing = false;
        /// The bytes that wait for it because it fails.
        std::uint64_t _pending = 0;
        /// How often it was rotated.
        std::uint64_t _rotations = 0;
    };

    /// A log statement of ZU_LOG_AT_MOST or ZU_LOG_EVERY that has left out something.
    struct Limit
    {
        /// Where it is, as the compiler names the file.
        std::string _file;
        /// Its line.
        int _line = 0;
        /// Its minor group.
        std::string _group;
        /// Its level.
        LgTypes::Level _level = LgTypes::Warning;
        /// Whether it is limited to a number of events per second, or to every so many executions.
        bool _isPerSecond = false;
        /// This number.
        std::uint32_t _number = 0;
        /// How many of its executions were let through.
        std::uint64_t _written = 0;
        /// How many were left out.
        std::uint64_t _leftOut = 0;
        /// How many of those no line has reported yet.
        std::uint64_t _owed = 0;
    };

    /// All statements that are limited in the same way.
    struct LimitSum
    {
        /// How many of them were executed.
        std::uint64_t _statements = 0;
        /// How many executions were let through.
        std::uint64_t _written = 0;
        /// How many were left out.
        std::uint64_t _leftOut = 0;
    };

    /// For each level: how many events were taken from the queues, to be written.
    std::array<std::uint64_t, LgTypes::NUM_LEVELS> _events{};
    /// How many events were lost because they came faster than they could be written.
    std::uint64_t _lost = 0;
    /// How many events no file took.
    std::uint64_t _unwritten = 0;
    /// How many events are waiting in the queues.
    std::uint64_t _waiting = 0;
    /// How long the oldest of them has waited; 0 if none is waiting, or if it has just come.
    std::chrono::microseconds _behind{0};
    /// How many events of processes that had ended the service has written.
    std::uint64_t _recovered = 0;
    /// The queues of living threads.
    std::vector<Queue> _queues;
    /// The log files, in the order of their levels.
    std::vector<File> _files;
    /// The statements of ZU_LOG_AT_MOST.
    LimitSum _perSecond;
    /// The statements of ZU_LOG_EVERY.
    LimitSum _everyNth;
    /// Those of both kinds that have left out something.
    std::vector<Limit> _limits;

    /// All of it as one JSON object in one line, for example (with line ends added):
    ///
    ///     {"events":{"Internal Error":0,"Fatal Error":0,"Error":2,"Warning":17,
    ///      "Informational":0,"Tracing":0,"Profiling":0},"lost":0,"unwritten":0,"waiting":1,
    ///      "behindMicroseconds":250,"recovered":0,"queues":[{"thread":4711,"entries":4096,
    ///      "waiting":1,"largest":9,"lost":0}],"files":[{"path":"/var/log/shop/events.log",
    ///      "failing":false,"pending":0,"rotations":3}],
    ///      "perSecond":{"statements":2,"written":17,"leftOut":12},
    ///      "everyNth":{"statements":0,"written":0,"leftOut":0},
    ///      "limits":[{"file":"src/orders.cpp","line":17,"group":"Orders","level":"Warning",
    ///      "perSecond":true,"number":5,"written":16,"leftOut":12,"owed":4}]}
    ///
    /// The text is UTF-8: what is not in a path is shown as lines of the log show it, "\xff".
    /// Depends on no locale.
    ZU_APP_API std::string toJson() const;
};

} // namespace Zu

#endif

/// @file
/// The log service: everything that an application needs around the logger.

#ifndef ZU_APP_LGSERVICE_H
#define ZU_APP_LGSERVICE_H

#include "appApi.h"

#include <chrono>
#include <cstdint>
#include <memory>

namespace Zu
{

class LgServiceReader;

/// While one lives, log statements of all threads go through queues to a thread that writes them:
///
///     const Zu::InInitGuard guard(argc, argv);
///     const Zu::LgService service;
///
/// Threads may come and go at any time, before it and during it. Each gets a queue at its first
/// event (48 KiB, on the heap); the queue is deleted when the thread has ended and its events are
/// written. Blocking trace works. Where lines are written under a lock between processes and the
/// lock fails, that is reported once on standard error, and the line is tried again.
///
/// When it ends, the service writes everything that was published. A thread that is in the middle
/// of a log statement at that moment may publish too late; its event waits in the queue for the
/// next LgService, or for any LgReader that the application runs then. So that nothing dangles, the
/// kit's registry and queue function stay with the logger after the service has ended.
///
/// `std::exit()` does not destroy the local objects of functions. A service that is a local object
/// then does not write what is waiting: those events are lost, and the log files have no last line.
/// A caller of `std::exit()` has to end the service first; a `std::optional` can hold it for that
/// purpose.
///
/// After a fork() the child has no service: its log statements write to standard output, destroying
/// the object does nothing there, and a new one can't be made, unless none lived at the fork.
/// Events that waited at the fork are written by the parent only.
///
/// Thread-safety: constructed and destroyed by one thread, after the start of the package "logger"
/// and before its end.
class ZU_APP_API LgService
{
public:
    /// Raises LgServiceEx::ExAlreadyRunning if there is a service already,
    /// LgServiceEx::ExLoggerNotStarted before the start of the logger, LgServiceEx::ExForked in the
    /// child of a process that had a service at the fork, and std::system_error if the platform
    /// refuses a thread.
    LgService();
    LgService(const LgService&) = delete;
    LgService& operator=(const LgService&) = delete;
    ~LgService();

    /// How many events were lost since the service began, because they came faster than they could
    /// be written. Any thread may call it.
    std::uint64_t getLostCount() const;

    /// Waits until every event that any thread has logged before the call is handed to the system,
    /// or could not be written; events that come later do not prolong the wait. Returns false if
    /// the time is over first, which is how it ends while a lock between processes fails. Nothing
    /// is forced to the disk. A `timeout` of 0 or less asks without waiting; the answer may then be
    /// false although all is written, while the thread that writes is busy.
    ///
    /// Any thread may call it. On the thread that writes the events, in a stream of the
    /// application's own, it returns false at once. In the child of a fork nothing is waiting.
    /// Raises what an application's own registry raises.
    bool flush(std::chrono::milliseconds timeout) const;

private:
    std::uint64_t _lostBefore = 0;
    std::unique_ptr<LgServiceReader> _reader;
};

} // namespace Zu

#endif

/// @file
/// The log service: everything that an application needs around the logger.

#ifndef ZU_APP_LGSERVICE_H
#define ZU_APP_LGSERVICE_H

#include "appApi.h"

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
/// lock fails, standard error is told once, and the line is tried again.
///
/// At its end the service writes everything that was published. A thread that is in the middle of a
/// log statement at that moment may publish behind it; its event waits in the queue for the next
/// LgService, or for any LgReader that the application runs then. So that nothing dangles, the
/// kit's registry and queue function stay with the logger when the service has ended.
///
/// A `std::exit()` does not end objects of functions. A service that stands in one does not write
/// what waits then: those events are lost, and the log files have no last line. Who leaves the
/// process that way ends the service first, for instance one that a `std::optional` holds.
///
/// After a fork() the child has no service: its log statements write to standard output, the end of
/// the object does nothing there, and a new one can't be made; it can if none lived at the fork.
/// Events that waited at the fork are written by the parent, and by nobody else.
///
/// Thread-safety: made and ended by one thread, after the start of the package "logger" and before
/// its end.
class ZU_APP_API LgService
{
public:
    /// Raises LgServiceEx::ExAlreadyRunning if there is one, LgServiceEx::ExLoggerNotStarted before
    /// the start of the logger, LgServiceEx::ExForked in the child of a process that had one at the
    /// fork, and std::system_error if the platform refuses a thread.
    LgService();
    LgService(const LgService&) = delete;
    LgService& operator=(const LgService&) = delete;
    ~LgService();

    /// How many events were lost since the service began, because they came faster than they could
    /// be written. Any thread may ask.
    std::uint64_t getLostCount() const;

private:
    std::uint64_t _lostBefore = 0;
    std::unique_ptr<LgServiceReader> _reader;
};

} // namespace Zu

#endif

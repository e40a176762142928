/// @file
/// The log service: everything that an application needs around the logger.

#ifndef ZU_APP_LGSERVICE_H
#define ZU_APP_LGSERVICE_H

#include "appApi.h"
#include "lgServiceEnds.h"
#include "lgServiceHealth.h"
#include "lgServiceOptions.h"

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
/// event, with room for a burst of some thousand; memory is taken as it is used. The queue is given
/// back when the thread has ended and its events are written. Blocking trace works. Where lines are
/// written under a lock between processes and the lock fails, that is reported once on standard
/// error, and the lines are tried again.
///
/// What a log statement has accepted is written, however the process ends. The queues are in a file
/// that outlives the process, in memory that processes share. exit(), quick_exit(), the end of
/// main and std::terminate() wait until everything is written, for a limited time. After a kill, an
/// abort() or a crash, the next service with the same log directory writes what was left, once,
/// between two lines that name the process. docs/log-service.md has the exceptions, and an option
/// that has a crash wait, too.
///
/// A program that includes this header has its log files opened by the kit: files that exist are
/// appended to, never emptied. A file that fails is tried again, and standard error has one line
/// when it fails and one when it works again.
///
/// When it ends, the service writes everything that was published. A thread that is in the middle
/// of a log statement at that moment may publish too late; its event waits in the queue for the
/// next LgService, or for any LgReader that the application runs then. So that nothing dangles, the
/// kit's registry and queue function stay with the logger after the service has ended.
///
/// After a fork() the child has no service: its log statements write to standard output, and
/// destroying the object does nothing there. It may make a service of its own. Events that waited
/// at the fork are written by the parent only.
///
/// A service that still lives when the package "logger" ends is ended there, after all packages
/// that depend on the logger, with a line on standard error.
///
/// Thread-safety: constructed and destroyed by one thread, after the start of the package "logger"
/// and before its end.
class ZU_APP_API LgService
{
public:
    /// A service with the options that the environment has. Raises LgServiceEx::ExAlreadyRunning if
    /// there is a service already, LgServiceEx::ExLoggerNotStarted before the start of the logger,
    /// and std::system_error if the platform refuses a thread.
    LgService() : LgService(LgServiceOptions::fromEnvironment()) {}

    /// A service with these options. Raises the same.
    explicit LgService(const LgServiceOptions& options)
        : LgService(options, LgServiceEnds::handleTerminate())
    {
    }

    LgService(const LgService&) = delete;
    LgService& operator=(const LgService&) = delete;
    ~LgService();

    /// Prints to standard output what is in effect: each option as LgServiceOptions::display()
    /// writes it, and for each level where its lines go:
    ///
    ///     Warning: /var/log/shop/events.log
    ///
    /// If the directory of the options can't be used, that option is shown empty.
    void displaySetup() const;

    /// How the service is doing: what it has written and lost, what is waiting, how full the
    /// queues were, its files. Cheap enough to ask every second; any thread may call it, and it
    /// never waits for a file. In the child of a fork all is 0.
    LgServiceHealth health() const;

    /// How many events of processes that had ended this service has written.
    std::uint64_t getRecoveredCount() const
    {
        return _recovered;
    }

    /// Closes the log files; the next lines open them by their names. For programs that rename log
    /// files. Any thread may call it.
    void reopen() const;

    /// How many events were lost since the service began, because they came faster than they could
    /// be written. Any thread may call it.
    std::uint64_t getLostCount() const;

    /// Waits until every event that any thread has logged before the call is handed to the system,
    /// or could not be written; events that come later do not prolong the wait. Returns false if
    /// the time is over first, which is how it ends while a lock between processes fails. Nothing
    /// is forced to the disk unless the option `sync` says so: then this thread waits for the disk,
    /// for as long as that takes, and the result is also false if a file can't be forced to it or
    /// can't be written at present. A `timeout` of 0 or less asks without waiting; the answer may
    /// then be false although all is written, while the thread that writes is busy.
    ///
    /// Any thread may call it. On the thread that writes the events, in a stream of the
    /// application's own, it returns false at once. In the child of a fork nothing is waiting.
    /// Raises what an application's own registry raises.
    bool flush(std::chrono::milliseconds timeout) const;

private:
    LgService(LgServiceOptions options, bool handlesTerminate);
    static void endWithLogger();
    void end();

    LgServiceOptions _options;
    std::uint64_t _lostBefore = 0;
    std::uint64_t _recovered = 0;
    std::unique_ptr<LgServiceReader> _reader;
};

} // namespace Zu

#endif

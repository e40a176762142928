/// @file
/// The set-up of the logger: where each level's text goes, and whether the queues are in use.

#ifndef ZU_BASE_LGLOG_H
#define ZU_BASE_LGLOG_H

#include "baseApi.h"
#include "lgInterProcessLock.h"
#include "lgRegistry.h"
#include "lgTypes.h"
#include "objPtr.h"

#include <atomic>
#include <cstdint>
#include <iosfwd>

namespace Zu
{

class LgQueue;

/// The logger's static control block. The package "logger" reads the environment into it once, at
/// its start, and closes what it opened at its end; docs/logging.md has the variables.
///
/// Two things belong to the application: the function that gives each thread its queue, and the
/// thread that runs the reader. LgService of the application kit brings both. Without them the
/// logger is inactive, and text goes to standard output.
///
/// A broken rule is fatal.
///
/// Thread-safety: what changes the set-up belongs to phases of one thread; what asks may be called
/// by any thread.
class ZU_BASE_API LgLog
{
public:
    /// How a thread finds its queue; must return one.
    using QueueFunction = LgQueue* (*)();

    LgLog() = delete;

    /// Reads the environment and opens the log files, each with a banner. What opens no file is
    /// not reported: its text vanishes. What OsFsUtils::createDir() raises because a file stands in
    /// the place of the log directory, and what LgInterProcessLock::create() and its lock() raise,
    /// leaves it; it may be called again then. Asserts "file_prof == 0" and "file_log == 0".
    static void init();

    /// Closes the log files, each with a banner, and ends the groups. Events that wait in queues
    /// can't reach a file from here on: LgReader::flushAll() belongs before it. What taking the
    /// lock raises leaves it once everything else is done, and the file that it was taken for has
    /// no banner.
    static void destroy();

    /// Prints where each level's text goes.
    static void displaySetup();

    /// The calling thread's queue, as the queue function gives it.
    static LgQueue& getQueue()
    {
        return *_queueFunction.load(std::memory_order_acquire)();
    }

    /// Sets the queue function; null brings back the default one, which gives one queue to all
    /// threads that no reader sees.
    static void setQueueFunction(QueueFunction function);

    /// Whether events go into queues, and not straight to standard output.
    static bool isLoggerActive()
    {
        return _loggerActive.load(std::memory_order_acquire);
    }

    /// Says whether events go into queues.
    static void setLoggerActivation(bool active)
    {
        _loggerActive.store(active, std::memory_order_release);
    }

    /// Whether LgTrace::print() waits for room in the queue.
    static bool getBlockingTrace()
    {
        return _blockingTrace.load(std::memory_order_relaxed);
    }

    /// Says whether LgTrace::print() waits for room in the queue.
    static void setBlockingTrace(bool blocking)
    {
        _blockingTrace.store(blocking, std::memory_order_relaxed);
    }

    /// Whether lines and banners bear times.
    static bool isTimeStampsEnabled()
    {
        return _logTimeStamps.load(std::memory_order_relaxed);
    }

    /// @{
    /// Say whether lines and banners bear times.
    static void enableTimeStamps()
    {
        _logTimeStamps.store(true, std::memory_order_relaxed);
    }

    static void disableTimeStamps()
    {
        _logTimeStamps.store(false, std::memory_order_relaxed);
    }
    /// @}

    /// The origin of the times in lines, in ticks of HwCounter::timeStamp().
    static std::uint64_t getStart();

    /// Whether the level's text also goes to standard output.
    static bool isLevelEchoed(LgTypes::Level level);

    /// The stream of the level's file; null if it has none.
    static std::ostream* getLevelOutput(LgTypes::Level level);

    /// Whether the level's text was to go to a file in the log directory, which could not be made:
    /// it has no file then, and what would have been written there is counted by
    /// LgReader::getUnwrittenCount().
    static bool isFileMissing(LgTypes::Level level);

    /// Whether the level's text may go to standard output while the logger is inactive: all but
    /// Profiling.
    static bool isInactiveOutputAllowed(LgTypes::Level level)
    {
        return level != LgTypes::Profiling;
    }

    /// The registry; null before the first init().
    static LgRegistry* getRegistry();

    /// Moves all queues into `r`, which becomes the registry, and returns the former one, empty;
    /// null changes nothing.
    static ObjPtrRet<LgRegistry> setRegistry(ObjPtr<LgRegistry> r);

    /// The lock that lines are written under; null if there is none.
    static LgInterProcessLock* getInterProcessLock();

private:
    static void readDefaultLevel();
    static void readSwitches();
    static void closeOutput(LgTypes::Level level);

    static std::uint64_t _start;
    static std::atomic<bool> _loggerActive;
    static std::atomic<bool> _blockingTrace;
    static std::atomic<bool> _logTimeStamps;
    static std::atomic<QueueFunction> _queueFunction;
};

} // namespace Zu

#endif

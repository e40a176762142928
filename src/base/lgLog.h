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
#include <memory>
#include <string>

namespace Zu
{

class LgQueue;

/// The logger's static control block. The package "logger" configures it from the environment once,
/// when it starts, and closes the opened files when it ends; docs/logging.md has the variables.
///
/// The application supplies two things: the function that gives each thread its queue, and the
/// thread that runs the reader. LgService of the application kit provides both. Without them the
/// logger is inactive, and text goes to standard output.
///
/// A broken rule is fatal.
///
/// Thread-safety: operations that change the set-up belong to single-threaded phases. Any thread
/// may call the queries.
class ZU_BASE_API LgLog
{
public:
    /// How a thread finds its queue; must not return null.
    using QueueFunction = LgQueue* (*)();

    /// How the file of a level is opened: returns its stream, or null for the logger to open it as
    /// usual. The logger owns the stream, and destroys it when it ends.
    using OutputFunction = std::unique_ptr<std::ostream> (*)(const char* name, bool appends);

    /// See setEndFunction().
    using EndFunction = void (*)();

    LgLog() = delete;

    /// Reads the environment and opens the log files, each with a banner. A file that can't be
    /// opened is not reported: its text vanishes. Raises what OsFsUtils::createDir() raises if a
    /// file is in the place of the log directory, and what LgInterProcessLock::create() and its
    /// lock() raise; init() may then be called again. Asserts "file_prof == 0" and "file_log == 0".
    static void init();

    /// Closes the log files, each with a banner, and ends the groups. Events waiting in queues can
    /// no longer reach a file, so call LgReader::flushAll() first. An exception from taking the
    /// lock is raised once everything else is done; the file that the lock was for gets no banner.
    /// Asserts "_level[i]._output": a logger that is not running can't be ended.
    static void destroy();

    /// Sets how the files of levels are opened from the next init() on; null restores the usual
    /// way. May be called before main.
    static void setOutputFunction(OutputFunction function);

    /// Sets what destroy() calls first, while the queues and the files are still in use; null for
    /// nothing.
    static void setEndFunction(EndFunction function);

    /// The lines that begin a log file: they name the time at which the logger started, unless time
    /// stamps are disabled.
    static std::string getBanner();

    /// The directory of the log files that the environment does not name.
    static std::string getDirectory();

    /// Prints where each level's text goes.
    static void displaySetup();

    /// The calling thread's queue, as returned by the queue function.
    static LgQueue& getQueue()
    {
        return *_queueFunction.load(std::memory_order_acquire)();
    }

    /// Sets the queue function. Null restores the default one, which returns the same queue to all
    /// threads; no reader sees that queue.
    static void setQueueFunction(QueueFunction function);

    /// Whether events go into queues instead of straight to standard output.
    static bool isLoggerActive()
    {
        return _loggerActive.load(std::memory_order_acquire);
    }

    /// Sets whether events go into queues.
    static void setLoggerActivation(bool active)
    {
        _loggerActive.store(active, std::memory_order_release);
    }

    /// Whether LgTrace::print() waits for room in the queue.
    static bool getBlockingTrace()
    {
        return _blockingTrace.load(std::memory_order_relaxed);
    }

    /// Sets whether LgTrace::print() waits for room in the queue.
    static void setBlockingTrace(bool blocking)
    {
        _blockingTrace.store(blocking, std::memory_order_relaxed);
    }

    /// Whether lines and banners contain times.
    static bool isTimeStampsEnabled()
    {
        return _logTimeStamps.load(std::memory_order_relaxed);
    }

    /// @{
    /// Set whether lines and banners contain times.
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

    /// The stream of the level's file; null if the level has none.
    static std::ostream* getLevelOutput(LgTypes::Level level);

    /// Whether the level's text was meant for a file in the log directory, but that directory could
    /// not be created. The level then has no file, and LgReader::getUnwrittenCount() counts its
    /// unwritten events.
    static bool isFileMissing(LgTypes::Level level);

    /// Whether the level's text may go to standard output while the logger is inactive: true for
    /// all levels except Profiling.
    static bool isInactiveOutputAllowed(LgTypes::Level level)
    {
        return level != LgTypes::Profiling;
    }

    /// The registry; null before the first init().
    static LgRegistry* getRegistry();

    /// Moves all queues into `r`, which becomes the registry, and returns the previous one, now
    /// empty. Null changes nothing.
    static ObjPtrRet<LgRegistry> setRegistry(ObjPtr<LgRegistry> r);

    /// The lock held while a line is written; null if there is none.
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

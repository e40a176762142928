/// @file
/// Forcing log files to the disk. Internal to the application kit.

#ifndef ZU_APP_LGSERVICESYNC_H
#define ZU_APP_LGSERVICESYNC_H

#include "lgServiceFile.h"
#include "lgServiceLog.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace Zu
{

/// Has the system store on the medium what the logs of all levels were written. The thread that
/// asks waits for the system, with handles of its own: the writing thread goes on, rotates and
/// closes files meanwhile. What it closes, it has stored before (LgServiceLog::Settings).
///
/// A log that is another stream of the application can't be stored, and is left out.
///
/// Thread-safety: any thread may call it.
class LgServiceSync
{
public:
    using Clock = std::chrono::steady_clock;

    /// What stores a file: LgServiceFile::sync(); a test has a function of its own.
    static bool (*_store)(LgServiceFile& file);

    /// `reading` is held by the thread that writes to the logs.
    explicit LgServiceSync(std::mutex& reading) : _reading(reading) {}

    /// How many calls of store() have failed.
    std::uint64_t getFailures();

    /// Stores what was written since the last time that this succeeded. Waits until `end` for
    /// another thread that does; how long the system takes is not limited. Returns false if a file
    /// can't be stored, which standard error says once, if one can't be written at present, and
    /// if the time is over. It is also false if another thread's call has failed since there were
    /// `failures`: what this caller wants stored may have been part of that.
    bool store(std::uint64_t failures, Clock::time_point end);

private:
    // A log, a copy of its file, and what became of it.
    struct Part
    {
        LgServiceLog* _log;
        std::unique_ptr<LgServiceFile> _file;
        bool _isStored;
        int _error;
    };

    bool begin(std::uint64_t failures, Clock::time_point end);
    void end(bool isStored);
    bool collect(std::vector<Part>& parts);
    bool storeParts(std::vector<Part>& parts);

    std::mutex& _reading;
    std::mutex _mutex;
    std::condition_variable _isFree;
    bool _isStoring = false;
    std::uint64_t _failures = 0;
    // After a failure: the files that seem to be stored are so no longer.
    bool _isAllDue = false;
};

} // namespace Zu

#endif

/// @file
/// The thread that compresses rotated log files. Internal to the application kit.

#ifndef ZU_APP_LGSERVICECOMPRESSION_H
#define ZU_APP_LGSERVICECOMPRESSION_H

#include "lgServiceCompressor.h"
#include "lgServiceFile.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Zu
{

/// Makes "path.N.gz" of each "path.N", in a thread of low priority: when it begins, and whenever it
/// is asked to. A file is compressed into "path.compressing", which is then renamed, and the
/// original removed. So whenever the process ends, the original or all of the compressed file is
/// there. If both are, the original counts; a file that was begun is begun again or removed.
///
/// Meanwhile a rotation may give the original another number or remove it, and another process may
/// compress it. The compressed file gets the number that the original has at the end, or is
/// dropped.
class LgServiceCompression
{
public:
    /// Starts the thread, which looks for files at once. `reading` is held by the thread that
    /// writes to the logs and rotates them; here it is held for the time of a few renames. Raises
    /// std::system_error if the platform refuses a thread.
    LgServiceCompression(std::mutex& reading, LgServiceCompressor::Factory factory);
    LgServiceCompression(const LgServiceCompression&) = delete;
    LgServiceCompression& operator=(const LgServiceCompression&) = delete;

    /// Ends the thread. A file that is being compressed stays as it is.
    ~LgServiceCompression();

    /// Has the thread look for files again.
    void ask();

    /// What the thread does for a log with this path; for tests. Returns whether it has compressed
    /// every file that it could find.
    bool compressAll(const std::string& path);

    /// For tests: without a thread.
    struct WithoutThread
    {
    };
    LgServiceCompression(std::mutex& reading, LgServiceCompressor::Factory factory, WithoutThread);

    /// Has compressAll() give up after its present block.
    void stop();

    /// The name under which a file is compressed.
    static std::string temporaryOf(const std::string& path);

private:
    enum class Outcome
    {
        Compressed,
        // It is no longer there, or has changed.
        Moved,
        // It is none to compress.
        Skipped,
        // Another process compresses a file of this log.
        Busy,
        Failed,
        Stopped
    };

    // The original and the temporary file, closed with the object.
    struct Files;

    void run();
    std::vector<std::string> paths();
    Outcome compressNext(const std::string& path);
    Outcome compress(const std::string& path, const std::string& original);
    Outcome transfer(Files& files, std::uint64_t& size);
    static bool writeAll(const Files& files, const std::string& text);
    Outcome tryToReplace(const std::string& path, Files& files, std::uint64_t size);
    Outcome replace(const std::string& path, Files& files, std::uint64_t size);
    Outcome fail(const std::string& original, const std::string& reason);
    static void removeLeftover(const std::string& path);

    std::mutex& _reading;
    const LgServiceCompressor::Factory _factory;
    std::mutex _mutex;
    std::condition_variable _wake;
    bool _isAsked = true;
    std::atomic<bool> _stop{false};
    bool _isReported = false;
    std::thread _thread;
};

} // namespace Zu

#endif

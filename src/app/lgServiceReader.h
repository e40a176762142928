/// @file
/// The thread that writes what is logged. Internal to the application kit.

#ifndef ZU_APP_LGSERVICEREADER_H
#define ZU_APP_LGSERVICEREADER_H

#include "lgServiceCompression.h"
#include "lgServiceControl.h"
#include "lgServiceSync.h"
#include "lgServiceThreads.h"
#include "lgServiceWriter.h"

#include <atomic>
#include <memory>
#include <thread>
#include <utility>

namespace Zu
{

/// A thread that writes events as they come and sleeps while there are none. A failing lock between
/// processes is reported once, on standard error; the event is kept and tried again.
class LgServiceReader
{
public:
    /// Starts the thread, and another one if rotated files are to be compressed by what a function
    /// makes. Raises std::system_error if the platform refuses one.
    explicit LgServiceReader(LgServiceThreads& threads, LgLineForm form = LgLineForm::Ticks,
                             bool isRaw = false, LgServiceCompressor::Factory compressor = nullptr);
    LgServiceReader(const LgServiceReader&) = delete;
    LgServiceReader& operator=(const LgServiceReader&) = delete;

    /// Writes what is waiting, and ends the thread.
    ~LgServiceReader();

    /// Whether the object was made in this process: not in the one that was forked.
    bool isOwn() const
    {
        return _forks == _threads.getForks();
    }

    /// Closes the log files before the next batch, which opens them by their names. May be called
    /// in a signal handler.
    static void reopen() noexcept
    {
        _isReopenDue.store(true, std::memory_order_release);
    }

    /// From now on, the thread answers other processes. For the one that made the object, once.
    void beginControl(std::unique_ptr<LgServiceControl> control)
    {
        _control = std::move(control);
        _presentControl.store(_control.get(), std::memory_order_release);
    }

    /// Fills in what is known of the service. Any thread may call it; never waits for a file.
    void addHealth(LgServiceHealth& health) const
    {
        _writer.addHealth(health, _threads.addHealth(health));
    }

    /// Whether the caller is what this thread runs.
    bool isOnThisThread() const
    {
        return std::this_thread::get_id() == _thread.get_id();
    }

    /// What forces to the disk what this thread has written.
    LgServiceSync& sync()
    {
        return _sync;
    }

private:
    enum class Outcome
    {
        Wrote,
        Nothing,
        Failed
    };

    void run();
    void rest(int& naps);
    bool isWorkWaiting();
    Outcome writeSome();
    void openLogs();
    void finish();
    void report(const char* reason);

    // Of the process, which has one writing thread at a time: a signal handler knows no object.
    static std::atomic<bool> _isReopenDue;
    static_assert(std::atomic<bool>::is_always_lock_free);

    LgServiceThreads& _threads;
    LgServiceWriter _writer;
    LgServiceSync _sync;
    std::unique_ptr<LgServiceCompression> _compression;
    const int _forks;
    std::atomic<bool> _stop{false};
    bool _reported = false;
    std::unique_ptr<LgServiceControl> _control;
    // The same, for the thread, which begins before there is one.
    std::atomic<LgServiceControl*> _presentControl{nullptr};
    std::thread _thread;
};

} // namespace Zu

#endif

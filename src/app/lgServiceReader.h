/// @file
/// The thread that writes what is logged. Internal to the application kit.

#ifndef ZU_APP_LGSERVICEREADER_H
#define ZU_APP_LGSERVICEREADER_H

#include "lgServiceThreads.h"

#include <atomic>
#include <thread>

namespace Zu
{

/// A thread that writes events as they come and sleeps while there are none. A failing lock between
/// processes is reported once, on standard error; the event is kept and tried again.
class LgServiceReader
{
public:
    /// Starts the thread. Raises std::system_error if the platform refuses one.
    explicit LgServiceReader(LgServiceThreads& threads);
    LgServiceReader(const LgServiceReader&) = delete;
    LgServiceReader& operator=(const LgServiceReader&) = delete;

    /// Writes what is waiting, and ends the thread.
    ~LgServiceReader();

    /// Whether the caller is what this thread runs.
    bool isOnThisThread() const
    {
        return std::this_thread::get_id() == _thread.get_id();
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
    void report(const char* reason);

    LgServiceThreads& _threads;
    std::atomic<bool> _stop{false};
    bool _reported = false;
    std::thread _thread;
};

} // namespace Zu

#endif

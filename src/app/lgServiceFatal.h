/// @file
/// What a fatal signal waits for. Internal to the application kit.

#ifndef ZU_APP_LGSERVICEFATAL_H
#define ZU_APP_LGSERVICEFATAL_H

#include "lgServiceThreads.h"

#include <atomic>
#include <chrono>
#include <cstdint>

namespace Zu
{

/// Holds a crashing thread up until the writing thread has written what was logged so far. The
/// crashing thread locks, allocates and wakes nothing: whoever logs wakes the writing thread, so it
/// is enough to watch it. It is asleep with nothing waiting, or it confirms the time that is asked
/// for with its next batch.
///
/// There is one for the process; a signal handler knows no object.
class LgServiceFatal
{
public:
    /// How long a fatal signal is held up at most; a test has a limit of its own.
    static std::chrono::milliseconds _limit;

    /// From here on, fatal signals wait for the threads' reader, until end().
    static void begin(LgServiceThreads& threads);
    static void end();

    /// Waits until what was logged so far is written, or the limit is over. Not on the writing
    /// thread, in the child of a fork, or without a service. May be called in a signal handler.
    static void waitUntilWritten() noexcept;

    /// Whether a wait has begun since begin().
    static bool isAsked() noexcept
    {
        return _asked.load(std::memory_order_acquire) != 0;
    }

    /// For the writing thread: whether it is asleep since it found nothing to do, after it has
    /// announced itself to LgServiceThreads::news().
    static void noteIdle(bool isIdle) noexcept
    {
        // Before an announcement that the crashing thread sees, the sleep before it has ended.
        _isIdle.store(isIdle, std::memory_order_release);
    }

    /// For the writing thread after a batch, which holds LgServiceThreads::reading(). Raises what
    /// the registry raises.
    static void noteWritten();

private:
    static bool isIdle(LgServiceThreads& threads) noexcept;

    static std::atomic<LgServiceThreads*> _threads;
    // In ticks of HwCounter::timeStamp(): until when events are waited for, and until when they are
    // known to be written.
    static std::atomic<std::uint64_t> _asked;
    static std::atomic<std::uint64_t> _written;
    static std::atomic<bool> _isIdle;
    static_assert(std::atomic<std::uint64_t>::is_always_lock_free);
    static_assert(std::atomic<LgServiceThreads*>::is_always_lock_free);
    static_assert(std::atomic<bool>::is_always_lock_free);
};

} // namespace Zu

#endif

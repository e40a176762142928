#include "app/lgServiceFatal.h"

#include "app/lgServicePlatform.h"
#include "base/hwCounter.h"

#include <thread>

namespace Zu
{

constinit std::chrono::milliseconds LgServiceFatal::_limit{1000};
constinit std::atomic<LgServiceThreads*> LgServiceFatal::_threads{nullptr};
constinit std::atomic<std::uint64_t> LgServiceFatal::_asked{0};
constinit std::atomic<std::uint64_t> LgServiceFatal::_written{0};
constinit std::atomic<bool> LgServiceFatal::_isIdle{false};

void LgServiceFatal::begin(LgServiceThreads& threads)
{
    _asked.store(0, std::memory_order_relaxed);
    _written.store(0, std::memory_order_relaxed);
    _threads.store(&threads, std::memory_order_release);
    LgServicePlatform::onFatalSignals(&waitUntilWritten);
}

void LgServiceFatal::end()
{
    if (!_threads.exchange(nullptr, std::memory_order_acq_rel)) return;
    LgServicePlatform::onFatalSignals(nullptr);
}

void LgServiceFatal::waitUntilWritten() noexcept
{
    using Clock = std::chrono::steady_clock;
    // Processors may read the counter a little before what stands in front of it is done.
    constexpr std::uint64_t MARGIN = 10'000;
    LgServiceThreads* const threads = _threads.load(std::memory_order_acquire);
    if (!threads || !threads->isRunning() || threads->isWriter()) return;
    const std::uint64_t time = HwCounter::timeStamp() + MARGIN;
    // Several threads may crash at once: the latest prevails. The release goes to isAsked().
    std::uint64_t asked = _asked.load(std::memory_order_relaxed);
    while (asked < time && !_asked.compare_exchange_weak(asked, time, std::memory_order_release,
                                                         std::memory_order_relaxed))
        continue;
    const Clock::time_point end = Clock::now() + _limit;
    while (_written.load(std::memory_order_acquire) < time && !isIdle(*threads))
    {
        if (Clock::now() >= end) return;
        if (!LgServicePlatform::nap()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

// The mark of the bell is asked first: if it is that of the present sleep, isIdle is, too. Whoever
// logs after that sleep has begun removes the mark.
bool LgServiceFatal::isIdle(LgServiceThreads& threads) noexcept
{
    if (!threads.news().isListenedTo()) return false;
    std::atomic_thread_fence(std::memory_order_acquire);
    return _isIdle.load(std::memory_order_acquire);
}

void LgServiceFatal::noteWritten()
{
    const std::uint64_t asked = _asked.load(std::memory_order_acquire);
    if (asked <= _written.load(std::memory_order_relaxed)) return;
    // The release pairs with the acquire of the thread that waits: its events are written.
    if (LgServiceThreads::isWrittenUpTo(asked)) _written.store(asked, std::memory_order_release);
}

} // namespace Zu

/// @file
/// Wakes who waits for something that happens often, at next to no cost while nobody waits.
/// Internal to the application kit.

#ifndef ZU_APP_LGBELL_H
#define ZU_APP_LGBELL_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace Zu
{

/// Any thread rings, any thread listens. Who rings has made something true before; who listens says
/// that it does, and looks once more whether the thing is true, before it sleeps. That needs a full
/// memory barrier between either side's write and read. It is all on the listener's side, which
/// makes every other thread pass one; so ringing costs a load while nobody listens. Where the
/// platform has no such barrier, ringing costs a locked instruction.
class LgBell
{
public:
    explicit LgBell(bool barrierWorks);

    /// Wakes all who listen.
    void ring()
    {
        // The compiler, too, must leave the load behind what was done before.
        std::atomic_signal_fence(std::memory_order_seq_cst);
        const bool heard =
            _barrierWorks ? _listening.load(std::memory_order_relaxed) != 0 : isHeard();
        if (heard) ringAloud();
    }

    /// Sleeps until it is rung, not at all if `happened()`; false if the limit has passed before.
    template <class Happened> bool listen(Happened happened, std::chrono::milliseconds limit)
    {
        const std::uint64_t round = announce();
        return happened() || sleep(round, limit);
    }

private:
    bool isHeard();
    void ringAloud();
    std::uint64_t announce();
    bool sleep(std::uint64_t round, std::chrono::milliseconds limit);

    const bool _barrierWorks;
    // 1 from when somebody listens until it is rung.
    std::atomic<std::uint32_t> _listening{0};
    std::mutex _mutex;
    std::condition_variable _rung;
    std::uint64_t _round = 0;
};

} // namespace Zu

#endif

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
/// platform has no such barrier, or refuses it once, ringing costs a locked instruction.
class LgBell
{
public:
    /// Makes every other thread of the process pass a full memory barrier; false if it can't.
    using Barrier = bool (*)();

    /// Null where there is no such barrier.
    explicit LgBell(Barrier barrier);

    /// Whether it is the listener who pays.
    bool usesBarrier() const
    {
        return _usesBarrier.load(std::memory_order_relaxed);
    }

    /// Whether somebody has said that it listens, and was not rung since.
    bool isListenedTo() const
    {
        return _listening.load(std::memory_order_relaxed) != 0;
    }

    /// Wakes all who listen.
    void ring()
    {
        // The compiler, too, must leave the load behind what was done before.
        std::atomic_signal_fence(std::memory_order_seq_cst);
        if (usesBarrier() ? isListenedTo() : isHeard()) ringAloud();
    }

    /// Sleeps until it is rung, not at all if `happened()`; false if the limit has passed before.
    template <class Happened> bool listen(Happened happened, std::chrono::milliseconds limit)
    {
        const std::uint64_t round = announce();
        return happened() || sleep(round, limit);
    }

    /// Forgets who listens; for the child of a fork, which has none of those threads, and must not
    /// use what they had locked or waited for.
    void beginAnewInChild();

private:
    // What who listens sleeps on.
    struct Bed
    {
        std::mutex _mutex;
        std::condition_variable _rung;
        std::uint64_t _round = 0;
    };

    bool isHeard();
    void ringAloud();
    std::uint64_t announce();
    bool sleep(std::uint64_t round, std::chrono::milliseconds limit);
    void giveBarrierUp();

    const Barrier _barrier;
    std::atomic<bool> _usesBarrier;
    // 1 from when somebody listens until it is rung.
    std::atomic<std::uint32_t> _listening{0};
    Bed _bed;
};

} // namespace Zu

#endif

/// @file
/// Wakes threads that wait for a frequent event, at next to no cost while nobody waits. Internal to
/// the application kit.

#ifndef ZU_APP_LGBELL_H
#define ZU_APP_LGBELL_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace Zu
{

/// Any thread may ring, any thread may listen. A thread makes a condition true before it rings. A
/// listener announces itself, then checks the condition once more before it sleeps. That needs a
/// full memory barrier between the write and the read on either side. The listener pays for both:
/// it makes every other thread pass a barrier, so ringing costs a load while nobody listens. Where
/// the platform has no such barrier, or refuses it once, ringing costs a locked instruction.
class LgBell
{
public:
    /// Makes every other thread of the process pass a full memory barrier; false if it can't.
    using Barrier = bool (*)();

    /// `barrier` is null where the platform has none.
    explicit LgBell(Barrier barrier);

    /// Whether the listener pays for the barrier.
    bool usesBarrier() const
    {
        return (_state.load(std::memory_order_relaxed) & WITHOUT_BARRIER) == 0;
    }

    /// Whether a listener has announced itself and has not been rung since.
    bool isListenedTo() const
    {
        return (_state.load(std::memory_order_relaxed) & LISTENING) != 0;
    }

    /// Whether ring() would do something, for who would rather not call it then.
    bool isWorthRinging() const
    {
        // The compiler, too, must not move the load before what was done earlier.
        std::atomic_signal_fence(std::memory_order_seq_cst);
        return _state.load(std::memory_order_relaxed) != 0;
    }

    /// Wakes all listeners. Returns whether setMark() has left a mark.
    bool ring()
    {
        return isWorthRinging() && ringAloud();
    }

    /// Leaves a mark for those who ring, or takes it away. They see it at no cost.
    void setMark(bool isMarked);

    /// Sleeps until the bell is rung, or not at all if `happened()` is true; false if the limit
    /// expires first.
    template <class Happened> bool listen(Happened happened, std::chrono::milliseconds limit)
    {
        const std::uint64_t round = announce();
        return happened() || sleep(round, limit);
    }

    /// Forgets the listeners; for the child of a fork, which has none of those threads, and must
    /// not use what they had locked or waited for.
    void beginAnewInChild();

private:
    // What listeners sleep on.
    struct Bed
    {
        std::mutex _mutex;
        std::condition_variable _rung;
        std::uint64_t _round = 0;
    };

    bool ringAloud();
    bool isHeard();
    std::uint64_t announce();
    bool sleep(std::uint64_t round, std::chrono::milliseconds limit);
    void giveBarrierUp();

    // From the announcement of a listener until the next ring.
    static constexpr std::uint32_t LISTENING = 1;
    static constexpr std::uint32_t WITHOUT_BARRIER = 2;
    static constexpr std::uint32_t MARKED = 4;

    const Barrier _barrier;
    // All that a ring depends on, so that it is one load.
    std::atomic<std::uint32_t> _state;
    Bed _bed;
};

} // namespace Zu

#endif

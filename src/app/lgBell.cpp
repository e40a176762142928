#include "app/lgBell.h"

#include <new>
#include <thread>

namespace Zu
{

LgBell::LgBell(Barrier barrier) : _barrier(barrier), _state(barrier ? 0 : WITHOUT_BARRIER) {}

void LgBell::setMark(bool isMarked)
{
    if (isMarked)
        _state.fetch_or(MARKED, std::memory_order_acq_rel);
    else
        _state.fetch_and(~MARKED, std::memory_order_acq_rel);
}

// A read-modify-write: either it sees the listener's mark, or the read-modify-write of announce()
// sees it, with everything done before it.
bool LgBell::isHeard()
{
    return (_state.fetch_add(0, std::memory_order_acq_rel) & LISTENING) != 0;
}

bool LgBell::ringAloud()
{
    const std::uint32_t state = _state.load(std::memory_order_relaxed);
    const bool isMarked = (state & MARKED) != 0;
    const bool isHeardNow = (state & WITHOUT_BARRIER) == 0 ? (state & LISTENING) != 0 : isHeard();
    if (!isHeardNow) return isMarked;
    if ((_state.fetch_and(~LISTENING, std::memory_order_acq_rel) & LISTENING) == 0) return isMarked;
    {
        const std::lock_guard guard(_bed._mutex);
        ++_bed._round;
    }
    _bed._rung.notify_all();
    return isMarked;
}

std::uint64_t LgBell::announce()
{
    const std::lock_guard guard(_bed._mutex);
    _state.fetch_or(LISTENING, std::memory_order_acq_rel);
    // From here on either a ringing thread sees the mark, or we see what it did before it rang.
    if (usesBarrier() && !_barrier()) giveBarrierUp();
    return _bed._round;
}

// A thread that rings at this moment may still rely on the barrier, and its earlier stores may
// still be on their way out of its processor. The sleep outlasts both by far; it happens once.
void LgBell::giveBarrierUp()
{
    _state.fetch_or(WITHOUT_BARRIER, std::memory_order_seq_cst);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

bool LgBell::sleep(std::uint64_t round, std::chrono::milliseconds limit)
{
    std::unique_lock lock(_bed._mutex);
    return _bed._rung.wait_for(lock, limit, [this, round] { return _bed._round != round; });
}

// The old objects are not destroyed: their destructors would wait for threads that do not exist
// here. A listener's mark may remain: it costs one ring that wakes nobody.
void LgBell::beginAnewInChild()
{
    new (&_bed) Bed;
}

} // namespace Zu

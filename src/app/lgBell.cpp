#include "app/lgBell.h"

#include <new>
#include <thread>

namespace Zu
{

LgBell::LgBell(Barrier barrier) : _barrier(barrier), _usesBarrier(barrier != nullptr) {}

// A read-modify-write: it either sees who listens, or is seen, with all that was done before it, by
// the one of announce().
bool LgBell::isHeard()
{
    return _listening.fetch_add(0, std::memory_order_acq_rel) != 0;
}

void LgBell::ringAloud()
{
    if (_listening.exchange(0, std::memory_order_acq_rel) == 0) return;
    {
        const std::lock_guard guard(_bed._mutex);
        ++_bed._round;
    }
    _bed._rung.notify_all();
}

std::uint64_t LgBell::announce()
{
    const std::lock_guard guard(_bed._mutex);
    _listening.exchange(1, std::memory_order_acq_rel);
    // From here on whoever rings sees the mark, or what it did before is seen by us.
    if (usesBarrier() && !_barrier()) giveBarrierUp();
    return _bed._round;
}

// Who rings at this moment may still trust in the barrier, and what it did before be on its way out
// of its processor. Both are over long before this is; it happens once.
void LgBell::giveBarrierUp()
{
    _usesBarrier.store(false, std::memory_order_seq_cst);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

bool LgBell::sleep(std::uint64_t round, std::chrono::milliseconds limit)
{
    std::unique_lock lock(_bed._mutex);
    return _bed._rung.wait_for(lock, limit, [this, round] { return _bed._round != round; });
}

// A destructor of the old ones would wait for threads that are not here. A mark of a listener may
// stay: it costs one ring that wakes nobody.
void LgBell::beginAnewInChild()
{
    new (&_bed) Bed;
}

} // namespace Zu

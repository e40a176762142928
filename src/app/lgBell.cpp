#include "app/lgBell.h"

#include "app/lgServicePlatform.h"

namespace Zu
{

LgBell::LgBell(bool barrierWorks) : _barrierWorks(barrierWorks) {}

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
        const std::lock_guard guard(_mutex);
        ++_round;
    }
    _rung.notify_all();
}

std::uint64_t LgBell::announce()
{
    const std::unique_lock guard(_mutex);
    _listening.exchange(1, std::memory_order_acq_rel);
    // From here on whoever rings sees the mark, or what it did before is seen by us.
    if (_barrierWorks) LgServicePlatform::barrier();
    return _round;
}

bool LgBell::sleep(std::uint64_t round, std::chrono::milliseconds limit)
{
    std::unique_lock lock(_mutex);
    return _rung.wait_for(lock, limit, [this, round] { return _round != round; });
}

} // namespace Zu

#include "app/lgLimit.h"

#include "base/hwCounter.h"
#include "base/lgStream.h"

namespace Zu
{

namespace
{

constexpr unsigned int SECOND_SHIFT = 32;
constexpr std::uint64_t LOW_BITS = 0xffff'ffff;

// The limits of all statements, the latest one first; none ever leaves.
std::atomic<LgLimit*> theFirst{nullptr};

std::uint64_t presentSecond()
{
    const std::uint64_t ticks = HwCounter::timeStamp();
    const auto numerator = static_cast<std::uint64_t>(HwCounter::getRateNumerator());
    const auto denominator = static_cast<std::uint64_t>(HwCounter::getRateDenominator());
    // In two steps, so that the product does not overflow.
    return ticks / numerator * denominator + ticks % numerator * denominator / numerator;
}

} // namespace

// The counters are independent of each other and order nothing, so they are relaxed; pairs of them
// are exact because each execution changes one of them once.

bool LgLimit::letsThrough(LgTypes::Level level)
{
    return count(_kind == Kind::EveryNth ? isNth() : isWithinSecond(presentSecond()), level);
}

bool LgLimit::letsThroughIn(std::uint64_t second, LgTypes::Level level)
{
    return count(_kind == Kind::EveryNth ? isNth() : isWithinSecond(second), level);
}

bool LgLimit::isNth()
{
    return _state.fetch_add(1, std::memory_order_relaxed) % _number == 0;
}

bool LgLimit::isWithinSecond(std::uint64_t second)
{
    const std::uint64_t present = second & LOW_BITS;
    std::uint64_t state = _state.load(std::memory_order_relaxed);
    for (;;)
    {
        // A thread that was interrupted may come with a second that is over.
        const bool isLater = present > state >> SECOND_SHIFT;
        if (isLater)
        {
            if (_state.compare_exchange_weak(state, present << SECOND_SHIFT | 1U,
                                             std::memory_order_relaxed))
                return true;
        }
        else if ((state & LOW_BITS) >= _number)
            return false;
        else if (_state.compare_exchange_weak(state, state + 1, std::memory_order_relaxed))
            return true;
    }
}

bool LgLimit::count(bool isWritten, LgTypes::Level level)
{
    // Pairs with the exchange in enlist(), of which only one finds it false.
    if (!_isListed.load(std::memory_order_relaxed)) enlist(level);
    (isWritten ? _written : _leftOut).fetch_add(1, std::memory_order_relaxed);
    return isWritten;
}

void LgLimit::enlist(LgTypes::Level level)
{
    if (_isListed.exchange(true, std::memory_order_relaxed)) return;
    _level = level;
    _next = theFirst.load(std::memory_order_relaxed);
    // Pairs with the acquire in visitAll(), which so sees the members.
    while (!theFirst.compare_exchange_weak(_next, this, std::memory_order_release,
                                           std::memory_order_relaxed))
        continue;
}

std::uint64_t LgLimit::takeLeftOut()
{
    // First what is reported: what is left out is then not less.
    std::uint64_t reported = _reported.load(std::memory_order_relaxed);
    const std::uint64_t leftOut = _leftOut.load(std::memory_order_relaxed);
    while (reported < leftOut)
        if (_reported.compare_exchange_weak(reported, leftOut, std::memory_order_relaxed))
            return leftOut - reported;
    return 0;
}

std::uint64_t LgLimit::getWrittenCount() const
{
    return _written.load(std::memory_order_relaxed);
}

std::uint64_t LgLimit::getLeftOutCount() const
{
    return _leftOut.load(std::memory_order_relaxed);
}

std::uint64_t LgLimit::getOwedCount() const
{
    const std::uint64_t reported = _reported.load(std::memory_order_relaxed);
    const std::uint64_t leftOut = _leftOut.load(std::memory_order_relaxed);
    // Relaxed loads may come in another order.
    return reported < leftOut ? leftOut - reported : 0;
}

void LgLimit::visitAll(const Visitor& visitor)
{
    for (LgLimit* limit = theFirst.load(std::memory_order_acquire); limit; limit = limit->_next)
        visitor(*limit);
}

void LgLeftOut::insertInto(LgStream& stream) const
{
    if (const std::uint64_t leftOut = _limit->takeLeftOut())
        stream << " (" << leftOut << " left out)";
}

} // namespace Zu

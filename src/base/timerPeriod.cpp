#include "base/timerPeriod.h"

#include "base/dtArithmetic.h"

namespace Zu
{

double TimerPeriod::resolution()
{
    return timerMinimumPeriod() * 0.001;
}

std::uint32_t TimerPeriod::milliseconds()
{
    return timerMilliseconds(resolution());
}

std::uint32_t timerMilliseconds(double seconds)
{
    const std::int64_t milliseconds = DtArithmetic::truncate(seconds * 1000.0);
    return milliseconds < 0 ? 0 : static_cast<std::uint32_t>(milliseconds);
}

} // namespace Zu

#include "base/timerPeriod.h"

#include "base/dtArithmetic.h"

#include <algorithm>

namespace Zu
{

TimerPeriod::TimerPeriod(const TimerService& service)
    : _service(service), _milliseconds(milliseconds(service))
{
    _service._beginPeriod(_milliseconds);
}

TimerPeriod::~TimerPeriod()
{
    _service._endPeriod(_milliseconds);
}

double TimerPeriod::resolution(const TimerService& service)
{
    return service._shortestPeriod() * 0.001;
}

std::uint32_t TimerPeriod::milliseconds(const TimerService& service)
{
    return timerMilliseconds(resolution(service));
}

std::uint32_t timerMilliseconds(double seconds)
{
    const std::int64_t milliseconds = DtArithmetic::truncate(seconds * 1000.0);
    return milliseconds < 0 ? 0 : static_cast<std::uint32_t>(milliseconds);
}

bool timerSleep(double seconds, std::uint32_t longest,
                const std::function<void(std::uint32_t)>& wait)
{
    const std::uint32_t milliseconds = timerMilliseconds(seconds);
    if (milliseconds == 0) return false;
    for (std::uint32_t left = milliseconds; left > 0;)
    {
        const std::uint32_t length = std::min(left, longest);
        wait(length);
        left -= length;
    }
    return true;
}

} // namespace Zu

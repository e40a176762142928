#include "base/timerPeriod.h"

#include <windows.h>

#include <timeapi.h>

namespace Zu
{

std::uint32_t timerMinimumPeriod()
{
    TIMECAPS capabilities{1, 0};
    timeGetDevCaps(&capabilities, sizeof capabilities);
    return capabilities.wPeriodMin;
}

TimerPeriod::TimerPeriod() : _milliseconds(milliseconds())
{
    timeBeginPeriod(_milliseconds);
}

TimerPeriod::~TimerPeriod()
{
    timeEndPeriod(_milliseconds);
}

} // namespace Zu

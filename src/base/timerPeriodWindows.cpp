#include "base/timerPeriod.h"

#include <windows.h>

#include <timeapi.h>

namespace Zu
{

namespace
{

std::uint32_t shortestPeriod()
{
    TIMECAPS capabilities{1, 0};
    timeGetDevCaps(&capabilities, sizeof capabilities);
    return capabilities.wPeriodMin;
}

} // namespace

const TimerService theTimerService{shortestPeriod,
                                   [](std::uint32_t period) { timeBeginPeriod(period); },
                                   [](std::uint32_t period) { timeEndPeriod(period); }};

} // namespace Zu

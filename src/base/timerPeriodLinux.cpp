#include "base/timerPeriod.h"

namespace Zu
{

// The system's timers are finer; milliseconds are what the timers of this library are set in.
std::uint32_t timerMinimumPeriod()
{
    return 1;
}

// The precision of timers is always the best here.
TimerPeriod::TimerPeriod() : _milliseconds(milliseconds()) {}

TimerPeriod::~TimerPeriod() = default;

} // namespace Zu

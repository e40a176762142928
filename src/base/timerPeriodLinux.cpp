#include "base/timerPeriod.h"

namespace Zu
{

// The system's timers are finer, and always have their best precision. The timers of this library
// are set in milliseconds.
const TimerService theTimerService{[] { return std::uint32_t{1}; }, [](std::uint32_t) {},
                                   [](std::uint32_t) {}};

} // namespace Zu

#include "base/timerPeriod.h"

namespace Zu
{

// The system's timers are finer, and their precision is always the best; milliseconds are what the
// timers of this library are set in.
const TimerService theTimerService{[] { return std::uint32_t{1}; }, [](std::uint32_t) {},
                                   [](std::uint32_t) {}};

} // namespace Zu

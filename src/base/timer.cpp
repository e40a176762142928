#include "base/timer.h"

#include "base/plainNumber.h"
#include "base/profilerReport.h"

#include <ostream>

namespace Zu
{

TimerBase::~TimerBase() = default;

std::ostream& operator<<(std::ostream& os, const TimerBase& timer)
{
    return os << "Timer " << ProfilerReport::shownName(timer)
              << ": Total = " << plainNumber(timer.totalTime());
}

} // namespace Zu

#include "base/timer.h"

#include "base/withoutNaNSign.h"

#include <ostream>

namespace Zu
{

TimerBase::~TimerBase() = default;

std::ostream& operator<<(std::ostream& os, const TimerBase& timer)
{
    return os << "Timer " << timer.getName() << ": Total = " << withoutNaNSign(timer.totalTime());
}

} // namespace Zu

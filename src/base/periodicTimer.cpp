#include "base/periodicTimer.h"

#include "base/periodicTimerBeat.h"
#include "base/sleeper.h"
#include "base/timerPeriod.h"

namespace Zu
{

PeriodicTimer::PeriodicTimer(double interval) : _startTime(0), _interval(interval), _running(false)
{
}

PeriodicTimer::PeriodicTimer(const PeriodicTimer& other) : PeriodicTimer(other._interval) {}

PeriodicTimer& PeriodicTimer::operator=(const PeriodicTimer& other)
{
    if (this != &other) setInterval(other._interval);
    return *this;
}

PeriodicTimer::~PeriodicTimer() = default;

double PeriodicTimer::getInterval() const
{
    return _interval;
}

double PeriodicTimer::getCurrentTime() const
{
    return Sleeper::getInstance().getTime();
}

std::uint32_t PeriodicTimer::getCurrentCount() const
{
    if (!_running) return 0;
    return periodicTimerCount(getCurrentTime() - _startTime, _interval);
}

double PeriodicTimer::getResolution()
{
    return TimerPeriod::resolution();
}

} // namespace Zu

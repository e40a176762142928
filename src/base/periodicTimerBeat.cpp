#include "base/periodicTimerBeat.h"

#include "base/dtArithmetic.h"
#include "base/ieeeDivide.h"
#include "base/sleeper.h"
#include "base/timerPeriod.h"

namespace Zu
{

std::uint32_t periodicTimerCount(double elapsed, double interval)
{
    return static_cast<std::uint32_t>(DtArithmetic::floor(ieeeDivide(elapsed, interval) + 0.5));
}

PeriodicTimerBeat::PeriodicTimerBeat(double interval) : PeriodicTimer(interval) {}

PeriodicTimerBeat::~PeriodicTimerBeat() = default;

bool PeriodicTimerBeat::start()
{
    if (_running) return false;
    // This may raise, so it comes before any beat.
    Sleeper& sleeper = Sleeper::getInstance();
    _running = true;
    beginBeat(timerMilliseconds(_interval));
    try
    {
        _startTime = sleeper.getTime();
    }
    catch (...)
    {
        stop();
        throw;
    }
    return true;
}

bool PeriodicTimerBeat::stop()
{
    if (!_running) return false;
    _running = false;
    endBeat();
    return true;
}

std::uint32_t PeriodicTimerBeat::wait()
{
    waitForBeat(NO_LIMIT);
    return getCurrentCount();
}

double PeriodicTimerBeat::setInterval(double interval)
{
    const bool wasRunning = stop();
    _interval = interval;
    if (wasRunning) start();
    return interval;
}

bool PeriodicTimerBeat::isBeating(double resolution, const std::function<double()>& now)
{
    const bool wasStarted = start();
    bool isGood = false;
    try
    {
        isGood = hasGoodBeat(resolution, now);
    }
    catch (...)
    {
        // The destructor will not run if the calling constructor fails.
        if (wasStarted) stop();
        throw;
    }
    if (wasStarted) stop();
    return isGood;
}

bool PeriodicTimerBeat::hasGoodBeat(double resolution, const std::function<double()>& now)
{
    // Longer than the check, so that a wait that ends without a beat fails it.
    constexpr int LIMIT = 600;
    constexpr double PATIENCE = 0.5;
    const double window = resolution * 2.0;
    const double checkStart = now();
    for (;;)
    {
        const double waitStart = now();
        waitForBeat(LIMIT);
        const double end = now();
        const double waited = end - waitStart;
        if (end - checkStart > PATIENCE) return false;
        if (waited >= _interval - window && waited <= _interval + window) return true;
    }
}

} // namespace Zu

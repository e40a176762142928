#include "base/sleeper.h"

#include "base/osCpuInfo.h"
#include "base/timerPeriod.h"

#include <cerrno>
#include <cstdint>
#include <ctime>
#include <limits>
#include <sys/prctl.h>

namespace Zu
{

namespace
{

// One wait is enough for any time.
constexpr std::uint32_t LONGEST = std::numeric_limits<std::uint32_t>::max();

// Lets the system wake the thread on time: otherwise it coalesces wake-ups within 50 microseconds.
class ExactWakeUp
{
public:
    ExactWakeUp() : _slack(prctl(PR_GET_TIMERSLACK))
    {
        prctl(PR_SET_TIMERSLACK, 1UL);
    }

    ExactWakeUp(const ExactWakeUp&) = delete;
    ExactWakeUp& operator=(const ExactWakeUp&) = delete;

    ~ExactWakeUp()
    {
        if (_slack > 0) prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(_slack));
    }

private:
    int _slack;
};

void sleepFor(std::uint32_t milliseconds)
{
    // The thread sleeps its full time even if signals interrupt it, so the end is an absolute time.
    timespec end;
    clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_sec += milliseconds / 1000;
    end.tv_nsec += milliseconds % 1000 * 1000000L;
    if (end.tv_nsec >= 1000000000L)
    {
        ++end.tv_sec;
        end.tv_nsec -= 1000000000L;
    }
    const ExactWakeUp exact;
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) continue;
}

} // namespace

class SleeperLinux final : public Sleeper
{
public:
    SleeperLinux() : _secondsPerTick(1.0 / static_cast<double>(OsCpuInfo::getHwCounterFrequency()))
    {
    }

    double getTime() override
    {
        return static_cast<double>(OsCpuInfo::getHwCounterValue()) * _secondsPerTick;
    }

    double getResolution() override
    {
        return TimerPeriod::resolution();
    }

    bool sleep(double seconds) override
    {
        return timerSleep(seconds, LONGEST, sleepFor);
    }

private:
    double _secondsPerTick;
};

Sleeper* Sleeper::create()
{
    return new SleeperLinux;
}

// A thread needs no preparation here.
void Sleeper::prepareThread(Sleeper&) {}

} // namespace Zu

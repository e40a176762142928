#include "base/periodicTimerBeat.h"

#include "base/exRaise.h"
#include "base/internalAssert.h"
#include "base/osDescriptor.h"
#include "base/sleeper.h"

#include <cerrno>
#include <poll.h>
#include <sys/timerfd.h>
#include <unistd.h>

namespace Zu
{

namespace
{

// A descriptor that becomes readable when a beat has come.
class Timer
{
public:
    Timer()
        : _descriptor(osAboveStandard(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)))
    {
        if (_descriptor.get() < 0) ZU_RAISE_LAST_ERROR();
    }

    // 0 ends the beat.
    void set(std::uint32_t milliseconds)
    {
        const timespec time{milliseconds / 1000, milliseconds % 1000 * 1000000L};
        const itimerspec times{time, time};
        timerfd_settime(_descriptor.get(), 0, &times, nullptr);
    }

    void reset()
    {
        std::uint64_t beats;
        while (read(_descriptor.get(), &beats, sizeof beats) < 0 && errno == EINTR) continue;
    }

    void wait(int limit)
    {
        pollfd entry{_descriptor.get(), POLLIN, 0};
        while (poll(&entry, 1, limit) < 0 && errno == EINTR) continue;
    }

private:
    const OsDescriptor _descriptor;
};

} // namespace

class PeriodicTimerLinux final : public PeriodicTimerBeat
{
public:
    explicit PeriodicTimerLinux(double interval) : PeriodicTimerBeat(interval)
    {
        const bool beats = isBeating(getResolution(), [this] { return getCurrentTime(); });
        ZU_INTERNAL_ASSERT_TEXT(beats, "waitBeating( *this )");
    }

private:
    void beginBeat(std::uint32_t milliseconds) override
    {
        _timer.set(milliseconds);
    }

    void endBeat() override
    {
        _timer.set(0);
    }

    void waitForBeat(int limit) override
    {
        _timer.reset();
        _timer.wait(limit);
    }

    Timer _timer;
};

PeriodicTimer* PeriodicTimer::create(double interval)
{
    return new PeriodicTimerLinux(interval);
}

} // namespace Zu

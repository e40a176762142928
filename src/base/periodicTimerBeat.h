/// @file
/// A periodic timer but for the beat itself, which is the platform's. Internal to the library.

#ifndef ZU_BASE_PERIODICTIMERBEAT_H
#define ZU_BASE_PERIODICTIMERBEAT_H

#include "periodicTimer.h"

#include <cstdint>
#include <functional>

namespace Zu
{

/// The intervals that have gone by, rounded to the nearest whole number, of which the low 32 bits
/// count.
std::uint32_t periodicTimerCount(double elapsed, double interval);

class PeriodicTimerBeat : public PeriodicTimer
{
public:
    bool start() final;
    bool stop() final;
    std::uint32_t wait() final;
    double setInterval(double interval) final;

protected:
    explicit PeriodicTimerBeat(double interval);
    PeriodicTimerBeat(const PeriodicTimerBeat&) = delete;
    PeriodicTimerBeat& operator=(const PeriodicTimerBeat&) = delete;
    ~PeriodicTimerBeat() override;

    static constexpr int NO_LIMIT = -1;

    /// Lets the timer beat until a beat comes within two resolutions of the interval, or half a
    /// second is over: then it is false. All in seconds; `now` tells the time.
    bool isBeating(double resolution, const std::function<double()>& now);

private:
    bool hasGoodBeat(double resolution, const std::function<double()>& now);

    /// Sets the platform's timer, to a first beat after so many milliseconds; none for 0.
    virtual void beginBeat(std::uint32_t milliseconds) = 0;
    virtual void endBeat() = 0;

    /// Forgets beats that have come, and waits for the next, at most for so many milliseconds.
    virtual void waitForBeat(int limit) = 0;
};

} // namespace Zu

#endif

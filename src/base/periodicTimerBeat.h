/// @file
/// A periodic timer except for the beat itself, which the platform provides. Internal to the
/// library.

#ifndef ZU_BASE_PERIODICTIMERBEAT_H
#define ZU_BASE_PERIODICTIMERBEAT_H

#include "periodicTimer.h"

#include <cstdint>
#include <functional>

namespace Zu
{

/// The number of elapsed intervals, rounded to the nearest whole number; only its low 32 bits are
/// kept.
std::uint32_t periodicTimerCount(double elapsed, double interval);

class PeriodicTimerBeat : public PeriodicTimer
{
public:
    PeriodicTimerBeat(const PeriodicTimerBeat&) = delete;
    PeriodicTimerBeat& operator=(const PeriodicTimerBeat&) = delete;

    bool start() final;
    bool stop() final;
    std::uint32_t wait() final;
    double setInterval(double interval) final;

protected:
    explicit PeriodicTimerBeat(double interval);
    ~PeriodicTimerBeat() override;

    static constexpr int NO_LIMIT = -1;

    /// Lets the timer beat until a beat comes within two resolutions of the interval; false if none
    /// does within half a second. All in seconds; `now` returns the time.
    bool isBeating(double resolution, const std::function<double()>& now);

private:
    bool hasGoodBeat(double resolution, const std::function<double()>& now);

    /// Sets the platform's timer to a first beat after so many milliseconds; 0 means no beat.
    virtual void beginBeat(std::uint32_t milliseconds) = 0;
    virtual void endBeat() = 0;

    /// Discards the beats that have come, and waits at most so many milliseconds for the next.
    virtual void waitForBeat(int limit) = 0;
};

} // namespace Zu

#endif

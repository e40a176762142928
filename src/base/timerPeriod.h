/// @file
/// The unit of the platform's timer service, and times in its milliseconds. Internal to the
/// library.

#ifndef ZU_BASE_TIMERPERIOD_H
#define ZU_BASE_TIMERPERIOD_H

#include <cstdint>
#include <functional>

namespace Zu
{

/// What the platform's timer service offers. Periods are in milliseconds.
struct TimerService
{
    /// What it states as the shortest period of timers.
    std::uint32_t (*_shortestPeriod)();

    /// @{
    /// Ask for a precision and release it; paired.
    void (*_beginPeriod)(std::uint32_t period);
    void (*_endPeriod)(std::uint32_t period);
    /// @}
};

/// That of this platform.
extern const TimerService theTimerService;

/// Asks the platform for its best timer precision as long as one lives.
class TimerPeriod
{
public:
    /// The service must outlive the period.
    explicit TimerPeriod(const TimerService& service = theTimerService);
    TimerPeriod(const TimerPeriod&) = delete;
    TimerPeriod& operator=(const TimerPeriod&) = delete;
    ~TimerPeriod();

    /// The shortest period of the service's timers, in seconds.
    static double resolution(const TimerService& service = theTimerService);

    /// The same in whole milliseconds, truncated.
    static std::uint32_t milliseconds(const TimerService& service = theTimerService);

private:
    const TimerService& _service;
    std::uint32_t _milliseconds;
};

/// A time as timers take it: truncated to milliseconds, of which the low 32 bits count. 0, which no
/// timer takes, for a negative time and for what no 64-bit integer holds.
std::uint32_t timerMilliseconds(double seconds);

/// Sleeps for a time by waits of so many milliseconds each, none longer than `longest`. False,
/// without a wait, for a time of no millisecond.
bool timerSleep(double seconds, std::uint32_t longest,
                const std::function<void(std::uint32_t)>& wait);

} // namespace Zu

#endif

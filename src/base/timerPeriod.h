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
    /// The shortest period of timers that it reports.
    std::uint32_t (*_shortestPeriod)();

    /// @{
    /// Request a precision and release it; calls are paired.
    void (*_beginPeriod)(std::uint32_t period);
    void (*_endPeriod)(std::uint32_t period);
    /// @}
};

/// The service of this platform.
extern const TimerService theTimerService;

/// Requests the platform's best timer precision as long as an object exists.
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

/// A time in the form that timers accept: truncated to milliseconds, of which only the low 32 bits
/// count. 0, which no timer accepts, for a negative time and for one that no 64-bit integer can
/// hold.
std::uint32_t timerMilliseconds(double seconds);

/// Sleeps for a time by waits of so many milliseconds each, none longer than `longest`. Returns
/// false without waiting if timerMilliseconds() gives 0.
bool timerSleep(double seconds, std::uint32_t longest,
                const std::function<void(std::uint32_t)>& wait);

} // namespace Zu

#endif

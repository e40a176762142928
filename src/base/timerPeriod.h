/// @file
/// The unit of the platform's timer service, and times in its milliseconds. Internal to the
/// library.

#ifndef ZU_BASE_TIMERPERIOD_H
#define ZU_BASE_TIMERPERIOD_H

#include <cstdint>

namespace Zu
{

/// Asks the platform for its best timer precision as long as one lives.
class TimerPeriod
{
public:
    TimerPeriod();
    TimerPeriod(const TimerPeriod&) = delete;
    TimerPeriod& operator=(const TimerPeriod&) = delete;
    ~TimerPeriod();

    /// The shortest period of the platform's timers, in seconds.
    static double resolution();

    /// The same in whole milliseconds, truncated.
    static std::uint32_t milliseconds();

private:
    std::uint32_t _milliseconds;
};

/// A time as timers take it: truncated to milliseconds, of which the low 32 bits count. 0, which no
/// timer takes, for a negative time and for what no 64-bit integer holds.
std::uint32_t timerMilliseconds(double seconds);

/// What the platform states as its shortest period of timers, in milliseconds.
std::uint32_t timerMinimumPeriod();

} // namespace Zu

#endif

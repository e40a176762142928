/// @file
/// A steady beat for a waiting thread.

#ifndef ZU_BASE_PERIODICTIMER_H
#define ZU_BASE_PERIODICTIMER_H

#include "baseApi.h"

#include <cstdint>

namespace Zu
{

/// Releases a waiting thread at every interval, and tells how many beats have gone by. A beat that
/// comes between two calls of wait() is missed; so the count, and not the number of returns, is
/// the true measure. Needs the package "profiling": without it, what reads the time raises
/// InSingletonEx::ExNotInitialized.
///
/// Thread-safety: a timer is for one waiting thread, and of one thread at a time.
class ZU_BASE_API PeriodicTimer
{
public:
    /// Ends the beat.
    virtual ~PeriodicTimer();

    /// Starts the beat, and its count at 0; false if it runs already.
    virtual bool start() = 0;

    /// Stops the beat; false if it doesn't run.
    virtual bool stop() = 0;

    /// Waits for the next beat, without a limit, and returns getCurrentCount(). A timer that is
    /// stopped, or whose interval is below a millisecond, has no next beat; nor does a timer that
    /// is stopped meanwhile release who waits.
    virtual std::uint32_t wait() = 0;

    /// Sets the interval and returns it. A running timer goes on with a new start, a stopped one
    /// stays so. Whether the platform delivers the interval is not checked again.
    virtual double setInterval(double interval) = 0;

    /// A new timer, stopped, owned by the caller. The beat comes every `interval` seconds,
    /// truncated to milliseconds.
    ///
    /// The timer is tried out at once: a beat must come within two resolutions of its interval.
    /// That takes one beat where all is well. If no such beat comes within half a second, the
    /// process ends with the failed assertion "waitBeating( *this )". So, by design, it does for an
    /// interval of half a second or more, and for one below a millisecond. Raises
    /// ExSysErrorWindows if the platform has no timer to give.
    static PeriodicTimer* create(double interval);

    /// Seconds from one beat to the next.
    double getInterval() const;

    /// The time of Sleeper, in seconds.
    double getCurrentTime() const;

    /// How many beats have gone by since the start: the intervals, to the nearest one, which
    /// leaves room for a beat's jitter. 0 for a stopped timer.
    std::uint32_t getCurrentCount() const;

    /// The shortest period of the platform's timers, in seconds.
    static double getResolution();

    /// Sets the other one's interval, as setInterval() does; each timer has a beat of its own.
    PeriodicTimer& operator=(const PeriodicTimer& other);

protected:
    /// Stopped, with this interval in seconds.
    explicit PeriodicTimer(double interval);

    /// Stopped, with the interval of the other one.
    PeriodicTimer(const PeriodicTimer& other);

    /// When the beat started, in seconds of getCurrentTime().
    double _startTime;
    /// Seconds from one beat to the next.
    double _interval;
    /// Whether the beat runs.
    bool _running;
};

} // namespace Zu

#endif

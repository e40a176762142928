/// @file
/// A steady beat for a waiting thread.

#ifndef ZU_BASE_PERIODICTIMER_H
#define ZU_BASE_PERIODICTIMER_H

#include "baseApi.h"

#include <cstdint>

namespace Zu
{

/// Releases a waiting thread at every interval, and counts the beats. A beat that comes between two
/// calls of wait() is missed, so the count, not the number of returns, is the true measure. Needs
/// the package "profiling": without it, operations that read the time raise
/// InSingletonEx::ExNotInitialized.
///
/// Thread-safety: a timer serves one waiting thread, and belongs to one thread at a time.
class ZU_BASE_API PeriodicTimer
{
public:
    /// Stops the beat.
    virtual ~PeriodicTimer();

    /// Starts the beat, with its count at 0; false if it is already running.
    virtual bool start() = 0;

    /// Stops the beat; false if it isn't running.
    virtual bool stop() = 0;

    /// Waits for the next beat, without a time limit, and returns getCurrentCount(). A timer that
    /// is stopped, or whose interval is below a millisecond, has no next beat. Stopping a timer
    /// does not release a waiting thread.
    virtual std::uint32_t wait() = 0;

    /// Sets the interval and returns it. A running timer is restarted; a stopped one stays stopped.
    /// Whether the platform delivers the interval is not checked again.
    virtual double setInterval(double interval) = 0;

    /// A new timer, stopped, owned by the caller. The beat comes every `interval` seconds,
    /// truncated to milliseconds.
    ///
    /// The timer is tested at once: a beat must come within two resolutions of its interval, which
    /// takes one beat if all is well. If no such beat comes within half a second, the process ends
    /// with the failed assertion "waitBeating( *this )". By design that includes every interval of
    /// half a second or more, and every one below a millisecond. Raises ExSysErrorWindows if the
    /// platform has no timer available.
    static PeriodicTimer* create(double interval);

    /// Seconds from one beat to the next.
    double getInterval() const;

    /// The time that Sleeper reports, in seconds.
    double getCurrentTime() const;

    /// The number of beats since the start: the elapsed intervals, rounded to the nearest whole
    /// number, which leaves room for a beat's jitter. 0 for a stopped timer.
    std::uint32_t getCurrentCount() const;

    /// The shortest period of the platform's timers, in seconds.
    static double getResolution();

    /// Takes over the other timer's interval, as setInterval() does; each timer has its own beat.
    PeriodicTimer& operator=(const PeriodicTimer& other);

protected:
    /// Stopped, with this interval in seconds.
    explicit PeriodicTimer(double interval);

    /// Stopped, with the interval of the other timer.
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

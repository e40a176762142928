/// @file
/// Adds up the time of any number of spans.

#ifndef ZU_BASE_TIMER_H
#define ZU_BASE_TIMER_H

#include "baseApi.h"
#include "intervalTimer.h"

#include <iosfwd>

namespace Zu
{

/// A total of spans, for either kind of clock. A timer belongs to one thread at a time.
class ZU_BASE_API TimerBase
{
public:
    TimerBase() = default;
    TimerBase(const TimerBase&) = default;
    TimerBase& operator=(const TimerBase&) = default;
    virtual ~TimerBase();

    /// @{
    /// The name is kept as a pointer.
    virtual void setName(const char* name) = 0;
    virtual const char* getName() const = 0;
    /// @}

    /// Begins a span; the total stays.
    virtual void start() = 0;

    /// Adds the span since the last start, at every call.
    virtual void stop() = 0;

    /// Stops the timer, with the total 0.
    virtual void reset() = 0;

    /// The seconds of all spans, including a running one so far.
    virtual double totalTime() const = 0;
};

/// A total of spans of an interval timer: HwIntervalTimer or TodIntervalTimer.
template <class T> class ZU_BASE_VISIBLE Timer : public TimerBase
{
public:
    /// Stopped, with the total 0. The name is kept as a pointer.
    explicit Timer(const char* name = "anonymous") : _timer(name) {}

    void setName(const char* name) override
    {
        _timer.setName(name);
    }

    const char* getName() const override
    {
        return _timer.getName();
    }

    void start() override
    {
        _stopped = false;
        _timer.start();
    }

    void stop() override
    {
        _stopped = true;
        _timer.stop();
        _total += _timer.timeInterval();
    }

    void reset() override
    {
        _stopped = true;
        _total = 0;
    }

    double totalTime() const override
    {
        return _stopped ? _total : _timer.sinceStart() + _total;
    }

private:
    bool _stopped = true;
    T _timer;
    double _total = 0;
};

/// Writes "Timer <name>: Total = <seconds>", the number as the stream formats it.
ZU_BASE_API std::ostream& operator<<(std::ostream& os, const TimerBase& timer);

} // namespace Zu

#endif

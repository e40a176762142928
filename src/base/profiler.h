/// @file
/// Statistics over the cycles of a repeated job.

#ifndef ZU_BASE_PROFILER_H
#define ZU_BASE_PROFILER_H

#include "baseApi.h"
#include "intervalTimer.h"
#include "lgStream.h"

#include <cmath>
#include <iosfwd>
#include <limits>

namespace Zu
{

/// Statistics of cycles, for either kind of clock. A cycle consists of any number of spans, each
/// from a start to a stop, and ends with endCycle(). All times are in seconds. A profiler belongs
/// to one thread at a time.
class ZU_BASE_API ProfilerBase
{
public:
    ProfilerBase() = default;
    ProfilerBase(const ProfilerBase&) = default;
    ProfilerBase& operator=(const ProfilerBase&) = default;
    virtual ~ProfilerBase();

    /// @{
    /// The name is kept as a pointer.
    virtual void setName(const char* name) = 0;
    virtual const char* getName() const = 0;
    /// @}

    /// Begins a span of the cycle.
    virtual void start() = 0;

    /// Adds the span since the last start to the cycle, at every call.
    virtual void stop() = 0;

    /// Closes the cycle, which counts even if nothing was started in it.
    virtual void endCycle() = 0;

    /// Discards all cycles.
    virtual void reset() = 0;

    /// The time of the running cycle so far.
    virtual double cycleTime() const = 0;

    /// @{
    /// Over all closed cycles, like the figures that follow. Each is 0 if there are none.
    virtual double totalTime() const = 0;
    virtual double averageTime() const = 0;
    virtual double minTime() const = 0;
    virtual double maxTime() const = 0;
    /// @}

    /// The sample standard deviation; 0 for fewer than two cycles. It is deliberately computed from
    /// running sums: when all cycles took the same time, rounding may make it a NaN.
    virtual double standardDeviation() const = 0;

    /// How many cycles were closed.
    virtual int cycles() const = 0;
};

/// Statistics of the spans of an interval timer: HwIntervalTimer or TodIntervalTimer.
template <class T> class ZU_BASE_VISIBLE Profiler : public ProfilerBase
{
public:
    /// The name is kept as a pointer.
    explicit Profiler(const char* name = "anonymous") : _timer(name) {}

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
        _timer.start();
    }

    void stop() override
    {
        _timer.stop();
        _cycleTime += _timer.timeInterval();
    }

    void endCycle() override
    {
        const double x = _cycleTime;
        _total += x;
        _sumOfSquares += x * x;
        if (x < _minimum) _minimum = x;
        if (x > _maximum) _maximum = x;
        ++_cycles;
        _cycleTime = 0;
    }

    void reset() override
    {
        _cycleTime = 0;
        _total = 0;
        _sumOfSquares = 0;
        _minimum = std::numeric_limits<double>::max();
        _maximum = 0;
        _cycles = 0;
    }

    double cycleTime() const override
    {
        return _cycleTime;
    }

    double totalTime() const override
    {
        return _total;
    }

    double averageTime() const override
    {
        return _cycles == 0 ? 0.0 : _total / _cycles;
    }

    double minTime() const override
    {
        return _cycles == 0 ? 0.0 : _minimum;
    }

    double maxTime() const override
    {
        return _maximum;
    }

    double standardDeviation() const override
    {
        if (_cycles < 2) return 0.0;
        return std::sqrt((_sumOfSquares - _total * _total / _cycles) / (_cycles - 1));
    }

    int cycles() const override
    {
        return _cycles;
    }

private:
    T _timer;
    double _cycleTime = 0;
    double _total = 0;
    double _sumOfSquares = 0;
    double _minimum = std::numeric_limits<double>::max();
    double _maximum = 0;
    int _cycles = 0;
};

/// One span of a profiler, for the duration of a scope.
class ProfilerSpan
{
public:
    /// Starts the profiler, which must outlive the span; the end of the span stops it.
    explicit ProfilerSpan(ProfilerBase& profiler) : _profiler(profiler)
    {
        _profiler.start();
    }

    ProfilerSpan(const ProfilerSpan&) = delete;
    ProfilerSpan& operator=(const ProfilerSpan&) = delete;

    ~ProfilerSpan()
    {
        _profiler.stop();
    }

private:
    ProfilerBase& _profiler;
};

/// One cycle of a profiler, for the duration of a scope; the spans in it are measured.
class ProfilerCycle
{
public:
    /// The profiler must outlive this object, whose end closes the profiler's cycle.
    explicit ProfilerCycle(ProfilerBase& profiler) : _profiler(profiler) {}
    ProfilerCycle(const ProfilerCycle&) = delete;
    ProfilerCycle& operator=(const ProfilerCycle&) = delete;

    ~ProfilerCycle()
    {
        _profiler.endCycle();
    }

private:
    ProfilerBase& _profiler;
};

/// Writes name, number of cycles and the six figures, one per line, and an empty line. The stream's
/// precision applies; its flags, width and fill character are restored.
ZU_BASE_API std::ostream& operator<<(std::ostream& os, const ProfilerBase& profiler);

/// Writes the same figures with nine decimals, in lines of another form: a log's reports are
/// aligned, and end in one more empty line.
ZU_BASE_API LgStream& operator<<(LgStream& stream, const ProfilerBase& profiler);

} // namespace Zu

#endif

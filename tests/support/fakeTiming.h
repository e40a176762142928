// Clocks and figures set by a test, for code that measures and reports times.

#ifndef ZU_TESTS_FAKETIMING_H
#define ZU_TESTS_FAKETIMING_H

#include "base/intervalTimer.h"
#include "base/profiler.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace support
{

// An interval timer whose clock only changes when it is set. It has no default name, so a name
// always comes from the object that contains it.
class FakeIntervalTimer : public Zu::IntervalTimer
{
public:
    explicit FakeIntervalTimer(const char* name) : IntervalTimer(name) {}

    // Sets the clock of all of them.
    static void setNow(double seconds)
    {
        _now = seconds;
    }

    void start() override
    {
        _start = _now;
    }

    void stop() override
    {
        _stop = _now;
    }

    double timeInterval() const override
    {
        return _stop - _start;
    }

    double sinceStart() const override
    {
        return _now - _start;
    }

private:
    static inline double _now = 0;

    double _start = 0;
    double _stop = 0;
};

// One span of this length, of a timer or profiler on the fake clock.
template <class Measurer> void addSpan(Measurer& measurer, double seconds)
{
    FakeIntervalTimer::setNow(0);
    measurer.start();
    FakeIntervalTimer::setNow(seconds);
    measurer.stop();
}

// One cycle with one span of this length.
template <class Profiler> void addCycle(Profiler& profiler, double seconds)
{
    addSpan(profiler, seconds);
    profiler.endCycle();
}

// Waits until the clock of this kind of interval timer has advanced.
template <class IntervalTimer> void awaitTick()
{
    IntervalTimer timer;
    timer.start();
    while (!(timer.sinceStart() > 0))
    {
    }
}

// A profiler with arbitrary figures, even ones that no cycles could give.
class FixedProfiler : public Zu::ProfilerBase
{
public:
    void setName(const char* name) override
    {
        _name = name;
    }
    const char* getName() const override
    {
        return _name;
    }

    void start() override {}
    void stop() override {}
    void endCycle() override {}
    void reset() override {}

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
        return _average;
    }
    double minTime() const override
    {
        return _minimum;
    }
    double maxTime() const override
    {
        return _maximum;
    }
    double standardDeviation() const override
    {
        return _deviation;
    }
    int cycles() const override
    {
        return _cycles;
    }

    const char* _name = "fixed";
    int _cycles = 0;
    double _cycleTime = 0;
    double _total = 0;
    double _average = 0;
    double _minimum = 0;
    double _maximum = 0;
    double _deviation = 0;
};

// Keeps what was written at each flush.
class FlushRecorder : public std::stringbuf
{
public:
    bool wasFlushedAt(const std::string& text) const
    {
        return std::find(_flushed.begin(), _flushed.end(), text) != _flushed.end();
    }

protected:
    int sync() override
    {
        _flushed.push_back(str());
        return 0;
    }

private:
    std::vector<std::string> _flushed;
};

// All digits of a number of at least 2^53, found by doubling its significand.
inline std::string digitsOf(double value)
{
    int exponent = 0;
    const double significand = std::ldexp(std::frexp(value, &exponent), 53);
    std::string digits = std::to_string(static_cast<std::int64_t>(significand));
    for (int i = 53; i < exponent; ++i)
    {
        int carry = 0;
        for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit)
        {
            const int doubled = 2 * (*digit - '0') + carry;
            *digit = static_cast<char>('0' + doubled % 10);
            carry = doubled / 10;
        }
        if (carry != 0) digits.insert(digits.begin(), '1');
    }
    return digits;
}

} // namespace support

#endif

#include "base/intervalTimer.h"

#include "base/hwCounter.h"

#include <chrono>

namespace Zu
{

namespace
{

double secondsBetween(const TodIntervalTimer::NativeTimer& start,
                      const TodIntervalTimer::NativeTimer& stop)
{
    return (stop.seconds - start.seconds) + (stop.milliseconds - start.milliseconds) * 0.001;
}

} // namespace

IntervalTimer::IntervalTimer(const char* name) : _name(name) {}

IntervalTimer::IntervalTimer(const IntervalTimer& other) = default;

IntervalTimer& IntervalTimer::operator=(const IntervalTimer& other) = default;

IntervalTimer::~IntervalTimer() = default;

void IntervalTimer::setName(const char* name)
{
    _name = name;
}

const char* IntervalTimer::getName() const
{
    return _name;
}

HwIntervalTimer::HwIntervalTimer(const char* name) : IntervalTimer(name)
{
    HwCounter::init();
}

void HwIntervalTimer::start()
{
    _start = HwCounter::timeStampInline();
}

void HwIntervalTimer::stop()
{
    _stop = HwCounter::timeStampInline();
}

double HwIntervalTimer::timeInterval() const
{
    return HwCounter::secondsInline(_start, _stop);
}

double HwIntervalTimer::sinceStart() const
{
    return HwCounter::secondsInline(_start, HwCounter::timeStampInline());
}

void TodIntervalTimer::NativeTimer::refresh()
{
    using namespace std::chrono;
    const auto now = floor<std::chrono::milliseconds>(system_clock::now().time_since_epoch());
    const auto whole = floor<std::chrono::seconds>(now);
    seconds = static_cast<double>(whole.count());
    milliseconds = static_cast<double>((now - whole).count());
}

TodIntervalTimer::TodIntervalTimer(const char* name) : IntervalTimer(name) {}

void TodIntervalTimer::start()
{
    _start.refresh();
}

void TodIntervalTimer::stop()
{
    _stop.refresh();
}

double TodIntervalTimer::timeInterval() const
{
    return secondsBetween(_start, _stop);
}

double TodIntervalTimer::sinceStart() const
{
    NativeTimer now;
    now.refresh();
    return secondsBetween(_start, now);
}

} // namespace Zu

#include "base/dtRefClockSource.h"

#include "base/duplicateString.h"
#include "base/hwCounter.h"

namespace Zu
{

namespace
{

Rational counterRate()
{
    HwCounter::init();
    return Rational(HwCounter::getRateNumerator(), HwCounter::getRateDenominator());
}

} // namespace

DtRefClockSource::DtRefClockSource(const char* name, Rational rate, Rational nativeRate)
    : _name(duplicateString(name)), _rate(rate), _nativeRate(nativeRate)
{
}

DtRefClockSource::~DtRefClockSource() = default;

const char* DtRefClockSource::getName() const
{
    return _name.get();
}

Rational DtRefClockSource::getRate() const
{
    return _rate;
}

Rational DtRefClockSource::getNativeRate() const
{
    return _nativeRate;
}

DtRefClockSourceHwCounter::DtRefClockSourceHwCounter()
    : DtRefClockSource("HwCounter", counterRate(), counterRate()), _baseline(HwCounter::timeStamp())
{
}

long long DtRefClockSourceHwCounter::getCount() const
{
    return static_cast<long long>(HwCounter::timeStamp() - _baseline);
}

} // namespace Zu

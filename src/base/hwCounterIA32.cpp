#include "base/hwCounterIA32.h"

#include "base/osCpuInfo.h"
#include "base/plainNumber.h"

#include <limits>
#include <ostream>

namespace Zu
{

namespace
{

// Counts are converted as signed numbers, so that a difference can be negative.
double signedCount(std::uint64_t count)
{
    return static_cast<double>(static_cast<std::int64_t>(count));
}

} // namespace

HwCounterRate hwCounterRate(std::uint64_t frequency)
{
    constexpr std::uint64_t largest = std::numeric_limits<std::int32_t>::max();
    std::uint32_t shift = 0;
    for (; frequency > largest; frequency /= 2) ++shift;
    return {static_cast<int>(frequency), shift};
}

// Makes the engine of this platform.
HwCounterEng* HwCounterEng::create()
{
    return create(OsCpuInfo::getHwCounterFrequency());
}

HwCounterEng* HwCounterEng::create(std::uint64_t frequency)
{
    const HwCounterRate rate = hwCounterRate(frequency);
    return new HwCounterIA32(rate._numerator, 1, rate._shift);
}

HwCounterIA32::HwCounterIA32(int rateNumerator, int rateDenominator, std::uint32_t shift)
    : _rateNumerator(rateNumerator), _rateDenominator(rateDenominator), _shift(shift),
      _cycle(static_cast<double>(rateDenominator) / rateNumerator)
{
}

HwCounterIA32::~HwCounterIA32() = default;

std::uint64_t HwCounterIA32::timeStamp() const
{
    return OsCpuInfo::getHwCounterValue() >> _shift;
}

double HwCounterIA32::seconds(std::uint64_t start, std::uint64_t end) const
{
    return signedCount(end - start) * _cycle;
}

double HwCounterIA32::seconds() const
{
    return signedCount(HwCounterIA32::timeStamp()) * _cycle;
}

double HwCounterIA32::resolution() const
{
    return _cycle;
}

int HwCounterIA32::getRateNumerator() const
{
    return _rateNumerator;
}

int HwCounterIA32::getRateDenominator() const
{
    return _rateDenominator;
}

void HwCounterIA32::dump(std::ostream& os) const
{
    os << "HwCounterIA32:" << std::endl;
    os << "Rate         = " << plainNumber(_rateNumerator) << "/" << plainNumber(_rateDenominator)
       << std::endl;
    os << "Cycle        = " << plainNumber(_cycle) << " seconds" << std::endl;
}

} // namespace Zu

/// @file
/// The counter engine of x86 processors.

#ifndef ZU_BASE_HWCOUNTERIA32_H
#define ZU_BASE_HWCOUNTERIA32_H

#include "baseApi.h"
#include "hwCounterEng.h"

#include <cstdint>

namespace Zu
{

/// The rate of a counter, and how far its values are shifted right to have that rate.
struct HwCounterRate
{
    /// Ticks per second, after the shift.
    int _numerator;
    /// The shift, in bits.
    std::uint32_t _shift;
};

/// Fits a frequency into a positive signed 32-bit number, as the rate's numerator requires. From
/// 2147483648 ticks per second on it is halved until it fits; each halving shifts by one bit.
ZU_BASE_API HwCounterRate hwCounterRate(std::uint64_t frequency);

/// Reads OsCpuInfo::getHwCounterValue(), shifted. The class has this name on every x86 target.
class ZU_BASE_API HwCounterIA32 final : public HwCounterEng
{
public:
    /// Ticks per second after the shift, and the shift of each counter value in bits.
    HwCounterIA32(int rateNumerator, int rateDenominator, std::uint32_t shift);

    ~HwCounterIA32() override;
    std::uint64_t timeStamp() const override;
    double seconds(std::uint64_t start, std::uint64_t end) const override;
    double seconds() const override;
    double resolution() const override;
    int getRateNumerator() const override;
    int getRateDenominator() const override;
    void dump(std::ostream& os) const override;

private:
    int _rateNumerator;
    int _rateDenominator;
    std::uint32_t _shift;
    double _cycle;
};

} // namespace Zu

#endif

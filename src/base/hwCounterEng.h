/// @file
/// The engine of the high-resolution counter.

#ifndef ZU_BASE_HWCOUNTERENG_H
#define ZU_BASE_HWCOUNTERENG_H

#include "baseApi.h"

#include <cstdint>
#include <iosfwd>

namespace Zu
{

/// A tick counter with a stated rate. Engines only read; any thread may use one.
class ZU_BASE_API HwCounterEng
{
public:
    HwCounterEng() = default;
    HwCounterEng(const HwCounterEng&) = delete;
    HwCounterEng& operator=(const HwCounterEng&) = delete;
    virtual ~HwCounterEng();

    /// The current tick count. Raises ExSysErrorANSI if the platform's counter fails.
    virtual std::uint64_t timeStamp() const = 0;

    /// Seconds from `start` to `end`; negative if `end` is the earlier one.
    virtual double seconds(std::uint64_t start, std::uint64_t end) const = 0;

    /// The current tick count, in seconds.
    virtual double seconds() const = 0;

    /// Seconds per tick.
    virtual double resolution() const = 0;

    /// @{
    /// Ticks per second are the numerator divided by the denominator.
    virtual int getRateNumerator() const = 0;
    virtual int getRateDenominator() const = 0;
    /// @}

    /// Writes the engine's name, rate and cycle on three lines, in the stream's number format.
    virtual void dump(std::ostream& os) const = 0;

    /// Makes the platform's engine, owned by the caller. OsCpuInfo::initialize() must come first,
    /// since the frequency of the counter must be known.
    static HwCounterEng* create();

    /// The same for a counter of this frequency, in ticks per second, which must not be 0.
    static HwCounterEng* create(std::uint64_t frequency);
};

} // namespace Zu

#endif

/// @file
/// Points in time on the one reference clock of the process.

#ifndef ZU_BASE_DTREFTIME_H
#define ZU_BASE_DTREFTIME_H

#include "baseApi.h"
#include "dtRefClockSource.h"
#include "dtTime.h"
#include "objPtr.h"

#include <iosfwd>

namespace Zu
{

/// A count of the reference clock. It is deliberately a type of its own, without arithmetic or
/// comparison. Only the factory makes such times, so all of them have the clock's rate, and their
/// counts can be compared and subtracted directly.
class DtRefTime
{
    friend class DtRefTimeFactory;

public:
    /// 0 at the rate 0/1, which marks a time that was never set.
    constexpr DtRefTime() noexcept : _rate(0, 1) {}

    /// Ticks of the clock since the clock was made.
    constexpr DtTimeIndex getCount() const noexcept
    {
        return _index;
    }

    /// Ticks per second; 0/1 marks a time that was never set.
    constexpr Rational getRate() const noexcept
    {
        return _rate;
    }

    /// Writes "(0 @ (0/1=0))".
    ZU_BASE_API std::ostream& dump(std::ostream& os) const;

private:
    constexpr DtRefTime(DtTimeIndex index, Rational rate) noexcept : _index(index), _rate(rate) {}

    DtTimeIndex _index;
    Rational _rate;
};

/// The same as DtRefTime::dump().
ZU_BASE_API std::ostream& operator<<(std::ostream& os, const DtRefTime& time);

/// Makes reference times. The package "discreteTime" makes the one factory when it starts, and with
/// it the clock, which counts from then on. Both live until the end of the process.
///
/// Thread-safety: the first call of getInstance() belongs to one thread; any thread may call
/// everything else.
class ZU_BASE_API DtRefTimeFactory
{
public:
    /// The one factory; the first call makes it.
    static DtRefTimeFactory& getInstance();

    DtRefTimeFactory(const DtRefTimeFactory&) = delete;
    DtRefTimeFactory& operator=(const DtRefTimeFactory&) = delete;
    ~DtRefTimeFactory();

    /// The clock of all reference times; owned by the factory.
    const DtRefClockSource& getClockSource() const;

    /// Now.
    DtRefTime create() const;

    /// The time of a stored count. Raises DtRefClockEx::SourceMismatch unless `sourceName` is the
    /// name of the clock.
    DtRefTime create(const DtTimeIndex& count, const char* sourceName) const;

    /// The time `delta` ticks of `rate` after `base`, truncated toward zero. The rate of `base` is
    /// ignored. Raises RationalEx::ExDenominatorZero if `rate` is 0.
    DtRefTime create(const DtRefTime& base, const DtTimeIndex& delta, const Rational& rate) const;

private:
    DtRefTimeFactory();

    ObjPtr<DtRefClockSource> _source;
};

} // namespace Zu

#endif

/// @file
/// The clocks that reference times can be counted by.

#ifndef ZU_BASE_DTREFCLOCKSOURCE_H
#define ZU_BASE_DTREFCLOCKSOURCE_H

#include "arrayPtr.h"
#include "baseApi.h"
#include "rational.h"

#include <cstdint>

namespace Zu
{

/// A clock with a name and a rate.
class ZU_BASE_API DtRefClockSource
{
public:
    /// The name is copied.
    DtRefClockSource(const char* name, Rational rate, Rational nativeRate);
    DtRefClockSource(const DtRefClockSource&) = delete;
    DtRefClockSource& operator=(const DtRefClockSource&) = delete;
    virtual ~DtRefClockSource();

    /// The current count. A clock that can fail raises DtRefClockEx::GetCount.
    virtual long long getCount() const = 0;

    /// The name; owned by the clock.
    const char* getName() const;

    /// The rate of the counts.
    Rational getRate() const;

    /// The rate of the underlying counter, for users of the clock; the library does not use it.
    Rational getNativeRate() const;

private:
    ArrayPtr<char> _name;
    Rational _rate;
    Rational _nativeRate;
};

/// The hardware counter, counted from the construction of the object; its name is "HwCounter". Any
/// thread may read it.
class ZU_BASE_API DtRefClockSourceHwCounter : public DtRefClockSource
{
public:
    /// Begins to count. Makes the counter's engine if there is none.
    DtRefClockSourceHwCounter();
    long long getCount() const override;

private:
    std::uint64_t _baseline;
};

} // namespace Zu

#endif

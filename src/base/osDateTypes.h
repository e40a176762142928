/// @file
/// Dates as a count and as the fields of a calendar.

#ifndef ZU_BASE_OSDATETYPES_H
#define ZU_BASE_OSDATETYPES_H

#include "base/baseApi.h"

#include <cstddef>
#include <cstdint>
#include <functional>

namespace Zu
{

/// What dates are made of.
class ZU_BASE_API OsDateTypes
{
public:
    OsDateTypes() = delete;

    /// 100-nanosecond ticks since the beginning of 1 January 1601, UTC. The high word comes first.
    struct DateRep
    {
        std::uint32_t _high;
        std::uint32_t _low;

        constexpr bool operator==(const DateRep& other) const noexcept
        {
            return _high == other._high && _low == other._low;
        }

        constexpr bool operator!=(const DateRep& other) const noexcept
        {
            return !(*this == other);
        }

        constexpr bool operator<(const DateRep& other) const noexcept
        {
            return _high != other._high ? _high < other._high : _low < other._low;
        }
    };

    /// The fields of a calendar, in the Gregorian one at all times.
    class ZU_BASE_API DateStruct
    {
    public:
        DateStruct(int year, int month, int day, int hour, int minute, double second,
                   int dayOfWeek);

        int year;
        /// 1 to 12.
        int month;
        int day;
        int hour;
        int minute;
        /// With its fraction, to the millisecond.
        double second;
        /// 0 is Sunday.
        int dayOfWeek;
    };

    /// How the fields relate to the count.
    enum TimeMode
    {
        TimeUniversal,
        /// By the platform's rules for local time.
        TimeLocal
    };
};

} // namespace Zu

/// Equal dates have equal hashes.
template <> struct std::hash<Zu::OsDateTypes::DateRep>
{
    std::size_t operator()(const Zu::OsDateTypes::DateRep& date) const noexcept
    {
        return std::hash<std::uint64_t>()(std::uint64_t{date._high} << 32 | date._low);
    }
};

#endif

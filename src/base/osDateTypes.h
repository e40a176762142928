/// @file
/// Dates as a count and as the fields of a calendar.

#ifndef ZU_BASE_OSDATETYPES_H
#define ZU_BASE_OSDATETYPES_H

#include "baseApi.h"

#include <cstddef>
#include <cstdint>
#include <optional> // std::hash, at a quarter of the cost of <functional>

namespace Zu
{

/// The types that represent dates.
class ZU_BASE_API OsDateTypes
{
public:
    OsDateTypes() = delete;

    /// 100-nanosecond ticks since the beginning of 1 January 1601, UTC. The high word comes first.
    struct DateRep
    {
        /// The upper 32 bits of the count.
        std::uint32_t _high;
        /// The lower 32 bits of the count.
        std::uint32_t _low;

        /// @{
        /// Compare the counts.
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
        /// @}
    };

    /// The fields of a date, always in the Gregorian calendar.
    class ZU_BASE_API DateStruct
    {
    public:
        /// Takes the fields as given; nothing is checked.
        DateStruct(int year, int month, int day, int hour, int minute, double second,
                   int dayOfWeek);

        /// The full year, with all its digits.
        int year;
        /// 1 to 12.
        int month;
        /// 1 to 31.
        int day;
        /// 0 to 23.
        int hour;
        /// 0 to 59.
        int minute;
        /// With its fraction, to the millisecond.
        double second;
        /// 0 is Sunday.
        int dayOfWeek;
    };

    /// How the fields relate to the count.
    enum TimeMode
    {
        /// The fields are in UTC.
        TimeUniversal,
        /// The fields are in local time, by the platform's rules.
        TimeLocal
    };
};

} // namespace Zu

/// Hashes dates, for unordered containers.
template <> struct std::hash<Zu::OsDateTypes::DateRep>
{
    /// Equal dates have equal hashes.
    std::size_t operator()(const Zu::OsDateTypes::DateRep& date) const noexcept
    {
        return std::hash<std::uint64_t>()(std::uint64_t{date._high} << 32 | date._low);
    }
};

#endif

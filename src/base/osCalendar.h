/// @file
/// The calendar under dates. Internal to the library.

#ifndef ZU_BASE_OSCALENDAR_H
#define ZU_BASE_OSCALENDAR_H

#include <cstdint>
#include <functional>
#include <optional>

/// Converts between counts of 100-nanosecond ticks since the beginning of 1601 and the fields of
/// the Gregorian calendar. Days are counted as in Howard Hinnant, 2013, "chrono-Compatible
/// Low-Level Date Algorithms".
namespace Zu::OsCalendar
{

/// The fields of a date, as platforms define them.
struct Fields
{
    int _year;
    int _month;
    int _day;
    int _hour;
    int _minute;
    int _second;
    int _millisecond;
};

constexpr std::int64_t TICKS_PER_SECOND = 10000000;

/// The count; nothing for fields that are not a date: a year before 1601 or after 30827, a day that
/// the month does not have, and so on down to the milliseconds.
std::optional<std::uint64_t> countOf(const Fields& fields);

/// The fields, with the fraction truncated to milliseconds; nothing for a count of 2^63 or more.
std::optional<Fields> fieldsOf(std::uint64_t count);

/// 0 is Sunday.
int dayOfWeekOf(std::uint64_t count);

/// Returns by how many seconds local time is ahead of UTC at an instant of UTC, which is given in
/// seconds since 1970.
using OffsetAt = std::function<std::int64_t(std::int64_t universal)>;

/// The instant at which clocks show the local time: the first one if they show it twice. If they
/// skip it, they show at the returned instant a time that is later by as much as they skip.
std::int64_t universalOf(std::int64_t local, const OffsetAt& offsetAt);

} // namespace Zu::OsCalendar

#endif

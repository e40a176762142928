/// @file
/// Computes with wall-clock dates.

#ifndef ZU_BASE_OSDATEUTIL_H
#define ZU_BASE_OSDATEUTIL_H

#include "baseApi.h"
#include "osDateTypes.h"

namespace Zu
{

/// Wall-clock dates as counts, and their fields on demand. Any thread may call it; what asks for
/// local time must not race with a change of the environment.
///
/// Local time follows the platform's rules. Windows applies the offset from UTC of the present day
/// to every date, Linux that of the date itself. There, of a time that clocks show twice, at the
/// end of daylight saving, the first is meant; a time that they skip, at its beginning, is counted
/// by the offset before: 2:30 comes back as 3:30.
class ZU_BASE_API OsDateUtil
{
public:
    /// @{
    /// For short.
    using DateRep = OsDateTypes::DateRep;
    using DateStruct = OsDateTypes::DateStruct;
    /// @}

    OsDateUtil() = delete;

    /// The present time, to the millisecond.
    static DateRep getCurrentTime();

    /// The date of these fields; false, and `date` stays as it was, for fields that are none: a
    /// year outside 1601 to 30827, a day that the month does not have, an hour 24, and so on. The
    /// five integers are cut to 16 bits before. The fraction of `second` is rounded to the nearest
    /// millisecond; one of 0.9995 or more is refused, deliberately, since it would be 1000
    /// milliseconds.
    static bool makeTime(int year, int month, int day, int hour, int minute, double second,
                         OsDateTypes::TimeMode mode, DateRep& date);

    /// The fields of a date. Raises OsDateEx::ExInvalidDate for a count from 2^63 on, and for one
    /// whose local time lies before 1601.
    static DateStruct convertToDateStruct(const DateRep& date, OsDateTypes::TimeMode mode);

    /// The date that lies so many seconds later. The count goes through a `double`, which at
    /// present-day dates rounds to multiples of 1.6 microseconds.
    static DateRep add(const DateRep& date, double seconds);

    /// The same, earlier.
    static DateRep diff(const DateRep& date, double seconds);

    /// `a` less `b` in seconds, exact to the tick before it becomes a `double`.
    static double diff(const DateRep& a, const DateRep& b);

    /// -1, 0 or 1 as `a` is before, at or behind `b`.
    static int compare(const DateRep& a, const DateRep& b);
};

} // namespace Zu

#endif

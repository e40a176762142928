/// @file
/// Arithmetic on wall-clock dates.

#ifndef ZU_BASE_OSDATEUTIL_H
#define ZU_BASE_OSDATEUTIL_H

#include "baseApi.h"
#include "osDateTypes.h"

namespace Zu
{

/// Represents wall-clock dates as counts, and converts them to fields on demand. Any thread may
/// call it; calls that ask for local time must not race with a change of the environment.
///
/// Local time follows the platform's rules. Windows applies today's offset from UTC to every date,
/// Linux the offset at the date itself. There, a time that clocks show twice, at the end of
/// daylight saving, means the first of the two. A time that they skip, at its beginning, is
/// converted with the offset before it: 2:30 comes back as 3:30.
class ZU_BASE_API OsDateUtil
{
public:
    /// @{
    /// Short names.
    using DateRep = OsDateTypes::DateRep;
    using DateStruct = OsDateTypes::DateStruct;
    /// @}

    OsDateUtil() = delete;

    /// The present time, to the millisecond.
    static DateRep getCurrentTime();

    /// Writes the date of these fields. Returns false, and leaves `date` unchanged, if they are not
    /// a date: a year outside 1601 to 30827, a day that the month does not have, an hour of 24, and
    /// so on. The five integers are truncated to 16 bits first. The fraction of `second` is rounded
    /// to the nearest millisecond; one of 0.9995 or more is deliberately refused, since it would be
    /// 1000 milliseconds.
    static bool makeTime(int year, int month, int day, int hour, int minute, double second,
                         OsDateTypes::TimeMode mode, DateRep& date);

    /// The fields of a date. Raises OsDateEx::ExInvalidDate for a count of 2^63 or more, and for
    /// one whose local time is before 1601.
    static DateStruct convertToDateStruct(const DateRep& date, OsDateTypes::TimeMode mode);

    /// The date so many seconds later. The count passes through a `double`, which rounds
    /// present-day dates to multiples of 1.6 microseconds.
    static DateRep add(const DateRep& date, double seconds);

    /// The date so many seconds earlier, computed in the same way.
    static DateRep diff(const DateRep& date, double seconds);

    /// `a` minus `b` in seconds, exact to the tick before it is converted to `double`.
    static double diff(const DateRep& a, const DateRep& b);

    /// -1, 0 or 1 if `a` is before, equal to or after `b`.
    static int compare(const DateRep& a, const DateRep& b);
};

} // namespace Zu

#endif

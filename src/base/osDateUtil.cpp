#include "base/osDateUtil.h"

#include "base/osCalendar.h"
#include "base/osDateEx.h"
#include "base/osDatePlatform.h"
#include "base/truncateTo.h"

#include <cmath>

namespace Zu
{

namespace
{

constexpr double TICKS_PER_SECOND = 1e7;

std::uint64_t countOf(const OsDateTypes::DateRep& date)
{
    return std::uint64_t{date._high} << 32 | date._low;
}

OsDateTypes::DateRep dateOf(std::uint64_t count)
{
    return {static_cast<std::uint32_t>(count >> 32), static_cast<std::uint32_t>(count)};
}

int cut(int field)
{
    return static_cast<std::uint16_t>(field);
}

// Converts a number of ticks that went through a double to the count it represents.
OsDateTypes::DateRep dateOfTicks(double ticks)
{
    return dateOf(static_cast<std::uint64_t>(truncateTo<std::int64_t>(ticks)));
}

} // namespace

OsDateTypes::DateRep OsDateUtil::getCurrentTime()
{
    return dateOf(OsDatePlatform::currentCount());
}

bool OsDateUtil::makeTime(int year, int month, int day, int hour, int minute, double second,
                          OsDateTypes::TimeMode mode, DateRep& date)
{
    const int whole = truncateTo<int>(second);
    const int milliseconds = truncateTo<int>((second - std::floor(second) + 0.0005) * 1000.0);
    const OsCalendar::Fields fields{cut(year),   cut(month), cut(day),    cut(hour),
                                    cut(minute), whole,      milliseconds};
    std::optional<std::uint64_t> count = OsCalendar::countOf(fields);
    if (count && mode == OsDateTypes::TimeLocal) count = OsDatePlatform::universalOf(*count);
    // Local time may go back before the first date, and wrap.
    if (!count || *count >> 63 != 0) return false;
    date = dateOf(*count);
    return true;
}

OsDateTypes::DateStruct OsDateUtil::convertToDateStruct(const DateRep& date,
                                                        OsDateTypes::TimeMode mode)
{
    std::uint64_t count = countOf(date);
    if (mode == OsDateTypes::TimeLocal) count = OsDatePlatform::localOf(count);
    const std::optional<OsCalendar::Fields> fields = OsCalendar::fieldsOf(count);
    if (!fields) throw OsDateEx::ExInvalidDate(__FILE__, __LINE__);
    return DateStruct(fields->_year, fields->_month, fields->_day, fields->_hour, fields->_minute,
                      fields->_millisecond * 0.001 + fields->_second,
                      OsCalendar::dayOfWeekOf(count));
}

OsDateTypes::DateRep OsDateUtil::add(const DateRep& date, double seconds)
{
    return dateOfTicks(seconds * TICKS_PER_SECOND + static_cast<double>(countOf(date)));
}

OsDateTypes::DateRep OsDateUtil::diff(const DateRep& date, double seconds)
{
    return dateOfTicks(static_cast<double>(countOf(date)) - seconds * TICKS_PER_SECOND);
}

double OsDateUtil::diff(const DateRep& a, const DateRep& b)
{
    return static_cast<double>(static_cast<std::int64_t>(countOf(a) - countOf(b))) * 1e-7;
}

int OsDateUtil::compare(const DateRep& a, const DateRep& b)
{
    if (a == b) return 0;
    return a < b ? -1 : 1;
}

} // namespace Zu

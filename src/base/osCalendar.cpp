#include "base/osCalendar.h"

namespace Zu::OsCalendar
{

namespace
{

constexpr int FIRST_YEAR = 1601;
constexpr int LAST_YEAR = 30827;
constexpr std::int64_t SECONDS_PER_DAY = 86400;
constexpr int DAYS_PER_ERA = 146097;
// From 1 March of the year 0, where eras begin, to 1 January 1601.
constexpr int DAYS_TO_1601 = 584694;
constexpr std::int64_t TICKS_PER_MILLISECOND = TICKS_PER_SECOND / 1000;

bool isLeapYear(int year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int daysOf(int year, int month)
{
    if (month == 2) return isLeapYear(year) ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

bool isBetween(int value, int lowest, int highest)
{
    return value >= lowest && value <= highest;
}

bool isDate(const Fields& fields)
{
    return isBetween(fields._year, FIRST_YEAR, LAST_YEAR) && isBetween(fields._month, 1, 12) &&
           isBetween(fields._day, 1, daysOf(fields._year, fields._month)) &&
           isBetween(fields._hour, 0, 23) && isBetween(fields._minute, 0, 59) &&
           isBetween(fields._second, 0, 59) && isBetween(fields._millisecond, 0, 999);
}

// Days since the beginning of 1601. Years begin in March here, so that the leap day comes last.
int daysTo(int year, int month, int day)
{
    if (month <= 2) --year;
    const int era = year / 400;
    const int yearOfEra = year % 400;
    const int dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    const int dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * DAYS_PER_ERA + dayOfEra - DAYS_TO_1601;
}

void setDate(Fields& fields, int days)
{
    days += DAYS_TO_1601;
    const int era = days / DAYS_PER_ERA;
    const int dayOfEra = days % DAYS_PER_ERA;
    const int yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int month = (5 * dayOfYear + 2) / 153;
    fields._day = dayOfYear - (153 * month + 2) / 5 + 1;
    fields._month = month < 10 ? month + 3 : month - 9;
    fields._year = yearOfEra + era * 400 + (fields._month <= 2 ? 1 : 0);
}

} // namespace

std::optional<std::uint64_t> countOf(const Fields& fields)
{
    if (!isDate(fields)) return std::nullopt;
    const std::int64_t days = daysTo(fields._year, fields._month, fields._day);
    const int minutes = fields._hour * 60 + fields._minute;
    const int secondsOfDay = minutes * 60 + fields._second;
    const std::int64_t seconds = days * SECONDS_PER_DAY + secondsOfDay;
    return static_cast<std::uint64_t>(seconds * TICKS_PER_SECOND +
                                      fields._millisecond * TICKS_PER_MILLISECOND);
}

std::optional<Fields> fieldsOf(std::uint64_t count)
{
    if (count >> 63 != 0) return std::nullopt;
    const auto ticks = static_cast<std::int64_t>(count);
    const std::int64_t seconds = ticks / TICKS_PER_SECOND;
    const auto ofDay = static_cast<int>(seconds % SECONDS_PER_DAY);
    Fields fields{};
    setDate(fields, static_cast<int>(seconds / SECONDS_PER_DAY));
    fields._hour = ofDay / 3600;
    fields._minute = ofDay / 60 % 60;
    fields._second = ofDay % 60;
    fields._millisecond = static_cast<int>(ticks % TICKS_PER_SECOND / TICKS_PER_MILLISECOND);
    return fields;
}

int dayOfWeekOf(std::uint64_t count)
{
    // 1 January 1601 was a Monday.
    const std::uint64_t days = count / (TICKS_PER_SECOND * SECONDS_PER_DAY);
    return static_cast<int>((days + 1) % 7);
}

std::int64_t universalOf(std::int64_t local, const OffsetAt& offsetAt)
{
    // The offsets a day earlier and a day later are those before and after any change nearby.
    const std::int64_t before = offsetAt(local - SECONDS_PER_DAY);
    const std::int64_t behind = offsetAt(local + SECONDS_PER_DAY);
    if (offsetAt(local - before) == before) return local - before;
    if (offsetAt(local - behind) == behind) return local - behind;
    return local - before;
}

} // namespace Zu::OsCalendar

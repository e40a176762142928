#include "base/osCalendar.h"

#include <chrono>
#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <ratio>
#include <string>
#include <vector>

namespace
{

namespace OsCalendar = Zu::OsCalendar;
using OsCalendar::Fields;

using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10000000>>;
constexpr std::chrono::sys_days ORIGIN =
    std::chrono::year(1601) / std::chrono::January / std::chrono::day(1);

constexpr std::uint64_t TICKS_PER_MILLISECOND = 10000;
constexpr std::uint64_t END_OF_COUNTS = std::uint64_t{1} << 63;

// The fields of a count by the standard calendar.
Fields referenceFields(std::uint64_t count)
{
    const Ticks sinceOrigin(static_cast<std::int64_t>(count));
    const auto days = std::chrono::floor<std::chrono::days>(sinceOrigin);
    const std::chrono::year_month_day date(ORIGIN + days);
    const std::chrono::hh_mm_ss time(sinceOrigin - days);
    return {
        static_cast<int>(date.year()),
        static_cast<int>(static_cast<unsigned int>(date.month())),
        static_cast<int>(static_cast<unsigned int>(date.day())),
        static_cast<int>(time.hours().count()),
        static_cast<int>(time.minutes().count()),
        static_cast<int>(time.seconds().count()),
        static_cast<int>(std::chrono::floor<std::chrono::milliseconds>(time.subseconds()).count())};
}

int referenceDayOfWeek(std::uint64_t count)
{
    const Ticks sinceOrigin(static_cast<std::int64_t>(count));
    const std::chrono::weekday day(ORIGIN + std::chrono::floor<std::chrono::days>(sinceOrigin));
    return static_cast<int>(day.c_encoding());
}

bool operator==(const Fields& a, const Fields& b)
{
    return a._year == b._year && a._month == b._month && a._day == b._day && a._hour == b._hour &&
           a._minute == b._minute && a._second == b._second && a._millisecond == b._millisecond;
}

std::string textOf(const std::optional<Fields>& fields)
{
    if (!fields) return "none";
    return std::to_string(fields->_year) + "-" + std::to_string(fields->_month) + "-" +
           std::to_string(fields->_day) + " " + std::to_string(fields->_hour) + ":" +
           std::to_string(fields->_minute) + ":" + std::to_string(fields->_second) + "." +
           std::to_string(fields->_millisecond);
}

TEST(OsCalendar, CountsAndTheirFields)
{
    const struct
    {
        Fields _fields;
        std::uint64_t _count;
        int _dayOfWeek;
    } cases[] = {
        {{1601, 1, 1, 0, 0, 0, 0}, 0, 1},
        {{1601, 1, 1, 0, 0, 0, 1}, 10000, 1},
        {{1601, 1, 1, 0, 0, 1, 0}, 10000000, 1},
        {{1601, 1, 1, 0, 1, 0, 0}, 600000000, 1},
        {{1601, 1, 1, 1, 0, 0, 0}, 36000000000, 1},
        {{1601, 1, 2, 0, 0, 0, 0}, 864000000000, 2},
        {{1970, 1, 1, 0, 0, 0, 0}, 116444736000000000, 4},
        {{2000, 2, 29, 12, 0, 1, 500}, 125962992015000000, 2},
        {{30827, 12, 31, 23, 59, 59, 999}, 9223149887999990000, 5},
    };
    for (const auto& row : cases)
    {
        EXPECT_EQ(OsCalendar::countOf(row._fields), row._count) << textOf(row._fields);
        EXPECT_EQ(textOf(OsCalendar::fieldsOf(row._count)), textOf(row._fields));
        EXPECT_EQ(OsCalendar::dayOfWeekOf(row._count), row._dayOfWeek) << textOf(row._fields);
    }
    EXPECT_EQ(OsCalendar::TICKS_PER_SECOND, 10000000);
}

TEST(OsCalendar, EveryDayOfEightCenturiesIsTheStandardCalendars)
{
    const std::chrono::sys_days end =
        std::chrono::year(2401) / std::chrono::January / std::chrono::day(1);
    for (std::chrono::sys_days day = ORIGIN; day < end; day += std::chrono::days(1))
    {
        const auto count = static_cast<std::uint64_t>(Ticks(day - ORIGIN).count());
        const std::chrono::year_month_day date(day);
        const Fields fields = {static_cast<int>(date.year()),
                               static_cast<int>(static_cast<unsigned int>(date.month())),
                               static_cast<int>(static_cast<unsigned int>(date.day())),
                               0,
                               0,
                               0,
                               0};
        ASSERT_EQ(OsCalendar::countOf(fields), count) << textOf(fields);
        const std::optional<Fields> actual = OsCalendar::fieldsOf(count);
        ASSERT_TRUE(actual && *actual == fields) << textOf(actual) << " for " << textOf(fields);
        ASSERT_EQ(OsCalendar::dayOfWeekOf(count),
                  static_cast<int>(std::chrono::weekday(day).c_encoding()))
            << textOf(fields);
    }
}

TEST(OsCalendar, RandomInstantsHaveTheStandardCalendarsFields)
{
    std::mt19937_64 random(91);
    // Every second one in the centuries around the present.
    const std::uint64_t centuries = 864000000000ULL * 365 * 800;
    for (int i = 0; i < 20000; ++i)
    {
        const std::uint64_t count = random() % (i % 2 == 0 ? END_OF_COUNTS : centuries);
        const Fields expected = referenceFields(count);
        const std::optional<Fields> actual = OsCalendar::fieldsOf(count);
        ASSERT_TRUE(actual && *actual == expected) << textOf(actual) << " for " << count;
        ASSERT_EQ(OsCalendar::dayOfWeekOf(count), referenceDayOfWeek(count)) << count;
        if (expected._year > 30827) continue;
        ASSERT_EQ(OsCalendar::countOf(expected), count - count % TICKS_PER_MILLISECOND);
    }
}

TEST(OsCalendar, FractionsAreCutToMilliseconds)
{
    EXPECT_EQ(OsCalendar::fieldsOf(9999)->_millisecond, 0);
    EXPECT_EQ(OsCalendar::fieldsOf(10000)->_millisecond, 1);
    EXPECT_EQ(OsCalendar::fieldsOf(9999999)->_millisecond, 999);
    EXPECT_EQ(OsCalendar::fieldsOf(9999999)->_second, 0);
}

TEST(OsCalendar, CountsEndBeforeTheHighestBit)
{
    const std::optional<Fields> last = OsCalendar::fieldsOf(END_OF_COUNTS - 1);
    ASSERT_TRUE(last);
    EXPECT_EQ(textOf(last), "30828-9-14 2:48:5.477");
    EXPECT_FALSE(OsCalendar::fieldsOf(END_OF_COUNTS));
    EXPECT_FALSE(OsCalendar::fieldsOf(END_OF_COUNTS + 1));
    EXPECT_FALSE(OsCalendar::fieldsOf(~std::uint64_t{0}));
}

TEST(OsCalendar, FieldsThatAreNoDateHaveNoCount)
{
    const Fields refused[] = {
        {1600, 12, 31, 23, 59, 59, 999}, {0, 1, 1, 0, 0, 0, 0},       {-2000, 1, 1, 0, 0, 0, 0},
        {30828, 1, 1, 0, 0, 0, 0},       {31000, 1, 1, 0, 0, 0, 0},   {65535, 1, 1, 0, 0, 0, 0},
        {2000, 0, 1, 0, 0, 0, 0},        {2000, 13, 1, 0, 0, 0, 0},   {2000, -1, 1, 0, 0, 0, 0},
        {2000, 65535, 1, 0, 0, 0, 0},    {2000, 1, 0, 0, 0, 0, 0},    {2000, 1, -1, 0, 0, 0, 0},
        {2000, 1, 65535, 0, 0, 0, 0},    {2000, 1, 1, 24, 0, 0, 0},   {2000, 1, 1, -1, 0, 0, 0},
        {2000, 1, 1, 0, 60, 0, 0},       {2000, 1, 1, 0, -1, 0, 0},   {2000, 1, 1, 0, 0, 60, 0},
        {2000, 1, 1, 0, 0, -1, 0},       {2000, 1, 1, 0, 0, 0, 1000}, {2000, 1, 1, 0, 0, 0, -1},
    };
    for (const Fields& fields : refused)
        EXPECT_FALSE(OsCalendar::countOf(fields)) << textOf(fields);
}

TEST(OsCalendar, EveryMonthHasItsDays)
{
    const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (const int year : {1601, 1700, 1900, 1999, 2000, 2023, 2024, 2100, 2400, 30824, 30827})
    {
        const bool isLeap = std::chrono::year(year).is_leap();
        for (int month = 1; month <= 12; ++month)
        {
            const int last = days[month - 1] + (month == 2 && isLeap ? 1 : 0);
            EXPECT_TRUE(OsCalendar::countOf({year, month, last, 0, 0, 0, 0})) << year << month;
            EXPECT_FALSE(OsCalendar::countOf({year, month, last + 1, 0, 0, 0, 0})) << year << month;
        }
    }
}

constexpr std::int64_t HOUR = 3600;
constexpr std::int64_t DAY = 24 * HOUR;

// Local time with one change of its offset at an instant of UTC.
struct Change
{
    std::int64_t _at;
    std::int64_t _before;
    std::int64_t _behind;

    std::int64_t offsetAt(std::int64_t universal) const
    {
        return universal < _at ? _before : _behind;
    }
};

TEST(OsCalendar, LocalTimesAroundAChangeOfTheOffset)
{
    const std::int64_t at = 1616893200; // 28 March 2021, 1:00
    const std::int64_t remote = 500000000000;
    const struct
    {
        Change _change;
        std::int64_t _local;
        std::int64_t _universal;
    } cases[] = {
        // No change at all.
        {{at, 0, 0}, at, at},
        {{at, HOUR, HOUR}, at, at - HOUR},
        {{at, -5 * HOUR, -5 * HOUR}, at, at + 5 * HOUR},
        {{at, 5 * HOUR + 1800, 5 * HOUR + 1800}, at, at - 5 * HOUR - 1800},
        // From one hour ahead to two: times that clocks skip are counted by the earlier offset.
        {{at, HOUR, 2 * HOUR}, at + HOUR - 1, at - 1},
        {{at, HOUR, 2 * HOUR}, at + HOUR, at},
        {{at, HOUR, 2 * HOUR}, at + HOUR + 1800, at + 1800},
        {{at, HOUR, 2 * HOUR}, at + 2 * HOUR - 1, at + HOUR - 1},
        {{at, HOUR, 2 * HOUR}, at + 2 * HOUR, at},
        {{at, HOUR, 2 * HOUR}, at + 2 * HOUR + 1, at + 1},
        {{at, HOUR, 2 * HOUR}, at + 3 * HOUR, at + HOUR},
        {{at, HOUR, 2 * HOUR}, at - 30 * DAY, at - 30 * DAY - HOUR},
        {{at, HOUR, 2 * HOUR}, at + 30 * DAY, at + 30 * DAY - 2 * HOUR},
        // And back: of times that clocks show twice, the first.
        {{at, 2 * HOUR, HOUR}, at + HOUR - 1, at - HOUR - 1},
        {{at, 2 * HOUR, HOUR}, at + HOUR, at - HOUR},
        {{at, 2 * HOUR, HOUR}, at + HOUR + 1800, at - 1800},
        {{at, 2 * HOUR, HOUR}, at + 2 * HOUR - 1, at - 1},
        {{at, 2 * HOUR, HOUR}, at + 2 * HOUR, at + HOUR},
        {{at, 2 * HOUR, HOUR}, at + 3 * HOUR, at + 2 * HOUR},
        // Behind UTC.
        {{at, -5 * HOUR, -4 * HOUR}, at - 5 * HOUR - 1, at - 1},
        {{at, -5 * HOUR, -4 * HOUR}, at - 5 * HOUR, at},
        {{at, -5 * HOUR, -4 * HOUR}, at - 4 * HOUR - 1, at + HOUR - 1},
        {{at, -5 * HOUR, -4 * HOUR}, at - 4 * HOUR, at},
        {{at, -4 * HOUR, -5 * HOUR}, at - 5 * HOUR, at - HOUR},
        {{at, -4 * HOUR, -5 * HOUR}, at - 4 * HOUR - 1, at - 1},
        {{at, -4 * HOUR, -5 * HOUR}, at - 4 * HOUR, at + HOUR},
        // Half an hour, and across 0.
        {{at, 10 * HOUR + 1800, 11 * HOUR}, at + 10 * HOUR + 1800 + 900, at + 900},
        {{at, 10 * HOUR + 1800, 11 * HOUR}, at + 11 * HOUR, at},
        {{at, 11 * HOUR, 10 * HOUR + 1800}, at + 10 * HOUR + 1800, at - 1800},
        {{at, -HOUR, HOUR}, at - HOUR, at},
        {{at, -HOUR, HOUR}, at + HOUR - 1, at + 2 * HOUR - 1},
        {{at, HOUR, -HOUR}, at - HOUR, at - 2 * HOUR},
        {{at, HOUR, -HOUR}, at + HOUR, at + 2 * HOUR},
        // Far from the present, before 1970 too.
        {{-remote, HOUR, 2 * HOUR}, -remote + HOUR + 1800, -remote + 1800},
        {{-remote, 2 * HOUR, HOUR}, -remote + HOUR + 1800, -remote - 1800},
        {{remote, HOUR, 2 * HOUR}, remote + HOUR + 1800, remote + 1800},
        {{remote, 2 * HOUR, HOUR}, remote + HOUR + 1800, remote - 1800},
        {{at, HOUR, 2 * HOUR}, -11644473600, -11644473600 - HOUR},
        {{at, HOUR, 2 * HOUR}, 910670515199, 910670515199 - 2 * HOUR},
    };
    for (const auto& row : cases)
        EXPECT_EQ(OsCalendar::universalOf(row._local, [&row](std::int64_t universal)
                                          { return row._change.offsetAt(universal); }),
                  row._universal)
            << "from " << row._change._before << " to " << row._change._behind << " at "
            << row._change._at << ", local " << row._local - row._change._at << " behind that";
}

TEST(OsCalendar, LocalTimesAgreeWithASearchOfAllInstants)
{
    const std::int64_t offsets[] = {-12 * HOUR, -5 * HOUR, -4 * HOUR, -1800,     0,
                                    HOUR,       2 * HOUR,  5400,      14 * HOUR, 13 * HOUR};
    const std::int64_t step = 900;
    const std::int64_t at = 1600 * DAY;
    for (const std::int64_t before : offsets)
        for (const std::int64_t behind : offsets)
        {
            // No place moved by more than a day.
            if (before - behind > DAY || behind - before > DAY) continue;
            const Change change = {at, before, behind};
            const auto offsetAt = [&change](std::int64_t universal)
            { return change.offsetAt(universal); };
            for (std::int64_t local = at - 2 * DAY; local <= at + 2 * DAY; local += step)
            {
                std::int64_t expected = local - before; // what holds if clocks skip it
                for (std::int64_t u = local - DAY; u <= local + DAY; u += step)
                    if (u + change.offsetAt(u) == local)
                    {
                        expected = u;
                        break;
                    }
                EXPECT_EQ(OsCalendar::universalOf(local, offsetAt), expected)
                    << "from " << before << " to " << behind << ", local " << local - at;
            }
        }
}

TEST(OsCalendar, ChangesEveryHalfYearDoNotDisturbEachOther)
{
    constexpr std::int64_t half = 182 * DAY;
    // Summer and winter in turn.
    const auto offsetAt = [](std::int64_t universal) -> std::int64_t
    {
        const std::int64_t number = universal / half;
        return number % 2 == 0 ? HOUR : 2 * HOUR;
    };
    for (std::int64_t number = 1; number < 200; ++number)
    {
        const std::int64_t at = number * half;
        const bool isSpring = number % 2 == 1;
        EXPECT_EQ(OsCalendar::universalOf(at + HOUR + 1800, offsetAt),
                  isSpring ? at + 1800 : at - 1800);
        EXPECT_EQ(OsCalendar::universalOf(at + half / 2, offsetAt),
                  at + half / 2 - (isSpring ? 2 * HOUR : HOUR));
    }
}

} // namespace

#include "base/osDateUtil.h"

#include "base/osDateEx.h"

#include "support/platform.h"
#include "support/variableGuard.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <ostream>
#include <random>
#include <ratio>
#include <string>
#include <vector>

namespace
{

using support::VariableGuard;
using Zu::OsDateEx;
using Zu::OsDateTypes;
using Zu::OsDateUtil;
using DateRep = OsDateTypes::DateRep;
using DateStruct = OsDateTypes::DateStruct;

using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10000000>>;
constexpr std::chrono::sys_days ORIGIN =
    std::chrono::year(1601) / std::chrono::January / std::chrono::day(1);

constexpr std::uint64_t TICKS_PER_SECOND = 10000000;
constexpr std::uint64_t TICKS_PER_MILLISECOND = 10000;
constexpr std::uint64_t TICKS_PER_HOUR = 3600 * TICKS_PER_SECOND;
constexpr std::uint64_t TICKS_PER_DAY = 24 * TICKS_PER_HOUR;
constexpr std::uint64_t END_OF_COUNTS = std::uint64_t{1} << 63;

// 1 January 2020 and 2030.
constexpr std::uint64_t BEGIN_OF_2020 = 132223104000000000;
constexpr std::uint64_t BEGIN_OF_2030 = 135379296000000000;

constexpr DateRep repOf(std::uint64_t count)
{
    return {static_cast<std::uint32_t>(count >> 32), static_cast<std::uint32_t>(count)};
}

constexpr std::uint64_t countOf(const DateRep& date)
{
    return std::uint64_t{date._high} << 32 | date._low;
}

// What makeTime() is given.
struct Fields
{
    int _year;
    int _month;
    int _day;
    int _hour;
    int _minute;
    double _second;
};

std::ostream& operator<<(std::ostream& os, const Fields& fields)
{
    return os << fields._year << "-" << fields._month << "-" << fields._day << " " << fields._hour
              << ":" << fields._minute << ":" << fields._second;
}

// The count of the fields; none if they are refused, and then the output must be untouched.
std::optional<std::uint64_t> made(const Fields& fields,
                                  OsDateTypes::TimeMode mode = OsDateTypes::TimeUniversal)
{
    const DateRep before = {0x12345678, 0x9ABCDEF0};
    DateRep date = before;
    if (OsDateUtil::makeTime(fields._year, fields._month, fields._day, fields._hour, fields._minute,
                             fields._second, mode, date))
        return countOf(date);
    EXPECT_TRUE(date == before) << fields;
    return std::nullopt;
}

DateStruct fieldsOf(std::uint64_t count, OsDateTypes::TimeMode mode = OsDateTypes::TimeUniversal)
{
    return OsDateUtil::convertToDateStruct(repOf(count), mode);
}

// To the minute.
std::string textOf(const DateStruct& date)
{
    const auto twoDigits = [](int number)
    { return (number < 10 ? "0" : "") + std::to_string(number); };
    return std::to_string(date.year) + "-" + twoDigits(date.month) + "-" + twoDigits(date.day) +
           " " + twoDigits(date.hour) + ":" + twoDigits(date.minute);
}

std::string reasonOf(std::uint64_t count, OsDateTypes::TimeMode mode)
{
    try
    {
        fieldsOf(count, mode);
    }
    catch (const OsDateEx::ExInvalidDate& exception)
    {
        return exception.getReason();
    }
    return "nothing raised";
}

TEST(OsDateUtil, DatesAndTheirCounts)
{
    const struct
    {
        Fields _fields;
        std::uint64_t _count;
        int _dayOfWeek;
    } cases[] = {
        {{1601, 1, 1, 0, 0, 0}, 0, 1},
        {{1601, 1, 1, 0, 0, 0.001}, 10000, 1},
        {{1601, 1, 1, 23, 59, 59}, 863990000000, 1},
        {{1970, 1, 1, 0, 0, 0}, 116444736000000000, 4},
        {{2000, 2, 29, 12, 0, 1.5}, 125962992015000000, 2},
        {{2020, 1, 1, 0, 0, 0}, BEGIN_OF_2020, 3},
        {{2030, 1, 1, 0, 0, 0}, BEGIN_OF_2030, 2},
        {{30827, 12, 31, 23, 59, 59}, 9223149887990000000, 5},
    };
    for (const auto& row : cases)
    {
        EXPECT_EQ(made(row._fields), row._count) << row._fields;
        const DateStruct date = fieldsOf(row._count);
        EXPECT_EQ(date.year, row._fields._year) << row._fields;
        EXPECT_EQ(date.month, row._fields._month) << row._fields;
        EXPECT_EQ(date.day, row._fields._day) << row._fields;
        EXPECT_EQ(date.hour, row._fields._hour) << row._fields;
        EXPECT_EQ(date.minute, row._fields._minute) << row._fields;
        EXPECT_EQ(date.second, row._fields._second) << row._fields;
        EXPECT_EQ(date.dayOfWeek, row._dayOfWeek) << row._fields;
    }
}

TEST(OsDateUtil, EveryDayOfEightCenturiesIsTheStandardCalendars)
{
    const std::chrono::sys_days end =
        std::chrono::year(2401) / std::chrono::January / std::chrono::day(1);
    // The time of the day wanders with the date.
    std::uint64_t timeOfDay = 0;
    for (std::chrono::sys_days day = ORIGIN; day < end; day += std::chrono::days(1))
    {
        timeOfDay = (timeOfDay + 7 * 3600 + 11 * 60 + 13) % 86400;
        const auto hour = static_cast<int>(timeOfDay / 3600);
        const auto minute = static_cast<int>(timeOfDay / 60 % 60);
        const auto second = static_cast<int>(timeOfDay % 60);
        const std::uint64_t count =
            static_cast<std::uint64_t>(Ticks(day - ORIGIN).count()) + timeOfDay * TICKS_PER_SECOND;
        const std::chrono::year_month_day date(day);
        const Fields fields = {static_cast<int>(date.year()),
                               static_cast<int>(static_cast<unsigned int>(date.month())),
                               static_cast<int>(static_cast<unsigned int>(date.day())),
                               hour,
                               minute,
                               static_cast<double>(second)};
        ASSERT_EQ(made(fields), count) << fields;
        const DateStruct actual = fieldsOf(count);
        ASSERT_TRUE(actual.year == fields._year && actual.month == fields._month &&
                    actual.day == fields._day && actual.hour == hour && actual.minute == minute &&
                    actual.second == second)
            << textOf(actual) << " for " << fields;
        ASSERT_EQ(actual.dayOfWeek, static_cast<int>(std::chrono::weekday(day).c_encoding()))
            << fields;
    }
}

TEST(OsDateUtil, RandomInstantsAreTheStandardCalendarsToTheMillisecond)
{
    std::mt19937_64 random(101);
    for (int i = 0; i < 20000; ++i)
    {
        const std::uint64_t count =
            random() % (i % 2 == 0 ? END_OF_COUNTS : 800 * 365 * TICKS_PER_DAY);
        const Ticks sinceOrigin(static_cast<std::int64_t>(count));
        const auto days = std::chrono::floor<std::chrono::days>(sinceOrigin);
        const std::chrono::year_month_day date(ORIGIN + days);
        const std::chrono::hh_mm_ss time(sinceOrigin - days);
        const auto milliseconds =
            std::chrono::floor<std::chrono::milliseconds>(time.subseconds()).count();

        const DateStruct actual = fieldsOf(count);
        ASSERT_EQ(actual.year, static_cast<int>(date.year())) << count;
        ASSERT_EQ(actual.month, static_cast<int>(static_cast<unsigned int>(date.month()))) << count;
        ASSERT_EQ(actual.day, static_cast<int>(static_cast<unsigned int>(date.day()))) << count;
        ASSERT_EQ(actual.hour, time.hours().count()) << count;
        ASSERT_EQ(actual.minute, time.minutes().count()) << count;
        ASSERT_EQ(actual.second, static_cast<double>(milliseconds) * 0.001 +
                                     static_cast<double>(time.seconds().count()))
            << count;
        ASSERT_EQ(actual.dayOfWeek,
                  static_cast<int>(std::chrono::weekday(ORIGIN + days).c_encoding()))
            << count;

        if (actual.year > 30827) continue;
        ASSERT_EQ(made({actual.year, actual.month, actual.day, actual.hour, actual.minute,
                        actual.second}),
                  count - count % TICKS_PER_MILLISECOND)
            << count;
    }
}

TEST(OsDateUtil, FieldsThatAreNoDateAreRefused)
{
    const Fields refused[] = {
        {1600, 12, 31, 23, 59, 59}, {0, 1, 1, 0, 0, 0},       {-1, 1, 1, 0, 0, 0},
        {-2000, 1, 1, 0, 0, 0},     {30828, 1, 1, 0, 0, 0},   {31000, 1, 1, 0, 0, 0},
        {2000, 0, 1, 0, 0, 0},      {2000, 13, 1, 0, 0, 0},   {2000, -1, 1, 0, 0, 0},
        {2000, 1, 0, 0, 0, 0},      {2000, 1, -1, 0, 0, 0},   {2000, 1, 32, 0, 0, 0},
        {2000, 4, 31, 0, 0, 0},     {2000, 6, 31, 0, 0, 0},   {2000, 9, 31, 0, 0, 0},
        {2000, 11, 31, 0, 0, 0},    {2000, 2, 30, 0, 0, 0},   {2001, 2, 29, 0, 0, 0},
        {1900, 2, 29, 0, 0, 0},     {2100, 2, 29, 0, 0, 0},   {2000, 1, 1, 24, 0, 0},
        {2000, 1, 1, -1, 0, 0},     {2000, 1, 1, 0, 60, 0},   {2000, 1, 1, 0, -1, 0},
        {2000, 1, 1, 0, 0, 60},     {2000, 1, 1, 0, 0, 60.5}, {2000, 1, 1, 0, 0, 61},
        {2000, 1, 1, 0, 0, -1},     {2000, 1, 1, 0, 0, -1.5}, {2000, 1, 1, 24, 0, 0.5},
    };
    for (const Fields& fields : refused)
    {
        EXPECT_EQ(made(fields), std::nullopt) << fields;
        EXPECT_EQ(made(fields, OsDateTypes::TimeLocal), std::nullopt) << fields;
    }
    EXPECT_TRUE(made({1601, 1, 1, 0, 0, 0}));
    EXPECT_TRUE(made({30827, 12, 31, 23, 59, 59.999}));
    EXPECT_TRUE(made({2000, 2, 29, 23, 59, 59.999}));
    EXPECT_TRUE(made({2400, 2, 29, 0, 0, 0}));
}

TEST(OsDateUtil, TheFiveIntegersAreCutTo16Bits)
{
    const std::optional<std::uint64_t> plain = made({2000, 5, 6, 7, 8, 9.25});
    ASSERT_TRUE(plain);
    const int cut = 65536;
    const Fields same[] = {
        {cut + 2000, 5, 6, 7, 8, 9.25},
        {2000, cut + 5, 6, 7, 8, 9.25},
        {2000, 5, cut + 6, 7, 8, 9.25},
        {2000, 5, 6, cut + 7, 8, 9.25},
        {2000, 5, 6, 7, cut + 8, 9.25},
        {2000 - cut, 5 - cut, 6 - cut, 7 - cut, 8 - cut, 9.25},
        {1000 * cut + 2000, 5 - 1000 * cut, 3 * cut + 6, 7 + 9 * cut, 8 - 32767 * cut, 9.25},
    };
    for (const Fields& fields : same) EXPECT_EQ(made(fields), plain) << fields;
    EXPECT_EQ(made({2000, cut, 6, 7, 8, 9.25}), std::nullopt);
    EXPECT_EQ(made({cut + 1600, 5, 6, 7, 8, 9.25}), std::nullopt);
}

TEST(OsDateUtil, FractionsAreRoundedToTheNearestMillisecond)
{
    const struct
    {
        double _second;
        int _milliseconds;
    } cases[] = {
        {0, 0},
        {0.0004, 0},
        {0.0006, 1},
        {0.001, 1},
        {0.0014, 1},
        {0.0016, 2},
        {0.2344, 234},
        {0.2346, 235},
        {0.5, 500},
        {0.9984, 998},
        {0.9986, 999},
        {0.999, 999},
        {0.9994, 999},
        {1.5, 1500},
        {30.1234, 30123},
        {30.1236, 30124},
        {59, 59000},
        {59.9994, 59999},
        {59.0004, 59000},
        {-0.0, 0},
        // Below 0 the whole seconds are 0, and the fraction counts up from -1.
        {-0.5, 500},
        {-0.25, 750},
        {-0.9994, 1},
        {-0.9996, 0},
        {-0.999, 1},
    };
    const std::optional<std::uint64_t> start = made({2000, 1, 1, 0, 0, 0});
    ASSERT_TRUE(start);
    for (const auto& row : cases)
        EXPECT_EQ(made({2000, 1, 1, 0, 0, row._second}),
                  *start + static_cast<std::uint64_t>(row._milliseconds) * TICKS_PER_MILLISECOND)
            << row._second;
}

TEST(OsDateUtil, EveryMillisecondOfASecondComesBack)
{
    const std::optional<std::uint64_t> start = made({2000, 1, 1, 0, 0, 0});
    ASSERT_TRUE(start);
    for (const int whole : {0, 1, 29, 59})
        for (int milliseconds = 0; milliseconds < 1000; ++milliseconds)
        {
            const double second = milliseconds * 0.001 + whole;
            const std::uint64_t count =
                *start +
                static_cast<std::uint64_t>(whole * 1000 + milliseconds) * TICKS_PER_MILLISECOND;
            EXPECT_EQ(made({2000, 1, 1, 0, 0, second}), count) << second;
            EXPECT_EQ(fieldsOf(count).second, second);
            EXPECT_EQ(fieldsOf(count + TICKS_PER_MILLISECOND - 1).second, second);
        }
}

TEST(OsDateUtil, AFractionThatRoundsToAWholeSecondIsRefused)
{
    for (const double second : {59.9996, 0.9996, 0.99951, 30.9999, 0.9999999, -0.0001, -0.0004})
    {
        EXPECT_EQ(made({2000, 1, 1, 0, 0, second}), std::nullopt) << second;
        EXPECT_EQ(made({2000, 1, 1, 0, 0, second}, OsDateTypes::TimeLocal), std::nullopt) << second;
    }
}

TEST(OsDateUtil, SecondsThatAreNoneAreRefused)
{
    const double infinite = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double second :
         {nan, -nan, infinite, -infinite, 1e6, -1e6, 2147483648.0, -2147483649.0, 4294967296.0,
          1e18, 9223372036854775808.0, -9223372036854775808.0, 18446744073709551616.0, 1e300,
          -1e300, std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest()})
        EXPECT_EQ(made({2000, 1, 1, 0, 0, second}), std::nullopt) << second;
}

TEST(OsDateUtil, CountsFrom2ToThe63rdOnAreNoDates)
{
    for (const std::uint64_t count : {END_OF_COUNTS, END_OF_COUNTS + 1,
                                      END_OF_COUNTS + (END_OF_COUNTS >> 1), ~std::uint64_t{0}})
    {
        EXPECT_EQ(reasonOf(count, OsDateTypes::TimeUniversal), "Invalid date specified.") << count;
        EXPECT_EQ(reasonOf(count, OsDateTypes::TimeLocal), "Invalid date specified.") << count;
    }
    const DateStruct last = fieldsOf(END_OF_COUNTS - 1);
    EXPECT_EQ(textOf(last), "30828-09-14 02:48");
    EXPECT_EQ(last.second, 477 * 0.001 + 5);
}

TEST(OsDateUtil, AddAndDiffGoThroughADouble)
{
    std::mt19937_64 random(102);
    std::uniform_real_distribution<double> seconds(-1e6, 1e6);
    for (int i = 0; i < 10000; ++i)
    {
        const std::uint64_t count = BEGIN_OF_2020 + random() % (BEGIN_OF_2030 - BEGIN_OF_2020);
        const double s = i % 2 == 0 ? seconds(random) : std::trunc(seconds(random));
        const std::uint64_t later = countOf(OsDateUtil::add(repOf(count), s));
        const std::uint64_t earlier = countOf(OsDateUtil::diff(repOf(count), s));
        ASSERT_EQ(later, static_cast<std::uint64_t>(s * 1e7 + static_cast<double>(count)));
        ASSERT_EQ(earlier, static_cast<std::uint64_t>(static_cast<double>(count) - s * 1e7));
        ASSERT_EQ(later % 16, 0U) << count;
        ASSERT_EQ(earlier % 16, 0U) << count;
        // Each of the two roundings is by 8 at most, and the product loses less than a tick.
        const std::int64_t ticks = std::llround(s * 1e7);
        ASSERT_LE(std::abs(static_cast<std::int64_t>(later - count) - ticks), 17) << count;
        ASSERT_LE(std::abs(static_cast<std::int64_t>(count - earlier) - ticks), 17) << count;
    }
}

TEST(OsDateUtil, AtPresentDayDatesSumsAreRoundedTo16Ticks)
{
    const struct
    {
        std::uint64_t _count;
        double _seconds;
        std::uint64_t _sum;
    } cases[] = {
        {BEGIN_OF_2020, 0, BEGIN_OF_2020},
        {BEGIN_OF_2020 + 7, 0, BEGIN_OF_2020},
        {BEGIN_OF_2020 + 8, 0, BEGIN_OF_2020},
        {BEGIN_OF_2020 + 9, 0, BEGIN_OF_2020 + 16},
        {BEGIN_OF_2020 + 24, 0, BEGIN_OF_2020 + 32},
        {BEGIN_OF_2020, 1e-7, BEGIN_OF_2020},
        {BEGIN_OF_2020, 1.6e-6, BEGIN_OF_2020 + 16},
        {BEGIN_OF_2020, 1, BEGIN_OF_2020 + 10000000},
        {BEGIN_OF_2020 + 1, 86400, BEGIN_OF_2020 + TICKS_PER_DAY},
        {BEGIN_OF_2020 + 1, -86400, BEGIN_OF_2020 - TICKS_PER_DAY},
        // Early in the 17th century, every tick has its double.
        {1, 1e-7, 2},
        {3, 2, 20000003},
        {TICKS_PER_DAY * 365 + 1, -1, TICKS_PER_DAY * 365 + 1 - TICKS_PER_SECOND},
        // Fractions of a tick are truncated.
        {100, 1.9e-7, 101},
        {100, -1.9e-7, 98},
    };
    static_assert(BEGIN_OF_2020 % 32 == 0);
    for (const auto& row : cases)
    {
        EXPECT_EQ(countOf(OsDateUtil::add(repOf(row._count), row._seconds)), row._sum)
            << row._count << " and " << row._seconds;
        EXPECT_EQ(countOf(OsDateUtil::diff(repOf(row._count), -row._seconds)), row._sum)
            << row._count << " and " << row._seconds;
    }
}

TEST(OsDateUtil, TheDifferenceOfASumIsWhatWasAdded)
{
    const DateRep date = repOf(BEGIN_OF_2020 + 12345678901237);
    EXPECT_NEAR(OsDateUtil::diff(OsDateUtil::add(date, 10.0), date), 10.0, 5e-6);
    EXPECT_NEAR(OsDateUtil::diff(date, OsDateUtil::diff(date, 10.0)), 10.0, 5e-6);
}

TEST(OsDateUtil, TheDifferenceOfTwoDatesIsExactToTheTick)
{
    const struct
    {
        std::uint64_t _a;
        std::uint64_t _b;
        std::int64_t _ticks;
    } cases[] = {
        {0, 0, 0},
        {BEGIN_OF_2020, BEGIN_OF_2020, 0},
        {1, 0, 1},
        {0, 1, -1},
        {BEGIN_OF_2020 + 1, BEGIN_OF_2020, 1},
        {BEGIN_OF_2020, BEGIN_OF_2020 + 1, -1},
        {BEGIN_OF_2020 + 3, BEGIN_OF_2020 + 20, -17},
        {BEGIN_OF_2030, BEGIN_OF_2020, 3156192000000000},
        {BEGIN_OF_2020, BEGIN_OF_2030, -3156192000000000},
        {0x100000000, 0xFFFFFFFF, 1},
        {0xFFFFFFFF, 0x100000000, -1},
        {END_OF_COUNTS - 1, 0, 0x7FFFFFFFFFFFFFFF},
        // The difference is a signed one.
        {~std::uint64_t{0}, 0, -1},
        {END_OF_COUNTS, END_OF_COUNTS - 1, 1},
    };
    for (const auto& row : cases)
        EXPECT_EQ(OsDateUtil::diff(repOf(row._a), repOf(row._b)),
                  static_cast<double>(row._ticks) * 1e-7)
            << row._a << " less " << row._b;
    EXPECT_EQ(OsDateUtil::diff(repOf(BEGIN_OF_2020 + 1), repOf(BEGIN_OF_2020)), 1e-7);
}

TEST(OsDateUtil, ComparesTheUnsignedCounts)
{
    // In ascending order.
    const std::uint64_t counts[] = {0,
                                    1,
                                    0xFFFFFFFF,
                                    0x100000000,
                                    0x100000001,
                                    0x1FFFFFFFF,
                                    BEGIN_OF_2020,
                                    BEGIN_OF_2020 + 1,
                                    END_OF_COUNTS - 1,
                                    END_OF_COUNTS,
                                    ~std::uint64_t{0}};
    for (const std::uint64_t a : counts)
        for (const std::uint64_t b : counts)
            EXPECT_EQ(OsDateUtil::compare(repOf(a), repOf(b)), a < b ? -1 : (a > b ? 1 : 0))
                << a << " and " << b;
}

// A reading of another clock, as a count cut to milliseconds.
std::uint64_t systemCount()
{
    // Nanoseconds cannot count from the origin on.
    const auto now =
        std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    return static_cast<std::uint64_t>((now - ORIGIN).count()) * TICKS_PER_MILLISECOND;
}

TEST(OsDateUtil, TheCurrentTimeIsTheSystemClocksToTheMillisecond)
{
    // On Windows the two readings may come from clocks that move on at different paces.
    const std::uint64_t pace = support::onWindows ? 16 * TICKS_PER_MILLISECOND : 0;
    for (int i = 0; i < 1000; ++i)
    {
        const std::uint64_t before = systemCount();
        const std::uint64_t now = countOf(OsDateUtil::getCurrentTime());
        const std::uint64_t behind = systemCount();
        EXPECT_GE(now + pace, before);
        EXPECT_LE(now, behind + pace);
        EXPECT_EQ(now % TICKS_PER_MILLISECOND, 0U);
    }
}

// Puts the process into a place of the world.
class OsDateUtilLocalTest : public testing::Test
{
protected:
    // False where the environment does not affect local time; then the test has to end.
    bool moveTo(const char* rules)
    {
        _guard.set(rules);
        return !support::onWindows;
    }

    VariableGuard _guard = VariableGuard("TZ");
};

constexpr const char* CENTRAL_EUROPE = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr const char* SKIP_REASON =
    "here local time is the present day's offset from UTC, which the environment does not set";

// The instant of a local time; its text in UTC.
std::string universalOf(const Fields& local)
{
    const std::optional<std::uint64_t> count = made(local, OsDateTypes::TimeLocal);
    return count ? textOf(fieldsOf(*count)) : "refused";
}

std::string localOf(const Fields& universal)
{
    const std::optional<std::uint64_t> count = made(universal);
    return count ? textOf(fieldsOf(*count, OsDateTypes::TimeLocal)) : "refused";
}

TEST_F(OsDateUtilLocalTest, LocalTimesHaveTheOffsetOfTheirDate)
{
    if (!moveTo(CENTRAL_EUROPE)) GTEST_SKIP() << SKIP_REASON;
    const struct
    {
        Fields _local;
        const char* _universal;
    } cases[] = {
        {{2021, 1, 15, 12, 0, 0}, "2021-01-15 11:00"},
        {{2021, 7, 15, 12, 0, 0}, "2021-07-15 10:00"},
        {{2021, 1, 1, 0, 30, 0}, "2020-12-31 23:30"},
        {{2021, 7, 1, 0, 30, 0}, "2021-06-30 22:30"},
        {{2300, 1, 15, 12, 0, 0}, "2300-01-15 11:00"},
        {{2300, 7, 15, 12, 0, 0}, "2300-07-15 10:00"},
        // Clocks go from 2:00 to 3:00; times that they skip are counted by the earlier offset.
        {{2021, 3, 28, 1, 59, 59.999}, "2021-03-28 00:59"},
        {{2021, 3, 28, 2, 0, 0}, "2021-03-28 01:00"},
        {{2021, 3, 28, 2, 30, 0}, "2021-03-28 01:30"},
        {{2021, 3, 28, 2, 59, 59.999}, "2021-03-28 01:59"},
        {{2021, 3, 28, 3, 0, 0}, "2021-03-28 01:00"},
        // They go from 3:00 back to 2:00; of times that they show twice, the first.
        {{2021, 10, 31, 1, 59, 59.999}, "2021-10-30 23:59"},
        {{2021, 10, 31, 2, 0, 0}, "2021-10-31 00:00"},
        {{2021, 10, 31, 2, 30, 0}, "2021-10-31 00:30"},
        {{2021, 10, 31, 2, 59, 59.999}, "2021-10-31 00:59"},
        {{2021, 10, 31, 3, 0, 0}, "2021-10-31 02:00"},
    };
    for (const auto& row : cases) EXPECT_EQ(universalOf(row._local), row._universal) << row._local;
}

TEST_F(OsDateUtilLocalTest, ATimeThatClocksSkipComesBackAnHourLater)
{
    if (!moveTo(CENTRAL_EUROPE)) GTEST_SKIP() << SKIP_REASON;
    const std::optional<std::uint64_t> count =
        made({2021, 3, 28, 2, 30, 15.25}, OsDateTypes::TimeLocal);
    ASSERT_TRUE(count);
    const DateStruct date = fieldsOf(*count, OsDateTypes::TimeLocal);
    EXPECT_EQ(textOf(date), "2021-03-28 03:30");
    EXPECT_EQ(date.second, 15.25);
}

TEST_F(OsDateUtilLocalTest, InstantsHaveTheOffsetOfTheirDate)
{
    if (!moveTo(CENTRAL_EUROPE)) GTEST_SKIP() << SKIP_REASON;
    const struct
    {
        Fields _universal;
        const char* _local;
    } cases[] = {
        {{2021, 1, 15, 11, 0, 0}, "2021-01-15 12:00"},
        {{2021, 7, 15, 10, 0, 0}, "2021-07-15 12:00"},
        {{2021, 3, 28, 0, 59, 59.999}, "2021-03-28 01:59"},
        {{2021, 3, 28, 1, 0, 0}, "2021-03-28 03:00"},
        {{2021, 10, 31, 0, 30, 0}, "2021-10-31 02:30"},
        {{2021, 10, 31, 0, 59, 59.999}, "2021-10-31 02:59"},
        {{2021, 10, 31, 1, 0, 0}, "2021-10-31 02:00"},
        {{2021, 10, 31, 1, 30, 0}, "2021-10-31 02:30"},
        {{2021, 10, 31, 2, 0, 0}, "2021-10-31 03:00"},
        {{2300, 7, 15, 10, 0, 0}, "2300-07-15 12:00"},
    };
    for (const auto& row : cases) EXPECT_EQ(localOf(row._universal), row._local) << row._universal;
}

TEST_F(OsDateUtilLocalTest, PlacesOfOtherRules)
{
    const struct
    {
        const char* _rules;
        Fields _universal;
        const char* _local;
    } cases[] = {
        {"UTC0", {2021, 7, 15, 12, 0, 0}, "2021-07-15 12:00"},
        {"<+0530>-5:30", {2021, 7, 15, 20, 0, 0}, "2021-07-16 01:30"},
        {"<+0530>-5:30", {1700, 7, 15, 20, 0, 0}, "1700-07-16 01:30"},
        {"<+0530>-5:30", {30827, 12, 31, 12, 0, 0}, "30827-12-31 17:30"},
        {"EST5EDT,M3.2.0,M11.1.0", {2021, 1, 15, 2, 0, 0}, "2021-01-14 21:00"},
        {"EST5EDT,M3.2.0,M11.1.0", {2021, 7, 15, 2, 0, 0}, "2021-07-14 22:00"},
        {"AEST-10AEDT,M10.1.0,M4.1.0/3", {2021, 1, 15, 12, 0, 0}, "2021-01-15 23:00"},
        {"AEST-10AEDT,M10.1.0,M4.1.0/3", {2021, 7, 15, 12, 0, 0}, "2021-07-15 22:00"},
        // Half an hour of daylight saving.
        {"<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", {2021, 1, 15, 12, 0, 0}, "2021-01-15 23:00"},
        {"<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", {2021, 7, 15, 12, 0, 0}, "2021-07-15 22:30"},
    };
    for (const auto& row : cases)
    {
        if (!moveTo(row._rules)) GTEST_SKIP() << SKIP_REASON;
        EXPECT_EQ(localOf(row._universal), row._local) << row._rules << " " << row._universal;
        const std::optional<std::uint64_t> count = made(row._universal);
        ASSERT_TRUE(count);
        const DateStruct local = fieldsOf(*count, OsDateTypes::TimeLocal);
        EXPECT_EQ(made({local.year, local.month, local.day, local.hour, local.minute, local.second},
                       OsDateTypes::TimeLocal),
                  count)
            << row._rules << " " << row._universal;
    }
}

TEST_F(OsDateUtilLocalTest, TheDayOfTheWeekIsTheLocalDays)
{
    if (!moveTo("<+0530>-5:30")) GTEST_SKIP() << SKIP_REASON;
    const std::optional<std::uint64_t> saturday = made({2021, 7, 17, 20, 0, 0});
    ASSERT_TRUE(saturday);
    EXPECT_EQ(fieldsOf(*saturday).dayOfWeek, 6);
    EXPECT_EQ(fieldsOf(*saturday, OsDateTypes::TimeLocal).dayOfWeek, 0);
}

TEST_F(OsDateUtilLocalTest, AnInstantBeforeTheFirstDateIsRefused)
{
    if (!moveTo("<+0530>-5:30")) GTEST_SKIP() << SKIP_REASON;
    EXPECT_EQ(made({1601, 1, 1, 5, 29, 59.999}, OsDateTypes::TimeLocal), std::nullopt);
    EXPECT_EQ(made({1601, 1, 1, 5, 30, 0}, OsDateTypes::TimeLocal), 0U);
}

TEST_F(OsDateUtilLocalTest, ADateWhoseLocalTimeIsBeforeTheFirstDateIsNone)
{
    if (!moveTo("<-0730>7:30")) GTEST_SKIP() << SKIP_REASON;
    EXPECT_EQ(localOf({1601, 1, 1, 7, 30, 0}), "1601-01-01 00:00");
    EXPECT_THROW(localOf({1601, 1, 1, 7, 29, 0}), Zu::OsDateEx::ExInvalidDate);
}

TEST_F(OsDateUtilLocalTest, WithoutChangesOfTheOffsetThereAndBackIsTheIdentity)
{
    // Of no effect on Windows, where the offset is always the same.
    moveTo("<-0730>7:30");
    std::mt19937_64 random(103);
    for (int i = 0; i < 2000; ++i)
    {
        // A few days from the ends of the calendar, so that no offset leads out of it.
        const std::uint64_t count =
            3 * TICKS_PER_DAY + random() % (9223149887999990000 - 6 * TICKS_PER_DAY);
        const DateStruct local = fieldsOf(count, OsDateTypes::TimeLocal);
        ASSERT_EQ(made({local.year, local.month, local.day, local.hour, local.minute, local.second},
                       OsDateTypes::TimeLocal),
                  count - count % TICKS_PER_MILLISECOND)
            << count;
    }
}

TEST_F(OsDateUtilLocalTest, ThereAndBackIsTheIdentityButForTheSecondOfTwoSuchHours)
{
    if (!moveTo(CENTRAL_EUROPE)) GTEST_SKIP() << SKIP_REASON;
    const std::uint64_t halfHour = TICKS_PER_HOUR / 2;
    const std::optional<std::uint64_t> again = made({2021, 10, 31, 1, 0, 0});
    ASSERT_TRUE(again);
    std::optional<std::uint64_t> count = made({2021, 1, 1, 0, 0, 0});
    ASSERT_TRUE(count);
    for (const std::uint64_t end = *count + 365 * TICKS_PER_DAY; *count < end; *count += halfHour)
    {
        const DateStruct local = fieldsOf(*count, OsDateTypes::TimeLocal);
        const bool isAgain = *count >= *again && *count < *again + TICKS_PER_HOUR;
        EXPECT_EQ(made({local.year, local.month, local.day, local.hour, local.minute, local.second},
                       OsDateTypes::TimeLocal),
                  *count - (isAgain ? TICKS_PER_HOUR : 0))
            << textOf(local);
    }
}

TEST_F(OsDateUtilLocalTest, OnWindowsEveryDateHasThePresentOffset)
{
    if (!support::onWindows) GTEST_SKIP() << "here each date has its own offset";
    const Fields dates[] = {{1900, 1, 15, 12, 0, 0},
                            {2021, 1, 15, 12, 0, 0},
                            {2021, 7, 15, 12, 0, 0},
                            {2300, 7, 15, 12, 0, 0}};
    const auto offsetOf = [](const Fields& date)
    {
        const std::optional<std::uint64_t> universal = made(date);
        const std::optional<std::uint64_t> local = made(date, OsDateTypes::TimeLocal);
        return universal && local ? OsDateUtil::diff(repOf(*universal), repOf(*local))
                                  : std::numeric_limits<double>::quiet_NaN();
    };
    const double offset = offsetOf(dates[0]);
    EXPECT_LE(std::abs(offset), 24 * 3600);
    for (const Fields& date : dates) EXPECT_EQ(offsetOf(date), offset) << date;
}

} // namespace

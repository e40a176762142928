#include "base/lgStdText.h"

#include "support/ringText.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <ratio>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>

namespace shapes
{

enum class Colour
{
    RED = -1,
    GREEN,
    BLUE
};

enum class Byte : unsigned char
{
    LAST = 255
};

// A type with its own operator.
enum class Named
{
    FIRST
};

Zu::LgStream& operator<<(Zu::LgStream& stream, Named)
{
    return stream << "first";
}

} // namespace shapes

namespace
{

using support::ringTextOf;
using namespace std::chrono_literals;
using std::chrono::duration;
using std::chrono::system_clock;
using std::chrono::time_point;

TEST(LgStdText, AnEnumeratorIsItsNumber)
{
    EXPECT_EQ(ringTextOf(shapes::Colour::RED), "-1");
    EXPECT_EQ(ringTextOf(shapes::Colour::BLUE), "1");
    EXPECT_EQ(ringTextOf(shapes::Byte::LAST), "255");
    EXPECT_EQ(ringTextOf(shapes::Named::FIRST), "first");
}

TEST(LgStdText, ADurationIsItsCountAndUnit)
{
    EXPECT_EQ(ringTextOf(250ms), "250ms");
    EXPECT_EQ(ringTextOf(-1ns), "-1ns");
    EXPECT_EQ(ringTextOf(7us), "7us");
    EXPECT_EQ(ringTextOf(0s), "0s");
    EXPECT_EQ(ringTextOf(5min), "5min");
    EXPECT_EQ(ringTextOf(3h), "3h");
    EXPECT_EQ(ringTextOf(duration<int, std::ratio<86400>>(2)), "2d");
    EXPECT_EQ(ringTextOf(duration<double>(1.5)), "1.500000s");
    EXPECT_EQ(ringTextOf(duration<signed char, std::milli>(65)), "65ms");
    EXPECT_EQ(ringTextOf(duration<int, std::ratio<1, 30>>(4)), "4[1/30]s");
    EXPECT_EQ(ringTextOf(duration<int, std::ratio<1001, 30000>>(4)), "4[1001/30000]s");
    EXPECT_EQ(ringTextOf(duration<int, std::ratio<7>>(4)), "4[7]s");
    EXPECT_EQ(ringTextOf(duration<int, std::ratio<2, 2000>>(4)), "4ms");
    EXPECT_EQ(ringTextOf(duration<int, std::pico>(4)), "4ps");
    EXPECT_EQ(ringTextOf(duration<int, std::kilo>(4)), "4ks");
}

template <class Duration> std::string dateOf(Duration since)
{
    return ringTextOf(time_point<system_clock, Duration>(since));
}

TEST(LgStdText, ATimeOfTheSystemsClockIsADateOfUtc)
{
    EXPECT_EQ(dateOf(0s), "1970-01-01T00:00:00Z");
    EXPECT_EQ(dateOf(951782399s), "2000-02-28T23:59:59Z");
    EXPECT_EQ(dateOf(951782400s), "2000-02-29T00:00:00Z");
    EXPECT_EQ(dateOf(1795364708s), "2026-11-22T16:25:08Z");
    EXPECT_EQ(dateOf(-1s), "1969-12-31T23:59:59Z");
    EXPECT_EQ(dateOf(1795364708125ms), "2026-11-22T16:25:08.125Z");
    EXPECT_EQ(dateOf(-1ms), "1969-12-31T23:59:59.999Z");
    EXPECT_EQ(dateOf(1us), "1970-01-01T00:00:00.000001Z");
    EXPECT_EQ(dateOf(-1ns), "1969-12-31T23:59:59.999999999Z");
    EXPECT_EQ(dateOf(2min), "1970-01-01T00:02:00Z");
    EXPECT_EQ(dateOf(duration<int, std::ratio<1, 30>>(1)), "1970-01-01T00:00:00.033333333Z");
    EXPECT_EQ(dateOf(duration<double>(0.5)), "1970-01-01T00:00:00Z");
    EXPECT_EQ(dateOf(duration<double, std::milli>(-0.5)), "1969-12-31T23:59:59.999Z");
}

TEST(LgStdText, TheEarliestAndTheLatestTimesAreDates)
{
    EXPECT_EQ(dateOf(std::chrono::nanoseconds::min()), "1677-09-21T00:12:43.145224192Z");
    EXPECT_EQ(dateOf(std::chrono::nanoseconds::max()), "2262-04-11T23:47:16.854775807Z");
    // Finer than the text.
    using Picoseconds = duration<std::int64_t, std::pico>;
    EXPECT_EQ(dateOf(Picoseconds(-500)), "1969-12-31T23:59:59.999999999Z");
    EXPECT_EQ(dateOf(Picoseconds(-1500)), "1969-12-31T23:59:59.999999998Z");
    EXPECT_EQ(dateOf(Picoseconds(1500)), "1970-01-01T00:00:00.000000001Z");
    EXPECT_EQ(dateOf(-62167219200s), "0000-01-01T00:00:00Z");
    EXPECT_EQ(dateOf(-62167219201s), "-0001-12-31T23:59:59Z");
    EXPECT_EQ(dateOf(253402300800s), "10000-01-01T00:00:00Z");
    // The end of time of systems that count seconds in 64 bits.
    const duration<std::int64_t> most = duration<std::int64_t>::max();
    EXPECT_EQ(dateOf(most), "292277026596-12-04T15:30:07Z");
}

// The calendar of the standard library, day by day.
TEST(LgStdText, EachDayHasTheDateOfTheCalendar)
{
    for (int day = -800000; day < 800000; day += 61)
    {
        const std::chrono::sys_days days{std::chrono::days(day)};
        const std::chrono::year_month_day date(days);
        char text[40];
        const int year = static_cast<int>(date.year());
        std::snprintf(
            text, sizeof text, year < 0 ? "%05d-%02u-%02uT00:00:00Z" : "%04d-%02u-%02uT00:00:00Z",
            year, static_cast<unsigned int>(date.month()), static_cast<unsigned int>(date.day()));
        ASSERT_EQ(ringTextOf(days), text);
    }
}

TEST(LgStdText, ATimeOfAnotherClockCountsFromItsBeginning)
{
    using Clock = std::chrono::steady_clock;
    EXPECT_EQ(ringTextOf(time_point<Clock, std::chrono::microseconds>(1500us)), "1500us");
}

TEST(LgStdText, AThreadsIdIsAsOnAStandardStream)
{
    for (const std::thread::id id : {std::this_thread::get_id(), std::thread::id()})
    {
        std::ostringstream os;
        os << id;
        EXPECT_EQ(ringTextOf(id), os.str());
    }
}

TEST(LgStdText, AnErrorIsItsCategoryAndNumber)
{
    EXPECT_EQ(ringTextOf(std::make_error_code(std::errc::no_such_file_or_directory)),
              "generic:" + std::to_string(ENOENT));
    EXPECT_EQ(ringTextOf(std::error_code(5, std::system_category())), "system:5");
    EXPECT_EQ(ringTextOf(std::error_condition(7, std::generic_category())), "generic:7");
}

TEST(LgStdText, AnOptionalValueIsItsValueOrNone)
{
    EXPECT_EQ(ringTextOf(std::optional<int>(5)), "5");
    EXPECT_EQ(ringTextOf(std::optional<std::string>("text")), "text");
    EXPECT_EQ(ringTextOf(std::optional<int>()), "(none)");
    EXPECT_EQ(ringTextOf(std::optional<std::chrono::milliseconds>(5ms)), "5ms");
    EXPECT_EQ(ringTextOf(std::optional<std::optional<int>>(std::optional<int>())), "(none)");
}

template <class T, class = void> constexpr bool isInsertable = false;
template <class T>
constexpr bool isInsertable<
    T, std::void_t<decltype(std::declval<Zu::LgStream&>() << std::declval<const T&>())>> = true;

struct Other
{
};

static_assert(isInsertable<std::optional<int>>);
static_assert(!isInsertable<std::optional<Other>>);
static_assert(!isInsertable<Other>);
// Nothing is taken for a path that only could be made one.
static_assert(isInsertable<std::filesystem::path>);
static_assert(!isInsertable<std::wstring>);

TEST(LgStdText, APathIsShownAsItStands)
{
    EXPECT_EQ(ringTextOf(std::filesystem::path("a b/c.txt")), "a b/c.txt");
    EXPECT_EQ(ringTextOf(std::filesystem::path(u8"Gr\u00fc\u00dfe")), "Gr\xc3\xbc\xc3\x9f"
                                                                      "e");
    EXPECT_EQ(ringTextOf(std::filesystem::path()), "");
}

} // namespace

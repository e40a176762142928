#include "base/timerPeriod.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <memory>
#include <type_traits>

namespace
{

using Zu::timerMilliseconds;
using Zu::timerMinimumPeriod;
using Zu::TimerPeriod;

static_assert(!std::is_copy_constructible_v<TimerPeriod>);
static_assert(!std::is_copy_assignable_v<TimerPeriod>);

struct Row
{
    double _seconds;
    std::uint32_t _milliseconds;
};

void expectRows(std::initializer_list<Row> rows)
{
    for (const Row& row : rows)
        EXPECT_EQ(timerMilliseconds(row._seconds), row._milliseconds) << row._seconds;
}

TEST(timerMilliseconds, AreTruncated)
{
    expectRows({
        {0.0, 0},
        {-0.0, 0},
        {5e-324, 0},
        {0.0005, 0},
        {0.0009999999999999998, 0},
        {0.001, 1},
        {0.0010000000000000002, 1},
        {0.0015, 1},
        {0.0019999999999999996, 1},
        {0.002, 2},
        {0.005, 5},
        {0.5, 500},
        {60.0, 60000},
    });
}

// 1.001 * 1000.0 is 1000.9999999999999.
TEST(timerMilliseconds, AreThoseOfTheProductInDoublePrecision)
{
    expectRows({
        {0.01, 10},
        {0.017, 17},
        {0.029, 29},
        {0.57, 570},
        {0.58, 580},
        {1.001, 1000},
        {1.005, 1004},
        {1.1, 1100},
        {1.255, 1255},
        {4.35, 4350},
        {16.4, 16400},
    });
}

TEST(timerMilliseconds, KeepTheLow32Bits)
{
    expectRows({
        {2147483.648, 2147483648},
        {4294967.295, 4294967295},
        {4294967.296, 0},
        {4294967.2965, 0},
        {4294967.297, 1},
        {4294967.298, 2},
        {8589934.597, 5},
        {1e9, 3567587328},
        {1e13, 1874919424},
        {9.2e15, 2643984384},
    });
}

TEST(timerMilliseconds, AreZeroForWhatNo64BitIntegerHolds)
{
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    expectRows({
        {9.223372036854776e15, 0},
        {9.3e15, 0},
        {-9.3e15, 0},
        {1e300, 0},
        {std::numeric_limits<double>::max(), 0},
        {std::numeric_limits<double>::lowest(), 0},
        {INFINITE, 0},
        {-INFINITE, 0},
        {std::numeric_limits<double>::quiet_NaN(), 0},
        {-std::numeric_limits<double>::quiet_NaN(), 0},
    });
}

TEST(timerMilliseconds, AreZeroForANegativeTime)
{
    expectRows({
        {-5e-324, 0},
        {-0.0005, 0},
        {-0.001, 0},
        {-1.0, 0},
        {-4294967.295, 0},
        {-4294967.297, 0},
        {-9.2e15, 0},
    });
}

TEST(TimerPeriod, TheResolutionIsThePlatformsMinimumInSeconds)
{
    EXPECT_GE(timerMinimumPeriod(), 1U);
    EXPECT_EQ(TimerPeriod::resolution(), timerMinimumPeriod() * 0.001);
}

TEST(TimerPeriod, TheMillisecondsAreTheResolutionTruncated)
{
    EXPECT_GE(TimerPeriod::milliseconds(), 1U);
    EXPECT_LE(TimerPeriod::milliseconds(), timerMinimumPeriod());
    EXPECT_EQ(TimerPeriod::milliseconds(),
              static_cast<std::uint32_t>(TimerPeriod::resolution() * 1000.0));
}

TEST(TimerPeriod, ThePrecisionMayBeAskedForManyTimesInAnyOrder)
{
    const double resolution = TimerPeriod::resolution();
    auto first = std::make_unique<TimerPeriod>();
    const auto second = std::make_unique<TimerPeriod>();
    first.reset();
    const TimerPeriod third;
    EXPECT_EQ(TimerPeriod::resolution(), resolution);
}

} // namespace

#include "base/timerPeriod.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <memory>
#include <type_traits>
#include <vector>

namespace
{

using Zu::timerMilliseconds;
using Zu::TimerPeriod;
using Zu::TimerService;
using Zu::timerSleep;
using Milliseconds = std::vector<std::uint32_t>;

static_assert(!std::is_copy_constructible_v<TimerPeriod>);
static_assert(!std::is_copy_assignable_v<TimerPeriod>);

struct TickRow
{
    double _seconds;
    std::uint32_t _milliseconds;
};

void expectRows(std::initializer_list<TickRow> rows)
{
    for (const TickRow& row : rows)
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

// The waits of a sleep, each at most 60000 ms.
struct Sleep
{
    explicit Sleep(double seconds)
        : _slept(timerSleep(seconds, 60000, [this](std::uint32_t wait) { _waits.push_back(wait); }))
    {
    }

    Milliseconds _waits;
    bool _slept;
};

TEST(timerSleep, RefusesWithoutAWaitATimeOfNoMillisecond)
{
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();
    for (const double seconds : {0.0005, 0.0009999999999999998, 0.0, -0.0005, -1.0, 4294967.296,
                                 1e300, INFINITE, -INFINITE, NO_NUMBER})
    {
        const Sleep sleep(seconds);
        EXPECT_FALSE(sleep._slept) << seconds;
        EXPECT_EQ(sleep._waits, Milliseconds{}) << seconds;
    }
}

TEST(timerSleep, WaitsOnceForTheMilliseconds)
{
    struct Row
    {
        double _seconds;
        std::uint32_t _wait;
    };
    for (const Row row : {Row{0.001, 1}, Row{0.0019, 1}, Row{0.002, 2}, Row{0.05, 50},
                          Row{4294967.298, 2}, Row{60.0, 60000}})
    {
        const Sleep sleep(row._seconds);
        EXPECT_TRUE(sleep._slept) << row._seconds;
        EXPECT_EQ(sleep._waits, Milliseconds{row._wait}) << row._seconds;
    }
}

TEST(timerSleep, WaitsSeveralTimesWhereOneWouldBeTooLong)
{
    EXPECT_EQ(Sleep(60.001)._waits, (Milliseconds{60000, 1}));
    EXPECT_EQ(Sleep(150.0)._waits, (Milliseconds{60000, 60000, 30000}));
    const Sleep longest(4294967.295);
    EXPECT_TRUE(longest._slept);
    EXPECT_EQ(longest._waits.size(), 71583U);
    EXPECT_EQ(longest._waits.back(), 4294967295 % 60000);
}

TEST(TimerPeriod, BothPlatformsStateAMillisecond)
{
    EXPECT_EQ(TimerPeriod::resolution(), 0.001);
    EXPECT_EQ(TimerPeriod::milliseconds(), 1U);
}

// A timer service that records the requests.
namespace fake
{

std::uint32_t shortestPeriod = 0;
Milliseconds begun;
Milliseconds ended;

const TimerService service{[] { return shortestPeriod; },
                           [](std::uint32_t period) { begun.push_back(period); },
                           [](std::uint32_t period) { ended.push_back(period); }};

} // namespace fake

class TimerPeriodTest : public testing::Test
{
protected:
    void SetUp() override
    {
        fake::begun.clear();
        fake::ended.clear();
    }
};

TEST_F(TimerPeriodTest, TheResolutionIsTheShortestPeriodInSeconds)
{
    struct Row
    {
        std::uint32_t _period;
        double _resolution;
        std::uint32_t _milliseconds;
    };
    for (const Row& row : {Row{1, 0.001, 1}, Row{2, 0.002, 2}, Row{10, 0.01, 10},
                           Row{16, 0.016, 16}, Row{57, 0.057, 57}, Row{1000, 1.0, 1000}})
    {
        fake::shortestPeriod = row._period;
        EXPECT_DOUBLE_EQ(TimerPeriod::resolution(fake::service), row._resolution);
        EXPECT_EQ(TimerPeriod::milliseconds(fake::service), row._milliseconds);
    }
    EXPECT_EQ(fake::begun, Milliseconds{});
}

TEST_F(TimerPeriodTest, ThePrecisionIsAskedForAndReleasedOnceEachInAnyOrder)
{
    fake::shortestPeriod = 5;
    auto first = std::make_unique<TimerPeriod>(fake::service);
    EXPECT_EQ(fake::begun, Milliseconds{5});
    fake::shortestPeriod = 3;
    auto second = std::make_unique<TimerPeriod>(fake::service);
    EXPECT_EQ(fake::begun, (Milliseconds{5, 3}));
    EXPECT_EQ(fake::ended, Milliseconds{});
    // The requested precision is released, whatever is stated by then.
    first.reset();
    EXPECT_EQ(fake::ended, Milliseconds{5});
    first = std::make_unique<TimerPeriod>(fake::service);
    second.reset();
    first.reset();
    EXPECT_EQ(fake::begun, (Milliseconds{5, 3, 3}));
    EXPECT_EQ(fake::ended, (Milliseconds{5, 3, 3}));
}

} // namespace

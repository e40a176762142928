#include "base/periodicTimerBeat.h"

#include "base/inInitGuard.h"
#include "support/rowName.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using Zu::PeriodicTimer;
using Zu::PeriodicTimerBeat;
using Zu::periodicTimerCount;
using Calls = std::vector<std::string>;

static_assert(!std::is_copy_constructible_v<PeriodicTimerBeat>);
static_assert(!std::is_copy_assignable_v<PeriodicTimerBeat>);

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

struct CountRow
{
    double _elapsed;
    double _interval;
    std::uint32_t _count;
};

void expectCounts(std::initializer_list<CountRow> rows)
{
    for (const CountRow& row : rows)
        EXPECT_EQ(periodicTimerCount(row._elapsed, row._interval), row._count)
            << row._elapsed << " / " << row._interval;
}

TEST(periodicTimerCount, IsRoundedToTheNearest)
{
    expectCounts({
        {0.0, 1.0, 0},
        {0.25, 1.0, 0},
        {0.75, 1.0, 1},
        {1.0, 1.0, 1},
        {1.25, 1.0, 1},
        {1.75, 1.0, 2},
        {0.0049, 0.01, 0},
        {0.0149, 0.01, 1},
        {0.02, 0.01, 2},
        {0.029, 0.01, 3},
        {0.0074, 0.005, 1},
        {86400.0, 0.005, 17280000},
    });
}

TEST(periodicTimerCount, ExactHalvesGoUp)
{
    expectCounts({
        {0.5, 1.0, 1},
        {1.5, 1.0, 2},
        {2.5, 1.0, 3},
        {3.5, 1.0, 4},
        {0.125, 0.25, 1},
        {0.005, 0.01, 1},
        {0.015, 0.01, 2},
        {0.0075, 0.005, 2},
    });
}

// 0.35 / 0.1 is 3.4999999999999996, and the number just below a half plus a half is 1.
TEST(periodicTimerCount, IsThatOfTheArithmeticInDoublePrecision)
{
    expectCounts({
        {0.35, 0.1, 3},
        {0.4999999999999999, 1.0, 0},
        {0.49999999999999994, 1.0, 1},
        {4503599627370496.0, 1.0, 0},
        {4503599627370497.0, 1.0, 2},
        {4503599627370499.0, 1.0, 4},
        {9007199254740994.0, 1.0, 2},
    });
}

TEST(periodicTimerCount, GoesDownForNegativeNumbers)
{
    expectCounts({
        {-0.25, 1.0, 0},
        {-0.5, 1.0, 0},
        {-0.75, 1.0, 4294967295},
        {-1.0, 1.0, 4294967295},
        {-1.5, 1.0, 4294967295},
        {-1.75, 1.0, 4294967294},
        {-2.5, 1.0, 4294967294},
        {1.0, -1.0, 4294967295},
        {-1.0, -1.0, 1},
    });
}

TEST(periodicTimerCount, KeepsTheLow32Bits)
{
    expectCounts({
        {4294967294.5, 1.0, 4294967295},
        {4294967295.25, 1.0, 4294967295},
        {4294967295.5, 1.0, 0},
        {4294967296.0, 1.0, 0},
        {4294967297.5, 1.0, 2},
        {-4294967296.0, 1.0, 0},
        {1099511627779.0, 1.0, 3},
        {4611686018427388928.0, 1.0, 1024},
    });
}

TEST(periodicTimerCount, IsZeroForWhatNo64BitIntegerHolds)
{
    expectCounts({
        {9223372036854775808.0, 1.0, 0},
        {-9223372036854775808.0, 1.0, 0},
        {1e300, 1.0, 0},
        {-1e300, 1.0, 0},
        {1.0, 1e-300, 0},
        {1.0, 5e-324, 0},
        {INFINITE, 1.0, 0},
        {-INFINITE, 1.0, 0},
        {NOT_A_NUMBER, 1.0, 0},
        {1.0, NOT_A_NUMBER, 0},
    });
}

TEST(periodicTimerCount, IsZeroForAnIntervalOfZeroOrWithoutEnd)
{
    expectCounts({
        {0.0, 0.0, 0},
        {1.0, 0.0, 0},
        {1.0, -0.0, 0},
        {-1.0, 0.0, 0},
        {1.0, INFINITE, 0},
        {-1.0, INFINITE, 0},
        {INFINITE, INFINITE, 0},
    });
}

// A timer with beats set by a test, which records the requests to the platform.
class FakeBeat : public PeriodicTimerBeat
{
public:
    explicit FakeBeat(double interval) : PeriodicTimerBeat(interval) {}

    using PeriodicTimer::_running;
    using PeriodicTimer::_startTime;
    using PeriodicTimerBeat::isBeating;
    using PeriodicTimerBeat::NO_LIMIT;

    Calls _calls;
    std::function<void()> _onBegin;
    std::function<void()> _onEnd;
    std::function<void(int)> _onWait;

private:
    void beginBeat(std::uint32_t milliseconds) override
    {
        _calls.push_back("begin " + std::to_string(milliseconds));
        if (_onBegin) _onBegin();
    }

    void endBeat() override
    {
        _calls.push_back("end");
        if (_onEnd) _onEnd();
    }

    void waitForBeat(int limit) override
    {
        _calls.push_back("wait");
        if (_onWait) _onWait(limit);
    }
};

// Timers need the packages. They start once in a process, so they stay up to its end.
void startPackages()
{
    static const char* const words[] = {"periodicTimerBeatTest", nullptr};
    static int count = 1;
    static const char* const* argv = words;
    static const Zu::InInitGuard guard(count, argv);
}

class PeriodicTimerBeatTest : public testing::Test
{
protected:
    void SetUp() override
    {
        startPackages();
    }
};

TEST_F(PeriodicTimerBeatTest, IsStoppedWithoutAStartTimeAtFirst)
{
    const FakeBeat timer(0.25);
    EXPECT_FALSE(timer._running);
    EXPECT_EQ(timer._startTime, 0);
    EXPECT_EQ(timer.getInterval(), 0.25);
    EXPECT_EQ(timer._calls, Calls());
}

TEST_F(PeriodicTimerBeatTest, ASecondStartIsRefusedAndDoesNothing)
{
    FakeBeat timer(0.01);
    EXPECT_TRUE(timer.start());
    timer._startTime = -1;
    EXPECT_FALSE(timer.start());
    EXPECT_FALSE(timer.start());
    EXPECT_TRUE(timer._running);
    EXPECT_EQ(timer._startTime, -1);
    EXPECT_EQ(timer._calls, Calls({"begin 10"}));
}

TEST_F(PeriodicTimerBeatTest, AStopOfAStoppedTimerIsRefusedAndDoesNothing)
{
    FakeBeat timer(0.01);
    EXPECT_FALSE(timer.stop());
    EXPECT_EQ(timer._calls, Calls());
    timer.start();
    EXPECT_TRUE(timer.stop());
    EXPECT_FALSE(timer.stop());
    EXPECT_FALSE(timer._running);
    EXPECT_EQ(timer._calls, Calls({"begin 10", "end"}));
}

TEST_F(PeriodicTimerBeatTest, CanBeStartedAgain)
{
    FakeBeat timer(0.01);
    for (int i = 0; i < 2; ++i)
    {
        EXPECT_TRUE(timer.start());
        EXPECT_TRUE(timer.stop());
    }
    EXPECT_EQ(timer._calls, Calls({"begin 10", "end", "begin 10", "end"}));
}

TEST_F(PeriodicTimerBeatTest, TakesTheStartTimeAfterTheBeatHasBegun)
{
    FakeBeat timer(0.01);
    double begun = 0;
    timer._onBegin = [&]
    {
        EXPECT_TRUE(timer._running);
        EXPECT_EQ(timer._startTime, 0);
        begun = timer.getCurrentTime();
    };
    timer.start();
    EXPECT_GT(begun, 0);
    EXPECT_GE(timer._startTime, begun);
    EXPECT_LE(timer._startTime, timer.getCurrentTime());
}

TEST_F(PeriodicTimerBeatTest, NoLongerRunsWhenTheBeatEnds)
{
    FakeBeat timer(0.01);
    timer.start();
    timer._onEnd = [&] { EXPECT_FALSE(timer._running); };
    EXPECT_TRUE(timer.stop());
    EXPECT_EQ(timer._calls, Calls({"begin 10", "end"}));
}

TEST_F(PeriodicTimerBeatTest, TheBeatIsSetInTruncatedMilliseconds)
{
    const std::pair<double, const char*> rows[] = {
        {0.0, "begin 0"},     {0.0005, "begin 0"},       {0.001, "begin 1"},
        {0.0015, "begin 1"},  {0.029, "begin 29"},       {1.001, "begin 1000"},
        {-1.0, "begin 0"},    {4294967.298, "begin 2"},  {INFINITE, "begin 0"},
        {0.0199, "begin 19"}, {NOT_A_NUMBER, "begin 0"},
    };
    for (const auto& [interval, call] : rows)
    {
        FakeBeat timer(interval);
        timer.start();
        EXPECT_EQ(timer._calls, Calls({call})) << interval;
    }
}

TEST_F(PeriodicTimerBeatTest, ANewIntervalStartsARunningTimerAnew)
{
    FakeBeat timer(0.01);
    timer.start();
    timer._startTime = 0;
    const double before = timer.getCurrentTime();
    timer._onEnd = [&] { EXPECT_EQ(timer.getInterval(), 0.01); };
    EXPECT_EQ(timer.setInterval(0.0205), 0.0205);
    EXPECT_EQ(timer.getInterval(), 0.0205);
    EXPECT_TRUE(timer._running);
    EXPECT_GE(timer._startTime, before);
    EXPECT_EQ(timer._calls, Calls({"begin 10", "end", "begin 20"}));
}

TEST_F(PeriodicTimerBeatTest, TheSameIntervalIsANewStartToo)
{
    FakeBeat timer(0.01);
    timer.start();
    timer._startTime = 0;
    EXPECT_EQ(timer.setInterval(0.01), 0.01);
    EXPECT_GT(timer._startTime, 0);
    EXPECT_EQ(timer._calls, Calls({"begin 10", "end", "begin 10"}));
}

TEST_F(PeriodicTimerBeatTest, ANewIntervalLeavesAStoppedTimerStopped)
{
    FakeBeat timer(0.01);
    EXPECT_EQ(timer.setInterval(0.02), 0.02);
    EXPECT_EQ(timer.getInterval(), 0.02);
    EXPECT_FALSE(timer._running);
    EXPECT_EQ(timer._startTime, 0);
    EXPECT_EQ(timer._calls, Calls());
    timer.start();
    EXPECT_EQ(timer._calls, Calls({"begin 20"}));
}

TEST_F(PeriodicTimerBeatTest, ANewIntervalIsNotChecked)
{
    FakeBeat timer(0.01);
    for (const double interval : {0.6, 0.0005, 0.0, -1.0, 1e300, INFINITE})
    {
        EXPECT_EQ(timer.setInterval(interval), interval);
        EXPECT_EQ(timer.getInterval(), interval);
    }
    EXPECT_TRUE(std::isnan(timer.setInterval(NOT_A_NUMBER)));
    EXPECT_EQ(timer._calls, Calls());
}

TEST_F(PeriodicTimerBeatTest, TheCountOfAStoppedTimerIsZero)
{
    FakeBeat timer(0.01);
    EXPECT_EQ(timer.getCurrentCount(), 0U);
    timer.start();
    timer._startTime = 0;
    timer.stop();
    EXPECT_EQ(timer.getCurrentCount(), 0U);
}

// Days are between the time that is set and the next change of the counts.
TEST_F(PeriodicTimerBeatTest, TheCountIsThatOfTheIntervalsSinceTheStart)
{
    constexpr double INTERVAL = 1e6;
    FakeBeat timer(INTERVAL);
    timer.start();
    EXPECT_EQ(timer.getCurrentCount(), 0U);
    const std::pair<double, std::uint32_t> rows[] = {
        {0.25, 0}, {0.75, 1}, {1.0, 1}, {2.25, 2}, {2.75, 3}, {1000.0, 1000}, {4294967296.0, 0},
    };
    for (const auto& [intervals, count] : rows)
    {
        timer._startTime = timer.getCurrentTime() - intervals * INTERVAL;
        EXPECT_EQ(timer.getCurrentCount(), count) << intervals;
    }
}

TEST_F(PeriodicTimerBeatTest, AWaitHasNoLimitAndReturnsTheCountAfterTheBeat)
{
    FakeBeat timer(1e6);
    timer.start();
    timer._calls.clear();
    timer._onWait = [&](int limit)
    {
        EXPECT_EQ(limit, FakeBeat::NO_LIMIT);
        timer._startTime -= 3e6;
    };
    EXPECT_EQ(timer.wait(), 3U);
    EXPECT_EQ(timer.wait(), 6U);
    EXPECT_EQ(timer._calls, Calls({"wait", "wait"}));
}

TEST_F(PeriodicTimerBeatTest, AWaitOfAStoppedTimerCountsNothing)
{
    FakeBeat timer(0.01);
    EXPECT_EQ(timer.wait(), 0U);
    EXPECT_EQ(timer._calls, Calls({"wait"}));
}

TEST_F(PeriodicTimerBeatTest, AssignmentStartsARunningTimerAnewWithTheOthersInterval)
{
    FakeBeat timer(0.01);
    FakeBeat other(0.02);
    timer.start();
    timer._startTime = 0;
    PeriodicTimer& target = timer;
    EXPECT_EQ(&(target = static_cast<const PeriodicTimer&>(other)), &target);
    EXPECT_EQ(timer.getInterval(), 0.02);
    EXPECT_TRUE(timer._running);
    EXPECT_GT(timer._startTime, 0);
    EXPECT_EQ(timer._calls, Calls({"begin 10", "end", "begin 20"}));
    EXPECT_FALSE(other._running);
    EXPECT_EQ(other._calls, Calls());
}

TEST_F(PeriodicTimerBeatTest, AssignmentLeavesAStoppedTimerStopped)
{
    FakeBeat timer(0.01);
    FakeBeat other(0.02);
    other.start();
    static_cast<PeriodicTimer&>(timer) = other;
    EXPECT_EQ(timer.getInterval(), 0.02);
    EXPECT_FALSE(timer._running);
    EXPECT_EQ(timer._startTime, 0);
    EXPECT_EQ(timer._calls, Calls());
    EXPECT_TRUE(other._running);
    EXPECT_EQ(other._calls, Calls({"begin 20"}));
}

TEST_F(PeriodicTimerBeatTest, AssignedToItselfItKeepsItsIntervalAndRunsOn)
{
    FakeBeat timer(0.01);
    timer.start();
    PeriodicTimer& target = timer;
    target = static_cast<const PeriodicTimer&>(timer);
    EXPECT_EQ(timer.getInterval(), 0.01);
    EXPECT_TRUE(timer._running);
}

// Beats at lengths that a test sets, on a clock that only they and the test move.
class ScriptedBeat : public FakeBeat
{
public:
    ScriptedBeat(double interval, std::vector<double> lengths)
        : FakeBeat(interval), _lengths(std::move(lengths))
    {
        _onBegin = [this] { _checkStart = _now; };
        _onWait = [this](int limit) { passWait(limit); };
    }

    bool check(double resolution)
    {
        _checkStart = _now;
        return isBeating(resolution, [this] { return _now; });
    }

    double _now = 1024;
    double _checkStart = 0;
    std::size_t _waits = 0;

private:
    void passWait(int limit)
    {
        if (_waits == _lengths.size()) throw std::runtime_error("waited too often");
        const double length = _lengths[_waits++];
        EXPECT_NE(limit, NO_LIMIT);
        // No beat within half a second may be cut off.
        EXPECT_GT(_now - _checkStart + limit / 1000.0, 0.5);
        _now += std::min(length, limit / 1000.0);
    }

    const std::vector<double> _lengths;
};

struct CheckRow
{
    const char* _name;
    double _interval;
    double _resolution;
    std::vector<double> _lengths;
    bool _good;
    std::size_t _waits;
};

void PrintTo(const CheckRow& row, std::ostream* stream)
{
    *stream << row._name;
}

class PeriodicTimerBeatCheck : public testing::TestWithParam<CheckRow>
{
protected:
    void SetUp() override
    {
        startPackages();
    }
};

TEST_P(PeriodicTimerBeatCheck, EndsWithAGoodBeatOrAfterHalfASecond)
{
    const CheckRow& row = GetParam();
    ScriptedBeat timer(row._interval, row._lengths);
    EXPECT_EQ(timer.check(row._resolution), row._good);
    EXPECT_EQ(timer._waits, row._waits);
    EXPECT_FALSE(timer._running);
}

// All are sums of powers of two, so that differences of times are exact.
constexpr double EIGHTH = 0.125;
constexpr double UNIT = 0.0009765625;
constexpr double SLACK = 2 * UNIT;
constexpr double BIT = 0x1p-30;
constexpr double NEVER = 1e9;

const CheckRow checkRows[] = {
    {"OnTime", EIGHTH, UNIT, {EIGHTH}, true, 1},
    {"AtTheLowerBound", EIGHTH, UNIT, {EIGHTH - SLACK}, true, 1},
    {"AtTheUpperBound", EIGHTH, UNIT, {EIGHTH + SLACK}, true, 1},
    {"BelowTheLowerBound", EIGHTH, UNIT, {EIGHTH - SLACK - BIT, EIGHTH}, true, 2},
    {"AboveTheUpperBound", EIGHTH, UNIT, {EIGHTH + SLACK + BIT, EIGHTH}, true, 2},
    {"NoSlack", EIGHTH, 0, {EIGHTH - BIT, EIGHTH + BIT, EIGHTH}, true, 3},
    {"SeveralBadOnesBeforeAGoodOne", EIGHTH, UNIT, {0, 0.0625, 0.0625, 0.0625, EIGHTH}, true, 5},
    {"GoodAtExactlyHalfASecond", EIGHTH, UNIT, {0.375, EIGHTH}, true, 2},
    {"BadAtExactlyHalfASecond", EIGHTH, UNIT, {0.5, EIGHTH}, false, 2},
    {"BadAfterHalfASecond", EIGHTH, UNIT, {0.5 + BIT, EIGHTH}, false, 1},
    {"GoodAfterHalfASecond", EIGHTH, UNIT, {0.375 + BIT, EIGHTH}, false, 2},
    {"OnlyBadOnes", EIGHTH, UNIT, {0.25, 0.0625, 0.0625, 0.0625, 0.25}, false, 5},
    {"NoBeat", EIGHTH, UNIT, {NEVER}, false, 1},
    {"NoBeatAfterABadOne", EIGHTH, UNIT, {0.0625, NEVER}, false, 2},
    {"NoBeatWithTheEndWithinTheWindow", 0.25, SLACK, {0.25 + 2 * SLACK + BIT, NEVER}, false, 2},
    {"NoBeatAtHalfASecond", 0.5, UNIT, {NEVER}, false, 1},
    {"HalfASecondOnTime", 0.5, UNIT, {0.5}, true, 1},
    {"HalfASecondEarly", 0.5, UNIT, {0.5 - SLACK}, true, 1},
    {"HalfASecondLate", 0.5, UNIT, {0.5 + BIT}, false, 1},
    {"AboveHalfASecondOnTime", 0.5 + UNIT, UNIT, {0.5 + UNIT}, false, 1},
    {"AboveHalfASecondAtItsLowerBound", 0.5 + SLACK, UNIT, {0.5}, true, 1},
    {"AboveHalfASecondByTheWindow", 0.5 + SLACK + BIT, UNIT, {0.5, NEVER}, false, 2},
    {"FarAboveHalfASecond", 0.75, UNIT, {0.75}, false, 1},
    {"ZeroAtOnce", 0, UNIT, {0}, true, 1},
    {"NegativeInterval", -EIGHTH, UNIT, {0.25, EIGHTH, EIGHTH, EIGHTH}, false, 4},
    {"NoNumber", NOT_A_NUMBER, UNIT, {0.25, EIGHTH, EIGHTH, EIGHTH}, false, 4},
    {"WithoutEnd", INFINITE, UNIT, {NEVER}, false, 1},
};

INSTANTIATE_TEST_SUITE_P(Rows, PeriodicTimerBeatCheck, testing::ValuesIn(checkRows),
                         support::RowName());

TEST_F(PeriodicTimerBeatTest, TheCheckStartsAndStopsAStoppedTimer)
{
    ScriptedBeat good(EIGHTH, {0.0625, EIGHTH});
    EXPECT_TRUE(good.check(UNIT));
    EXPECT_EQ(good._calls, Calls({"begin 125", "wait", "wait", "end"}));
    ScriptedBeat bad(EIGHTH, {NEVER});
    EXPECT_FALSE(bad.check(UNIT));
    EXPECT_EQ(bad._calls, Calls({"begin 125", "wait", "end"}));
    EXPECT_FALSE(bad._running);
}

TEST_F(PeriodicTimerBeatTest, TheCheckLeavesARunningTimerRunning)
{
    for (const double length : {EIGHTH, NEVER})
    {
        ScriptedBeat timer(EIGHTH, {length});
        timer.start();
        timer._startTime = -1;
        EXPECT_EQ(timer.check(UNIT), length == EIGHTH);
        EXPECT_TRUE(timer._running);
        EXPECT_EQ(timer._startTime, -1);
        EXPECT_EQ(timer._calls, Calls({"begin 125", "wait"}));
    }
}

TEST_F(PeriodicTimerBeatTest, TheHalfSecondOfTheCheckBeginsAfterTheStart)
{
    ScriptedBeat timer(EIGHTH, {0.25, EIGHTH});
    timer._onBegin = [&]
    {
        timer._now += 64;
        timer._checkStart = timer._now;
    };
    EXPECT_TRUE(timer.check(UNIT));
    EXPECT_EQ(timer._waits, 2U);
}

// No destructor follows for a timer whose constructor asks.
TEST_F(PeriodicTimerBeatTest, ACheckThatRaisesLeavesTheTimerAsItWas)
{
    const auto noTime = []() -> double { throw std::runtime_error("no time"); };
    FakeBeat timer(EIGHTH);
    EXPECT_THROW(timer.isBeating(UNIT, noTime), std::runtime_error);
    EXPECT_FALSE(timer._running);
    EXPECT_EQ(timer._calls, Calls({"begin 125", "end"}));
    timer.start();
    EXPECT_THROW(timer.isBeating(UNIT, noTime), std::runtime_error);
    EXPECT_TRUE(timer._running);
}

TEST_F(PeriodicTimerBeatTest, TheCheckMayBeRepeated)
{
    ScriptedBeat timer(EIGHTH, {EIGHTH, NEVER, EIGHTH});
    EXPECT_TRUE(timer.check(UNIT));
    EXPECT_FALSE(timer.check(UNIT));
    EXPECT_TRUE(timer.check(UNIT));
}

} // namespace

#include "base/intervalTimer.h"

#include "base/hwCounter.h"
#include "base/osCpuInfo.h"
#include "support/fakeTiming.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <type_traits>

namespace
{

using support::awaitTick;
using support::FakeIntervalTimer;
using Zu::HwCounter;
using Zu::HwIntervalTimer;
using Zu::IntervalTimer;
using Zu::OsCpuInfo;
using Zu::TodIntervalTimer;
using NativeTimer = TodIntervalTimer::NativeTimer;

static_assert(std::is_abstract_v<IntervalTimer>);
static_assert(std::has_virtual_destructor_v<IntervalTimer>);
static_assert(!std::is_polymorphic_v<NativeTimer>);
static_assert(std::is_same_v<decltype(NativeTimer::seconds), double>);
static_assert(std::is_same_v<decltype(NativeTimer::milliseconds), double>);

// A wall clock timer whose readings a test sets and sees.
class SetTodTimer : public TodIntervalTimer
{
public:
    using TodIntervalTimer::TodIntervalTimer;

    SetTodTimer(const NativeTimer& start, const NativeTimer& stop)
    {
        _start = start;
        _stop = stop;
    }

    NativeTimer& startValue()
    {
        return _start;
    }

    NativeTimer& stopValue()
    {
        return _stop;
    }
};

// Whether the first reading is the second or before it.
bool isInOrder(const NativeTimer& first, const NativeTimer& second)
{
    if (first.seconds != second.seconds) return first.seconds < second.seconds;
    return first.milliseconds <= second.milliseconds;
}

NativeTimer readWallClock()
{
    NativeTimer reading;
    reading.refresh();
    return reading;
}

// What all kinds have in common. The constructors make the counter's engine.
template <class T> class IntervalTimerKindTest : public testing::Test
{
protected:
    void SetUp() override
    {
        OsCpuInfo::initialize();
    }
};

using Kinds = testing::Types<HwIntervalTimer, TodIntervalTimer>;
TYPED_TEST_SUITE(IntervalTimerKindTest, Kinds);

TYPED_TEST(IntervalTimerKindTest, TheDefaultNameIsAnonymous)
{
    EXPECT_STREQ(TypeParam().getName(), "anonymous");
}

TYPED_TEST(IntervalTimerKindTest, TheNameIsKeptAsAPointer)
{
    char name[] = "name";
    TypeParam timer(name);
    EXPECT_EQ(timer.getName(), static_cast<const char*>(name));
    name[0] = 'g';
    EXPECT_STREQ(timer.getName(), "game");
    char other[] = "other";
    timer.setName(other);
    EXPECT_EQ(timer.getName(), static_cast<const char*>(other));
    timer.setName(nullptr);
    EXPECT_EQ(timer.getName(), nullptr);
}

TYPED_TEST(IntervalTimerKindTest, CopiesHaveTheSameNamePointer)
{
    const char name[] = "a";
    TypeParam timer;
    timer.setName(name);
    const TypeParam copy(timer);
    TypeParam assigned("another");
    assigned = timer;
    EXPECT_EQ(timer.getName(), static_cast<const char*>(name));
    EXPECT_EQ(copy.getName(), static_cast<const char*>(name));
    EXPECT_EQ(assigned.getName(), static_cast<const char*>(name));
}

TYPED_TEST(IntervalTimerKindTest, CopiesHaveTheStamps)
{
    TypeParam timer;
    timer.start();
    awaitTick<TypeParam>();
    timer.stop();
    const double interval = timer.timeInterval();
    EXPECT_GT(interval, 0);
    TypeParam copy(timer);
    TypeParam assigned;
    assigned = timer;
    EXPECT_EQ(copy.timeInterval(), interval);
    EXPECT_EQ(assigned.timeInterval(), interval);
    // They are stamps of their own from then on.
    copy.start();
    EXPECT_NE(copy.timeInterval(), interval);
    EXPECT_EQ(timer.timeInterval(), interval);
}

TYPED_TEST(IntervalTimerKindTest, ATimerThatWasNeverStartedHasAnIntervalOfZero)
{
    EXPECT_EQ(TypeParam().timeInterval(), 0);
    EXPECT_EQ(TypeParam("named").timeInterval(), 0);
}

TYPED_TEST(IntervalTimerKindTest, AStopAloneCountsFromTheOrigin)
{
    TypeParam stopped;
    stopped.stop();
    EXPECT_GT(stopped.timeInterval(), 0);
    TypeParam other;
    awaitTick<TypeParam>();
    other.stop();
    EXPECT_GT(other.timeInterval(), stopped.timeInterval());
}

TYPED_TEST(IntervalTimerKindTest, AStartAloneIsNegative)
{
    TypeParam timer;
    timer.start();
    EXPECT_LT(timer.timeInterval(), 0);
}

TYPED_TEST(IntervalTimerKindTest, AStopBeforeTheStartIsNegative)
{
    TypeParam timer;
    timer.stop();
    awaitTick<TypeParam>();
    timer.start();
    EXPECT_LT(timer.timeInterval(), 0);
}

TYPED_TEST(IntervalTimerKindTest, AnIntervalStaysUntilTheNextStop)
{
    TypeParam timer;
    timer.start();
    awaitTick<TypeParam>();
    timer.stop();
    const double first = timer.timeInterval();
    EXPECT_GT(first, 0);
    awaitTick<TypeParam>();
    EXPECT_GT(timer.sinceStart(), first);
    EXPECT_EQ(timer.timeInterval(), first);
    timer.stop();
    EXPECT_GT(timer.timeInterval(), first);
}

TYPED_TEST(IntervalTimerKindTest, TimeSinceTheStartGrows)
{
    TypeParam timer;
    timer.start();
    const double first = timer.sinceStart();
    EXPECT_GE(first, 0);
    awaitTick<TypeParam>();
    EXPECT_GT(timer.sinceStart(), first);
}

TYPED_TEST(IntervalTimerKindTest, ASpanWithinAnotherIsNotLonger)
{
    TypeParam outer;
    TypeParam inner;
    outer.start();
    inner.start();
    awaitTick<TypeParam>();
    inner.stop();
    outer.stop();
    EXPECT_GT(inner.timeInterval(), 0);
    EXPECT_GE(outer.timeInterval(), inner.timeInterval());
}

TYPED_TEST(IntervalTimerKindTest, WorksThroughTheBase)
{
    const std::unique_ptr<IntervalTimer> timer = std::make_unique<TypeParam>("kept");
    timer->start();
    awaitTick<TypeParam>();
    timer->stop();
    EXPECT_GT(timer->timeInterval(), 0);
    EXPECT_GE(timer->sinceStart(), timer->timeInterval());
    EXPECT_STREQ(timer->getName(), "kept");
}

TEST(IntervalTimer, TheBaseCopiesTheNameAlone)
{
    FakeIntervalTimer first("first");
    FakeIntervalTimer second("second");
    support::addSpan(second, 3);
    support::addSpan(first, 2);
    static_cast<IntervalTimer&>(first) = second;
    EXPECT_EQ(first.getName(), second.getName());
    EXPECT_EQ(first.timeInterval(), 2);
}

class HwIntervalTimerTest : public testing::Test
{
protected:
    void SetUp() override
    {
        OsCpuInfo::initialize();
        HwCounter::init();
    }
};

TEST_F(HwIntervalTimerTest, TheIntervalIsThatOfTheCountersStamps)
{
    HwIntervalTimer timer;
    const std::uint64_t beforeStart = HwCounter::timeStamp();
    timer.start();
    const std::uint64_t afterStart = HwCounter::timeStamp();
    awaitTick<HwIntervalTimer>();
    const std::uint64_t beforeStop = HwCounter::timeStamp();
    timer.stop();
    const std::uint64_t afterStop = HwCounter::timeStamp();
    EXPECT_GE(timer.timeInterval(), HwCounter::seconds(afterStart, beforeStop));
    EXPECT_LE(timer.timeInterval(), HwCounter::seconds(beforeStart, afterStop));
}

TEST_F(HwIntervalTimerTest, TimeSinceTheStartIsThatOfTheCountersStamps)
{
    HwIntervalTimer timer;
    const std::uint64_t beforeStart = HwCounter::timeStamp();
    timer.start();
    const std::uint64_t afterStart = HwCounter::timeStamp();
    awaitTick<HwIntervalTimer>();
    const std::uint64_t before = HwCounter::timeStamp();
    const double seconds = timer.sinceStart();
    const std::uint64_t after = HwCounter::timeStamp();
    EXPECT_GE(seconds, HwCounter::seconds(afterStart, before));
    EXPECT_LE(seconds, HwCounter::seconds(beforeStart, after));
}

TEST_F(HwIntervalTimerTest, WithoutAStartTimesCountFromTheCountersOrigin)
{
    HwIntervalTimer timer;
    const std::uint64_t before = HwCounter::timeStamp();
    const double seconds = timer.sinceStart();
    timer.stop();
    const std::uint64_t after = HwCounter::timeStamp();
    EXPECT_GE(seconds, HwCounter::seconds(0, before));
    EXPECT_GE(timer.timeInterval(), seconds);
    EXPECT_LE(timer.timeInterval(), HwCounter::seconds(0, after));
}

// Each runs a process in which nothing has used the counter before.
class HwIntervalTimerDeathTest : public testing::Test
{
protected:
    void SetUp() override
    {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
    }
};

// The counter's rate can be had only when there is an engine.
template <class... Arguments> void makeTimerAndEnd(Arguments... arguments)
{
    const HwIntervalTimer timer(arguments...);
    std::fprintf(stderr, "rate %d\n", HwCounter::getRateNumerator() > 0);
    std::fflush(stderr);
    std::_Exit(3);
}

TEST_F(HwIntervalTimerDeathTest, TheConstructorsMakeTheCountersEngine)
{
    EXPECT_EXIT(makeTimerAndEnd(), testing::ExitedWithCode(3), "rate 1");
    EXPECT_EXIT(makeTimerAndEnd("named"), testing::ExitedWithCode(3), "rate 1");
}

TEST(TodIntervalTimer, ANativeTimerIsZeroAtFirst)
{
    const NativeTimer reading;
    EXPECT_EQ(reading.seconds, 0);
    EXPECT_EQ(reading.milliseconds, 0);
    SetTodTimer timer("named");
    for (const NativeTimer& value : {timer.startValue(), timer.stopValue()})
    {
        EXPECT_EQ(value.seconds, 0);
        EXPECT_EQ(value.milliseconds, 0);
    }
}

TEST(TodIntervalTimer, NativeTimersAreCopied)
{
    const NativeTimer reading{12, 345};
    const NativeTimer copy(reading);
    NativeTimer assigned;
    assigned = reading;
    for (const NativeTimer& value : {copy, assigned})
    {
        EXPECT_EQ(value.seconds, 12);
        EXPECT_EQ(value.milliseconds, 345);
    }
}

TEST(TodIntervalTimer, AReadingIsWholeSecondsAndTheMillisecondsOfTheSecond)
{
    NativeTimer last = readWallClock();
    const double firstSecond = last.seconds;
    EXPECT_GT(firstSecond, 0);
    // Through a change of the second, where the milliseconds begin anew.
    while (last.seconds == firstSecond)
    {
        const NativeTimer reading = readWallClock();
        ASSERT_EQ(reading.seconds, std::floor(reading.seconds));
        ASSERT_EQ(reading.milliseconds, std::floor(reading.milliseconds));
        ASSERT_GE(reading.milliseconds, 0);
        ASSERT_LT(reading.milliseconds, 1000);
        ASSERT_TRUE(isInOrder(last, reading));
        last = reading;
    }
}

TEST(TodIntervalTimer, ARefreshForgetsTheFormerReading)
{
    const NativeTimer before = readWallClock();
    NativeTimer reading{1e15, 5000};
    reading.refresh();
    const NativeTimer after = readWallClock();
    EXPECT_TRUE(isInOrder(before, reading));
    EXPECT_TRUE(isInOrder(reading, after));
}

TEST(TodIntervalTimer, TheIntervalIsThatOfTheReadings)
{
    const struct
    {
        NativeTimer _start;
        NativeTimer _stop;
        double _seconds;
    } rows[] = {
        {{10, 900}, {11, 100}, 0.2},
        {{10, 100}, {10, 350}, 0.25},
        {{10, 0}, {12, 500}, 2.5},
        {{10, 500}, {10, 500}, 0},
        {{0, 0}, {7, 250}, 7.25},
        // The stop before the start.
        {{11, 100}, {10, 900}, -0.2},
        {{10, 750}, {10, 0}, -0.75},
        {{7, 250}, {0, 0}, -7.25},
        // Of this day and age, where the milliseconds are still exact.
        {{1.7e9, 999}, {1.7e9 + 1, 0}, 0.001},
        {{1.7e9, 0}, {1.7e9 + 86400, 1}, 86400.001},
    };
    for (const auto& row : rows)
    {
        const SetTodTimer timer(row._start, row._stop);
        // Milliseconds are not binary fractions: the error is far below one.
        EXPECT_NEAR(timer.timeInterval(), row._seconds, 1e-12) << row._seconds;
    }
    EXPECT_DOUBLE_EQ(SetTodTimer({10, 900}, {11, 100}).timeInterval(), 0.2);
}

TEST(TodIntervalTimer, StartAndStopReadTheClockEachIntoItsOwnValue)
{
    SetTodTimer timer;
    const NativeTimer before = readWallClock();
    timer.start();
    const NativeTimer between = readWallClock();
    EXPECT_TRUE(isInOrder(before, timer.startValue()));
    EXPECT_TRUE(isInOrder(timer.startValue(), between));
    EXPECT_EQ(timer.stopValue().seconds, 0);
    EXPECT_EQ(timer.stopValue().milliseconds, 0);
    timer.startValue() = {1, 2};
    timer.stop();
    EXPECT_TRUE(isInOrder(between, timer.stopValue()));
    EXPECT_TRUE(isInOrder(timer.stopValue(), readWallClock()));
    EXPECT_EQ(timer.startValue().seconds, 1);
    EXPECT_EQ(timer.startValue().milliseconds, 2);
}

TEST(TodIntervalTimer, TimeSinceTheStartIsThatToNowAndLeavesTheStop)
{
    const NativeTimer before = readWallClock();
    const NativeTimer start{before.seconds - 100, 500};
    const SetTodTimer timer(start, {3, 4});
    const double seconds = timer.sinceStart();
    const NativeTimer after = readWallClock();
    EXPECT_GE(seconds, SetTodTimer(start, before).timeInterval());
    EXPECT_LE(seconds, SetTodTimer(start, after).timeInterval());
    SetTodTimer copy(timer);
    EXPECT_EQ(copy.stopValue().seconds, 3);
    EXPECT_EQ(copy.stopValue().milliseconds, 4);
}

TEST(TodIntervalTimer, AStartInTheFutureIsNegative)
{
    const NativeTimer now = readWallClock();
    EXPECT_LT(SetTodTimer({now.seconds + 1e6, 0}, {}).sinceStart(), 0);
}

TEST(TodIntervalTimer, CopiesHaveBothReadings)
{
    const SetTodTimer timer({10, 900}, {11, 100});
    SetTodTimer copy(timer);
    SetTodTimer assigned;
    assigned = timer;
    for (SetTodTimer* const other : {&copy, &assigned})
    {
        EXPECT_EQ(other->startValue().seconds, 10);
        EXPECT_EQ(other->startValue().milliseconds, 900);
        EXPECT_EQ(other->stopValue().seconds, 11);
        EXPECT_EQ(other->stopValue().milliseconds, 100);
        EXPECT_EQ(other->timeInterval(), timer.timeInterval());
    }
}

} // namespace

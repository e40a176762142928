#include "base/timer.h"

#include "base/osCpuInfo.h"
#include "support/fakeTiming.h"

#include <cmath>
#include <gtest/gtest.h>
#include <iomanip>
#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace
{

using support::addSpan;
using support::awaitTick;
using support::FakeIntervalTimer;
using Zu::HwIntervalTimer;
using Zu::OsCpuInfo;
using Zu::TimerBase;
using Zu::TodIntervalTimer;
using FakeTimer = Zu::Timer<FakeIntervalTimer>;

static_assert(std::is_abstract_v<TimerBase>);
static_assert(std::has_virtual_destructor_v<TimerBase>);

void setNow(double seconds)
{
    FakeIntervalTimer::setNow(seconds);
}

TEST(Timer, IsStoppedWithATotalOfZeroAtFirst)
{
    FakeTimer timer;
    setNow(5);
    EXPECT_EQ(timer.totalTime(), 0);
}

TEST(Timer, TheDefaultNameIsAnonymous)
{
    EXPECT_STREQ(FakeTimer().getName(), "anonymous");
}

TEST(Timer, TheNameIsThePointerThatTheIntervalTimerHolds)
{
    char name[] = "name";
    FakeTimer timer(name);
    EXPECT_EQ(timer.getName(), static_cast<const char*>(name));
    char other[] = "other";
    timer.setName(other);
    EXPECT_EQ(timer.getName(), static_cast<const char*>(other));
    other[0] = 'm';
    EXPECT_STREQ(timer.getName(), "mther");
}

TEST(Timer, SpansAddUp)
{
    FakeTimer timer;
    addSpan(timer, 2);
    EXPECT_EQ(timer.totalTime(), 2);
    addSpan(timer, 0.5);
    EXPECT_EQ(timer.totalTime(), 2.5);
    addSpan(timer, 4);
    EXPECT_EQ(timer.totalTime(), 6.5);
}

TEST(Timer, TimeBetweenSpansDoesNotCount)
{
    FakeTimer timer;
    addSpan(timer, 2);
    setNow(100);
    EXPECT_EQ(timer.totalTime(), 2);
    timer.start();
    EXPECT_EQ(timer.totalTime(), 2);
    setNow(103);
    timer.stop();
    setNow(200);
    EXPECT_EQ(timer.totalTime(), 5);
}

TEST(Timer, TheTotalOfARunningTimerHasTheRunningSpan)
{
    FakeTimer timer;
    addSpan(timer, 2);
    setNow(10);
    timer.start();
    for (const double now : {10.0, 11.0, 11.5, 20.0})
    {
        setNow(now);
        EXPECT_EQ(timer.totalTime(), 2 + now - 10);
    }
    // Reading adds nothing.
    timer.stop();
    EXPECT_EQ(timer.totalTime(), 12);
}

TEST(Timer, ASecondStopAddsTheSpanFromTheStartAgain)
{
    FakeTimer timer;
    setNow(10);
    timer.start();
    setNow(12);
    timer.stop();
    EXPECT_EQ(timer.totalTime(), 2);
    setNow(15);
    timer.stop();
    EXPECT_EQ(timer.totalTime(), 2 + 5);
    timer.stop();
    EXPECT_EQ(timer.totalTime(), 2 + 5 + 5);
}

TEST(Timer, AStopWithoutAStartAddsTheTimeFromTheClocksOrigin)
{
    FakeTimer timer;
    setNow(4);
    timer.stop();
    EXPECT_EQ(timer.totalTime(), 4);
}

TEST(Timer, AStartWhileRunningDropsTheSpanSoFar)
{
    FakeTimer timer;
    setNow(0);
    timer.start();
    setNow(5);
    timer.start();
    EXPECT_EQ(timer.totalTime(), 0);
    setNow(7);
    EXPECT_EQ(timer.totalTime(), 2);
    timer.stop();
    EXPECT_EQ(timer.totalTime(), 2);
}

TEST(Timer, AClockThatGoesBackTakesFromTheTotal)
{
    FakeTimer timer;
    addSpan(timer, 5);
    addSpan(timer, -2);
    EXPECT_EQ(timer.totalTime(), 3);
    setNow(0);
    timer.start();
    setNow(-4);
    EXPECT_EQ(timer.totalTime(), -1);
}

TEST(Timer, ResetOfARunningTimerStopsItWithATotalOfZero)
{
    FakeTimer timer;
    addSpan(timer, 5);
    setNow(0);
    timer.start();
    setNow(3);
    timer.reset();
    EXPECT_EQ(timer.totalTime(), 0);
    setNow(9);
    EXPECT_EQ(timer.totalTime(), 0);
    addSpan(timer, 2);
    EXPECT_EQ(timer.totalTime(), 2);
}

TEST(Timer, ResetOfAStoppedTimerClearsTheTotal)
{
    FakeTimer timer;
    addSpan(timer, 5);
    timer.reset();
    EXPECT_EQ(timer.totalTime(), 0);
    addSpan(timer, 1);
    EXPECT_EQ(timer.totalTime(), 1);
}

TEST(Timer, ResetLeavesTheIntervalTimer)
{
    FakeTimer timer("kept");
    setNow(10);
    timer.start();
    timer.reset();
    EXPECT_STREQ(timer.getName(), "kept");
    setNow(13);
    timer.stop();
    EXPECT_EQ(timer.totalTime(), 3);
}

// Cannot be started, and later not stopped.
class BrokenIntervalTimer : public FakeIntervalTimer
{
public:
    using FakeIntervalTimer::FakeIntervalTimer;

    void start() override
    {
        throw std::runtime_error("start");
    }

    void stop() override
    {
        throw std::runtime_error("stop");
    }
};

TEST(Timer, WhetherItRunsIsSettledBeforeTheClockIsRead)
{
    Zu::Timer<BrokenIntervalTimer> timer;
    setNow(6);
    EXPECT_THROW(timer.start(), std::runtime_error);
    EXPECT_EQ(timer.totalTime(), 6);
    EXPECT_THROW(timer.stop(), std::runtime_error);
    EXPECT_EQ(timer.totalTime(), 0);
}

// The report, after the stream was set up.
template <class... Manipulators>
std::string reportOf(const TimerBase& timer, Manipulators... manipulators)
{
    std::ostringstream os;
    static_cast<void>((os << ... << manipulators));
    os << timer;
    return os.str();
}

TEST(Timer, TheReportIsNameAndTotalWithoutALineEnd)
{
    FakeTimer timer("parser");
    EXPECT_EQ(reportOf(timer), "Timer parser: Total = 0");
    addSpan(timer, 2.5);
    EXPECT_EQ(reportOf(timer), "Timer parser: Total = 2.5");
    timer.setName("");
    EXPECT_EQ(reportOf(timer), "Timer : Total = 2.5");
    EXPECT_EQ(reportOf(FakeTimer()), "Timer anonymous: Total = 0");
}

TEST(Timer, ANullNameIsShownAsSuch)
{
    FakeTimer timer;
    timer.setName(nullptr);
    std::ostringstream os;
    os << static_cast<const TimerBase&>(timer);
    EXPECT_EQ(os.str(), "Timer (null): Total = 0");
    EXPECT_TRUE(os.good());
}

TEST(Timer, TheReportOfARunningTimerHasTheRunningSpan)
{
    FakeTimer timer("t");
    addSpan(timer, 1);
    setNow(0);
    timer.start();
    setNow(0.25);
    EXPECT_EQ(reportOf(timer), "Timer t: Total = 1.25");
}

TEST(Timer, TheReportsNumberIsAsTheStreamFormatsIt)
{
    FakeTimer timer("t");
    addSpan(timer, 1234.56789);
    EXPECT_EQ(reportOf(timer), "Timer t: Total = 1234.57");
    EXPECT_EQ(reportOf(timer, std::setprecision(8)), "Timer t: Total = 1234.5679");
    EXPECT_EQ(reportOf(timer, std::fixed), "Timer t: Total = 1234.567890");
    EXPECT_EQ(reportOf(timer, std::fixed, std::setprecision(1)), "Timer t: Total = 1234.6");
    EXPECT_EQ(reportOf(timer, std::fixed, std::setprecision(0)), "Timer t: Total = 1235");
    EXPECT_EQ(reportOf(timer, std::showpos), "Timer t: Total = +1234.57");
}

TEST(Timer, TheReportShowsNumbersOfAllSizes)
{
    const double huge = 1e300;
    const double infinite = std::numeric_limits<double>::infinity();
    FakeTimer timer("t");
    addSpan(timer, -1.5);
    EXPECT_EQ(reportOf(timer), "Timer t: Total = -1.5");
    timer.reset();
    addSpan(timer, huge);
    EXPECT_EQ(reportOf(timer), "Timer t: Total = 1e+300");
    EXPECT_EQ(reportOf(timer, std::fixed),
              "Timer t: Total = " + support::digitsOf(huge) + ".000000");
    addSpan(timer, infinite);
    EXPECT_EQ(reportOf(timer), "Timer t: Total = inf");
    addSpan(timer, -infinite);
    EXPECT_EQ(reportOf(timer), "Timer t: Total = nan");
    EXPECT_EQ(reportOf(timer, std::fixed), "Timer t: Total = nan");
}

TEST(Timer, TheReportShowsANaNWithoutASign)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double seconds : {std::copysign(nan, 1.0), std::copysign(nan, -1.0)})
    {
        FakeTimer timer("t");
        addSpan(timer, seconds);
        EXPECT_EQ(reportOf(timer), "Timer t: Total = nan");
    }
}

TEST(Timer, TheReportLeavesTheStreamAsItIs)
{
    FakeTimer timer("t");
    std::ostringstream os;
    os << std::right << std::scientific << std::hex << std::setprecision(4) << std::setfill('*');
    const auto flags = os.flags();
    EXPECT_EQ(&(os << static_cast<const TimerBase&>(timer)), &os);
    EXPECT_EQ(os.flags(), flags);
    EXPECT_EQ(os.precision(), 4);
    EXPECT_EQ(os.fill(), '*');
    os << "; " << timer;
    EXPECT_EQ(os.str(), "Timer t: Total = 0.0000e+00; Timer t: Total = 0.0000e+00");
}

// The two kinds that there are, each through the base.
template <class T> class TimerKindTest : public testing::Test
{
protected:
    void SetUp() override
    {
        OsCpuInfo::initialize();
    }
};

using Kinds = testing::Types<HwIntervalTimer, TodIntervalTimer>;
TYPED_TEST_SUITE(TimerKindTest, Kinds);

TYPED_TEST(TimerKindTest, HasNameAndTotalZeroAtFirst)
{
    std::unique_ptr<TimerBase> timer = std::make_unique<Zu::Timer<TypeParam>>();
    EXPECT_STREQ(timer->getName(), "anonymous");
    EXPECT_EQ(timer->totalTime(), 0);
    timer->setName("set");
    EXPECT_STREQ(timer->getName(), "set");
    timer = std::make_unique<Zu::Timer<TypeParam>>("named");
    EXPECT_STREQ(timer->getName(), "named");
    EXPECT_EQ(reportOf(*timer), "Timer named: Total = 0");
}

TYPED_TEST(TimerKindTest, MeasuresAtLeastTheSpansWithinItsOwn)
{
    const std::unique_ptr<TimerBase> timer = std::make_unique<Zu::Timer<TypeParam>>("real");
    double least = 0;
    for (int i = 0; i < 3; ++i)
    {
        TypeParam inner;
        timer->start();
        inner.start();
        awaitTick<TypeParam>();
        inner.stop();
        timer->stop();
        least += inner.timeInterval();
        EXPECT_GT(least, 0);
        EXPECT_GE(timer->totalTime(), least);
    }
    const double total = timer->totalTime();
    awaitTick<TypeParam>();
    EXPECT_EQ(timer->totalTime(), total);
}

TYPED_TEST(TimerKindTest, GoesOnWhileItRunsAndStopsAtReset)
{
    const std::unique_ptr<TimerBase> timer = std::make_unique<Zu::Timer<TypeParam>>();
    timer->start();
    const double first = timer->totalTime();
    EXPECT_GE(first, 0);
    awaitTick<TypeParam>();
    EXPECT_GT(timer->totalTime(), first);
    timer->reset();
    EXPECT_EQ(timer->totalTime(), 0);
}

TYPED_TEST(TimerKindTest, ASecondStopAddsTheSpanFromTheStartAgain)
{
    const std::unique_ptr<TimerBase> timer = std::make_unique<Zu::Timer<TypeParam>>();
    timer->start();
    awaitTick<TypeParam>();
    timer->stop();
    const double once = timer->totalTime();
    EXPECT_GT(once, 0);
    timer->stop();
    EXPECT_GE(timer->totalTime(), 2 * once);
}

} // namespace

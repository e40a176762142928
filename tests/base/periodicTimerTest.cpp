// The steady beat, for the most part in child processes that start the packages.

#include "base/periodicTimer.h"

#include "support/assertionText.h"
#include "support/childProcess.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>

namespace
{

using support::ProgramResult;
using Zu::PeriodicTimer;

static_assert(std::is_abstract_v<PeriodicTimer>);
static_assert(std::has_virtual_destructor_v<PeriodicTimer>);
static_assert(!std::is_constructible_v<PeriodicTimer, double>);

// A timer that never beats, of a client's own.
class SilentTimer : public PeriodicTimer
{
public:
    explicit SilentTimer(double interval) : PeriodicTimer(interval) {}

    using PeriodicTimer::_interval;
    using PeriodicTimer::_running;
    using PeriodicTimer::_startTime;

    bool start() override
    {
        const bool stopped = !_running;
        _running = true;
        return stopped;
    }

    bool stop() override
    {
        const bool ran = _running;
        _running = false;
        return ran;
    }

    std::uint32_t wait() override
    {
        return getCurrentCount();
    }

    double setInterval(double interval) override
    {
        ++_settings;
        return _interval = interval;
    }

    int _settings = 0;
};

TEST(PeriodicTimer, IsStoppedWithoutAStartTimeAtFirst)
{
    const SilentTimer timer(0.25);
    EXPECT_EQ(timer._startTime, 0);
    EXPECT_EQ(timer._interval, 0.25);
    EXPECT_FALSE(timer._running);
    EXPECT_EQ(timer.getInterval(), 0.25);
    EXPECT_EQ(timer.getCurrentCount(), 0U);
}

TEST(PeriodicTimer, ACopyIsStoppedWithTheSameInterval)
{
    SilentTimer timer(0.25);
    timer._startTime = 7;
    timer.start();
    SilentTimer copy(timer);
    EXPECT_EQ(copy.getInterval(), 0.25);
    EXPECT_FALSE(copy._running);
    EXPECT_EQ(copy.getCurrentCount(), 0U);
    EXPECT_TRUE(copy.start());
    copy.setInterval(0.5);
    EXPECT_EQ(timer.getInterval(), 0.25);
    EXPECT_TRUE(timer._running);
}

TEST(PeriodicTimer, AssignmentSetsTheInterval)
{
    SilentTimer timer(0.25);
    SilentTimer other(0.5);
    other.start();
    PeriodicTimer& target = timer;
    EXPECT_EQ(&(target = static_cast<const PeriodicTimer&>(other)), &target);
    EXPECT_EQ(timer.getInterval(), 0.5);
    EXPECT_EQ(timer._settings, 1);
    EXPECT_FALSE(timer._running);
    EXPECT_TRUE(other._running);
    EXPECT_EQ(other._settings, 0);
}

// The output of an action in a successful run that writes nothing to standard error.
std::string outputOf(const std::string& action)
{
    const ProgramResult result = support::runProgram("timerProgram", {action});
    EXPECT_FALSE(result.aborted);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    return result.out;
}

TEST(PeriodicTimer, IsMadeStoppedWithItsInterval)
{
    EXPECT_EQ(outputOf("makeStoppedTimer"), "interval 0.005\ncount 0\nstopped 0\ncount 0\n"
                                            "interval 0.01\ncount 0\nstopped 0\ncount 0\n"
                                            "interval 0.0105\ncount 0\nstopped 0\ncount 0\n"
                                            "end\n");
}

TEST(PeriodicTimer, RefusesASecondStartAndASecondStop)
{
    EXPECT_EQ(outputOf("startTwice"), "start 1\nstart 0\nstop 1\nstop 0\ncount 0\n"
                                      "start 1\nstop 1\ncount 0\n"
                                      "end\n");
}

TEST(PeriodicTimer, AWaitEndsWithABeatAndCountsThemByTheTime)
{
    EXPECT_EQ(outputOf("waitForBeats"), "counts fit 1\n"
                                        "counts never fall 1\n"
                                        "whole intervals 1\n"
                                        "count fits 1\n"
                                        "count goes on 1\n"
                                        "end\n");
}

TEST(PeriodicTimer, MissedBeatsAreCountedButNotWaitedFor)
{
    EXPECT_EQ(outputOf("missBeats"), "counts without a wait 1\n"
                                     "counts what it missed 1\n"
                                     "waits for the next 1\n"
                                     "end\n");
}

TEST(PeriodicTimer, ANewIntervalStartsARunningTimerAnew)
{
    EXPECT_EQ(outputOf("changeIntervalWhileRunning"), "same interval 0.005\n"
                                                      "new start 1\n"
                                                      "still running 1\n"
                                                      "longer 0.02\n"
                                                      "interval 0.02\n"
                                                      "beats 1\n"
                                                      "counts 1\n"
                                                      "very long 1000\n"
                                                      "shorter 0.01\n"
                                                      "beats 1\n"
                                                      "counts 1\n"
                                                      "later than at first 1\n"
                                                      "stop 1\n"
                                                      "end\n");
}

TEST(PeriodicTimer, ANewIntervalLeavesAStoppedTimerStopped)
{
    EXPECT_EQ(outputOf("changeIntervalWhileStopped"), "longer 0.02\n"
                                                      "interval 0.02\n"
                                                      "stop 0\n"
                                                      "count 0\n"
                                                      "start 1\n"
                                                      "beats 1\n"
                                                      "counts 1\n"
                                                      "stop 1\n"
                                                      "end\n");
}

TEST(PeriodicTimer, ANewIntervalIsNotChecked)
{
    EXPECT_EQ(outputOf("changeIntervalUnchecked"), "interval 0.6\nstart 1\nstop 1\n"
                                                   "interval 0.0005\nstart 1\nstop 1\n"
                                                   "interval -1\nstart 1\nstop 1\n"
                                                   "beats 1\n"
                                                   "end\n");
}

TEST(PeriodicTimer, ItsTimeIsTheSleepersAndItsResolutionIsPositive)
{
    EXPECT_EQ(outputOf("readTimeOfTimer"), "the sleeper's 1\nresolution 1\nend\n");
}

TEST(PeriodicTimer, MayEndWhileItRuns)
{
    EXPECT_EQ(outputOf("endWhileRunning"), "beats 1\nend\n");
}

TEST(PeriodicTimer, AssignedTimersHaveBeatsOfTheirOwn)
{
    EXPECT_EQ(outputOf("assignTimers"), "interval 0.01\n"
                                        "still running 1\n"
                                        "the other stopped 1\n"
                                        "beats 1\n"
                                        "interval 0.015\n"
                                        "still stopped 1\n"
                                        "beats 1\n"
                                        "the other running 1\n"
                                        "end\n");
}

TEST(PeriodicTimer, ReleasesTheThreadThatWaits)
{
    EXPECT_EQ(outputOf("beatInAnotherThread"), "beats there 1\nand here 1\nend\n");
}

TEST(PeriodicTimer, TenTimersBeatAtOnce)
{
    EXPECT_EQ(outputOf("beatTogether"), "timers 10\nend\n");
}

TEST(PeriodicTimer, AnIntervalThatIsNotDeliveredIsFatal)
{
    const support::AssertionText report("waitBeating( *this )");
    for (const char* const interval : {"0.6", "0.0005", "-1", "nan"})
    {
        const ProgramResult result =
            support::runProgram("timerProgram", {"makeBadTimer", interval});
        EXPECT_TRUE(result.aborted) << interval;
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(report.MatchAndExplain(result.err, nullptr)) << interval << ": " << result.err;
    }
}

} // namespace

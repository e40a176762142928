// The time base and the sleep of a process, in child processes that start the packages.

#include "base/sleeper.h"

#include "support/childProcess.h"

#include <gtest/gtest.h>
#include <string>
#include <type_traits>

namespace
{

using support::ProgramResult;
using Zu::Sleeper;

static_assert(std::is_abstract_v<Sleeper>);
static_assert(std::has_virtual_destructor_v<Sleeper>);
static_assert(!std::is_destructible_v<Sleeper>);
static_assert(!std::is_copy_constructible_v<Sleeper>);
static_assert(!std::is_copy_assignable_v<Sleeper>);

// The output of an action in a successful run that writes nothing to standard error.
std::string outputOf(const std::string& action)
{
    const ProgramResult result = support::runProgram("timerProgram", {action});
    EXPECT_FALSE(result.aborted);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    return result.out;
}

TEST(Sleeper, LivesBetweenTheStartAndTheEndOfThePackages)
{
    EXPECT_EQ(outputOf("aroundPackages"), "before\n"
                                          "sleeper Zu::InSingleton<Zu::Sleeper> is not "
                                          "initialized.\n"
                                          "timer Zu::InSingleton<Zu::Sleeper> is not "
                                          "initialized.\n"
                                          "resolution 1\n"
                                          "between\n"
                                          "sleeper returned\n"
                                          "after\n"
                                          "sleeper Zu::InSingleton<Zu::Sleeper> is not "
                                          "initialized.\n"
                                          "timer Zu::InSingleton<Zu::Sleeper> is not "
                                          "initialized.\n"
                                          "resolution 1\n"
                                          "count 0\n"
                                          "time Zu::InSingleton<Zu::Sleeper> is not initialized.\n"
                                          "start Zu::InSingleton<Zu::Sleeper> is not "
                                          "initialized.\n"
                                          "running count Zu::InSingleton<Zu::Sleeper> is not "
                                          "initialized.\n"
                                          "end\n");
}

TEST(Sleeper, IsOneForAllThreads)
{
    EXPECT_EQ(outputOf("shareInstance"), "same in threads 4\nsame here 1\nend\n");
}

TEST(Sleeper, ItsTimeIsThatOfTheHardwareCounterAndNeverGoesBack)
{
    EXPECT_EQ(outputOf("readTime"), "the counter's seconds 1\nnever back 1\nin threads 4\nend\n");
}

TEST(Sleeper, ItsResolutionIsThePlatformsShortestPeriod)
{
    EXPECT_EQ(outputOf("readResolution"), "positive 1\nthat of timers 1\nend\n");
}

TEST(Sleeper, RefusesATimeWhoseMillisecondsAreZero)
{
    EXPECT_EQ(outputOf("sleepShortly"), "0.0005 s 0\n"
                                        "just below 0.001 s 0\n"
                                        "0 s 0\n"
                                        "-0.0005 s 0\n"
                                        "-1 s 0\n"
                                        "2^32 ms 0\n"
                                        "1e300 s 0\n"
                                        "no number 0\n"
                                        "without end 0\n"
                                        "end\n");
}

TEST(Sleeper, SleepsAtLeastForTheMilliseconds)
{
    EXPECT_EQ(outputOf("sleepLonger"), "0.001 s 1\n"
                                       "0.0019 s 1\n"
                                       "0.002 s 1\n"
                                       "0.0209 s 1\n"
                                       "0.05 s 1\n"
                                       "2^32 + 2 ms 1\n"
                                       "one after another 1\n"
                                       "across a second 1\n"
                                       "twenty of 0.001 s 1\n"
                                       "end\n");
}

TEST(Sleeper, TenThreadsSleepAtOnceEachForItsOwnTime)
{
    EXPECT_EQ(outputOf("sleepTogether"), "sleeps 20\nend\n");
}

TEST(Sleeper, AThreadMaySleepByTheReferenceOfAnother)
{
    EXPECT_EQ(outputOf("sleepByReference"),
              "by reference 1\none time base 1\nby reference together 10\nend\n");
}

TEST(Sleeper, ThreadsThatHaveEndedAreNoConcernOfLaterOnes)
{
    EXPECT_EQ(outputOf("sleepInManyThreads"), "threads 50\nand then here 1\nend\n");
}

} // namespace

// What only Linux shows of a sleep: how late the system may wake the thread.

#include "support/childProcess.h"

#include <gtest/gtest.h>

namespace
{

// Only during the sleep: the rest of the program sleeps as it chose to.
TEST(SleeperLinux, LetsTheSystemWakeItOnTimeAndLeavesTheThreadsChoice)
{
    const support::ProgramResult result = support::runProgram("sleeperLinuxProgram");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "before 70001\nduring 1\nafter 70001\n");
}

} // namespace

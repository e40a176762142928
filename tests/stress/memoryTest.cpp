// No memory for queues, for a service, or for anything.

#include "stress/scenario.h"
#include "support/childProcess.h"
#include "support/logTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using stress::Account;
using stress::accountOf;
using stress::FileAccount;
using stress::Scenario;
using support::ProgramResult;

class StressMemory : public testing::Test
{
protected:
    void SetUp() override
    {
#if !defined(STRESS_MEMORY_PROGRAM)
        GTEST_SKIP() << "built without the static library";
#endif
    }

    // Runs stressMemoryProgram until the time is over: every event that is not refused by an
    // exception is in the file.
    static void run(const std::string& mode, const std::string& name, std::size_t reports)
    {
        Scenario scenario(name);
        std::uint64_t refused = 0;
        while (scenario.goesOn())
        {
            const support::TempDir dir;
            const ProgramResult result =
                support::runProgram("stressMemoryProgram", {mode},
                                    support::logEnvironment({{"B7Q_TEST_DIR", dir.path()}}));
            EXPECT_EQ(result.exitCode, 0);
            // The reader needs memory, too.
            const std::string report = "The log service can't write an event and tries again: ";
            EXPECT_LE(support::countOf(result.err, report), reports);
            const std::string onHeap = "The events of some threads are not kept";
            EXPECT_EQ(support::linesOf(result.err).size(),
                      support::countOf(result.err, report) + support::countOf(result.err, onHeap))
                << result.err;
            const Account account = accountOf(result);
            const FileAccount file = stress::read(dir.file("events.log"));
            scenario.add(account, file);
            EXPECT_GT(account._attempted, 0U);
            EXPECT_EQ(account._lost, 0U);
            EXPECT_EQ(file._written, account._accepted);
            EXPECT_EQ(file._torn, 0U);
            EXPECT_EQ(file._stopBanners, 1U);
            const std::string mark = "refused ";
            const std::size_t at = result.out.find(mark);
            ASSERT_NE(at, std::string::npos) << result.out << result.err;
            const unsigned long count = std::stoul(result.out.substr(at + mark.size()));
            EXPECT_GT(count, 0U);
            refused += count;
        }
        scenario.note(std::to_string(refused) + " refused");
    }
};

TEST_F(StressMemory, EachAllocationOfAFirstEventFails)
{
    run("statements", "each allocation of a first event fails", 0);
}

TEST_F(StressMemory, EachAllocationOfAServiceFails)
{
    run("services", "each allocation of a service fails", 0);
}

TEST_F(StressMemory, EachAllocationOfTheReaderFails)
{
    run("reader", "each allocation of the reader fails", 1);
}

TEST_F(StressMemory, NothingIsLeftForATime)
{
    run("all", "no memory at all for a time", 1);
}

TEST_F(StressMemory, NothingIsLeftWhileTheReaderSleeps)
{
    run("allAsleep", "no memory at all while the reader sleeps", 1);
}

TEST_F(StressMemory, TheAddressSpaceIsUsedUpForATime)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no limit to the address space";
    if (support::underSanitizer)
        GTEST_SKIP() << "the sanitizers have reserved nearly all of the address space";
    run("addressSpace", "no address space for queues", 1);
}

} // namespace

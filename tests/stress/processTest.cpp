// Several processes on one file, and processes that end in the middle of their work.

#include "stress/scenario.h"
#include "support/childProcess.h"
#include "support/logTest.h"
#include "support/marker.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <list>
#include <string>
#include <vector>

namespace
{

using stress::Account;
using stress::accountOf;
using stress::FileAccount;
using stress::Scenario;
using support::ProgramResult;

constexpr unsigned THREADS = 3;
// A producer's burst, and what it logs in bursts.
constexpr std::uint64_t BURST = 100;
constexpr std::uint64_t EVENTS = 20 * BURST;
constexpr const char* REPORT = "The log service can't write an event and tries again: ";

// Processes that log into one file, under a lock if they have a name for it.
class Processes
{
public:
    explicit Processes(bool haveLock = true) : _lockName(haveLock ? stress::nameOfLock(_dir) : "")
    {
    }

    void start(const std::string& mode, unsigned firstId)
    {
        const std::string log = "+" + file();
        support::Environment environment{{"STRESS_DIR", _dir.path()},
                                         {"B7Q_TEST_DIR", _dir.file("logs")},
                                         {"ZU_LOG_WARNING", log},
                                         {"ZU_LOG_INFORMATIONAL", log}};
        if (!_lockName.empty()) environment["ZU_INTERNAL_INTERPROCESS_LOG_LOCK"] = _lockName;
        // Children that end hard leave maps that no later service looks for.
        if (mode == "fork") environment["ZU_LOG_SERVICE_MAPPING_DIRECTORY"] = _dir.path();
        environment = support::logEnvironment(environment);
        const std::string id = std::to_string(firstId);
        _results.push_back(
            std::async(std::launch::async,
                       [mode, id, environment] {
                           return support::runProgram("stressProgram", {mode, id}, environment);
                       }));
        _ready.push_back(_dir.file("ready" + id));
    }

    // Starts them all when all are ready; one that ends earlier reports why.
    testing::AssertionResult meet()
    {
        auto ready = _ready.begin();
        for (std::future<ProgramResult>& process : _results)
        {
            const std::string marker = *ready++;
            while (process.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
                if (support::isMarked(marker)) break;
            if (!support::isMarked(marker))
                return testing::AssertionFailure() << "it has ended: " << process.get().err;
        }
        support::setMarker(_dir.file("go"));
        return testing::AssertionSuccess();
    }

    // The result of the process that was started first among the remaining ones.
    ProgramResult next()
    {
        ProgramResult result = _results.front().get();
        _results.pop_front();
        return result;
    }

    // The next start of a service, which writes what others have left.
    void recover()
    {
        start("recover", 900);
        EXPECT_EQ(next().exitCode, 0);
    }

    bool isOver() const
    {
        return _results.empty();
    }

    void tellTheEnd() const
    {
        support::setMarker(_dir.file("ended"));
    }

    std::string file() const
    {
        return _dir.file("shared.log");
    }

private:
    support::TempDir _dir;
    std::string _lockName;
    std::list<std::future<ProgramResult>> _results;
    std::vector<std::string> _ready;
};

TEST(StressProcesses, SeveralOnOneFile)
{
    constexpr unsigned PROCESSES = 4;
    Scenario scenario("4 processes, 12 threads, one file");
    while (scenario.goesOn())
    {
        Processes processes;
        for (unsigned i = 0; i < PROCESSES; ++i) processes.start("share", i * 10);
        ASSERT_TRUE(processes.meet());
        std::vector<Account> accounts;
        while (!processes.isOver())
        {
            const ProgramResult result = processes.next();
            EXPECT_EQ(result.exitCode, 0);
            EXPECT_EQ(result.err, "");
            accounts.push_back(accountOf(result));
        }
        const FileAccount file = stress::read(processes.file());
        Account sum;
        for (unsigned i = 0; i < PROCESSES; ++i)
        {
            EXPECT_EQ(accounts[i]._attempted, THREADS * 2 * EVENTS);
            EXPECT_EQ(file.writtenFrom(i * 10, THREADS), accounts[i]._accepted);
            sum += accounts[i];
        }
        scenario.add(sum, file);
        EXPECT_EQ(file._written, sum._accepted);
        EXPECT_EQ(file._torn, 0U);
        EXPECT_EQ(file._startBanners, PROCESSES);
        EXPECT_EQ(file._stopBanners, PROCESSES);
    }
}

// One ends while holding the lock, and others go on: what it passed to the reader is written, and
// exactly one of the others is notified of its end.
void expectSurvivors(const std::string& mode, const std::string& name, std::uint64_t attempted,
                     std::uint64_t written, std::uint64_t recovered, std::uint64_t torn)
{
    constexpr unsigned SURVIVORS = 2;
    Scenario scenario(name);
    std::uint64_t reports = 0;
    while (scenario.goesOn())
    {
        Processes processes;
        processes.start(mode, 0);
        for (unsigned i = 1; i <= SURVIVORS; ++i) processes.start("survive", i * 10);
        ASSERT_TRUE(processes.meet());
        const ProgramResult victim = processes.next();
        processes.tellTheEnd();
        EXPECT_TRUE(victim.aborted) << victim.exitCode;
        EXPECT_EQ(victim.err, "");
        Account sum = accountOf(victim);
        EXPECT_EQ(sum._attempted, attempted);
        EXPECT_EQ(sum._lost, 0U);
        std::string told;
        std::uint64_t accepted = 0;
        while (!processes.isOver())
        {
            const ProgramResult survivor = processes.next();
            EXPECT_EQ(survivor.exitCode, 0);
            told += survivor.err;
            const Account account = accountOf(survivor);
            EXPECT_GE(account._attempted, THREADS * EVENTS);
            accepted += account._accepted;
            sum += account;
        }
        EXPECT_EQ(told.rfind(REPORT, 0), 0U) << told;
        EXPECT_EQ(support::linesOf(told).size(), 1U) << told;
        reports += support::countOf(told, REPORT);
        const FileAccount file = stress::read(processes.file());
        scenario.add(sum, file);
        EXPECT_EQ(file.writtenFrom(0, 10), written);
        EXPECT_EQ(file._written, written + accepted);
        EXPECT_EQ(file._torn, torn);
        EXPECT_EQ(file._stopBanners, SURVIVORS);
        processes.recover();
        EXPECT_EQ(stress::read(processes.file()).writtenFrom(0, 10), written + recovered);
    }
    scenario.note("told of " + std::to_string(reports) + " times");
}

TEST(StressProcesses, OneIsKilledWithTheLock)
{
    expectSurvivors("dieWithLock", "one of 3 processes killed with the lock",
                    THREADS * EVENTS + BURST, THREADS * EVENTS, BURST, 0);
}

TEST(StressProcesses, OneIsKilledInALine)
{
    // Its stream is one of the application, whose lines nobody can look for.
    expectSurvivors("dieInALine", "one of 3 processes killed in a line", 1001, 1000, 0, 1);
}

TEST(StressProcesses, OneIsKilledByTheSystemInALine)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no limit to the size of a file";
    expectSurvivors("dieInALineByLimit", "one of 3 processes killed by a limit in a line", 1001,
                    1000, 0, 1);
}

// Ended at an arbitrary moment while queues are full: all lines in the file are whole, except for
// one.
void expectWholeLines(const std::string& mode, const std::string& name)
{
    Scenario scenario(name);
    while (scenario.goesOn())
    {
        Processes processes(false);
        processes.start(mode, 0);
        const ProgramResult result = processes.next();
        EXPECT_TRUE(result.aborted) << result.exitCode;
        const Account account = accountOf(result);
        EXPECT_EQ(account._attempted, THREADS * 50 * BURST);
        const FileAccount file = stress::read(processes.file());
        scenario.add(account, file);
        EXPECT_LE(file._written, account._accepted);
        EXPECT_LE(file._torn, 1U);
        EXPECT_EQ(file._stopBanners, 0U);
        // The next service writes the rest.
        processes.recover();
        const FileAccount whole = stress::read(processes.file());
        for (const std::string& error : whole._errors) ADD_FAILURE() << error;
        // The beginning of a line that was cut can look like a shortened one.
        EXPECT_EQ(whole._written - whole._shortened, account._accepted);
    }
}

TEST(StressProcesses, KilledAtFullSpeed)
{
    expectWholeLines("kill", "killed at full speed");
}

TEST(StressProcesses, AbortedAtFullSpeed)
{
    expectWholeLines("abort", "aborted at full speed");
}

TEST(StressProcesses, AnAbortLeavesWhatTheReaderHasAndNothingElse)
{
    Scenario scenario("aborted with 100 events in a queue");
    while (scenario.goesOn())
    {
        Processes processes;
        processes.start("abortKnown", 0);
        const ProgramResult result = processes.next();
        EXPECT_TRUE(result.aborted) << result.exitCode;
        const Account account = accountOf(result);
        const FileAccount file = stress::read(processes.file());
        scenario.add(account, file);
        EXPECT_EQ(account._accepted, THREADS * EVENTS + BURST);
        EXPECT_EQ(file._written, THREADS * EVENTS);
        EXPECT_EQ(file._torn, 0U);
        EXPECT_EQ(file._stopBanners, 0U);
        processes.recover();
        EXPECT_EQ(stress::read(processes.file())._written, account._accepted);
    }
}

TEST(StressProcesses, AForkBesideThreadsThatLog)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no fork";
    if (support::underSanitizer)
        GTEST_SKIP() << "what the sanitizers lock does not survive a fork beside other threads";
    constexpr std::uint64_t FORKS = 8;
    Scenario scenario("8 forks beside 3 threads");
    std::uint64_t forks = 0;
    while (scenario.goesOn())
    {
        Processes processes;
        processes.start("fork", 0);
        const ProgramResult result = processes.next();
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, "");
        const Account account = accountOf(result);
        const FileAccount file = stress::read(processes.file());
        scenario.add(account, file);
        // The children's services write theirs.
        EXPECT_EQ(file._written, account._accepted + FORKS);
        EXPECT_EQ(file.writtenFrom(200, FORKS), FORKS);
        EXPECT_EQ(file._torn, 0U);
        EXPECT_EQ(file._startBanners, 1U + FORKS);
        EXPECT_EQ(file._stopBanners, 1U);
        // Without a service, their statements are on their standard output, and nowhere else.
        EXPECT_EQ(support::countOf(result.out, "Stress 100 0 "), FORKS);
        EXPECT_EQ(support::countOf(result.out, "served\n"), FORKS);
        EXPECT_EQ(support::countOf(result.out, "failed"), 0U);
        forks += FORKS;
    }
    scenario.note(std::to_string(forks) + " children");
}

} // namespace

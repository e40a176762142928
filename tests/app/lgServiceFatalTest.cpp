#include "app/lgServiceFatal.h"

#include "app/lgService.h"
#include "base/lgEvent.h"
#include "support/childProcess.h"
#include "support/platform.h"
#include "support/runningLogger.h"
#include "support/tempDir.h"

#include <chrono>
#include <csignal>
#include <cstddef>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

ZU_DEFINE_LOG_GROUP(Fatal);

namespace
{

using namespace std::chrono_literals;

using support::onWindows;
using support::ProgramResult;
using Words = std::vector<std::string>;

constexpr int EVENTS = 400;
// SIGBUS, which Windows does not have.
constexpr int BUS = 7;

// A way to crash, the signal that it is on Linux, and the exit value that it is on Windows.
struct Way
{
    std::string _name;
    int _signal;
    unsigned _exitCode;
};

const Way FAULTS[] = {
    {"write", SIGSEGV, 0xC0000005U},
    {"divide", SIGFPE, 0xC0000094U},
    {"trap", SIGILL, 0xC000001DU},
    {"abort", SIGABRT, 3},
};

// Those, and the signals themselves. Windows raises none of those in a thread that crashes, but for
// SIGABRT.
std::vector<Way> allWays()
{
    std::vector<Way> ways(std::begin(FAULTS), std::end(FAULTS));
    ways.push_back({std::to_string(SIGABRT), SIGABRT, 3});
    if (onWindows) return ways;
    for (const int signal : {SIGSEGV, BUS, SIGFPE, SIGILL})
        ways.push_back({std::to_string(signal), signal, 0});
    return ways;
}

class LgServiceFatalTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (support::underSanitizer) GTEST_SKIP() << "The sanitizer handles these signals itself";
    }

    ProgramResult run(Words words, bool isDrained = true) const
    {
        return support::runProgram(
            "fatalVictim", words,
            {{"B7Q_TEST_DIR", _logs.path()},
             {"ZU_LOG_SERVICE_MAPPING_DIRECTORY", _maps.path()},
             {"ZU_LOG_SERVICE_DRAIN_ON_FATAL_SIGNALS", isDrained ? "1" : "0"}});
    }

    // How many events are in the log, each once and in their order; -1 if they are not. The log is
    // removed.
    int takeCount() const
    {
        int count = 0;
        {
            std::ifstream file(_logs.file("events.log"), std::ios::binary);
            for (std::string line; std::getline(file, line);)
            {
                const std::size_t place = line.find("Fatal number ");
                if (place == std::string::npos) continue;
                if (line.substr(place) != "Fatal number " + std::to_string(count)) return -1;
                ++count;
            }
        }
        std::remove(_logs.file("events.log").c_str());
        return count;
    }

    // What the crash has left is of no interest.
    void recover() const
    {
        EXPECT_EQ(run({"none"}).exitCode, 0);
        takeCount();
    }

    static void expectEnd(const ProgramResult& result, const Way& way)
    {
        EXPECT_TRUE(result.aborted);
        EXPECT_EQ(result.signal, onWindows ? 0 : way._signal);
        EXPECT_EQ(result.exitCode, onWindows ? static_cast<int>(way._exitCode) : -1);
    }

    support::TempDir _logs;
    support::TempDir _maps;
};

// What a crash calls, without one.
TEST(LgServiceFatal, AWaitEndsWhenWhatWasLoggedIsWritten)
{
    const support::RunningLogger logger;
    ZU_START_LOG_GROUP("Fatal", Fatal);
    const std::chrono::milliseconds limit = std::exchange(Zu::LgServiceFatal::_limit, 10min);
    for (const bool isDrained : {false, true})
    {
        Zu::LgServiceOptions options;
        options._drainOnFatalSignals = isDrained;
        const Zu::LgService service(options);
        Zu::LgServiceFatal::waitUntilWritten();
        EXPECT_EQ(Zu::LgServiceFatal::isAsked(), isDrained);
        for (int i = 0; i < EVENTS && isDrained; ++i)
        {
            ZU_LOG_WARNING(Fatal, "number " << i);
            // Sometimes the writing thread is asleep.
            if (i % 100 == 0) service.flush(10min);
            Zu::LgServiceFatal::waitUntilWritten();
            ASSERT_EQ(logger.textsOf("events.log").back(), "Fatal number " + std::to_string(i));
        }
    }
    // Without a service nobody would write.
    Zu::LgServiceFatal::waitUntilWritten();
    Zu::LgServiceFatal::_limit = limit;
    ZU_STOP_LOG_GROUP(Fatal);
}

// The writing thread is held until the crash waits.
TEST_F(LgServiceFatalTest, ACrashWaitsUntilWhatWasLoggedIsWrittenAndEndsAsItWouldHave)
{
    for (const Way& way : allWays())
    {
        SCOPED_TRACE(way._name);
        expectEnd(run({way._name, "held"}), way);
        EXPECT_EQ(takeCount(), EVENTS);
        recover();
    }
}

TEST_F(LgServiceFatalTest, WithoutTheOptionItEndsInTheSameWayAndWaitsForNothing)
{
    for (const Way& way : allWays())
    {
        SCOPED_TRACE(way._name);
        expectEnd(run({way._name, "held"}, false), way);
        EXPECT_EQ(takeCount(), 0);
        // The next service writes it.
        EXPECT_EQ(run({"none"}).exitCode, 0);
        EXPECT_EQ(takeCount(), EVENTS);
    }
}

TEST_F(LgServiceFatalTest, AHandlerThatWasThereIsCalledAfterwards)
{
    for (const Way& way : FAULTS)
    {
        SCOPED_TRACE(way._name);
        const ProgramResult result = run({way._name, "held", "handler"});
        EXPECT_EQ(result.out, "handler " + std::to_string(way._signal) + " has waited\n");
        EXPECT_TRUE(result.aborted);
        EXPECT_EQ(result.signal, onWindows ? 0 : way._signal);
        EXPECT_EQ(takeCount(), EVENTS);
        recover();
    }
}

TEST_F(LgServiceFatalTest, ACrashInSuchAHandlerIsTheEnd)
{
    expectEnd(run({"abort", "held", "crashing"}), FAULTS[0]);
    EXPECT_EQ(takeCount(), EVENTS);
}

TEST_F(LgServiceFatalTest, TheWaitIsLimited)
{
    const Way abort{"abort", SIGABRT, 3};
    expectEnd(run({"abort", "stuck"}), abort);
    EXPECT_EQ(takeCount(), 0);
    EXPECT_EQ(run({"none"}).exitCode, 0);
    EXPECT_EQ(takeCount(), EVENTS);
}

TEST_F(LgServiceFatalTest, AnIdleServiceHoldsNothingUp)
{
    const Way abort{"abort", SIGABRT, 3};
    expectEnd(run({"abort"}), abort);
    EXPECT_EQ(takeCount(), EVENTS);
}

TEST_F(LgServiceFatalTest, TheWritingThreadDoesNotWaitForItself)
{
    const ProgramResult result = run({"abort", "writer", "handler"});
    EXPECT_EQ(result.out, "handler " + std::to_string(SIGABRT) + " has not waited\n");
    EXPECT_TRUE(result.aborted);
    EXPECT_EQ(takeCount(), 0);
    EXPECT_EQ(run({"none"}).exitCode, 0);
    EXPECT_EQ(takeCount(), EVENTS);
}

TEST_F(LgServiceFatalTest, ItHoldsForTheServiceThatLives)
{
    const Way abort{"abort", SIGABRT, 3};
    expectEnd(run({"abort", "held", "again"}), abort);
    EXPECT_EQ(takeCount(), EVENTS);
    const ProgramResult result = run({"abort", "handler", "ended"});
    EXPECT_EQ(result.out, "handler " + std::to_string(SIGABRT) + " has not waited\n");
    EXPECT_EQ(takeCount(), EVENTS);
}

TEST_F(LgServiceFatalTest, TheChildOfAForkDoesNotWait)
{
    if (onWindows) GTEST_SKIP() << "There is no fork on Windows";
    const ProgramResult result = run({"abort", "handler", "child"});
    EXPECT_EQ(result.out, "handler " + std::to_string(SIGABRT) + " has not waited\nchild " +
                              std::to_string(SIGABRT) + "\n");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(takeCount(), EVENTS);
}

} // namespace

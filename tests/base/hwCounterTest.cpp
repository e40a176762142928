#include "base/hwCounter.h"

#include "base/hwCounterIA32.h"
#include "base/osCpuInfo.h"
#include "support/childProcess.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <utility>

namespace
{

using support::ProgramResult;
using support::runProgram;
using Zu::HwCounter;
using Zu::OsCpuInfo;

class HwCounterTest : public testing::Test
{
protected:
    void SetUp() override
    {
        OsCpuInfo::initialize();
        HwCounter::init();
    }
};

TEST_F(HwCounterTest, RateIsThatOfThePlatformsCounter)
{
    const Zu::HwCounterRate rate = Zu::hwCounterRate(OsCpuInfo::getHwCounterFrequency());
    EXPECT_EQ(HwCounter::getRateNumerator(), rate._numerator);
    EXPECT_EQ(HwCounter::getRateDenominator(), 1);
    EXPECT_EQ(HwCounter::resolution(), 1.0 / rate._numerator);
}

TEST_F(HwCounterTest, TimeStampsAreThePlatformsCounterShifted)
{
    const auto shift = Zu::hwCounterRate(OsCpuInfo::getHwCounterFrequency())._shift;
    const std::uint64_t before = OsCpuInfo::getHwCounterValue() >> shift;
    const std::uint64_t stamp = HwCounter::timeStamp();
    const std::uint64_t after = OsCpuInfo::getHwCounterValue() >> shift;
    EXPECT_LE(before, stamp);
    EXPECT_LE(stamp, after);
}

TEST_F(HwCounterTest, TimeStampsNeverGoBack)
{
    std::uint64_t last = HwCounter::timeStamp();
    for (int i = 0; i < 100000; ++i)
    {
        const std::uint64_t stamp = HwCounter::timeStamp();
        ASSERT_GE(stamp, last);
        last = stamp;
    }
}

TEST_F(HwCounterTest, SecondsAreTimeStampsTimesTheResolution)
{
    const double before = static_cast<double>(HwCounter::timeStamp()) * HwCounter::resolution();
    const double seconds = HwCounter::seconds();
    const double after = static_cast<double>(HwCounter::timeStamp()) * HwCounter::resolution();
    EXPECT_LE(before, seconds);
    EXPECT_LE(seconds, after);
}

TEST_F(HwCounterTest, AnEndBeforeTheStartIsNegative)
{
    EXPECT_EQ(HwCounter::seconds(10, 5), -5 * HwCounter::resolution());
    EXPECT_LT(HwCounter::seconds(10, 5), 0);
    EXPECT_EQ(HwCounter::seconds(5, 10), 5 * HwCounter::resolution());
    const std::uint64_t now = HwCounter::timeStamp();
    EXPECT_EQ(HwCounter::seconds(now, now), 0);
}

TEST_F(HwCounterTest, DumpWritesTheEngine)
{
    std::ostringstream expected;
    expected << "HwCounterIA32:\nRate         = " << HwCounter::getRateNumerator()
             << "/1\nCycle        = " << HwCounter::resolution() << " seconds\n";
    std::ostringstream os;
    HwCounter::dump(os);
    EXPECT_EQ(os.str(), expected.str());
}

TEST(HwCounter, TheFirstCallOfEachKindMakesTheEngine)
{
    const std::pair<const char*, const char*> rows[] = {
        {"timeStamp", "timeStamp 1\nend\n"},
        {"seconds", "seconds 1\nend\n"},
        {"interval", "interval 1\nend\n"},
        {"init", "end\n"},
    };
    for (const auto& [action, out] : rows)
    {
        const ProgramResult result = runProgram("processorProgram", {"initialize", action});
        EXPECT_EQ(result.exitCode, 0) << action << ": " << result.err;
        EXPECT_EQ(result.out, out);
    }
    const ProgramResult dump = runProgram("processorProgram", {"initialize", "dump"});
    EXPECT_EQ(dump.exitCode, 0) << dump.err;
    EXPECT_EQ(support::linesOf(dump.out).size(), 4U);
    EXPECT_EQ(support::linesOf(dump.out).at(0), "HwCounterIA32:");
}

TEST(HwCounter, WorksBeforeAnythingWasInitialised)
{
    const std::pair<const char*, const char*> rows[] = {
        {"timeStamp", "timeStamp 1\nend\n"},
        {"seconds", "seconds 1\nend\n"},
        {"interval", "interval 1\nend\n"},
        {"init", "end\n"},
    };
    for (const auto& [action, out] : rows)
    {
        const ProgramResult result = runProgram("processorProgram", {action});
        EXPECT_EQ(result.exitCode, 0) << action << ": " << result.err;
        EXPECT_EQ(result.out, out);
    }
}

TEST(HwCounter, AnEarlyEngineHasTheRateThatIsStatedLater)
{
    const ProgramResult result =
        runProgram("processorProgram", {"dump", "features", "initialize", "early rate"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(support::linesOf(result.out).size(), 6U) << result.out;
    EXPECT_EQ(support::linesOf(result.out).at(3), "MMX 0, SSE 0");
    EXPECT_EQ(support::linesOf(result.out).at(4), "early rate 1");
}

TEST(HwCounter, AnEarlyEngineDoesNotMakeTheFrequencyKnown)
{
    const ProgramResult result = runProgram("processorProgram", {"timeStamp", "frequency"});
    EXPECT_TRUE(result.aborted);
    EXPECT_EQ(result.out, "timeStamp 1\n");
    EXPECT_EQ(result.err.find("Assertion failed: _hwCounterFrequency != 0, file "), 0U)
        << result.err;
}

TEST(HwCounter, ThePlatformsEngineNeedsTheFrequency)
{
    const ProgramResult result = runProgram("processorProgram", {"create"});
    EXPECT_TRUE(result.aborted);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.find("Assertion failed: _hwCounterFrequency != 0, file "), 0U)
        << result.err;
}

// ThreadSanitizer looks at how the threads meet.
TEST(HwCounter, ManyThreadsMayMakeTheFirstCallTogether)
{
    for (int round = 0; round < 5; ++round)
    {
        const ProgramResult result = runProgram("processorProgram", {"together"});
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.out, "one engine 8\nend\n");
        EXPECT_EQ(result.err, "");
    }
}

TEST(HwCounter, StaticObjectsMayMeasureBeforeMainAndAcrossTheStart)
{
    const ProgramResult result = runProgram("earlyTimeProgram");
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "before 1\nbetween 1\nafter 1\n");
    EXPECT_EQ(result.err, "");
}

} // namespace

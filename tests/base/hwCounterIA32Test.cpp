#include "base/hwCounterIA32.h"

#include "base/osCpuInfo.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <iomanip>
#include <memory>
#include <random>
#include <sstream>
#include <string>

namespace
{

using Zu::HwCounterEng;
using Zu::HwCounterIA32;
using Zu::HwCounterRate;
using Zu::hwCounterRate;
using Zu::OsCpuInfo;

std::string dumpOf(const HwCounterEng& engine)
{
    std::ostringstream os;
    engine.dump(os);
    return os.str();
}

TEST(HwCounterIA32, AFrequencyIsHalvedUntilItFits)
{
    struct Row
    {
        std::uint64_t _frequency;
        int _numerator;
        std::uint32_t _shift;
    };
    const Row rows[] = {
        {1, 1, 0},
        {3579545, 3579545, 0},
        {10000000, 10000000, 0},
        {1000000000, 1000000000, 0},
        {2147483646, 2147483646, 0},
        {2147483647, 2147483647, 0},
        {2147483648, 1073741824, 1},
        {2147483649, 1073741824, 1},
        {3000000000, 1500000000, 1},
        {4294967295, 2147483647, 1},
        {4294967296, 1073741824, 2},
        {10000000000, 1250000000, 3},
        {9223372036854775808U, 1073741824, 33},
        {18446744073709551615U, 2147483647, 33},
    };
    for (const Row& row : rows)
    {
        const HwCounterRate rate = hwCounterRate(row._frequency);
        EXPECT_EQ(rate._numerator, row._numerator) << row._frequency;
        EXPECT_EQ(rate._shift, row._shift) << row._frequency;
    }
}

TEST(HwCounterIA32, TheShiftIsTheSmallestThatFits)
{
    std::mt19937_64 random(81);
    for (int round = 0; round < 20000; ++round)
    {
        const std::uint64_t frequency = (random() >> (random() % 64)) | 1;
        std::uint64_t divisor = 1;
        std::uint32_t shift = 0;
        while (frequency / divisor > 2147483647U)
        {
            divisor *= 2;
            ++shift;
        }
        const HwCounterRate rate = hwCounterRate(frequency);
        ASSERT_EQ(rate._shift, shift) << frequency;
        ASSERT_EQ(static_cast<std::uint64_t>(rate._numerator), frequency / divisor) << frequency;
    }
}

TEST(HwCounterIA32, ResolutionIsTheInverseOfTheRate)
{
    const HwCounterIA32 engine(10000000, 1, 0);
    EXPECT_EQ(engine.getRateNumerator(), 10000000);
    EXPECT_EQ(engine.getRateDenominator(), 1);
    EXPECT_EQ(engine.resolution(), 1e-7);
    EXPECT_EQ(HwCounterIA32(2147483647, 1, 3).resolution(), 1.0 / 2147483647.0);
    const HwCounterIA32 slow(1000, 2, 0);
    EXPECT_EQ(slow.getRateDenominator(), 2);
    EXPECT_EQ(slow.resolution(), 0.002);
}

TEST(HwCounterIA32, SecondsOfAnIntervalHaveItsSign)
{
    const HwCounterIA32 engine(10000000, 1, 0);
    EXPECT_EQ(engine.seconds(10, 5), -5 * 1e-7);
    EXPECT_LT(engine.seconds(10, 5), 0);
    EXPECT_EQ(engine.seconds(5, 10), 5 * 1e-7);
    EXPECT_EQ(engine.seconds(0, 10000000), 1);
    for (const std::uint64_t stamp : {std::uint64_t{0}, std::uint64_t{12345}, ~std::uint64_t{0}})
        EXPECT_EQ(engine.seconds(stamp, stamp), 0);
}

TEST(HwCounterIA32, AnIntervalIsASignedNumberOfTicks)
{
    const HwCounterIA32 engine(4, 1, 0);
    // Across the wrap of the counter.
    EXPECT_EQ(engine.seconds(~std::uint64_t{0}, 7), 2);
    EXPECT_EQ(engine.seconds(7, ~std::uint64_t{0}), -2);
    EXPECT_EQ(engine.seconds(0, std::uint64_t{1} << 63), -2305843009213693952.0);
    EXPECT_EQ(engine.seconds(0, std::uint64_t{1} << 62), 1152921504606846976.0);
}

TEST(HwCounterIA32, TheShiftDoesNotChangeIntervals)
{
    EXPECT_EQ(HwCounterIA32(4, 1, 5).seconds(0, 8), 2);
}

TEST(HwCounterIA32, TimeStampsAreShifted)
{
    for (const std::uint32_t shift : {0U, 1U, 4U, 33U, 63U})
    {
        const HwCounterIA32 engine(1000, 1, shift);
        const std::uint64_t before = OsCpuInfo::getHwCounterValue() >> shift;
        const std::uint64_t stamp = engine.timeStamp();
        const std::uint64_t after = OsCpuInfo::getHwCounterValue() >> shift;
        EXPECT_LE(before, stamp);
        EXPECT_LE(stamp, after);
    }
}

TEST(HwCounterIA32, SecondsAreShiftedTicksTimesTheResolution)
{
    const HwCounterIA32 engine(1024, 1, 3);
    const double before = static_cast<double>(OsCpuInfo::getHwCounterValue() >> 3) / 1024;
    const double seconds = engine.seconds();
    const double after = static_cast<double>(OsCpuInfo::getHwCounterValue() >> 3) / 1024;
    EXPECT_LE(before, seconds);
    EXPECT_LE(seconds, after);
}

TEST(HwCounterIA32, DumpWritesThreeLines)
{
    EXPECT_EQ(dumpOf(HwCounterIA32(10000000, 1, 0)), "HwCounterIA32:\n"
                                                     "Rate         = 10000000/1\n"
                                                     "Cycle        = 1e-07 seconds\n");
    EXPECT_EQ(dumpOf(HwCounterIA32(4, 2, 9)), "HwCounterIA32:\n"
                                              "Rate         = 4/2\n"
                                              "Cycle        = 0.5 seconds\n");
}

TEST(HwCounterIA32, DumpKeepsTheNumberFormatOfTheStream)
{
    std::ostringstream os;
    os << std::hex << std::showbase << std::fixed << std::setprecision(3);
    HwCounterIA32(256, 1, 0).dump(os);
    EXPECT_EQ(os.str(), "HwCounterIA32:\n"
                        "Rate         = 0x100/0x1\n"
                        "Cycle        = 0.004 seconds\n");
}

TEST(HwCounterIA32, IsTheEngineThatIsMade)
{
    OsCpuInfo::initialize();
    const std::unique_ptr<HwCounterEng> engine(HwCounterEng::create());
    EXPECT_NE(dynamic_cast<HwCounterIA32*>(engine.get()), nullptr);
    EXPECT_EQ(engine->getRateNumerator(),
              hwCounterRate(OsCpuInfo::getHwCounterFrequency())._numerator);
    EXPECT_EQ(engine->getRateDenominator(), 1);
    EXPECT_EQ(engine->resolution(), 1.0 / engine->getRateNumerator());
}

} // namespace

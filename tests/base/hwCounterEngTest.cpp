#include "base/hwCounterEng.h"

#include "base/osCpuInfo.h"

#include <gtest/gtest.h>
#include <memory>

namespace
{

TEST(HwCounterEng, ThePlatformsEngineHasTheStatedRate)
{
    Zu::OsCpuInfo::initialize();
    const std::unique_ptr<Zu::HwCounterEng> engine(Zu::HwCounterEng::create());
    // No platform's counter is so fast that its values are shifted.
    EXPECT_EQ(static_cast<std::uint64_t>(engine->getRateNumerator()),
              Zu::OsCpuInfo::getHwCounterFrequency());
    EXPECT_EQ(engine->getRateDenominator(), 1);
    EXPECT_DOUBLE_EQ(engine->resolution() * engine->getRateNumerator(), 1.0);
}

TEST(HwCounterEng, TheValuesOfAFastCounterAreShifted)
{
    struct Row
    {
        std::uint64_t _frequency;
        int _numerator;
        int _shift;
    };
    const Row rows[] = {
        {10000000, 10000000, 0},     {2147483647, 2147483647, 0},  {2147483648, 1073741824, 1},
        {3000000000, 1500000000, 1}, {10000000000, 1250000000, 3},
    };
    for (const Row& row : rows)
    {
        const std::unique_ptr<Zu::HwCounterEng> engine(Zu::HwCounterEng::create(row._frequency));
        EXPECT_EQ(engine->getRateNumerator(), row._numerator);
        EXPECT_EQ(engine->getRateDenominator(), 1);
        EXPECT_EQ(engine->resolution(), 1.0 / row._numerator);
        const std::uint64_t before = Zu::OsCpuInfo::getHwCounterValue() >> row._shift;
        const std::uint64_t stamp = engine->timeStamp();
        EXPECT_LE(before, stamp) << row._frequency;
        EXPECT_LE(stamp, Zu::OsCpuInfo::getHwCounterValue() >> row._shift) << row._frequency;
    }
}

TEST(HwCounterEng, NeverGoesBack)
{
    Zu::OsCpuInfo::initialize();
    const std::unique_ptr<Zu::HwCounterEng> engine(Zu::HwCounterEng::create());
    std::uint64_t last = engine->timeStamp();
    for (int i = 0; i < 100000; ++i)
    {
        const std::uint64_t now = engine->timeStamp();
        ASSERT_GE(now, last);
        last = now;
    }
}

} // namespace

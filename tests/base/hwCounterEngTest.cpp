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

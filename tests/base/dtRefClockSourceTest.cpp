#include "base/dtRefClockSource.h"

#include "base/dtRefClockEx.h"
#include "base/hwCounter.h"
#include "base/osCpuInfo.h"

#include "support/timeReference.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace
{

using support::RateValue;
using support::valueOf;
using Zu::DtRefClockSource;
using Zu::DtRefClockSourceHwCounter;
using Zu::HwCounter;
using Zu::Rational;

class Clock : public DtRefClockSource
{
public:
    explicit Clock(const char* name, bool* ended = nullptr)
        : DtRefClockSource(name, Rational(50, 2), Rational(30000, 1001)), _ended(ended)
    {
    }

    ~Clock() override
    {
        if (_ended) *_ended = true;
    }

    long long getCount() const override
    {
        if (_fails) throw Zu::DtRefClockEx::GetCount(__FILE__, __LINE__);
        return -5;
    }

    bool _fails = false;

private:
    bool* _ended;
};

static_assert(std::is_abstract_v<DtRefClockSource>);
static_assert(std::has_virtual_destructor_v<DtRefClockSource>);
static_assert(std::is_base_of_v<DtRefClockSource, DtRefClockSourceHwCounter>);
static_assert(!std::is_copy_constructible_v<DtRefClockSource>);
static_assert(!std::is_copy_assignable_v<DtRefClockSource>);

TEST(DtRefClockSource, KeepsACopyOfItsName)
{
    std::string name = "Pendulum";
    const Clock clock(name.c_str());
    name = "Overwritten";
    EXPECT_STREQ(clock.getName(), "Pendulum");
    EXPECT_STREQ(Clock("").getName(), "");
    const std::string longName(5000, 'n');
    EXPECT_EQ(Clock(longName.c_str()).getName(), longName);
}

TEST(DtRefClockSource, TellsBothRates)
{
    const Clock clock("Pendulum");
    EXPECT_EQ(valueOf(clock.getRate()), (RateValue{25, 1}));
    EXPECT_EQ(valueOf(clock.getNativeRate()), (RateValue{30000, 1001}));
}

TEST(DtRefClockSource, IsReadAndEndedThroughItsBase)
{
    bool ended = false;
    std::unique_ptr<const DtRefClockSource> clock = std::make_unique<Clock>("Pendulum", &ended);
    EXPECT_EQ(clock->getCount(), -5);
    EXPECT_FALSE(ended);
    clock.reset();
    EXPECT_TRUE(ended);
}

TEST(DtRefClockSource, AClockMayFail)
{
    Clock clock("Pendulum");
    clock._fails = true;
    const DtRefClockSource& source = clock;
    EXPECT_THROW(source.getCount(), Zu::DtRefClockEx::GetCount);
}

class DtRefClockSourceHwCounterTest : public testing::Test
{
protected:
    void SetUp() override
    {
        Zu::OsCpuInfo::initialize();
        HwCounter::init();
    }

    static long long now()
    {
        return static_cast<long long>(HwCounter::timeStamp());
    }
};

TEST_F(DtRefClockSourceHwCounterTest, HasTheNameAndTheRateOfTheCounter)
{
    const DtRefClockSourceHwCounter clock;
    EXPECT_STREQ(clock.getName(), "HwCounter");
    const Rational rate(HwCounter::getRateNumerator(), HwCounter::getRateDenominator());
    EXPECT_EQ(valueOf(clock.getRate()), valueOf(rate));
    EXPECT_EQ(valueOf(clock.getNativeRate()), valueOf(rate));
}

TEST_F(DtRefClockSourceHwCounterTest, CountsFromItsConstruction)
{
    for (int i = 0; i < 3; ++i)
    {
        const long long beforeClock = now();
        const DtRefClockSourceHwCounter clock;
        const long long afterClock = now();
        for (int k = 0; k < 1000; ++k)
        {
            const long long before = now();
            const long long count = clock.getCount();
            const long long after = now();
            ASSERT_GE(count, before - afterClock);
            ASSERT_LE(count, after - beforeClock);
        }
    }
}

TEST_F(DtRefClockSourceHwCounterTest, AnOlderClockIsAhead)
{
    const DtRefClockSourceHwCounter older;
    while (older.getCount() < 1000)
    {
    }
    const DtRefClockSourceHwCounter younger;
    const long long count = younger.getCount();
    EXPECT_GE(older.getCount(), count + 1000);
}

TEST_F(DtRefClockSourceHwCounterTest, NeverGoesBackForAnyThread)
{
    const DtRefClockSourceHwCounter clock;
    const auto read = [&clock](bool* rising)
    {
        long long last = 0;
        for (int i = 0; i < 20000; ++i)
        {
            const long long count = clock.getCount();
            *rising = *rising && count >= last;
            last = count;
        }
    };
    bool rising[4] = {true, true, true, true};
    std::vector<std::thread> threads;
    for (bool& each : rising) threads.emplace_back(read, &each);
    for (std::thread& thread : threads) thread.join();
    for (const bool each : rising) EXPECT_TRUE(each);
}

} // namespace

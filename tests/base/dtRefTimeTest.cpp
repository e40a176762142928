#include "base/dtRefTime.h"

#include "base/dtRefClockEx.h"
#include "base/hwCounter.h"
#include "base/osCpuInfo.h"

#include "support/childProcess.h"
#include "support/timeReference.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <iomanip>
#include <sstream>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace
{

using support::HIGHEST;
using support::LOWEST;
using support::outcomeOf;
using support::RateValue;
using support::textOf;
using support::TimeRandom;
using support::valueOf;
using support::wrapped64;
using Zu::DtRefClockEx;
using Zu::DtRefTime;
using Zu::DtRefTimeFactory;
using Zu::DtTimeIndex;
using Zu::HwCounter;
using Zu::Rational;
using Zu::RationalEx;

std::string textOf(const DtRefTime& time)
{
    return support::textOf(time.getCount(), valueOf(time.getRate()));
}

template <class T>
concept HasSum = requires(T a, T b)
{
    a + b;
};
template <class T>
concept HasDifference = requires(T a, T b)
{
    a - b;
};
template <class T>
concept HasOrder = requires(T a, T b)
{
    a < b;
};
template <class T>
concept HasEquality = requires(T a, T b)
{
    a == b;
};

static_assert(HasSum<Zu::DtTime> && HasOrder<Zu::DtTime>);
static_assert(!HasSum<DtRefTime> && !HasDifference<DtRefTime>);
static_assert(!HasOrder<DtRefTime> && !HasEquality<DtRefTime>);
static_assert(!std::is_constructible_v<DtRefTime, DtTimeIndex, Rational>);
static_assert(!std::is_convertible_v<DtRefTime, Zu::DtTime>);
static_assert(!std::is_convertible_v<Zu::DtTime, DtRefTime>);
static_assert(std::is_trivially_copyable_v<DtRefTime> && !std::is_polymorphic_v<DtRefTime>);
static_assert(std::is_nothrow_default_constructible_v<DtRefTime>);
static_assert(sizeof(DtRefTime) == 16);
static_assert(DtRefTime().getCount() == 0 && DtRefTime().getRate() == Rational(0, 1));
static_assert(!std::is_copy_constructible_v<DtRefTimeFactory>);
static_assert(!std::is_default_constructible_v<DtRefTimeFactory>);

class DtRefTimeTest : public testing::Test
{
protected:
    void SetUp() override
    {
        Zu::OsCpuInfo::initialize();
        HwCounter::init();
    }

    static const DtRefTimeFactory& factory()
    {
        return DtRefTimeFactory::getInstance();
    }

    static Rational clockRate()
    {
        return Rational(HwCounter::getRateNumerator(), HwCounter::getRateDenominator());
    }

    static std::string atClockRate(std::int64_t count)
    {
        return support::textOf(count, valueOf(clockRate()));
    }
};

TEST_F(DtRefTimeTest, ATimeThatWasNeverSetIsZeroAtTheNullRate)
{
    const DtRefTime time;
    EXPECT_EQ(textOf(time), "0 at 0/1");
    std::ostringstream os;
    os << time;
    EXPECT_EQ(os.str(), "(0 @ (0/1=0))");
}

TEST_F(DtRefTimeTest, ThereIsOneFactoryWithTheHardwareCounter)
{
    DtRefTimeFactory& instance = DtRefTimeFactory::getInstance();
    EXPECT_EQ(&DtRefTimeFactory::getInstance(), &instance);
    EXPECT_EQ(&instance.getClockSource(), &instance.getClockSource());
    EXPECT_STREQ(instance.getClockSource().getName(), "HwCounter");
    EXPECT_EQ(valueOf(instance.getClockSource().getRate()), valueOf(clockRate()));
}

TEST_F(DtRefTimeTest, NowIsTheCountOfTheClockAtItsRate)
{
    const Zu::DtRefClockSource& source = factory().getClockSource();
    for (int i = 0; i < 1000; ++i)
    {
        const long long before = source.getCount();
        const DtRefTime time = factory().create();
        const long long after = source.getCount();
        ASSERT_LE(before, time.getCount());
        ASSERT_LE(time.getCount(), after);
        ASSERT_EQ(valueOf(time.getRate()), valueOf(clockRate()));
    }
}

TEST_F(DtRefTimeTest, CountsBeginWithTheFactoryNotWithTheCounter)
{
    const long long count = factory().create().getCount();
    EXPECT_GE(count, 0);
    EXPECT_LT(count, static_cast<long long>(HwCounter::timeStamp()));
}

TEST_F(DtRefTimeTest, NowNeverGoesBackForAnyThread)
{
    const DtRefTimeFactory& instance = factory();
    const auto read = [&instance](bool* rising)
    {
        long long last = 0;
        for (int i = 0; i < 20000; ++i)
        {
            const long long count = instance.create().getCount();
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

TEST_F(DtRefTimeTest, AStoredCountIsRebuiltByTheNameOfTheClock)
{
    for (const std::int64_t count : {std::int64_t{5}, std::int64_t{0}, LOWEST, HIGHEST})
    {
        // The name is compared, not its address.
        const std::string name = "HwCounter";
        EXPECT_EQ(textOf(factory().create(count, name.c_str())), atClockRate(count));
    }
}

TEST_F(DtRefTimeTest, ACountOfAnotherClockIsRefused)
{
    for (const char* const name : {"Other", "", "hwCounter", "HwCounter ", "HwCounte"})
    {
        try
        {
            factory().create(DtTimeIndex(5), name);
            ADD_FAILURE() << "nothing raised for " << name;
        }
        catch (const DtRefClockEx::SourceMismatch& exception)
        {
            EXPECT_STREQ(exception.getReason(),
                         "Clock source name does not match system reference clock.");
        }
    }
}

TEST_F(DtRefTimeTest, ADeltaIsAddedAtTheRateOfTheClock)
{
    const DtRefTime base = factory().create(DtTimeIndex(1000), "HwCounter");
    const std::int64_t second = clockRate().getNumerator();
    EXPECT_EQ(textOf(factory().create(base, 0, Rational(25, 1))), atClockRate(1000));
    EXPECT_EQ(textOf(factory().create(base, 7, clockRate())), atClockRate(1007));
    EXPECT_EQ(textOf(factory().create(base, -7, clockRate())), atClockRate(993));
    EXPECT_EQ(textOf(factory().create(base, 1, Rational(1, 1))), atClockRate(1000 + second));
    EXPECT_EQ(textOf(factory().create(base, -60, Rational(1, 1))), atClockRate(1000 - 60 * second));
    EXPECT_EQ(textOf(factory().create(base, 3, Rational(2, 1))),
              atClockRate(1000 + 3 * second / 2));
    // Less than a tick of the clock counts as none, on either side of 0.
    const Rational finer(support::HIGHEST32, 1);
    EXPECT_EQ(textOf(factory().create(base, 1, finer)), atClockRate(1000));
    EXPECT_EQ(textOf(factory().create(base, -1, finer)), atClockRate(1000));
}

TEST_F(DtRefTimeTest, TheRateOfTheBaseIsNotLookedAt)
{
    EXPECT_EQ(textOf(factory().create(DtRefTime(), 5, clockRate())), atClockRate(5));
    EXPECT_EQ(textOf(factory().create(DtRefTime(), 0, Rational(25, 1))), atClockRate(0));
}

TEST_F(DtRefTimeTest, SumsBeyond64BitsWrap)
{
    const DtRefTime last = factory().create(DtTimeIndex(HIGHEST), "HwCounter");
    EXPECT_EQ(textOf(factory().create(last, 1, clockRate())), atClockRate(LOWEST));
    const DtRefTime first = factory().create(DtTimeIndex(LOWEST), "HwCounter");
    EXPECT_EQ(textOf(factory().create(first, -1, clockRate())), atClockRate(HIGHEST));
}

TEST_F(DtRefTimeTest, ADeltaAtTheNullRateIsRefused)
{
    const DtRefTime base = factory().create();
    EXPECT_THROW(factory().create(base, 5, Rational(0, 1)), RationalEx::ExDenominatorZero);
    EXPECT_THROW(factory().create(base, 0, Rational(0, 1)), RationalEx::ExDenominatorZero);
}

TEST_F(DtRefTimeTest, DeltasAgreeWith128BitsReducedToTheWidths)
{
    TimeRandom random(651);
    const RateValue clock = valueOf(clockRate());
    for (int i = 0; i < 20000; ++i)
    {
        const std::int64_t count = random.number64();
        const std::int64_t delta = random.number64();
        const Rational rate = random.rate();
        const DtRefTime base = factory().create(count, "HwCounter");
        const std::string expected = outcomeOf(
            [&]
            {
                const std::int64_t ticks = convertedCount(delta, valueOf(rate), clock);
                return atClockRate(wrapped64(support::Int128{count} + ticks));
            });
        ASSERT_EQ(outcomeOf([&] { return textOf(factory().create(base, delta, rate)); }), expected)
            << count << " " << delta << rate;
    }
}

TEST_F(DtRefTimeTest, ACopyHasTheValueOfItsSource)
{
    const DtRefTime source = factory().create(DtTimeIndex(42), "HwCounter");
    const DtRefTime copy(source);
    DtRefTime assigned;
    assigned = source;
    EXPECT_EQ(textOf(copy), atClockRate(42));
    EXPECT_EQ(textOf(assigned), atClockRate(42));
}

TEST_F(DtRefTimeTest, IsPrintedAsACountAtARate)
{
    const DtRefTime time = factory().create(DtTimeIndex(-255), "HwCounter");
    std::ostringstream expected;
    expected << "(-255 @ (" << HwCounter::getRateNumerator()
             << "/1=" << static_cast<double>(HwCounter::getRateNumerator()) << "))";
    std::ostringstream dumped;
    EXPECT_EQ(&time.dump(dumped), &dumped);
    EXPECT_EQ(dumped.str(), expected.str());
    std::ostringstream inserted;
    EXPECT_EQ(&(inserted << time), &inserted);
    EXPECT_EQ(inserted.str(), expected.str());
    std::ostringstream formatted;
    formatted << std::hex << std::fixed << std::setprecision(1)
              << factory().create(DtTimeIndex(255), "HwCounter") << DtRefTime();
    std::ostringstream expectedFormatted;
    expectedFormatted << std::hex << "(ff @ (" << HwCounter::getRateNumerator() << "/1=" << std::dec
                      << HwCounter::getRateNumerator() << ".0))(0 @ (0/1=0.0))";
    EXPECT_EQ(formatted.str(), expectedFormatted.str());
}

TEST(DtRefTimeProgram, TheClockCountsFromTheStartOfThePackages)
{
    const support::ProgramResult result = support::runProgram("timeProgram");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "counts from the start: 1\n");
}

} // namespace

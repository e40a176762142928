#include "base/dtTimeMark.h"

#include "base/hwCounter.h"
#include "base/osCpuInfo.h"
#include "base/rationalEx.h"

#include "support/timeReference.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <iomanip>
#include <sstream>
#include <string>
#include <type_traits>

namespace
{

using support::HIGHEST;
using support::Int128;
using support::LOWEST;
using support::outcomeOf;
using support::RateValue;
using support::textOf;
using support::TimeRandom;
using support::TimeValue;
using support::valueOf;
using support::wrapped64;
using Zu::DtRefTime;
using Zu::DtRefTimeFactory;
using Zu::DtTime;
using Zu::DtTimeIndex;
using Zu::DtTimeMark;
using Zu::HwCounter;
using Zu::Rational;
using Zu::RationalEx;

static_assert(std::is_trivially_copyable_v<DtTimeMark> && !std::is_polymorphic_v<DtTimeMark>);
static_assert(sizeof(DtTimeMark) == sizeof(DtTime) + sizeof(DtRefTime));

std::string textOf(const DtRefTime& time)
{
    return support::textOf(time.getCount(), valueOf(time.getRate()));
}

std::string textOf(const DtTimeMark& mark)
{
    return textOf(mark.getStreamTime()) + ", " + textOf(mark.getRefTime());
}

class DtTimeMarkTest : public testing::Test
{
protected:
    void SetUp() override
    {
        Zu::OsCpuInfo::initialize();
        HwCounter::init();
    }

    static Rational clockRate()
    {
        return Rational(HwCounter::getRateNumerator(), HwCounter::getRateDenominator());
    }

    // How many ticks of the clock are a second.
    static std::int64_t second()
    {
        return HwCounter::getRateNumerator();
    }

    static DtRefTime refTime(std::int64_t count)
    {
        return DtRefTimeFactory::getInstance().create(count, "HwCounter");
    }

    static std::string atClockRate(std::int64_t count)
    {
        return support::textOf(count, valueOf(clockRate()));
    }
};

TEST_F(DtTimeMarkTest, IsTwiceZeroByDefault)
{
    EXPECT_EQ(textOf(DtTimeMark()), "0 at 1/1, 0 at 0/1");
}

TEST_F(DtTimeMarkTest, HoldsThePairAsGiven)
{
    const DtTimeMark mark(DtTime(100, 25, 1), refTime(1000));
    EXPECT_EQ(textOf(mark), "100 at 25/1, " + atClockRate(1000));
    const DtTimeMark copy(mark);
    DtTimeMark assigned;
    assigned = mark;
    EXPECT_EQ(textOf(copy), textOf(mark));
    EXPECT_EQ(textOf(assigned), textOf(mark));
    EXPECT_EQ(textOf(DtTimeMark(DtTime(1, 2, 3), DtRefTime())), "1 at 2/3, 0 at 0/1");
}

TEST_F(DtTimeMarkTest, AMomentOfTheClockGivesThePlaceInTheStream)
{
    const DtTimeMark mark(DtTime(100, 25, 1), refTime(1000));
    const struct
    {
        std::int64_t _refCount;
        std::int64_t _streamCount;
    } cases[] = {
        {1000, 100},
        {1000 + second(), 125},
        {1000 + 60 * second(), 1600},
        {1000 - second(), 75},
        {1000 - 5 * second(), -25},
        // Truncated toward zero from the mark, on both sides of it.
        {1000 + second() / 25 - 1, 100},
        {1000 + second() / 25 + 1, 101},
        {1000 - second() / 25 + 1, 100},
        {1000 - second() / 25 - 1, 99},
    };
    for (const auto& row : cases)
    {
        const DtRefTime at = refTime(row._refCount);
        EXPECT_EQ(textOf(mark.evalTime(at)),
                  std::to_string(row._streamCount) + " at 25/1, " + textOf(at));
    }
}

TEST_F(DtTimeMarkTest, TheRateOfTheMomentIsNotLookedAt)
{
    const DtTimeMark mark(DtTime(100, 25, 1), refTime(second()));
    EXPECT_EQ(textOf(mark.evalTime(DtRefTime())), "75 at 25/1, 0 at 0/1");
}

TEST_F(DtTimeMarkTest, AMarkWithoutARefTimeGivesNoPlaceInTheStream)
{
    EXPECT_THROW(DtTimeMark().evalTime(refTime(5)), RationalEx::ExDenominatorZero);
    EXPECT_THROW(DtTimeMark().evalTime(DtRefTime()), RationalEx::ExDenominatorZero);
    const DtTimeMark mark(DtTime(100, 25, 1), DtRefTime());
    EXPECT_THROW(mark.evalTime(refTime(5)), RationalEx::ExDenominatorZero);
}

TEST_F(DtTimeMarkTest, APlaceInTheStreamGivesTheMomentOfTheClock)
{
    const DtTimeMark mark(DtTime(100, 25, 1), refTime(1000));
    const struct
    {
        TimeValue _streamTime;
        std::int64_t _refCount;
    } cases[] = {
        {{100, {25, 1}}, 1000},
        {{125, {25, 1}}, 1000 + second()},
        {{75, {25, 1}}, 1000 - second()},
        {{0, {25, 1}}, 1000 - 4 * second()},
        // The position of the mark is counted at the requested rate, toward zero.
        {{4, {1, 1}}, 1000},
        {{5, {1, 1}}, 1000 + second()},
        {{8, {2, 1}}, 1000},
        {{400, {100, 1}}, 1000},
        {{300, {100, 1}}, 1000 - second()},
    };
    for (const auto& row : cases)
    {
        const DtTime at(row._streamTime._count, row._streamTime._rate._numerator,
                        row._streamTime._rate._denominator);
        EXPECT_EQ(textOf(mark.evalTime(at)), textOf(at) + ", " + atClockRate(row._refCount));
    }
    // 101 ticks of 25/1 are 4.04 s: at 1/1 they are 4.
    const DtTimeMark odd(DtTime(101, 25, 1), refTime(1000));
    EXPECT_EQ(textOf(odd.evalTime(DtTime(4, 1, 1))), "4 at 1/1, " + atClockRate(1000));
    const DtTimeMark below(DtTime(-101, 25, 1), refTime(1000));
    EXPECT_EQ(textOf(below.evalTime(DtTime(-4, 1, 1))), "-4 at 1/1, " + atClockRate(1000));
}

TEST_F(DtTimeMarkTest, TheMomentHasTheRateOfTheClockNotThatOfTheMark)
{
    EXPECT_EQ(textOf(DtTimeMark().evalTime(DtTime(3, 1, 1))),
              "3 at 1/1, " + atClockRate(3 * second()));
    EXPECT_EQ(textOf(DtTimeMark(DtTime(100, 25, 1), DtRefTime()).evalTime(DtTime(100, 25, 1))),
              "100 at 25/1, " + atClockRate(0));
}

TEST_F(DtTimeMarkTest, EqualRatesAreNotConverted)
{
    // A conversion to its own rate would wrap this count to 0.
    const DtTime time(8589934592, support::LOWEST32, 1);
    const DtTimeMark mark(time, refTime(1000));
    EXPECT_EQ(textOf(mark.evalTime(time)), textOf(time) + ", " + atClockRate(1000));
}

TEST_F(DtTimeMarkTest, DifferencesAndSumsWrap)
{
    const DtTimeMark mark(DtTime(HIGHEST, clockRate()), refTime(LOWEST));
    EXPECT_EQ(textOf(mark.evalTime(refTime(LOWEST + 1))),
              atClockRate(LOWEST) + ", " + atClockRate(LOWEST + 1));
    EXPECT_EQ(textOf(mark.evalTime(refTime(HIGHEST))),
              atClockRate(HIGHEST - 1) + ", " + atClockRate(HIGHEST));
    EXPECT_EQ(textOf(mark.evalTime(DtTime(LOWEST, clockRate()))),
              atClockRate(LOWEST) + ", " + atClockRate(LOWEST + 1));
}

TEST_F(DtTimeMarkTest, MomentsAgreeWith128BitsReducedToTheWidths)
{
    TimeRandom random(661);
    const RateValue clock = valueOf(clockRate());
    for (int i = 0; i < 20000; ++i)
    {
        const std::int64_t streamCount = random.number64();
        const DtTime stream(streamCount, random.rate());
        const std::int64_t refCount = random.number64();
        const std::int64_t asked = random.number64();
        const DtTimeMark mark(stream, refTime(refCount));
        const std::string expected = outcomeOf(
            [&]
            {
                const RateValue rate = valueOf(stream.getRate());
                const std::int64_t passed = wrapped64(Int128{asked} - refCount);
                const std::int64_t ticks = convertedCount(passed, clock, rate);
                return support::textOf(wrapped64(Int128{streamCount} + ticks), rate) + ", " +
                       atClockRate(asked);
            });
        ASSERT_EQ(outcomeOf([&] { return textOf(mark.evalTime(refTime(asked))); }), expected)
            << mark << asked;
    }
}

TEST_F(DtTimeMarkTest, PlacesAgreeWith128BitsReducedToTheWidths)
{
    TimeRandom random(662);
    const RateValue clock = valueOf(clockRate());
    for (int i = 0; i < 20000; ++i)
    {
        const std::int64_t streamCount = random.number64();
        const DtTime stream(streamCount, random.rate());
        const std::int64_t refCount = random.number64();
        const std::int64_t askedCount = random.number64();
        const DtTime asked(askedCount, i % 5 == 0 ? stream.getRate() : random.rate());
        const DtTimeMark mark(stream, refTime(refCount));
        const std::string expected = outcomeOf(
            [&]
            {
                const RateValue rate = valueOf(asked.getRate());
                const std::int64_t base =
                    asked.isRateEqual(stream)
                        ? streamCount
                        : convertedCount(streamCount, valueOf(stream.getRate()), rate);
                const std::int64_t passed = wrapped64(Int128{askedCount} - base);
                const std::int64_t ticks = convertedCount(passed, rate, clock);
                return textOf(asked) + ", " + atClockRate(wrapped64(Int128{refCount} + ticks));
            });
        ASSERT_EQ(outcomeOf([&] { return textOf(mark.evalTime(asked)); }), expected)
            << mark << asked;
    }
}

TEST_F(DtTimeMarkTest, ThereAndBackAgainIsTheSamePlace)
{
    TimeRandom random(663);
    for (int i = 0; i < 10000; ++i)
    {
        // The one rate of which every clock's is a multiple.
        const DtTime stream(random.number64() >> 32, 1, 1);
        const DtTimeMark mark(stream, refTime(random.number64() >> 8));
        const DtTime asked(random.number64() >> 32, 1, 1);
        const DtTimeMark there = mark.evalTime(asked);
        ASSERT_EQ(textOf(mark.evalTime(there.getRefTime())), textOf(there));
        ASSERT_EQ(textOf(there.evalTime(mark.getStreamTime())), textOf(mark));
    }
}

TEST_F(DtTimeMarkTest, IsPrintedAsBothTimes)
{
    std::ostringstream byDefault;
    byDefault << DtTimeMark();
    EXPECT_EQ(byDefault.str(), "((0 @ (1/1=1)) (0 @ (0/1=0)))");
    const DtTimeMark mark(DtTime(1001, 30000, 1001), refTime(1000));
    for (const bool formatted : {false, true})
    {
        std::ostringstream expected;
        std::ostringstream dumped;
        std::ostringstream inserted;
        if (formatted)
        {
            for (std::ostream* const os : {&expected, &dumped, &inserted})
                *os << std::hex << std::setprecision(9);
        }
        expected << "(" << mark.getStreamTime() << " " << mark.getRefTime() << ")";
        mark.dump(dumped);
        EXPECT_EQ(dumped.str(), expected.str());
        EXPECT_EQ(&(inserted << mark), &inserted);
        EXPECT_EQ(inserted.str(), expected.str());
        EXPECT_EQ(dumped.str().find(formatted ? "((3e9 @ (7530/3e9=29.97003)) (3e8 @ ("
                                              : "((1001 @ (30000/1001=29.97)) (1000 @ ("),
                  0U);
    }
}

} // namespace

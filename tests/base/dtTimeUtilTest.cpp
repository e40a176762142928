#include "base/dtTimeUtil.h"

#include "base/arrayPtr.h"
#include "base/dtEx.h"
#include "base/interval.h"
#include "base/rational.h"
#include "base/rationalEx.h"

#include "support/timeReference.h"

#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace
{

using support::HIGHEST;
using support::HIGHEST32;
using support::LOWEST;
using support::LOWEST32;
using support::RateValue;
using support::textOf;
using support::TimeRandom;
using support::valueOf;
using Zu::DtEx;
using Zu::DtTime;
using Zu::DtTimeIndex;
using Zu::DtTimeUtil;
using Zu::Interval;
using Zu::Rational;

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

static_assert(!std::is_default_constructible_v<DtTimeUtil>);

Rational rational(const RateValue& rate)
{
    return Rational(rate._numerator, rate._denominator);
}

DtTime timeAt(std::int64_t count, const RateValue& rate)
{
    return DtTime(count, rational(rate));
}

double doubleOf(std::uint64_t bits)
{
    return std::bit_cast<double>(bits);
}

float floatOf(std::uint32_t bits)
{
    return std::bit_cast<float>(bits);
}

std::uint64_t bitsOf(double value)
{
    return std::bit_cast<std::uint64_t>(value);
}

std::uint32_t bitsOf(float value)
{
    return std::bit_cast<std::uint32_t>(value);
}

// All tables of bits and counts in this file were computed with exact fractions in Python: each
// operand, quotient and product is rounded to the nearest number of the format, ties to even, and
// the last of them cut or rounded to a whole number.

struct Seconds
{
    std::int64_t _count;
    RateValue _rate;
    std::uint64_t _double;
    std::uint32_t _float;
};

const Seconds SECONDS[] = {
    {0, {25, 1}, 0x0000000000000000, 0x00000000},
    {1, {25, 1}, 0x3FA47AE147AE147B, 0x3D23D70A},
    {-1, {25, 1}, 0xBFA47AE147AE147B, 0xBD23D70A},
    {1001, {30000, 1001}, 0x4040B3344AD1FCFF, 0x420599A2},
    {30000, {30000, 1001}, 0x408F480000000001, 0x447A3FFF},
    {1, {30000, 1001}, 0x3FA1156F8C384072, 0x3D08AB7C},
    {-107892, {30000, 1001}, 0xC0AC1FFE28240B79, 0xC560FFF1},
    {48000, {44100, 1}, 0x3FF16A3B35FC845B, 0x3F8B51DA},
    {44101, {44100, 1}, 0x3FF00017C6F8C752, 0x3F8000BE},
    {7, {1, 60}, 0x407A400000000000, 0x43D20000},
    {3, {-2, 1}, 0xBFF8000000000000, 0xBFC00000},
    {16777217, {1, 1}, 0x4170000010000000, 0x4B800000},
    {16777217, {3, 1}, 0x415555556AAAAAAA, 0x4AAAAAAB},
    {9007199254740993, {1, 1}, 0x4340000000000000, 0x5A000000},
    {9007199254740993, {1000000, 1}, 0x4200C6F7A0B5ED8D, 0x500637BD},
    {9223372036854775807, {1, 1}, 0x43E0000000000000, 0x5F000000},
    {LOWEST, {1, 1}, 0xC3E0000000000000, 0xDF000000},
    {9223372036854775807, {1, 2147483647}, 0x45CFFFFFFFC00000, 0x6E800000},
    {123456789012345678, {24000, 1001}, 0x43324B262C829E1E, 0x59925931},
    {1, {2147483647, 1}, 0x3E00000000200000, 0x30000000},
    {1, {16777217, 1}, 0x3E6FFFFFE0000020, 0x33800000},
};

TEST(DtTimeUtil, SecondsOfATime)
{
    for (const Seconds& row : SECONDS)
    {
        const DtTime time = timeAt(row._count, row._rate);
        EXPECT_EQ(bitsOf(DtTimeUtil::getSecondsDouble(time)), row._double) << time;
        EXPECT_EQ(bitsOf(DtTimeUtil::getSecondsFloat(time)), row._float) << time;
    }
}

struct FromSeconds
{
    RateValue _rate;
    std::uint64_t _double;
    std::uint32_t _float;
    std::int64_t _countOfDouble;
    std::int64_t _countOfFloat;
};

const FromSeconds FROM_SECONDS[] = {
    {{25, 1}, 0x3FEFF7CED916872B, 0x3F7FBE77, 24, 24},
    {{25, 1}, 0xBFEFF7CED916872B, 0xBF7FBE77, -24, -24},
    {{25, 1}, 0x3FF0000000000000, 0x3F800000, 25, 25},
    {{30000, 1001}, 0x3FF0000000000000, 0x3F800000, 29, 29},
    {{30000, 1001}, 0xBFF0000000000000, 0xBF800000, -29, -29},
    {{30000, 1001}, 0x408F480000000000, 0x447A4000, 30000, 30000},
    {{30000, 1001}, 0x408F48CCCCCCCCCD, 0x447A4666, 30002, 30002},
    {{44100, 1}, 0x3FB999999999999A, 0x3DCCCCCD, 4410, 4410},
    {{48000, 1}, 0x40AC2000014F8B59, 0x45610000, 172800000, 172800000},
    {{1, 60}, 0x405DF9999999999A, 0x42EFCCCD, 1, 1},
    {{1, 60}, 0xC05DF9999999999A, 0xC2EFCCCD, -1, -1},
    {{-2, 1}, 0x3FFC000000000000, 0x3FE00000, -3, -3},
    {{3, 1}, 0x3FD555555FB67C87, 0x3EAAAAAB, 1, 1},
    {{1000, 1}, 0x3F50624DD2F1A9FC, 0x3A83126F, 1, 1},
    {{1000, 1}, 0x40D0624DE353F7CF, 0x4683126F, 16777217, 16777216},
    {{90000, 1}, 0x4202A05F20000000, 0x501502F9, 900000000000000, 899999995002880},
    {{1000000, 1}, 0x42A0C6F7A0B5EC00, 0x550637BD, 9223372036853999616, LOWEST},
    {{1000000, 1}, 0x42A0C6F7A0B5EE00, 0x550637BD, LOWEST, LOWEST},
    {{1000000, 1}, 0xC2A0C6F7A0B5EE00, 0xD50637BD, LOWEST, LOWEST},
    {{1, 1}, 0x43DFEB3DD0676600, 0x5EFF59EF, 9200000000000000000, 9200000267938955264},
    {{1, 1}, 0x43E02207973F6440, 0x5F01103D, LOWEST, LOWEST},
    {{1, 1}, 0xC3E02207973F6440, 0xDF01103D, LOWEST, LOWEST},
    {{2147483647, 1}, 0x41F0000000000000, 0x4F800000, 9223372032559808512, LOWEST},
    {{2147483647, 1}, 0x41F0000000300000, 0x4F800000, LOWEST, LOWEST},
    {{24000, 1001}, 0x3FA55ACB6EFD038E, 0x3D2AD65B, 0, 1},
};

TEST(DtTimeUtil, ATimeOfSecondsIsTruncatedTowardZero)
{
    for (const FromSeconds& row : FROM_SECONDS)
    {
        const Rational rate = rational(row._rate);
        const double seconds = doubleOf(row._double);
        const float single = floatOf(row._float);
        EXPECT_EQ(textOf(DtTimeUtil::getDtTimeFromSeconds(rate, seconds)),
                  support::textOf(row._countOfDouble, row._rate))
            << seconds;
        EXPECT_EQ(textOf(DtTimeUtil::getDtTimeFromSeconds(rate, single)),
                  support::textOf(row._countOfFloat, row._rate))
            << single;
    }
}

TEST(DtTimeUtil, SecondsThatDoNotFitGiveTheLowestCount)
{
    const Rational rate(25, 1);
    for (const double seconds : {INF, -INF, NOT_A_NUMBER, 1e300, -1e300})
    {
        EXPECT_EQ(DtTimeUtil::getDtTimeFromSeconds(rate, seconds).getCount(), LOWEST) << seconds;
    }
    for (const float seconds :
         {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
          std::numeric_limits<float>::quiet_NaN(), 1e30F, -1e30F})
    {
        EXPECT_EQ(DtTimeUtil::getDtTimeFromSeconds(rate, seconds).getCount(), LOWEST) << seconds;
    }
}

TEST(DtTimeUtil, SecondsAtTheNullRateAreRefused)
{
    for (const double seconds : {0.0, 1.5, INF})
        EXPECT_THROW(DtTimeUtil::getDtTimeFromSeconds(Rational(0, 1), seconds), DtEx::BadRate);
    for (const float seconds : {0.0F, 1.5F, std::numeric_limits<float>::infinity()})
        EXPECT_THROW(DtTimeUtil::getDtTimeFromSeconds(Rational(0, 1), seconds), DtEx::BadRate);
}

TEST(DtTimeUtil, SecondsThereAndBackAgainAreTheSameTimeAtWholeSeconds)
{
    TimeRandom random(671);
    for (int i = 0; i < 20000; ++i)
    {
        const std::int64_t seconds = random.number64() >> 40;
        const std::int32_t numerator = random.upTo(48000);
        const DtTime time =
            DtTimeUtil::getDtTimeFromSeconds(Rational(numerator, 1), static_cast<double>(seconds));
        ASSERT_EQ(textOf(time), support::textOf(seconds * numerator, {numerator, 1}));
        const double exact = static_cast<double>(seconds);
        ASSERT_NEAR(DtTimeUtil::getSecondsDouble(time), exact, std::abs(exact) * 1e-15);
    }
}

std::string written(const DtTime& time)
{
    const Zu::ArrayPtr<char> text = DtTimeUtil::getDtStringFromDtTime(time);
    return text.get();
}

TEST(DtTimeUtil, ADtStringIsCountNumeratorAndDenominator)
{
    const struct
    {
        DtTime _time;
        const char* _text;
    } cases[] = {
        {DtTime(), "0 1 1"},
        {DtTime(-5, 1, 3), "-5 1 3"},
        {DtTime(1001, 30000, 1001), "1001 30000 1001"},
        {DtTime(7, 50, 2), "7 25 1"},
        {DtTime(7, 25, -1), "7 -25 1"},
        {DtTime(HIGHEST, HIGHEST32, HIGHEST32 - 1), "9223372036854775807 2147483647 2147483646"},
        {DtTime(LOWEST, LOWEST32, HIGHEST32), "-9223372036854775808 -2147483648 2147483647"},
        {DtTime(4294967296, 1, 1), "4294967296 1 1"},
    };
    for (const auto& row : cases) EXPECT_EQ(written(row._time), row._text);
}

// The time of a text, or a word for the error, when `errno` was this before.
std::string readOf(const std::string& text, int errorBefore = 0)
{
    errno = errorBefore;
    try
    {
        return support::outcomeOf(
            [&text] { return textOf(DtTimeUtil::getDtTimeFromDtString(text.c_str())); });
    }
    catch (const DtEx::DtStringError& error)
    {
        EXPECT_EQ(error.getReason(), std::string("DtString conversion error: ") +
                                         DtEx::DtStringError::toString(error.getErrorCode()));
        return DtEx::DtStringError::toString(error.getErrorCode());
    }
}

constexpr const char* NUMERATOR_MALFORMED = "Rate numerator malformed.";
constexpr const char* NUMERATOR_OVERFLOW = "Rate numerator overflow.";
constexpr const char* DENOMINATOR_MALFORMED = "Rate denominator malformed.";
constexpr const char* DENOMINATOR_OVERFLOW = "Rate denominator overflow.";

struct Reading
{
    const char* _text;
    const char* _outcome;
};

const Reading READINGS[] = {
    {"1001 30000 1001", "1001 at 30000/1001"},
    {"-5 1 3", "-5 at 1/3"},
    {"1 10 2", "1 at 5/1"},
    {"1 -10 -2", "1 at 5/1"},
    {"1 10 -2", "1 at -5/1"},
    {"+7 +25 +1", "7 at 25/1"},
    {"007 0025 01", "7 at 25/1"},
    {"9223372036854775807 2147483647 1", "9223372036854775807 at 2147483647/1"},
    {"-9223372036854775808 -2147483648 1", "-9223372036854775808 at -2147483648/1"},
    {"1 1 2147483647", "1 at 1/2147483647"},
    // Blanks, a fourth field, and text after digits.
    {"  7   25  1 trailing", "7 at 25/1"},
    {"7 25 1 2 3 4", "7 at 25/1"},
    {"7 25 1 ", "7 at 25/1"},
    {"7 30000x 1001y", "7 at 30000/1001"},
    {"7 25.9 1.9", "7 at 25/1"},
    {"7 25 1\n", "7 at 25/1"},
    {"7 25,1 2", "7 at 25/2"},
    {"7 1e3 1", "7 at 1/1"},
    // Only a blank ends a field; other white space is skipped before digits, and ends them.
    {"7\t8 25 1", "7 at 25/1"},
    {"7 25\t8 1", "7 at 25/1"},
    {"7\t25\t1", NUMERATOR_MALFORMED},
    {"7\t25\t1 30 2", "7 at 15/1"},
    {"\t7 \t25 \n1", "7 at 25/1"},
    {"7\n25 1", DENOMINATOR_MALFORMED},
    // The count is not checked.
    {"x 25 1", "0 at 25/1"},
    {"- 25 1", "0 at 25/1"},
    {"x12 25 1", "0 at 25/1"},
    {"12x 25 1", "12 at 25/1"},
    {"12.9 25 1", "12 at 25/1"},
    {"0x10 25 1", "0 at 25/1"},
    {"9223372036854775808 25 1", "9223372036854775807 at 25/1"},
    {"99999999999999999999999999 25 1", "9223372036854775807 at 25/1"},
    {"-9223372036854775809 25 1", "-9223372036854775808 at 25/1"},
    {"-99999999999999999999999999 25 1", "-9223372036854775808 at 25/1"},
    // The rate is.
    {"1 x 1", NUMERATOR_MALFORMED},
    {"1 1 x", DENOMINATOR_MALFORMED},
    {"1 - 1", NUMERATOR_MALFORMED},
    {"1 1 -", DENOMINATOR_MALFORMED},
    {"1 + 1", NUMERATOR_MALFORMED},
    {"1 -x 1", NUMERATOR_MALFORMED},
    {"1 x5 1", NUMERATOR_MALFORMED},
    {"1 1 /5", DENOMINATOR_MALFORMED},
    {"1 \t 1", NUMERATOR_MALFORMED},
    {"1 x x", NUMERATOR_MALFORMED},
    {"1 99999999999 1", NUMERATOR_OVERFLOW},
    {"1 -99999999999 1", NUMERATOR_OVERFLOW},
    {"1 2147483648 1", NUMERATOR_OVERFLOW},
    {"1 -2147483649 1", NUMERATOR_OVERFLOW},
    {"1 4294967296 1", NUMERATOR_OVERFLOW},
    {"1 9223372036854775808 1", NUMERATOR_OVERFLOW},
    {"1 99999999999999999999999999 1", NUMERATOR_OVERFLOW},
    {"1 99999999999x 1", NUMERATOR_OVERFLOW},
    {"1 1 99999999999", DENOMINATOR_OVERFLOW},
    {"1 1 2147483648", DENOMINATOR_OVERFLOW},
    {"1 1 -2147483649", DENOMINATOR_OVERFLOW},
    {"1 1 -99999999999999999999999999", DENOMINATOR_OVERFLOW},
    {"1 99999999999 x", NUMERATOR_OVERFLOW},
    {"1 x 99999999999", NUMERATOR_MALFORMED},
    // 0 is a number.
    {"1 0 1", "null rate"},
    {"1 0 5", "null rate"},
    {"1 -0 1", "null rate"},
    {"1 0x19 1", "null rate"},
    {"1 1 0", "zero denominator"},
    {"1 0 0", "zero denominator"},
    {"1 1 0x10", "zero denominator"},
    {"1 0 x", DENOMINATOR_MALFORMED},
    // Missing fields.
    {"", NUMERATOR_MALFORMED},
    {"   ", NUMERATOR_MALFORMED},
    {"1", NUMERATOR_MALFORMED},
    {" 1 ", NUMERATOR_MALFORMED},
    {"1 1", DENOMINATOR_MALFORMED},
    {"1 1  ", DENOMINATOR_MALFORMED},
    {"1 0", DENOMINATOR_MALFORMED},
    {"1 99999999999", NUMERATOR_OVERFLOW},
};

TEST(DtTimeUtil, ReadsADtString)
{
    for (const Reading& row : READINGS) EXPECT_EQ(readOf(row._text), row._outcome) << row._text;
}

TEST(DtTimeUtil, AnErrorFromBeforeMakesTheEndsOfTheRangeOverflows)
{
    const Reading cases[] = {
        {"1 2147483647 1", NUMERATOR_OVERFLOW},
        {"1 -2147483648 1", NUMERATOR_OVERFLOW},
        {"1 1 2147483647", DENOMINATOR_OVERFLOW},
        {"1 1 -2147483648", DENOMINATOR_OVERFLOW},
        {"1 2147483646 1", "1 at 2147483646/1"},
        {"1 -2147483647 1", "1 at -2147483647/1"},
        {"1 1 2147483646", "1 at 1/2147483646"},
        {"1 25 1", "1 at 25/1"},
        {"1 0 1", "null rate"},
        {"1 x 1", NUMERATOR_MALFORMED},
    };
    for (const Reading& row : cases)
        EXPECT_EQ(readOf(row._text, ERANGE), row._outcome) << row._text;
    for (const int error : {EDOM, EINVAL, ENOENT})
        EXPECT_EQ(readOf("1 2147483647 1", error), "1 at 2147483647/1") << error;
}

TEST(DtTimeUtil, AnOverflowIsSuchAnErrorForTheNextText)
{
    EXPECT_EQ(readOf("1 99999999999 1"), NUMERATOR_OVERFLOW);
    EXPECT_EQ(errno, ERANGE);
    EXPECT_EQ(readOf("1 2147483647 1", errno), NUMERATOR_OVERFLOW);
    EXPECT_EQ(readOf("1 1 2147483648"), DENOMINATOR_OVERFLOW);
    EXPECT_EQ(errno, ERANGE);
}

TEST(DtTimeUtil, ATextMayBeLong)
{
    const std::string blanks(20000, ' ');
    const std::string zeros(20000, '0');
    const std::string letters(20000, 'x');
    EXPECT_EQ(readOf(blanks + "7" + blanks + "25" + blanks + "1" + blanks + letters), "7 at 25/1");
    EXPECT_EQ(readOf(zeros + "7 " + zeros + "25 " + zeros + "1"), "7 at 25/1");
    EXPECT_EQ(readOf("7" + letters + " 25" + letters + " 1" + letters), "7 at 25/1");
    EXPECT_EQ(readOf("7 1" + zeros + " 1"), NUMERATOR_OVERFLOW);
}

TEST(DtTimeUtil, TheTextIsLeftAsItIs)
{
    char text[] = "  7   25  1 trailing";
    EXPECT_EQ(textOf(DtTimeUtil::getDtTimeFromDtString(text)), "7 at 25/1");
    EXPECT_EQ(std::memcmp(text, "  7   25  1 trailing", sizeof text), 0);
}

DtTime randomTime(TimeRandom& random)
{
    while (true)
    {
        const std::int64_t count = random.number64();
        const DtTime time(count, random.rate());
        // This denominator has no negation, so such a text reads as another rate.
        if (time.getRate().getDenominator() != LOWEST32) return time;
    }
}

TEST(DtTimeUtil, TextsThereAndBackAgainAreTheSameTime)
{
    TimeRandom random(672);
    for (int i = 0; i < 50000; ++i)
    {
        const DtTime time = randomTime(random);
        const std::string text = written(time);
        ASSERT_EQ(text, std::to_string(static_cast<long long>(time.getCount())) + " " +
                            std::to_string(time.getRate().getNumerator()) + " " +
                            std::to_string(time.getRate().getDenominator()));
        ASSERT_EQ(readOf(text), textOf(time));
    }
}

TEST(DtTimeUtil, AnyThreadMayReadAndWriteTexts)
{
    const auto convert = [](std::uint64_t seed, bool* same)
    {
        TimeRandom random(seed);
        for (int i = 0; i < 5000; ++i)
        {
            const DtTime time = randomTime(random);
            *same = *same && readOf(written(time)) == textOf(time);
        }
    };
    bool same[4] = {true, true, true, true};
    std::vector<std::thread> threads;
    for (std::uint64_t i = 0; i < 4; ++i) threads.emplace_back(convert, 673 + i, &same[i]);
    for (std::thread& thread : threads) thread.join();
    for (const bool each : same) EXPECT_TRUE(each);
}

struct Ticks
{
    std::int64_t _lower;
    std::int64_t _upper;
};

Interval<DtTimeIndex> intervalOf(const Ticks& ticks)
{
    return Interval<DtTimeIndex>(ticks._lower, ticks._upper);
}

struct Inclusion
{
    RateValue _rate;
    std::uint64_t _lowerDouble;
    std::uint64_t _upperDouble;
    std::uint32_t _lowerFloat;
    std::uint32_t _upperFloat;
    Ticks _ofDouble;
    Ticks _ofFloat;
};

const Inclusion INCLUSIONS[] = {
    {{25, 1}, 0x3FB999999999999A, 0x3FB999999999999A, 0x3DCCCCCD, 0x3DCCCCCD, {2, 3}, {2, 3}},
    {{25, 1}, 0xBFB999999999999A, 0xBFB999999999999A, 0xBDCCCCCD, 0xBDCCCCCD, {-2, -2}, {-2, -2}},
    {{25, 1}, 0xBFB999999999999A, 0x3FB999999999999A, 0xBDCCCCCD, 0x3DCCCCCD, {-2, 3}, {-2, 3}},
    {{25, 1}, 0x3FA47AE147AE147B, 0x3FB47AE147AE147B, 0x3D23D70A, 0x3DA3D70A, {1, 2}, {1, 2}},
    {{25, 1}, 0x3FF0000000000000, 0x4000000000000000, 0x3F800000, 0x40000000, {25, 50}, {25, 50}},
    {{25, 1}, 0x4000000000000000, 0x3FF0000000000000, 0x40000000, 0x3F800000, {50, 25}, {50, 25}},
    {{30000, 1001},
     0x0000000000000000,
     0x3FF0000000000000,
     0x00000000,
     0x3F800000,
     {0, 30},
     {0, 30}},
    {{30000, 1001},
     0xBFF0000000000000,
     0xBFE0000000000000,
     0xBF800000,
     0xBF000000,
     {-29, -14},
     {-29, -14}},
    {{1, 60}, 0x403E000000000000, 0x4056800000000000, 0x41F00000, 0x42B40000, {0, 2}, {0, 2}},
    {{-2, 1}, 0x3FE8000000000000, 0x3FE8000000000000, 0x3F400000, 0x3F400000, {-1, -1}, {-1, -1}},
    {{48000, 1}, 0x3EE4F8B588E368F1, 0x3EFF75104D551D69, 0x3727C5AC, 0x37FBA882, {0, 2}, {0, 2}},
    {{1000, 1},
     0x40C0624DC28F5C29,
     0x40C0624DC28F5C29,
     0x4603126E,
     0x4603126E,
     {8388607, 8388608},
     {8388607, 8388608}},
    {{1000, 1},
     0x40D0624DE353F7CF,
     0x40D0624DE353F7CF,
     0x4683126F,
     0x4683126F,
     {16777217, 16777217},
     {16777216, 16777216}},
    {{1, 1},
     0x41DFFFFFE0000000,
     0x41DFFFFFE0000000,
     0x4EFFFFFF,
     0x4EFFFFFF,
     {2147483520, 2147483520},
     {2147483520, 2147483520}},
    {{1, 1},
     0x41DFFFFFFFC00000,
     0x41DFFFFFFFC00000,
     0x4F000000,
     0x4F000000,
     {2147483647, 2147483647},
     {2147483648, 2147483648}},
    {{1, 1},
     0x41E0000000100000,
     0x41E0000000100000,
     0x4F000000,
     0x4F000000,
     {2147483648, 2147483649},
     {2147483648, 2147483648}},
    {{1, 1},
     0xC1E0000000100000,
     0xC1E0000000100000,
     0xCF000000,
     0xCF000000,
     {-2147483648, -2147483648},
     {-2147483648, -2147483648}},
    {{1, 1},
     0xC1F0000000080000,
     0x41F0000000080000,
     0xCF800000,
     0x4F800000,
     {-4294967296, 4294967297},
     {-4294967296, 4294967296}},
    {{3, 2},
     0x41E555555549999A,
     0x41E5555555766666,
     0x4F2AAAAB,
     0x4F2AAAAB,
     {4294967295, 4294967298},
     {4294967296, 4294967296}},
    {{1, 1},
     0x43E02207973F6440,
     0x43E02207973F6440,
     0x5F01103D,
     0x5F01103D,
     {LOWEST, LOWEST},
     {LOWEST, LOWEST}},
    {{1, 1},
     0xC3E02207973F6440,
     0xC3E02207973F6440,
     0xDF01103D,
     0xDF01103D,
     {LOWEST, LOWEST},
     {LOWEST, LOWEST}},
    {{1, 1},
     0x432FFFFFFFFFFFFF,
     0x432FFFFFFFFFFFFF,
     0x59800000,
     0x59800000,
     {4503599627370495, 4503599627370496},
     {4503599627370496, 4503599627370496}},
    {{1, 1},
     0x415FFFFFE0000000,
     0x415FFFFFE0000000,
     0x4AFFFFFF,
     0x4AFFFFFF,
     {8388607, 8388608},
     {8388607, 8388608}},
    {{1, 1},
     0xC15FFFFFE0000000,
     0xC15FFFFFE0000000,
     0xCAFFFFFF,
     0xCAFFFFFF,
     {-8388607, -8388607},
     {-8388607, -8388607}},
    {{2, 1}, 0x3FD0000000000000, 0x3FE8000000000000, 0x3E800000, 0x3F400000, {0, 2}, {0, 2}},
};

TEST(DtTimeUtil, TicksThatHoldAnIntervalOfSeconds)
{
    for (const Inclusion& row : INCLUSIONS)
    {
        // The count of the time makes no difference.
        for (const std::int64_t count : {std::int64_t{0}, std::int64_t{1001}, LOWEST})
        {
            const DtTime source = timeAt(count, row._rate);
            const Interval<double> seconds(doubleOf(row._lowerDouble), doubleOf(row._upperDouble));
            EXPECT_EQ(DtTimeUtil::getInclusiveDtTimeIndexInterval(source, seconds),
                      intervalOf(row._ofDouble))
                << source << seconds;
            const Interval<float> single(floatOf(row._lowerFloat), floatOf(row._upperFloat));
            EXPECT_EQ(DtTimeUtil::getInclusiveDtTimeIndexInterval(source, single),
                      intervalOf(row._ofFloat))
                << source << single;
        }
    }
}

TEST(DtTimeUtil, SecondsWithoutAPlaceAmongTheTicksGiveTheLowestCount)
{
    const DtTime source(0, 25, 1);
    const Interval<DtTimeIndex> lowest = intervalOf({LOWEST, LOWEST});
    for (const double bound : {INF, -INF, NOT_A_NUMBER})
    {
        EXPECT_EQ(DtTimeUtil::getInclusiveDtTimeIndexInterval(source, Interval<double>(bound)),
                  lowest)
            << bound;
        const auto single = static_cast<float>(bound);
        EXPECT_EQ(DtTimeUtil::getInclusiveDtTimeIndexInterval(source, Interval<float>(single)),
                  lowest)
            << bound;
    }
    EXPECT_EQ(DtTimeUtil::getInclusiveDtTimeIndexInterval(source, Interval<double>(1, INF)),
              intervalOf({25, LOWEST}));
}

TEST(DtTimeUtil, TicksHoldTheirSeconds)
{
    TimeRandom random(674);
    for (int i = 0; i < 20000; ++i)
    {
        const DtTime source(0, random.rate(48000, 1001));
        const double lower = std::ldexp(static_cast<double>(random.number64()), -44);
        const double upper = std::ldexp(static_cast<double>(random.number64()), -44);
        const Interval<DtTimeIndex> ticks =
            DtTimeUtil::getInclusiveDtTimeIndexInterval(source, Interval<double>(lower, upper));
        const double rate = source.getRate().getDouble();
        ASSERT_EQ(ticks._min.getDouble(), std::trunc(rate * lower) + 0.0) << source << lower;
        ASSERT_EQ(ticks._max.getDouble(), std::ceil(rate * upper) + 0.0) << source << upper;
    }
}

struct Bounds
{
    RateValue _rate;
    std::int64_t _lower;
    std::int64_t _upper;
    std::uint64_t _doubles[2];
    std::uint32_t _floats[2];
};

const Bounds BOUNDS[] = {
    {{25, 1}, 2, 3, {0x3FB47AE147AE147B, 0x3FBEB851EB851EB8}, {0x3DA3D70A, 0x3DF5C28F}},
    {{25, 1}, 3, 2, {0x3FBEB851EB851EB8, 0x3FB47AE147AE147B}, {0x3DF5C28F, 0x3DA3D70A}},
    {{30000, 1001},
     -1001,
     1001,
     {0xC040B3344AD1FCFF, 0x4040B3344AD1FCFF},
     {0xC20599A2, 0x420599A2}},
    {{1, 60}, 7, 8, {0x407A400000000000, 0x407E000000000000}, {0x43D20000, 0x43F00000}},
    {{-2, 1}, 1, 3, {0xBFE0000000000000, 0xBFF8000000000000}, {0xBF000000, 0xBFC00000}},
    {{44100, 1},
     16777217,
     16777219,
     {0x4077C6F8DF18EA3E, 0x4077C6F90EA6DBCD},
     {0x43BE37C6, 0x43BE37C9}},
    {{3, 1},
     9007199254740993,
     9223372036854775807,
     {0x4325555555555555, 0x43C5555555555555},
     {0x592AAAAB, 0x5E2AAAAB}},
    {{7, 11},
     LOWEST,
     -9223372036854775807,
     {0xC3E9249249249249, 0xC3E9249249249249},
     {0xDF492492, 0xDF492492}},
};

TEST(DtTimeUtil, SecondsOfAnIntervalOfTicks)
{
    for (const Bounds& row : BOUNDS)
    {
        const Interval<DtTimeIndex> ticks = intervalOf({row._lower, row._upper});
        for (const std::int64_t count : {std::int64_t{0}, std::int64_t{1001}, LOWEST})
        {
            const DtTime source = timeAt(count, row._rate);
            const Interval<double> seconds = DtTimeUtil::getSecondsIntervalDouble(source, ticks);
            EXPECT_EQ(bitsOf(seconds._min), row._doubles[0]) << source << row._lower;
            EXPECT_EQ(bitsOf(seconds._max), row._doubles[1]) << source << row._upper;
            const Interval<float> single = DtTimeUtil::getSecondsIntervalFloat(source, ticks);
            EXPECT_EQ(bitsOf(single._min), row._floats[0]) << source << row._lower;
            EXPECT_EQ(bitsOf(single._max), row._floats[1]) << source << row._upper;
        }
    }
}

} // namespace

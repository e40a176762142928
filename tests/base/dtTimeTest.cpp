#include "base/dtTime.h"

#include "base/dtEx.h"
#include "base/rational.h"
#include "base/rationalEx.h"

#include "support/timeReference.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <iomanip>
#include <limits>
#include <sstream>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

namespace
{

using support::HIGHEST;
using support::HIGHEST32;
using support::Int128;
using support::LOWEST;
using support::LOWEST32;
using support::outcomeOf;
using support::RateValue;
using support::textOf;
using support::TimeRandom;
using support::TimeValue;
using support::valueOf;
using support::wrapped64;
using Zu::DtEx;
using Zu::DtTime;
using Zu::DtTimeIndex;
using Zu::Rational;
using Zu::RationalEx;

constexpr std::float_round_style STYLES[] = {
    std::round_toward_zero, std::round_to_nearest, std::round_toward_infinity,
    std::round_toward_neg_infinity, std::round_indeterminate};

// Hidden from the compiler, which warns about a value that is not an enumerator.
std::float_round_style styleOf(int value)
{
    return static_cast<std::float_round_style>(value);
}

Rational rational(const RateValue& rate)
{
    return Rational(rate._numerator, rate._denominator);
}

DtTime timeOf(const TimeValue& time)
{
    return DtTime(time._count, rational(time._rate));
}

template <class T> std::string printed(const T& value)
{
    std::ostringstream os;
    EXPECT_EQ(&(os << value), &os);
    return os.str();
}

TEST(DtTimeIndex, IsAnInteger)
{
    EXPECT_EQ(static_cast<long long>(DtTimeIndex()), 0);
    for (const std::int64_t count : {LOWEST, std::int64_t{-1}, std::int64_t{0}, HIGHEST})
    {
        const DtTimeIndex index(count);
        const DtTimeIndex copy(index);
        DtTimeIndex assigned(5);
        assigned = count;
        const long long back = index;
        EXPECT_EQ(back, count);
        EXPECT_EQ(static_cast<long long>(copy), count);
        EXPECT_EQ(static_cast<long long>(assigned), count);
    }
}

TEST(DtTimeIndex, ArithmeticIsThatOf64BitsAndWraps)
{
    const DtTimeIndex highest(HIGHEST);
    const DtTimeIndex lowest(LOWEST);
    EXPECT_EQ(highest + 1, LOWEST);
    EXPECT_EQ(lowest - 1, HIGHEST);
    EXPECT_EQ(highest * 2, -2);
    EXPECT_EQ(lowest * -1, LOWEST);
    EXPECT_EQ(lowest / -1, LOWEST);
    EXPECT_EQ(lowest % -1, 0);
    EXPECT_EQ(DtTimeIndex(7) / -2, -3);
    EXPECT_EQ(DtTimeIndex(-7) / 2, -3);
    EXPECT_EQ(DtTimeIndex(7) % -2, 1);
    EXPECT_EQ(DtTimeIndex(-7) % 2, -1);
}

TEST(DtTimeIndex, ArithmeticAgreesWith128Bits)
{
    TimeRandom random(621);
    for (int i = 0; i < 50000; ++i)
    {
        const std::int64_t a = random.number64();
        const std::int64_t b = random.number64();
        const DtTimeIndex left(a);
        const DtTimeIndex right(b);
        const auto changed = [left, b](auto change)
        {
            DtTimeIndex index(left);
            EXPECT_EQ(&change(index, b), &index);
            return static_cast<long long>(index);
        };
        using Index = DtTimeIndex;
        const auto plus = [](Index& x, std::int64_t y) -> Index& { return x += y; };
        const auto minus = [](Index& x, std::int64_t y) -> Index& { return x -= y; };
        const auto times = [](Index& x, std::int64_t y) -> Index& { return x *= y; };
        const auto by = [](Index& x, std::int64_t y) -> Index& { return x /= y; };
        const auto rest = [](Index& x, std::int64_t y) -> Index& { return x %= y; };
        ASSERT_EQ(left + right, wrapped64(Int128{a} + b)) << a << " " << b;
        ASSERT_EQ(left - right, wrapped64(Int128{a} - b)) << a << " " << b;
        ASSERT_EQ(left * right, wrapped64(Int128{a} * b)) << a << " " << b;
        ASSERT_EQ(changed(plus), wrapped64(Int128{a} + b)) << a << " " << b;
        ASSERT_EQ(changed(minus), wrapped64(Int128{a} - b)) << a << " " << b;
        ASSERT_EQ(changed(times), wrapped64(Int128{a} * b)) << a << " " << b;
        if (b == 0) continue;
        ASSERT_EQ(left / right, wrapped64(Int128{a} / b)) << a << " " << b;
        ASSERT_EQ(left % right, wrapped64(Int128{a} % b)) << a << " " << b;
        ASSERT_EQ(changed(by), wrapped64(Int128{a} / b)) << a << " " << b;
        ASSERT_EQ(changed(rest), wrapped64(Int128{a} % b)) << a << " " << b;
    }
}

TEST(DtTimeIndex, StepsByOneTick)
{
    DtTimeIndex index(HIGHEST);
    EXPECT_EQ(index++, HIGHEST);
    EXPECT_EQ(index, LOWEST);
    EXPECT_EQ(index--, LOWEST);
    EXPECT_EQ(index, HIGHEST);
    EXPECT_EQ(&++index, &index);
    EXPECT_EQ(index, LOWEST);
    EXPECT_EQ(&--index, &index);
    EXPECT_EQ(index, HIGHEST);
}

template <class T> class DtTimeIndexWith : public testing::Test
{
};

using Integers = testing::Types<bool, char, signed char, unsigned char, wchar_t, char8_t, char16_t,
                                char32_t, short, unsigned short, int, unsigned int, long,
                                unsigned long, long long, unsigned long long, DtTimeIndex>;
TYPED_TEST_SUITE(DtTimeIndexWith, Integers, );

TYPED_TEST(DtTimeIndexWith, ArithmeticGivesAnIndexWhicheverSideTheIntegerStandsOn)
{
    const DtTimeIndex seven(7);
    const auto one = static_cast<TypeParam>(1);
    static_assert(std::is_same_v<decltype(seven + one), DtTimeIndex>);
    static_assert(std::is_same_v<decltype(one + seven), DtTimeIndex>);
    static_assert(std::is_same_v<decltype(seven - one), DtTimeIndex>);
    static_assert(std::is_same_v<decltype(one - seven), DtTimeIndex>);
    static_assert(std::is_same_v<decltype(seven * one), DtTimeIndex>);
    static_assert(std::is_same_v<decltype(one * seven), DtTimeIndex>);
    static_assert(std::is_same_v<decltype(seven / one), DtTimeIndex>);
    static_assert(std::is_same_v<decltype(one / seven), DtTimeIndex>);
    static_assert(std::is_same_v<decltype(seven % one), DtTimeIndex>);
    static_assert(std::is_same_v<decltype(one % seven), DtTimeIndex>);
    EXPECT_EQ(seven + one, 8);
    EXPECT_EQ(one + seven, 8);
    EXPECT_EQ(seven - one, 6);
    EXPECT_EQ(one - seven, -6);
    EXPECT_EQ(seven * one, 7);
    EXPECT_EQ(one * seven, 7);
    EXPECT_EQ(seven / one, 7);
    EXPECT_EQ(one / seven, 0);
    EXPECT_EQ(seven % one, 0);
    EXPECT_EQ(one % seven, 1);
}

TYPED_TEST(DtTimeIndexWith, AssignmentTakesTheInteger)
{
    const auto one = static_cast<TypeParam>(1);
    DtTimeIndex index(7);
    EXPECT_EQ(index += one, 8);
    EXPECT_EQ(index -= one, 7);
    EXPECT_EQ(index *= one, 7);
    EXPECT_EQ(index /= one, 7);
    EXPECT_EQ(index %= one, 0);
    index = one;
    EXPECT_EQ(index, 1);
}

// Through the standard's function objects, in which a mix of signs is no warning.
TYPED_TEST(DtTimeIndexWith, ComparesAsAnInteger)
{
    const auto one = static_cast<TypeParam>(1);
    const struct
    {
        DtTimeIndex _index;
        int _order;
    } cases[] = {{DtTimeIndex(0), -1}, {DtTimeIndex(1), 0}, {DtTimeIndex(7), 1}};
    for (const auto& [index, order] : cases)
    {
        EXPECT_EQ(std::equal_to<>()(index, one), order == 0);
        EXPECT_EQ(std::equal_to<>()(one, index), order == 0);
        EXPECT_EQ(std::not_equal_to<>()(index, one), order != 0);
        EXPECT_EQ(std::not_equal_to<>()(one, index), order != 0);
        EXPECT_EQ(std::less<>()(index, one), order < 0);
        EXPECT_EQ(std::less<>()(one, index), order > 0);
        EXPECT_EQ(std::less_equal<>()(index, one), order <= 0);
        EXPECT_EQ(std::less_equal<>()(one, index), order >= 0);
        EXPECT_EQ(std::greater<>()(index, one), order > 0);
        EXPECT_EQ(std::greater<>()(one, index), order < 0);
        EXPECT_EQ(std::greater_equal<>()(index, one), order >= 0);
        EXPECT_EQ(std::greater_equal<>()(one, index), order <= 0);
    }
}

struct CountBits
{
    std::int64_t _count;
    std::uint32_t _float;
    std::uint64_t _double;
};

// All tables of bits and counts in this file were computed in Python: single precision and counts
// with exact fractions that are rounded to the nearest number of the format, ties to even; double
// precision with Python's own floating-point numbers, which are those of IEEE 754; wrapping with
// its unbounded integers, cut to size.
const CountBits COUNT_BITS[] = {
    {0, 0x00000000, 0x0000000000000000},
    {1, 0x3F800000, 0x3FF0000000000000},
    {-1, 0xBF800000, 0xBFF0000000000000},
    {16777216, 0x4B800000, 0x4170000000000000},
    {16777217, 0x4B800000, 0x4170000010000000},
    {16777219, 0x4B800002, 0x4170000030000000},
    {-16777217, 0xCB800000, 0xC170000010000000},
    {9007199254740991, 0x5A000000, 0x433FFFFFFFFFFFFF},
    {9007199254740992, 0x5A000000, 0x4340000000000000},
    {9007199254740993, 0x5A000000, 0x4340000000000000},
    {9007199254740995, 0x5A000000, 0x4340000000000002},
    {-9007199254740993, 0xDA000000, 0xC340000000000000},
    {9223372036854775807, 0x5F000000, 0x43E0000000000000},
    {9223372036854775295, 0x5F000000, 0x43DFFFFFFFFFFFFF},
    {9223372036854775296, 0x5F000000, 0x43E0000000000000},
    {LOWEST, 0xDF000000, 0xC3E0000000000000},
    {1000000000000000001, 0x5D5E0B6B, 0x43ABC16D674EC800},
    {-123456789012345678, 0xDBDB4DA6, 0xC37B69B4BA630F35},
    {50331651, 0x4C400001, 0x4188000018000000},
    {1152921573326323713, 0x5D800001, 0x43B0000010000000},
    {1152921573326323712, 0x5D800000, 0x43B0000010000000},
};

TEST(DtTimeIndex, FloatingPointCountsAreRoundedToTheNearest)
{
    for (const CountBits& row : COUNT_BITS)
    {
        const DtTimeIndex index(row._count);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(index.getFloat()), row._float) << row._count;
        EXPECT_EQ(std::bit_cast<std::uint64_t>(index.getDouble()), row._double) << row._count;
    }
}

struct ClockFields
{
    std::int64_t _count;
    RateValue _rate;
    long long _hours;
    long long _minutes;
    std::uint64_t _seconds;
};

const ClockFields CLOCK_FIELDS[] = {
    {0, {25, 1}, 0, 0, 0x0000000000000000},
    {1, {25, 1}, 0, 0, 0x3FA47AE147AE147B},
    {-1, {25, 1}, 0, 0, 0xBFA47AE147AE147B},
    {89975, {25, 1}, 0, 59, 0x404D800000000000},
    {90000, {25, 1}, 1, 0, 0x0000000000000000},
    {2159999, {25, 1}, 23, 59, 0x404DFAE147AE1800},
    {-2159999, {25, 1}, -23, -59, 0xC04DFAE147AE1800},
    {107892, {30000, 1001}, 0, 59, 0x404DFF8A0902DE00},
    {2589415, {30000, 1001}, 24, 0, 0x3FC2D65B7A300000},
    {-2589415, {30000, 1001}, -24, 0, 0xBFC2D65B7A300000},
    {1, {1, 60}, 0, 1, 0x0000000000000000},
    {59, {1, 60}, 0, 59, 0x0000000000000000},
    {-61, {1, 60}, -1, -1, 0x0000000000000000},
    {2879999, {48000, 1}, 0, 0, 0x404DFFFF513CC1E1},
    {2880000, {48000, 1}, 0, 1, 0x0000000000000000},
    {-2880001, {48000, 1}, 0, -1, 0xBEF5D867C3E00000},
    {1000000007, {44100, 1}, 6, 17, 0x404BDE59F4402E00},
    {5, {-2, 1}, 0, 0, 0xC004000000000000},
    {-7230, {-2, 1}, 1, 0, 0x402E000000000000},
    {9007199254740993, {1000, 1}, 2501999792, 59, 0x3FEFC00000000000},
    {9223372036854775807, {1, 1}, 2562047788015215, 30, 0x401C000000000000},
    {LOWEST, {1, 1}, -2562047788015215, -30, 0xC020000000000000},
    {LOWEST, {-1, 1}, -2562047788015215, -30, 0x43F0000000000000},
    {4611686018427387904, {1, 3}, -1281023894007607, -45, 0x43F0000000000000},
    {9223372036854775807, {1000000, 1}, 2562047788, 0, 0x404B634000000000},
    {2305843009213693952, {30000, 1001}, 21350398233, 27, 0x4371111111111114},
};

TEST(DtTimeIndex, FieldsOfAClock)
{
    for (const ClockFields& row : CLOCK_FIELDS)
    {
        const DtTimeIndex index(row._count);
        const Rational rate = rational(row._rate);
        EXPECT_EQ(index.getHours(rate), row._hours) << row._count << rate;
        EXPECT_EQ(index.getMinutes(rate), row._minutes) << row._count << rate;
        EXPECT_EQ(std::bit_cast<std::uint64_t>(index.getSeconds(rate)), row._seconds)
            << row._count << rate;
    }
}

TEST(DtTimeIndex, FieldsOfAClockRestOnTheWrappedWholeSeconds)
{
    TimeRandom random(622);
    for (int i = 0; i < 50000; ++i)
    {
        const std::int64_t count = random.number64();
        const Rational rate = random.rate();
        const std::int64_t product = wrapped64(Int128{rate.getDenominator()} * count);
        const std::int64_t whole = wrapped64(Int128{product} / rate.getNumerator());
        const DtTimeIndex index(count);
        ASSERT_EQ(index.getHours(rate), whole / 3600) << count << rate;
        ASSERT_EQ(index.getMinutes(rate), whole % 3600 / 60) << count << rate;
        const double exact = static_cast<double>(count) *
                             static_cast<double>(rate.getDenominator()) /
                             static_cast<double>(rate.getNumerator());
        const double seconds =
            static_cast<double>(whole % 60) + (exact - static_cast<double>(whole));
        ASSERT_EQ(index.getSeconds(rate), seconds) << count << rate;
    }
}

TEST(DtTimeIndex, FieldsOfAClockAddUpToTheSeconds)
{
    TimeRandom random(623);
    for (int i = 0; i < 20000; ++i)
    {
        const Rational rate = random.rate(48000, 1001);
        const std::int64_t count = random.number64() % 1000000000;
        const DtTimeIndex index(count);
        const double seconds = static_cast<double>(index.getHours(rate)) * 3600 +
                               static_cast<double>(index.getMinutes(rate)) * 60 +
                               index.getSeconds(rate);
        const double exact = static_cast<double>(count) / rate.getDouble();
        ASSERT_NEAR(seconds, exact, 1e-12 * std::abs(exact) + 1e-9) << count << rate;
        ASSERT_LT(std::abs(index.getMinutes(rate)), 60);
        ASSERT_LT(std::abs(index.getSeconds(rate)), 60);
    }
}

struct Conversion
{
    std::int64_t _count;
    RateValue _from;
    RateValue _to;
    // In the order of STYLES.
    std::array<std::int64_t, std::size(STYLES)> _converted;
};

const Conversion CONVERSIONS[] = {
    {7, {2, 1}, {1, 1}, {3, 4, 4, 3, 4}},
    {-7, {2, 1}, {1, 1}, {-3, -3, -3, -4, -4}},
    {5, {2, 1}, {1, 1}, {2, 3, 3, 2, 3}},
    {-5, {2, 1}, {1, 1}, {-2, -2, -2, -3, -3}},
    {1, {30000, 1001}, {25, 1}, {0, 1, 1, 0, 1}},
    {-1, {30000, 1001}, {25, 1}, {0, -1, 0, -1, -1}},
    {1001, {30000, 1001}, {30000, 1001}, {1001, 1001, 1001, 1001, 1001}},
    {30000, {30000, 1001}, {48000, 1}, {48048000, 48048000, 48048000, 48048000, 48048000}},
    {48000, {48000, 1}, {44100, 1}, {44100, 44100, 44100, 44100, 44100}},
    {1, {3, 1}, {1, 1}, {0, 0, 1, 0, 1}},
    {2, {3, 1}, {1, 1}, {0, 1, 1, 0, 1}},
    {-1, {3, 1}, {1, 1}, {0, 0, 0, -1, -1}},
    {-2, {3, 1}, {1, 1}, {0, -1, 0, -1, -1}},
    {12345678901,
     {44100, 1},
     {48000, 1},
     {13437473633, 13437473634, 13437473634, 13437473633, 13437473634}},
    {-12345678901,
     {44100, 1},
     {48000, 1},
     {-13437473633, -13437473634, -13437473633, -13437473634, -13437473634}},
    {90000, {90000, 1}, {24000, 1001}, {23, 24, 24, 23, 24}},
    {86400000, {1000, 1}, {1, 60}, {1440, 1440, 1440, 1440, 1440}},
    {86399999, {1000, 1}, {1, 60}, {1439, 1440, 1440, 1439, 1440}},
    {1, {1, 60}, {1000, 1}, {60000, 60000, 60000, 60000, 60000}},
    {7, {-2, 1}, {1, 1}, {-3, -3, -3, -4, -4}},
    {7, {2, 1}, {-1, 1}, {-3, -3, -3, -4, -4}},
    {-7, {-2, 1}, {-1, 1}, {-3, -3, -3, -4, -4}},
    {9007199254740993,
     {1, 1},
     {1, 1},
     {9007199254740993, 9007199254740992, 9007199254740992, 9007199254740992, 9007199254740992}},
    {9007199254740995,
     {1, 1},
     {1, 1},
     {9007199254740995, 9007199254740996, 9007199254740996, 9007199254740996, 9007199254740996}},
    {-9007199254740993,
     {1, 1},
     {1, 1},
     {-9007199254740993, -9007199254740992, -9007199254740992, -9007199254740992,
      -9007199254740992}},
    {4503599627370497,
     {1, 1},
     {1, 1},
     {4503599627370497, 4503599627370498, 4503599627370497, 4503599627370497, 4503599627370497}},
    {9007199254740991,
     {2, 1},
     {1, 1},
     {4503599627370495, 4503599627370496, 4503599627370496, 4503599627370495, 4503599627370496}},
    {-9007199254740991,
     {2, 1},
     {1, 1},
     {-4503599627370495, -4503599627370495, -4503599627370495, -4503599627370496,
      -4503599627370496}},
    {2251799813685249,
     {2, 1},
     {1, 1},
     {1125899906842624, 1125899906842625, 1125899906842625, 1125899906842624, 1125899906842625}},
    {9223372036854775807, {1, 1}, {1, 1}, {9223372036854775807, LOWEST, LOWEST, LOWEST, LOWEST}},
    {LOWEST, {1, 1}, {1, 1}, {LOWEST, LOWEST, LOWEST, LOWEST, LOWEST}},
    {LOWEST,
     {2, 1},
     {1, 1},
     {-4611686018427387904, -4611686018427387904, -4611686018427387904, -4611686018427387904,
      -4611686018427387904}},
    {-9223372036854775807, {1, 1}, {-1, 1}, {9223372036854775807, LOWEST, LOWEST, LOWEST, LOWEST}},
    {4611686018427387904, {1, 1}, {2, 1}, {LOWEST, LOWEST, LOWEST, LOWEST, LOWEST}},
    {-4611686018427387904, {1, 1}, {2, 1}, {LOWEST, LOWEST, LOWEST, LOWEST, LOWEST}},
    {6917529027641081856, {1, 1}, {2, 1}, {-4611686018427387904, LOWEST, LOWEST, LOWEST, LOWEST}},
    {9223372036854775807, {1, 1}, {3, 1}, {9223372036854775805, LOWEST, LOWEST, LOWEST, LOWEST}},
    {9223372036854775807,
     {2, 1},
     {1, 1},
     {4611686018427387903, 4611686018427387904, 4611686018427387904, 4611686018427387904,
      4611686018427387904}},
    {9007199254740993,
     {3, 1},
     {7, 1},
     {21016798261062317, 21016798261062312, 21016798261062312, 21016798261062312,
      21016798261062312}},
    {1, {44100, 1}, {2147483647, 1}, {48695, 48696, 48696, 48695, 48696}},
    {3, {1, 1001}, {30000, 1}, {90090000, 90090000, 90090000, 90090000, 90090000}},
    {1, {1, 50000}, {50000, 1}, {-1794967296, 2500000000, 2500000000, 2500000000, 2500000000}},
    {1, {1, 65536}, {65536, 1}, {0, 4294967296, 4294967296, 4294967296, 4294967296}},
    {123456789012345678,
     {1000000, 1},
     {30000, 1001},
     {3700003666703, 3700003666704, 3700003666704, 3700003666703, 3700003666704}},
    {-123456789012345678,
     {1000000, 1},
     {30000, 1001},
     {-3700003666703, -3700003666704, -3700003666703, -3700003666704, -3700003666704}},
    {0, {25, 1}, {30, 1}, {0, 0, 0, 0, 0}},
    {5, {25, 1}, {0, 1}, {0, 0, 0, 0, 0}},
};

TEST(DtTimeIndex, ConvertsToAnotherRateInEveryStyle)
{
    for (const Conversion& row : CONVERSIONS)
    {
        for (std::size_t i = 0; i < std::size(STYLES); ++i)
        {
            EXPECT_EQ(
                DtTimeIndex(row._count).convert(rational(row._from), rational(row._to), STYLES[i]),
                row._converted[i])
                << row._count << rational(row._from) << rational(row._to) << i;
        }
    }
}

TEST(DtTimeIndex, TheStylesHaveTheStandardsValues)
{
    const int values[] = {0, 1, 2, 3, -1};
    for (std::size_t i = 0; i < std::size(STYLES); ++i) EXPECT_EQ(STYLES[i], values[i]);
}

TEST(DtTimeIndex, AValueThatIsNoStyleConvertsToZero)
{
    for (const int value : {-2, -3, -4})
    {
        EXPECT_EQ(DtTimeIndex(7).convert(Rational(2, 1), Rational(1, 1), styleOf(value)), 0);
        EXPECT_EQ(DtTimeIndex(-7).convert(Rational(1, 1), Rational(1, 1), styleOf(value)), 0);
        EXPECT_EQ(DtTimeIndex(7).convert(Rational(0, 1), Rational(1, 1), styleOf(value)), 0);
    }
}

TEST(DtTimeIndex, TowardZeroIsRefusedFromTheNullRateAndForADivisorThatWrapsToZero)
{
    const struct
    {
        RateValue _from;
        RateValue _to;
        const char* _outcome;
    } cases[] = {
        {{0, 1}, {25, 1}, "zero denominator"},
        {{0, 1}, {0, 1}, "zero denominator"},
        {{65536, 1}, {1, 65536}, "zero denominator"},
        {{LOWEST32, 1}, {25, 2}, "zero denominator"},
        {{25, 1}, {0, 1}, "0"},
        {{1, 65536}, {65536, 1}, "0"},
        // The divisor wraps to -65536.
        {{65536, 1}, {1, 65535}, "-65535"},
    };
    for (const auto& row : cases)
    {
        const auto convert = [&row]
        {
            return std::to_string(
                DtTimeIndex(65536 * 65535LL)
                    .convert(rational(row._from), rational(row._to), std::round_toward_zero));
        };
        EXPECT_EQ(outcomeOf(convert), row._outcome)
            << rational(row._from) << " to " << rational(row._to);
    }
}

TEST(DtTimeIndex, TheFloatingStylesGiveTheLowestCountFromTheNullRate)
{
    for (const std::float_round_style style : STYLES)
    {
        if (style == std::round_toward_zero) continue;
        for (const Rational& to : {Rational(25, 1), Rational(-25, 1), Rational(0, 1)})
        {
            for (const std::int64_t count :
                 {LOWEST, std::int64_t{-1}, std::int64_t{0}, std::int64_t{1}, HIGHEST})
                EXPECT_EQ(DtTimeIndex(count).convert(Rational(0, 1), to, style), LOWEST)
                    << count << to << style;
        }
        EXPECT_EQ(DtTimeIndex(5).convert(Rational(25, 1), Rational(0, 1), style), 0) << style;
        EXPECT_EQ(DtTimeIndex(-5).convert(Rational(25, 1), Rational(0, 1), style), 0) << style;
    }
}

TEST(DtTimeIndex, TheNearestIsTheFloorOfASumThatIsItselfRounded)
{
    // (2^53 - 1) / 2^54 is below a half, but the sum with a half is rounded to 1.
    const DtTimeIndex index(9007199254740991);
    const Rational from(1 << 27, 1);
    const Rational to(1, 1 << 27);
    EXPECT_EQ(index.convert(from, to, std::round_to_nearest), 1);
    EXPECT_EQ(index.convert(from, to, std::round_toward_neg_infinity), 0);
    EXPECT_EQ(index.convert(from, to, std::round_toward_infinity), 1);
    EXPECT_EQ(index.convert(from, to, std::round_indeterminate), 1);
    // And from 2^52 on the sum of an odd number and a half is rounded to the even one above.
    const Rational one(1, 1);
    EXPECT_EQ(DtTimeIndex(4503599627370499).convert(one, one, std::round_to_nearest),
              4503599627370500);
    EXPECT_EQ(DtTimeIndex(4503599627370498).convert(one, one, std::round_to_nearest),
              4503599627370498);
}

TEST(DtTimeIndex, TowardZeroAgreesWith128BitsReducedToTheWidths)
{
    TimeRandom random(624);
    int refused = 0;
    for (int i = 0; i < 100000; ++i)
    {
        const DtTimeIndex index(random.number64());
        const Rational from = random.rate();
        const Rational to = random.rate();
        const std::string expected = outcomeOf(
            [&] { return std::to_string(convertedCount(index, valueOf(from), valueOf(to))); });
        const std::string outcome = outcomeOf(
            [&] { return std::to_string(index.convert(from, to, std::round_toward_zero)); });
        ASSERT_EQ(outcome, expected) << index << from << to;
        if (outcome == "zero denominator") ++refused;
    }
    EXPECT_GT(refused, 100);
}

TEST(DtTimeIndex, TowardZeroIsExactWhereNothingWraps)
{
    TimeRandom random(625);
    for (int i = 0; i < 50000; ++i)
    {
        const std::int64_t count = random.number64() >> 32;
        const Rational from = random.rate(46340, 46340);
        const Rational to = random.rate(46340, 46340);
        const Int128 exact = Int128{count} * from.getDenominator() * to.getNumerator() /
                             (Int128{from.getNumerator()} * to.getDenominator());
        const Rational negative(-to.getNumerator(), to.getDenominator());
        ASSERT_EQ(DtTimeIndex(count).convert(from, to, std::round_toward_zero),
                  static_cast<std::int64_t>(exact))
            << count << from << to;
        ASSERT_EQ(DtTimeIndex(count).convert(from, negative, std::round_toward_zero),
                  static_cast<std::int64_t>(-exact))
            << count << from << negative;
    }
}

TEST(DtTimeIndex, ThereAndBackAgainThroughAFinerRateKeepsEveryTick)
{
    TimeRandom random(626);
    for (int i = 0; i < 20000; ++i)
    {
        const DtTimeIndex index(random.number64() >> 20);
        const Rational rate = random.rate(1000, 40);
        const Rational finer(rate.getNumerator() * random.upTo(50), rate.getDenominator());
        const DtTimeIndex there = index.convert(rate, finer, std::round_toward_zero);
        ASSERT_EQ(there.convert(finer, rate, std::round_toward_zero), index)
            << index << rate << finer;
        if (std::abs(index.getDouble()) > 1e9) continue;
        ASSERT_EQ(index.convert(rate, finer, std::round_to_nearest), there) << index << rate;
        ASSERT_EQ(there.convert(finer, rate, std::round_to_nearest), index) << there << rate;
    }
}

TEST(DtTimeIndex, TheFloatingStylesRoundWhatDoublePrecisionGives)
{
    TimeRandom random(627);
    const auto fitted = [](double value)
    {
        return value >= -9223372036854775808.0 && value < 9223372036854775808.0
                   ? static_cast<std::int64_t>(value)
                   : LOWEST;
    };
    int overflows = 0;
    for (int i = 0; i < 50000; ++i)
    {
        const DtTimeIndex index(random.number64());
        const Rational from = random.rate();
        const Rational to = random.rate();
        const double y = index.getDouble() * from.getDenominator() / from.getNumerator() *
                         to.getNumerator() / to.getDenominator();
        const std::int64_t down = fitted(std::floor(y));
        const std::int64_t up = fitted(std::ceil(y));
        ASSERT_EQ(index.convert(from, to, std::round_to_nearest), fitted(std::floor(y + 0.5)))
            << index << from << to;
        ASSERT_EQ(index.convert(from, to, std::round_toward_infinity), up) << index << from << to;
        ASSERT_EQ(index.convert(from, to, std::round_toward_neg_infinity), down)
            << index << from << to;
        ASSERT_EQ(index.convert(from, to, std::round_indeterminate), y < 0 ? down : up)
            << index << from << to;
        if (up == LOWEST) ++overflows;
    }
    EXPECT_GT(overflows, 100);
}

TEST(DtTimeIndex, IsPrintedAsTheStreamFormatsIntegers)
{
    EXPECT_EQ(printed(DtTimeIndex(-5)), "-5");
    EXPECT_EQ(printed(DtTimeIndex(LOWEST)), "-9223372036854775808");
    std::ostringstream os;
    os << std::hex << DtTimeIndex(255) << std::showbase << DtTimeIndex(-1) << std::dec
       << std::setw(5) << std::setfill('*') << DtTimeIndex(42);
    EXPECT_EQ(os.str(), "ff0xffffffffffffffff***42");
}

TEST(DtTimeIndex, EqualOnesAreOneElementOfASet)
{
    const std::unordered_set<DtTimeIndex> set = {DtTimeIndex(1), DtTimeIndex(1), DtTimeIndex(-1),
                                                 DtTimeIndex(HIGHEST)};
    EXPECT_EQ(set.size(), 3U);
    EXPECT_EQ(set.count(DtTimeIndex(2) - 1), 1U);
    EXPECT_EQ(set.count(DtTimeIndex(2)), 0U);
}

static_assert(DtTimeIndex() == 0 && DtTimeIndex(HIGHEST) + 1 == LOWEST);
static_assert(DtTimeIndex(7).convert(Rational(2, 1), Rational(1, 1), std::round_toward_zero) == 3);
static_assert(DtTimeIndex(7).convert(Rational(2, 1), Rational(1, 1), std::round_to_nearest) == 4);
static_assert(DtTimeIndex(90000).getHours(Rational(25, 1)) == 1);
static_assert(DtTimeIndex(90025).getSeconds(Rational(25, 1)) == 1.0);
static_assert(DtTimeIndex(16777217).getFloat() == 16777216.0F);
static_assert(sizeof(DtTimeIndex) == 8 && std::is_trivially_copyable_v<DtTimeIndex>);
static_assert(!std::is_polymorphic_v<DtTimeIndex>);
static_assert(std::is_convertible_v<std::int64_t, DtTimeIndex>);
static_assert(std::is_convertible_v<DtTimeIndex, long long>);
static_assert(std::is_nothrow_default_constructible_v<DtTimeIndex>);
static_assert(std::is_nothrow_constructible_v<DtTimeIndex, std::int64_t>);
static_assert(noexcept(DtTimeIndex() + 1) && noexcept(1 / DtTimeIndex(1)));
static_assert(noexcept(DtTimeIndex() == DtTimeIndex()) && noexcept(++std::declval<DtTimeIndex&>()));
static_assert(noexcept(DtTimeIndex().getSeconds(Rational())));
static_assert(!noexcept(DtTimeIndex().convert(Rational(), Rational(), std::round_toward_zero)));

TEST(DtTime, IsZeroAtOnePerSecondByDefault)
{
    EXPECT_EQ(textOf(DtTime()), "0 at 1/1");
    EXPECT_TRUE(DtTime() == DtTime(0, 25, 1));
}

TEST(DtTime, HoldsACountAtARateInLowestTerms)
{
    EXPECT_EQ(textOf(DtTime(1001, Rational(30000, 1001))), "1001 at 30000/1001");
    EXPECT_EQ(textOf(DtTime(1001, 30000, 1001)), "1001 at 30000/1001");
    EXPECT_EQ(textOf(DtTime(-7, 50, 2)), "-7 at 25/1");
    EXPECT_EQ(textOf(DtTime(1, -25, 1)), "1 at -25/1");
    EXPECT_EQ(textOf(DtTime(1, 25, -1)), "1 at -25/1");
    EXPECT_EQ(textOf(DtTime(LOWEST, LOWEST32, 4)), "-9223372036854775808 at -2147483648/4");
    const DtTime source(1001, 30000, 1001);
    const DtTime copy(source);
    DtTime assigned;
    assigned = source;
    EXPECT_EQ(valueOf(copy), valueOf(source));
    EXPECT_EQ(valueOf(assigned), valueOf(source));
}

TEST(DtTime, TheNullRateIsRefused)
{
    EXPECT_THROW(DtTime(1, Rational(0, 1)), DtEx::BadRate);
    EXPECT_THROW(DtTime(1, 0, 1), DtEx::BadRate);
    EXPECT_THROW(DtTime(1, 0, -5), DtEx::BadRate);
    EXPECT_THROW(DtTime(0, 1, 0), RationalEx::ExDenominatorZero);
    EXPECT_THROW(DtTime(0, 0, 0), RationalEx::ExDenominatorZero);
    try
    {
        DtTime(5, Rational(0, 7));
        ADD_FAILURE() << "nothing raised";
    }
    catch (const DtEx& exception)
    {
        EXPECT_STREQ(exception.getReason(), "Null rate not allowed in DtTime.");
    }
}

TEST(DtTime, RatesAreEqualByTheirTerms)
{
    EXPECT_TRUE(DtTime(5, 1, 1).isRateEqual(DtTime(7, 2, 2)));
    EXPECT_TRUE(DtTime(5, 30000, 1001).isRateEqual(DtTime(5, 60000, 2002)));
    EXPECT_FALSE(DtTime(5, 25, 1).isRateEqual(DtTime(5, -25, 1)));
    EXPECT_FALSE(DtTime(5, 10000000, 30000001).isRateEqual(DtTime(5, 1, 3)));
    EXPECT_FALSE(DtTime(1, 1, 1).isRateEqual(DtTime(30, 30, 1)));
    EXPECT_TRUE(DtTime(1, 1, 1) == DtTime(30, 30, 1));
}

TEST(DtTime, ConvertsToAnotherRateTowardZero)
{
    const struct
    {
        TimeValue _time;
        RateValue _rate;
        const char* _outcome;
    } cases[] = {
        {{1, {30000, 1001}}, {25, 1}, "0 at 25/1"},
        {{-1, {30000, 1001}}, {25, 1}, "0 at 25/1"},
        {{30000, {30000, 1001}}, {1, 1}, "1001 at 1/1"},
        {{30000, {30000, 1001}}, {48000, 1}, "48048000 at 48000/1"},
        {{-7, {2, 1}}, {1, 1}, "-3 at 1/1"},
        {{7, {2, 1}}, {-1, 1}, "-3 at -1/1"},
        {{1, {25, 1}}, {0, 1}, "null rate"},
        {{0, {25, 1}}, {0, 1}, "null rate"},
        {{1, {65536, 1}}, {1, 65536}, "zero denominator"},
        {{1, {1, 65536}}, {65536, 1}, "0 at 65536/1"},
        // At its own rate a time is a copy, where the product for a conversion would wrap.
        {{HIGHEST, {48000, 1}}, {48000, 1}, "9223372036854775807 at 48000/1"},
        {{8589934592, {LOWEST32, 1}}, {LOWEST32, 1}, "8589934592 at -2147483648/1"},
    };
    for (const auto& row : cases)
    {
        const auto convert = [&row]
        { return textOf(timeOf(row._time).convertRate(rational(row._rate))); };
        EXPECT_EQ(outcomeOf(convert), row._outcome) << textOf(row._time);
    }
    EXPECT_EQ(DtTimeIndex(8589934592)
                  .convert(Rational(LOWEST32, 1), Rational(LOWEST32, 1), std::round_toward_zero),
              0);
}

TEST(DtTime, ACoarserRateLosesTicks)
{
    const DtTime time(44101, 44100, 1);
    EXPECT_EQ(textOf(time.convertRate(Rational(25, 1)).convertRate(time.getRate())),
              "44100 at 44100/1");
    EXPECT_EQ(textOf(DtTime(-44101, 44100, 1).convertRate(Rational(25, 1))), "-25 at 25/1");
}

TEST(DtTime, ArithmeticWithACountKeepsTheRate)
{
    const std::int64_t counts[] = {7, -7, LOWEST, HIGHEST, -1, 1, 4294967296};
    for (const std::int64_t a : counts)
    {
        for (const std::int64_t b : counts)
        {
            const DtTime left(a, 30000, 1001);
            const DtTimeIndex right(b);
            const auto at = [](Int128 count) {
                return textOf(wrapped64(count), RateValue{30000, 1001});
            };
            EXPECT_EQ(textOf(left + right), at(Int128{a} + b));
            EXPECT_EQ(textOf(left - right), at(Int128{a} - b));
            EXPECT_EQ(textOf(left * right), at(Int128{a} * b));
            EXPECT_EQ(textOf(left / right), at(Int128{a} / b));
            EXPECT_EQ(textOf(left % right), at(Int128{a} % b));
            DtTime time(left);
            EXPECT_EQ(&(time += right), &time);
            EXPECT_EQ(textOf(time), at(Int128{a} + b));
            time = left;
            EXPECT_EQ(&(time -= right), &time);
            EXPECT_EQ(textOf(time), at(Int128{a} - b));
            time = left;
            EXPECT_EQ(&(time *= right), &time);
            EXPECT_EQ(textOf(time), at(Int128{a} * b));
            time = left;
            EXPECT_EQ(&(time /= right), &time);
            EXPECT_EQ(textOf(time), at(Int128{a} / b));
            time = left;
            EXPECT_EQ(&(time %= right), &time);
            EXPECT_EQ(textOf(time), at(Int128{a} % b));
        }
    }
}

TEST(DtTime, APlainIntegerIsACount)
{
    const DtTime time(7, 25, 1);
    EXPECT_EQ(textOf(time + 1), "8 at 25/1");
    EXPECT_EQ(textOf(time - 1LL), "6 at 25/1");
    EXPECT_EQ(textOf(time * std::int64_t{2}), "14 at 25/1");
    EXPECT_EQ(textOf(time / 2U), "3 at 25/1");
    EXPECT_EQ(textOf(time % short{4}), "3 at 25/1");
}

TEST(DtTime, StepsByOneTick)
{
    DtTime time(HIGHEST, 25, 1);
    EXPECT_EQ(textOf(time++), "9223372036854775807 at 25/1");
    EXPECT_EQ(textOf(time), "-9223372036854775808 at 25/1");
    EXPECT_EQ(textOf(time--), "-9223372036854775808 at 25/1");
    EXPECT_EQ(textOf(time), "9223372036854775807 at 25/1");
    EXPECT_EQ(&++time, &time);
    EXPECT_EQ(textOf(time), "-9223372036854775808 at 25/1");
    EXPECT_EQ(&--time, &time);
    EXPECT_EQ(textOf(time), "9223372036854775807 at 25/1");
}

enum Operator
{
    PLUS,
    MINUS,
    TIMES,
    BY,
    REST
};
constexpr Operator OPERATORS[] = {PLUS, MINUS, TIMES, BY, REST};

DtTime combined(Operator op, const DtTime& a, const DtTime& b)
{
    switch (op)
    {
    case PLUS:
        return a + b;
    case MINUS:
        return a - b;
    case TIMES:
        return a * b;
    case BY:
        return a / b;
    case REST:
        break;
    }
    return a % b;
}

// The tests check whether the left side is returned.
const DtTime& assign(Operator op, DtTime& a, const DtTime& b)
{
    switch (op)
    {
    case PLUS:
        return a += b;
    case MINUS:
        return a -= b;
    case TIMES:
        return a *= b;
    case BY:
        return a /= b;
    case REST:
        break;
    }
    return a %= b;
}

std::int64_t combinedCounts(Operator op, std::int64_t a, std::int64_t b)
{
    switch (op)
    {
    case PLUS:
        return wrapped64(Int128{a} + b);
    case MINUS:
        return wrapped64(Int128{a} - b);
    case TIMES:
        return wrapped64(Int128{a} * b);
    case BY:
        return wrapped64(Int128{a} / b);
    case REST:
        break;
    }
    return wrapped64(Int128{a} % b);
}

struct Mixture
{
    TimeValue _a;
    TimeValue _b;
    RateValue _rate;
    // Whether the right side is 0 at the common rate, and so no divisor.
    bool _divides;
    // In the order of OPERATORS.
    std::array<std::int64_t, std::size(OPERATORS)> _counts;
};

const Mixture MIXTURES[] = {
    {{1, {25, 1}}, {1, {25, 1}}, {25, 1}, true, {2, 0, 1, 1, 0}},
    {{1, {1, 1}}, {1, {2, 1}}, {2, 1}, true, {3, 1, 2, 2, 0}},
    {{48000, {48000, 1}},
     {44100, {44100, 1}},
     {1000000, 1},
     true,
     {2000000, 0, 1000000000000, 1, 0}},
    {{1, {25, 1}}, {1, {30000, 1001}}, {750000, 1001}, true, {54, 4, 725, 1, 4}},
    {{1000, {25, 1}},
     {-7, {30000, 1001}},
     {750000, 1001},
     true,
     {29795, 30145, -5244750, -171, 45}},
    {{1, {50000, 1}}, {1, {25000, 1}}, {1000000, 1}, true, {60, -20, 800, 0, 20}},
    {{1, {50000, 1}}, {1, {50001, 1}}, {-1000000, 1}, true, {-39, -1, 380, 1, -1}},
    {{1, {1, 1001}}, {1, {1, 1000}}, {1, 1000000}, false, {0, 0, 0}},
    {{5, {1, 1001}}, {3, {-1, 1000}}, {-1, 1000000}, false, {0, 0, 0}},
    {{9, {3, 1}}, {-2, {-2, 1}}, {-6, 1}, true, {-24, -12, 108, 3, 0}},
    {{-9, {-3, 1}}, {2, {-2, 1}}, {6, 1}, true, {12, 24, -108, -3, 0}},
    {{1000000000000000, {24, 1}},
     {1000000000000001, {30, 1}},
     {720, 1},
     true,
     {54000000000000024, 5999999999999976, 3664548025298583552, 1, 5999999999999976}},
    {{4611686018427387904, {1, 1}},
     {4611686018427387904, {2, 1}},
     {2, 1},
     true,
     {-4611686018427387904, 4611686018427387904, 0, -2, 0}},
    {{17, {1, 7}}, {5, {1, 3}}, {1, 21}, false, {5, 5, 0}},
    {{100, {1000, 1}}, {100, {1000, 1}}, {1000, 1}, true, {200, 0, 10000, 1, 0}},
    {{7, {1000, 1}}, {3, {1000, 7}}, {1000000, 7}, true, {4000, -2000, 3000000, 0, 1000}},
    {{7, {1001, 1}}, {3, {1000, 1}}, {1000000, 1}, true, {9993, 3993, 20979000, 2, 993}},
    {{7, {1, 50000}}, {3, {1, 50001}}, {-1, 1000000}, false, {0, 0, 0}},
    {{7, {65536, 1}}, {3, {32768, 1}}, {-1000000, 1}, true, {-197, -15, 9646, 1, -15}},
    {{90000, {90000, 1}},
     {48000, {48000, 1}},
     {1000000, 1},
     true,
     {2000000, 0, 1000000000000, 1, 0}},
    {{123456789, {44100, 1}},
     {987654321, {30000, 1001}},
     {1000000, 1},
     true,
     {32957531984373, -32951933037027, 3738951840373169484, 0, 2799473673}},
    {{3, {1000000, 1}}, {7, {1, 1000000}}, {1, 1}, true, {7000000, -7000000, 0, 0, 0}},
    {{1000000, {1000000, 1}},
     {7, {1, 60}},
     {50000, 3},
     true,
     {7016666, -6983334, 116662000000, 0, 16666}},
};

TEST(DtTime, ArithmeticWithATimeIsThatOfTheCountsAtTheCommonRate)
{
    for (const Mixture& row : MIXTURES)
    {
        for (const Operator op : OPERATORS)
        {
            if (op >= BY && !row._divides) continue;
            const std::string expected = textOf(row._counts[op], row._rate);
            DtTime left = timeOf(row._a);
            const DtTime right = timeOf(row._b);
            EXPECT_EQ(textOf(combined(op, left, right)), expected)
                << left << " " << op << " " << right;
            EXPECT_EQ(textOf(left), textOf(row._a));
            EXPECT_EQ(&assign(op, left, right), &left);
            EXPECT_EQ(textOf(left), expected) << timeOf(row._a) << " " << op << " " << right;
            EXPECT_EQ(textOf(right), textOf(row._b));
        }
    }
}

TEST(DtTime, ProductsOfRatesThatWrapToZeroAreRefused)
{
    const struct
    {
        RateValue _a;
        RateValue _b;
        const char* _outcome;
    } cases[] = {
        // Numerators 65536 * 65536, and then denominators.
        {{65536, 1}, {65536, 3}, "null rate"},
        {{-65536, 1}, {65536, 3}, "null rate"},
        {{1, 65536}, {3, 65536}, "zero denominator"},
        {{131072, 65535}, {32768, 1}, "null rate"},
        {{3, 262144}, {1, 16384}, "zero denominator"},
        // The common rate is 2/-2147483648, and twice its denominator wraps.
        {{2, 1}, {1, LOWEST32}, "zero denominator"},
    };
    for (const auto& row : cases)
    {
        for (const Operator op : OPERATORS)
        {
            DtTime a(5, rational(row._a));
            const DtTime b(3, rational(row._b));
            EXPECT_EQ(outcomeOf([&] { return textOf(combined(op, a, b)); }), row._outcome)
                << a << b << op;
            EXPECT_EQ(outcomeOf([&] { return textOf(assign(op, a, b)); }), row._outcome)
                << a << b << op;
        }
    }
}

TEST(DtTime, ATimeMayBeBothSides)
{
    DtTime time(6, 30000, 1001);
    time += time;
    EXPECT_EQ(textOf(time), "12 at 30000/1001");
    time *= time;
    EXPECT_EQ(textOf(time), "144 at 30000/1001");
    time /= time;
    EXPECT_EQ(textOf(time), "1 at 30000/1001");
    time %= time;
    EXPECT_EQ(textOf(time), "0 at 30000/1001");
    time -= time;
    EXPECT_EQ(textOf(time), "0 at 30000/1001");
}

std::string expectedOutcome(Operator op, const TimeValue& a, const TimeValue& b)
{
    return outcomeOf(
        [&]
        {
            const RateValue rate = a._rate == b._rate ? a._rate : commonRate(a._rate, b._rate);
            const TimeValue left = convertedTime(a, rate);
            const TimeValue right = convertedTime(b, rate);
            if (op >= BY && right._count == 0) return std::string("no divisor");
            return textOf(combinedCounts(op, left._count, right._count), rate);
        });
}

TEST(DtTime, ArithmeticWithATimeAgreesWith128BitsReducedToTheWidths)
{
    TimeRandom random(628);
    int refused = 0;
    for (int i = 0; i < 100000; ++i)
    {
        const std::int64_t count = random.number64();
        const DtTime a(count, random.rate());
        const std::int64_t other = random.number64();
        const DtTime b(other, i % 10 == 0 ? a.getRate() : random.rate());
        const Operator op = OPERATORS[random.bits() % std::size(OPERATORS)];
        const std::string expected = expectedOutcome(op, valueOf(a), valueOf(b));
        if (expected == "no divisor") continue;
        ASSERT_EQ(outcomeOf([&] { return textOf(combined(op, a, b)); }), expected)
            << a << " " << op << " " << b;
        if (expected == "null rate" || expected == "zero denominator") ++refused;
    }
    EXPECT_GT(refused, 100);
}

TEST(DtTime, SumsAndDifferencesAreExactWhereRatesAreWholeAndNothingIsCapped)
{
    TimeRandom random(629);
    for (int i = 0; i < 50000; ++i)
    {
        const std::int64_t a = random.number64() >> 30;
        const std::int64_t b = random.number64() >> 30;
        const std::int32_t rateOfA = random.upTo(1000);
        const std::int32_t rateOfB = random.upTo(1000);
        const DtTime sum = DtTime(a, rateOfA, 1) + DtTime(b, rateOfB, 1);
        const DtTime difference = DtTime(a, rateOfA, 1) - DtTime(b, rateOfB, 1);
        // In seconds: the count through the rate, all over a * b.
        const std::int64_t rate = rateOfA == rateOfB ? rateOfA : rateOfA * rateOfB;
        const Int128 scale = Int128{rateOfA} * rateOfB;
        ASSERT_EQ(valueOf(sum.getRate()), (RateValue{static_cast<std::int32_t>(rate), 1}));
        ASSERT_TRUE(Int128{sum.getCount()} * scale ==
                    (Int128{a} * rateOfB + Int128{b} * rateOfA) * rate)
            << a << " " << rateOfA << " " << b << " " << rateOfB;
        ASSERT_TRUE(Int128{difference.getCount()} * scale ==
                    (Int128{a} * rateOfB - Int128{b} * rateOfA) * rate)
            << a << " " << rateOfA << " " << b << " " << rateOfB;
    }
}

TEST(DtTime, ArithmeticIsExactButForTheTruncationOfBothSidesWhereNothingIsCapped)
{
    TimeRandom random(630);
    for (int i = 0; i < 50000; ++i)
    {
        const std::int64_t ticks = random.number64() >> 34;
        const DtTime a(ticks, random.rate(900, 30));
        const std::int64_t other = random.number64() >> 34;
        const DtTime b(other, random.rate(900, 30));
        if (a.isRateEqual(b)) continue;
        const Rational common(a.getRate().getNumerator() * b.getRate().getNumerator(),
                              a.getRate().getDenominator() * b.getRate().getDenominator());
        const auto atCommon = [&common](const DtTime& time)
        {
            const Int128 count = Int128{time.getCount()} * time.getRate().getDenominator() *
                                 common.getNumerator() /
                                 (Int128{time.getRate().getNumerator()} * common.getDenominator());
            return static_cast<std::int64_t>(count);
        };
        for (const Operator op : OPERATORS)
        {
            if (op >= BY && atCommon(b) == 0) continue;
            ASSERT_EQ(textOf(combined(op, a, b)),
                      textOf(combinedCounts(op, atCommon(a), atCommon(b)), valueOf(common)))
                << a << " " << op << " " << b;
        }
    }
}

TEST(DtTime, TheOrderIsThatOfInstants)
{
    const struct
    {
        DtTime _a;
        DtTime _b;
        int _order;
    } cases[] = {
        {DtTime(1, 1, 1), DtTime(30, 30, 1), 0},
        {DtTime(1, 1, 1), DtTime(29, 30, 1), 1},
        {DtTime(1, 1, 1), DtTime(31, 30, 1), -1},
        {DtTime(-1, 1, 1), DtTime(-29, 30, 1), -1},
        {DtTime(1001, 30000, 1001), DtTime(1002001, 30000000, 1001), -1},
        {DtTime(30000, 30000, 1001), DtTime(1001, 1, 1), 0},
        {DtTime(30000, 30000, 1001), DtTime(48048000, 48000, 1), 0},
        {DtTime(30000, 30000, 1001), DtTime(48047999, 48000, 1), 1},
        {DtTime(0, 25, 1), DtTime(0, 1, 60), 0},
        {DtTime(1, 1, 60), DtTime(60, 1, 1), 0},
        {DtTime(1, 1, 1), DtTime(-1, -1, 1), 0},
        // The last counts at 48000/1 whose products fit, and the first that do not.
        {DtTime(192153584101141, 48000, 1), DtTime(192153584101140, 48000, 1), 1},
        {DtTime(192153584101142, 48000, 1), DtTime(192153584101141, 48000, 1), -1},
        {DtTime(192153584101142, 48000, 1), DtTime(0, 48000, 1), -1},
        {DtTime(3, HIGHEST32, 1), DtTime(2, HIGHEST32, HIGHEST32 - 1), -1},
        // A rate below 0 turns the order round.
        {DtTime(1, -1, 1), DtTime(0, 1, 1), 1},
        {DtTime(1, -1, 1), DtTime(2, -1, 1), 1},
        // Both products wrap to 0.
        {DtTime(8589934592, LOWEST32, 1), DtTime(17179869184, LOWEST32, 1), 0},
    };
    for (const auto& [a, b, order] : cases)
    {
        EXPECT_EQ(a < b, order < 0) << a << b;
        EXPECT_EQ(a <= b, order <= 0) << a << b;
        EXPECT_EQ(a == b, order == 0) << a << b;
        EXPECT_EQ(a >= b, order >= 0) << a << b;
        EXPECT_EQ(a > b, order > 0) << a << b;
        EXPECT_EQ(a != b, order != 0) << a << b;
    }
}

TEST(DtTime, ComparesTheProductsOfBothSidesModulo2To64)
{
    EXPECT_EQ(crossMultLhs(DtTime(5, 3, 7), DtTime(2, 11, 13)), 7 * 11 * 5);
    EXPECT_EQ(crossMultRhs(DtTime(5, 3, 7), DtTime(2, 11, 13)), 13 * 3 * 2);
    TimeRandom random(631);
    for (int i = 0; i < 50000; ++i)
    {
        const std::int64_t count = random.number64();
        const DtTime a(count, random.rate());
        const std::int64_t other = random.number64();
        const DtTime b(other, i % 10 == 0 ? a.getRate() : random.rate());
        const std::int64_t left = wrapped64(Int128{a.getRate().getDenominator()} *
                                            b.getRate().getNumerator() * valueOf(a)._count);
        const std::int64_t right = wrapped64(Int128{b.getRate().getDenominator()} *
                                             a.getRate().getNumerator() * valueOf(b)._count);
        ASSERT_EQ(crossMultLhs(a, b), left) << a << b;
        ASSERT_EQ(crossMultRhs(a, b), right) << a << b;
        ASSERT_EQ(a < b, left < right) << a << b;
        ASSERT_EQ(a <= b, left <= right) << a << b;
        ASSERT_EQ(a == b, left == right) << a << b;
        ASSERT_EQ(a >= b, left >= right) << a << b;
        ASSERT_EQ(a > b, left > right) << a << b;
        ASSERT_EQ(a != b, left != right) << a << b;
    }
}

// Times of few instants at many rates, so that different times are often equal.
std::vector<DtTime> timesOfFewInstants(int count)
{
    TimeRandom random(632);
    std::vector<DtTime> times;
    for (int i = 0; i < count; ++i)
    {
        const Rational rate = random.rate(300, 20);
        const std::int64_t halves = static_cast<std::int64_t>(random.bits() % 41) - 20;
        const std::int64_t ticks = halves * rate.getNumerator() / rate.getDenominator() / 2;
        const auto off = static_cast<std::int64_t>(random.bits() % 4 == 0);
        times.emplace_back(ticks + off, rate);
    }
    return times;
}

// Negative, 0 or positive as the instant of `a` is before, at or after that of `b`.
int exactOrder(const DtTime& a, const DtTime& b)
{
    const Int128 left =
        Int128{a.getCount()} * a.getRate().getDenominator() * b.getRate().getNumerator();
    const Int128 right =
        Int128{b.getCount()} * b.getRate().getDenominator() * a.getRate().getNumerator();
    return left < right ? -1 : static_cast<int>(left > right);
}

TEST(DtTime, TheOrderIsATotalPreorderWhereNothingWraps)
{
    std::vector<DtTime> times = timesOfFewInstants(600);
    int equalPairs = 0;
    for (const DtTime& a : times)
    {
        for (const DtTime& b : times)
        {
            const int order = exactOrder(a, b);
            ASSERT_EQ(a < b, order < 0) << a << b;
            ASSERT_EQ(a <= b, order <= 0) << a << b;
            ASSERT_EQ(a == b, order == 0) << a << b;
            ASSERT_EQ(a >= b, order >= 0) << a << b;
            ASSERT_EQ(a > b, order > 0) << a << b;
            ASSERT_EQ(a != b, order != 0) << a << b;
            if (order == 0 && !a.isRateEqual(b)) ++equalPairs;
        }
    }
    EXPECT_GT(equalPairs, 500);
    std::sort(times.begin(), times.end());
    for (std::size_t i = 0; i < times.size(); ++i)
        for (std::size_t j = i; j < times.size(); ++j) ASSERT_TRUE(times[i] <= times[j]);
}

TEST(DtTime, TimesOfOneInstantHaveOneHash)
{
    const std::hash<DtTime> hash;
    const std::vector<DtTime> times = timesOfFewInstants(600);
    for (const DtTime& a : times)
        for (const DtTime& b : times) ASSERT_TRUE(a != b || hash(a) == hash(b)) << a << b;
    const std::pair<DtTime, DtTime> pairs[] = {
        {DtTime(), DtTime(0, -25, 3)},
        {DtTime(1, 1, 1), DtTime(-1, -1, 1)},
        {DtTime(-1, 1, 1), DtTime(1, -1, 1)},
        {DtTime(7, 1, 60), DtTime(420, 1, 1)},
        {DtTime(30000, 30000, 1001), DtTime(48048000, 48000, 1)},
        {DtTime(HIGHEST, 1, 1), DtTime(HIGHEST, 1, 1)},
        {DtTime(LOWEST, 1, 1), DtTime(LOWEST, 1, 1)},
        {DtTime(HIGHEST, 1, 1), DtTime(-HIGHEST, -1, 1)},
        {DtTime(4294967294, HIGHEST32, 1), DtTime(2, 1, 1)},
        {DtTime(1, 1, HIGHEST32), DtTime(HIGHEST32, 1, 1)},
    };
    for (const auto& [a, b] : pairs)
    {
        ASSERT_TRUE(a == b) << a << b;
        EXPECT_EQ(hash(a), hash(b)) << a << b;
    }
}

TEST(DtTime, MultiplesOfATimeHaveItsHash)
{
    TimeRandom random(633);
    for (int i = 0; i < 20000; ++i)
    {
        const std::int64_t count = random.number64() >> 36;
        const DtTime time(count, random.rate(1000, 1000));
        const std::int32_t factor = random.upTo(1000);
        const DtTime finer(
            time.getCount() * factor,
            Rational(time.getRate().getNumerator() * factor, time.getRate().getDenominator()));
        ASSERT_TRUE(time == finer) << time << finer;
        ASSERT_EQ(std::hash<DtTime>()(time), std::hash<DtTime>()(finer)) << time << finer;
    }
}

TEST(DtTime, TimesOfOneInstantAreOneElementOfASet)
{
    const std::unordered_set<DtTime> set = {DtTime(1, 1, 1),  DtTime(30, 30, 1), DtTime(25, 25, 1),
                                            DtTime(0, 25, 1), DtTime(),          DtTime(2, 1, 1)};
    EXPECT_EQ(set.size(), 3U);
    EXPECT_EQ(set.count(DtTime(44100, 44100, 1)), 1U);
    EXPECT_EQ(set.count(DtTime(44101, 44100, 1)), 0U);
}

TEST(DtTime, FewDifferentInstantsShareAHash)
{
    std::unordered_set<std::size_t> hashes;
    for (int count = 0; count < 1000; ++count)
        hashes.insert(std::hash<DtTime>()(DtTime(count, 30000, 1001)));
    EXPECT_GT(hashes.size(), 900U);
}

TEST(DtTime, IsPrintedAsACountAtARate)
{
    EXPECT_EQ(printed(DtTime()), "(0 @ (1/1=1))");
    EXPECT_EQ(printed(DtTime(1001, 30000, 1001)), "(1001 @ (30000/1001=29.97))");
    EXPECT_EQ(printed(DtTime(-5, 1, -3)), "(-5 @ (-1/3=-0.333333))");
    EXPECT_EQ(printed(DtTime(LOWEST, 25, 1)), "(-9223372036854775808 @ (25/1=25))");
    std::ostringstream dumped;
    DtTime(1001, 30000, 1001).dump(dumped);
    EXPECT_EQ(dumped.str(), "(1001 @ (30000/1001=29.97))");
}

TEST(DtTime, IsPrintedAsTheStreamFormatsNumbers)
{
    const DtTime time(1001, 30000, 1001);
    std::ostringstream os;
    os << std::setprecision(10) << time << std::fixed << std::setprecision(2) << time << std::hex
       << time << DtTime(-1, -1, 1);
    EXPECT_EQ(os.str(), "(1001 @ (30000/1001=29.97002997))"
                        "(1001 @ (30000/1001=29.97))"
                        "(3e9 @ (7530/3e9=29.97))"
                        "(ffffffffffffffff @ (ffffffff/1=-1.00))");
}

static_assert(DtTime() == DtTime(0, 25, 1));
static_assert(DtTime(1, 1, 1) + DtTime(1, 2, 1) == DtTime(3, 2, 1));
static_assert((DtTime(1, 50000, 1) + DtTime(1, 50001, 1)).getRate() == Rational(-1000000, 1));
static_assert(DtTime(7, 25, 1).convertRate(Rational(50, 1)).getCount() == 14);
static_assert((DtTime(7, 25, 1) % 4).getCount() == 3);
static_assert(DtTime(1, 1, 1) < DtTime(31, 30, 1) && DtTime(1, 1, 1) != DtTime(31, 30, 1));
static_assert(DtTime(1, 1, 1).isRateEqual(DtTime(7, 2, 2)));
static_assert(std::is_trivially_copyable_v<DtTime> && !std::is_polymorphic_v<DtTime>);
static_assert(sizeof(DtTime) == 16);
static_assert(std::is_nothrow_default_constructible_v<DtTime>);
static_assert(!std::is_nothrow_constructible_v<DtTime, DtTimeIndex, Rational>);
static_assert(!std::is_nothrow_constructible_v<DtTime, DtTimeIndex, int, int>);
static_assert(noexcept(DtTime() + DtTimeIndex()) && !noexcept(DtTime() + DtTime()));
static_assert(noexcept(DtTime() < DtTime()) && noexcept(DtTime() == DtTime()));
static_assert(!noexcept(DtTime().convertRate(Rational())));
static_assert(noexcept(std::hash<DtTime>()(DtTime())));
static_assert(noexcept(std::hash<DtTimeIndex>()(DtTimeIndex())));

TEST(DtTime, TimesOfOneInstantHaveOneHashAlsoWhereARateCantBeReduced)
{
    constexpr std::int32_t SMALLEST = std::numeric_limits<std::int32_t>::min();
    const std::hash<DtTime> hash;
    const std::pair<DtTime, DtTime> rows[] = {
        {DtTime(1, SMALLEST, 4), DtTime(1, -536870912, 1)},
        {DtTime(1, 4, SMALLEST), DtTime(1, 1, 536870912)},
        {DtTime(0, SMALLEST, 4), DtTime(0, 25, 1)},
    };
    for (const auto& [a, b] : rows)
    {
        EXPECT_EQ(a, b);
        EXPECT_EQ(hash(a), hash(b)) << a << " " << b;
    }
}

TEST(DtTimeIndex, ARoundedConversionFromARateOfZeroIsTheLowest)
{
    EXPECT_EQ(DtTimeIndex(7).convert(Rational(0, 1), Rational(1, 1), std::round_to_nearest),
              LOWEST);
}

} // namespace

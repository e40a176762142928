#include "base/rational.h"

#include "base/rationalEx.h"

#include "support/timeReference.h"

#include <bit>
#include <boost/rational.hpp>
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

namespace
{

using support::HIGHEST32;
using support::Int128;
using support::LOWEST32;
using support::RateValue;
using support::TimeRandom;
using Zu::Rational;
using Zu::RationalEx;

RateValue valueOf(const Rational& rational)
{
    return support::valueOf(rational);
}

struct NormalForm
{
    std::int32_t _numerator;
    std::int32_t _denominator;
    RateValue _stored;
};

const NormalForm NORMAL_FORMS[] = {
    {1, 1, {1, 1}},
    {0, 1, {0, 1}},
    {0, 7, {0, 1}},
    {0, -7, {0, 1}},
    {0, LOWEST32, {0, 1}},
    {0, HIGHEST32, {0, 1}},
    {2, -4, {-1, 2}},
    {-2, -4, {1, 2}},
    {-2, 4, {-1, 2}},
    {1, 3, {1, 3}},
    {2, 6, {1, 3}},
    {6, 2, {3, 1}},
    {7, 7, {1, 1}},
    {-7, 7, {-1, 1}},
    {50, 2, {25, 1}},
    {25, 1, {25, 1}},
    {30000, 1001, {30000, 1001}},
    {90000, 3003, {30000, 1001}},
    {1001, 30000, {1001, 30000}},
    {1836311903, 1134903170, {1836311903, 1134903170}},
    {HIGHEST32, HIGHEST32, {1, 1}},
    {HIGHEST32, -HIGHEST32, {-1, 1}},
    {-HIGHEST32, 1, {-HIGHEST32, 1}},
    {1, -HIGHEST32, {-1, HIGHEST32}},
    {HIGHEST32 - 1, 2, {1073741823, 1}},
    // A number without a negation in 32 bits is not reduced.
    {LOWEST32, 4, {LOWEST32, 4}},
    {LOWEST32, 1, {LOWEST32, 1}},
    {LOWEST32, HIGHEST32, {LOWEST32, HIGHEST32}},
    {LOWEST32, -4, {LOWEST32, 4}},
    {LOWEST32, LOWEST32, {LOWEST32, LOWEST32}},
    {4, LOWEST32, {-4, LOWEST32}},
    {-4, LOWEST32, {4, LOWEST32}},
};

TEST(Rational, IsOneByDefault)
{
    EXPECT_EQ(valueOf(Rational()), (RateValue{1, 1}));
}

TEST(Rational, IsHeldInLowestTermsWithAPositiveDenominator)
{
    for (const NormalForm& row : NORMAL_FORMS)
    {
        EXPECT_EQ(valueOf(Rational(row._numerator, row._denominator)), row._stored)
            << row._numerator << "/" << row._denominator;
        Rational rational(3, 5);
        rational.setValue(row._numerator, row._denominator);
        EXPECT_EQ(valueOf(rational), row._stored) << row._numerator << "/" << row._denominator;
    }
}

TEST(Rational, HasTheNormalFormOfBoost)
{
    TimeRandom random(601);
    for (int i = 0; i < 100000; ++i)
    {
        const std::int32_t numerator = random.number32();
        const std::int32_t denominator = random.number32();
        if (numerator == LOWEST32 || denominator == LOWEST32 || denominator == 0) continue;
        const boost::rational<long long> expected(numerator, denominator);
        const Rational rational(numerator, denominator);
        ASSERT_EQ(rational.getNumerator(), expected.numerator()) << numerator << "/" << denominator;
        ASSERT_EQ(rational.getDenominator(), expected.denominator())
            << numerator << "/" << denominator;
    }
}

TEST(Rational, MultiplesOfAFractionAreTheSameValue)
{
    TimeRandom random(602);
    for (int i = 0; i < 20000; ++i)
    {
        const Rational rational = random.rate(30000, 30000);
        const std::int32_t factor = random.upTo(60000) * (i % 2 == 0 ? 1 : -1);
        const Rational multiple(rational.getNumerator() * factor,
                                rational.getDenominator() * factor);
        ASSERT_EQ(multiple, rational) << rational << " " << factor;
        ASSERT_EQ(std::hash<Rational>()(multiple), std::hash<Rational>()(rational));
    }
}

TEST(Rational, ADenominatorOfZeroIsRefusedAndTheValueStays)
{
    for (const std::int32_t numerator : {1, 0, -1, LOWEST32, HIGHEST32})
    {
        EXPECT_THROW(Rational(numerator, 0), RationalEx::ExDenominatorZero);
        Rational rational(30000, 1001);
        try
        {
            rational.setValue(numerator, 0);
            ADD_FAILURE() << "nothing raised";
        }
        catch (const RationalEx::ExDenominatorZero& exception)
        {
            EXPECT_STREQ(exception.getReason(), "Illegal zero denominator.");
        }
        EXPECT_EQ(valueOf(rational), (RateValue{30000, 1001}));
    }
}

TEST(Rational, ACopyHasTheValueOfItsSource)
{
    Rational source(30000, 1001);
    const Rational copy(source);
    Rational assigned;
    assigned = source;
    source.setValue(1, 2);
    EXPECT_EQ(valueOf(copy), (RateValue{30000, 1001}));
    EXPECT_EQ(valueOf(assigned), (RateValue{30000, 1001}));
}

struct Quotients
{
    std::int32_t _numerator;
    std::int32_t _denominator;
    std::uint64_t _double;
    std::uint32_t _float;
    std::uint64_t _reciprocalDouble;
    std::uint32_t _reciprocalFloat;
};

// The bits of the results, computed with exact fractions in Python: each operand is rounded to the
// nearest number of the format, ties to even, and then the quotient of the rounded ones.
const Quotients QUOTIENTS[] = {
    {1, 1, 0x3FF0000000000000, 0x3F800000, 0x3FF0000000000000, 0x3F800000},
    {0, 1, 0x0000000000000000, 0x00000000, 0x7FF0000000000000, 0x7F800000},
    {1, 3, 0x3FD5555555555555, 0x3EAAAAAB, 0x4008000000000000, 0x40400000},
    {-1, 3, 0xBFD5555555555555, 0xBEAAAAAB, 0xC008000000000000, 0xC0400000},
    {2, 3, 0x3FE5555555555555, 0x3F2AAAAB, 0x3FF8000000000000, 0x3FC00000},
    {3, 1, 0x4008000000000000, 0x40400000, 0x3FD5555555555555, 0x3EAAAAAB},
    {25, 1, 0x4039000000000000, 0x41C80000, 0x3FA47AE147AE147B, 0x3D23D70A},
    {30000, 1001, 0x403DF853E2556B28, 0x41EFC29F, 0x3FA1156F8C384072, 0x3D08AB7C},
    {24000, 1001, 0x4037F9DCB5112287, 0x41BFCEE6, 0x3FA55ACB6F46508E, 0x3D2AD65B},
    {60000, 1001, 0x404DF853E2556B28, 0x426FC29F, 0x3F91156F8C384072, 0x3C88AB7C},
    {44100, 1, 0x40E5888000000000, 0x472C4400, 0x3EF7C6F8C751F177, 0x37BE37C6},
    {-48000, 1, 0xC0E7700000000000, 0xC73B8000, 0xBEF5D867C3ECE2A5, 0xB7AEC33E},
    {1, 10, 0x3FB999999999999A, 0x3DCCCCCD, 0x4024000000000000, 0x41200000},
    {1, 60, 0x3F91111111111111, 0x3C888889, 0x404E000000000000, 0x42700000},
    {7, 11, 0x3FE45D1745D1745D, 0x3F22E8BA, 0x3FF9249249249249, 0x3FC92492},
    {16777217, 1, 0x4170000010000000, 0x4B800000, 0x3E6FFFFFE0000020, 0x33800000},
    {16777219, 2, 0x4160000030000000, 0x4B000002, 0x3E7FFFFFA0000120, 0x33FFFFFC},
    {1, 16777217, 0x3E6FFFFFE0000020, 0x33800000, 0x4170000010000000, 0x4B800000},
    {2147483647, 1, 0x41DFFFFFFFC00000, 0x4F000000, 0x3E00000000200000, 0x30000000},
    {1, 2147483647, 0x3E00000000200000, 0x30000000, 0x41DFFFFFFFC00000, 0x4F000000},
    {2147483647, 2147483646, 0x3FF0000000200000, 0x3F800000, 0x3FEFFFFFFFC00000, 0x3F800000},
    {LOWEST32, 3, 0xC1C5555555555555, 0xCE2AAAAB, 0xBE18000000000000, 0xB0C00000},
    {LOWEST32, 1, 0xC1E0000000000000, 0xCF000000, 0xBE00000000000000, 0xB0000000},
    {1000000000, 1, 0x41CDCD6500000000, 0x4E6E6B28, 0x3E112E0BE826D695, 0x3089705F},
    {-1, 1000000, 0xBEB0C6F7A0B5ED8D, 0xB58637BD, 0xC12E848000000000, 0xC9742400},
    {13717421, 109739369, 0x3FBFFFFFFB1B9669, 0x3E000000, 0x40200000027234CC, 0x41000000},
    {33554435, 16777219, 0x3FFFFFFFD0000090, 0x3FFFFFFE, 0x3FE0000017FFFFDC, 0x3F000001},
};

TEST(Rational, QuotientsAreRoundedOnceInDoubleAndThriceInSinglePrecision)
{
    for (const Quotients& row : QUOTIENTS)
    {
        const Rational rational(row._numerator, row._denominator);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(rational.getDouble()), row._double) << rational;
        EXPECT_EQ(std::bit_cast<std::uint32_t>(rational.getFloat()), row._float) << rational;
        EXPECT_EQ(std::bit_cast<std::uint64_t>(rational.getReciprocalDouble()),
                  row._reciprocalDouble)
            << rational;
        EXPECT_EQ(std::bit_cast<std::uint32_t>(rational.getReciprocalFloat()), row._reciprocalFloat)
            << rational;
    }
}

TEST(Rational, TheReciprocalOfZeroIsInfinity)
{
    EXPECT_EQ(Rational(0, 1).getReciprocalDouble(), std::numeric_limits<double>::infinity());
    EXPECT_EQ(Rational(0, 1).getReciprocalFloat(), std::numeric_limits<float>::infinity());
    EXPECT_EQ(Rational(0, -7).getReciprocalDouble(), std::numeric_limits<double>::infinity());
    EXPECT_EQ(Rational(0, -7).getReciprocalFloat(), std::numeric_limits<float>::infinity());
}

TEST(Rational, EqualityIsExact)
{
    const struct
    {
        Rational _a;
        Rational _b;
        bool _equal;
    } cases[] = {
        {Rational(1, 3), Rational(2, 6), true},
        {Rational(1, 3), Rational(-2, -6), true},
        {Rational(1, 3), Rational(-1, 3), false},
        {Rational(1, 3), Rational(1, 4), false},
        {Rational(1, 3), Rational(2, 3), false},
        {Rational(0, 5), Rational(0, -9), true},
        {Rational(10000000, 30000001), Rational(1, 3), false},
        {Rational(HIGHEST32, HIGHEST32 - 1), Rational(HIGHEST32 - 1, HIGHEST32 - 2), false},
        // The same number, but in two forms.
        {Rational(LOWEST32, 4), Rational(LOWEST32 / 4, 1), false},
    };
    for (const auto& row : cases)
    {
        EXPECT_EQ(row._a == row._b, row._equal) << row._a << row._b;
        EXPECT_EQ(row._b == row._a, row._equal) << row._a << row._b;
        EXPECT_EQ(row._a != row._b, !row._equal) << row._a << row._b;
    }
}

struct Order
{
    Rational _a;
    Rational _b;
    bool _less;
    bool _lessEqual;
    bool _greater;
    bool _greaterEqual;
};

const Order ORDERS[] = {
    {Rational(1, 3), Rational(1, 2), true, true, false, false},
    {Rational(1, 2), Rational(1, 3), false, false, true, true},
    {Rational(-1, 2), Rational(1, 3), true, true, false, false},
    {Rational(1, 2), Rational(1, 2), false, true, false, true},
    {Rational(0, 1), Rational(0, 1), false, true, false, true},
    {Rational(10000000, 30000001), Rational(1, 3), false, true, false, true},
    {Rational(1, 3), Rational(10000000, 30000001), false, true, false, true},
    {Rational(25, 1), Rational(2500000, 100001), false, false, true, true},
    // 1/9999999 is just above the tolerance, 1/10000001 just below it.
    {Rational(0, 1), Rational(1, 9999999), true, true, false, false},
    {Rational(0, 1), Rational(1, 10000001), false, true, false, true},
    {Rational(1, 9999999), Rational(0, 1), false, false, true, true},
    {Rational(1, 10000001), Rational(0, 1), false, true, false, true},
    // The tolerance itself: all four comparisons are strict.
    {Rational(0, 1), Rational(1, 10000000), false, true, false, false},
    {Rational(1, 10000000), Rational(0, 1), false, false, false, true},
    // From 2^30 on the tolerance is less than half the distance of two numbers, and has no effect.
    {Rational(1 << 29, 1), Rational(1 << 29, 1), false, true, false, true},
    {Rational((1 << 30) + 1, 1), Rational((1 << 30) + 1, 1), false, false, false, false},
    {Rational(HIGHEST32, 1), Rational(HIGHEST32, 1), false, false, false, false},
    {Rational(HIGHEST32 - 1, 1), Rational(HIGHEST32, 1), true, true, false, false},
};

TEST(Rational, TheOrderingHasATolerance)
{
    for (const Order& row : ORDERS)
    {
        EXPECT_EQ(row._a < row._b, row._less) << row._a << row._b;
        EXPECT_EQ(row._a <= row._b, row._lessEqual) << row._a << row._b;
        EXPECT_EQ(row._a > row._b, row._greater) << row._a << row._b;
        EXPECT_EQ(row._a >= row._b, row._greaterEqual) << row._a << row._b;
    }
}

TEST(Rational, TheOrderingIsExactAwayFromTheTolerance)
{
    TimeRandom random(603);
    int closePairs = 0;
    int distantPairs = 0;
    for (int i = 0; i < 50000; ++i)
    {
        const Rational a = random.rate(100000, 100000);
        const Rational b = i % 3 == 0 ? random.rate(100000, 100000)
                                      : Rational(a.getNumerator() * 1000 + random.upTo(3) - 2,
                                                 a.getDenominator() * 1000);
        const Int128 difference = Int128{a.getNumerator()} * b.getDenominator() -
                                  Int128{b.getNumerator()} * a.getDenominator();
        const Int128 denominators = Int128{a.getDenominator()} * b.getDenominator();
        const Int128 size = difference < 0 ? -difference : difference;
        if (size * 9000000 > denominators)
        {
            ++distantPairs;
            ASSERT_EQ(a < b, difference < 0) << a << b;
            ASSERT_EQ(a <= b, difference < 0) << a << b;
            ASSERT_EQ(a > b, difference > 0) << a << b;
            ASSERT_EQ(a >= b, difference > 0) << a << b;
        }
        else if (size * 11000000 < denominators)
        {
            ++closePairs;
            ASSERT_TRUE(a <= b && a >= b) << a << b;
            ASSERT_FALSE(a < b || a > b) << a << b;
        }
    }
    EXPECT_GT(closePairs, 1000);
    EXPECT_GT(distantPairs, 1000);
}

template <class Change> std::string printed(const Rational& rational, Change change)
{
    std::ostringstream os;
    change(os);
    rational.dump(os);
    std::ostringstream inserted;
    change(inserted);
    EXPECT_EQ(&(inserted << rational), &inserted);
    EXPECT_EQ(inserted.str(), os.str());
    return os.str();
}

TEST(Rational, IsPrintedWithItsValue)
{
    const std::pair<Rational, const char*> cases[] = {
        {Rational(), "(1/1=1)"},
        {Rational(0, 1), "(0/1=0)"},
        {Rational(30000, 1001), "(30000/1001=29.97)"},
        {Rational(-30000, 1001), "(-30000/1001=-29.97)"},
        {Rational(2, 6), "(1/3=0.333333)"},
        {Rational(HIGHEST32, 1), "(2147483647/1=2.14748e+09)"},
        {Rational(LOWEST32, 4), "(-2147483648/4=-5.36871e+08)"},
        {Rational(1, 10000000), "(1/10000000=1e-07)"},
    };
    for (const auto& [rational, text] : cases) EXPECT_EQ(printed(rational, [](auto&) {}), text);
}

TEST(Rational, IsPrintedAsTheStreamFormatsNumbers)
{
    const Rational rate(30000, 1001);
    EXPECT_EQ(printed(rate, [](auto& os) { os << std::setprecision(3); }), "(30000/1001=30)");
    EXPECT_EQ(printed(rate, [](auto& os) { os << std::setprecision(10); }),
              "(30000/1001=29.97002997)");
    EXPECT_EQ(printed(rate, [](auto& os) { os << std::fixed; }), "(30000/1001=29.970030)");
    EXPECT_EQ(printed(rate, [](auto& os) { os << std::scientific << std::setprecision(2); }),
              "(30000/1001=3.00e+01)");
    EXPECT_EQ(printed(rate, [](auto& os) { os << std::hex; }), "(7530/3e9=29.97)");
    EXPECT_EQ(printed(Rational(31, 16), [](auto& os) { os << std::oct << std::fixed; }),
              "(37/20=1.937500)");
}

TEST(Rational, EqualOnesAreOneElementOfASet)
{
    const std::unordered_set<Rational> set = {Rational(1, 3), Rational(2, 6),  Rational(-1, -3),
                                              Rational(0, 5), Rational(0, -7), Rational(1, 2)};
    EXPECT_EQ(set.size(), 3U);
    EXPECT_EQ(set.count(Rational(5, 15)), 1U);
    EXPECT_EQ(set.count(Rational(0, 1)), 1U);
    EXPECT_EQ(set.count(Rational(3, 1)), 0U);
    EXPECT_NE(std::hash<Rational>()(Rational(1, 3)), std::hash<Rational>()(Rational(3, 1)));
}

constexpr Rational setTo(std::int32_t numerator, std::int32_t denominator)
{
    Rational rational;
    rational.setValue(numerator, denominator);
    return rational;
}

// Everything except output and reciprocals is available at compile time.
static_assert(Rational() == Rational(1, 1));
static_assert(Rational(2, -4).getNumerator() == -1 && Rational(2, -4).getDenominator() == 2);
static_assert(setTo(90000, 3003) == Rational(30000, 1001));
static_assert(Rational(LOWEST32, 4).getNumerator() == LOWEST32);
static_assert(Rational(1, 4).getDouble() == 0.25 && Rational(1, 4).getFloat() == 0.25F);
static_assert(Rational(1, 3) != Rational(1, 2) && Rational(1, 3) < Rational(1, 2));
static_assert(Rational(1, 3) <= Rational(10000000, 30000001));
static_assert(Rational(1, 2) > Rational(1, 3) && Rational(1, 2) >= Rational(1, 2));

static_assert(sizeof(Rational) == 8 && std::is_trivially_copyable_v<Rational>);
static_assert(std::is_nothrow_default_constructible_v<Rational>);
static_assert(!std::is_nothrow_constructible_v<Rational, int, int>);
static_assert(!std::is_convertible_v<int, Rational>);
static_assert(noexcept(Rational().getDouble()) && noexcept(Rational().getReciprocalFloat()));
static_assert(noexcept(Rational() == Rational()) && noexcept(Rational() <= Rational()));
static_assert(noexcept(std::hash<Rational>()(Rational())));

static_assert(Rational(1, 2).getReciprocalFloat() == 2.0F);

// Not every compiler accepts a division by zero as a constant.
TEST(Rational, TheReciprocalOfZeroIsInfinite)
{
    EXPECT_EQ(Rational(0, 1).getReciprocalDouble(), std::numeric_limits<double>::infinity());
}

} // namespace

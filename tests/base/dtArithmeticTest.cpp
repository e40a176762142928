#include "base/dtArithmetic.h"

#include "support/timeReference.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace
{

namespace DtArithmetic = Zu::DtArithmetic;

using support::HIGHEST;
using support::HIGHEST32;
using support::Int128;
using support::LOWEST;
using support::LOWEST32;
using support::TimeRandom;
using support::wrapped32;
using support::wrapped64;

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

std::vector<std::int64_t> interesting()
{
    std::vector<std::int64_t> numbers = {
        LOWEST, LOWEST + 1, LOWEST / 2,   -3000000000LL, -2,          -1,          0,
        1,      2,          3037000500LL, 4294967296LL,  HIGHEST / 2, HIGHEST - 1, HIGHEST};
    TimeRandom random(611);
    for (int i = 0; i < 300; ++i) numbers.push_back(random.number64());
    return numbers;
}

TEST(DtArithmetic, SumsDifferencesAndProductsAreThoseModulo2To64)
{
    for (const std::int64_t a : interesting())
    {
        for (const std::int64_t b : interesting())
        {
            ASSERT_EQ(DtArithmetic::add(a, b), wrapped64(Int128{a} + b)) << a << " " << b;
            ASSERT_EQ(DtArithmetic::subtract(a, b), wrapped64(Int128{a} - b)) << a << " " << b;
            ASSERT_EQ(DtArithmetic::multiply(a, b), wrapped64(Int128{a} * b)) << a << " " << b;
        }
    }
}

TEST(DtArithmetic, QuotientsAreTruncatedTowardZero)
{
    for (const std::int64_t a : interesting())
    {
        for (const std::int64_t b : interesting())
        {
            if (b == 0) continue;
            ASSERT_EQ(DtArithmetic::divide(a, b), wrapped64(Int128{a} / b)) << a << " " << b;
            ASSERT_EQ(DtArithmetic::remainder(a, b), wrapped64(Int128{a} % b)) << a << " " << b;
        }
    }
    EXPECT_EQ(DtArithmetic::divide(7, -2), -3);
    EXPECT_EQ(DtArithmetic::divide(-7, 2), -3);
    EXPECT_EQ(DtArithmetic::remainder(7, -2), 1);
    EXPECT_EQ(DtArithmetic::remainder(-7, 2), -1);
}

TEST(DtArithmetic, TheOneQuotientThatDoesNotFitWraps)
{
    EXPECT_EQ(DtArithmetic::divide(LOWEST, -1), LOWEST);
    EXPECT_EQ(DtArithmetic::remainder(LOWEST, -1), 0);
}

TEST(DtArithmetic, ProductsOf32BitsAreThoseModulo2To32)
{
    EXPECT_EQ(DtArithmetic::multiply32(65536, 65536), 0);
    EXPECT_EQ(DtArithmetic::multiply32(65536, 32768), LOWEST32);
    EXPECT_EQ(DtArithmetic::multiply32(50000, 50001), -1794917296);
    EXPECT_EQ(DtArithmetic::multiply32(LOWEST32, -1), LOWEST32);
    EXPECT_EQ(DtArithmetic::multiply32(HIGHEST32, HIGHEST32), 1);
    TimeRandom random(612);
    for (int i = 0; i < 100000; ++i)
    {
        const std::int32_t a = random.number32();
        const std::int32_t b = random.number32();
        ASSERT_EQ(DtArithmetic::multiply32(a, b), wrapped32(Int128{a} * b)) << a << " " << b;
    }
}

TEST(DtArithmetic, RoundsToWholeNumbers)
{
    const struct
    {
        double _value;
        std::int64_t _truncated;
        std::int64_t _floor;
        std::int64_t _ceil;
    } cases[] = {
        {0.0, 0, 0, 0},
        {-0.0, 0, 0, 0},
        {0.5, 0, 0, 1},
        {-0.5, 0, -1, 0},
        {5e-324, 0, 0, 1},
        {-5e-324, 0, -1, 0},
        {1.0, 1, 1, 1},
        {-1.0, -1, -1, -1},
        {2.999, 2, 2, 3},
        {-2.999, -2, -3, -2},
        {4503599627370495.5, 4503599627370495, 4503599627370495, 4503599627370496},
        {-4503599627370495.5, -4503599627370495, -4503599627370496, -4503599627370495},
        {9007199254740994.0, 9007199254740994, 9007199254740994, 9007199254740994},
        {-9007199254740994.0, -9007199254740994, -9007199254740994, -9007199254740994},
        {9223372036854774784.0, 9223372036854774784, 9223372036854774784, 9223372036854774784},
        {9223372036854775808.0, LOWEST, LOWEST, LOWEST},
        {-9223372036854775808.0, LOWEST, LOWEST, LOWEST},
        {-9223372036854777856.0, LOWEST, LOWEST, LOWEST},
        {1e300, LOWEST, LOWEST, LOWEST},
        {INF, LOWEST, LOWEST, LOWEST},
        {-INF, LOWEST, LOWEST, LOWEST},
        {NOT_A_NUMBER, LOWEST, LOWEST, LOWEST},
    };
    for (const auto& row : cases)
    {
        EXPECT_EQ(DtArithmetic::truncate(row._value), row._truncated) << row._value;
        EXPECT_EQ(DtArithmetic::floor(row._value), row._floor) << row._value;
        EXPECT_EQ(DtArithmetic::ceil(row._value), row._ceil) << row._value;
    }
}

TEST(DtArithmetic, RoundsAsTheStandardLibraryWhereTheResultFits)
{
    TimeRandom random(613);
    for (int i = 0; i < 100000; ++i)
    {
        const double value = std::ldexp(static_cast<double>(random.number64()),
                                        -static_cast<int>(random.bits() % 64));
        if (!(value > -9.2e18 && value < 9.2e18)) continue;
        ASSERT_EQ(static_cast<double>(DtArithmetic::truncate(value)), std::trunc(value)) << value;
        ASSERT_EQ(static_cast<double>(DtArithmetic::floor(value)), std::floor(value)) << value;
        ASSERT_EQ(static_cast<double>(DtArithmetic::ceil(value)), std::ceil(value)) << value;
    }
}

static_assert(DtArithmetic::add(HIGHEST, 1) == LOWEST);
static_assert(DtArithmetic::subtract(LOWEST, 1) == HIGHEST);
static_assert(DtArithmetic::multiply(HIGHEST, 2) == -2);
static_assert(DtArithmetic::divide(LOWEST, -1) == LOWEST);
static_assert(DtArithmetic::remainder(-7, 2) == -1);
static_assert(DtArithmetic::multiply32(65536, 65536) == 0);
static_assert(DtArithmetic::truncate(-2.5) == -2);
static_assert(DtArithmetic::floor(-2.5) == -3 && DtArithmetic::ceil(2.5) == 3);
static_assert(noexcept(DtArithmetic::add(1, 2)) && noexcept(DtArithmetic::divide(1, 2)));
static_assert(noexcept(DtArithmetic::floor(1.0)) && noexcept(DtArithmetic::ceil(1.0)));

} // namespace

#include "base/truncateTo.h"

#include <bit>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace
{

using Zu::truncateTo;

template <class T> constexpr T LOWEST = std::numeric_limits<T>::min();
template <class T> constexpr T HIGHEST = std::numeric_limits<T>::max();

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

TEST(TruncateTo, Int64FromDouble)
{
    const struct
    {
        double _value;
        std::int64_t _expected;
    } cases[] = {
        {0.0, 0},
        {-0.0, 0},
        {0.9999999999999999, 0},
        {-0.9999999999999999, 0},
        {1.0, 1},
        {-1.5, -1},
        {2.5, 2},
        {-2.5, -2},
        {5e-324, 0},
        {-5e-324, 0},
        {4503599627370495.5, 4503599627370495},
        {-4503599627370495.5, -4503599627370495},
        {9007199254740992.0, 9007199254740992},
        {9223372036854774784.0, 9223372036854774784},
        {9223372036854775808.0, LOWEST<std::int64_t>},
        {-9223372036854774784.0, -9223372036854774784},
        {-9223372036854775808.0, LOWEST<std::int64_t>},
        {-9223372036854777856.0, LOWEST<std::int64_t>},
        {1e19, LOWEST<std::int64_t>},
        {-1e300, LOWEST<std::int64_t>},
        {INF, LOWEST<std::int64_t>},
        {-INF, LOWEST<std::int64_t>},
        {NOT_A_NUMBER, LOWEST<std::int64_t>},
        {-NOT_A_NUMBER, LOWEST<std::int64_t>},
    };
    for (const auto& row : cases)
        EXPECT_EQ(truncateTo<std::int64_t>(row._value), row._expected) << row._value;
}

TEST(TruncateTo, Int32FromDoubleHasFractionsUpToTheBounds)
{
    const struct
    {
        double _value;
        std::int32_t _expected;
    } cases[] = {
        {2147483646.9, 2147483646},
        {2147483647.0, 2147483647},
        {2147483647.9999998, 2147483647},
        {2147483648.0, LOWEST<std::int32_t>},
        {4294967297.0, LOWEST<std::int32_t>},
        {-2147483647.5, -2147483647},
        {-2147483648.0, LOWEST<std::int32_t>},
        {-2147483648.5, LOWEST<std::int32_t>},
        {-2147483649.0, LOWEST<std::int32_t>},
        {-4294967295.0, LOWEST<std::int32_t>},
        {INF, LOWEST<std::int32_t>},
        {NOT_A_NUMBER, LOWEST<std::int32_t>},
    };
    for (const auto& row : cases)
        EXPECT_EQ(truncateTo<std::int32_t>(row._value), row._expected) << row._value;
}

TEST(TruncateTo, FromFloat)
{
    EXPECT_EQ(truncateTo<std::int32_t>(-1.75F), -1);
    EXPECT_EQ(truncateTo<std::int32_t>(2147483520.0F), 2147483520);
    EXPECT_EQ(truncateTo<std::int32_t>(2147483648.0F), LOWEST<std::int32_t>);
    EXPECT_EQ(truncateTo<std::int32_t>(-2147483520.0F), -2147483520);
    EXPECT_EQ(truncateTo<std::int32_t>(-2147483648.0F), LOWEST<std::int32_t>);
    EXPECT_EQ(truncateTo<std::int64_t>(9223371487098961920.0F), 9223371487098961920);
    EXPECT_EQ(truncateTo<std::int64_t>(9223372036854775808.0F), LOWEST<std::int64_t>);
    EXPECT_EQ(truncateTo<std::int64_t>(-9223371487098961920.0F), -9223371487098961920);
    EXPECT_EQ(truncateTo<std::int64_t>(std::numeric_limits<float>::max()), LOWEST<std::int64_t>);
    EXPECT_EQ(truncateTo<std::int64_t>(std::numeric_limits<float>::infinity()),
              LOWEST<std::int64_t>);
    EXPECT_EQ(truncateTo<std::int64_t>(std::numeric_limits<float>::quiet_NaN()),
              LOWEST<std::int64_t>);
}

template <class Integer, class Float> struct Pair
{
    using To = Integer;
    using From = Float;
};

template <class T> class TruncateToOf : public testing::Test
{
};

using Pairs = testing::Types<
    Pair<std::int8_t, float>, Pair<std::int8_t, double>, Pair<std::int8_t, long double>,
    Pair<std::int16_t, float>, Pair<std::int16_t, double>, Pair<std::int16_t, long double>,
    Pair<std::int32_t, float>, Pair<std::int32_t, double>, Pair<std::int32_t, long double>,
    Pair<std::int64_t, float>, Pair<std::int64_t, double>, Pair<std::int64_t, long double>>;
TYPED_TEST_SUITE(TruncateToOf, Pairs, );

// The result of std::trunc(), if the integer type can represent it.
template <class Integer, class Float> Integer expected(Float value)
{
    const Float whole = std::trunc(value);
    const Float bound = std::ldexp(Float{1}, std::numeric_limits<Integer>::digits);
    const bool fits = whole >= -bound && whole < bound;
    return fits ? static_cast<Integer>(whole) : LOWEST<Integer>;
}

TYPED_TEST(TruncateToOf, TheBoundsAndTheirNeighbours)
{
    using To = typename TypeParam::To;
    using From = typename TypeParam::From;
    const From infinite = std::numeric_limits<From>::infinity();
    const From bound = std::ldexp(From{1}, std::numeric_limits<To>::digits);
    for (const From base : {-bound - 1, -bound, -bound + 1, From{-1}, From{0}, From{1}, bound - 1,
                            bound, bound + 1, infinite, -infinite})
    {
        for (const From value : {base, std::nextafter(base, infinite),
                                 std::nextafter(base, -infinite), base + From{0.5}})
            EXPECT_EQ(+truncateTo<To>(value), +expected<To>(value)) << value;
    }
    EXPECT_EQ(truncateTo<To>(std::numeric_limits<From>::quiet_NaN()), LOWEST<To>);
    EXPECT_EQ(truncateTo<To>(std::numeric_limits<From>::max()), LOWEST<To>);
    EXPECT_EQ(truncateTo<To>(std::numeric_limits<From>::lowest()), LOWEST<To>);
    EXPECT_EQ(truncateTo<To>(std::numeric_limits<From>::denorm_min()), 0);
}

TYPED_TEST(TruncateToOf, RandomValuesOfAllMagnitudes)
{
    using To = typename TypeParam::To;
    using From = typename TypeParam::From;
    std::mt19937_64 random(6);
    for (int i = 0; i < 20000; ++i)
    {
        const auto mantissa = static_cast<From>(static_cast<std::int64_t>(random()));
        const From value = std::ldexp(mantissa, static_cast<int>(random() % 80) - 72);
        ASSERT_EQ(+truncateTo<To>(value), +expected<To>(value)) << value;
    }
}

TEST(TruncateTo, AnyBitsOfADouble)
{
    std::mt19937_64 random(7);
    for (int i = 0; i < 50000; ++i)
    {
        const auto value = std::bit_cast<double>(std::uint64_t{random()});
        ASSERT_EQ(truncateTo<std::int64_t>(value), expected<std::int64_t>(value)) << value;
        ASSERT_EQ(truncateTo<std::int32_t>(value), expected<std::int32_t>(value)) << value;
    }
}

TEST(TruncateTo, AgreesWithDurationCastWhereThatIsDefined)
{
    using Seconds = std::chrono::duration<double>;
    using WholeSeconds = std::chrono::duration<std::int64_t>;
    std::mt19937_64 random(8);
    for (int i = 0; i < 20000; ++i)
    {
        const auto mantissa = static_cast<double>(static_cast<std::int64_t>(random()) / 2);
        const double value = std::ldexp(mantissa, -static_cast<int>(random() % 70));
        ASSERT_EQ(truncateTo<std::int64_t>(value),
                  std::chrono::duration_cast<WholeSeconds>(Seconds(value)).count())
            << value;
    }
}

static_assert(truncateTo<std::int64_t>(-2.5) == -2);
static_assert(truncateTo<std::int32_t>(1e10) == LOWEST<std::int32_t>);
static_assert(truncateTo<std::int64_t>(NOT_A_NUMBER) == LOWEST<std::int64_t>);
static_assert(truncateTo<std::int64_t>(static_cast<double>(HIGHEST<std::int64_t>)) ==
              LOWEST<std::int64_t>);
static_assert(noexcept(truncateTo<std::int64_t>(1.0)));

} // namespace

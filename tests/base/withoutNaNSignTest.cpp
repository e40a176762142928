#include "base/withoutNaNSign.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>
#include <type_traits>

namespace
{

using Zu::withoutNaNSign;

static_assert(withoutNaNSign(1.5) == 1.5);
static_assert(withoutNaNSign(-7) == -7);
static_assert(noexcept(withoutNaNSign(0.0)));
static_assert(std::is_same_v<decltype(withoutNaNSign(1.0F)), float>);
static_assert(std::is_same_v<decltype(withoutNaNSign(1.0L)), long double>);
static_assert(std::is_same_v<decltype(withoutNaNSign('x')), char>);

template <class Float> class WithoutNaNSignTest : public testing::Test
{
};

using Floats = testing::Types<float, double, long double>;
TYPED_TEST_SUITE(WithoutNaNSignTest, Floats);

TYPED_TEST(WithoutNaNSignTest, ANaNIsOneWithoutASign)
{
    using Limits = std::numeric_limits<TypeParam>;
    for (const TypeParam nan : {Limits::quiet_NaN(), Limits::signaling_NaN()})
    {
        for (const TypeParam sign : {TypeParam(1), TypeParam(-1)})
        {
            const TypeParam result = withoutNaNSign(std::copysign(nan, sign));
            EXPECT_TRUE(std::isnan(result));
            EXPECT_FALSE(std::signbit(result));
            std::ostringstream os;
            os << result;
            EXPECT_EQ(os.str(), "nan");
        }
    }
}

TYPED_TEST(WithoutNaNSignTest, TheNaNsOfArithmeticHaveNoSign)
{
    // volatile: at run time the processor chooses the sign, and the compiler may choose another.
    volatile TypeParam infinite = std::numeric_limits<TypeParam>::infinity();
    volatile TypeParam negative = -1;
    const TypeParam difference = infinite - infinite;
    const TypeParam root = std::sqrt(negative);
    for (const TypeParam nan : {difference, root, -difference, -root})
    {
        EXPECT_TRUE(std::isnan(withoutNaNSign(nan)));
        EXPECT_FALSE(std::signbit(withoutNaNSign(nan)));
    }
}

TYPED_TEST(WithoutNaNSignTest, OtherNumbersStayAsTheyAre)
{
    using Limits = std::numeric_limits<TypeParam>;
    for (const TypeParam value : {TypeParam(0), TypeParam(1.5), Limits::min(), Limits::max(),
                                  Limits::denorm_min(), Limits::epsilon(), Limits::infinity()})
    {
        EXPECT_EQ(withoutNaNSign(value), value);
        EXPECT_FALSE(std::signbit(withoutNaNSign(value)));
        EXPECT_EQ(withoutNaNSign(-value), -value);
        EXPECT_TRUE(std::signbit(withoutNaNSign(-value)));
    }
}

TEST(WithoutNaNSign, EverySignedNaNOfAnyPayloadLosesItsSign)
{
    for (const std::uint64_t payload : {0x1U, 0xFFFU, 0x80000000U})
    {
        const auto nan = std::bit_cast<double>(0xFFF8000000000000U | payload);
        const double result = withoutNaNSign(nan);
        EXPECT_TRUE(std::isnan(result));
        EXPECT_FALSE(std::signbit(result));
    }
}

TEST(WithoutNaNSign, WhatIsNoFloatingPointNumberStaysAsItIs)
{
    EXPECT_EQ(withoutNaNSign(std::numeric_limits<int>::min()), std::numeric_limits<int>::min());
    EXPECT_EQ(withoutNaNSign(std::numeric_limits<std::uint64_t>::max()),
              std::numeric_limits<std::uint64_t>::max());
    EXPECT_TRUE(withoutNaNSign(true));
    EXPECT_EQ(withoutNaNSign(std::string("-nan")), "-nan");
    const char* const text = "-nan";
    EXPECT_EQ(withoutNaNSign(text), text);
}

} // namespace

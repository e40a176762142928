#include "base/ieeeDivide.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace
{

using Zu::ieeeDivide;

template <class T> class IeeeDivide : public testing::Test
{
public:
    static constexpr T INF = std::numeric_limits<T>::infinity();
    static constexpr T NOT_A_NUMBER = std::numeric_limits<T>::quiet_NaN();
    static constexpr T LEAST = std::numeric_limits<T>::denorm_min();
    static constexpr T GREATEST = std::numeric_limits<T>::max();

    // Both of one kind, and both of one sign unless they are NaNs.
    static void expectSame(T a, T b, T expected)
    {
        const T quotient = ieeeDivide(a, b);
        if (std::isnan(expected))
        {
            EXPECT_TRUE(std::isnan(quotient)) << a << " / " << b;
            return;
        }
        EXPECT_EQ(quotient, expected) << a << " / " << b;
        EXPECT_EQ(std::signbit(quotient), std::signbit(expected)) << a << " / " << b;
    }
};

using Types = testing::Types<float, double, long double>;
TYPED_TEST_SUITE(IeeeDivide, Types, );

TYPED_TEST(IeeeDivide, ByZeroIsAnInfinityWithTheSignOfTheQuotient)
{
    using Checks = IeeeDivide<TypeParam>;
    const TypeParam zero = 0;
    for (const TypeParam a : {TypeParam(1), Checks::LEAST, Checks::GREATEST, Checks::INF})
    {
        Checks::expectSame(a, zero, Checks::INF);
        Checks::expectSame(a, -zero, -Checks::INF);
        Checks::expectSame(-a, zero, -Checks::INF);
        Checks::expectSame(-a, -zero, Checks::INF);
    }
}

TYPED_TEST(IeeeDivide, ZeroOrNoNumberByZeroIsNoNumber)
{
    using Checks = IeeeDivide<TypeParam>;
    const TypeParam zero = 0;
    for (const TypeParam a : {zero, -zero, Checks::NOT_A_NUMBER, -Checks::NOT_A_NUMBER})
    {
        Checks::expectSame(a, zero, Checks::NOT_A_NUMBER);
        Checks::expectSame(a, -zero, Checks::NOT_A_NUMBER);
    }
}

TYPED_TEST(IeeeDivide, ByAnyOtherDivisorIsThePlainQuotient)
{
    using Checks = IeeeDivide<TypeParam>;
    const TypeParam zero = 0;
    const struct
    {
        TypeParam _a;
        TypeParam _b;
        TypeParam _quotient;
    } cases[] = {
        {1, 4, TypeParam(0.25)},
        {-3, 2, TypeParam(-1.5)},
        {zero, 5, zero},
        {-zero, 5, -zero},
        {zero, -5, -zero},
        {1, Checks::INF, zero},
        {1, -Checks::INF, -zero},
        {Checks::INF, 2, Checks::INF},
        {Checks::INF, -2, -Checks::INF},
        {Checks::INF, Checks::INF, Checks::NOT_A_NUMBER},
        {Checks::NOT_A_NUMBER, 1, Checks::NOT_A_NUMBER},
        {1, Checks::NOT_A_NUMBER, Checks::NOT_A_NUMBER},
        {Checks::LEAST, Checks::LEAST, 1},
        {Checks::GREATEST, TypeParam(0.5), Checks::INF},
        {1, Checks::LEAST, Checks::INF},
        {Checks::LEAST, 4, zero},
    };
    for (const auto& row : cases) Checks::expectSame(row._a, row._b, row._quotient);
}

TYPED_TEST(IeeeDivide, UndoesAProductOfWholeNumbers)
{
    std::mt19937 random(5);
    for (int i = 0; i < 10000; ++i)
    {
        const auto a = static_cast<TypeParam>(static_cast<int>(random() % 4096) - 2048);
        const auto b = static_cast<TypeParam>(static_cast<int>(random() % 2048) + 1);
        ASSERT_EQ(ieeeDivide(a * b, b), a);
        ASSERT_EQ(ieeeDivide(a * b, -b), -a);
    }
}

static_assert(ieeeDivide(1.0, 4.0) == 0.25);
// Not every compiler accepts a division by zero as a constant.
TEST(ieeeDivide, DividesByZero)
{
    EXPECT_EQ(ieeeDivide(1.0, 0.0), std::numeric_limits<double>::infinity());
    EXPECT_EQ(ieeeDivide(1.0F, -0.0F), -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(ieeeDivide(0.0, 0.0)));
}

static_assert(noexcept(ieeeDivide(1.0, 2.0)));

} // namespace

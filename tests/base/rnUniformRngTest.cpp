#include "base/rnUniformRng.h"

#include "support/sampleChecks.h"

#include <gtest/gtest.h>
#include <limits>

namespace
{

using support::sameBits;
using Zu::rnUniformPdf;
using Zu::RnUniformRng;

template <class T> class RnUniformRngTest : public testing::Test
{
};
using Floats = testing::Types<float, double>;
TYPED_TEST_SUITE(RnUniformRngTest, Floats);

template <class T> constexpr T NAN_VALUE = std::numeric_limits<T>::quiet_NaN();
template <class T> constexpr T BELOW_ONE = T(1) - std::numeric_limits<T>::epsilon() / 2;

template <class T> constexpr bool densityIsKnownToTheCompiler()
{
    const T inside[] = {T(0), T(0.5), BELOW_ONE<T>};
    const T outside[] = {T(0), T(1), T(0)};
    return rnUniformPdf(T(0)) == T(1) && rnUniformPdf(T(1)) == T(0) &&
           rnUniformPdf(NAN_VALUE<T>) == T(0) && rnUniformPdf(inside, 3) == T(1) &&
           rnUniformPdf(outside, 3) == T(0) && rnUniformPdf(outside, 1) == T(1);
}
static_assert(densityIsKnownToTheCompiler<float>());
static_assert(densityIsKnownToTheCompiler<double>());

TYPED_TEST(RnUniformRngTest, TheDensityIsOneFromZeroToBelowOne)
{
    using Limits = std::numeric_limits<TypeParam>;
    for (const TypeParam x :
         {TypeParam(0), -TypeParam(0), Limits::denorm_min(), TypeParam(0.5), BELOW_ONE<TypeParam>})
        EXPECT_TRUE(sameBits(rnUniformPdf(x), TypeParam(1))) << x;
}

TYPED_TEST(RnUniformRngTest, TheDensityIsZeroElsewhereAndForANaN)
{
    using Limits = std::numeric_limits<TypeParam>;
    for (const TypeParam x : {TypeParam(1), TypeParam(1) + Limits::epsilon(), Limits::max(),
                              Limits::infinity(), -Limits::denorm_min(), TypeParam(-1),
                              -Limits::infinity(), NAN_VALUE<TypeParam>, -NAN_VALUE<TypeParam>})
        EXPECT_TRUE(sameBits(rnUniformPdf(x), TypeParam(0))) << x;
}

TYPED_TEST(RnUniformRngTest, TheJointDensityIsZeroIfAnyCoordinateIsOutside)
{
    for (const TypeParam outside : {TypeParam(1), TypeParam(-0.5), NAN_VALUE<TypeParam>})
        for (int n = 1; n <= 5; ++n)
            for (int at = 0; at < 5; ++at)
            {
                TypeParam values[5] = {TypeParam(0), TypeParam(0.25), TypeParam(0.5),
                                       TypeParam(0.75), BELOW_ONE<TypeParam>};
                values[at] = outside;
                // Those behind the number are ignored.
                const TypeParam expected = at < n ? TypeParam(0) : TypeParam(1);
                EXPECT_TRUE(sameBits(rnUniformPdf(values, n), expected)) << n << " " << at;
            }
}

TYPED_TEST(RnUniformRngTest, TheJointDensityOfNoCoordinateIsOne)
{
    EXPECT_EQ(rnUniformPdf(static_cast<const TypeParam*>(nullptr), 0), TypeParam(1));
}

// Implements nothing itself.
template <class T> class Source final : public RnUniformRng<T>
{
public:
    T operator()() override
    {
        return T(0.5);
    }
    void getSample(T& value) override
    {
        value = T(0.5);
    }
    void getSequence(unsigned int, T*) override {}
    void restart() override {}
    const char* getName() const override
    {
        return "source of the test";
    }
};

TYPED_TEST(RnUniformRngTest, ADerivedSourceIsUniformOnTheUnitInterval)
{
    support::expectUniformOnUnitInterval<TypeParam>(Source<TypeParam>());
}

} // namespace

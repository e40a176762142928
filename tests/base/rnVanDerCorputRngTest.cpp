#include "base/rnVanDerCorputRng.h"

#include "support/radicalInverse.h"
#include "support/sampleChecks.h"
#include "support/skipChecks.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <utility>
#include <vector>

namespace
{

using support::BASES;
using support::drawsOf;
using support::radicalInverse;
using support::RadicalInverses;
using support::sameBits;
using support::sequenceOf;
using support::streamIs;
using support::valuesOf;
using Zu::RnVanDerCorputRng;

// Numbers at which digits carry far, precision ends, or the count wraps.
std::vector<std::uint32_t> tellingNumbers(std::uint32_t base)
{
    std::vector<std::uint32_t> numbers = {0,          255,       65535, 1 << 24, (1 << 25) - 1,
                                          2147483648, 4294967295};
    for (std::uint64_t power = base; power <= 4294967295; power *= base)
    {
        numbers.push_back(static_cast<std::uint32_t>(power));
        numbers.push_back(static_cast<std::uint32_t>(power * (4294967295 / power)));
    }
    return numbers;
}

template <class T> class RnVanDerCorputRngTest : public testing::Test
{
};
using Floats = testing::Types<float, double>;
TYPED_TEST_SUITE(RnVanDerCorputRngTest, Floats);

TYPED_TEST(RnVanDerCorputRngTest, BeginsWithAHalfInBaseTwo)
{
    RnVanDerCorputRng<TypeParam> rng;
    EXPECT_TRUE(sameBits(drawsOf(rng, 5),
                         std::vector<TypeParam>{TypeParam(0.5), TypeParam(0.25), TypeParam(0.75),
                                                TypeParam(0.125), TypeParam(0.625)}));
}

TYPED_TEST(RnVanDerCorputRngTest, BeginsWithAThirdInBaseThree)
{
    RnVanDerCorputRng<TypeParam> rng(3);
    const TypeParam third = TypeParam(1) / TypeParam(3);
    EXPECT_TRUE(sameBits(drawsOf(rng, 3),
                         std::vector<TypeParam>{third, TypeParam(2) * third, third * third}));
}

TYPED_TEST(RnVanDerCorputRngTest, SequencesOfAllLengthsAreRepeatedDraws)
{
    std::mt19937 random(731);
    for (const std::uint32_t base : BASES)
    {
        // All lengths for the bases that people use, the longest left out for the others.
        const bool usual = base <= 11 || base == 97 || base == 509 || base == 512 || base == 513 ||
                           base == 65537 || base == 4294967295;
        for (const unsigned int length : support::sequenceLengths())
        {
            if (!usual && length > 520) continue;
            // Small numbers too, where long carries are more frequent.
            const auto number = static_cast<std::uint32_t>(random() >> random() % 32);
            RnVanDerCorputRng<TypeParam> rng(base);
            rng.restart(number);
            RadicalInverses<TypeParam> reference{base, number};
            ASSERT_TRUE(streamIs<TypeParam>(rng, reference, length)) << base << " " << number;
        }
    }
}

TYPED_TEST(RnVanDerCorputRngTest, FreshSequencesInEveryBaseAreRepeatedDraws)
{
    for (const std::uint32_t base : BASES)
        for (const unsigned int length : {0, 1, 2, 3, 255, 256, 257, 511, 512, 513, 2000})
        {
            RnVanDerCorputRng<TypeParam> rng(base);
            RadicalInverses<TypeParam> reference{base};
            ASSERT_TRUE(streamIs<TypeParam>(rng, reference, length)) << base;
        }
}

TYPED_TEST(RnVanDerCorputRngTest, SequencesPassEveryTellingNumber)
{
    for (const std::uint32_t base : BASES)
        for (const std::uint32_t number : tellingNumbers(base))
            for (const std::uint32_t before : {1U, 2U, 8U, 65U, 300U})
            {
                RnVanDerCorputRng<TypeParam> rng(base);
                rng.restart(number - before);
                RadicalInverses<TypeParam> reference{base, number - before};
                ASSERT_TRUE(streamIs<TypeParam>(rng, reference, before + 37))
                    << base << " " << number << " " << before;
            }
}

TYPED_TEST(RnVanDerCorputRngTest, SingleDrawsPassEveryTellingNumber)
{
    for (const std::uint32_t base : BASES)
        for (const std::uint32_t number : tellingNumbers(base))
        {
            RnVanDerCorputRng<TypeParam> rng(base);
            rng.restart(number - 20);
            RadicalInverses<TypeParam> reference{base, number - 20};
            ASSERT_TRUE(sameBits(drawsOf(rng, 40), valuesOf<TypeParam>(reference, 40)))
                << base << " " << number;
        }
}

TYPED_TEST(RnVanDerCorputRngTest, PlacesAllOverTheNumbersAreReachedAtOnce)
{
    std::mt19937 random(732);
    for (const std::uint32_t base : BASES)
    {
        RnVanDerCorputRng<TypeParam> rng(base);
        for (int i = 0; i < 300; ++i)
        {
            const auto number = static_cast<std::uint32_t>(random() >> random() % 32);
            rng.restart(number);
            ASSERT_TRUE(sameBits(rng(), radicalInverse<TypeParam>(base, number + 1)))
                << base << " " << number;
        }
    }
}

TYPED_TEST(RnVanDerCorputRngTest, TheNumberWrapsToThePointZero)
{
    for (const std::uint32_t base : BASES)
    {
        RnVanDerCorputRng<TypeParam> rng(base);
        rng.restart(4294967295);
        EXPECT_TRUE(sameBits(rng(), TypeParam(0))) << base;
        EXPECT_TRUE(sameBits(rng(), radicalInverse<TypeParam>(base, 1))) << base;
        rng.restart(4294967294);
        const std::vector<TypeParam> values = sequenceOf(rng, 3);
        EXPECT_TRUE(sameBits(values[0], radicalInverse<TypeParam>(base, 4294967295))) << base;
        EXPECT_TRUE(sameBits(values[1], TypeParam(0))) << base;
        EXPECT_TRUE(sameBits(values[2], radicalInverse<TypeParam>(base, 1))) << base;
    }
}

struct FirstOne
{
    std::uint32_t _base;
    int _digits;
    std::uint32_t _number;
};

constexpr FirstOne FIRST_ONES[] = {
    {2, 25, 33554431}, {3, 16, 43046720}, {5, 11, 48828124}, {7, 9, 40353606}};

TEST(RnVanDerCorputRng, FloatsReachOneOnceTheNumberHasEnoughTopDigits)
{
    for (const FirstOne& row : FIRST_ONES)
    {
        std::uint64_t power = 1;
        for (int i = 0; i < row._digits; ++i) power *= row._base;
        ASSERT_EQ(power - 1, row._number);

        RnVanDerCorputRng<float> rng(row._base);
        rng.restart(row._number - 1);
        EXPECT_TRUE(sameBits(rng(), 1.0F)) << row._base;
        rng.restart(row._number - 1);
        EXPECT_TRUE(sameBits(sequenceOf(rng, 1)[0], 1.0F)) << row._base;
        rng.restart(row._number - 301);
        EXPECT_TRUE(sameBits(sequenceOf(rng, 600)[300], 1.0F)) << row._base;
        EXPECT_EQ(rng.getPdf(1.0F), 0.0F);

        // One top digit less.
        rng.restart(static_cast<std::uint32_t>(power / row._base - 2));
        EXPECT_LT(rng(), 1.0F) << row._base;
    }
}

TEST(RnVanDerCorputRng, DoublesOfThoseNumbersAreBelowOne)
{
    for (const FirstOne& row : FIRST_ONES)
    {
        RnVanDerCorputRng<double> rng(row._base);
        rng.restart(row._number - 1);
        const double value = rng();
        EXPECT_LT(value, 1.0) << row._base;
        EXPECT_TRUE(sameBits(value, radicalInverse<double>(row._base, row._number)));
    }
}

TEST(RnVanDerCorputRng, FloatsOfLargeNumbersInBaseTwoAreTheRoundedSums)
{
    for (const std::uint32_t number : {1U << 24, (1U << 25) - 1, 1U << 25, 1U << 31, 4294967295U})
        for (const std::uint32_t before : {1U, 7U, 16U, 130U, 600U})
        {
            RnVanDerCorputRng<float> rng;
            rng.restart(number - before);
            RadicalInverses<float> reference{2, number - before};
            EXPECT_TRUE(streamIs<float>(rng, reference, 2 * before)) << number << " " << before;
        }
}

// In base 2 a double holds the mirrored number exactly.
TEST(RnVanDerCorputRng, DoublesInBaseTwoAreTheMirroredBits)
{
    std::mt19937 random(733);
    RnVanDerCorputRng<double> rng;
    for (int i = 0; i < 2000; ++i)
    {
        const auto number = static_cast<std::uint32_t>(random());
        std::uint32_t mirrored = 0;
        for (int bit = 0; bit < 32; ++bit) mirrored |= (number >> bit & 1U) << (31 - bit);
        rng.restart(number - 1);
        ASSERT_EQ(rng(), mirrored / 4294967296.0) << number;
    }
}

TYPED_TEST(RnVanDerCorputRngTest, ARestartGoesToTheFirstPoint)
{
    for (const std::uint32_t base : BASES)
    {
        RnVanDerCorputRng<TypeParam> rng(base);
        RadicalInverses<TypeParam> reference{base};
        const std::vector<TypeParam> expected = valuesOf<TypeParam>(reference, 50);
        EXPECT_TRUE(sameBits(drawsOf(rng, 50), expected)) << base;
        rng.restart();
        EXPECT_TRUE(sameBits(sequenceOf(rng, 50), expected)) << base;
        rng.restart(123456);
        rng.restart();
        EXPECT_TRUE(sameBits(drawsOf(rng, 50), expected)) << base;
        rng.restart(0);
        EXPECT_TRUE(sameBits(drawsOf(rng, 50), expected)) << base;
    }
}

TYPED_TEST(RnVanDerCorputRngTest, ANewBaseLeavesTheNumber)
{
    RnVanDerCorputRng<TypeParam> rng;
    EXPECT_EQ(rng.getBase(), 2U);
    std::uint32_t number = 1000;
    rng.restart(number);
    for (const std::uint32_t base : BASES)
    {
        rng.setBase(base);
        EXPECT_EQ(rng.getBase(), base);
        RadicalInverses<TypeParam> reference{base, number};
        EXPECT_TRUE(sameBits(drawsOf(rng, 5), valuesOf<TypeParam>(reference, 5))) << base;
        rng.setBase(base);
        EXPECT_TRUE(sameBits(sequenceOf(rng, 300), valuesOf<TypeParam>(reference, 300))) << base;
        number = reference._number;
    }
    rng.restart();
    EXPECT_EQ(rng.getBase(), 4294967295U);
    EXPECT_TRUE(sameBits(rng(), radicalInverse<TypeParam>(4294967295, 1)));
}

// A base that no draw has used is not an error, and the point 0 has no digits.
TYPED_TEST(RnVanDerCorputRngTest, ABaseIsNotLookedAtBeforeThereIsADigit)
{
    for (const unsigned int base : {0U, 1U})
    {
        RnVanDerCorputRng<TypeParam> rng(base);
        EXPECT_EQ(rng.getBase(), base);
        rng.getSequence(0, nullptr);
        rng.restart(4294967295);
        EXPECT_TRUE(sameBits(rng(), TypeParam(0))) << base;
        rng.restart(4294967295);
        EXPECT_TRUE(sameBits(sequenceOf(rng, 1)[0], TypeParam(0))) << base;
        rng.setBase(5);
        EXPECT_TRUE(sameBits(rng(), radicalInverse<TypeParam>(5, 1))) << base;
    }
}

TYPED_TEST(RnVanDerCorputRngTest, ASequenceOfNoneAdvancesNothing)
{
    RnVanDerCorputRng<TypeParam> rng(3);
    RadicalInverses<TypeParam> reference{3};
    for (int i = 0; i < 20; ++i)
    {
        rng.getSequence(0, nullptr);
        support::GuardedArray<TypeParam> array(0);
        rng.getSequence(0, array.data());
        EXPECT_TRUE(array.isUntouched());
        EXPECT_TRUE(sameBits(rng(), reference()));
    }
}

TYPED_TEST(RnVanDerCorputRngTest, ScaledDrawsAreTheDrawTimesTheRange)
{
    RnVanDerCorputRng<TypeParam> rng(7);
    RadicalInverses<TypeParam> reference{7};
    std::mt19937 random(734);
    for (int i = 0; i < 300; ++i)
    {
        const TypeParam min = static_cast<TypeParam>(random()) / TypeParam(1000003) - 2000;
        const TypeParam max = static_cast<TypeParam>(random()) / TypeParam(999983) - 2000;
        const TypeParam width = max - min;
        const TypeParam product = reference() * width;
        EXPECT_TRUE(sameBits(rng.evalRange(min, max), product + min));
        EXPECT_TRUE(sameBits(rng.evalScaled(max), reference() * max));
    }
}

TYPED_TEST(RnVanDerCorputRngTest, ACopyGoesOnIndependently)
{
    RnVanDerCorputRng<TypeParam> rng(11);
    rng.restart(12345);
    RnVanDerCorputRng<TypeParam> copy(rng);
    RnVanDerCorputRng<TypeParam> assigned;
    assigned = rng;
    RadicalInverses<TypeParam> reference{11, 12345};
    const std::vector<TypeParam> expected = valuesOf<TypeParam>(reference, 100);
    EXPECT_TRUE(sameBits(drawsOf(rng, 100), expected));
    EXPECT_TRUE(sameBits(sequenceOf(copy, 100), expected));
    EXPECT_TRUE(sameBits(drawsOf(assigned, 100), expected));
    copy.setBase(3);
    EXPECT_EQ(rng.getBase(), 11U);
}

TYPED_TEST(RnVanDerCorputRngTest, IsUniformOnTheUnitInterval)
{
    support::expectUniformOnUnitInterval<TypeParam>(RnVanDerCorputRng<TypeParam>());
}

TYPED_TEST(RnVanDerCorputRngTest, HasItsName)
{
    EXPECT_STREQ(RnVanDerCorputRng<TypeParam>().getName(), "Van der Corput");
}

TYPED_TEST(RnVanDerCorputRngTest, WorksThroughTheInterface)
{
    RnVanDerCorputRng<TypeParam> object(5);
    Zu::RnRng<TypeParam>& rng = object;
    for (int i = 0; i < 2; ++i)
    {
        RadicalInverses<TypeParam> reference{5};
        EXPECT_TRUE(streamIs<TypeParam>(rng, reference, 100));
        rng.restart();
    }
    EXPECT_STREQ(rng.getName(), "Van der Corput");
}

TYPED_TEST(RnVanDerCorputRngTest, ADerivedObjectEndsThroughThisType)
{
    support::expectEndsThroughItsType<RnVanDerCorputRng<TypeParam>>();
}

TYPED_TEST(RnVanDerCorputRngTest, SkipsLeaveOutDraws)
{
    for (const unsigned int base : {2U, 3U, 10U})
    {
        RnVanDerCorputRng<TypeParam> rng(base);
        support::expectSkipLeavesOutDraws(rng, [](auto& each) { return each(); });
        rng.restart(0xffffff00U);
        support::expectSkipLeavesOutDraws(rng, [](auto& each) { return each(); });
    }
}

} // namespace

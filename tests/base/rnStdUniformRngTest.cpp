#include "base/rnStdUniformRng.h"

#include "base/rnStdRand.h"

#include "support/sampleChecks.h"

#include <bit>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <thread>
#include <vector>

namespace
{

using support::bitsOf;
using support::drawsOf;
using support::sameBits;
using support::sequenceOf;
using support::streamIs;
using support::valuesOf;
using Zu::rnStdRand;
using Zu::rnStdSeed;
using Zu::RnStdUniformRng;

template <class T> T scale();
template <> float scale<float>()
{
    return std::bit_cast<float>(std::uint32_t{0x38000100});
}
template <> double scale<double>()
{
    return std::bit_cast<double>(std::uint64_t{0x3F00002000400080});
}

// The documented stream, over 32767.
template <class T> struct Reference
{
    std::uint32_t _state;

    T operator()()
    {
        _state = _state * 214013 + 2531011;
        return T(_state >> 16 & 0x7FFF) * scale<T>();
    }
};

// The seed behind which the stream's word is this one.
unsigned int seedForFirst(std::uint32_t word)
{
    std::uint32_t inverse = 1;
    for (int i = 0; i < 5; ++i) inverse *= 2 - 214013 * inverse;
    return (word - 2531011) * inverse;
}

template <class T> class RnStdUniformRngTest : public testing::Test
{
};
using Floats = testing::Types<float, double>;
TYPED_TEST_SUITE(RnStdUniformRngTest, Floats);

TYPED_TEST(RnStdUniformRngTest, DrawsAreThoseOfTheStreamForEverySeed)
{
    for (const unsigned int seed :
         {0U, 1U, 55555U, 2147483562U, 2147483647U, 2147483648U, 4294967295U})
    {
        RnStdUniformRng<TypeParam> rng(seed);
        Reference<TypeParam> reference{seed};
        EXPECT_TRUE(sameBits(drawsOf(rng, 500), valuesOf<TypeParam>(reference, 500))) << seed;
    }
}

TYPED_TEST(RnStdUniformRngTest, SequencesOfAllLengthsAreRepeatedDraws)
{
    std::mt19937 random(721);
    for (const unsigned int length : support::sequenceLengths())
    {
        const unsigned int seed = static_cast<unsigned int>(random());
        RnStdUniformRng<TypeParam> rng(seed);
        Reference<TypeParam> reference{seed};
        const auto before = static_cast<unsigned int>(random() % 20);
        ASSERT_TRUE(sameBits(drawsOf(rng, before), valuesOf<TypeParam>(reference, before)));
        ASSERT_TRUE(streamIs<TypeParam>(rng, reference, length)) << seed << " " << before;
    }
}

TYPED_TEST(RnStdUniformRngTest, ADrawIsTheNextNumberOfTheThreadOver32767)
{
    RnStdUniformRng<TypeParam> rng;
    rnStdSeed(99);
    std::vector<TypeParam> expected;
    for (int i = 0; i < 200; ++i) expected.push_back(TypeParam(rnStdRand()) * scale<TypeParam>());
    rnStdSeed(99);
    EXPECT_TRUE(sameBits(drawsOf(rng, 200), expected));
    rnStdSeed(99);
    EXPECT_TRUE(sameBits(sequenceOf(rng, 200), expected));
}

TYPED_TEST(RnStdUniformRngTest, EveryNumberIsScaledByTheConstant)
{
    RnStdUniformRng<TypeParam> rng;
    for (std::uint32_t number = 0; number <= 32767; ++number)
    {
        rnStdSeed(seedForFirst(number << 16 | 0x1234));
        ASSERT_TRUE(sameBits(rng(), TypeParam(number) * scale<TypeParam>())) << number;
    }
}

TEST(RnStdUniformRng, TheScaleHasItsBits)
{
    rnStdSeed(seedForFirst(0x00010000));
    EXPECT_EQ(bitsOf(RnStdUniformRng<float>()()), 0x38000100U);
    rnStdSeed(seedForFirst(0x00010000));
    EXPECT_EQ(RnStdUniformRng<float>()(), 3.0518509e-05F);
    rnStdSeed(seedForFirst(0x00010000));
    EXPECT_EQ(bitsOf(RnStdUniformRng<double>()()), 0x3F00002000400080U);
    rnStdSeed(seedForFirst(0x00010000));
    EXPECT_EQ(RnStdUniformRng<double>()(), 3.051850947599719e-05);
}

TYPED_TEST(RnStdUniformRngTest, BothZeroAndOneAreReached)
{
    RnStdUniformRng<TypeParam> rng(seedForFirst(0x7FFF0000));
    EXPECT_TRUE(sameBits(rng(), TypeParam(1)));
    EXPECT_EQ(rng.getPdf(TypeParam(1)), TypeParam(0));
    rnStdSeed(seedForFirst(0x0000FFFF));
    EXPECT_TRUE(sameBits(rng(), TypeParam(0)));
}

TYPED_TEST(RnStdUniformRngTest, WithoutASeedTheStreamIsLeftAsItIs)
{
    rnStdSeed(8);
    Reference<TypeParam> reference{8};
    RnStdUniformRng<TypeParam> first;
    EXPECT_TRUE(sameBits(first(), reference()));
    RnStdUniformRng<TypeParam> second;
    EXPECT_TRUE(sameBits(second(), reference()));
}

TYPED_TEST(RnStdUniformRngTest, ARestartWithoutASeedGoesToTheSeedOne)
{
    rnStdSeed(8);
    RnStdUniformRng<TypeParam> rng;
    drawsOf(rng, 5);
    rng.restart();
    Reference<TypeParam> reference{1};
    EXPECT_TRUE(sameBits(drawsOf(rng, 100), valuesOf<TypeParam>(reference, 100)));
}

TYPED_TEST(RnStdUniformRngTest, ARestartGoesToTheSeed)
{
    RnStdUniformRng<TypeParam> rng(31415926);
    for (const unsigned int before : {0, 1, 50})
    {
        drawsOf(rng, before);
        rng.restart();
        Reference<TypeParam> reference{31415926};
        EXPECT_TRUE(sameBits(drawsOf(rng, 100), valuesOf<TypeParam>(reference, 100))) << before;
    }
}

TEST(RnStdUniformRng, AllObjectsOfAThreadDrawFromOneStream)
{
    RnStdUniformRng<double> one(5);
    RnStdUniformRng<double> other(6);
    RnStdUniformRng<float> third;
    Reference<double> reference{6};
    Reference<float> single{6};
    for (int i = 0; i < 50; ++i)
    {
        EXPECT_TRUE(sameBits(one(), reference()));
        EXPECT_TRUE(sameBits(sequenceOf(other, 2), valuesOf<double>(reference, 2)));
        single._state = reference._state;
        EXPECT_TRUE(sameBits(third(), single()));
        reference._state = single._state;
    }
    // A restart by one object affects all.
    one.restart();
    reference._state = 5;
    EXPECT_TRUE(sameBits(drawsOf(other, 20), valuesOf<double>(reference, 20)));
}

TYPED_TEST(RnStdUniformRngTest, AnotherThreadDoesNotMoveTheStream)
{
    RnStdUniformRng<TypeParam> rng(5);
    Reference<TypeParam> reference{5};
    ASSERT_TRUE(sameBits(rng(), reference()));
    std::vector<TypeParam> ofThread;
    std::thread thread(
        [&ofThread]
        {
            RnStdUniformRng<TypeParam> own(9);
            ofThread = drawsOf(own, 50);
        });
    thread.join();
    Reference<TypeParam> expected{9};
    EXPECT_TRUE(sameBits(ofThread, valuesOf<TypeParam>(expected, 50)));
    EXPECT_TRUE(sameBits(drawsOf(rng, 50), valuesOf<TypeParam>(reference, 50)));
}

TYPED_TEST(RnStdUniformRngTest, ScaledDrawsAreTheDrawTimesTheRange)
{
    RnStdUniformRng<TypeParam> rng(4711);
    Reference<TypeParam> reference{4711};
    std::mt19937 random(722);
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

TYPED_TEST(RnStdUniformRngTest, ASequenceOfNoneAdvancesNothing)
{
    RnStdUniformRng<TypeParam> rng(5);
    Reference<TypeParam> reference{5};
    for (int i = 0; i < 20; ++i)
    {
        rng.getSequence(0, nullptr);
        support::GuardedArray<TypeParam> array(0);
        rng.getSequence(0, array.data());
        EXPECT_TRUE(array.isUntouched());
        EXPECT_TRUE(sameBits(rng(), reference()));
    }
}

TYPED_TEST(RnStdUniformRngTest, ACopyHasTheSeed)
{
    RnStdUniformRng<TypeParam> rng(123);
    RnStdUniformRng<TypeParam> copy(rng);
    drawsOf(rng, 7);
    copy.restart();
    Reference<TypeParam> reference{123};
    EXPECT_TRUE(sameBits(drawsOf(rng, 20), valuesOf<TypeParam>(reference, 20)));
    EXPECT_TRUE(sameBits(drawsOf(copy, 20), valuesOf<TypeParam>(reference, 20)));
}

TYPED_TEST(RnStdUniformRngTest, IsUniformOnTheUnitInterval)
{
    support::expectUniformOnUnitInterval<TypeParam>(RnStdUniformRng<TypeParam>());
}

TYPED_TEST(RnStdUniformRngTest, HasItsName)
{
    EXPECT_STREQ(RnStdUniformRng<TypeParam>().getName(), "Std OS-specific generator");
}

TYPED_TEST(RnStdUniformRngTest, WorksThroughTheInterface)
{
    RnStdUniformRng<TypeParam> object(2);
    Zu::RnRng<TypeParam>& rng = object;
    for (int i = 0; i < 2; ++i)
    {
        Reference<TypeParam> reference{2};
        EXPECT_TRUE(streamIs<TypeParam>(rng, reference, 100));
        rng.restart();
    }
    EXPECT_STREQ(rng.getName(), "Std OS-specific generator");
}

TYPED_TEST(RnStdUniformRngTest, ADerivedObjectEndsThroughThisType)
{
    support::expectEndsThroughItsType<RnStdUniformRng<TypeParam>>();
}

} // namespace

#include "base/rnLecuyerUniformRng.h"

#include "support/sampleChecks.h"
#include "support/skipChecks.h"

#include <bit>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <type_traits>
#include <vector>

namespace
{

using support::bitsOf;
using support::drawsOf;
using support::sameBits;
using support::sequenceOf;
using support::streamIs;
using support::valuesOf;
using Zu::RnLecuyerUniformRng;

constexpr std::int32_t MODULUS0 = 2147483563;
constexpr std::int32_t MODULUS1 = 2147483399;
constexpr unsigned int START1 = 55555;

constexpr unsigned int SEEDS[] = {
    0,          1,          2,          53667,      53668,      55555,      99999,
    2147483398, 2147483399, 2147483561, 2147483562, 2147483563, 2147483564, 2147483600,
    2147483646, 2147483647, 2147483648, 2147483649, 3000000000, 4294967294, 4294967295};

template <class T> T scale();
template <> float scale<float>()
{
    return std::bit_cast<float>(std::uint32_t{0x30000000});
}
template <> double scale<double>()
{
    return std::bit_cast<double>(std::uint64_t{0x3E0000000AA00007});
}

// The join of the two streams, a sum.
template <class T> T joined(std::int32_t state0, std::int32_t state1)
{
    std::int64_t z = std::int64_t{state1} + state0 - MODULUS0;
    if (z < 1) z += MODULUS0 - 1;
    return static_cast<T>(static_cast<std::int32_t>(z)) * scale<T>();
}

// The two streams, step by step.
template <class T> struct Reference
{
    std::int32_t _state0;
    std::int32_t _state1 = START1;

    explicit Reference(unsigned int seed1) : _state0(static_cast<std::int32_t>(seed1)) {}

    T operator()()
    {
        std::int32_t k = _state0 / 53668;
        _state0 = 40014 * (_state0 - k * 53668) - k * 12211;
        if (_state0 < 0) _state0 += MODULUS0;
        k = _state1 / 52774;
        _state1 = 40692 * (_state1 - k * 52774) - k * 3791;
        if (_state1 < 0) _state1 += MODULUS1;
        return joined<T>(_state0, _state1);
    }
};

std::uint32_t power(std::uint64_t base, std::uint32_t exponent, std::uint32_t modulus)
{
    std::uint64_t result = 1;
    for (; exponent != 0; exponent /= 2, base = base * base % modulus)
        if (exponent % 2 != 0) result = result * base % modulus;
    return static_cast<std::uint32_t>(result);
}

// The seed with which the first draw of a new object joins its streams to z, from 1 to 2147483562.
unsigned int seedForFirst(std::int32_t z)
{
    const std::int64_t state1 = std::int64_t{START1} * 40692 % MODULUS1;
    std::int64_t state0 = std::int64_t{z} + MODULUS0 - state1;
    if (state0 >= MODULUS0) state0 -= MODULUS0 - 1;
    // By Fermat, the inverse of the multiplier, as the modulus is prime.
    const std::uint64_t inverse = power(40014, MODULUS0 - 2, MODULUS0);
    return static_cast<unsigned int>(static_cast<std::uint64_t>(state0) * inverse % MODULUS0);
}

template <class T> class RnLecuyerUniformRngTest : public testing::Test
{
};
using Floats = testing::Types<float, double>;
TYPED_TEST_SUITE(RnLecuyerUniformRngTest, Floats);

TYPED_TEST(RnLecuyerUniformRngTest, DrawsAreThoseOfTheTwoStreamsForEverySeed)
{
    for (const unsigned int seed : SEEDS)
    {
        RnLecuyerUniformRng<TypeParam> rng(17, seed);
        Reference<TypeParam> reference(seed);
        EXPECT_TRUE(sameBits(drawsOf(rng, 500), valuesOf<TypeParam>(reference, 500))) << seed;
    }
}

TYPED_TEST(RnLecuyerUniformRngTest, SequencesAreThoseOfTheTwoStreamsForEverySeed)
{
    for (const unsigned int seed : SEEDS)
        for (const unsigned int length : {0, 1, 2, 7, 8, 9, 31, 64, 300})
        {
            RnLecuyerUniformRng<TypeParam> rng(17, seed);
            Reference<TypeParam> reference(seed);
            EXPECT_TRUE(streamIs<TypeParam>(rng, reference, length)) << seed;
        }
}

TYPED_TEST(RnLecuyerUniformRngTest, SequencesOfAllLengthsAreRepeatedDraws)
{
    std::mt19937 random(701);
    for (const unsigned int length : support::sequenceLengths())
        for (int i = 0; i < 2; ++i)
        {
            const unsigned int seed = static_cast<unsigned int>(random());
            RnLecuyerUniformRng<TypeParam> rng(1, seed);
            Reference<TypeParam> reference(seed);
            const auto before = static_cast<unsigned int>(random() % 50);
            ASSERT_TRUE(sameBits(drawsOf(rng, before), valuesOf<TypeParam>(reference, before)));
            ASSERT_TRUE(streamIs<TypeParam>(rng, reference, length)) << seed << " " << before;
        }
}

TYPED_TEST(RnLecuyerUniformRngTest, OneLongRunOfSequencesStaysWithTheStreams)
{
    std::mt19937 random(702);
    RnLecuyerUniformRng<TypeParam> rng;
    Reference<TypeParam> reference(99999);
    for (int i = 0; i < 60; ++i)
        ASSERT_TRUE(streamIs<TypeParam>(rng, reference, static_cast<unsigned int>(random() % 800)));
}

TYPED_TEST(RnLecuyerUniformRngTest, TheStreamsAreTwoMultiplicativeEngines)
{
    using First = std::linear_congruential_engine<std::uint32_t, 40014, 0, 2147483563>;
    using Second = std::linear_congruential_engine<std::uint32_t, 40692, 0, 2147483399>;
    // The engines take the place 1 for 0 and know no negative numbers.
    for (const unsigned int seed : {1U, 55555U, 99999U, 1073741824U, 2147483562U})
    {
        First first(seed);
        Second second(START1);
        std::vector<TypeParam> expected;
        for (int i = 0; i < 3000; ++i)
        {
            const auto state0 = static_cast<std::int32_t>(first());
            const auto state1 = static_cast<std::int32_t>(second());
            expected.push_back(joined<TypeParam>(state0, state1));
        }
        RnLecuyerUniformRng<TypeParam> rng(0, seed);
        RnLecuyerUniformRng<TypeParam> other(0, seed);
        EXPECT_TRUE(sameBits(sequenceOf(rng, 3000), expected)) << seed;
        EXPECT_TRUE(sameBits(drawsOf(other, 3000), expected)) << seed;
    }
}

TYPED_TEST(RnLecuyerUniformRngTest, EveryWayToDrawIsTheSameStep)
{
    support::expectEveryWayToDrawIsOneStep<TypeParam>(RnLecuyerUniformRng<TypeParam>(),
                                                      Reference<TypeParam>(99999), 100);
}

TYPED_TEST(RnLecuyerUniformRngTest, ScaledDrawsAreTheDrawTimesTheRange)
{
    RnLecuyerUniformRng<TypeParam> rng(0, 4711);
    Reference<TypeParam> reference(4711);
    std::mt19937 random(703);
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

TYPED_TEST(RnLecuyerUniformRngTest, TheScaleHasItsBits)
{
    EXPECT_EQ(bitsOf(Zu::RnLecuyerScale<TypeParam>::VALUE), bitsOf(scale<TypeParam>()));
    EXPECT_EQ(bitsOf(Zu::RnLecuyerScale<float>::VALUE), 0x30000000U);
    EXPECT_EQ(Zu::RnLecuyerScale<float>::VALUE, 1.0F / 2147483648.0F);
    EXPECT_EQ(bitsOf(Zu::RnLecuyerScale<double>::VALUE), 0x3E0000000AA00007U);
    EXPECT_EQ(Zu::RnLecuyerScale<double>::VALUE, 4.656613057391769e-10);
}

TYPED_TEST(RnLecuyerUniformRngTest, EverySumIsConvertedToTheNearestNumberAndScaled)
{
    // Sums that an object can reach: the ends, where the sum wraps, and ties of the conversion.
    std::vector<std::int32_t> sums = {1, 2, 3, 2147483560, 2147483561, 2147483562};
    for (std::int32_t base = 1 << 24; base > 0 && base < 1 << 30; base *= 2)
        for (std::int32_t offset = -70; offset <= 70; ++offset) sums.push_back(base + offset);
    for (std::int32_t z = 2147483300; z <= 2147483562; ++z) sums.push_back(z);
    const std::int64_t state1 = std::int64_t{START1} * 40692 % MODULUS1;
    for (std::int32_t offset = -3; offset <= 3; ++offset)
        sums.push_back(static_cast<std::int32_t>(state1) + offset);

    for (const std::int32_t z : sums)
    {
        const unsigned int seed = seedForFirst(z);
        RnLecuyerUniformRng<TypeParam> rng(0, seed);
        const TypeParam expected = static_cast<TypeParam>(z) * scale<TypeParam>();
        EXPECT_TRUE(sameBits(rng(), expected)) << z;
        // Sequences may go another way.
        RnLecuyerUniformRng<TypeParam> other(0, seed);
        EXPECT_TRUE(sameBits(sequenceOf(other, 64)[0], expected)) << z;
    }
}

TEST(RnLecuyerUniformRng, TheEndsOfTheFloatsAreInsideOfZeroAndOne)
{
    RnLecuyerUniformRng<float> smallest(0, seedForFirst(1));
    EXPECT_EQ(bitsOf(smallest()), bitsOf(0x1p-31F));
    RnLecuyerUniformRng<float> largest(0, seedForFirst(2147483562));
    EXPECT_EQ(bitsOf(largest()), bitsOf(1.0F - 0x1p-24F));
}

TEST(RnLecuyerUniformRng, TheEndsOfTheDoublesAreInsideOfZeroAndOne)
{
    RnLecuyerUniformRng<double> smallest(0, seedForFirst(1));
    EXPECT_EQ(bitsOf(smallest()), 0x3E0000000AA00007U);
    RnLecuyerUniformRng<double> largest(0, seedForFirst(2147483562));
    EXPECT_EQ(largest(), 0.9999999995343387);
}

TYPED_TEST(RnLecuyerUniformRngTest, ResultsAreInsideOfZeroAndOne)
{
    std::mt19937 random(704);
    for (int i = 0; i < 20; ++i)
    {
        RnLecuyerUniformRng<TypeParam> rng(0, static_cast<unsigned int>(random()));
        for (const TypeParam value : sequenceOf(rng, 2000))
        {
            ASSERT_GT(value, TypeParam(0));
            ASSERT_LT(value, TypeParam(1));
        }
    }
}

TYPED_TEST(RnLecuyerUniformRngTest, TheDefaultSeedsAre55555And99999)
{
    RnLecuyerUniformRng<TypeParam> byDefault;
    RnLecuyerUniformRng<TypeParam> oneSeed(1234);
    RnLecuyerUniformRng<TypeParam> twoSeeds(55555, 99999);
    Reference<TypeParam> reference(99999);
    const std::vector<TypeParam> expected = valuesOf<TypeParam>(reference, 100);
    EXPECT_TRUE(sameBits(drawsOf<TypeParam>(byDefault, 100), expected));
    EXPECT_TRUE(sameBits(drawsOf<TypeParam>(oneSeed, 100), expected));
    EXPECT_TRUE(sameBits(drawsOf<TypeParam>(twoSeeds, 100), expected));

    // A restart returns to the second seed of each.
    for (RnLecuyerUniformRng<TypeParam>* rng : {&byDefault, &oneSeed, &twoSeeds}) rng->restart();
    reference._state0 = 99999;
    const std::vector<TypeParam> next = valuesOf<TypeParam>(reference, 100);
    EXPECT_TRUE(sameBits(drawsOf<TypeParam>(byDefault, 100), next));
    EXPECT_TRUE(sameBits(drawsOf<TypeParam>(oneSeed, 100), next));
    EXPECT_TRUE(sameBits(drawsOf<TypeParam>(twoSeeds, 100), next));
}

TYPED_TEST(RnLecuyerUniformRngTest, TheFirstSeedHasNoInfluence)
{
    for (const unsigned int seed : SEEDS)
    {
        RnLecuyerUniformRng<TypeParam> one(1, seed);
        RnLecuyerUniformRng<TypeParam> other(4294967295, seed);
        EXPECT_TRUE(sameBits(drawsOf(one, 50), drawsOf(other, 50)));
        one.restart(3, 77);
        other.restart(99, 77);
        EXPECT_TRUE(sameBits(drawsOf(one, 50), drawsOf(other, 50)));
        one.restart();
        other.restart();
        EXPECT_TRUE(sameBits(sequenceOf(one, 50), sequenceOf(other, 50)));
    }
}

TYPED_TEST(RnLecuyerUniformRngTest, ARestartTakesTheFirstStreamBackAlone)
{
    for (const unsigned int before : {0, 1, 5, 64, 1000})
    {
        RnLecuyerUniformRng<TypeParam> rng(5, 31415926);
        Reference<TypeParam> reference(31415926);
        ASSERT_TRUE(sameBits(sequenceOf(rng, before), valuesOf<TypeParam>(reference, before)));
        rng.restart();
        reference._state0 = 31415926;
        EXPECT_TRUE(sameBits(drawsOf(rng, 50), valuesOf<TypeParam>(reference, 50))) << before;
        rng.restart(31415926, 2718281828);
        reference._state0 = static_cast<std::int32_t>(2718281828U);
        EXPECT_TRUE(sameBits(sequenceOf(rng, 50), valuesOf<TypeParam>(reference, 50))) << before;
        rng.restart();
        reference._state0 = static_cast<std::int32_t>(2718281828U);
        EXPECT_TRUE(sameBits(drawsOf(rng, 50), valuesOf<TypeParam>(reference, 50))) << before;
    }
}

TYPED_TEST(RnLecuyerUniformRngTest, ARestartedGeneratorDoesNotRepeatItself)
{
    RnLecuyerUniformRng<TypeParam> rng;
    const std::vector<TypeParam> before = drawsOf(rng, 20);
    rng.restart();
    EXPECT_FALSE(sameBits(drawsOf(rng, 20), before));
}

TYPED_TEST(RnLecuyerUniformRngTest, AFirstStreamAtZeroStaysThere)
{
    // The modulus itself becomes 0 with the first step.
    for (const unsigned int seed : {0U, 2147483563U})
    {
        using Second = std::linear_congruential_engine<std::uint32_t, 40692, 0, 2147483399>;
        Second second(START1);
        RnLecuyerUniformRng<TypeParam> rng(0, seed);
        for (int i = 0; i < 500; ++i)
        {
            // The sum is below 1, always; so it is the second stream less one.
            const auto z = static_cast<std::int32_t>(second()) - 1;
            ASSERT_TRUE(sameBits(rng(), static_cast<TypeParam>(z) * scale<TypeParam>())) << i;
        }
    }
}

TYPED_TEST(RnLecuyerUniformRngTest, ASequenceOfNoneAdvancesNothing)
{
    RnLecuyerUniformRng<TypeParam> rng;
    Reference<TypeParam> reference(99999);
    for (int i = 0; i < 20; ++i)
    {
        rng.getSequence(0, nullptr);
        support::GuardedArray<TypeParam> array(0);
        rng.getSequence(0, array.data());
        EXPECT_TRUE(array.isUntouched());
        EXPECT_TRUE(sameBits(rng(), reference()));
    }
}

TYPED_TEST(RnLecuyerUniformRngTest, ACopyGoesOnIndependently)
{
    static_assert(std::is_copy_constructible_v<RnLecuyerUniformRng<TypeParam>>);
    RnLecuyerUniformRng<TypeParam> rng(1, 2);
    Reference<TypeParam> reference(2);
    ASSERT_TRUE(sameBits(sequenceOf(rng, 37), valuesOf<TypeParam>(reference, 37)));
    RnLecuyerUniformRng<TypeParam> copy(rng);
    RnLecuyerUniformRng<TypeParam> assigned(3, 4);
    assigned = rng;
    const std::vector<TypeParam> next = valuesOf<TypeParam>(reference, 100);
    EXPECT_TRUE(sameBits(drawsOf<TypeParam>(rng, 100), next));
    EXPECT_TRUE(sameBits(sequenceOf<TypeParam>(copy, 100), next));
    EXPECT_TRUE(sameBits(drawsOf<TypeParam>(assigned, 100), next));
    copy.restart();
    reference._state0 = 2;
    EXPECT_TRUE(sameBits(drawsOf<TypeParam>(copy, 10), valuesOf<TypeParam>(reference, 10)));
}

TYPED_TEST(RnLecuyerUniformRngTest, IsUniformOnTheUnitInterval)
{
    support::expectUniformOnUnitInterval<TypeParam>(RnLecuyerUniformRng<TypeParam>());
}

TYPED_TEST(RnLecuyerUniformRngTest, HasItsName)
{
    EXPECT_STREQ(RnLecuyerUniformRng<TypeParam>().getName(), "Lecuyer");
}

TYPED_TEST(RnLecuyerUniformRngTest, WorksThroughTheInterface)
{
    RnLecuyerUniformRng<TypeParam> object(1, 2);
    Zu::RnRng<TypeParam>& rng = object;
    Reference<TypeParam> reference(2);
    EXPECT_TRUE(streamIs<TypeParam>(rng, reference, 100));
    rng.restart();
    reference._state0 = 2;
    EXPECT_TRUE(streamIs<TypeParam>(rng, reference, 100));
    EXPECT_STREQ(rng.getName(), "Lecuyer");
}

TYPED_TEST(RnLecuyerUniformRngTest, ADerivedObjectEndsThroughThisType)
{
    support::expectEndsThroughItsType<RnLecuyerUniformRng<TypeParam>>();
}

TYPED_TEST(RnLecuyerUniformRngTest, SkipsLeaveOutDrawsForEverySeed)
{
    for (const unsigned int seed : SEEDS)
        support::expectSkipLeavesOutDraws(RnLecuyerUniformRng<TypeParam>(1, seed),
                                          [](auto& rng) { return bitsOf(rng.eval()); });
}

// The integers behind the values, computed with Python's pow(multiplier, n + 1, modulus) for both
// streams.
TYPED_TEST(RnLecuyerUniformRngTest, SkipsOfAnyLengthAreExact)
{
    const struct
    {
        std::uint64_t _n;
        std::int32_t _ofSeed99999;
        std::int32_t _ofSeed1;
    } rows[] = {
        {0, 1967037083, 113200674},
        {1, 1015683168, 2130330151},
        {std::uint64_t{1} << 31, 1838205247, 2049112032},
        {(std::uint64_t{1} << 32) - 1, 80415260, 1608591865},
        {std::uint64_t{1} << 32, 1413413908, 277669967},
        {1000000000000, 44934397, 1654427554},
        {std::uint64_t{1} << 63, 1305133749, 483043392},
        {0xfffffffffffffffe, 691914763, 980614723},
        {0xffffffffffffffff, 201550267, 927664330},
    };
    for (const auto& row : rows)
    {
        RnLecuyerUniformRng<TypeParam> rng;
        rng.skip(row._n);
        EXPECT_EQ(bitsOf(rng.eval()),
                  bitsOf(static_cast<TypeParam>(row._ofSeed99999) * scale<TypeParam>()))
            << row._n;
        RnLecuyerUniformRng<TypeParam> other(7, 1);
        other.skip(row._n);
        EXPECT_EQ(bitsOf(other.eval()),
                  bitsOf(static_cast<TypeParam>(row._ofSeed1) * scale<TypeParam>()))
            << row._n;
    }
}

} // namespace

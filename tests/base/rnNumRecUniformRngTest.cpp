#include "base/rnNumRecUniformRng.h"

#include "support/sampleChecks.h"

#include <array>
#include <bit>
#include <cstddef>
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
using Zu::RnNumRecUniformRng;

constexpr std::uint32_t MODULUS = 1771875;

constexpr unsigned int SEEDS[] = {
    0,          1,          2,          96,         97,         55555,      1397433,    1397434,
    1397435,    1771874,    1771875,    1771876,    2147483562, 2147483563, 2147483564, 2147483646,
    2147483647, 2147483648, 4294592854, 4294592855, 4294592856, 4294967294, 4294967295};

// The reciprocal of the modulus.
template <class T> T reciprocal();
template <> float reciprocal<float>()
{
    return std::bit_cast<float>(std::uint32_t{0x35177F7B});
}
template <> double reciprocal<double>()
{
    return std::bit_cast<double>(std::uint64_t{0x3EA2EFEF536D2E73});
}

std::uint32_t next(std::uint32_t state)
{
    return (state * 2416 + 374441) % MODULUS;
}

// The generator, step by step.
template <class T> struct Reference
{
    T _current;
    std::uint32_t _state;
    std::array<std::uint32_t, 97> _shuffle;

    explicit Reference(unsigned int seed)
    {
        _state = (seed + 374441) % MODULUS;
        for (std::uint32_t& entry : _shuffle)
        {
            _state = next(_state);
            entry = _state;
        }
        _state = next(_state);
        _current = T(_state) * reciprocal<T>();
    }

    T operator()()
    {
        const T place = _current * T(97);
        const auto j = static_cast<std::size_t>(place);
        _state = next(_state);
        _current = T(_shuffle.at(j)) * reciprocal<T>();
        _shuffle.at(j) = _state;
        return _current;
    }
};

// A seed whose table begins with the word.
unsigned int seedForTableWith(std::uint32_t word)
{
    for (unsigned int seed = 0; seed < MODULUS; ++seed)
        if (next((seed + 374441) % MODULUS) == word) return seed;
    ADD_FAILURE() << word << " is not reached";
    return 0;
}

// The first draw behind the seed that delivers the word, as the generator itself gives it.
template <class T> T drawOfWord(std::uint32_t word)
{
    const unsigned int seed = seedForTableWith(word);
    RnNumRecUniformRng<T> rng(seed);
    Reference<T> reference(seed);
    const T wanted = T(word) * reciprocal<T>();
    for (int i = 0; i < 10000; ++i)
    {
        const T value = rng();
        if (reference() == wanted) return value;
    }
    ADD_FAILURE() << word << " is not drawn";
    return T(-1);
}

template <class T> class RnNumRecUniformRngTest : public testing::Test
{
};
using Floats = testing::Types<float, double>;
TYPED_TEST_SUITE(RnNumRecUniformRngTest, Floats);

TYPED_TEST(RnNumRecUniformRngTest, DrawsAreThoseOfTheTableForEverySeed)
{
    for (const unsigned int seed : SEEDS)
    {
        RnNumRecUniformRng<TypeParam> rng(seed);
        Reference<TypeParam> reference(seed);
        EXPECT_TRUE(sameBits(drawsOf(rng, 1000), valuesOf<TypeParam>(reference, 1000))) << seed;
    }
}

TYPED_TEST(RnNumRecUniformRngTest, SequencesAreThoseOfTheTableForEverySeed)
{
    for (const unsigned int seed : SEEDS)
        for (const unsigned int length : {0, 1, 2, 8, 96, 97, 98, 500})
        {
            RnNumRecUniformRng<TypeParam> rng(seed);
            Reference<TypeParam> reference(seed);
            EXPECT_TRUE(streamIs<TypeParam>(rng, reference, length)) << seed;
        }
}

TYPED_TEST(RnNumRecUniformRngTest, SequencesOfAllLengthsAreRepeatedDraws)
{
    std::mt19937 random(711);
    for (const unsigned int length : support::sequenceLengths())
        for (int i = 0; i < 2; ++i)
        {
            const unsigned int seed = static_cast<unsigned int>(random());
            RnNumRecUniformRng<TypeParam> rng(seed);
            Reference<TypeParam> reference(seed);
            const auto before = static_cast<unsigned int>(random() % 300);
            ASSERT_TRUE(sameBits(drawsOf(rng, before), valuesOf<TypeParam>(reference, before)));
            ASSERT_TRUE(streamIs<TypeParam>(rng, reference, length)) << seed << " " << before;
        }
}

TYPED_TEST(RnNumRecUniformRngTest, OneLongRunOfSequencesStaysWithTheTable)
{
    std::mt19937 random(712);
    RnNumRecUniformRng<TypeParam> rng;
    Reference<TypeParam> reference(0);
    for (int i = 0; i < 60; ++i)
        ASSERT_TRUE(streamIs<TypeParam>(rng, reference, static_cast<unsigned int>(random() % 800)));
}

// The seed only enters by the sum, which wraps in 32 bits; what follows is the start of the
// standard's engine: 97 values for the table and one more as the first place. So an engine that is
// seeded with the sum is this generator from its first value on, with nothing to discard. The
// engine finds its place without rounding to single precision; no word is so close to the next
// place that the rounding matters.
TYPED_TEST(RnNumRecUniformRngTest, IsTheShuffledEngineOfTheStandardLibrary)
{
    using Engine = std::shuffle_order_engine<
        std::linear_congruential_engine<std::uint32_t, 2416, 374441, 1771875>, 97>;
    for (const unsigned int seed : SEEDS)
    {
        Engine engine(std::uint32_t{seed} + 374441U);
        std::vector<TypeParam> expected;
        for (int i = 0; i < 3000; ++i)
            expected.push_back(TypeParam(engine()) * reciprocal<TypeParam>());
        RnNumRecUniformRng<TypeParam> rng(seed);
        EXPECT_TRUE(sameBits(sequenceOf(rng, 3000), expected)) << seed;
        rng.restart();
        EXPECT_TRUE(sameBits(drawsOf(rng, 3000), expected)) << seed;
    }
}

TYPED_TEST(RnNumRecUniformRngTest, EveryWayToDrawIsTheSameStep)
{
    support::expectEveryWayToDrawIsOneStep<TypeParam>(RnNumRecUniformRng<TypeParam>(),
                                                      Reference<TypeParam>(0), 300);
}

TYPED_TEST(RnNumRecUniformRngTest, ScaledDrawsAreTheDrawTimesTheRange)
{
    RnNumRecUniformRng<TypeParam> rng(4711);
    Reference<TypeParam> reference(4711);
    std::mt19937 random(713);
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

TEST(RnNumRecUniformRng, TheReciprocalOfTheModulusHasItsBits)
{
    EXPECT_EQ(bitsOf(drawOfWord<float>(1)), 0x35177F7BU);
    EXPECT_EQ(drawOfWord<float>(1), 5.6437392e-07F);
    EXPECT_EQ(bitsOf(drawOfWord<double>(1)), 0x3EA2EFEF536D2E73U);
    EXPECT_EQ(drawOfWord<double>(1), 5.64373897707231e-07);
}

TYPED_TEST(RnNumRecUniformRngTest, ZeroIsReached)
{
    EXPECT_TRUE(sameBits(drawOfWord<TypeParam>(0), TypeParam(0)));
}

TEST(RnNumRecUniformRng, TheLargestValuesStayBelowOne)
{
    EXPECT_EQ(drawOfWord<float>(MODULUS - 1), 0.99999946F);
    EXPECT_EQ(drawOfWord<double>(MODULUS - 1), 0.9999994356261023);
}

TYPED_TEST(RnNumRecUniformRngTest, ResultsAreInTheHalfOpenUnitInterval)
{
    std::mt19937 random(714);
    for (int i = 0; i < 20; ++i)
    {
        RnNumRecUniformRng<TypeParam> rng(static_cast<unsigned int>(random()));
        for (const TypeParam value : sequenceOf(rng, 2000))
        {
            ASSERT_GE(value, TypeParam(0));
            ASSERT_LT(value, TypeParam(1));
        }
    }
}

TYPED_TEST(RnNumRecUniformRngTest, TheDefaultSeedIsZero)
{
    RnNumRecUniformRng<TypeParam> rng;
    Reference<TypeParam> reference(0);
    const std::vector<TypeParam> expected = valuesOf<TypeParam>(reference, 300);
    EXPECT_TRUE(sameBits(drawsOf(rng, 300), expected));
    rng.restart();
    EXPECT_TRUE(sameBits(drawsOf(rng, 300), expected));
}

TYPED_TEST(RnNumRecUniformRngTest, ARestartRepeatsTheOutputFromTheFirstValueOn)
{
    for (const unsigned int before : {0, 1, 96, 97, 98, 5000})
    {
        RnNumRecUniformRng<TypeParam> rng(271828);
        Reference<TypeParam> reference(271828);
        const std::vector<TypeParam> expected = valuesOf<TypeParam>(reference, 500);
        drawsOf(rng, before);
        rng.restart();
        EXPECT_TRUE(sameBits(sequenceOf(rng, 500), expected)) << before;
        sequenceOf(rng, before);
        rng.restart();
        EXPECT_TRUE(sameBits(drawsOf(rng, 500), expected)) << before;
    }
}

TYPED_TEST(RnNumRecUniformRngTest, ARestartWithASeedIsANewObjectWithIt)
{
    RnNumRecUniformRng<TypeParam> rng(1);
    for (const unsigned int seed : SEEDS)
    {
        rng.restart(seed);
        Reference<TypeParam> reference(seed);
        const std::vector<TypeParam> expected = valuesOf<TypeParam>(reference, 300);
        EXPECT_TRUE(sameBits(drawsOf(rng, 300), expected)) << seed;
        rng.restart();
        EXPECT_TRUE(sameBits(sequenceOf(rng, 300), expected)) << seed;
    }
}

TYPED_TEST(RnNumRecUniformRngTest, SeedsWhoseSumWrapsAreThoseOfTheWrappedSum)
{
    // 4294592855 + 374441 is 2^32; the seed of the sum 0 is also 1397434, 374441 less than the
    // modulus.
    RnNumRecUniformRng<TypeParam> wrapped(4294592855);
    RnNumRecUniformRng<TypeParam> plain(1397434);
    EXPECT_TRUE(sameBits(drawsOf(wrapped, 300), drawsOf(plain, 300)));
}

TYPED_TEST(RnNumRecUniformRngTest, ASequenceOfNoneAdvancesNothing)
{
    RnNumRecUniformRng<TypeParam> rng(5);
    Reference<TypeParam> reference(5);
    for (int i = 0; i < 200; ++i)
    {
        rng.getSequence(0, nullptr);
        support::GuardedArray<TypeParam> array(0);
        rng.getSequence(0, array.data());
        EXPECT_TRUE(array.isUntouched());
        EXPECT_TRUE(sameBits(rng(), reference()));
    }
}

TYPED_TEST(RnNumRecUniformRngTest, ObjectsDoNotShareTheirTables)
{
    RnNumRecUniformRng<TypeParam> one(5);
    RnNumRecUniformRng<TypeParam> other(6);
    Reference<TypeParam> first(5);
    Reference<TypeParam> second(6);
    for (int i = 0; i < 300; ++i)
    {
        EXPECT_TRUE(sameBits(one(), first()));
        EXPECT_TRUE(sameBits(other(), second()));
    }
}

TYPED_TEST(RnNumRecUniformRngTest, OwnsItsTableAndIsNotCopied)
{
    EXPECT_FALSE(std::is_copy_constructible_v<RnNumRecUniformRng<TypeParam>>);
    EXPECT_FALSE(std::is_copy_assignable_v<RnNumRecUniformRng<TypeParam>>);
}

TYPED_TEST(RnNumRecUniformRngTest, IsUniformOnTheUnitInterval)
{
    support::expectUniformOnUnitInterval<TypeParam>(RnNumRecUniformRng<TypeParam>());
}

TYPED_TEST(RnNumRecUniformRngTest, HasItsName)
{
    EXPECT_STREQ(RnNumRecUniformRng<TypeParam>().getName(), "Numerical Recipes RAN2");
}

TYPED_TEST(RnNumRecUniformRngTest, WorksThroughTheInterface)
{
    RnNumRecUniformRng<TypeParam> object(2);
    Zu::RnRng<TypeParam>& rng = object;
    for (int i = 0; i < 2; ++i)
    {
        Reference<TypeParam> reference(2);
        EXPECT_TRUE(streamIs<TypeParam>(rng, reference, 100));
        rng.restart();
    }
    EXPECT_STREQ(rng.getName(), "Numerical Recipes RAN2");
}

TYPED_TEST(RnNumRecUniformRngTest, ADerivedObjectEndsThroughThisType)
{
    support::expectEndsThroughItsType<RnNumRecUniformRng<TypeParam>>();
}

} // namespace

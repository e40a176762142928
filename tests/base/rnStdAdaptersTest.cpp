#include "base/rnStdAdapters.h"

#include "base/rnGaussianRng.h"

#include "support/scriptedRng.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <random>
#include <type_traits>
#include <vector>

namespace
{

using support::drawsOf;
using support::forEachSource;
using support::roomFor;
using support::same;
using support::ScriptedRng;
using support::SEQUENCE_LENGTHS;
using support::written;
using Zu::RnBitGenerator;
using Zu::RnDistribution;
using Zu::RnEngineRng;
using Zu::RnGaussianRng;
using Zu::RnLecuyerUniformRng;
using Zu::RnUniformRng;

template <class T> using Limits = std::numeric_limits<T>;

static_assert(std::uniform_random_bit_generator<RnBitGenerator<float>>);
static_assert(std::uniform_random_bit_generator<RnBitGenerator<double>>);
static_assert(std::is_same_v<RnBitGenerator<float>::result_type, std::uint32_t>);
static_assert(RnBitGenerator<float>::min() == 0 && RnBitGenerator<float>::max() == 0xFFFF);
static_assert(RnBitGenerator<double>::min() == 0 && RnBitGenerator<double>::max() == 0x7FFFFFFF);
static_assert(std::is_same_v<RnDistribution<float>::result_type, float>);
static_assert(std::is_same_v<RnDistribution<double>::result_type, double>);
static_assert(std::is_base_of_v<RnUniformRng<float>, RnEngineRng<float>>);
static_assert(std::has_virtual_destructor_v<RnEngineRng<double, std::minstd_rand>>);

template <class T> class RnStdAdaptersTyped : public testing::Test
{
};

using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(RnStdAdaptersTyped, Precisions);

template <class T> constexpr int nBits = std::is_same_v<T, float> ? 16 : 31;

template <class T> std::uint32_t bitsFor(T sample)
{
    ScriptedRng<T> source({sample});
    RnBitGenerator<T> generator(source);
    const std::uint32_t bits = generator();
    EXPECT_EQ(source.nDraws(), 1U);
    return bits;
}

// Generators of random bits.

TYPED_TEST(RnStdAdaptersTyped, BitsAreTheLeadingOnesOfASample)
{
    using T = TypeParam;
    const std::uint32_t top = std::uint32_t(1) << (nBits<T> - 1);
    EXPECT_EQ(bitsFor(T(0.5)), top);
    EXPECT_EQ(bitsFor(T(0.25)), top / 2);
    EXPECT_EQ(bitsFor(T(0.75)), top + top / 2);
    EXPECT_EQ(bitsFor(std::nextafter(T(0.5), T(0))), top - 1);
    EXPECT_EQ(bitsFor(std::nextafter(T(0.5), T(1))), top);
    EXPECT_EQ(bitsFor(std::ldexp(T(1), -nBits<T>)), 1U);
    EXPECT_EQ(bitsFor(std::ldexp(T(5), -nBits<T>)), 5U);
    EXPECT_EQ(bitsFor(std::nextafter(std::ldexp(T(5), -nBits<T>), T(0))), 4U);
}

TYPED_TEST(RnStdAdaptersTyped, BitsStayInTheirRangeForEverySample)
{
    using T = TypeParam;
    const std::uint32_t most = RnBitGenerator<T>::max();
    EXPECT_EQ(bitsFor(T(0)), 0U);
    EXPECT_EQ(bitsFor(-T(0)), 0U);
    EXPECT_EQ(bitsFor(Limits<T>::denorm_min()), 0U);
    EXPECT_EQ(bitsFor(std::nextafter(std::ldexp(T(1), -nBits<T>), T(0))), 0U);
    EXPECT_EQ(bitsFor(std::nextafter(T(1), T(0))), most);
    EXPECT_EQ(bitsFor(T(1)), most);
    EXPECT_EQ(bitsFor(std::nextafter(T(1), T(2))), most);
    EXPECT_EQ(bitsFor(Limits<T>::max()), most);
    EXPECT_EQ(bitsFor(Limits<T>::infinity()), most);
    EXPECT_EQ(bitsFor(T(-1)), 0U);
    EXPECT_EQ(bitsFor(-Limits<T>::infinity()), 0U);
    EXPECT_EQ(bitsFor(Limits<T>::quiet_NaN()), 0U);
}

TYPED_TEST(RnStdAdaptersTyped, BitsFollowEachSourceDrawByDraw)
{
    using T = TypeParam;
    forEachSource<T>(
        []<class Kind>
        {
            std::vector<T> samples;
            {
                Kind told;
                samples = drawsOf<T>(told._rng, 500);
            }
            Kind kind;
            RnBitGenerator<T> generator(kind._rng);
            for (const T sample : samples)
            {
                const auto whole = static_cast<std::int64_t>(
                    std::floor(std::ldexp(static_cast<long double>(sample), nBits<T>)));
                const auto most = static_cast<std::int64_t>(RnBitGenerator<T>::max());
                EXPECT_EQ(static_cast<std::int64_t>(generator()), std::min(whole, most))
                    << Kind::NAME << " " << sample;
            }
        });
}

TYPED_TEST(RnStdAdaptersTyped, BitsShuffleAListToAnOrderThatTheSeedGives)
{
    using T = TypeParam;
    const auto shuffled = [](unsigned int seed)
    {
        RnLecuyerUniformRng<T> source(0, seed);
        std::vector<int> list(100);
        std::iota(list.begin(), list.end(), 0);
        std::shuffle(list.begin(), list.end(), RnBitGenerator<T>(source));
        return list;
    };
    std::vector<int> sorted(100);
    std::iota(sorted.begin(), sorted.end(), 0);
    std::vector<int> once = shuffled(12345);
    EXPECT_NE(once, sorted);
    EXPECT_EQ(once, shuffled(12345));
    EXPECT_NE(once, shuffled(54321));
    std::sort(once.begin(), once.end());
    EXPECT_EQ(once, sorted);
}

// 100,000 throws of a die: the standard deviation of a count is 118.
TYPED_TEST(RnStdAdaptersTyped, BitsGiveEveryNumberOfARangeAboutAsOften)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> source(0, 112358);
    RnBitGenerator<T> generator(source);
    std::uniform_int_distribution<int> die(1, 6);
    int counts[7] = {};
    for (int i = 0; i < 100000; ++i)
    {
        const int face = die(generator);
        ASSERT_TRUE(face >= 1 && face <= 6);
        ++counts[face];
    }
    for (int face = 1; face <= 6; ++face) EXPECT_NEAR(counts[face], 100000 / 6, 500) << face;
}

TYPED_TEST(RnStdAdaptersTyped, BitsFillARangeThatIsWiderThanOneDraw)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> source(0, 8128);
    RnBitGenerator<T> generator(source);
    std::uniform_int_distribution<std::uint64_t> wide;
    std::uint64_t ones = 0;
    std::uint64_t zeros = 0;
    for (int i = 0; i < 200; ++i)
    {
        const std::uint64_t number = wide(generator);
        ones |= number;
        zeros |= ~number;
    }
    EXPECT_EQ(ones, ~std::uint64_t(0));
    EXPECT_EQ(zeros, ~std::uint64_t(0));
}

TYPED_TEST(RnStdAdaptersTyped, CopiesOfAGeneratorDrawFromTheSameSource)
{
    using T = TypeParam;
    ScriptedRng<T> source({T(0.5), T(0.25)});
    RnBitGenerator<T> generator(source);
    RnBitGenerator<T> copy(generator);
    const std::uint32_t top = std::uint32_t(1) << (nBits<T> - 1);
    EXPECT_EQ(generator(), top);
    EXPECT_EQ(copy(), top / 2);
    EXPECT_EQ(source.nLeft(), 0U);
}

// Distributions.

// A generator that may be handed over, but not drawn from.
struct SealedGenerator
{
    using result_type = std::uint32_t;

    static constexpr result_type min()
    {
        return 0;
    }

    static constexpr result_type max()
    {
        return 0xFFFFFFFF;
    }

    result_type operator()()
    {
        ADD_FAILURE() << "drawn from";
        return 0;
    }
};

static_assert(std::uniform_random_bit_generator<SealedGenerator>);

TYPED_TEST(RnStdAdaptersTyped, ADistributionGivesTheSamplesOfItsSource)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> source(0, 496);
    RnLecuyerUniformRng<T> told(0, 496);
    RnGaussianRng<T> shaped(&source, T(5), T(2));
    RnGaussianRng<T> expected(&told, T(5), T(2));
    RnDistribution<T> distribution(shaped);
    std::vector<T> values(101);
    std::generate(values.begin(), values.end(), distribution);
    EXPECT_TRUE(same(values, drawsOf<T>(expected, 101)));
}

TYPED_TEST(RnStdAdaptersTyped, ADistributionDoesNotDrawFromTheGeneratorItIsGiven)
{
    using T = TypeParam;
    ScriptedRng<T> source({T(0.5), T(-3), T(1e9)});
    RnDistribution<T> distribution(source);
    SealedGenerator generator;
    std::mt19937 engine(3);
    EXPECT_TRUE(same(distribution(generator), T(0.5)));
    EXPECT_TRUE(same(distribution(engine), T(-3)));
    EXPECT_TRUE(same(distribution(), T(1e9)));
    EXPECT_EQ(engine, std::mt19937(3));
    EXPECT_EQ(source.nDraws(), 3U);
}

TYPED_TEST(RnStdAdaptersTyped, ADistributionAnswersTheRangeOfItsSource)
{
    using T = TypeParam;
    ScriptedRng<T> source({});
    const RnDistribution<T> distribution(source);
    EXPECT_TRUE(same(distribution.min(), source.getEfficientMin()));
    EXPECT_TRUE(same(distribution.max(), source.getEfficientMax()));
    EXPECT_EQ(source.nDraws(), 0U);
}

TYPED_TEST(RnStdAdaptersTyped, AResetOfADistributionRestartsItsSource)
{
    using T = TypeParam;
    ScriptedRng<T> source({T(0.5), T(0.25)});
    RnDistribution<T> distribution(source);
    distribution();
    distribution.reset();
    EXPECT_EQ(source.nRestarts(), 1U);
    EXPECT_TRUE(same(distribution(), T(0.5)));
}

// Sources on engines.

template <class T, class Engine> std::vector<T> canonicals(Engine engine, unsigned int n)
{
    std::vector<T> values;
    while (values.size() < n)
    {
        const T value = std::generate_canonical<T, Limits<T>::digits>(engine);
        if (value < T(1)) values.push_back(value);
    }
    return values;
}

template <class T, class Engine> void expectCanonicals(const Engine& engine)
{
    const std::vector<T> expected = canonicals<T>(engine, 2000);
    RnEngineRng<T, Engine> source(engine);
    EXPECT_TRUE(same(drawsOf<T>(source, 2000), expected));
    for (const T value : expected) EXPECT_TRUE(value >= T(0) && value < T(1)) << value;
}

TYPED_TEST(RnStdAdaptersTyped, AnEngineGivesItsCanonicalValues)
{
    using T = TypeParam;
    expectCanonicals<T>(std::mt19937(1234));
    expectCanonicals<T>(std::mt19937_64(1234));
    expectCanonicals<T>(std::minstd_rand(1234));
    expectCanonicals<T>(std::ranlux24_base(1234));
    expectCanonicals<T>(std::knuth_b(1234));
}

TYPED_TEST(RnStdAdaptersTyped, TheEngineIsAMersenneTwisterUnlessItIsGiven)
{
    using T = TypeParam;
    RnEngineRng<T> source;
    EXPECT_TRUE(same(drawsOf<T>(source, 100), canonicals<T>(std::mt19937(), 100)));
}

// Whole draws in between, so that the engine isn't at the beginning when it is given.
TYPED_TEST(RnStdAdaptersTyped, AnEnginesRestartGoesBackToTheStateThatItWasGivenIn)
{
    using T = TypeParam;
    std::mt19937 engine(99);
    engine.discard(1001);
    RnEngineRng<T> source(engine);
    const std::vector<T> first = drawsOf<T>(source, 300);
    source.restart();
    EXPECT_TRUE(same(drawsOf<T>(source, 300), first));
    EXPECT_TRUE(same(first, canonicals<T>(engine, 300)));
    std::mt19937 untouched(99);
    untouched.discard(1001);
    EXPECT_EQ(engine, untouched);
}

TYPED_TEST(RnStdAdaptersTyped, AnEnginesSequencesAreItsDraws)
{
    using T = TypeParam;
    const std::vector<T> all = canonicals<T>(std::mt19937(7), 4101);
    for (const unsigned int n : SEQUENCE_LENGTHS)
    {
        RnEngineRng<T> source(std::mt19937(7));
        std::vector<T> room = roomFor<T>(n);
        source.getSequence(n, room.data());
        EXPECT_TRUE(same(written(room, n), std::vector<T>(all.begin(), all.begin() + n))) << n;
        T value = -1;
        source.getSample(value);
        EXPECT_TRUE(same(value, all[n])) << n;
    }
}

// Gives all ones first, which alone would be rounded to 1, and then all zeros.
struct ExtremeEngine
{
    using result_type = std::uint32_t;

    static constexpr result_type min()
    {
        return 0;
    }

    static constexpr result_type max()
    {
        return 0xFFFFFFFF;
    }

    result_type operator()()
    {
        return _nDraws++ < 8 ? max() : min();
    }

    unsigned int _nDraws = 0;
};

TYPED_TEST(RnStdAdaptersTyped, AnEngineOfOnesStaysBelowOne)
{
    using T = TypeParam;
    RnEngineRng<T, ExtremeEngine> source;
    for (int i = 0; i < 10; ++i)
    {
        const T value = source();
        EXPECT_TRUE(value >= T(0) && value < T(1)) << value;
    }
    source.restart();
    EXPECT_LT(source(), T(1));
}

TYPED_TEST(RnStdAdaptersTyped, AnEngineAnswersAsUniformSourcesDo)
{
    using T = TypeParam;
    const RnEngineRng<T> source;
    EXPECT_STREQ(source.getName(), "Standard engine");
    EXPECT_TRUE(same(source.getEfficientWidth(), T(1)));
    EXPECT_TRUE(same(source.getEfficientMin(), T(0)));
    EXPECT_TRUE(same(source.getEfficientMax(), T(1)));
    EXPECT_TRUE(same(source.getEfficientFraction(), T(1)));
    EXPECT_TRUE(same(source.getPdf(T(0)), T(1)));
    EXPECT_TRUE(same(source.getPdf(std::nextafter(T(1), T(0))), T(1)));
    EXPECT_TRUE(same(source.getPdf(T(1)), T(0)));
    EXPECT_TRUE(same(source.getPdf(T(-0.1)), T(0)));
    EXPECT_TRUE(same(source.getPdf(Limits<T>::quiet_NaN()), T(0)));
}

TYPED_TEST(RnStdAdaptersTyped, AnEngineIsASourceForAGaussian)
{
    using T = TypeParam;
    const std::mt19937 engine(20);
    const std::vector<T> uniforms = canonicals<T>(engine, 3000);
    for (const unsigned int n : {1U, 2U, 255U, 256U, 257U, 1000U})
    {
        RnEngineRng<T> source(engine);
        ScriptedRng<T> script(uniforms);
        RnGaussianRng<T> shaped(&source, T(1), T(3));
        RnGaussianRng<T> told(&script, T(1), T(3));
        std::vector<T> values(n);
        shaped.getSequence(n, values.data());
        EXPECT_TRUE(same(values, drawsOf<T>(told, n))) << n;
        EXPECT_TRUE(same(source(), uniforms[script.nDraws()])) << n;
    }
}

TYPED_TEST(RnStdAdaptersTyped, ThereAndBackGivesTheBitsOfTheEngine)
{
    using T = TypeParam;
    std::mt19937 engine(6174);
    RnEngineRng<T> source(engine);
    RnBitGenerator<T> generator(source);
    // A float uses one word of the engine, a double two, the second being the more significant.
    for (int i = 0; i < 200; ++i)
    {
        std::uint32_t word = static_cast<std::uint32_t>(engine());
        if (std::is_same_v<T, double>) word = static_cast<std::uint32_t>(engine());
        const std::uint32_t expected = word >> (32 - nBits<T>);
        // Rounding to a float may carry into the leading bits.
        const std::uint32_t bits = generator();
        EXPECT_TRUE(bits == expected || (bits == expected + 1 && std::is_same_v<T, float>)) << i;
    }
}

} // namespace

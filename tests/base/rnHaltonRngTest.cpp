#include "base/rnHaltonRng.h"

#include "support/radicalInverse.h"
#include "support/sampleChecks.h"
#include "support/skipChecks.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <utility>
#include <vector>

namespace
{

using support::pointsAre;
using support::pointsOf;
using support::radicalInverse;
using support::referencePoints;
using support::sameBits;
using support::sequenceOf;
using Zu::RnHaltonBiRng;
using Zu::RnHaltonMultiRng;

// The radical inverses of the next number in all bases.
template <class T, int N> struct Reference
{
    std::array<unsigned int, N> _bases;
    std::uint32_t _number = 0;

    std::array<T, N> operator()()
    {
        ++_number;
        std::array<T, N> point;
        for (std::size_t d = 0; d < N; ++d) point[d] = radicalInverse<T>(_bases[d], _number);
        return point;
    }
};

template <int N> std::array<unsigned int, N> firstPrimes()
{
    if constexpr (N == 2)
        return {2, 3};
    else
        return {2, 3, 5};
}

template <class Type, int DIMENSIONS> struct Kind
{
    using T = Type;
    static constexpr int N = DIMENSIONS;
    using Rng = RnHaltonMultiRng<Type, DIMENSIONS>;
};

template <class K> class RnHaltonMultiRngTest : public testing::Test
{
};
using Kinds = testing::Types<Kind<float, 2>, Kind<double, 2>, Kind<float, 3>, Kind<double, 3>>;
TYPED_TEST_SUITE(RnHaltonMultiRngTest, Kinds);

TYPED_TEST(RnHaltonMultiRngTest, PointsAreTheRadicalInversesInTheFirstPrimes)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    RnHaltonMultiRng<T, N> rng;
    Reference<T, N> reference{firstPrimes<N>()};
    EXPECT_TRUE(sameBits(pointsOf(rng, 1000), referencePoints<T>(reference, 1000)));
}

TEST(RnHaltonMultiRng, TheFirstPointIsAHalfAThirdAndAFifth)
{
    RnHaltonMultiRng<double, 3> rng;
    EXPECT_TRUE(sameBits(pointsOf(rng, 1), std::vector<double>{1.0 / 2, 1.0 / 3, 1.0 / 5}));
    RnHaltonMultiRng<double, 2> pairs;
    EXPECT_TRUE(sameBits(pointsOf(pairs, 1), std::vector<double>{1.0 / 2, 1.0 / 3}));
}

TYPED_TEST(RnHaltonMultiRngTest, SequencesOfAllLengthsAreRepeatedPoints)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    std::mt19937 random(741);
    for (const unsigned int length : support::sequenceLengths())
    {
        const auto number = static_cast<std::uint32_t>(random() >> random() % 32);
        RnHaltonMultiRng<T, N> rng;
        rng.restart(number);
        Reference<T, N> reference{firstPrimes<N>(), number};
        ASSERT_TRUE(pointsAre<T>(rng, reference, length)) << number;
    }
}

TYPED_TEST(RnHaltonMultiRngTest, SequencesInOtherBasesAreRepeatedPoints)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    std::mt19937 random(742);
    for (int i = 0; i < 60; ++i)
    {
        std::array<unsigned int, N> primes;
        for (unsigned int& prime : primes)
            prime = support::BASES[random() % std::size(support::BASES)];
        RnHaltonMultiRng<T, N> rng(primes.data());
        const auto number = static_cast<std::uint32_t>(random() >> random() % 32);
        rng.restart(number);
        Reference<T, N> reference{primes, number};
        ASSERT_TRUE(pointsAre<T>(rng, reference, static_cast<unsigned int>(random() % 600)))
            << number;
    }
}

TYPED_TEST(RnHaltonMultiRngTest, TheNumberWrapsToThePointZero)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    RnHaltonMultiRng<T, N> rng;
    rng.restart(0xFFFFFFFF);
    Reference<T, N> first{firstPrimes<N>()};
    EXPECT_TRUE(sameBits(pointsOf(rng, 1), std::vector<T>(N, T(0))));
    EXPECT_TRUE(sameBits(pointsOf(rng, 1), referencePoints<T>(first, 1)));
    for (const std::uint32_t before : {1U, 2U, 100U, 700U})
    {
        rng.restart(0U - before);
        Reference<T, N> reference{firstPrimes<N>(), 0U - before};
        EXPECT_TRUE(pointsAre<T>(rng, reference, before + 10)) << before;
    }
}

TYPED_TEST(RnHaltonMultiRngTest, ARestartGoesToTheFirstPoint)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    RnHaltonMultiRng<T, N> rng;
    for (int i = 0; i < 3; ++i)
    {
        Reference<T, N> reference{firstPrimes<N>()};
        EXPECT_TRUE(pointsAre<T>(rng, reference, 70));
        if (i == 1) rng.restart(99);
        rng.restart();
    }
}

TYPED_TEST(RnHaltonMultiRngTest, ARestartAtANumberGivesTheNextOne)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    RnHaltonMultiRng<T, N> rng;
    for (const std::uint32_t number : {0U, 1U, 41U, 1U << 24, 2147483647U, 4294967294U})
    {
        rng.restart(number);
        std::vector<T> expected;
        for (const unsigned int prime : firstPrimes<N>())
            expected.push_back(radicalInverse<T>(prime, number + 1));
        EXPECT_TRUE(sameBits(pointsOf(rng, 1), expected)) << number;
    }
}

TYPED_TEST(RnHaltonMultiRngTest, NewPrimesLeaveTheNumber)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    RnHaltonMultiRng<T, N> rng;
    sequenceOf(rng, 40);
    pointsOf(rng, 2);
    std::array<unsigned int, 3> primes = {13, 2, 29};
    rng.setPrimeNumbers(primes.data());
    Reference<T, N> reference{{}, 42};
    for (std::size_t d = 0; d < N; ++d) reference._bases[d] = primes[d];
    primes = {99, 99, 99};
    EXPECT_TRUE(pointsAre<T>(rng, reference, 50));

    // A restart leaves the primes.
    rng.restart();
    reference._number = 0;
    EXPECT_TRUE(pointsAre<T>(rng, reference, 50));
}

TYPED_TEST(RnHaltonMultiRngTest, PrimesAreCopiedOut)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    RnHaltonMultiRng<T, N> rng;
    std::array<unsigned int, 4> primes = {7, 7, 7, 7};
    rng.getPrimeNumbers(primes.data());
    for (std::size_t d = 0; d < 4; ++d) EXPECT_EQ(primes[d], d < N ? firstPrimes<N>()[d] : 7U) << d;

    // They need neither be primes nor different.
    const std::array<unsigned int, 3> others = {4294967295, 0, 0};
    rng.setPrimeNumbers(others.data());
    rng.getPrimeNumbers(primes.data());
    for (std::size_t d = 0; d < 4; ++d) EXPECT_EQ(primes[d], d < N ? others[d] : 7U) << d;
    RnHaltonMultiRng<T, N> made(others.data());
    primes = {7, 7, 7, 7};
    made.getPrimeNumbers(primes.data());
    for (std::size_t d = 0; d < 4; ++d) EXPECT_EQ(primes[d], d < N ? others[d] : 7U) << d;
}

TYPED_TEST(RnHaltonMultiRngTest, ASequenceOfNoneAdvancesNothing)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    RnHaltonMultiRng<T, N> rng;
    Reference<T, N> reference{firstPrimes<N>()};
    for (int i = 0; i < 10; ++i)
    {
        T* arrays[N] = {};
        rng.getSequence(0, arrays);
        EXPECT_TRUE(sameBits(pointsOf(rng, 1), referencePoints<T>(reference, 1)));
    }
}

TYPED_TEST(RnHaltonMultiRngTest, ACopyGoesOnIndependently)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    RnHaltonMultiRng<T, N> rng;
    rng.restart(500);
    RnHaltonMultiRng<T, N> copy(rng);
    RnHaltonMultiRng<T, N> assigned;
    assigned = rng;
    for (RnHaltonMultiRng<T, N>* each : {&rng, &copy, &assigned})
    {
        Reference<T, N> reference{firstPrimes<N>(), 500};
        EXPECT_TRUE(pointsAre<T>(*each, reference, 60));
    }
}

TYPED_TEST(RnHaltonMultiRngTest, IsUniformOnTheUnitBox)
{
    using T = typename TypeParam::T;
    support::expectUniformOnUnitBox<T, TypeParam::N>(typename TypeParam::Rng());
}

TYPED_TEST(RnHaltonMultiRngTest, WorksThroughTheInterface)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    RnHaltonMultiRng<T, N> object;
    Zu::RnMultiRng<T, N>& rng = object;
    for (int i = 0; i < 2; ++i)
    {
        Reference<T, N> reference{firstPrimes<N>()};
        EXPECT_TRUE(pointsAre<T>(rng, reference, 100));
        rng.restart();
    }
    EXPECT_STREQ(rng.getName(), "Halton");
}

TYPED_TEST(RnHaltonMultiRngTest, ADerivedObjectEndsThroughThisType)
{
    using Rng = typename TypeParam::Rng;
    support::expectEndsThroughItsType<Rng>();
}

template <class T> class RnHaltonBiRngTest : public testing::Test
{
};
using Floats = testing::Types<float, double>;
TYPED_TEST_SUITE(RnHaltonBiRngTest, Floats);

TYPED_TEST(RnHaltonBiRngTest, PairsAreTheRadicalInversesInTwoAndThree)
{
    RnHaltonBiRng<TypeParam> rng;
    Reference<TypeParam, 2> reference{{2, 3}};
    EXPECT_TRUE(sameBits(pointsOf(rng, 300), referencePoints<TypeParam>(reference, 300)));
}

TYPED_TEST(RnHaltonBiRngTest, SequencesOfAllLengthsAreRepeatedPairs)
{
    std::mt19937 random(743);
    for (const unsigned int length : support::sequenceLengths())
    {
        const auto number = static_cast<std::uint32_t>(random() >> random() % 32);
        RnHaltonBiRng<TypeParam> rng(5, 2);
        rng.restart(number);
        Reference<TypeParam, 2> reference{{5, 2}, number};
        ASSERT_TRUE(pointsAre<TypeParam>(rng, reference, length)) << number;
    }
}

TYPED_TEST(RnHaltonBiRngTest, ARestartGoesToTheFirstPairOrToTheOneBehindTheNumber)
{
    RnHaltonBiRng<TypeParam> rng(7, 3);
    pointsOf(rng, 9);
    for (const std::uint32_t number : {0U, 5U, 1U << 31, 4294967290U, 4294967295U})
    {
        rng.restart(number);
        Reference<TypeParam, 2> reference{{7, 3}, number};
        EXPECT_TRUE(pointsAre<TypeParam>(rng, reference, 70)) << number;
        rng.restart();
        reference._number = 0;
        EXPECT_TRUE(pointsAre<TypeParam>(rng, reference, 70)) << number;
    }
}

TYPED_TEST(RnHaltonBiRngTest, TheNumberWrapsToThePairZero)
{
    RnHaltonBiRng<TypeParam> rng;
    rng.restart(0xFFFFFFFF);
    EXPECT_TRUE(sameBits(pointsOf(rng, 1), std::vector<TypeParam>(2, TypeParam(0))));
    Reference<TypeParam, 2> first{{2, 3}};
    EXPECT_TRUE(sameBits(pointsOf(rng, 1), referencePoints<TypeParam>(first, 1)));
}

TYPED_TEST(RnHaltonBiRngTest, TellsItsPrimes)
{
    unsigned int prime0 = 0;
    unsigned int prime1 = 0;
    RnHaltonBiRng<TypeParam>().getPrimeNumbers(prime0, prime1);
    EXPECT_EQ(prime0, 2U);
    EXPECT_EQ(prime1, 3U);
    RnHaltonBiRng<TypeParam>(17, 4294967295).getPrimeNumbers(prime0, prime1);
    EXPECT_EQ(prime0, 17U);
    EXPECT_EQ(prime1, 4294967295U);
}

TYPED_TEST(RnHaltonBiRngTest, ASequenceOfNoneAdvancesNothing)
{
    RnHaltonBiRng<TypeParam> rng;
    rng.getSequence(0, nullptr, nullptr);
    Reference<TypeParam, 2> reference{{2, 3}};
    EXPECT_TRUE(sameBits(pointsOf(rng, 3), referencePoints<TypeParam>(reference, 3)));
}

TYPED_TEST(RnHaltonBiRngTest, ACopyGoesOnIndependently)
{
    RnHaltonBiRng<TypeParam> rng(3, 5);
    rng.restart(500);
    RnHaltonBiRng<TypeParam> copy(rng);
    RnHaltonBiRng<TypeParam> assigned;
    assigned = rng;
    for (RnHaltonBiRng<TypeParam>* each : {&rng, &copy, &assigned})
    {
        Reference<TypeParam, 2> reference{{3, 5}, 500};
        EXPECT_TRUE(pointsAre<TypeParam>(*each, reference, 60));
    }
}

TYPED_TEST(RnHaltonBiRngTest, IsUniformOnTheUnitSquare)
{
    support::expectUniformOnUnitSquare<TypeParam>(RnHaltonBiRng<TypeParam>());
}

TYPED_TEST(RnHaltonBiRngTest, WorksThroughTheInterface)
{
    RnHaltonBiRng<TypeParam> object;
    Zu::RnBiRng<TypeParam>& rng = object;
    for (int i = 0; i < 2; ++i)
    {
        Reference<TypeParam, 2> reference{{2, 3}};
        EXPECT_TRUE(pointsAre<TypeParam>(rng, reference, 100));
        rng.restart();
    }
    EXPECT_STREQ(rng.getName(), "Halton");
}

TYPED_TEST(RnHaltonBiRngTest, SkipsLeaveOutPoints)
{
    support::expectSkipLeavesOutDraws(Zu::RnHaltonMultiRng<TypeParam, 3>(),
                                      support::NextPoint<TypeParam, 3>());
    support::expectSkipLeavesOutDraws(RnHaltonBiRng<TypeParam>(3, 5),
                                      support::NextPair<TypeParam>());
}

} // namespace

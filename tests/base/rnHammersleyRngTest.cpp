#include "base/rnHammersleyRng.h"

#include "base/exInternalError.h"

#include "support/radicalInverse.h"
#include "support/sampleChecks.h"
#include "support/skipChecks.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace
{

using support::GuardedArray;
using support::pointsOf;
using support::radicalInverse;
using support::referencePoints;
using support::sameBits;
using support::sequenceOf;
using Zu::RnHammersleyBiRng;
using Zu::RnHammersleyMultiRng;

// The sum is a double's, the quotient of the type's own.
template <class T> T grid(std::uint32_t index, std::uint32_t length)
{
    const double sum = double(index) + 0.5;
    return T(sum) / T(length);
}

// The set point by point, and its sequences, whose grid always begins at 0.
template <class T, int N> struct Reference
{
    std::uint32_t _length;
    std::array<unsigned int, N - 1> _bases;
    std::uint32_t _index = 0;
    std::uint32_t _number = 0;

    void restart(std::uint32_t n)
    {
        _index = _number = n;
    }

    std::array<T, N> withGrid(T first)
    {
        ++_number;
        std::array<T, N> point;
        point[0] = first;
        for (std::size_t d = 1; d < N; ++d) point[d] = radicalInverse<T>(_bases[d - 1], _number);
        return point;
    }

    std::array<T, N> operator()()
    {
        const std::array<T, N> point = withGrid(grid<T>(_index, _length));
        _index = (_index + 1) % _length;
        return point;
    }

    std::vector<T> sequence(std::uint32_t n)
    {
        std::vector<T> values;
        for (std::uint32_t i = 0; i < n; ++i)
        {
            const std::array<T, N> point = withGrid(grid<T>(i, _length));
            values.insert(values.end(), point.begin(), point.end());
        }
        return values;
    }
};

// Points, a sequence and points again.
template <class T, class Rng, class Reference>
testing::AssertionResult setIs(Rng& rng, Reference& reference, unsigned int length)
{
    testing::AssertionResult result = sameBits(pointsOf(rng, 2), referencePoints<T>(reference, 2));
    if (!result) return result << " in front";
    result = sameBits(sequenceOf(rng, length), reference.sequence(length));
    if (!result) return result << " in a sequence of " << length;
    result = sameBits(pointsOf(rng, 3), referencePoints<T>(reference, 3));
    if (!result) return result << " behind a sequence of " << length;
    return result;
}

template <int N> std::array<unsigned int, N - 1> firstPrimes()
{
    if constexpr (N == 2)
        return {2};
    else
        return {2, 3};
}

// What a sequence raises.
template <class Act> std::string reasonOf(Act act)
{
    try
    {
        act();
    }
    catch (const Zu::ExInternalError& exception)
    {
        return exception.getReason();
    }
    return "nothing raised";
}

constexpr const char* TOO_LONG = "Assertion 'n <= _length' failed.";

template <class Type, int DIMENSIONS> struct Kind
{
    using T = Type;
    static constexpr int N = DIMENSIONS;
    using Rng = RnHammersleyMultiRng<Type, DIMENSIONS>;
};

template <class K> Reference<typename K::T, K::N> referenceOf(std::uint32_t length)
{
    return {length, firstPrimes<K::N>()};
}

template <class K> class RnHammersleyMultiRngTest : public testing::Test
{
};
using Kinds = testing::Types<Kind<float, 2>, Kind<double, 2>, Kind<float, 3>, Kind<double, 3>>;
TYPED_TEST_SUITE(RnHammersleyMultiRngTest, Kinds);

TYPED_TEST(RnHammersleyMultiRngTest, PointsAreTheGridAndTheRadicalInversesOneAhead)
{
    using T = typename TypeParam::T;
    for (const std::uint32_t length : {1U, 2U, 3U, 4U, 7U, 97U, 256U, 1000U})
    {
        typename TypeParam::Rng rng(length);
        auto reference = referenceOf<TypeParam>(length);
        // Behind the end the grid starts again, the sequences run on.
        const unsigned int n = 3 * length + 1;
        EXPECT_TRUE(sameBits(pointsOf(rng, n), referencePoints<T>(reference, n))) << length;
    }
}

TEST(RnHammersleyMultiRng, AFewPointsOfFour)
{
    RnHammersleyMultiRng<double, 3> rng(4);
    EXPECT_TRUE(sameBits(pointsOf(rng, 2),
                         std::vector<double>{0.125, 0.5, 1.0 / 3, 0.375, 0.25, 2 * (1.0 / 3)}));
}

TYPED_TEST(RnHammersleyMultiRngTest, SequencesOfAllLengthsHaveTheGridFromZeroAndGoOnElsewhere)
{
    using T = typename TypeParam::T;
    std::mt19937 random(751);
    for (const unsigned int n : support::sequenceLengths())
        for (const std::uint32_t length : {n, n + 1, 5000U, 4294967295U})
        {
            if (length == 0) continue;
            typename TypeParam::Rng rng(length);
            auto reference = referenceOf<TypeParam>(length);
            const auto start = static_cast<std::uint32_t>(random() >> random() % 32);
            rng.restart(start);
            reference.restart(start);
            ASSERT_TRUE(setIs<T>(rng, reference, n)) << length << " " << start;
        }
}

TYPED_TEST(RnHammersleyMultiRngTest, SequencesInOtherBases)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    std::mt19937 random(752);
    for (int i = 0; i < 60; ++i)
    {
        Reference<T, N> reference{static_cast<std::uint32_t>(600 + random() % 1000), {}};
        for (unsigned int& base : reference._bases)
            base = support::BASES[random() % std::size(support::BASES)];
        RnHammersleyMultiRng<T, N> rng(reference._length, reference._bases.data());
        const auto start = static_cast<std::uint32_t>(random() >> random() % 32);
        rng.restart(start);
        reference.restart(start);
        ASSERT_TRUE(setIs<T>(rng, reference, static_cast<unsigned int>(random() % 600))) << start;
    }
}

TYPED_TEST(RnHammersleyMultiRngTest, TheGridIsRoundedAsItsTypeDoes)
{
    using T = typename TypeParam::T;
    for (const std::uint32_t length :
         {3U, 7U, (1U << 24) - 1, 1U << 24, (1U << 24) + 1, 2147483563U, 4294967295U})
        for (const std::uint32_t start : {0U, 1U, 8388607U, 8388608U, 16777215U, 16777216U,
                                          16777217U, 2147483647U, 4294967040U, 4294967293U})
        {
            typename TypeParam::Rng rng(length);
            auto reference = referenceOf<TypeParam>(length);
            rng.restart(start);
            reference.restart(start);
            EXPECT_TRUE(sameBits(pointsOf(rng, 4), referencePoints<T>(reference, 4)))
                << length << " " << start;
        }
}

TYPED_TEST(RnHammersleyMultiRngTest, AStartBehindTheEndGivesOneCoordinateAboveOne)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    typename TypeParam::Rng rng(4);
    rng.restart(5);
    EXPECT_TRUE(sameBits(pointsOf(rng, 1)[0], T(1.375)));
    EXPECT_TRUE(sameBits(pointsOf(rng, 1)[0], T(0.625)));

    rng.restart(4);
    std::vector<T> points = pointsOf(rng, 2);
    EXPECT_TRUE(sameBits(points[0], T(1.125)));
    EXPECT_TRUE(sameBits(points[1], radicalInverse<T>(2, 5)));
    EXPECT_TRUE(sameBits(points[N], T(0.375)));
    EXPECT_TRUE(sameBits(points[N + 1], radicalInverse<T>(2, 6)));

    // The count wraps before it is reduced.
    rng.restart(0xFFFFFFFF);
    points = pointsOf(rng, 2);
    EXPECT_TRUE(sameBits(points[0], T(4294967295.5) / T(4)));
    EXPECT_TRUE(sameBits(points[1], T(0)));
    EXPECT_TRUE(sameBits(points[N], T(0.125)));
    EXPECT_TRUE(sameBits(points[N + 1], T(0.5)));
}

TYPED_TEST(RnHammersleyMultiRngTest, ASequenceLeavesTheGridOfThePointsWhereItIs)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    typename TypeParam::Rng rng(8);
    pointsOf(rng, 3);
    const std::vector<T> sequence = sequenceOf(rng, 8);
    for (std::uint32_t i = 0; i < 8; ++i)
    {
        EXPECT_TRUE(sameBits(sequence[i * N], T(i + 0.5) / T(8)));
        EXPECT_TRUE(sameBits(sequence[i * N + 1], radicalInverse<T>(2, i + 4)));
    }
    const std::vector<T> point = pointsOf(rng, 1);
    EXPECT_TRUE(sameBits(point[0], T(3.5) / T(8)));
    EXPECT_TRUE(sameBits(point[1], radicalInverse<T>(2, 12)));
}

TYPED_TEST(RnHammersleyMultiRngTest, AWholeSetIsAcceptedAndOneMoreIsNot)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    for (const std::uint32_t length : {0U, 1U, 4U, 97U, 256U, 1000U})
    {
        typename TypeParam::Rng rng(length);
        auto reference = referenceOf<TypeParam>(length);
        EXPECT_TRUE(sameBits(sequenceOf(rng, length), reference.sequence(length))) << length;

        std::vector<GuardedArray<T>> coordinates(N, GuardedArray<T>(length + 1));
        std::array<T*, N> arrays;
        for (std::size_t d = 0; d < N; ++d) arrays[d] = coordinates[d].data();
        for (const unsigned int n : {length + 1, 2147483648U, 4294967295U})
            EXPECT_EQ(reasonOf([&] { rng.getSequence(n, arrays.data()); }), TOO_LONG)
                << length << " " << n;
        for (const GuardedArray<T>& coordinate : coordinates)
            EXPECT_TRUE(coordinate.isUntouched()) << length;

        // A refused call has advanced nothing.
        EXPECT_TRUE(sameBits(sequenceOf(rng, length), reference.sequence(length))) << length;
        if (length == 0) continue;
        EXPECT_TRUE(sameBits(pointsOf(rng, 2), referencePoints<T>(reference, 2))) << length;
    }
}

TYPED_TEST(RnHammersleyMultiRngTest, ASequenceOfNoneAdvancesNothing)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    typename TypeParam::Rng rng(5);
    auto reference = referenceOf<TypeParam>(5);
    for (int i = 0; i < 10; ++i)
    {
        T* arrays[N] = {};
        rng.getSequence(0, arrays);
        EXPECT_TRUE(sameBits(pointsOf(rng, 1), referencePoints<T>(reference, 1)));
    }
}

TYPED_TEST(RnHammersleyMultiRngTest, ARestartRepeatsTheSet)
{
    using T = typename TypeParam::T;
    typename TypeParam::Rng rng(10);
    auto reference = referenceOf<TypeParam>(10);
    const std::vector<T> expected = referencePoints<T>(reference, 10);
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_TRUE(sameBits(pointsOf(rng, 10), expected));
        rng.restart();
        EXPECT_TRUE(sameBits(sequenceOf(rng, 10), expected));
        pointsOf(rng, 3);
        rng.restart();
    }
    // Without it, the second pass is another set on the same grid.
    pointsOf(rng, 10);
    EXPECT_FALSE(sameBits(pointsOf(rng, 10), expected));
}

TYPED_TEST(RnHammersleyMultiRngTest, NewPrimesLeaveTheNumbers)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    typename TypeParam::Rng rng(100);
    auto reference = referenceOf<TypeParam>(100);
    pointsOf(rng, 12);
    sequenceOf(rng, 30);
    referencePoints<T>(reference, 12);
    reference.sequence(30);
    std::array<unsigned int, 2> primes = {13, 29};
    rng.setPrimeNumbers(primes.data());
    for (std::size_t d = 0; d < N - 1; ++d) reference._bases[d] = primes[d];
    primes = {99, 99};
    EXPECT_TRUE(setIs<T>(rng, reference, 50));
    // A restart leaves the primes.
    rng.restart();
    reference.restart(0);
    EXPECT_TRUE(setIs<T>(rng, reference, 50));
}

TYPED_TEST(RnHammersleyMultiRngTest, PrimesAreCopiedOut)
{
    constexpr int N = TypeParam::N;
    typename TypeParam::Rng rng(5);
    std::array<unsigned int, 3> primes = {7, 7, 7};
    rng.getPrimeNumbers(primes.data());
    for (std::size_t d = 0; d < 3; ++d)
        EXPECT_EQ(primes[d], d < N - 1 ? firstPrimes<N>()[d] : 7U) << d;

    // They need neither be primes nor different.
    const std::array<unsigned int, 2> others = {4294967295, 0};
    rng.setPrimeNumbers(others.data());
    rng.getPrimeNumbers(primes.data());
    for (std::size_t d = 0; d < 3; ++d) EXPECT_EQ(primes[d], d < N - 1 ? others[d] : 7U) << d;
    typename TypeParam::Rng made(5, others.data());
    primes = {7, 7, 7};
    made.getPrimeNumbers(primes.data());
    for (std::size_t d = 0; d < 3; ++d) EXPECT_EQ(primes[d], d < N - 1 ? others[d] : 7U) << d;
}

TYPED_TEST(RnHammersleyMultiRngTest, ACopyGoesOnIndependently)
{
    using T = typename TypeParam::T;
    using Rng = typename TypeParam::Rng;
    Rng rng(70);
    pointsOf(rng, 50);
    Rng copy(rng);
    Rng assigned(3);
    assigned = rng;
    for (Rng* each : {&rng, &copy, &assigned})
    {
        auto reference = referenceOf<TypeParam>(70);
        reference.restart(50);
        EXPECT_TRUE(setIs<T>(*each, reference, 60));
    }
}

TYPED_TEST(RnHammersleyMultiRngTest, IsUniformOnTheUnitBox)
{
    using T = typename TypeParam::T;
    support::expectUniformOnUnitBox<T, TypeParam::N>(typename TypeParam::Rng(9));
    // A length of 0 matters to points alone.
    support::expectUniformOnUnitBox<T, TypeParam::N>(typename TypeParam::Rng(0));
}

TYPED_TEST(RnHammersleyMultiRngTest, WorksThroughTheInterface)
{
    using T = typename TypeParam::T;
    constexpr int N = TypeParam::N;
    RnHammersleyMultiRng<T, N> object(100);
    Zu::RnMultiRng<T, N>& rng = object;
    for (int i = 0; i < 2; ++i)
    {
        auto reference = referenceOf<TypeParam>(100);
        EXPECT_TRUE(setIs<T>(rng, reference, 100));
        rng.restart();
    }
    EXPECT_STREQ(rng.getName(), "Hammersley");
}

TYPED_TEST(RnHammersleyMultiRngTest, ADerivedObjectEndsThroughThisType)
{
    using Rng = typename TypeParam::Rng;
    support::expectEndsThroughItsType<Rng>(4);
}

TEST(RnHammersleyBiRng, TheGridOfFourWrapsWhileTheOtherCoordinateRunsOn)
{
    RnHammersleyBiRng<double> rng(4);
    EXPECT_TRUE(sameBits(pointsOf(rng, 5), std::vector<double>{0.125, 0.5, 0.375, 0.25, 0.625, 0.75,
                                                               0.875, 0.125, 0.125, 0.625}));
}

template <class T> class RnHammersleyBiRngTest : public testing::Test
{
};
using Floats = testing::Types<float, double>;
TYPED_TEST_SUITE(RnHammersleyBiRngTest, Floats);

TYPED_TEST(RnHammersleyBiRngTest, PairsAreTheGridAndTheRadicalInverseInTwo)
{
    RnHammersleyBiRng<TypeParam> rng(97);
    Reference<TypeParam, 2> reference{97, {2}};
    EXPECT_TRUE(sameBits(pointsOf(rng, 300), referencePoints<TypeParam>(reference, 300)));
}

TYPED_TEST(RnHammersleyBiRngTest, SequencesOfAllLengthsHaveTheGridFromZeroAndGoOnElsewhere)
{
    std::mt19937 random(753);
    for (const unsigned int n : support::sequenceLengths())
    {
        RnHammersleyBiRng<TypeParam> rng(n + 3, 5);
        Reference<TypeParam, 2> reference{n + 3, {5}};
        const auto start = static_cast<std::uint32_t>(random() >> random() % 32);
        rng.restart(start);
        reference.restart(start);
        ASSERT_TRUE(setIs<TypeParam>(rng, reference, n)) << start;
    }
}

TYPED_TEST(RnHammersleyBiRngTest, AWholeSetIsAcceptedAndOneMoreIsNot)
{
    RnHammersleyBiRng<TypeParam> rng(20, 3);
    Reference<TypeParam, 2> reference{20, {3}};
    EXPECT_TRUE(sameBits(sequenceOf(rng, 20), reference.sequence(20)));
    GuardedArray<TypeParam> x(21);
    GuardedArray<TypeParam> y(21);
    EXPECT_EQ(reasonOf([&] { rng.getSequence(21, x.data(), y.data()); }), TOO_LONG);
    EXPECT_TRUE(x.isUntouched() && y.isUntouched());
    EXPECT_TRUE(setIs<TypeParam>(rng, reference, 20));
}

TYPED_TEST(RnHammersleyBiRngTest, ARestartGoesToTheFirstPairOrToTheNumber)
{
    RnHammersleyBiRng<TypeParam> rng(50, 7);
    Reference<TypeParam, 2> reference{50, {7}};
    for (const std::uint32_t number : {0U, 5U, 49U, 50U, 1U << 31, 4294967290U, 4294967295U})
    {
        rng.restart(number);
        reference.restart(number);
        EXPECT_TRUE(setIs<TypeParam>(rng, reference, 40)) << number;
        rng.restart();
        reference.restart(0);
        EXPECT_TRUE(setIs<TypeParam>(rng, reference, 40)) << number;
    }
}

TYPED_TEST(RnHammersleyBiRngTest, ACopyGoesOnIndependently)
{
    RnHammersleyBiRng<TypeParam> rng(70, 5);
    pointsOf(rng, 50);
    RnHammersleyBiRng<TypeParam> copy(rng);
    RnHammersleyBiRng<TypeParam> assigned(3);
    assigned = rng;
    for (RnHammersleyBiRng<TypeParam>* each : {&rng, &copy, &assigned})
    {
        Reference<TypeParam, 2> reference{70, {5}};
        reference.restart(50);
        EXPECT_TRUE(setIs<TypeParam>(*each, reference, 60));
    }
}

TYPED_TEST(RnHammersleyBiRngTest, IsUniformOnTheUnitSquare)
{
    support::expectUniformOnUnitSquare<TypeParam>(RnHammersleyBiRng<TypeParam>(9));
}

TYPED_TEST(RnHammersleyBiRngTest, WorksThroughTheInterface)
{
    RnHammersleyBiRng<TypeParam> object(100);
    Zu::RnBiRng<TypeParam>& rng = object;
    for (int i = 0; i < 2; ++i)
    {
        Reference<TypeParam, 2> reference{100, {2}};
        EXPECT_TRUE(setIs<TypeParam>(rng, reference, 100));
        rng.restart();
    }
    EXPECT_STREQ(rng.getName(), "Hammersley");
}

TYPED_TEST(RnHammersleyBiRngTest, SkipsLeaveOutPoints)
{
    for (const unsigned int length : {1U, 7U, 1500U, 4294967295U})
    {
        Zu::RnHammersleyMultiRng<TypeParam, 3> points(length);
        support::expectSkipLeavesOutDraws(points, support::NextPoint<TypeParam, 3>());
        points.restart(0xffffff00U);
        support::expectSkipLeavesOutDraws(points, support::NextPoint<TypeParam, 3>());
    }
    support::expectSkipLeavesOutDraws(RnHammersleyBiRng<TypeParam>(50, 3),
                                      support::NextPair<TypeParam>());
}

} // namespace

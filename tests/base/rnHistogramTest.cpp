#include "base/rnHistogram.h"

#include "base/rnGaussianRng.h"
#include "base/rnLecuyerUniformRng.h"
#include "base/rnNumRecUniformRng.h"
#include "base/rnVanDerCorputRng.h"

#include "support/histogramReference.h"
#include "support/platform.h"

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iomanip>
#include <limits>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using support::before;
using support::behind;
using support::HistogramRandom;
using support::INFINITE;
using support::NO_NUMBER;
using support::RepeatingRng;
using support::same;
using support::toldBin;
using support::toldEdges;
using support::toldUniformBin;
using Zu::RnHistogram;
using Zu::RnUniformHistogram;

template <class T> class RnHistogramTest : public testing::Test
{
};

TYPED_TEST_SUITE(RnHistogramTest, support::FloatAndDouble, );

template <class T> std::vector<T> edgesOf(const RnHistogram<T>& histogram)
{
    std::vector<T> edges;
    for (unsigned int i = 0; i < static_cast<unsigned int>(histogram.getSize()); ++i)
    {
        T low;
        T high;
        histogram.getBinLimits(i, low, high);
        if (i == 0) edges.push_back(low);
        EXPECT_TRUE(same(edges.back(), low)) << i;
        edges.push_back(high);
    }
    return edges;
}

template <class T> std::vector<T> binsOf(const RnHistogram<T>& histogram)
{
    std::vector<T> bins;
    for (int i = 0; i < static_cast<int>(histogram.getSize()); ++i)
        bins.push_back(histogram.getBin(i));
    return bins;
}

// Bins that are filled one value after the other.
template <class T> struct ToldHistogram
{
    explicit ToldHistogram(std::size_t nBins) : _bins(nBins, T(0)) {}

    void add(int index, T weight)
    {
        if (index < 0 || static_cast<std::size_t>(index) >= _bins.size()) return;
        _bins[static_cast<std::size_t>(index)] += weight;
        _total += weight;
    }

    std::vector<T> _bins;
    T _total = T(0);
};

template <class T>
testing::AssertionResult holds(const RnHistogram<T>& histogram, const ToldHistogram<T>& told)
{
    const testing::AssertionResult bins = same(binsOf(histogram), told._bins);
    if (!bins) return bins;
    return same(histogram.getTotal(), told._total);
}

// Values in the bins, at and beside all edges, outside, and values that belong to no bin.
template <class T> std::vector<T> valuesFor(const std::vector<T>& edges, HistogramRandom& random)
{
    std::vector<T> values{T(0),
                          -T(0),
                          T(1e9),
                          T(-1e9),
                          T(3e9),
                          T(-3e9),
                          T(1e30),
                          T(-1e30),
                          std::numeric_limits<T>::max(),
                          std::numeric_limits<T>::lowest(),
                          std::numeric_limits<T>::denorm_min(),
                          INFINITE<T>,
                          -INFINITE<T>,
                          NO_NUMBER<T>};
    for (const T edge : edges)
        for (const T value : {before(edge), edge, behind(edge)}) values.push_back(value);
    const T margin = (edges.back() - edges.front()) / T(4) + T(0.01);
    for (int i = 0; i < 300; ++i)
        values.push_back(random.within(edges.front() - margin, edges.back() + margin));
    return values;
}

// Ascending edges of very different distances, some of them equal.
template <class T> std::vector<T> unevenEdges(unsigned int nBins, HistogramRandom& random)
{
    std::vector<T> edges{random.within(T(-3), T(3))};
    while (edges.size() <= nBins)
        edges.push_back(random.below(8) == 0 ? edges.back()
                                             : edges.back() + random.magnitude<T>(-5, 2));
    return edges;
}

TYPED_TEST(RnHistogramTest, FourBinsFromZeroToOneHaveQuartersAsEdges)
{
    using T = TypeParam;
    const RnHistogram<T> histogram(4, T(0), T(1));
    EXPECT_EQ(edgesOf(histogram), (std::vector<T>{T(0), T(0.25), T(0.5), T(0.75), T(1)}));
}

TYPED_TEST(RnHistogramTest, EdgesOfARangeAreComputedFromItsBeginning)
{
    using T = TypeParam;
    HistogramRandom random(770);
    for (const unsigned int nBins : {1U, 2U, 3U, 7U, 10U, 64U, 4096U})
    {
        const T min = random.within(T(-10), T(10));
        const T max = min + random.magnitude<T>(-2, 4);
        EXPECT_TRUE(same(edgesOf(RnHistogram<T>(nBins, min, max)), toldEdges(nBins, min, max)));
        EXPECT_TRUE(
            same(edgesOf(RnUniformHistogram<T>(nBins, min, max)), toldEdges(nBins, min, max)));
    }
}

TYPED_TEST(RnHistogramTest, GivenEdgesAreCopied)
{
    using T = TypeParam;
    std::vector<T> edges{T(-1), T(0), T(0.1), T(7)};
    const std::vector<T> original = edges;
    const RnHistogram<T> histogram(3, edges.data());
    edges.assign(4, T(0));
    EXPECT_EQ(edgesOf(histogram), original);
    EXPECT_EQ(histogram.getBinIndex(T(0.05)), 1);
}

TYPED_TEST(RnHistogramTest, IsEmptyAtFirst)
{
    using T = TypeParam;
    const RnHistogram<T> histogram(3, T(-1), T(2));
    EXPECT_EQ(binsOf(histogram), std::vector<T>(3, T(0)));
    EXPECT_EQ(histogram.getTotal(), T(0));
    EXPECT_EQ(histogram.getSize(), T(3));
    T min;
    T max;
    histogram.getLimits(min, max);
    EXPECT_EQ(min, T(-1));
    EXPECT_EQ(max, T(2));
}

TYPED_TEST(RnHistogramTest, TheSizeIsANumberOfTheHistogramsType)
{
    using T = TypeParam;
    static_assert(std::is_same_v<decltype(RnHistogram<T>(1, T(0), T(1)).getSize()), T>);
    EXPECT_EQ(RnUniformHistogram<T>(4096, T(0), T(1)).getSize(), T(4096));
}

TYPED_TEST(RnHistogramTest, AValueOnAnEdgeIsInTheBinAboveIt)
{
    using T = TypeParam;
    const RnHistogram<T> searched(4, T(0), T(1));
    const RnUniformHistogram<T> uniform(4, T(0), T(1));
    for (const RnHistogram<T>* histogram :
         {&searched, static_cast<const RnHistogram<T>*>(&uniform)})
    {
        EXPECT_EQ(histogram->getBinIndex(T(0)), 0);
        EXPECT_EQ(histogram->getBinIndex(T(0.25)), 1);
        EXPECT_EQ(histogram->getBinIndex(before(T(0.25))), 0);
        EXPECT_EQ(histogram->getBinIndex(T(0.75)), 3);
        EXPECT_EQ(histogram->getBinIndex(before(T(1))), 3);
        EXPECT_EQ(histogram->getBinIndex(T(1)), 4);
        EXPECT_EQ(histogram->getBinIndex(before(T(0))), -1);
    }
}

TYPED_TEST(RnHistogramTest, TheSearchAnswersNoBinsOnEitherSideAndForANaN)
{
    using T = TypeParam;
    const RnHistogram<T> histogram(4, T(-1), T(1));
    EXPECT_EQ(histogram.getBinIndex(before(T(-1))), -1);
    EXPECT_EQ(histogram.getBinIndex(T(-1e30)), -1);
    EXPECT_EQ(histogram.getBinIndex(-INFINITE<T>), -1);
    EXPECT_EQ(histogram.getBinIndex(T(1e30)), 4);
    EXPECT_EQ(histogram.getBinIndex(INFINITE<T>), 4);
    EXPECT_EQ(histogram.getBinIndex(NO_NUMBER<T>), -1);
}

TYPED_TEST(RnHistogramTest, TheBinIsThatOfABinarySearch)
{
    using T = TypeParam;
    HistogramRandom random(771);
    for (const unsigned int nBins : {1U, 2U, 3U, 7U, 64U, 500U})
    {
        const std::vector<T> even = toldEdges(nBins, T(-0.3), T(17.1));
        const RnHistogram<T> ranged(nBins, T(-0.3), T(17.1));
        for (const T value : valuesFor(even, random))
            ASSERT_EQ(ranged.getBinIndex(value), toldBin(even, value)) << value;
        const std::vector<T> uneven = unevenEdges<T>(nBins, random);
        const RnHistogram<T> listed(nBins, uneven.data());
        for (const T value : valuesFor(uneven, random))
            ASSERT_EQ(listed.getBinIndex(value), toldBin(uneven, value)) << value;
    }
}

TYPED_TEST(RnHistogramTest, ABinWithoutWidthGetsNothing)
{
    using T = TypeParam;
    const T edges[] = {T(0), T(1), T(1), T(1), T(2)};
    RnHistogram<T> histogram(4, edges);
    EXPECT_EQ(histogram.getBinIndex(T(1)), 3);
    EXPECT_EQ(histogram.getBinIndex(before(T(1))), 0);
    histogram.addValue(T(1), T(2));
    EXPECT_EQ(binsOf(histogram), (std::vector<T>{T(0), T(0), T(0), T(2)}));
}

TYPED_TEST(RnHistogramTest, TheBinOfAUniformHistogramIsTheClosedForm)
{
    using T = TypeParam;
    HistogramRandom random(772);
    for (const unsigned int nBins : {1U, 2U, 3U, 7U, 10U, 64U, 500U})
        for (const auto& [min, max] :
             {std::pair(T(0), T(1)), {T(-0.3), T(17.1)}, {T(1000), T(1000.1)}, {T(0), T(1e-20)}})
        {
            const RnUniformHistogram<T> histogram(nBins, min, max);
            for (const T value : valuesFor(toldEdges(nBins, min, max), random))
                ASSERT_EQ(histogram.getBinIndex(value), toldUniformBin(nBins, min, max, value))
                    << value << " " << nBins << " " << min << " " << max;
        }
}

TYPED_TEST(RnHistogramTest, TheBinOfAUniformHistogramGoesOnOutsideOfTheRange)
{
    using T = TypeParam;
    const RnUniformHistogram<T> histogram(4, T(0), T(1));
    EXPECT_EQ(histogram.getBinIndex(T(2.5)), 10);
    EXPECT_EQ(histogram.getBinIndex(T(-1.5)), -6);
    EXPECT_EQ(histogram.getBinIndex(T(-0.125)), -1);
}

TYPED_TEST(RnHistogramTest, WhatFitsNoIntIsBelowTheFirstBin)
{
    using T = TypeParam;
    RnUniformHistogram<T> histogram(4, T(0), T(1));
    for (const T value : {T(1e10), T(-1e10), T(0x1p29), T(1e30), INFINITE<T>, -INFINITE<T>,
                          NO_NUMBER<T>, std::numeric_limits<T>::max()})
    {
        EXPECT_EQ(histogram.getBinIndex(value), std::numeric_limits<int>::min()) << value;
        histogram.addValue(value, T(1));
        histogram.addValues(1, &value);
    }
    EXPECT_EQ(binsOf(histogram), std::vector<T>(4, T(0)));
    EXPECT_EQ(histogram.getTotal(), T(0));
}

TEST(RnUniformHistogram, ItsBinCanDifferFromTheSearchBesideAnEdge)
{
    // Some edge of this histogram is not where the closed form changes.
    HistogramRandom random(773);
    unsigned int differences = 0;
    for (unsigned int nBins = 3; nBins < 100; ++nBins)
    {
        const RnHistogram<double> searched(nBins, 0.1, 0.8);
        const RnUniformHistogram<double> computed(nBins, 0.1, 0.8);
        for (const double edge : toldEdges(nBins, 0.1, 0.8))
            for (const double value : {before(edge), edge})
            {
                const int bin = searched.getBinIndex(value);
                const int closed = computed.getBinIndex(value);
                EXPECT_LE(std::abs(bin - closed), 1);
                if (bin != closed) ++differences;
            }
    }
    EXPECT_GT(differences, 0U);
}

TYPED_TEST(RnHistogramTest, AWeightIsAddedToTheBinAndTheTotal)
{
    using T = TypeParam;
    RnHistogram<T> histogram(4, T(0), T(1));
    histogram.addValue(T(0.3), T(2.5));
    EXPECT_EQ(binsOf(histogram), (std::vector<T>{T(0), T(2.5), T(0), T(0)}));
    EXPECT_EQ(histogram.getTotal(), T(2.5));
    histogram.addValue(T(0.3), T(-1));
    histogram.addValue(T(0.99), T(0.25));
    EXPECT_EQ(binsOf(histogram), (std::vector<T>{T(0), T(1.5), T(0), T(0.25)}));
    EXPECT_EQ(histogram.getTotal(), T(1.75));
}

TYPED_TEST(RnHistogramTest, ValuesOutsideChangeNothing)
{
    using T = TypeParam;
    RnHistogram<T> searched(4, T(0), T(1));
    RnUniformHistogram<T> uniform(4, T(0), T(1));
    for (RnHistogram<T>* histogram : {&searched, static_cast<RnHistogram<T>*>(&uniform)})
    {
        for (const T value : {before(T(0)), T(1), behind(T(1)), T(-5), T(5), INFINITE<T>,
                              -INFINITE<T>, NO_NUMBER<T>})
        {
            histogram->addValue(value, T(2.5));
            histogram->addValues(1, &value);
        }
        EXPECT_EQ(binsOf(*histogram), std::vector<T>(4, T(0)));
        EXPECT_EQ(histogram->getTotal(), T(0));
    }
}

TYPED_TEST(RnHistogramTest, WeightsAreSummedInTheOrderTheyCome)
{
    using T = TypeParam;
    HistogramRandom random(774);
    RnHistogram<T> histogram(7, T(0), T(1));
    ToldHistogram<T> told(7);
    for (int i = 0; i < 2000; ++i)
    {
        const T value = random.within(T(-0.1), T(1.1));
        const T weight = random.magnitude<T>(-6, 6);
        histogram.addValue(value, weight);
        told.add(toldBin(toldEdges(7, T(0), T(1)), value), weight);
    }
    EXPECT_TRUE(holds(histogram, told));
}

TYPED_TEST(RnHistogramTest, ClearTakesTheWeightsAndLeavesTheEdges)
{
    using T = TypeParam;
    RnHistogram<T> histogram(3, T(1), T(4));
    histogram.addValue(T(1.5), T(2));
    histogram.addValue(T(3.5), T(0.5));
    histogram.clear();
    EXPECT_EQ(binsOf(histogram), std::vector<T>(3, T(0)));
    EXPECT_EQ(histogram.getTotal(), T(0));
    EXPECT_EQ(edgesOf(histogram), (std::vector<T>{T(1), T(2), T(3), T(4)}));
    histogram.addValue(T(3.5), T(0.5));
    EXPECT_EQ(binsOf(histogram), (std::vector<T>{T(0), T(0), T(0.5)}));
}

TYPED_TEST(RnHistogramTest, ACopyIsFilledForItself)
{
    using T = TypeParam;
    RnUniformHistogram<T> histogram(2, T(0), T(1));
    histogram.addValue(T(0.1), T(1));
    RnUniformHistogram<T> copy(histogram);
    copy.addValue(T(0.9), T(3));
    EXPECT_EQ(binsOf(histogram), (std::vector<T>{T(1), T(0)}));
    EXPECT_EQ(binsOf(copy), (std::vector<T>{T(1), T(3)}));
    RnUniformHistogram<T> assigned(5, T(7), T(9));
    assigned = copy;
    EXPECT_EQ(binsOf(assigned), binsOf(copy));
    EXPECT_EQ(edgesOf(assigned), edgesOf(copy));
    EXPECT_EQ(assigned.getBinIndex(T(0.75)), 1);
}

// The content of the bins before many values are added: nothing, fractions, and sums that are
// almost too large for another 1.
template <class T> std::vector<T> startWeights()
{
    constexpr int DIGITS = std::numeric_limits<T>::digits;
    return {T(0),
            T(0.1),
            T(-2.7),
            T(1e-9),
            std::ldexp(T(1), DIGITS) - T(20),
            std::ldexp(T(1), DIGITS - 1) - T(20.5)};
}

template <class T> void expectManyAsOneByOne(RnHistogram<T>& histogram, unsigned int n)
{
    HistogramRandom random(775 + n);
    T min;
    T max;
    histogram.getLimits(min, max);
    const T margin = (max - min) / T(10);
    std::vector<T> values;
    for (unsigned int i = 0; i < n; ++i)
        values.push_back(i % 50 == 49 ? NO_NUMBER<T> : random.within(min - margin, max + margin));
    const auto size = static_cast<std::size_t>(histogram.getSize());
    for (const T weight : startWeights<T>())
    {
        ToldHistogram<T> told(size);
        histogram.clear();
        histogram.addValue(min, weight);
        told.add(histogram.getBinIndex(min), weight);
        histogram.addValues(n, values.data());
        for (const T value : values) told.add(histogram.getBinIndex(value), T(1));
        ASSERT_TRUE(holds(histogram, told)) << n << " values on " << weight << ", " << size;
        histogram.addValues(n, values.data());
        for (const T value : values) told.add(histogram.getBinIndex(value), T(1));
        ASSERT_TRUE(holds(histogram, told)) << n << " values on " << weight << ", " << size;
    }
}

TYPED_TEST(RnHistogramTest, ManyValuesAreAddedAsOneByOne)
{
    using T = TypeParam;
    HistogramRandom random(776);
    for (const unsigned int nBins : {1U, 2U, 7U, 64U, 1000U})
        for (const unsigned int n :
             {0U, 1U, 3U, 5U, 127U, 128U, 129U, 255U, 256U, 257U, 1000U, 4097U})
        {
            RnHistogram<T> searched(nBins, unevenEdges<T>(nBins, random).data());
            expectManyAsOneByOne(searched, n);
            RnUniformHistogram<T> uniform(nBins, T(-0.3), T(17.1));
            expectManyAsOneByOne(uniform, n);
        }
}

TYPED_TEST(RnHistogramTest, ManyValuesOnAndBesideEdgesAreAddedAsOneByOne)
{
    using T = TypeParam;
    HistogramRandom random(777);
    for (const unsigned int nBins : {1U, 3U, 10U, 100U})
    {
        const std::vector<T> edges = toldEdges(nBins, T(0.1), T(0.8));
        std::vector<T> values;
        for (int i = 0; i < 4; ++i)
            for (const T value : valuesFor(edges, random)) values.push_back(value);
        const auto n = static_cast<unsigned int>(values.size());
        RnHistogram<T> searched(nBins, edges.data());
        RnUniformHistogram<T> uniform(nBins, T(0.1), T(0.8));
        ToldHistogram<T> toldSearched(nBins);
        ToldHistogram<T> toldUniform(nBins);
        searched.addValues(n, values.data());
        uniform.addValues(n, values.data());
        for (const T value : values)
        {
            toldSearched.add(toldBin(edges, value), T(1));
            toldUniform.add(toldUniformBin(nBins, T(0.1), T(0.8), value), T(1));
        }
        EXPECT_TRUE(holds(searched, toldSearched)) << nBins;
        EXPECT_TRUE(holds(uniform, toldUniform)) << nBins;
    }
}

// The histogram's samples of a source, against single draws of another one like it.
template <class T, class Source, class... Arguments>
void expectSamples(unsigned int nBins, unsigned int n, const Arguments&... arguments)
{
    for (const T weight : startWeights<T>())
    {
        const std::vector<T> edges = toldEdges(nBins, T(0.05), T(0.9));
        Source source(arguments...);
        Source single(arguments...);
        RnHistogram<T> searched(nBins, edges.data());
        RnUniformHistogram<T> uniform(nBins, T(0.05), T(0.9));
        ToldHistogram<T> toldSearched(nBins);
        ToldHistogram<T> toldUniform(nBins);
        searched.addValue(T(0.06), weight);
        toldSearched.add(toldBin(edges, T(0.06)), weight);
        searched.addSamples(&source, n);
        for (unsigned int i = 0; i < n; ++i) toldSearched.add(toldBin(edges, single()), T(1));
        uniform.addSamples(&source, n);
        for (unsigned int i = 0; i < n; ++i)
            toldUniform.add(toldUniformBin(nBins, T(0.05), T(0.9), single()), T(1));
        ASSERT_TRUE(holds(searched, toldSearched)) << n << " on " << weight << ", " << nBins;
        ASSERT_TRUE(holds(uniform, toldUniform)) << n << ", " << nBins;
        // Neither more nor fewer were drawn.
        ASSERT_EQ(source(), single()) << n;
    }
}

TYPED_TEST(RnHistogramTest, SamplesOfTheLibrarysSourcesAreAddedAsSingleDraws)
{
    using T = TypeParam;
    for (const unsigned int nBins : {1U, 7U, 1000U})
        for (const unsigned int n : {0U, 1U, 127U, 128U, 129U, 255U, 256U, 257U, 1000U})
        {
            expectSamples<T, Zu::RnLecuyerUniformRng<T>>(nBins, n, 1U, 17U);
            expectSamples<T, Zu::RnNumRecUniformRng<T>>(nBins, n, 5U);
            expectSamples<T, Zu::RnVanDerCorputRng<T>>(nBins, n, 2U);
            expectSamples<T, Zu::RnVanDerCorputRng<T>>(nBins, n, 3U);
        }
}

// Beyond 2^23 bins a uniform histogram asks for each bin singly, which is that of the closed form,
// too. Here the search would find another one for almost every value. The range is so narrow that
// of the many samples only each 1,024th is in it.
TEST(RnUniformHistogram, SamplesAreAddedToTheBinsOfTheClosedFormHoweverManyThereAre)
{
    if (support::underSanitizer && !support::underAddressSanitizer)
        GTEST_SKIP() << "ThreadSanitizer needs several times the memory of a large histogram";
    constexpr unsigned int BINS = (1U << 23) + 1;
    constexpr unsigned int SAMPLES = 4 * BINS;
    constexpr float MIN = 0.5F;
    constexpr float MAX = 0.5F + 0x1p-10F;
    RnUniformHistogram<float> histogram(BINS, MIN, MAX);
    Zu::RnVanDerCorputRng<float> source;
    histogram.addSamples(&source, SAMPLES);
    std::map<int, float> counts;
    float total = 0;
    for (unsigned int i = 0; i < SAMPLES; i += 1024)
    {
        source.restart(i);
        const float value = source();
        // One of them is rounded to the end of the range.
        if (value >= MAX) continue;
        ++counts[toldUniformBin(BINS, MIN, MAX, value)];
        ++total;
    }
    EXPECT_GT(counts.size(), 10000U);
    for (const auto& [bin, count] : counts) ASSERT_EQ(histogram.getBin(bin), count) << bin;
    // So nothing is in another bin.
    EXPECT_EQ(histogram.getTotal(), total);
}

TYPED_TEST(RnHistogramTest, SamplesOfAShapedSourceAreAddedAsSingleDraws)
{
    using T = TypeParam;
    for (const unsigned int n : {1U, 255U, 256U, 257U, 1001U})
    {
        Zu::RnLecuyerUniformRng<T> uniform(1, 23);
        Zu::RnLecuyerUniformRng<T> sameUniform(1, 23);
        Zu::RnGaussianRng<T> source(&uniform);
        Zu::RnGaussianRng<T> single(&sameUniform);
        RnHistogram<T> histogram(10, T(-2), T(2));
        ToldHistogram<T> told(10);
        histogram.addSamples(&source, n);
        for (unsigned int i = 0; i < n; ++i)
            told.add(toldBin(toldEdges(10, T(-2), T(2)), single()), T(1));
        EXPECT_TRUE(holds(histogram, told)) << n;
        EXPECT_EQ(source(), single()) << n;
    }
}

TYPED_TEST(RnHistogramTest, AClientsSourceSeesAsManySingleDraws)
{
    using T = TypeParam;
    for (const unsigned int n : {0U, 1U, 256U, 3000U})
    {
        const std::vector<T> script{T(0.1), T(0.3), NO_NUMBER<T>, T(1), T(-0.1), T(0.3), T(0.999)};
        RepeatingRng<T> source(script);
        RnUniformHistogram<T> histogram(4, T(0), T(1));
        ToldHistogram<T> told(4);
        histogram.addSamples(&source, n);
        for (unsigned int i = 0; i < n; ++i)
            told.add(toldUniformBin(4, T(0), T(1), script[i % script.size()]), T(1));
        EXPECT_TRUE(holds(histogram, told)) << n;
        EXPECT_EQ(source._draws, n);
    }
}

// Derived from one of the library's sources, but not drawing as it does.
template <class T> class HalvedRng : public Zu::RnLecuyerUniformRng<T>
{
public:
    T operator()() override
    {
        return Zu::RnLecuyerUniformRng<T>::operator()() / T(2);
    }
};

TYPED_TEST(RnHistogramTest, ASourceThatReplacesTheDrawOfTheLibrarysIsSeen)
{
    using T = TypeParam;
    HalvedRng<T> source;
    RnHistogram<T> histogram(2, T(0), T(1));
    histogram.addSamples(&source, 2000);
    EXPECT_EQ(binsOf(histogram), (std::vector<T>{T(2000), T(0)}));
}

// Sees every value, and puts each into the same bin.
template <class Base, class T> class SeeingHistogram : public Base
{
public:
    using Base::Base;

    int getBinIndex(T x) const override
    {
        _seen.push_back(x);
        return _bin;
    }

    mutable std::vector<T> _seen;
    int _bin = 1;
};

template <class Base, class T> void expectToSeeAll()
{
    for (const unsigned int n : {0U, 1U, 5U, 256U, 3000U})
    {
        SeeingHistogram<Base, T> histogram(3, T(0), T(1));
        std::vector<T> values;
        for (unsigned int i = 0; i < n; ++i) values.push_back(T(i % 13) - T(6));
        histogram.addValue(T(-7), T(0.5));
        if (n > 0)
        {
            histogram.addValues(n, values.data());
            RepeatingRng<T> source(values);
            histogram.addSamples(&source, n);
        }
        std::vector<T> expected{T(-7)};
        expected.insert(expected.end(), values.begin(), values.end());
        expected.insert(expected.end(), values.begin(), values.end());
        EXPECT_TRUE(same(histogram._seen, expected)) << n;
        EXPECT_EQ(binsOf(histogram), (std::vector<T>{T(0), T(2 * n) + T(0.5), T(0)})) << n;
        EXPECT_EQ(histogram.getTotal(), T(2 * n) + T(0.5)) << n;
    }
}

TYPED_TEST(RnHistogramTest, ADerivedHistogramThatFindsBinsInItsOwnWaySeesAllValuesInOrder)
{
    using T = TypeParam;
    expectToSeeAll<RnHistogram<T>, T>();
    expectToSeeAll<RnUniformHistogram<T>, T>();
}

TYPED_TEST(RnHistogramTest, WhatADerivedHistogramPutsIntoNoBinIsDropped)
{
    using T = TypeParam;
    for (const int bin :
         {-1, 3, 4, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    {
        SeeingHistogram<RnHistogram<T>, T> histogram(3, T(0), T(1));
        histogram._bin = bin;
        const std::vector<T> values(1000, T(0.5));
        histogram.addValue(T(0.5), T(1));
        histogram.addValues(1000, values.data());
        EXPECT_EQ(binsOf(histogram), std::vector<T>(3, T(0))) << bin;
        EXPECT_EQ(histogram.getTotal(), T(0)) << bin;
    }
}

TYPED_TEST(RnHistogramTest, IsEndedThroughItsBase)
{
    using T = TypeParam;
    // A leak of the derived part would be seen by the sanitizers.
    const std::unique_ptr<RnHistogram<T>> histogram =
        std::make_unique<SeeingHistogram<RnUniformHistogram<T>, T>>(2, T(0), T(1));
    histogram->addValue(T(0.5), T(1));
    EXPECT_EQ(histogram->getBin(1), T(1));
}

TYPED_TEST(RnHistogramTest, AFloatsSumStopsWhereOneMoreIsTooSmall)
{
    using T = TypeParam;
    const T full = std::ldexp(T(1), std::numeric_limits<T>::digits);
    RnUniformHistogram<T> histogram(2, T(0), T(1));
    histogram.addValue(T(0.1), full - T(3));
    const std::vector<T> values(300, T(0.1));
    histogram.addValues(300, values.data());
    EXPECT_EQ(histogram.getBin(0), full);
    EXPECT_EQ(histogram.getTotal(), full);
}

TYPED_TEST(RnHistogramTest, WithoutBinsDropsAll)
{
    using T = TypeParam;
    const T edge = T(0.5);
    RnHistogram<T> histogram(0, &edge);
    EXPECT_EQ(histogram.getSize(), T(0));
    EXPECT_EQ(histogram.getBinIndex(T(0.4)), -1);
    EXPECT_EQ(histogram.getBinIndex(T(0.5)), 0);
    histogram.addValue(T(0.5), T(1));
    const std::vector<T> values(1000, T(0.5));
    histogram.addValues(1000, values.data());
    EXPECT_EQ(histogram.getTotal(), T(0));
    std::ostringstream out;
    histogram.dumpText(out);
    EXPECT_EQ(out.str(), "");
}

template <class T> RnHistogram<T> twoBins()
{
    const T edges[] = {T(1), T(1.5), T(3)};
    RnHistogram<T> histogram(2, edges);
    histogram.addValue(T(1.25), T(3));
    histogram.addValue(T(2), T(1));
    return histogram;
}

const std::string HEAD = "#Inventor V2.1 ascii\n"
                         "Separator { \n"
                         "  LightModel { model\tBASE_COLOR }\n"
                         "  DrawStyle { pointSize 2 }\n"
                         "  PointSet { vertexProperty VertexProperty { vertex [ \n";

const std::string LINES = "] } }\n"
                          "  LineSet { vertexProperty VertexProperty { vertex [ \n";

const std::string TAIL = "0 0 0, \n"
                         "0 1 0,\n"
                         "] }\n"
                         "startIndex 0 \n"
                         "numVertices [ 2, 2, 2 ] \n"
                         "}\n"
                         "}\n";

TYPED_TEST(RnHistogramTest, TheTextHasALineForEachBin)
{
    std::ostringstream out;
    twoBins<TypeParam>().dumpText(out);
    EXPECT_EQ(out.str(), "1 1.5 3\n1.5 3 1\n");
}

TYPED_TEST(RnHistogramTest, TheSceneHasDensitiesAndLines)
{
    std::ostringstream out;
    twoBins<TypeParam>().dumpInventor(out);
    EXPECT_EQ(out.str(), HEAD +
                             "1.25 1.5 0,\n"
                             "2.25 0.166667 0,\n" +
                             LINES +
                             "1 0 0, \n"
                             "3 0 0,\n"
                             "2 0 0, \n"
                             "2 1 0,\n" +
                             TAIL);
}

TYPED_TEST(RnHistogramTest, ASecondSceneIsTheSame)
{
    const RnHistogram<TypeParam> histogram = twoBins<TypeParam>();
    std::ostringstream first;
    std::ostringstream second;
    histogram.dumpInventor(first);
    histogram.dumpInventor(second);
    EXPECT_EQ(first.str(), second.str());
}

TYPED_TEST(RnHistogramTest, AUniformHistogramIsWrittenInTheSameWay)
{
    using T = TypeParam;
    RnUniformHistogram<T> histogram(2, T(-1), T(0));
    histogram.addValue(T(-0.75), T(0.5));
    histogram.addValue(T(-0.25), T(1.5));
    std::ostringstream text;
    std::ostringstream scene;
    histogram.dumpText(text);
    histogram.dumpInventor(scene);
    EXPECT_EQ(text.str(), "-1 -0.5 0.5\n-0.5 0 1.5\n");
    EXPECT_EQ(scene.str(), HEAD +
                               "-0.75 0.5 0,\n"
                               "-0.25 1.5 0,\n" +
                               LINES +
                               "-1 0 0, \n"
                               "0 0 0,\n"
                               "-0.5 0 0, \n"
                               "-0.5 1 0,\n" +
                               TAIL);
}

TYPED_TEST(RnHistogramTest, NumbersAreWrittenInTheFormatOfTheStream)
{
    using T = TypeParam;
    const RnHistogram<T> histogram = twoBins<T>();
    std::ostringstream text;
    text << std::fixed << std::setprecision(2);
    histogram.dumpText(text);
    EXPECT_EQ(text.str(), "1.00 1.50 3.00\n1.50 3.00 1.00\n");
    std::ostringstream scene;
    scene << std::setprecision(3);
    histogram.dumpInventor(scene);
    EXPECT_NE(scene.str().find("2.25 0.167 0,\n"), std::string::npos) << scene.str();
    EXPECT_EQ(scene.precision(), 3);
    std::ostringstream exact;
    exact << std::setprecision(9);
    histogram.dumpInventor(exact);
    const std::string sixth = std::is_same_v<T, float> ? "0.166666672" : "0.166666667";
    EXPECT_NE(exact.str().find("2.25 " + sixth + " 0,\n"), std::string::npos) << exact.str();
}

TYPED_TEST(RnHistogramTest, TheSceneWithoutWeightHasNaNsWithoutASign)
{
    using T = TypeParam;
    std::ostringstream out;
    RnHistogram<T>(2, T(0), T(1)).dumpInventor(out);
    EXPECT_EQ(out.str(), HEAD +
                             "0.25 nan 0,\n"
                             "0.75 nan 0,\n" +
                             LINES +
                             "0 0 0, \n"
                             "1 0 0,\n"
                             "0.5 0 0, \n"
                             "0.5 1 0,\n" +
                             TAIL);
}

TYPED_TEST(RnHistogramTest, ABinWithoutWidthHasADensityOfNaN)
{
    using T = TypeParam;
    const T edges[] = {T(0), T(1), T(1), T(2)};
    RnHistogram<T> histogram(3, edges);
    histogram.addValue(T(0.5), T(2));
    std::ostringstream out;
    histogram.dumpInventor(out);
    EXPECT_NE(out.str().find("0.5 1 0,\n1 nan 0,\n1.5 0 0,\n"), std::string::npos) << out.str();
}

} // namespace

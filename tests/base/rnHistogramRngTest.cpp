#include "base/rnHistogramRng.h"

#include "base/exInternalError.h"
#include "base/rnGaussianRng.h"
#include "base/rnLecuyerUniformRng.h"
#include "base/rnNumRecUniformRng.h"
#include "base/rnVanDerCorputRng.h"

#include "support/histogramReference.h"
#include "support/memberOrder.h"

#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace support
{

bool standInOrder(const Zu::RnHistogramRng<float>& object);
template struct MemberOrder<Zu::RnHistogramRng<float>, &Zu::RnHistogramRng<float>::_nBins,
                            &Zu::RnHistogramRng<float>::_cdf, &Zu::RnHistogramRng<float>::_edges,
                            &Zu::RnHistogramRng<float>::_rng, &Zu::RnHistogramRng<float>::_search>;
bool standInOrder(const Zu::RnHistogramRng<double>& object);
template struct MemberOrder<Zu::RnHistogramRng<double>, &Zu::RnHistogramRng<double>::_nBins,
                            &Zu::RnHistogramRng<double>::_cdf, &Zu::RnHistogramRng<double>::_edges,
                            &Zu::RnHistogramRng<double>::_rng,
                            &Zu::RnHistogramRng<double>::_search>;

} // namespace support

namespace
{

using support::before;
using support::behind;
using support::HistogramRandom;
using support::INFINITE;
using support::NO_NUMBER;
using support::RepeatingRng;
using support::same;
using Zu::ExInternalError;
using Zu::RnHistogram;
using Zu::RnHistogramRng;
using Zu::RnUniformHistogram;

template <class T> class RnHistogramRngTest : public testing::Test
{
};

TYPED_TEST_SUITE(RnHistogramRngTest, support::FloatAndDouble, );

template <class T>
RnHistogram<T> histogramOf(const std::vector<T>& edges, const std::vector<T>& weights)
{
    const auto nBins = static_cast<unsigned int>(weights.size());
    RnHistogram<T> histogram(nBins, edges.data());
    for (std::size_t i = 0; i < weights.size(); ++i) histogram.addValue(edges[i], weights[i]);
    return histogram;
}

template <class T> std::vector<T> unevenEdges(std::size_t nBins)
{
    HistogramRandom random(781 + nBins);
    std::vector<T> edges{T(-2.3)};
    for (std::size_t i = 0; i < nBins; ++i)
        edges.push_back(edges.back() + random.within(T(0.01), T(2)));
    return edges;
}

// The sampler's reference.
template <class T> struct ToldSampler
{
    T sample(T u) const
    {
        const support::ToldChoice<T> choice = support::toldChoice(_weights, _cdf, u);
        return support::toldPlace(choice, _edges[choice._cell],
                                  _edges[choice._cell + (_weights.empty() ? 0 : 1)]);
    }

    T pdf(T x) const
    {
        const int k = support::toldBin(_edges, x);
        if (k < 0 || static_cast<std::size_t>(k) >= _weights.size()) return T(0);
        const auto i = static_cast<std::size_t>(k);
        return (_cdf[i + 1] - _cdf[i]) / (_edges[i + 1] - _edges[i]);
    }

    std::vector<T> _edges;
    std::vector<T> _weights;
    std::vector<T> _cdf = support::toldCdf(_weights);
};

TYPED_TEST(RnHistogramRngTest, ADrawOfAQuarterIsAQuarterOfTwoEvenBins)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0.25)});
    RnHistogramRng<T> rng(histogramOf<T>({T(0), T(1), T(2)}, {T(1), T(1)}), &source);
    EXPECT_EQ(rng(), T(0.5));
    for (const T x : {T(0), T(0.3), T(1), T(1.7), before(T(2))}) EXPECT_EQ(rng.getPdf(x), T(0.5));
}

TYPED_TEST(RnHistogramRngTest, TheThreeWaysToDrawAreTheSame)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0.25), T(0.875), T(0.5)});
    RnHistogramRng<T> rng(histogramOf<T>({T(0), T(1), T(3)}, {T(1), T(1)}), &source);
    EXPECT_EQ(rng(), T(0.5));
    T value;
    rng.getSample(value);
    EXPECT_EQ(value, T(2.5));
    T values[4];
    rng.getSequence(4, values);
    EXPECT_EQ(values[0], T(1));
    EXPECT_EQ(values[1], T(0.5));
    EXPECT_EQ(values[2], T(2.5));
    EXPECT_EQ(values[3], T(1));
    EXPECT_EQ(source._draws, 6U);
}

TYPED_TEST(RnHistogramRngTest, AnEmptyBinIsNeverChosen)
{
    using T = TypeParam;
    HistogramRandom random(782);
    std::vector<T> draws{T(0), T(0.5), before(T(0.5)), behind(T(0.5)), before(T(1))};
    for (int i = 0; i < 2000; ++i) draws.push_back(random.unit<T>());
    const std::size_t n = draws.size();
    RepeatingRng<T> source(std::move(draws));
    RnHistogramRng<T> rng(histogramOf<T>({T(0), T(1), T(2), T(3)}, {T(1), T(0), T(1)}), &source);
    for (std::size_t i = 0; i < n; ++i)
    {
        const T value = rng();
        ASSERT_TRUE((value >= T(0) && value <= T(1)) || (value >= T(2) && value <= T(3))) << value;
    }
    EXPECT_EQ(rng.getPdf(T(1)), T(0));
    EXPECT_EQ(rng.getPdf(T(1.5)), T(0));
    EXPECT_EQ(rng.getPdf(before(T(2))), T(0));
    EXPECT_EQ(rng.getPdf(before(T(1))), T(0.5));
    EXPECT_EQ(rng.getPdf(T(2)), T(0.5));
}

TYPED_TEST(RnHistogramRngTest, ADrawOnAnEntryGoesToTheNextBinWithWeight)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0), T(0.25), T(0.5)});
    RnHistogramRng<T> rng(histogramOf<T>({T(0), T(1), T(2), T(3), T(4), T(5), T(6)},
                                         {T(0), T(1), T(0), T(1), T(0), T(2)}),
                          &source);
    EXPECT_EQ(rng(), T(1));
    EXPECT_EQ(rng(), T(3));
    EXPECT_EQ(rng(), T(5));
}

TYPED_TEST(RnHistogramRngTest, ADrawAtOrBehindTheEndOfTheTableIsTheEndOfTheLastBinWithWeight)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(1), behind(T(1)), T(2), INFINITE<T>});
    RnHistogramRng<T> rng(histogramOf<T>({T(0), T(1), T(3), T(4)}, {T(1), T(1), T(0)}), &source);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(rng(), T(3)) << i;
}

TYPED_TEST(RnHistogramRngTest, TheEndOfTheLastBinIsItsEdgeToTheBit)
{
    using T = TypeParam;
    // Width and beginning of a bin don't always add up to its end.
    HistogramRandom random(786);
    unsigned int inexact = 0;
    for (int round = 0; round < 200; ++round)
    {
        const T low = -random.magnitude<T>(-3, 1);
        const T high = random.magnitude<T>(-3, 1);
        if ((high - low) + low != high) ++inexact;
        RepeatingRng<T> source({T(1), T(2)});
        RnHistogramRng<T> rng(histogramOf<T>({low, high}, {T(1)}), &source);
        ASSERT_EQ(rng(), high) << low;
        ASSERT_EQ(rng(), high) << low;
    }
    EXPECT_GT(inexact, 0U);
}

TYPED_TEST(RnHistogramRngTest, ABinWhoseShareRoundsAwayStillHasABeginningAndAnEnd)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(1), T(2), T(-1)});
    RnHistogramRng<T> last(histogramOf<T>({T(0), T(1), T(3), T(4)}, {T(1), T(1e-30), T(0)}),
                           &source);
    EXPECT_EQ(last(), T(3));
    EXPECT_EQ(last(), T(3));
    EXPECT_EQ(last(), T(0));
    source.restart();
    const T smallest = std::numeric_limits<T>::denorm_min();
    RnHistogramRng<T> first(histogramOf<T>({T(0), T(1), T(3), T(4)}, {T(0), smallest, T(1e30)}),
                            &source);
    EXPECT_EQ(first(), T(4));
    EXPECT_EQ(first(), T(4));
    EXPECT_EQ(first(), T(1));
}

TYPED_TEST(RnHistogramRngTest, ADrawBeforeTheTableIsTheBeginningOfTheFirstBinWithWeight)
{
    using T = TypeParam;
    RepeatingRng<T> source({before(T(0)), T(-0.25), T(-7), -INFINITE<T>});
    RnHistogramRng<T> rng(histogramOf<T>({T(0), T(1), T(3), T(4)}, {T(0), T(1), T(1)}), &source);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(rng(), T(1)) << i;
}

TYPED_TEST(RnHistogramRngTest, ADrawThatIsNoNumberGivesNone)
{
    using T = TypeParam;
    RepeatingRng<T> source({NO_NUMBER<T>});
    RnHistogramRng<T> rng(histogramOf<T>({T(0), T(1), T(3)}, {T(1), T(1)}), &source);
    EXPECT_TRUE(std::isnan(rng()));
    T value = 0;
    rng.getSequence(1, &value);
    EXPECT_TRUE(std::isnan(value));
}

TYPED_TEST(RnHistogramRngTest, WithoutWeightAllSamplesAndDensitiesAreNoNumbers)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0), T(0.3), T(1), T(-1), T(2), NO_NUMBER<T>});
    RnHistogramRng<T> rng(RnHistogram<T>(3, T(0), T(3)), &source);
    for (int i = 0; i < 6; ++i) EXPECT_TRUE(std::isnan(rng())) << i;
    std::vector<T> values(300, T(0));
    rng.getSequence(300, values.data());
    EXPECT_TRUE(same(values, std::vector<T>(300, NO_NUMBER<T>)));
    for (const T x : {T(0), T(1.5), before(T(3))}) EXPECT_TRUE(std::isnan(rng.getPdf(x))) << x;
    EXPECT_EQ(rng.getPdf(T(-1)), T(0));
    EXPECT_EQ(rng.getPdf(T(3)), T(0));
}

TYPED_TEST(RnHistogramRngTest, WithoutBinsAllSamplesAreNoNumbers)
{
    using T = TypeParam;
    const T edge = T(0.5);
    RepeatingRng<T> source({T(0), T(0.5), T(1), T(-1), NO_NUMBER<T>});
    RnHistogramRng<T> rng(RnHistogram<T>(0, &edge), &source);
    for (int i = 0; i < 5; ++i) EXPECT_TRUE(std::isnan(rng())) << i;
    std::vector<T> values(300, T(0));
    rng.getSequence(300, values.data());
    EXPECT_TRUE(same(values, std::vector<T>(300, NO_NUMBER<T>)));
    EXPECT_EQ(rng.getEfficientMin(), T(0.5));
    EXPECT_EQ(rng.getEfficientMax(), T(0.5));
    EXPECT_EQ(rng.getEfficientWidth(), T(0));
    // Every place is outside of all bins.
    EXPECT_EQ(rng.getPdf(T(0.5)), T(0));
    EXPECT_EQ(rng.getPdf(T(0)), T(0));
}

TYPED_TEST(RnHistogramRngTest, TheRangeIsThatOfTheEdgesWhateverTheBinsHold)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0)});
    const RnHistogramRng<T> rng(histogramOf<T>({T(-1), T(0), T(1.5), T(4)}, {T(0), T(1), T(0)}),
                                &source);
    EXPECT_EQ(rng.getEfficientMin(), T(-1));
    EXPECT_EQ(rng.getEfficientMax(), T(4));
    EXPECT_EQ(rng.getEfficientWidth(), T(5));
    EXPECT_EQ(rng.getEfficientFraction(), T(1));
    EXPECT_STREQ(rng.getName(), "Histogram");
    EXPECT_EQ(source._draws, 0U);
}

TYPED_TEST(RnHistogramRngTest, ADensityIsZeroOutsideOfTheRange)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0)});
    const RnHistogramRng<T> rng(histogramOf<T>({T(-1), T(0), T(4)}, {T(1), T(1)}), &source);
    for (const T x : {before(T(-1)), T(-9), T(4), T(9), INFINITE<T>, -INFINITE<T>, NO_NUMBER<T>})
        EXPECT_EQ(rng.getPdf(x), T(0)) << x;
    EXPECT_EQ(rng.getPdf(T(-1)), T(0.5));
    EXPECT_EQ(rng.getPdf(T(0)), T(0.125));
}

TYPED_TEST(RnHistogramRngTest, TheBinOfAUniformHistogramsDensityIsSearchedFor)
{
    using T = TypeParam;
    RnUniformHistogram<T> histogram(10, T(0.1), T(0.8));
    const std::vector<T> edges = support::toldEdges(10, T(0.1), T(0.8));
    std::vector<T> weights;
    for (std::size_t i = 0; i < 10; ++i)
    {
        weights.push_back(T(i + 1));
        histogram.addValue((edges[i] + edges[i + 1]) / T(2), weights.back());
    }
    RepeatingRng<T> source({T(0)});
    const RnHistogramRng<T> rng(histogram, &source);
    const ToldSampler<T> told{edges, weights};
    for (const T edge : edges)
        for (const T x : {before(edge), edge, behind(edge)})
            EXPECT_TRUE(same(rng.getPdf(x), told.pdf(x))) << x;
}

TYPED_TEST(RnHistogramRngTest, RestartsItsSource)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0.25), T(0.5), T(0.75)});
    RnHistogramRng<T> rng(histogramOf<T>({T(0), T(1)}, {T(1)}), &source);
    EXPECT_EQ(rng(), T(0.25));
    EXPECT_EQ(rng(), T(0.5));
    rng.restart();
    EXPECT_EQ(source._restarts, 1U);
    EXPECT_EQ(rng(), T(0.25));
}

TYPED_TEST(RnHistogramRngTest, NoSourceIsRefused)
{
    using T = TypeParam;
    for (const unsigned int nBins : {0U, 1U, 100U}) try
        {
            const RnHistogramRng<T> rng(RnHistogram<T>(nBins, T(0), T(1)), nullptr);
            ADD_FAILURE() << "nothing raised";
        }
        catch (const ExInternalError& exception)
        {
            EXPECT_STREQ(exception.getReason(), "Assertion '_rng' failed.");
        }
}

TYPED_TEST(RnHistogramRngTest, LaterChangesOfTheHistogramDoNotReachIt)
{
    using T = TypeParam;
    Zu::RnLecuyerUniformRng<T> source(1, 7);
    Zu::RnLecuyerUniformRng<T> sameSource(1, 7);
    auto histogram = std::make_unique<RnHistogram<T>>(
        histogramOf<T>({T(0), T(1), T(2.5), T(3)}, {T(1), T(3), T(2)}));
    RnHistogramRng<T> rng(*histogram, &source);
    RnHistogramRng<T> expected(histogramOf<T>({T(0), T(1), T(2.5), T(3)}, {T(1), T(3), T(2)}),
                               &sameSource);
    for (int i = 0; i < 100; ++i) ASSERT_EQ(rng(), expected());
    histogram->clear();
    for (int i = 0; i < 100; ++i) ASSERT_EQ(rng(), expected());
    histogram->addValue(T(0.5), T(1000));
    for (int i = 0; i < 100; ++i) ASSERT_EQ(rng(), expected());
    histogram.reset();
    for (int i = 0; i < 100; ++i) ASSERT_EQ(rng(), expected());
    EXPECT_EQ(rng.getPdf(T(0.5)), expected.getPdf(T(0.5)));
}

TYPED_TEST(RnHistogramRngTest, ACopySharesTheSource)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0.25), T(0.5), T(0.75)});
    RnHistogramRng<T> rng(histogramOf<T>({T(0), T(1)}, {T(1)}), &source);
    RnHistogramRng<T> copy(rng);
    EXPECT_EQ(rng(), T(0.25));
    EXPECT_EQ(copy(), T(0.5));
    EXPECT_EQ(rng(), T(0.75));
}

TYPED_TEST(RnHistogramRngTest, ASourceOfHighDrawsStaysInTheLastBinWithWeight)
{
    using T = TypeParam;
    // With this many bins, rounding leaves the end of the table on either side of 1.
    for (unsigned int nBins = 1; nBins < 200; ++nBins)
    {
        std::vector<T> weights(nBins, T(0.1));
        weights.push_back(T(0));
        const std::vector<T> edges = support::toldEdges(nBins + 1, T(0), T(nBins + 1));
        RepeatingRng<T> source({before(T(1)), T(1), support::toldCdf(weights).back()});
        RnHistogramRng<T> rng(histogramOf<T>(edges, weights), &source);
        for (int i = 0; i < 3; ++i)
        {
            const T value = rng();
            ASSERT_GT(value, T(nBins - 1)) << nBins;
            ASSERT_LE(value, edges[nBins]) << nBins;
        }
    }
}

template <class T> struct SamplerCase
{
    std::string _name;
    ToldSampler<T> _told;
};

template <class T> std::vector<SamplerCase<T>> samplerCases()
{
    std::vector<SamplerCase<T>> cases;
    for (const std::size_t nBins : {1U, 2U, 7U, 64U, 4096U})
        for (const auto& [name, weights] : support::weightTables<T>(nBins))
            cases.push_back({name + ", " + std::to_string(nBins),
                             ToldSampler<T>{unevenEdges<T>(nBins), weights}});
    return cases;
}

TYPED_TEST(RnHistogramRngTest, EverySampleAndDensityIsTheToldOne)
{
    using T = TypeParam;
    for (const auto& [name, told] : samplerCases<T>())
    {
        std::vector<T> draws = support::hardDraws(told._cdf);
        HistogramRandom random(783);
        for (int i = 0; i < 500; ++i) draws.push_back(random.unit<T>());
        RepeatingRng<T> source(draws);
        RnHistogramRng<T> rng(histogramOf(told._edges, told._weights), &source);
        for (const T draw : draws)
        {
            const T expected = told.sample(draw);
            ASSERT_TRUE(same(rng(), expected)) << draw << " " << name;
        }
        std::vector<T> values(draws.size(), T(0));
        rng.getSequence(static_cast<unsigned int>(values.size()), values.data());
        for (std::size_t i = 0; i < draws.size(); ++i)
        {
            const T expected = told.sample(draws[i]);
            ASSERT_TRUE(same(values[i], expected)) << draws[i] << " " << name;
        }
        ASSERT_EQ(source._draws, 2 * draws.size()) << name;

        const std::size_t step = 1 + told._edges.size() / 50;
        for (std::size_t i = 0; i < told._edges.size(); i += step)
            for (const T x : {before(told._edges[i]), told._edges[i], behind(told._edges[i])})
                ASSERT_TRUE(same(rng.getPdf(x), told.pdf(x))) << x << " " << name;
    }
}

template <class T, class Source, class... Arguments>
void expectSequences(const SamplerCase<T>& row, const Arguments&... arguments)
{
    Source source(arguments...);
    Source single(arguments...);
    RnHistogramRng<T> rng(histogramOf(row._told._edges, row._told._weights), &source);
    // From a state that no block begins at.
    for (int i = 0; i < 5; ++i) ASSERT_TRUE(same(rng(), row._told.sample(single()))) << row._name;
    for (const unsigned int n : support::SEQUENCE_LENGTHS)
    {
        constexpr T UNTOUCHED = T(-12345);
        std::vector<T> values(n + 1, UNTOUCHED);
        rng.getSequence(n, values.data());
        std::vector<T> expected;
        for (unsigned int i = 0; i < n; ++i) expected.push_back(row._told.sample(single()));
        expected.push_back(UNTOUCHED);
        ASSERT_TRUE(same(values, expected)) << n << ", " << row._name;
        // Neither more nor fewer were drawn.
        ASSERT_TRUE(same(rng(), row._told.sample(single()))) << n << ", " << row._name;
    }
    ASSERT_EQ(source(), single()) << row._name;
}

TYPED_TEST(RnHistogramRngTest, ASequenceIsAsManySingleDraws)
{
    using T = TypeParam;
    for (const SamplerCase<T>& row : samplerCases<T>())
        expectSequences<T, Zu::RnLecuyerUniformRng<T>>(row, 1U, 4711U);
}

TYPED_TEST(RnHistogramRngTest, ASequenceOfManyBinsIsAsManySingleDraws)
{
    using T = TypeParam;
    support::HistogramRandom random(784);
    RnHistogram<T> histogram(50000, T(0), T(1));
    for (int i = 0; i < 100000; ++i) histogram.addValue(random.unit<T>(), T(1));
    Zu::RnLecuyerUniformRng<T> source;
    Zu::RnLecuyerUniformRng<T> sameSource;
    RnHistogramRng<T> inSequence(histogram, &source);
    RnHistogramRng<T> single(histogram, &sameSource);
    std::vector<T> values(3000);
    inSequence.getSequence(3000, values.data());
    for (const T value : values) ASSERT_EQ(value, single());
}

TYPED_TEST(RnHistogramRngTest, ASequenceOfOtherSourcesIsAsManySingleDraws)
{
    using T = TypeParam;
    const SamplerCase<T> row{"few", {unevenEdges<T>(7), support::weightTables<T>(7)[2].second}};
    expectSequences<T, Zu::RnNumRecUniformRng<T>>(row, 3U);
    expectSequences<T, Zu::RnVanDerCorputRng<T>>(row, 2U);
    expectSequences<T, Zu::RnVanDerCorputRng<T>>(row, 5U);
    HistogramRandom random(784);
    std::vector<T> script;
    for (int i = 0; i < 997; ++i) script.push_back(random.within(T(-0.1), T(1.1)));
    expectSequences<T, RepeatingRng<T>>(row, script);
}

TYPED_TEST(RnHistogramRngTest, ASequenceOfAShapedSourceIsAsManySingleDraws)
{
    using T = TypeParam;
    Zu::RnLecuyerUniformRng<T> uniform(1, 5);
    Zu::RnLecuyerUniformRng<T> sameUniform(1, 5);
    Zu::RnGaussianRng<T> source(&uniform, T(0.5), T(0.4));
    Zu::RnGaussianRng<T> single(&sameUniform, T(0.5), T(0.4));
    const ToldSampler<T> told{unevenEdges<T>(64), std::vector<T>(64, T(1))};
    RnHistogramRng<T> rng(histogramOf(told._edges, told._weights), &source);
    std::vector<T> values(1001, T(0));
    rng.getSequence(1001, values.data());
    for (const T value : values) ASSERT_TRUE(same(value, told.sample(single())));
    EXPECT_EQ(source(), single());
}

TYPED_TEST(RnHistogramRngTest, TheWeightsAreSummedAnewInTheOrderOfTheBins)
{
    using T = TypeParam;
    // Added from the last bin to the first one, the histogram's own total is another number.
    HistogramRandom random(785);
    std::vector<T> weights;
    for (int i = 0; i < 40; ++i) weights.push_back(random.magnitude<T>(-3, 8));
    RnHistogram<T> histogram(40, T(0), T(40));
    for (std::size_t i = 40; i > 0; --i) histogram.addValue(T(i) - T(0.5), weights[i - 1]);
    T sum = 0;
    for (const T weight : weights) sum += weight;
    ASSERT_NE(histogram.getTotal(), sum);
    const ToldSampler<T> told{support::toldEdges(40, T(0), T(40)), weights};
    Zu::RnLecuyerUniformRng<T> source(1, 5);
    Zu::RnLecuyerUniformRng<T> single(1, 5);
    RnHistogramRng<T> rng(histogram, &source);
    for (int i = 0; i < 1000; ++i) ASSERT_TRUE(same(rng(), told.sample(single())));
}

TYPED_TEST(RnHistogramRngTest, WhatIsSampledFillsAHistogramLikeTheFirst)
{
    using T = TypeParam;
    // Points of a sequence without gaps: each bin gets its share, give or take a few.
    const std::vector<T> weights{T(1), T(0), T(5), T(2)};
    Zu::RnVanDerCorputRng<T> source(2);
    RnHistogramRng<T> rng(histogramOf<T>({T(0), T(1), T(2), T(4), T(5)}, weights), &source);
    RnHistogram<T> again = histogramOf<T>({T(0), T(1), T(2), T(4), T(5)}, std::vector<T>(4, T(0)));
    again.addSamples(&rng, 8000);
    EXPECT_EQ(again.getTotal(), T(8000));
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(static_cast<double>(again.getBin(i)),
                    1000.0 * static_cast<double>(weights[static_cast<std::size_t>(i)]), 20.0)
            << i;
    EXPECT_EQ(again.getBin(1), T(0));
}

TYPED_TEST(RnHistogramRngTest, WhatSpeedsItUpStandsBehindTheMembersThatItIsToldBy)
{
    using T = TypeParam;
    Zu::RnLecuyerUniformRng<T> source;
    const RnHistogramRng<T> rng(Zu::RnHistogram<T>(2, T(0), T(1)), &source);
    EXPECT_TRUE(support::standInOrder(rng));
}

} // namespace

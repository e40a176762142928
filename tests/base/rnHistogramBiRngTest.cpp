#include "base/rnHistogramBiRng.h"

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

bool standInOrder(const Zu::RnHistogramBiRng<float>& object);
template struct MemberOrder<
    Zu::RnHistogramBiRng<float>, &Zu::RnHistogramBiRng<float>::_nBinsX,
    &Zu::RnHistogramBiRng<float>::_nBinsY, &Zu::RnHistogramBiRng<float>::_cdf,
    &Zu::RnHistogramBiRng<float>::_edgesX, &Zu::RnHistogramBiRng<float>::_edgesY,
    &Zu::RnHistogramBiRng<float>::_rng, &Zu::RnHistogramBiRng<float>::_searchX,
    &Zu::RnHistogramBiRng<float>::_searchY>;
bool standInOrder(const Zu::RnHistogramBiRng<double>& object);
template struct MemberOrder<
    Zu::RnHistogramBiRng<double>, &Zu::RnHistogramBiRng<double>::_nBinsX,
    &Zu::RnHistogramBiRng<double>::_nBinsY, &Zu::RnHistogramBiRng<double>::_cdf,
    &Zu::RnHistogramBiRng<double>::_edgesX, &Zu::RnHistogramBiRng<double>::_edgesY,
    &Zu::RnHistogramBiRng<double>::_rng, &Zu::RnHistogramBiRng<double>::_searchX,
    &Zu::RnHistogramBiRng<double>::_searchY>;

} // namespace support

namespace
{

using support::before;
using support::behind;
using support::HistogramRandom;
using support::INFINITE;
using support::NO_NUMBER;
using support::Place;
using support::RepeatingRng;
using support::same;
using Zu::ExInternalError;
using Zu::RnHistogramBi;
using Zu::RnHistogramBiRng;

template <class T> class RnHistogramBiRngTest : public testing::Test
{
};

TYPED_TEST_SUITE(RnHistogramBiRngTest, support::FloatAndDouble, );

template <class T> struct Pair
{
    T _x;
    T _y;
};

template <class T>
RnHistogramBi<T> histogramOf(const std::vector<T>& edgesX, const std::vector<T>& edgesY,
                             const std::vector<T>& weights)
{
    const std::size_t nBinsX = edgesX.size() - 1;
    RnHistogramBi<T> histogram(static_cast<unsigned int>(nBinsX),
                               static_cast<unsigned int>(edgesY.size() - 1), edgesX.data(),
                               edgesY.data());
    for (std::size_t cell = 0; cell < weights.size(); ++cell)
        histogram.addValue(edgesX[cell % nBinsX], edgesY[cell / nBinsX], weights[cell]);
    return histogram;
}

template <class T> std::vector<T> unevenEdges(std::size_t nBins, unsigned int seed)
{
    HistogramRandom random(seed);
    std::vector<T> edges{T(-2.3)};
    for (std::size_t i = 0; i < nBins; ++i)
        edges.push_back(edges.back() + random.within(T(0.01), T(2)));
    return edges;
}

// The sampler's reference. Without a choice, y is unspecified.
template <class T> struct ToldSampler
{
    Pair<T> sample(T u, T v) const
    {
        const support::ToldChoice<T> choice = support::toldChoice(_weights, _cdf, u);
        if (choice._place == Place::NONE) return {NO_NUMBER<T>, NO_NUMBER<T>};
        const std::size_t nBinsX = _edgesX.size() - 1;
        const std::size_t j = choice._cell / nBinsX;
        const std::size_t i = choice._cell - j * nBinsX;
        return {support::toldPlace(choice, _edgesX[i], _edgesX[i + 1]),
                (_edgesY[j + 1] - _edgesY[j]) * v + _edgesY[j]};
    }

    T pdf(T x, T y) const
    {
        const int i = support::toldBin(_edgesX, x);
        const int j = support::toldBin(_edgesY, y);
        const int nBinsX = static_cast<int>(_edgesX.size()) - 1;
        if (i < 0 || i >= nBinsX) return T(0);
        if (j < 0 || j >= static_cast<int>(_edgesY.size()) - 1) return T(0);
        const auto k = static_cast<std::size_t>(nBinsX * j + i);
        return _cdf[k + 1] - _cdf[k];
    }

    std::vector<T> _edgesX;
    std::vector<T> _edgesY;
    std::vector<T> _weights;
    std::vector<T> _cdf = support::toldCdf(_weights);
};

template <class T> testing::AssertionResult isTold(T x, T y, const Pair<T>& told)
{
    if (std::isnan(told._x) && std::isnan(told._y)) return same(x, told._x);
    const testing::AssertionResult first = same(x, told._x);
    return first ? same(y, told._y) : first;
}

TYPED_TEST(RnHistogramBiRngTest, OneCellIsLinearInBothDraws)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0.25), T(0.75), T(0), T(0), T(0.5), T(1)});
    RnHistogramBiRng<T> rng(histogramOf<T>({T(1), T(5)}, {T(-2), T(0)}, {T(3)}), &source);
    T x;
    T y;
    rng.getSample(x, y);
    EXPECT_EQ(x, T(2));
    EXPECT_EQ(y, T(-0.5));
    rng.getSample(x, y);
    EXPECT_EQ(x, T(1));
    EXPECT_EQ(y, T(-2));
    rng.getSample(x, y);
    EXPECT_EQ(x, T(3));
    EXPECT_EQ(y, T(0));
    EXPECT_EQ(source._draws, 6U);
}

TYPED_TEST(RnHistogramBiRngTest, TheFirstDrawChoosesTheCellInStorageOrder)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0.125), T(0.5), T(0.375), T(0.5), T(0.625), T(0.25), T(0.875), T(0)});
    RnHistogramBiRng<T> rng(
        histogramOf<T>({T(0), T(1), T(3)}, {T(0), T(10), T(30)}, {T(1), T(1), T(1), T(1)}),
        &source);
    const Pair<T> expected[] = {{T(0.5), T(5)}, {T(2), T(5)}, {T(0.5), T(15)}, {T(2), T(10)}};
    for (const Pair<T>& pair : expected)
    {
        T x;
        T y;
        rng.getSample(x, y);
        EXPECT_EQ(x, pair._x);
        EXPECT_EQ(y, pair._y);
    }
}

TYPED_TEST(RnHistogramBiRngTest, CellsAndRowsWithoutWeightAreNeverChosen)
{
    using T = TypeParam;
    const std::vector<T> edgesX = support::toldEdges(3, T(0), T(3));
    const std::vector<T> edgesY = support::toldEdges(4, T(0), T(4));
    const std::vector<T> weights{T(0), T(0), T(0), T(0), T(2), T(1),
                                 T(0), T(0), T(0), T(1), T(0), T(0)};
    const RnHistogramBi<T> histogram = histogramOf(edgesX, edgesY, weights);
    Zu::RnLecuyerUniformRng<T> source(1, 3);
    RnHistogramBiRng<T> rng(histogram, &source);
    RnHistogramBi<T> again(histogram);
    again.clear();
    again.addSamples(&rng, 3000);
    EXPECT_EQ(again.getTotal(), T(3000));
    for (unsigned int i = 0; i < 3; ++i)
        for (unsigned int j = 0; j < 4; ++j)
        {
            const T weight = weights[j * 3 + i];
            const T count = again.getBin(i, static_cast<int>(j));
            EXPECT_NEAR(static_cast<double>(count), static_cast<double>(weight) * 750.0, 150.0);
            if (weight == T(0))
            {
                EXPECT_EQ(count, T(0)) << i << " " << j;
            }
        }
}

TYPED_TEST(RnHistogramBiRngTest, ADrawOutsideOfTheTableIsAtTheEndsOfTheCellsWithWeight)
{
    using T = TypeParam;
    for (const T draw :
         {T(1), behind(T(1)), T(2), INFINITE<T>, before(T(0)), T(-0.5), T(-7), -INFINITE<T>})
    {
        RepeatingRng<T> source({draw, T(0.5)});
        RnHistogramBiRng<T> rng(histogramOf<T>({T(0), T(1), T(3)}, {T(0), T(10), T(30), T(60)},
                                               {T(0), T(1), T(1), T(1), T(0), T(0)}),
                                &source);
        T x;
        T y;
        rng.getSample(x, y);
        EXPECT_EQ(x, draw < T(0) ? T(1) : T(3)) << draw;
        EXPECT_EQ(y, draw < T(0) ? T(5) : T(20)) << draw;
    }
}

TYPED_TEST(RnHistogramBiRngTest, ADrawThatIsNoNumberGivesNone)
{
    using T = TypeParam;
    RepeatingRng<T> source({NO_NUMBER<T>, T(0.5), T(0.5), NO_NUMBER<T>});
    RnHistogramBiRng<T> rng(histogramOf<T>({T(0), T(1)}, {T(0), T(1)}, {T(1)}), &source);
    T x;
    T y;
    rng.getSample(x, y);
    EXPECT_TRUE(std::isnan(x));
    rng.getSample(x, y);
    EXPECT_EQ(x, T(0.5));
    EXPECT_TRUE(std::isnan(y));
}

TYPED_TEST(RnHistogramBiRngTest, WithoutWeightAllXAndDensitiesAreNoNumbers)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0), T(0.3), T(1), T(-1), T(2), T(0.5), NO_NUMBER<T>});
    RnHistogramBiRng<T> rng(RnHistogramBi<T>(2, 3, T(0), T(1), T(0), T(1)), &source);
    for (int n = 0; n < 14; ++n)
    {
        T x = 0;
        T y = 0;
        rng.getSample(x, y);
        EXPECT_TRUE(std::isnan(x)) << n;
    }
    std::vector<T> x(300, T(0));
    std::vector<T> y(300, T(0));
    rng.getSequence(300, x.data(), y.data());
    EXPECT_TRUE(same(x, std::vector<T>(300, NO_NUMBER<T>)));
    EXPECT_TRUE(std::isnan(rng.getPdf(T(0.5), T(0.5))));
    EXPECT_TRUE(std::isnan(rng.getPdf(T(0), T(0))));
    EXPECT_EQ(rng.getPdf(T(1), T(0.5)), T(0));
    EXPECT_EQ(rng.getPdf(T(0.5), T(-1)), T(0));
}

TYPED_TEST(RnHistogramBiRngTest, WithoutBinsAllXAreNoNumbers)
{
    using T = TypeParam;
    const std::pair<unsigned int, unsigned int> sizes[] = {{0, 0}, {0, 3}, {3, 0}};
    for (const auto& [nBinsX, nBinsY] : sizes)
    {
        RepeatingRng<T> source({T(0), T(0.3), T(1), T(-1), T(2), T(0.5), NO_NUMBER<T>});
        RnHistogramBiRng<T> rng(RnHistogramBi<T>(nBinsX, nBinsY, T(0), T(1), T(0), T(1)), &source);
        for (int n = 0; n < 14; ++n)
        {
            T x = 0;
            T y = 0;
            rng.getSample(x, y);
            EXPECT_TRUE(std::isnan(x)) << n;
        }
        std::vector<T> x(300, T(0));
        std::vector<T> y(300, T(0));
        rng.getSequence(300, x.data(), y.data());
        EXPECT_TRUE(same(x, std::vector<T>(300, NO_NUMBER<T>)));
        // Every place is outside of all cells.
        EXPECT_EQ(rng.getPdf(T(0.5), T(0.5)), T(0));
        EXPECT_EQ(rng.getPdf(T(1), T(1)), T(0));
    }
}

TYPED_TEST(RnHistogramBiRngTest, TheRangeIsThatOfTheEdgesWhateverTheCellsHold)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0)});
    const RnHistogramBiRng<T> rng(
        histogramOf<T>({T(-1), T(0), T(4)}, {T(2), T(5), T(9)}, {T(0), T(1), T(0), T(0)}), &source);
    T x;
    T y;
    rng.getEfficientMin(x, y);
    EXPECT_EQ(x, T(-1));
    EXPECT_EQ(y, T(2));
    rng.getEfficientMax(x, y);
    EXPECT_EQ(x, T(4));
    EXPECT_EQ(y, T(9));
    rng.getEfficientWidth(x, y);
    EXPECT_EQ(x, T(5));
    EXPECT_EQ(y, T(7));
    EXPECT_EQ(rng.getEfficientFraction(), T(1));
    EXPECT_STREQ(rng.getName(), "HistogramBi");
    EXPECT_EQ(source._draws, 0U);
}

TYPED_TEST(RnHistogramBiRngTest, ADensityIsTheProbabilityOfTheCellNotDividedByItsArea)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0)});
    const RnHistogramBiRng<T> rng(
        histogramOf<T>({T(0), T(2), T(6)}, {T(0), T(4), T(12)}, {T(1), T(2), T(4), T(1)}), &source);
    EXPECT_EQ(rng.getPdf(T(1), T(1)), T(0.125));
    EXPECT_EQ(rng.getPdf(T(3), T(1)), T(0.25));
    EXPECT_EQ(rng.getPdf(T(1), T(5)), T(0.5));
    EXPECT_EQ(rng.getPdf(T(3), T(5)), T(0.125));
    T sum = 0;
    T integral = 0;
    for (const T x : {T(1), T(3)})
        for (const T y : {T(1), T(5)})
        {
            sum += rng.getPdf(x, y);
            integral += rng.getPdf(x, y) * (x == T(1) ? T(2) : T(4)) * (y == T(1) ? T(4) : T(8));
        }
    EXPECT_EQ(sum, T(1));
    EXPECT_EQ(integral, T(17));
}

TYPED_TEST(RnHistogramBiRngTest, CellsOfUnitAreaHaveADensityThatIntegratesToOne)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0)});
    const RnHistogramBiRng<T> rng(histogramOf<T>({T(0), T(1), T(2)}, {T(5), T(6)}, {T(1), T(3)}),
                                  &source);
    EXPECT_EQ(rng.getPdf(T(0.5), T(5.5)) + rng.getPdf(T(1.5), T(5.5)), T(1));
}

TYPED_TEST(RnHistogramBiRngTest, ADensityIsZeroOutsideOnEitherAxis)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0)});
    const RnHistogramBiRng<T> rng(histogramOf<T>({T(0), T(2)}, {T(0), T(4)}, {T(1)}), &source);
    EXPECT_EQ(rng.getPdf(T(0), T(0)), T(1));
    for (const T value : {before(T(0)), T(4), T(9), INFINITE<T>, -INFINITE<T>, NO_NUMBER<T>})
    {
        EXPECT_EQ(rng.getPdf(value, T(1)), T(0)) << value;
        EXPECT_EQ(rng.getPdf(T(1), value), T(0)) << value;
        EXPECT_EQ(rng.getPdf(value, value), T(0)) << value;
    }
}

TYPED_TEST(RnHistogramBiRngTest, RestartsItsSource)
{
    using T = TypeParam;
    RepeatingRng<T> source({T(0.25), T(0.5), T(0.75)});
    RnHistogramBiRng<T> rng(histogramOf<T>({T(0), T(1)}, {T(0), T(1)}, {T(1)}), &source);
    T x;
    T y;
    rng.getSample(x, y);
    rng.restart();
    EXPECT_EQ(source._restarts, 1U);
    rng.getSample(x, y);
    EXPECT_EQ(x, T(0.25));
    EXPECT_EQ(y, T(0.5));
}

TYPED_TEST(RnHistogramBiRngTest, NoSourceIsRefused)
{
    using T = TypeParam;
    for (const unsigned int nBins : {0U, 1U, 30U}) try
        {
            const RnHistogramBiRng<T> rng(RnHistogramBi<T>(nBins, nBins, T(0), T(1), T(0), T(1)),
                                          nullptr);
            ADD_FAILURE() << "nothing raised";
        }
        catch (const ExInternalError& exception)
        {
            EXPECT_STREQ(exception.getReason(), "Assertion '_rng' failed.");
        }
}

TYPED_TEST(RnHistogramBiRngTest, LaterChangesOfTheHistogramDoNotReachIt)
{
    using T = TypeParam;
    Zu::RnLecuyerUniformRng<T> source(1, 7);
    Zu::RnLecuyerUniformRng<T> single(1, 7);
    const ToldSampler<T> told{{T(0), T(1), T(2.5)}, {T(0), T(1)}, {T(1), T(3)}};
    auto histogram =
        std::make_unique<RnHistogramBi<T>>(histogramOf(told._edgesX, told._edgesY, told._weights));
    RnHistogramBiRng<T> rng(*histogram, &source);
    const auto expectTold = [&]
    {
        for (int n = 0; n < 100; ++n)
        {
            T x;
            T y;
            rng.getSample(x, y);
            const T u = single();
            const T v = single();
            ASSERT_TRUE(isTold(x, y, told.sample(u, v)));
        }
    };
    histogram->clear();
    expectTold();
    histogram->addValue(T(0.5), T(0.5), T(1000));
    expectTold();
    histogram.reset();
    expectTold();
    EXPECT_EQ(rng.getPdf(T(0.5), T(0.5)), T(0.25));
}

template <class T> struct SamplerCase
{
    std::string _name;
    ToldSampler<T> _told;
};

template <class T> std::vector<SamplerCase<T>> samplerCases()
{
    const std::pair<unsigned int, unsigned int> sizes[] = {{1, 1}, {2, 1},  {1, 2},
                                                           {7, 1}, {16, 4}, {32, 128}};
    std::vector<SamplerCase<T>> cases;
    for (const auto& [nBinsX, nBinsY] : sizes)
        for (const auto& [name, weights] : support::weightTables<T>(nBinsX * nBinsY))
            cases.push_back({name + ", " + std::to_string(nBinsX) + " x " + std::to_string(nBinsY),
                             ToldSampler<T>{unevenEdges<T>(nBinsX, 791),
                                            unevenEdges<T>(nBinsY, 792), weights}});
    return cases;
}

TYPED_TEST(RnHistogramBiRngTest, EverySampleAndDensityIsTheToldOne)
{
    using T = TypeParam;
    for (const auto& [name, told] : samplerCases<T>())
    {
        std::vector<T> draws;
        HistogramRandom random(793);
        for (const T draw : support::hardDraws(told._cdf))
        {
            draws.push_back(draw);
            draws.push_back(random.unit<T>());
        }
        for (int n = 0; n < 1000; ++n) draws.push_back(random.unit<T>());
        const auto n = static_cast<unsigned int>(draws.size() / 2);
        RepeatingRng<T> source(draws);
        RnHistogramBiRng<T> rng(histogramOf(told._edgesX, told._edgesY, told._weights), &source);
        std::vector<T> x(n, T(0));
        std::vector<T> y(n, T(0));
        rng.getSequence(n, x.data(), y.data());
        for (unsigned int k = 0; k < n; ++k)
        {
            const Pair<T> expected = told.sample(draws[2 * k], draws[2 * k + 1]);
            T singleX;
            T singleY;
            rng.getSample(singleX, singleY);
            ASSERT_TRUE(isTold(singleX, singleY, expected)) << draws[2 * k] << " " << name;
            ASSERT_TRUE(isTold(x[k], y[k], expected)) << draws[2 * k] << " " << name;
            ASSERT_TRUE(same(y[k], singleY)) << draws[2 * k] << " " << name;
        }
        ASSERT_EQ(source._draws, 2 * draws.size()) << name;

        for (std::size_t i = 0; i < told._edgesX.size(); i += 1 + told._edgesX.size() / 10)
            for (std::size_t j = 0; j < told._edgesY.size(); j += 1 + told._edgesY.size() / 10)
                for (const T px : {before(told._edgesX[i]), told._edgesX[i]})
                    for (const T py : {before(told._edgesY[j]), told._edgesY[j]})
                        ASSERT_TRUE(same(rng.getPdf(px, py), told.pdf(px, py)))
                            << px << " " << py << " " << name;
    }
}

template <class T, class Source, class... Arguments>
void expectSequences(const SamplerCase<T>& row, const Arguments&... arguments)
{
    const ToldSampler<T>& told = row._told;
    Source source(arguments...);
    Source single(arguments...);
    RnHistogramBiRng<T> rng(histogramOf(told._edgesX, told._edgesY, told._weights), &source);
    // A state that no block begins at.
    for (int i = 0; i < 5; ++i) ASSERT_EQ(source(), single());
    for (const unsigned int n : support::SEQUENCE_LENGTHS)
    {
        constexpr T UNTOUCHED = T(-12345);
        std::vector<T> x(n + 1, UNTOUCHED);
        std::vector<T> y(n + 1, UNTOUCHED);
        rng.getSequence(n, x.data(), y.data());
        std::vector<T> expectedX;
        std::vector<T> expectedY;
        for (unsigned int k = 0; k < n; ++k)
        {
            const T u = single();
            const T v = single();
            const Pair<T> pair = told.sample(u, v);
            expectedX.push_back(pair._x);
            // Without weight, y is unspecified.
            expectedY.push_back(std::isnan(pair._x) ? y[k] : pair._y);
        }
        expectedX.push_back(UNTOUCHED);
        expectedY.push_back(UNTOUCHED);
        ASSERT_TRUE(same(x, expectedX)) << n << ", " << row._name;
        ASSERT_TRUE(same(y, expectedY)) << n << ", " << row._name;
        // Neither more nor fewer were drawn.
        ASSERT_EQ(source(), single()) << n << ", " << row._name;
    }
}

TYPED_TEST(RnHistogramBiRngTest, ASequenceIsAsManySamples)
{
    using T = TypeParam;
    for (const SamplerCase<T>& row : samplerCases<T>())
        expectSequences<T, Zu::RnLecuyerUniformRng<T>>(row, 1U, 4711U);
}

TYPED_TEST(RnHistogramBiRngTest, ASequenceOfOtherSourcesIsAsManySamples)
{
    using T = TypeParam;
    const SamplerCase<T> row{
        "few",
        {unevenEdges<T>(7, 794), unevenEdges<T>(3, 795), support::weightTables<T>(21)[2].second}};
    expectSequences<T, Zu::RnNumRecUniformRng<T>>(row, 3U);
    expectSequences<T, Zu::RnVanDerCorputRng<T>>(row, 2U);
    expectSequences<T, Zu::RnVanDerCorputRng<T>>(row, 5U);
    HistogramRandom random(796);
    std::vector<T> script;
    for (int i = 0; i < 997; ++i) script.push_back(random.within(T(-0.1), T(1.1)));
    expectSequences<T, RepeatingRng<T>>(row, script);
}

TYPED_TEST(RnHistogramBiRngTest, ASequenceOfAShapedSourceIsAsManySamples)
{
    using T = TypeParam;
    Zu::RnLecuyerUniformRng<T> uniform(1, 5);
    Zu::RnLecuyerUniformRng<T> sameUniform(1, 5);
    Zu::RnGaussianRng<T> source(&uniform, T(0.5), T(0.4));
    Zu::RnGaussianRng<T> single(&sameUniform, T(0.5), T(0.4));
    const ToldSampler<T> told{unevenEdges<T>(4, 797), unevenEdges<T>(5, 798),
                              std::vector<T>(20, T(1))};
    RnHistogramBiRng<T> rng(histogramOf(told._edgesX, told._edgesY, told._weights), &source);
    std::vector<T> x(501, T(0));
    std::vector<T> y(501, T(0));
    rng.getSequence(501, x.data(), y.data());
    for (std::size_t k = 0; k < 501; ++k)
    {
        const T u = single();
        const T v = single();
        ASSERT_TRUE(isTold(x[k], y[k], told.sample(u, v))) << k;
    }
    EXPECT_EQ(source(), single());
}

// Gives values different from its base's, and counts.
template <class T> class NumberedRng : public RnHistogramBiRng<T>
{
public:
    using RnHistogramBiRng<T>::RnHistogramBiRng;

    void getSample(T& x, T& y) override
    {
        x = T(_samples);
        y = -T(_samples);
        ++_samples;
    }

    unsigned int _samples = 0;
};

TYPED_TEST(RnHistogramBiRngTest, ADerivedSamplerThatReplacesTheSampleGivesItInSequences)
{
    using T = TypeParam;
    for (const unsigned int n : {0U, 1U, 127U, 128U, 129U, 256U, 257U, 4097U})
    {
        RepeatingRng<T> source({T(0.5)});
        NumberedRng<T> rng(histogramOf<T>({T(0), T(1)}, {T(0), T(1)}, {T(1)}), &source);
        std::vector<T> x(n);
        std::vector<T> y(n);
        rng.getSequence(n, x.data(), y.data());
        EXPECT_EQ(rng._samples, n);
        EXPECT_EQ(source._draws, 0U);
        for (unsigned int k = 0; k < n; ++k)
        {
            ASSERT_EQ(x[k], T(k));
            ASSERT_EQ(y[k], -T(k));
        }
    }
}

TYPED_TEST(RnHistogramBiRngTest, ASequenceOfManyCellsIsAsManySinglePairs)
{
    using T = TypeParam;
    support::HistogramRandom random(785);
    RnHistogramBi<T> histogram(250, 200, T(0), T(1), T(0), T(1));
    for (int i = 0; i < 100000; ++i) histogram.addValue(random.unit<T>(), random.unit<T>(), T(1));
    Zu::RnLecuyerUniformRng<T> source;
    Zu::RnLecuyerUniformRng<T> sameSource;
    RnHistogramBiRng<T> inSequence(histogram, &source);
    RnHistogramBiRng<T> single(histogram, &sameSource);
    std::vector<T> x(3000);
    std::vector<T> y(3000);
    inSequence.getSequence(3000, x.data(), y.data());
    for (std::size_t i = 0; i < x.size(); ++i)
    {
        T singleX;
        T singleY;
        single.getSample(singleX, singleY);
        ASSERT_EQ(x[i], singleX);
        ASSERT_EQ(y[i], singleY);
    }
}

TYPED_TEST(RnHistogramBiRngTest, WhatSpeedsItUpStandsBehindTheMembersThatItIsToldBy)
{
    using T = TypeParam;
    Zu::RnLecuyerUniformRng<T> source;
    const RnHistogramBiRng<T> rng(Zu::RnHistogramBi<T>(2, 2, T(0), T(1), T(0), T(1)), &source);
    EXPECT_TRUE(support::standInOrder(rng));
}

} // namespace

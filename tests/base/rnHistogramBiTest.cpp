#include "base/rnHistogramBi.h"

#include "base/rnLecuyerUniformRng.h"
#include "base/rnSeparableRng.h"

#include "support/histogramReference.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <iomanip>
#include <limits>
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
using support::same;
using support::toldBin;
using support::toldEdges;
using support::toldUniformBin;
using Zu::RnHistogramBi;
using Zu::RnUniformHistogramBi;

template <class T> class RnHistogramBiTest : public testing::Test
{
};

TYPED_TEST_SUITE(RnHistogramBiTest, support::FloatAndDouble, );

template <class T> using Pairs = std::vector<std::pair<T, T>>;

// x fastest.
template <class T> std::vector<T> binsOf(const RnHistogramBi<T>& histogram)
{
    std::vector<T> bins;
    for (int j = 0; j < static_cast<int>(histogram.getSizeY()); ++j)
        for (unsigned int i = 0; i < static_cast<unsigned int>(histogram.getSizeX()); ++i)
            bins.push_back(histogram.getBin(i, j));
    return bins;
}

// Cells that are filled one pair after the other.
template <class T> struct ToldHistogram
{
    ToldHistogram(int nBinsX, int nBinsY)
        : _nBinsX(nBinsX), _nBinsY(nBinsY), _bins(static_cast<std::size_t>(nBinsX * nBinsY), T(0))
    {
    }

    void add(int i, int j, T weight)
    {
        if (i < 0 || i >= _nBinsX || j < 0 || j >= _nBinsY) return;
        _bins[static_cast<std::size_t>(j * _nBinsX + i)] += weight;
        _total += weight;
    }

    int _nBinsX;
    int _nBinsY;
    std::vector<T> _bins;
    T _total = T(0);
};

template <class T>
testing::AssertionResult holds(const RnHistogramBi<T>& histogram, const ToldHistogram<T>& told)
{
    const testing::AssertionResult bins = same(binsOf(histogram), told._bins);
    if (!bins) return bins;
    return same(histogram.getTotal(), told._total);
}

// At, beside, between and outside the edges.
template <class T> std::vector<T> coordinatesFor(const std::vector<T>& edges)
{
    std::vector<T> values{T(1e30), T(-1e30), INFINITE<T>, -INFINITE<T>, NO_NUMBER<T>, T(0), -T(0)};
    for (const T edge : edges)
        for (const T value : {before(edge), edge, behind(edge)}) values.push_back(value);
    for (std::size_t i = 1; i < edges.size(); ++i) values.push_back((edges[i - 1] + edges[i]) / 2);
    return values;
}

// Gives pairs of a script to single calls only.
template <class T> class ScriptedBiRng : public Zu::RnBiRng<T>
{
public:
    explicit ScriptedBiRng(Pairs<T> pairs) : _pairs(std::move(pairs)) {}
    virtual ~ScriptedBiRng() = default;

    // Not inlined: the compiler would warn about a case that only its inlining makes.
    [[gnu::noinline]] void getSample(T& x, T& y) override
    {
        x = _pairs[_draws % _pairs.size()].first;
        y = _pairs[_draws % _pairs.size()].second;
        ++_draws;
    }

    void getSequence(unsigned int, T*, T*) override
    {
        ADD_FAILURE() << "not to be called";
    }

    void getEfficientWidth(T& x, T& y) const override
    {
        x = y = T(1);
    }

    void getEfficientMin(T& x, T& y) const override
    {
        x = y = T(0);
    }

    void getEfficientMax(T& x, T& y) const override
    {
        x = y = T(1);
    }

    T getEfficientFraction() const override
    {
        return T(1);
    }

    T getPdf(T, T) const override
    {
        return T(1);
    }

    void restart() override {}

    const char* getName() const override
    {
        return "Scripted";
    }

    std::size_t _draws = 0;

private:
    Pairs<T> _pairs;
};

TYPED_TEST(RnHistogramBiTest, CellsHaveTheEdgesOfTheirColumnAndRow)
{
    using T = TypeParam;
    const std::vector<T> edgesX = toldEdges(7, T(-0.3), T(17.1));
    const std::vector<T> edgesY = toldEdges(3, T(0.1), T(0.8));
    const RnHistogramBi<T> ranged(7, 3, T(-0.3), T(17.1), T(0.1), T(0.8));
    const RnUniformHistogramBi<T> uniform(7, 3, T(-0.3), T(17.1), T(0.1), T(0.8));
    const RnHistogramBi<T> listed(7, 3, edgesX.data(), edgesY.data());
    for (const RnHistogramBi<T>* histogram :
         {&ranged, static_cast<const RnHistogramBi<T>*>(&uniform), &listed})
    {
        for (unsigned int i = 0; i < 7; ++i)
            for (unsigned int j = 0; j < 3; ++j)
            {
                T limits[4];
                histogram->getBinLimits(i, j, limits[0], limits[1], limits[2], limits[3]);
                EXPECT_EQ(limits[0], edgesX[i]);
                EXPECT_EQ(limits[1], edgesX[i + 1]);
                EXPECT_EQ(limits[2], edgesY[j]);
                EXPECT_EQ(limits[3], edgesY[j + 1]);
            }
        T limits[4];
        histogram->getLimits(limits[0], limits[1], limits[2], limits[3]);
        EXPECT_EQ(limits[0], T(-0.3));
        EXPECT_EQ(limits[1], T(17.1));
        EXPECT_EQ(limits[2], T(0.1));
        EXPECT_EQ(limits[3], T(0.8));
        EXPECT_EQ(histogram->getSizeX(), T(7));
        EXPECT_EQ(histogram->getSizeY(), T(3));
        EXPECT_EQ(histogram->getTotal(), T(0));
        EXPECT_EQ(binsOf(*histogram), std::vector<T>(21, T(0)));
    }
    static_assert(std::is_same_v<decltype(ranged.getSizeX()), T>);
    static_assert(std::is_same_v<decltype(ranged.getSizeY()), T>);
}

TYPED_TEST(RnHistogramBiTest, GivenEdgesAreCopied)
{
    using T = TypeParam;
    std::vector<T> edgesX{T(0), T(1), T(5)};
    std::vector<T> edgesY{T(-1), T(3)};
    const RnHistogramBi<T> histogram(2, 1, edgesX.data(), edgesY.data());
    edgesX.assign(3, T(7));
    edgesY.assign(2, T(7));
    T limits[4];
    histogram.getBinLimits(1, 0, limits[0], limits[1], limits[2], limits[3]);
    EXPECT_EQ((std::vector<T>(limits, limits + 4)), (std::vector<T>{T(1), T(5), T(-1), T(3)}));
}

TYPED_TEST(RnHistogramBiTest, TheCellIsThatOfABinarySearchOnEachAxis)
{
    using T = TypeParam;
    const std::vector<T> edgesX{T(-2), T(-1), T(-1), T(0.5), T(100)};
    const std::vector<T> edgesY = toldEdges(10, T(0.1), T(0.8));
    const RnHistogramBi<T> histogram(4, 10, edgesX.data(), edgesY.data());
    for (const T x : coordinatesFor(edgesX))
        for (const T y : coordinatesFor(edgesY))
        {
            int i;
            int j;
            histogram.getBinIndices(x, y, i, j);
            ASSERT_EQ(i, toldBin(edgesX, x)) << x;
            ASSERT_EQ(j, toldBin(edgesY, y)) << y;
        }
}

TYPED_TEST(RnHistogramBiTest, TheCellOfAUniformHistogramIsTheClosedFormOnEachAxis)
{
    using T = TypeParam;
    const RnUniformHistogramBi<T> histogram(7, 10, T(-0.3), T(17.1), T(0.1), T(0.8));
    std::vector<T> valuesX = coordinatesFor(toldEdges(7, T(-0.3), T(17.1)));
    std::vector<T> valuesY = coordinatesFor(toldEdges(10, T(0.1), T(0.8)));
    for (const T value : {T(3e9), T(-3e9), T(1e9), T(-1e9)})
    {
        valuesX.push_back(value);
        valuesY.push_back(value);
    }
    for (const T x : valuesX)
        for (const T y : valuesY)
        {
            int i;
            int j;
            histogram.getBinIndices(x, y, i, j);
            ASSERT_EQ(i, toldUniformBin(7, T(-0.3), T(17.1), x)) << x;
            ASSERT_EQ(j, toldUniformBin(10, T(0.1), T(0.8), y)) << y;
        }
}

TYPED_TEST(RnHistogramBiTest, AWeightIsAddedToTheCellAndTheTotal)
{
    using T = TypeParam;
    RnHistogramBi<T> histogram(3, 2, T(0), T(3), T(0), T(2));
    histogram.addValue(T(2.5), T(0.5), T(2.5));
    histogram.addValue(T(0), T(1), T(0.25));
    histogram.addValue(T(0.9), T(1.9), T(0.5));
    EXPECT_EQ(binsOf(histogram), (std::vector<T>{T(0), T(0), T(2.5), T(0.75), T(0), T(0)}));
    EXPECT_EQ(histogram.getBin(2, 0), T(2.5));
    EXPECT_EQ(histogram.getBin(0, 1), T(0.75));
    EXPECT_EQ(histogram.getTotal(), T(3.25));
}

TYPED_TEST(RnHistogramBiTest, APairOutsideOnOneAxisOnlyIsDropped)
{
    using T = TypeParam;
    RnHistogramBi<T> searched(3, 2, T(0), T(3), T(0), T(2));
    RnUniformHistogramBi<T> uniform(3, 2, T(0), T(3), T(0), T(2));
    for (RnHistogramBi<T>* histogram : {&searched, static_cast<RnHistogramBi<T>*>(&uniform)})
    {
        for (const T x :
             {T(-0.001), T(3), T(-50), T(50), T(1e30), INFINITE<T>, -INFINITE<T>, NO_NUMBER<T>})
            histogram->addValue(x, T(1), T(1));
        for (const T y :
             {T(-0.001), T(2), T(-50), T(50), T(1e30), INFINITE<T>, -INFINITE<T>, NO_NUMBER<T>})
            histogram->addValue(T(1), y, T(1));
        EXPECT_EQ(binsOf(*histogram), std::vector<T>(6, T(0)));
        EXPECT_EQ(histogram->getTotal(), T(0));
        histogram->addValue(before(T(3)), before(T(2)), T(1));
        EXPECT_EQ(histogram->getTotal(), T(1));
        EXPECT_EQ(histogram->getBin(2, 1), T(1));
    }
}

TYPED_TEST(RnHistogramBiTest, WeightsAreSummedInTheOrderTheyCome)
{
    using T = TypeParam;
    HistogramRandom random(790);
    RnHistogramBi<T> searched(5, 3, T(0), T(1), T(-1), T(1));
    RnUniformHistogramBi<T> uniform(5, 3, T(0), T(1), T(-1), T(1));
    ToldHistogram<T> toldSearched(5, 3);
    ToldHistogram<T> toldUniform(5, 3);
    for (int n = 0; n < 3000; ++n)
    {
        const T x = random.within(T(-0.1), T(1.1));
        const T y = random.within(T(-1.1), T(1.1));
        const T weight = random.magnitude<T>(-6, 6);
        searched.addValue(x, y, weight);
        uniform.addValue(x, y, weight);
        toldSearched.add(toldBin(toldEdges(5, T(0), T(1)), x),
                         toldBin(toldEdges(3, T(-1), T(1)), y), weight);
        toldUniform.add(toldUniformBin(5, T(0), T(1), x), toldUniformBin(3, T(-1), T(1), y),
                        weight);
    }
    EXPECT_TRUE(holds(searched, toldSearched));
    EXPECT_TRUE(holds(uniform, toldUniform));
}

TYPED_TEST(RnHistogramBiTest, SamplesAreAddedAsSinglePairs)
{
    using T = TypeParam;
    for (const unsigned int n : {0U, 1U, 127U, 128U, 129U, 255U, 256U, 257U, 3000U})
        for (const T weight : {T(0), T(0.1), T(-2.7)})
        {
            // On one shared source, a sequence would be other pairs.
            Zu::RnLecuyerUniformRng<T> uniform(1, 31);
            Zu::RnLecuyerUniformRng<T> single(1, 31);
            Zu::RnSeparableBiRng<T> source(&uniform);
            RnHistogramBi<T> histogram(4, 3, T(0.1), T(0.9), T(0), T(0.8));
            ToldHistogram<T> told(4, 3);
            histogram.addValue(T(0.1), T(0), weight);
            told.add(0, 0, weight);
            histogram.addSamples(&source, n);
            for (unsigned int k = 0; k < n; ++k)
            {
                const T x = single();
                const T y = single();
                told.add(toldBin(toldEdges(4, T(0.1), T(0.9)), x),
                         toldBin(toldEdges(3, T(0), T(0.8)), y), T(1));
            }
            ASSERT_TRUE(holds(histogram, told)) << n << " on " << weight;
            ASSERT_EQ(uniform(), single()) << n;
        }
}

TYPED_TEST(RnHistogramBiTest, AClientsSourceSeesAsManySinglePairs)
{
    using T = TypeParam;
    for (const unsigned int n : {0U, 1U, 256U, 3001U})
    {
        const Pairs<T> script{{T(0.1), T(0.9)},
                              {T(0.7), T(0.2)},
                              {T(1), T(0.5)},
                              {T(0.5), NO_NUMBER<T>},
                              {T(0.6), T(-1)}};
        ScriptedBiRng<T> source(script);
        RnUniformHistogramBi<T> histogram(2, 4, T(0), T(1), T(0), T(1));
        ToldHistogram<T> told(2, 4);
        histogram.addSamples(&source, n);
        for (unsigned int k = 0; k < n; ++k)
            told.add(toldUniformBin(2, T(0), T(1), script[k % 5].first),
                     toldUniformBin(4, T(0), T(1), script[k % 5].second), T(1));
        EXPECT_TRUE(holds(histogram, told)) << n;
        EXPECT_EQ(source._draws, n);
    }
}

// Sees every pair, and puts each into the same cell.
template <class Base, class T> class SeeingHistogram : public Base
{
public:
    using Base::Base;

    void getBinIndices(T x, T y, int& i, int& j) const override
    {
        _seen.push_back(x);
        _seen.push_back(y);
        i = _i;
        j = _j;
    }

    mutable std::vector<T> _seen;
    int _i = 1;
    int _j = 2;
};

template <class Base, class T> void expectToSeeAll()
{
    SeeingHistogram<Base, T> histogram(2, 3, T(0), T(1), T(0), T(1));
    histogram.addValue(T(-7), T(8), T(0.5));
    ScriptedBiRng<T> source({{T(3), T(4)}, {T(0.5), NO_NUMBER<T>}});
    histogram.addSamples(&source, 300);
    std::vector<T> expected{T(-7), T(8)};
    for (int n = 0; n < 150; ++n)
        expected.insert(expected.end(), {T(3), T(4), T(0.5), NO_NUMBER<T>});
    EXPECT_TRUE(same(histogram._seen, expected));
    EXPECT_EQ(binsOf(histogram), (std::vector<T>{T(0), T(0), T(0), T(0), T(0), T(300.5)}));
    EXPECT_EQ(histogram.getTotal(), T(300.5));
}

TYPED_TEST(RnHistogramBiTest, ADerivedHistogramThatFindsCellsInItsOwnWaySeesAllPairsInOrder)
{
    using T = TypeParam;
    expectToSeeAll<RnHistogramBi<T>, T>();
    expectToSeeAll<RnUniformHistogramBi<T>, T>();
}

TYPED_TEST(RnHistogramBiTest, WhatADerivedHistogramPutsIntoNoCellIsDropped)
{
    using T = TypeParam;
    constexpr int LOWEST = std::numeric_limits<int>::min();
    constexpr int HIGHEST = std::numeric_limits<int>::max();
    const std::pair<int, int> cells[] = {{-1, 1},      {0, -1},     {2, 0},
                                         {0, 3},       {-2, 2},     {LOWEST, 0},
                                         {HIGHEST, 0}, {0, LOWEST}, {0, HIGHEST}};
    for (const auto& [i, j] : cells)
    {
        SeeingHistogram<RnHistogramBi<T>, T> histogram(2, 3, T(0), T(1), T(0), T(1));
        histogram._i = i;
        histogram._j = j;
        histogram.addValue(T(0.5), T(0.5), T(1));
        ScriptedBiRng<T> source({{T(0.5), T(0.5)}});
        histogram.addSamples(&source, 5);
        EXPECT_EQ(binsOf(histogram), std::vector<T>(6, T(0))) << i << " " << j;
        EXPECT_EQ(histogram.getTotal(), T(0)) << i << " " << j;
    }
}

TYPED_TEST(RnHistogramBiTest, ClearTakesTheWeightsAndLeavesTheEdges)
{
    using T = TypeParam;
    RnHistogramBi<T> histogram(2, 1, T(0), T(2), T(3), T(4));
    histogram.addValue(T(1.5), T(3.5), T(2));
    histogram.clear();
    EXPECT_EQ(binsOf(histogram), std::vector<T>(2, T(0)));
    EXPECT_EQ(histogram.getTotal(), T(0));
    T limits[4];
    histogram.getBinLimits(1, 0, limits[0], limits[1], limits[2], limits[3]);
    EXPECT_EQ((std::vector<T>(limits, limits + 4)), (std::vector<T>{T(1), T(2), T(3), T(4)}));
    histogram.addValue(T(1.5), T(3.5), T(2));
    EXPECT_EQ(histogram.getBin(1, 0), T(2));
}

TYPED_TEST(RnHistogramBiTest, ACopyIsFilledForItself)
{
    using T = TypeParam;
    RnUniformHistogramBi<T> histogram(1, 2, T(0), T(1), T(0), T(1));
    histogram.addValue(T(0.1), T(0.2), T(1));
    RnUniformHistogramBi<T> copy(histogram);
    copy.addValue(T(0.1), T(0.7), T(3));
    EXPECT_EQ(binsOf(histogram), (std::vector<T>{T(1), T(0)}));
    EXPECT_EQ(binsOf(copy), (std::vector<T>{T(1), T(3)}));
    histogram = copy;
    EXPECT_EQ(binsOf(histogram), (std::vector<T>{T(1), T(3)}));
}

TYPED_TEST(RnHistogramBiTest, IsEndedThroughItsBase)
{
    using T = TypeParam;
    // A leak of the derived part would be seen by the sanitizers.
    const std::unique_ptr<RnHistogramBi<T>> histogram =
        std::make_unique<SeeingHistogram<RnUniformHistogramBi<T>, T>>(2, 3, T(0), T(1), T(0), T(1));
    histogram->addValue(T(0.5), T(0.5), T(1));
    EXPECT_EQ(histogram->getBin(1, 2), T(1));
}

TYPED_TEST(RnHistogramBiTest, WithoutBinsOnAnAxisDropsAll)
{
    using T = TypeParam;
    RnHistogramBi<T> noColumns(0, 2, T(0), T(1), T(0), T(1));
    RnHistogramBi<T> noRows(2, 0, T(0), T(1), T(0), T(1));
    for (RnHistogramBi<T>* histogram : {&noColumns, &noRows})
    {
        for (const T value : {T(0), T(0.5), T(1)}) histogram->addValue(value, value, T(1));
        EXPECT_EQ(histogram->getTotal(), T(0));
        std::ostringstream out;
        histogram->dumpText(out);
        EXPECT_EQ(out.str(), "");
    }
}

template <class T> RnHistogramBi<T> fourCells()
{
    const T edgesX[] = {T(1), T(2), T(4)};
    const T edgesY[] = {T(-1), T(1), T(5)};
    RnHistogramBi<T> histogram(2, 2, edgesX, edgesY);
    histogram.addValue(T(1), T(0), T(3));
    histogram.addValue(T(3), T(0), T(1));
    histogram.addValue(T(1), T(3), T(0.5));
    histogram.addValue(T(3), T(3), T(3.5));
    return histogram;
}

const std::string HEAD = "#Inventor V2.1 ascii\n"
                         "Separator { \n"
                         "  LightModel { model\tBASE_COLOR }\n"
                         "  DrawStyle { pointSize 2 }\n"
                         "  PointSet { vertexProperty VertexProperty { vertex [ \n";

const std::string LINES = "] } }\n"
                          "  LineSet { vertexProperty VertexProperty { vertex [ \n";

const std::string TAIL = "] }\n"
                         "startIndex 0 \n"
                         "numVertices [ 2, 2, 2, 2, 2 ] \n"
                         "}\n"
                         "}\n";

TYPED_TEST(RnHistogramBiTest, TheTextHasALineForEachCellWithXFastest)
{
    std::ostringstream out;
    fourCells<TypeParam>().dumpText(out);
    EXPECT_EQ(out.str(), "1 2 -1 1 3\n"
                         "2 4 -1 1 1\n"
                         "1 2 1 5 0.5\n"
                         "2 4 1 5 3.5\n");
}

// The unit is at the middle of x on both axes.
const std::string FRAME = "1 -1 0, \n"
                          "4 -1 0, \n"
                          "1 -1 0, \n"
                          "1 5 0, \n"
                          "4 5 0, \n"
                          "4 -1 0, \n"
                          "4 5 0, \n"
                          "1 5 0, \n"
                          "2.5 2.5 0, \n"
                          "2.5 2.5 1, \n";

TYPED_TEST(RnHistogramBiTest, TheSceneHasDensitiesAndAFrame)
{
    std::ostringstream out;
    fourCells<TypeParam>().dumpInventor(out);
    EXPECT_EQ(out.str(), HEAD +
                             "1.5 0 0.1875 ,\n"
                             "3 0 0.03125 ,\n"
                             "1.5 3 0.015625 ,\n"
                             "3 3 0.0546875 ,\n" +
                             LINES + FRAME + TAIL);
}

TYPED_TEST(RnHistogramBiTest, ASecondSceneIsTheSame)
{
    const RnHistogramBi<TypeParam> histogram = fourCells<TypeParam>();
    std::ostringstream first;
    std::ostringstream second;
    histogram.dumpInventor(first);
    histogram.dumpInventor(second);
    EXPECT_EQ(first.str(), second.str());
}

TYPED_TEST(RnHistogramBiTest, NumbersAreWrittenInTheFormatOfTheStream)
{
    using T = TypeParam;
    std::ostringstream text;
    text << std::fixed << std::setprecision(1);
    fourCells<T>().dumpText(text);
    EXPECT_EQ(text.str(), "1.0 2.0 -1.0 1.0 3.0\n"
                          "2.0 4.0 -1.0 1.0 1.0\n"
                          "1.0 2.0 1.0 5.0 0.5\n"
                          "2.0 4.0 1.0 5.0 3.5\n");
    std::ostringstream scene;
    scene << std::setprecision(2);
    fourCells<T>().dumpInventor(scene);
    EXPECT_EQ(scene.str(), HEAD +
                               "1.5 0 0.19 ,\n"
                               "3 0 0.031 ,\n"
                               "1.5 3 0.016 ,\n"
                               "3 3 0.055 ,\n" +
                               LINES + FRAME + TAIL);
}

TYPED_TEST(RnHistogramBiTest, TheSceneWithoutWeightHasNaNsWithoutASign)
{
    using T = TypeParam;
    std::ostringstream out;
    RnUniformHistogramBi<T>(2, 1, T(0), T(2), T(-1), T(0)).dumpInventor(out);
    EXPECT_EQ(out.str(), HEAD +
                             "0.5 -0.5 nan ,\n"
                             "1.5 -0.5 nan ,\n" +
                             LINES +
                             "0 -1 0, \n"
                             "2 -1 0, \n"
                             "0 -1 0, \n"
                             "0 0 0, \n"
                             "2 0 0, \n"
                             "2 -1 0, \n"
                             "2 0 0, \n"
                             "0 0 0, \n"
                             "1 1 0, \n"
                             "1 1 1, \n" +
                             TAIL);
}

TYPED_TEST(RnHistogramBiTest, ASizeThatNoVectorHasIsRefusedByTheTextOfTheVector)
{
    using T = TypeParam;
    constexpr unsigned int MOST = std::numeric_limits<unsigned int>::max();
    const T edge = T(0);
    EXPECT_EQ(support::lengthErrorOf([&] { RnHistogramBi<T>(MOST, MOST, &edge, &edge); }),
              "vector<T> too long");
    EXPECT_EQ(support::lengthErrorOf([&] { RnHistogramBi<T>(MOST, MOST, T(0), T(1), T(0), T(1)); }),
              "vector<T> too long");
    EXPECT_EQ(support::lengthErrorOf(
                  [&] { RnUniformHistogramBi<T>(MOST, MOST, T(0), T(1), T(0), T(1)); }),
              "vector<T> too long");
}

} // namespace

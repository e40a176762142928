#include "base/rnDirectionalHistogram.h"

#include "base/rnDirectionalRng.h"
#include "base/rnLecuyerUniformRng.h"
#include "base/rnSeparableRng.h"

#include "support/histogramReference.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <iomanip>
#include <limits>
#include <numbers>
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
using Zu::RnHistogramHemispherical;
using Zu::RnHistogramSpherical;

constexpr int LOWEST_INT = std::numeric_limits<int>::min();

// What both kinds have to do for both number types.
template <class T>
constexpr T PER_TURN = std::is_same_v<T, float> ? T(0.15915494F) : T(0.15915494309189535);

template <class T> struct Spherical
{
    using Number = T;
    using Histogram = RnHistogramSpherical<T>;

    static int cell(T cosTheta, unsigned int nBinsTheta)
    {
        return support::toldFloor((cosTheta + T(1)) * (T(nBinsTheta) * T(0.5)));
    }
};

template <class T> struct Hemispherical
{
    using Number = T;
    using Histogram = RnHistogramHemispherical<T>;

    static int cell(T cosTheta, unsigned int nBinsTheta)
    {
        return support::toldFloor(cosTheta * T(nBinsTheta));
    }
};

template <class T> int toldTurn(T phi, unsigned int nBinsPhi)
{
    return support::toldFloor(phi * (T(nBinsPhi) * PER_TURN<T>));
}

// Cells that are filled one direction after the other.
template <class Kind> struct ToldHistogram
{
    using T = typename Kind::Number;

    ToldHistogram(unsigned int nBinsTheta, unsigned int nBinsPhi)
        : _nBinsTheta(nBinsTheta), _nBinsPhi(nBinsPhi),
          _bins(std::size_t(nBinsTheta) * nBinsPhi, T(0))
    {
    }

    void addCosine(T cosTheta, T phi, T weight)
    {
        const int i = std::min(Kind::cell(cosTheta, _nBinsTheta), int(_nBinsTheta) - 1);
        const int j = std::min(toldTurn(phi, _nBinsPhi), int(_nBinsPhi) - 1);
        if (i < 0 || j < 0) return;
        _bins[std::size_t(i) * _nBinsPhi + std::size_t(j)] += weight;
        _total += weight;
    }

    unsigned int _nBinsTheta;
    unsigned int _nBinsPhi;
    std::vector<T> _bins;
    T _total = T(0);
};

// The weights as they are in storage: getBin() of the first index reaches the whole of it.
template <class Histogram> auto storageOf(const Histogram& histogram)
{
    std::vector<decltype(histogram.getTotal())> bins;
    const auto size = static_cast<unsigned int>(histogram.getSizeTheta() * histogram.getSizePhi());
    for (unsigned int place = 0; place < size; ++place) bins.push_back(histogram.getBin(0, place));
    return bins;
}

template <class Histogram, class Kind>
testing::AssertionResult holds(const Histogram& histogram, const ToldHistogram<Kind>& told)
{
    const testing::AssertionResult bins = same(storageOf(histogram), told._bins);
    if (!bins) return bins;
    return same(histogram.getTotal(), told._total);
}

template <class Kind> class RnDirectionalHistogramTest : public testing::Test
{
};

using Kinds = testing::Types<Spherical<float>, Spherical<double>, Hemispherical<float>,
                             Hemispherical<double>>;

TYPED_TEST_SUITE(RnDirectionalHistogramTest, Kinds, );

template <class T> constexpr T PI = std::numbers::pi_v<T>;

template <class T> std::vector<T> cosines()
{
    std::vector<T> values{T(-1),         T(1),         T(0),         -T(0),        before(T(-1)),
                          behind(T(-1)), before(T(0)), behind(T(0)), before(T(1)), behind(T(1)),
                          T(-0.5),       T(0.5),       T(0.25),      T(0.75),      T(2),
                          T(-2),         T(1e10),      T(-1e10),     T(1e30),      INFINITE<T>,
                          -INFINITE<T>,  NO_NUMBER<T>};
    HistogramRandom random(800);
    for (int i = 0; i < 50; ++i) values.push_back(random.within(T(-1), T(1)));
    return values;
}

template <class T> std::vector<T> turns()
{
    std::vector<T> values{T(0),        -T(0),        before(T(0)), behind(T(0)), T(-1),
                          T(7),        T(100),       T(1e12),      T(-1e12),     T(1e30),
                          INFINITE<T>, -INFINITE<T>, NO_NUMBER<T>};
    for (int eighth = 0; eighth <= 8; ++eighth)
    {
        const T phi = T(eighth) / T(4) * PI<T>;
        for (const T value : {before(phi), phi, behind(phi)}) values.push_back(value);
    }
    HistogramRandom random(801);
    for (int i = 0; i < 20; ++i) values.push_back(random.within(T(0), 2 * PI<T>));
    return values;
}

const std::pair<unsigned int, unsigned int> SIZES[] = {{1, 1}, {4, 8}, {8, 4}, {5, 5}, {3, 7}};

TYPED_TEST(RnDirectionalHistogramTest, IsEmptyAtFirst)
{
    using T = typename TypeParam::Number;
    const typename TypeParam::Histogram histogram(4, 8);
    static_assert(std::is_same_v<decltype(histogram.getSizeTheta()), T>);
    static_assert(std::is_same_v<decltype(histogram.getSizePhi()), T>);
    EXPECT_EQ(histogram.getSizeTheta(), T(4));
    EXPECT_EQ(histogram.getSizePhi(), T(8));
    EXPECT_EQ(histogram.getTotal(), T(0));
    EXPECT_EQ(storageOf(histogram), std::vector<T>(32, T(0)));
}

template <class Histogram, class T>
std::pair<int, int> cellOf(const Histogram& histogram, T cosTheta, T phi)
{
    int i;
    int j;
    histogram.getBinIndicesCosine(cosTheta, phi, i, j);
    return {i, j};
}

template <class T> class RnHistogramSphericalTest : public testing::Test
{
};

TYPED_TEST_SUITE(RnHistogramSphericalTest, support::FloatAndDouble, );

TYPED_TEST(RnHistogramSphericalTest, TheCosineRunsFromTheFirstCellAtMinusOneToTheLastAtOne)
{
    using T = TypeParam;
    const RnHistogramSpherical<T> histogram(4, 8);
    EXPECT_EQ(cellOf(histogram, T(-1), T(0)), std::pair(0, 0));
    EXPECT_EQ(cellOf(histogram, T(1), T(0)), std::pair(3, 0));
    EXPECT_EQ(cellOf(histogram, before(T(-0.5)), T(0)), std::pair(0, 0));
    EXPECT_EQ(cellOf(histogram, T(-0.5), T(0)), std::pair(1, 0));
    EXPECT_EQ(cellOf(histogram, T(0), T(0)), std::pair(2, 0));
    EXPECT_EQ(cellOf(histogram, T(0.5), T(0)), std::pair(3, 0));
    EXPECT_EQ(cellOf(histogram, T(0), 2 * PI<T>), std::pair(2, 7));
    EXPECT_EQ(cellOf(histogram, T(0), T(3.2)), std::pair(2, 4));
    EXPECT_EQ(cellOf(histogram, T(0), T(100)), std::pair(2, 7));
    EXPECT_EQ(cellOf(histogram, T(9), T(0)), std::pair(3, 0));
    EXPECT_EQ(cellOf(histogram, T(-1.25), T(0)), std::pair(-1, 0));
    EXPECT_EQ(cellOf(histogram, T(0), T(-0.01)), std::pair(2, -1));
}

template <class T> class RnHistogramHemisphericalTest : public testing::Test
{
};

TYPED_TEST_SUITE(RnHistogramHemisphericalTest, support::FloatAndDouble, );

TYPED_TEST(RnHistogramHemisphericalTest, TheCosineRunsFromTheFirstCellAtZeroToTheLastAtOne)
{
    using T = TypeParam;
    const RnHistogramHemispherical<T> histogram(4, 8);
    EXPECT_EQ(cellOf(histogram, T(0), T(0)), std::pair(0, 0));
    EXPECT_EQ(cellOf(histogram, -T(0), T(0)), std::pair(0, 0));
    EXPECT_EQ(cellOf(histogram, T(1), T(0)), std::pair(3, 0));
    EXPECT_EQ(cellOf(histogram, before(T(0.25)), T(0)), std::pair(0, 0));
    EXPECT_EQ(cellOf(histogram, T(0.25), T(0)), std::pair(1, 0));
    EXPECT_EQ(cellOf(histogram, T(0.75), T(0)), std::pair(3, 0));
    EXPECT_EQ(cellOf(histogram, T(0.5), 2 * PI<T>), std::pair(2, 7));
    EXPECT_EQ(cellOf(histogram, T(0.5), T(100)), std::pair(2, 7));
    EXPECT_EQ(cellOf(histogram, T(9), T(0)), std::pair(3, 0));
    EXPECT_EQ(cellOf(histogram, before(T(0)), T(0)), std::pair(-1, 0));
    EXPECT_EQ(cellOf(histogram, T(-0.3), T(-0.01)), std::pair(-2, -1));
}

TYPED_TEST(RnDirectionalHistogramTest, TheCellOfACosineIsLimitedFromAbove)
{
    using T = typename TypeParam::Number;
    for (const auto& [nBinsTheta, nBinsPhi] : SIZES)
    {
        const typename TypeParam::Histogram histogram(nBinsTheta, nBinsPhi);
        for (const T cosTheta : cosines<T>())
            for (const T phi : turns<T>())
            {
                const int i = std::min(TypeParam::cell(cosTheta, nBinsTheta), int(nBinsTheta) - 1);
                const int j = std::min(toldTurn(phi, nBinsPhi), int(nBinsPhi) - 1);
                ASSERT_EQ(cellOf(histogram, cosTheta, phi), std::pair(i, j))
                    << cosTheta << " " << phi << " " << nBinsTheta << " " << nBinsPhi;
            }
    }
}

TYPED_TEST(RnDirectionalHistogramTest, TheCellOfAnglesIsNotLimited)
{
    using T = typename TypeParam::Number;
    std::vector<T> thetas{T(0), -T(0), T(1), T(3), PI<T> / 2, PI<T>, T(-1), T(10), NO_NUMBER<T>};
    HistogramRandom random(802);
    for (int n = 0; n < 50; ++n) thetas.push_back(random.within(T(0), PI<T>));
    for (const auto& [nBinsTheta, nBinsPhi] : SIZES)
    {
        const typename TypeParam::Histogram histogram(nBinsTheta, nBinsPhi);
        for (const T theta : thetas)
            for (const T phi : turns<T>())
            {
                int i;
                int j;
                histogram.getBinIndices(theta, phi, i, j);
                ASSERT_EQ(i, TypeParam::cell(std::cos(theta), nBinsTheta)) << theta;
                ASSERT_EQ(j, toldTurn(phi, nBinsPhi)) << phi;
            }
        int i;
        int j;
        histogram.getBinIndices(T(0), T(100), i, j);
        EXPECT_EQ(i, int(nBinsTheta));
        EXPECT_GE(j, int(15 * nBinsPhi));
    }
}

TYPED_TEST(RnDirectionalHistogramTest, WeightsAreAddedToTheCellAndTheTotal)
{
    using T = typename TypeParam::Number;
    for (const auto& [nBinsTheta, nBinsPhi] : SIZES)
    {
        typename TypeParam::Histogram cosineOnly(nBinsTheta, nBinsPhi);
        typename TypeParam::Histogram angles(nBinsTheta, nBinsPhi);
        ToldHistogram<TypeParam> toldCosine(nBinsTheta, nBinsPhi);
        ToldHistogram<TypeParam> toldAngles(nBinsTheta, nBinsPhi);
        HistogramRandom random(803);
        for (const T cosTheta : cosines<T>())
            for (const T phi : turns<T>())
            {
                const T weight = random.magnitude<T>(-3, 3);
                cosineOnly.addCosine(cosTheta, phi, weight);
                cosineOnly.addCosine(cosTheta, phi);
                toldCosine.addCosine(cosTheta, phi, weight);
                toldCosine.addCosine(cosTheta, phi, T(1));
                const T theta = cosTheta * T(3.5);
                angles.addAngles(theta, phi, weight);
                angles.addAngles(theta, phi);
                toldAngles.addCosine(std::cos(theta), phi, weight);
                toldAngles.addCosine(std::cos(theta), phi, T(1));
            }
        EXPECT_TRUE(holds(cosineOnly, toldCosine)) << nBinsTheta << " " << nBinsPhi;
        EXPECT_TRUE(holds(angles, toldAngles)) << nBinsTheta << " " << nBinsPhi;
        EXPECT_GT(cosineOnly.getTotal(), T(0));
    }
}

TYPED_TEST(RnDirectionalHistogramTest, ACosineOfOneAndAFullTurnAreInTheLastCell)
{
    using T = typename TypeParam::Number;
    typename TypeParam::Histogram histogram(4, 8);
    histogram.addCosine(T(1), 2 * PI<T>, T(2.5));
    histogram.addAngles(T(0), 2 * PI<T>);
    std::vector<T> expected(32, T(0));
    expected[31] = T(3.5);
    EXPECT_EQ(storageOf(histogram), expected);
    EXPECT_EQ(histogram.getTotal(), T(3.5));
}

TYPED_TEST(RnDirectionalHistogramTest, WhatHasANegativeIndexOrNoneIsCountedNowhere)
{
    using T = typename TypeParam::Number;
    typename TypeParam::Histogram histogram(4, 8);
    // Behind the first row, a negative second index would be a place in storage.
    for (const T phi : {T(-0.001), T(-1), T(-6), T(-1e30), -INFINITE<T>, INFINITE<T>, T(1e30),
                        T(1e12), NO_NUMBER<T>})
    {
        histogram.addCosine(T(0.9), phi, T(1));
        histogram.addCosine(T(0.9), phi);
        histogram.addAngles(T(0.1), phi, T(1));
        histogram.addAngles(T(0.1), phi);
    }
    for (const T cosTheta :
         {T(-1.001), T(-3), T(-1e30), -INFINITE<T>, INFINITE<T>, T(1e30), T(1e12), NO_NUMBER<T>})
    {
        histogram.addCosine(cosTheta, T(6), T(1));
        histogram.addCosine(cosTheta, T(6));
    }
    for (const T theta : {INFINITE<T>, -INFINITE<T>, NO_NUMBER<T>})
    {
        histogram.addAngles(theta, T(1), T(1));
        histogram.addAngles(theta, T(1));
    }
    EXPECT_EQ(storageOf(histogram), std::vector<T>(32, T(0)));
    EXPECT_EQ(histogram.getTotal(), T(0));
}

TYPED_TEST(RnHistogramHemisphericalTest, TheLowerHalfIsCountedNowhere)
{
    using T = TypeParam;
    RnHistogramHemispherical<T> histogram(4, 8);
    for (const T cosTheta : {before(T(0)), T(-0.1), T(-1)}) histogram.addCosine(cosTheta, T(6));
    for (const T theta : {T(1.6), T(3)}) histogram.addAngles(theta, T(6), T(2));
    EXPECT_EQ(storageOf(histogram), std::vector<T>(32, T(0)));
    EXPECT_EQ(histogram.getTotal(), T(0));
}

TYPED_TEST(RnDirectionalHistogramTest, ReadsAtAnotherPlaceThanItWrites)
{
    using T = typename TypeParam::Number;
    for (const auto& [nBinsTheta, nBinsPhi] : SIZES)
    {
        typename TypeParam::Histogram histogram(nBinsTheta, nBinsPhi);
        ToldHistogram<TypeParam> told(nBinsTheta, nBinsPhi);
        // Each cell has a different weight.
        for (unsigned int i = 0; i < nBinsTheta; ++i)
            for (unsigned int j = 0; j < nBinsPhi; ++j)
            {
                const T share = (T(i) + T(0.5)) / T(nBinsTheta);
                const T cosTheta =
                    std::is_same_v<TypeParam, Spherical<T>> ? share * 2 - T(1) : share;
                const T phi = (T(j) + T(0.5)) / T(nBinsPhi) * 2 * PI<T>;
                const T weight = T(i * nBinsPhi + j + 1);
                histogram.addCosine(cosTheta, phi, weight);
                told.addCosine(cosTheta, phi, weight);
            }
        for (unsigned int i = 0; i < nBinsTheta; ++i)
            for (unsigned int j = 0; j < nBinsPhi; ++j)
            {
                const std::size_t place = std::size_t(i) * nBinsTheta + j;
                const T read = histogram.getBin(i, j);
                const T written = T(i * nBinsPhi + j + 1);
                EXPECT_EQ(read, place < told._bins.size() ? told._bins[place] : T(0));
                if (nBinsTheta == nBinsPhi || i == 0)
                    EXPECT_EQ(read, written) << i << " " << j;
                else
                    EXPECT_NE(read, written) << i << " " << j;
            }
    }
}

TYPED_TEST(RnDirectionalHistogramTest, BehindTheStorageTheWeightIsZero)
{
    using T = typename TypeParam::Number;
    typename TypeParam::Histogram histogram(8, 4);
    for (const T cosTheta : cosines<T>())
        for (const T phi : turns<T>()) histogram.addCosine(cosTheta, phi);
    EXPECT_GT(histogram.getBin(3, 7), T(0));
    EXPECT_EQ(histogram.getBin(4, 0), T(0));
    EXPECT_EQ(histogram.getBin(0, 32), T(0));
    EXPECT_EQ(histogram.getBin(7, 3), T(0));
    // Products and sums that are 0 again in 32 bits.
    EXPECT_EQ(histogram.getBin(0x20000000U, 0), T(0));
    EXPECT_EQ(histogram.getBin(1, 0xFFFFFFF8U), T(0));
    EXPECT_EQ(histogram.getBin(0xFFFFFFFFU, 0xFFFFFFFFU), T(0));
}

TYPED_TEST(RnDirectionalHistogramTest, ClearTakesTheWeights)
{
    using T = typename TypeParam::Number;
    typename TypeParam::Histogram histogram(2, 2);
    histogram.addCosine(T(0.7), T(1), T(2));
    histogram.clear();
    EXPECT_EQ(storageOf(histogram), std::vector<T>(4, T(0)));
    EXPECT_EQ(histogram.getTotal(), T(0));
    histogram.addCosine(T(0.7), T(1), T(2));
    EXPECT_EQ(histogram.getBin(1, 0), T(2));
}

TYPED_TEST(RnDirectionalHistogramTest, ACopyIsFilledForItself)
{
    using T = typename TypeParam::Number;
    typename TypeParam::Histogram histogram(1, 2);
    histogram.addCosine(T(0.7), T(1));
    typename TypeParam::Histogram copy(histogram);
    copy.addCosine(T(0.7), T(4), T(3));
    EXPECT_EQ(storageOf(histogram), (std::vector<T>{T(1), T(0)}));
    EXPECT_EQ(storageOf(copy), (std::vector<T>{T(1), T(3)}));
    histogram = copy;
    EXPECT_EQ(storageOf(histogram), (std::vector<T>{T(1), T(3)}));
}

TYPED_TEST(RnDirectionalHistogramTest, WithoutBinsCountsNothing)
{
    using T = typename TypeParam::Number;
    const std::pair<unsigned int, unsigned int> sizes[] = {{0, 0}, {0, 4}, {4, 0}};
    for (const auto& [nBinsTheta, nBinsPhi] : sizes)
    {
        typename TypeParam::Histogram histogram(nBinsTheta, nBinsPhi);
        histogram.addCosine(T(0.5), T(1), T(2));
        histogram.addAngles(T(0.5), T(1));
        EXPECT_EQ(histogram.getTotal(), T(0));
        EXPECT_EQ(histogram.getBin(0, 0), T(0));
        std::ostringstream out;
        histogram.dumpText(out);
        EXPECT_EQ(out.str(), "");
    }
}

TYPED_TEST(RnDirectionalHistogramTest, ASizeThatNoVectorHasIsRefusedByTheTextOfTheVector)
{
    using Histogram = typename TypeParam::Histogram;
    EXPECT_EQ(support::lengthErrorOf([] { Histogram(0xFFFFFFFFU, 0xFFFFFFFFU); }),
              "vector<T> too long");
}

// Gives pairs of a script as cosine and angle; no other operation may be called.
template <class T> class ScriptedSphericalRng : public Zu::RnSphericalRng<T>
{
public:
    explicit ScriptedSphericalRng(std::vector<std::pair<T, T>> pairs) : _pairs(std::move(pairs)) {}
    virtual ~ScriptedSphericalRng() = default;

    // Not inlined: the compiler would warn about a case that only its inlining makes.
    [[gnu::noinline]] void getSampleCosine(T& cosTheta, T& phi) override
    {
        cosTheta = _pairs[_draws % _pairs.size()].first;
        phi = _pairs[_draws % _pairs.size()].second;
        ++_draws;
    }

    void getSampleXYZ(T&, T&, T&) override
    {
        refuse();
    }

    void getSampleAngles(T&, T&) override
    {
        refuse();
    }

    void getSequenceXYZ(unsigned int, T*, T*, T*) override
    {
        refuse();
    }

    void getSequenceAngles(unsigned int, T*, T*) override
    {
        refuse();
    }

    void getSequenceCosine(unsigned int, T*, T*) override
    {
        refuse();
    }

    T getPdfXYZ(T, T, T) const override
    {
        return T(1);
    }

    T getPdfAngles(T, T) const override
    {
        return T(1);
    }

    T getPdfCosine(T, T) const override
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
    static void refuse()
    {
        ADD_FAILURE() << "not to be called";
    }

    std::vector<std::pair<T, T>> _pairs;
};

TYPED_TEST(RnDirectionalHistogramTest, SamplesHaveTheCosineOfTheirCosineTaken)
{
    using T = typename TypeParam::Number;
    std::vector<std::pair<T, T>> script;
    for (const T cosTheta : cosines<T>())
        for (const T phi : turns<T>()) script.emplace_back(cosTheta, phi);
    const auto n = static_cast<unsigned int>(script.size());
    for (const auto& [nBinsTheta, nBinsPhi] : SIZES)
    {
        ScriptedSphericalRng<T> source(script);
        typename TypeParam::Histogram histogram(nBinsTheta, nBinsPhi);
        ToldHistogram<TypeParam> told(nBinsTheta, nBinsPhi);
        histogram.addCosine(T(0.5), T(1), T(0.1));
        told.addCosine(T(0.5), T(1), T(0.1));
        histogram.addSamples(&source, n);
        for (const auto& [cosTheta, phi] : script) told.addCosine(std::cos(cosTheta), phi, T(1));
        EXPECT_TRUE(holds(histogram, told)) << nBinsTheta << " " << nBinsPhi;
        EXPECT_EQ(source._draws, n);
        histogram.addSamples(&source, 0);
        EXPECT_TRUE(holds(histogram, told));
        EXPECT_EQ(source._draws, n);
    }
}

TYPED_TEST(RnDirectionalHistogramTest, SamplesAreNotInTheCellsOfTheirCosine)
{
    using T = typename TypeParam::Number;
    ScriptedSphericalRng<T> source({{T(0), T(1)}});
    typename TypeParam::Histogram sampled(4, 4);
    typename TypeParam::Histogram added(4, 4);
    sampled.addSamples(&source, 3);
    for (int n = 0; n < 3; ++n) added.addCosine(T(0), T(1));
    EXPECT_EQ(sampled.getBin(3, 0), T(3));
    EXPECT_EQ(added.getBin(3, 0), T(0));
    EXPECT_NE(storageOf(sampled), storageOf(added));
}

TYPED_TEST(RnDirectionalHistogramTest, SamplesOfTheLibrarysSourceAreSingleDirections)
{
    using T = typename TypeParam::Number;
    for (const unsigned int n : {0U, 1U, 127U, 128U, 129U, 255U, 256U, 257U, 2000U})
    {
        Zu::RnLecuyerUniformRng<T> uniform(1, 9);
        Zu::RnLecuyerUniformRng<T> sameUniform(1, 9);
        Zu::RnSeparableBiRng<T> pairs(&uniform);
        Zu::RnSeparableBiRng<T> samePairs(&sameUniform);
        Zu::RnUniformSphericalRng<T> source(&pairs);
        Zu::RnUniformSphericalRng<T> single(&samePairs);
        typename TypeParam::Histogram histogram(8, 4);
        ToldHistogram<TypeParam> told(8, 4);
        histogram.addSamples(&source, n);
        for (unsigned int k = 0; k < n; ++k)
        {
            T cosTheta;
            T phi;
            single.getSampleCosine(cosTheta, phi);
            told.addCosine(std::cos(cosTheta), phi, T(1));
        }
        EXPECT_TRUE(holds(histogram, told)) << n;
        EXPECT_EQ(uniform(), sameUniform()) << n;
    }
}

// Sees every direction, and puts each into the same cell.
template <class Kind> class SeeingHistogram : public Kind::Histogram
{
public:
    using T = typename Kind::Number;
    using Kind::Histogram::Histogram;

    void getBinIndices(T, T, int&, int&) const override
    {
        ADD_FAILURE() << "not to be called";
    }

    void getBinIndicesCosine(T cosTheta, T phi, int& i, int& j) const override
    {
        _seen.push_back(cosTheta);
        _seen.push_back(phi);
        i = _i;
        j = _j;
    }

    mutable std::vector<T> _seen;
    int _i = 1;
    int _j = 2;
};

TYPED_TEST(RnDirectionalHistogramTest, ADerivedHistogramThatFindsCellsInItsOwnWaySeesAll)
{
    using T = typename TypeParam::Number;
    SeeingHistogram<TypeParam> histogram(2, 3);
    histogram.addCosine(T(-7), T(8), T(0.5));
    histogram.addCosine(T(-6), T(9));
    histogram.addAngles(T(1), T(-3), T(0.25));
    histogram.addAngles(T(2), T(4));
    ScriptedSphericalRng<T> source({{T(0.5), T(-5)}});
    histogram.addSamples(&source, 2);
    volatile T angles[] = {T(1), T(2), T(0.5)};
    const std::vector<T> expected{T(-7),
                                  T(8),
                                  T(-6),
                                  T(9),
                                  std::cos(T(angles[0])),
                                  T(-3),
                                  std::cos(T(angles[1])),
                                  T(4),
                                  std::cos(T(angles[2])),
                                  T(-5),
                                  std::cos(T(angles[2])),
                                  T(-5)};
    EXPECT_TRUE(same(histogram._seen, expected));
    EXPECT_EQ(storageOf(histogram), (std::vector<T>{T(0), T(0), T(0), T(0), T(0), T(4.75)}));
    EXPECT_EQ(histogram.getTotal(), T(4.75));
}

TYPED_TEST(RnDirectionalHistogramTest, WhatADerivedHistogramPutsIntoNoCellIsDropped)
{
    using T = typename TypeParam::Number;
    const std::pair<int, int> cells[] = {{-1, 1},         {1, -1},         {LOWEST_INT, 0},
                                         {0, LOWEST_INT}, {1, LOWEST_INT}, {-1, 3}};
    for (const auto& [i, j] : cells)
    {
        SeeingHistogram<TypeParam> histogram(2, 3);
        histogram._i = i;
        histogram._j = j;
        histogram.addCosine(T(0.5), T(0.5), T(1));
        EXPECT_EQ(storageOf(histogram), std::vector<T>(6, T(0))) << i << " " << j;
        EXPECT_EQ(histogram.getTotal(), T(0)) << i << " " << j;
    }
}

const std::string HEAD = "#Inventor V2.1 ascii\n"
                         "Separator { \n"
                         "  LightModel { model\tBASE_COLOR }\n"
                         "  DrawStyle { pointSize 2 }\n"
                         "  PointSet { vertexProperty VertexProperty { vertex [ \n";

const std::string SQUARE = "] } }\n"
                           "  LineSet { vertexProperty VertexProperty { vertex [ \n"
                           "-1 -1 0, \n"
                           "+1 -1 0, \n"
                           "+1 -1 0, \n"
                           "+1 +1 0, \n"
                           "+1 +1 0, \n"
                           "-1 +1 0, \n"
                           "-1 +1 0, \n"
                           "-1 -1 0, \n"
                           "0 0 0, \n"
                           "0 0 1, \n"
                           "] \n"
                           "orderedRGBA [ 0xffffffff ]\n"
                           "}\n"
                           "startIndex 0 \n"
                           "numVertices [ 2, 2, 2, 2 ] \n"
                           "}\n"
                           "}\n";

// In the middle of the cells, at odd eighths of a turn.
template <class T> RnHistogramSpherical<T> eightCells()
{
    RnHistogramSpherical<T> histogram(2, 4);
    histogram.addCosine(T(-0.5), T(0.5), T(2));
    histogram.addCosine(T(0.5), T(2), T(3));
    histogram.addCosine(T(0.5), T(6), T(3));
    return histogram;
}

template <class T> RnHistogramHemispherical<T> eightUpperCells()
{
    RnHistogramHemispherical<T> histogram(2, 4);
    histogram.addCosine(T(0.25), T(0.5), T(1));
    histogram.addCosine(T(0.25), T(6), T(2));
    histogram.addCosine(T(0.75), T(2), T(4));
    histogram.addCosine(T(0.75), T(6), T(1));
    return histogram;
}

TYPED_TEST(RnHistogramSphericalTest, TheTextHasALineForEachCellWithPhiFastest)
{
    std::ostringstream out;
    eightCells<TypeParam>().dumpText(out);
    EXPECT_EQ(out.str(), "-1 0 0 1.5708 2\n"
                         "-1 0 1.5708 3.14159 0\n"
                         "-1 0 3.14159 4.71239 0\n"
                         "-1 0 4.71239 6.28319 0\n"
                         "0 1 0 1.5708 0\n"
                         "0 1 1.5708 3.14159 3\n"
                         "0 1 3.14159 4.71239 0\n"
                         "0 1 4.71239 6.28319 3\n");
}

TYPED_TEST(RnHistogramHemisphericalTest, TheTextHasALineForEachCellWithPhiFastest)
{
    std::ostringstream out;
    eightUpperCells<TypeParam>().dumpText(out);
    EXPECT_EQ(out.str(), "0 0.5 0 1.5708 1\n"
                         "0 0.5 1.5708 3.14159 0\n"
                         "0 0.5 3.14159 4.71239 0\n"
                         "0 0.5 4.71239 6.28319 2\n"
                         "0.5 1 0 1.5708 0\n"
                         "0.5 1 1.5708 3.14159 4\n"
                         "0.5 1 3.14159 4.71239 0\n"
                         "0.5 1 4.71239 6.28319 1\n");
}

TYPED_TEST(RnHistogramSphericalTest, TheSceneIsARadialSurfaceOverASquare)
{
    std::ostringstream out;
    eightCells<TypeParam>().dumpInventor(out);
    EXPECT_EQ(out.str(), HEAD +
                             "0.0974621 0.0974621 -0.0795775,\n"
                             "-0 0 -0,\n"
                             "-0 -0 -0,\n"
                             "0 -0 -0,\n"
                             "0 0 0,\n"
                             "-0.146193 0.146193 0.119366,\n"
                             "-0 -0 0,\n"
                             "0.146193 -0.146193 0.119366,\n" +
                             SQUARE);
}

TYPED_TEST(RnHistogramHemisphericalTest, TheSceneIsARadialSurfaceOverASquare)
{
    std::ostringstream out;
    eightUpperCells<TypeParam>().dumpInventor(out);
    EXPECT_EQ(out.str(), HEAD +
                             "0.108966 0.108966 0.0397887,\n"
                             "-0 0 0,\n"
                             "-0 -0 0,\n"
                             "0.217932 -0.217932 0.0795775,\n"
                             "0 0 0,\n"
                             "-0.297752 0.297752 0.477465,\n"
                             "-0 -0 0,\n"
                             "0.0744379 -0.0744379 0.119366,\n" +
                             SQUARE);
}

TYPED_TEST(RnDirectionalHistogramTest, ASecondSceneIsTheSame)
{
    using T = typename TypeParam::Number;
    typename TypeParam::Histogram histogram(3, 2);
    histogram.addCosine(T(0.5), T(1));
    std::ostringstream first;
    std::ostringstream second;
    histogram.dumpInventor(first);
    histogram.dumpInventor(second);
    EXPECT_EQ(first.str(), second.str());
}

TYPED_TEST(RnDirectionalHistogramTest, NumbersAreWrittenInTheFormatOfTheStream)
{
    using T = typename TypeParam::Number;
    typename TypeParam::Histogram histogram(1, 2);
    histogram.addCosine(T(0.5), T(1), T(1) / T(3));
    std::ostringstream text;
    text << std::setprecision(3);
    histogram.dumpText(text);
    const std::string low = std::is_same_v<TypeParam, Spherical<T>> ? "-1" : "0";
    EXPECT_EQ(text.str(), low + " 1 0 3.14 0.333\n" + low + " 1 3.14 6.28 0\n");
    std::ostringstream exact;
    exact << std::setprecision(9);
    histogram.dumpText(exact);
    const bool isFloat = std::is_same_v<T, float>;
    const std::string half = isFloat ? "3.14159274" : "3.14159265";
    EXPECT_EQ(exact.str().substr(0, exact.str().find('\n')),
              low + " 1 0 " + half + (isFloat ? " 0.333333343" : " 0.333333333"));
}

TYPED_TEST(RnHistogramHemisphericalTest, PointsAreWrittenInTheFormatOfTheStream)
{
    std::ostringstream out;
    out << std::fixed << std::setprecision(3);
    eightUpperCells<TypeParam>().dumpInventor(out);
    EXPECT_EQ(out.str(), HEAD +
                             "0.109 0.109 0.040,\n"
                             "-0.000 0.000 0.000,\n"
                             "-0.000 -0.000 0.000,\n"
                             "0.218 -0.218 0.080,\n"
                             "0.000 0.000 0.000,\n"
                             "-0.298 0.298 0.477,\n"
                             "-0.000 -0.000 0.000,\n"
                             "0.074 -0.074 0.119,\n" +
                             SQUARE);
}

TYPED_TEST(RnDirectionalHistogramTest, TheSceneWithoutWeightHasNaNsWithoutASign)
{
    std::ostringstream out;
    typename TypeParam::Histogram(1, 2).dumpInventor(out);
    EXPECT_EQ(out.str(), HEAD + "nan nan nan,\nnan nan nan,\n" + SQUARE);
}

} // namespace

// Shaped sources compared with those of another library, and the distributions of many of their
// samples.

#include "base/rnDirectionalRng.h"
#include "base/rnGaussianRng.h"
#include "base/rnLecuyerUniformRng.h"
#include "base/rnMexicanHatRng.h"
#include "base/rnSeparableRng.h"
#include "base/rnStdAdapters.h"

#include "support/scriptedRng.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <numbers>
#include <random>
#include <vector>

namespace
{

using support::drawsOf;
using support::same;
using Zu::RnCosineHemisphericalRng;
using Zu::RnEngineRng;
using Zu::RnGaussianRng;
using Zu::RnLecuyerUniformRng;
using Zu::RnMexicanHatRng;
using Zu::RnSeparableBiRng;
using Zu::RnSphericalRng;
using Zu::RnUniformHemisphericalRng;
using Zu::RnUniformSphericalRng;

template <class T> class RnShapesPeersTyped : public testing::Test
{
};

using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(RnShapesPeersTyped, Precisions);

// The normal distribution of libstdc++ is the polar method too, and takes its uniform values by
// std::generate_canonical, as RnEngineRng does. But it gives the second value of a pair first and
// keeps the first one, so pairs come in the opposite order. It rejects a sum of squares of exactly
// 0 and accepts one of exactly 1, neither of which occurs here.
template <class T, class Engine>
void expectSwappedPairs(const Engine& engine, T mean, T sigma, unsigned int n)
{
    Engine peerEngine(engine);
    std::normal_distribution<T> peer(mean, sigma);
    std::vector<T> expected(n);
    for (unsigned int i = 0; i < n; i += 2)
    {
        expected[i + 1] = peer(peerEngine);
        expected[i] = peer(peerEngine);
    }

    RnEngineRng<T, Engine> single(engine);
    RnGaussianRng<T> shaped(&single, mean, sigma);
    EXPECT_TRUE(same(drawsOf<T>(shaped, n), expected));

    RnEngineRng<T, Engine> block(engine);
    RnGaussianRng<T> sequence(&block, mean, sigma);
    std::vector<T> values(n);
    sequence.getSequence(n, values.data());
    EXPECT_TRUE(same(values, expected));
}

TYPED_TEST(RnShapesPeersTyped, TheGaussianGivesThePairsOfTheStandardLibraryInTheOppositeOrder)
{
    using T = TypeParam;
    expectSwappedPairs<T>(std::mt19937(17), T(0), T(1), 4096);
    expectSwappedPairs<T>(std::mt19937(18), T(-3.3), T(0.7), 4096);
    expectSwappedPairs<T>(std::mt19937_64(19), T(1e6), T(1e3), 4096);
    expectSwappedPairs<T>(std::minstd_rand(20), T(0), T(1e-10), 4096);
}

constexpr unsigned int N_SAMPLES = 40000;

struct Moments
{
    double _mean = 0;
    double _variance = 0;
    double _skewness = 0;
    double _kurtosis = 0;
};

Moments momentsOf(const std::vector<double>& samples)
{
    const auto n = static_cast<double>(samples.size());
    Moments moments;
    for (const double x : samples) moments._mean += x / n;
    double third = 0;
    double fourth = 0;
    for (const double x : samples)
    {
        const double d = x - moments._mean;
        moments._variance += d * d / n;
        third += d * d * d / n;
        fourth += d * d * d * d / n;
    }
    moments._skewness = third / std::pow(moments._variance, 1.5);
    moments._kurtosis = fourth / (moments._variance * moments._variance);
    return moments;
}

// The values of the distribution function should be even over 0 to 1. With 32 cells the mean of the
// statistic is 31 and its standard deviation 7.9: it is outside 8 to 80 less than once in 100,000
// times, on either side.
void expectEven(const std::vector<double>& quantiles)
{
    constexpr std::size_t N_CELLS = 32;
    std::array<double, N_CELLS> counts = {};
    for (const double q : quantiles)
    {
        ASSERT_TRUE(q >= 0 && q <= 1) << q;
        ++counts[std::min(static_cast<std::size_t>(q * N_CELLS), N_CELLS - 1)];
    }
    const double expected = static_cast<double>(quantiles.size()) / N_CELLS;
    double chiSquare = 0;
    for (const double count : counts)
        chiSquare += (count - expected) * (count - expected) / expected;
    EXPECT_GT(chiSquare, 8);
    EXPECT_LT(chiSquare, 80);
}

template <class T> std::vector<double> samplesOf(Zu::RnRng<T>& source)
{
    std::vector<T> values(N_SAMPLES);
    source.getSequence(N_SAMPLES, values.data());
    return std::vector<double>(values.begin(), values.end());
}

// Bounds are more than four standard deviations of each figure over 40,000 samples.
TYPED_TEST(RnShapesPeersTyped, ManyGaussianSamplesHaveItsMomentsAndItsShape)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> uniform(0, 20240229);
    RnGaussianRng<T> shaped(&uniform, T(5), T(2));
    const std::vector<double> samples = samplesOf(shaped);
    const Moments moments = momentsOf(samples);
    EXPECT_NEAR(moments._mean, 5, 0.045);
    EXPECT_NEAR(moments._variance, 4, 0.12);
    EXPECT_NEAR(moments._skewness, 0, 0.055);
    EXPECT_NEAR(moments._kurtosis, 3, 0.11);
    std::vector<double> quantiles;
    for (const double x : samples)
        quantiles.push_back(0.5 * std::erfc((5 - x) / (2 * std::numbers::sqrt2)));
    expectEven(quantiles);
}

TYPED_TEST(RnShapesPeersTyped, SuccessiveGaussianSamplesAreNotCorrelated)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> uniform(0, 19991231);
    RnGaussianRng<T> shaped(&uniform);
    const std::vector<double> samples = samplesOf(shaped);
    double within = 0;
    double between = 0;
    for (std::size_t i = 0; i + 2 < samples.size(); i += 2)
    {
        within += samples[i] * samples[i + 1];
        between += samples[i + 1] * samples[i + 2];
    }
    EXPECT_NEAR(within / (N_SAMPLES / 2), 0, 0.03);
    EXPECT_NEAR(between / (N_SAMPLES / 2), 0, 0.03);
}

// A triangle of half-width h has the variance h*h/6 and the kurtosis 2.4.
TYPED_TEST(RnShapesPeersTyped, ManySamplesOfTheTriangleHaveItsMomentsAndItsShape)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> uniform(0, 20240301);
    RnMexicanHatRng<T> shaped(&uniform, T(-2), T(6));
    const std::vector<double> samples = samplesOf(shaped);
    const Moments moments = momentsOf(samples);
    EXPECT_NEAR(moments._mean, -2, 0.028);
    EXPECT_NEAR(moments._variance, 1.5, 0.04);
    EXPECT_NEAR(moments._skewness, 0, 0.05);
    EXPECT_NEAR(moments._kurtosis, 2.4, 0.06);
    std::vector<double> quantiles;
    for (const double x : samples)
    {
        const double t = (x + 2) / 3;
        quantiles.push_back(t < 0 ? (1 + t) * (1 + t) / 2 : 1 - (1 - t) * (1 - t) / 2);
    }
    expectEven(quantiles);
}

// The share of samples in a cell is the density there times the cell's width.
template <class T> void expectDensity(Zu::RnRng<T>& source, double min, double max)
{
    constexpr std::size_t N_CELLS = 20;
    const double width = (max - min) / N_CELLS;
    std::array<double, N_CELLS> shares = {};
    for (const double x : samplesOf(source))
        if (x >= min && x < max)
            shares[std::min(static_cast<std::size_t>((x - min) / width), N_CELLS - 1)] +=
                1.0 / N_SAMPLES;
    for (std::size_t i = 0; i < N_CELLS; ++i)
    {
        double expected = 0;
        for (int j = 0; j < 16; ++j)
            expected += static_cast<double>(source.getPdf(static_cast<T>(
                            min + width * (static_cast<double>(i) + (j + 0.5) / 16)))) *
                        width / 16;
        EXPECT_NEAR(shares[i], expected, 5 * std::sqrt(expected / N_SAMPLES) + 1e-4) << i;
    }
}

TYPED_TEST(RnShapesPeersTyped, DensitiesAreThoseOfTheSamples)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> uniform(0, 424243);
    RnGaussianRng<T> gaussian(&uniform, T(5), T(2));
    RnMexicanHatRng<T> hat(&uniform, T(-2), T(6));
    expectDensity<T>(gaussian, -2, 12);
    expectDensity<T>(hat, -5, 1);
}

struct Directions
{
    std::vector<double> _x = std::vector<double>(N_SAMPLES);
    std::vector<double> _y = std::vector<double>(N_SAMPLES);
    std::vector<double> _z = std::vector<double>(N_SAMPLES);
};

// One half by samples, the other as a sequence.
template <class T> Directions directionsOf(RnSphericalRng<T>& source)
{
    constexpr unsigned int HALF = N_SAMPLES / 2;
    std::vector<T> x(N_SAMPLES);
    std::vector<T> y(N_SAMPLES);
    std::vector<T> z(N_SAMPLES);
    for (unsigned int i = 0; i < HALF; ++i) source.getSampleXYZ(x[i], y[i], z[i]);
    source.getSequenceXYZ(HALF, x.data() + HALF, y.data() + HALF, z.data() + HALF);
    Directions directions;
    directions._x.assign(x.begin(), x.end());
    directions._y.assign(y.begin(), y.end());
    directions._z.assign(z.begin(), z.end());
    return directions;
}

// The angle around the axis is uniform for every shape; the rest is specified.
void expectAround(const Directions& directions)
{
    std::vector<double> turns;
    for (std::size_t i = 0; i < N_SAMPLES; ++i)
        turns.push_back(std::atan2(directions._y[i], directions._x[i]) / (2 * std::numbers::pi) +
                        0.5);
    expectEven(turns);
    EXPECT_NEAR(momentsOf(directions._x)._mean, 0, 0.015);
    EXPECT_NEAR(momentsOf(directions._y)._mean, 0, 0.015);
}

TYPED_TEST(RnShapesPeersTyped, ManyDirectionsAreEvenOnTheSphere)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> uniform(0, 1001);
    RnSeparableBiRng<T> pairs(&uniform);
    RnUniformSphericalRng<T> source(&pairs);
    const Directions directions = directionsOf<T>(source);
    expectAround(directions);
    for (const std::vector<double>* const coordinate :
         {&directions._x, &directions._y, &directions._z})
    {
        const Moments moments = momentsOf(*coordinate);
        EXPECT_NEAR(moments._mean, 0, 0.013);
        EXPECT_NEAR(moments._variance, 1.0 / 3, 0.007);
        // A slice of the sphere has an area that is proportional to its height alone.
        std::vector<double> quantiles;
        for (const double c : *coordinate) quantiles.push_back(std::clamp((c + 1) / 2, 0.0, 1.0));
        expectEven(quantiles);
    }
}

TYPED_TEST(RnShapesPeersTyped, ManyDirectionsAreEvenOnTheUpperHemisphere)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> uniform(0, 1002);
    RnSeparableBiRng<T> pairs(&uniform);
    RnUniformHemisphericalRng<T> source(&pairs);
    const Directions directions = directionsOf<T>(source);
    expectAround(directions);
    const Moments moments = momentsOf(directions._z);
    EXPECT_NEAR(moments._mean, 0.5, 0.007);
    EXPECT_NEAR(moments._variance, 1.0 / 12, 0.002);
    expectEven(directions._z);
    EXPECT_NEAR(momentsOf(directions._x)._variance, 1.0 / 3, 0.007);
}

// The square of the height is even: mean 2/3 and variance 1/18.
TYPED_TEST(RnShapesPeersTyped, ManyDirectionsFollowTheCosineOnTheUpperHemisphere)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> uniform(0, 1003);
    RnSeparableBiRng<T> pairs(&uniform);
    RnCosineHemisphericalRng<T> source(&pairs);
    const Directions directions = directionsOf<T>(source);
    expectAround(directions);
    const Moments moments = momentsOf(directions._z);
    EXPECT_NEAR(moments._mean, 2.0 / 3, 0.006);
    EXPECT_NEAR(moments._variance, 1.0 / 18, 0.0015);
    std::vector<double> quantiles;
    for (const double z : directions._z) quantiles.push_back(z * z);
    expectEven(quantiles);
    EXPECT_NEAR(momentsOf(directions._x)._variance, 0.25, 0.006);
}

} // namespace

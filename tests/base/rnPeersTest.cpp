// The low-discrepancy sequences compared with those of two other libraries.

#include "base/rnHaltonRng.h"
#include "base/rnNiederreiterMultiRng.h"

#include "support/sampleChecks.h"

#include <boost/random/niederreiter_base2.hpp>
#include <cstddef>
#include <cstdint>
#include <gsl/gsl_qrng.h>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <vector>

namespace
{

using support::pointsOf;
using support::sameBits;
using support::sequenceOf;
using Zu::RnHaltonMultiRng;
using Zu::RnNiederreiterMultiRng;

constexpr std::uint32_t POINTS = 20000;

struct FreeGenerator
{
    void operator()(gsl_qrng* generator) const
    {
        gsl_qrng_free(generator);
    }
};

// The first points of a generator of the GSL, coordinate by coordinate.
std::vector<double> gslPoints(const gsl_qrng_type* type, unsigned int dimensions,
                              std::uint32_t points)
{
    const std::unique_ptr<gsl_qrng, FreeGenerator> generator(gsl_qrng_alloc(type, dimensions));
    std::vector<double> values(std::size_t(points) * dimensions);
    for (std::uint32_t i = 0; i < points; ++i)
        EXPECT_EQ(gsl_qrng_get(generator.get(), &values[std::size_t(i) * dimensions]), 0);
    return values;
}

constexpr std::uint32_t gray(std::uint32_t k)
{
    return k ^ (k >> 1);
}

// The points of the numbers that `numberOf` gives for 0, 1, 2...
template <class NumberOf> std::vector<double> niederreiterPoints(NumberOf numberOf)
{
    RnNiederreiterMultiRng<double> rng;
    std::vector<double> values;
    for (std::uint32_t k = 0; k < POINTS; ++k)
    {
        // A fresh object begins with point 4096.
        rng.restart(numberOf(k) - 4096);
        const std::vector<double> point = pointsOf(rng, 1);
        values.insert(values.end(), point.begin(), point.end());
    }
    return values;
}

template <int N> void expectHaltonOfGsl()
{
    const std::vector<double> expected = gslPoints(gsl_qrng_halton, N, POINTS);
    RnHaltonMultiRng<double, N> rng;
    EXPECT_TRUE(sameBits(pointsOf(rng, POINTS), expected));
    rng.restart();
    EXPECT_TRUE(sameBits(sequenceOf(rng, POINTS), expected));
}

TEST(RnPeers, HaltonIsThatOfGslBitForBit)
{
    expectHaltonOfGsl<2>();
    expectHaltonOfGsl<3>();
}

TEST(RnPeers, NiederreiterHasThePointsOfGslInTheOrderOfPlainNumbers)
{
    const std::vector<double> expected = gslPoints(gsl_qrng_niederreiter_2, 4, POINTS);
    EXPECT_TRUE(sameBits(niederreiterPoints(gray), expected));
}

TEST(RnPeers, SequencesOfNiederreiterHaveThePointsOfGsl)
{
    // All of the numbers below a power of two, put into the other order.
    constexpr std::uint32_t BLOCK = 16384;
    const std::vector<double> expected = gslPoints(gsl_qrng_niederreiter_2, 4, BLOCK);
    RnNiederreiterMultiRng<double> rng;
    rng.restart(0U - 4096);
    const std::vector<double> plain = sequenceOf(rng, BLOCK);
    std::vector<double> values;
    for (std::uint32_t k = 0; k < BLOCK; ++k)
    {
        const auto point = plain.begin() + std::ptrdiff_t(4 * gray(k));
        values.insert(values.end(), point, point + 4);
    }
    EXPECT_TRUE(sameBits(values, expected));
}

// The leading 31 of Boost's 64 bits.
double valueOf(std::uint64_t word)
{
    return static_cast<double>(word >> 33) * 0x1p-31;
}

TEST(RnPeers, NiederreiterHasThePointsOfBoostInTheOrderOfPlainNumbers)
{
    boost::random::niederreiter_base2 engine(4);
    std::vector<double> expected;
    for (std::uint32_t i = 0; i < 4 * POINTS; ++i) expected.push_back(valueOf(engine()));
    EXPECT_TRUE(
        sameBits(niederreiterPoints([](std::uint32_t k) { return gray(k + 1); }), expected));
}

TEST(RnPeers, NiederreiterHasThePointsOfBoostAllOverTheNumbers)
{
    std::mt19937 random(771);
    std::vector<std::uint32_t> places;
    for (std::uint32_t power = 1; power < 1U << 31; power *= 2)
        places.insert(places.end(), {power - 1, power});
    for (int i = 0; i < 1000; ++i)
        places.push_back(static_cast<std::uint32_t>(random() % 2147483647));

    boost::random::niederreiter_base2 engine(4);
    RnNiederreiterMultiRng<double> rng;
    for (const std::uint32_t place : places)
    {
        // Seeds are points; the numbers of all of them are below 2^31.
        engine.seed(std::uint64_t{place});
        std::vector<double> expected;
        for (int i = 0; i < 4; ++i) expected.push_back(valueOf(engine()));
        const std::uint32_t number = gray(place + 1);
        rng.restart(number - 4096);
        ASSERT_TRUE(sameBits(pointsOf(rng, 1), expected)) << place;
        rng.restart(number - 4096);
        ASSERT_TRUE(sameBits(sequenceOf(rng, 1), expected)) << place;
    }
}

} // namespace

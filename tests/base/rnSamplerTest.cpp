#include "base/rnSampler.h"

#include "support/histogramReference.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace
{

using support::before;
using support::behind;
using support::INFINITE;
using support::NO_NUMBER;
using support::Place;
using support::same;
using support::ToldChoice;
using Zu::RnSampler;

template <class T> class RnSamplerTest : public testing::Test
{
};

TYPED_TEST_SUITE(RnSamplerTest, support::FloatAndDouble, );

TYPED_TEST(RnSamplerTest, ADrawChoosesACellAndAPlaceInIt)
{
    using T = TypeParam;
    const RnSampler<T> sampler({T(1), T(0), T(2), T(1)});
    const struct
    {
        T _draw;
        unsigned int _cell;
        T _fraction;
    } rows[] = {{T(0), 0, T(0)},       {T(0.125), 0, T(0.5)},    {T(0.25), 2, T(0)},
                {T(0.5), 2, T(0.5)},   {T(0.6875), 2, T(0.875)}, {T(0.75), 3, T(0)},
                {T(0.875), 3, T(0.5)}, {T(0.9375), 3, T(0.75)}};
    for (const auto& row : rows)
    {
        const auto choice = sampler.choose(row._draw);
        EXPECT_EQ(choice._cell, row._cell) << row._draw;
        EXPECT_EQ(choice._fraction, row._fraction) << row._draw;
    }
}

TYPED_TEST(RnSamplerTest, ADrawBehindTheTableIsAtTheEndOfTheLastCellWithWeight)
{
    using T = TypeParam;
    const RnSampler<T> sampler({T(0), T(1), T(3), T(0), T(0)});
    for (const T draw : {T(1), behind(T(1)), T(7), INFINITE<T>})
    {
        const auto choice = sampler.choose(draw);
        EXPECT_EQ(choice._cell, 2U) << draw;
        EXPECT_EQ(choice._fraction, T(1)) << draw;
    }
}

TYPED_TEST(RnSamplerTest, ADrawBeforeTheTableIsAtTheBeginningOfTheFirstCellWithWeight)
{
    using T = TypeParam;
    const RnSampler<T> sampler({T(0), T(0), T(1), T(3), T(0)});
    for (const T draw : {before(T(0)), T(-0.5), T(-7), -INFINITE<T>, T(0), -T(0)})
    {
        const auto choice = sampler.choose(draw);
        EXPECT_EQ(choice._cell, 2U) << draw;
        EXPECT_EQ(choice._fraction, T(0)) << draw;
    }
}

TYPED_TEST(RnSamplerTest, ADrawThatIsNoNumberHasNoPlace)
{
    using T = TypeParam;
    const RnSampler<T> sampler({T(0), T(1), T(3), T(0)});
    EXPECT_TRUE(std::isnan(sampler.choose(NO_NUMBER<T>)._fraction));
}

TYPED_TEST(RnSamplerTest, WithoutWeightNoDrawHasAPlace)
{
    using T = TypeParam;
    for (const std::size_t nCells : {1U, 2U, 64U})
    {
        const RnSampler<T> sampler(std::vector<T>(nCells, T(0)));
        for (const T draw : {T(-1), T(0), T(0.25), before(T(1)), T(1), T(2), NO_NUMBER<T>})
        {
            EXPECT_TRUE(std::isnan(sampler.choose(draw)._fraction)) << draw << " " << nCells;
            EXPECT_LT(sampler.choose(draw)._cell, nCells) << draw;
        }
    }
}

TYPED_TEST(RnSamplerTest, ChoosesAsABinarySearchInTheTable)
{
    using T = TypeParam;
    for (const std::size_t nCells : {1U, 2U, 7U, 64U, 4096U})
        for (const auto& [name, weights] : support::weightTables<T>(nCells))
        {
            const RnSampler<T> sampler(weights);
            const std::vector<T> cdf = support::toldCdf(weights);
            support::HistogramRandom random(780);
            std::vector<T> draws = support::hardDraws(cdf);
            for (int i = 0; i < 1000; ++i) draws.push_back(random.unit<T>());
            for (const T draw : draws)
            {
                const ToldChoice<T> told = support::toldChoice(weights, cdf, draw);
                const auto choice = sampler.choose(draw);
                if (told._place == Place::NONE)
                {
                    ASSERT_TRUE(std::isnan(choice._fraction)) << draw << " " << name;
                    continue;
                }
                ASSERT_EQ(choice._cell, told._cell) << draw << " " << name << " " << nCells;
                ASSERT_TRUE(same(choice._fraction, told._fraction))
                    << draw << " " << name << " " << nCells;
                ASSERT_GT(weights[choice._cell], T(0)) << draw << " " << name;
            }
        }
}

// Small tables, and such as are fetched ahead.
TYPED_TEST(RnSamplerTest, ManyDrawsChooseAsEachDoesInTheirOrder)
{
    using T = TypeParam;
    support::HistogramRandom random(781);
    for (const std::size_t nCells : {1U, 64U, 32766U, 32767U, 32768U, 50000U})
    {
        std::vector<T> weights(nCells);
        for (T& weight : weights) weight = random.below(3) == 0 ? T(0) : random.unit<T>();
        weights[nCells / 2] = T(1);
        const RnSampler<T> sampler(weights);
        std::vector<T> draws{NO_NUMBER<T>, -INFINITE<T>, INFINITE<T>, T(-1), T(0), T(1), T(2)};
        for (int i = 0; i < 500; ++i) draws.push_back(random.unit<T>());
        for (const unsigned int n : {0U, 1U, 15U, 16U, 17U, 31U, 32U, 33U, 507U})
        {
            unsigned int done = 0;
            bool isCell = true;
            sampler.chooseAll(
                n, [&](unsigned int i) { return draws.at(i); },
                [&](std::uint32_t cell) { isCell = isCell && cell < nCells; },
                [&](unsigned int i, const auto& choice)
                {
                    ASSERT_EQ(i, done++);
                    const auto each = sampler.choose(draws[i]);
                    ASSERT_EQ(choice._cell, each._cell) << draws[i] << " " << nCells;
                    ASSERT_TRUE(same(choice._fraction, each._fraction)) << draws[i];
                    ASSERT_EQ(choice._isEnd, each._isEnd) << draws[i];
                });
            EXPECT_EQ(done, n);
            EXPECT_TRUE(isCell);
        }
    }
}

TYPED_TEST(RnSamplerTest, TheShareOfACellIsTheDifferenceInTheTable)
{
    using T = TypeParam;
    for (const std::size_t nCells : {1U, 7U, 64U})
        for (const auto& [name, weights] : support::weightTables<T>(nCells))
        {
            const RnSampler<T> sampler(weights);
            const std::vector<T> cdf = support::toldCdf(weights);
            for (std::size_t cell = 0; cell < nCells; ++cell)
                ASSERT_TRUE(same(sampler.shareOf(static_cast<std::uint32_t>(cell)),
                                 cdf[cell + 1] - cdf[cell]))
                    << cell << " " << name;
        }
}

// Sums and quotients round to either side of 1.
TYPED_TEST(RnSamplerTest, TheEndOfTheTableIsWhereItsLastEntryIs)
{
    using T = TypeParam;
    bool below = false;
    bool above = false;
    for (unsigned int nCells = 1; nCells < 300; ++nCells)
    {
        const std::vector<T> weights(nCells, T(0.1));
        const T last = support::toldCdf(weights).back();
        below = below || last < T(1);
        above = above || last > T(1);
        const RnSampler<T> sampler(weights);
        const auto end = sampler.choose(last);
        ASSERT_EQ(end._cell, nCells - 1) << nCells;
        ASSERT_EQ(end._fraction, T(1)) << nCells;
        const auto within = sampler.choose(before(last));
        ASSERT_EQ(within._cell, nCells - 1) << nCells;
        ASSERT_LT(within._fraction, T(1)) << nCells;
    }
    EXPECT_TRUE(below);
    EXPECT_TRUE(above);
}

} // namespace

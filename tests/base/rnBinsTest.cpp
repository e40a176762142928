#include "base/rnBins.h"

#include "support/histogramReference.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <type_traits>
#include <vector>

namespace
{

using support::before;
using support::behind;
using support::HistogramRandom;
using support::INFINITE;
using support::NO_NUMBER;
using support::same;

namespace RnBins = Zu::RnBins;

template <class T> class RnBinsTest : public testing::Test
{
};

TYPED_TEST_SUITE(RnBinsTest, support::FloatAndDouble, );

constexpr int LOWEST_INT = std::numeric_limits<int>::min();
constexpr int HIGHEST_INT = std::numeric_limits<int>::max();

TYPED_TEST(RnBinsTest, EdgesDivideTheRangeAndEndWithItsEnd)
{
    using T = TypeParam;
    EXPECT_EQ(RnBins::edgesOf(4, T(0), T(1)),
              (std::vector<T>{T(0), T(0.25), T(0.5), T(0.75), T(1)}));
    EXPECT_EQ(RnBins::edgesOf(1, T(-2), T(3)), (std::vector<T>{T(-2), T(3)}));
    HistogramRandom random(760);
    for (int round = 0; round < 200; ++round)
    {
        const unsigned int nBins = 1 + random.below(200);
        const T min = random.within(T(-10), T(10));
        const T max = min + random.magnitude<T>(-6, 6);
        ASSERT_TRUE(same(RnBins::edgesOf(nBins, min, max), support::toldEdges(nBins, min, max)))
            << nBins << " " << min << " " << max;
    }
}

TYPED_TEST(RnBinsTest, ASizeThatNoVectorHasIsRefused)
{
    using T = TypeParam;
    const std::size_t most = std::vector<T>().max_size();
    const struct
    {
        std::size_t _count;
        std::size_t _rows;
    } rows[] = {{most + 1, 1},         {1, most + 1},
                {most / 2 + 1, 2},     {0xFFFFFFFF, 0xFFFFFFFF},
                {std::size_t(-1), 16}, {std::size_t(1) << 62, 4}};
    for (const auto& row : rows)
        EXPECT_EQ(support::lengthErrorOf([&] { RnBins::zeros<T>(row._count, row._rows); }),
                  "vector<T> too long")
            << row._count << " " << row._rows;
    EXPECT_EQ(RnBins::zeros<T>(3, 2), std::vector<T>(6, T(0)));
    EXPECT_EQ(RnBins::zeros<T>(3), std::vector<T>(3, T(0)));
    EXPECT_EQ(RnBins::zeros<T>(std::size_t(-1), 0), std::vector<T>());
    EXPECT_EQ(RnBins::zeros<T>(0, 7), std::vector<T>());
}

TYPED_TEST(RnBinsTest, NoBinsHaveTheEndOfTheRangeAsTheirOnlyEdge)
{
    using T = TypeParam;
    EXPECT_EQ(RnBins::edgesOf(0, T(2), T(3)), std::vector<T>{T(3)});
}

TYPED_TEST(RnBinsTest, GivenEdgesAreCopied)
{
    using T = TypeParam;
    const T edges[] = {T(-1), T(0), T(5), T(7)};
    EXPECT_EQ(RnBins::edgesOf(2, edges), (std::vector<T>{T(-1), T(0), T(5)}));
    EXPECT_EQ(RnBins::edgesOf(0, edges), std::vector<T>{T(-1)});
}

TYPED_TEST(RnBinsTest, IsRoundedDown)
{
    using T = TypeParam;
    const struct
    {
        T _value;
        int _floor;
    } rows[] = {{T(0), 0},
                {-T(0), 0},
                {T(0.5), 0},
                {T(-0.5), -1},
                {behind(T(0)), 0},
                {before(T(0)), -1},
                {T(1), 1},
                {before(T(1)), 0},
                {T(-1), -1},
                {behind(T(-1)), -1},
                {before(T(-1)), -2},
                {T(8388607.5), 8388607},
                {T(-8388607.5), -8388608},
                {T(2147483520), 2147483520},
                {T(-2147483520), -2147483520},
                {before(T(0x1p31)), std::is_same_v<T, float> ? 2147483520 : HIGHEST_INT},
                {T(0x1p31), LOWEST_INT},
                {T(-0x1p31), LOWEST_INT},
                {behind(T(-0x1p31)), std::is_same_v<T, float> ? -2147483520 : LOWEST_INT},
                {before(T(-0x1p31)), LOWEST_INT},
                {T(1e30), LOWEST_INT},
                {T(-1e30), LOWEST_INT},
                {INFINITE<T>, LOWEST_INT},
                {-INFINITE<T>, LOWEST_INT},
                {NO_NUMBER<T>, LOWEST_INT}};
    for (const auto& row : rows)
        EXPECT_EQ(RnBins::floorToInt(row._value), row._floor) << row._value;

    HistogramRandom random(761);
    for (int round = 0; round < 5000; ++round)
    {
        const T value = random.within(T(-1), T(1)) * random.magnitude<T>(-3, 11);
        ASSERT_EQ(RnBins::floorToInt(value), support::toldFloor(value)) << value;
    }
}

TEST(RnBins, DoublesBesideTheBoundsOfIntAreRoundedDown)
{
    EXPECT_EQ(RnBins::floorToInt(2147483647.5), HIGHEST_INT);
    EXPECT_EQ(RnBins::floorToInt(-2147483647.5), LOWEST_INT);
    EXPECT_EQ(RnBins::floorToInt(-2147483646.5), LOWEST_INT + 1);
    EXPECT_EQ(RnBins::floorToInt(-2147483648.5), LOWEST_INT);
}

TYPED_TEST(RnBinsTest, AUniformBinIsTheClosedForm)
{
    using T = TypeParam;
    HistogramRandom random(762);
    for (int round = 0; round < 100; ++round)
    {
        const unsigned int nBins = random.below(300);
        const T min = random.within(T(-10), T(10));
        const T max = min + random.magnitude<T>(-3, 3);
        for (int i = 0; i < 20; ++i)
        {
            const T value = random.within(min - T(1), max + T(1));
            ASSERT_EQ(RnBins::uniformBin(value, min, max - min, nBins),
                      support::toldUniformBin(nBins, min, max, value))
                << value;
        }
    }
    // No width: infinities and NaNs, which are not bins.
    for (const T value : {T(0), T(1), T(2), NO_NUMBER<T>})
        EXPECT_EQ(RnBins::uniformBin(value, T(1), T(0), 5), LOWEST_INT) << value;
}

TEST(RnBins, OnlyIndicesOfBinsAreBins)
{
    EXPECT_TRUE(RnBins::isBin(0, 1));
    EXPECT_TRUE(RnBins::isBin(6, 7));
    EXPECT_FALSE(RnBins::isBin(7, 7));
    EXPECT_FALSE(RnBins::isBin(-1, 7));
    EXPECT_FALSE(RnBins::isBin(-1, 0xFFFFFFFFU));
    EXPECT_FALSE(RnBins::isBin(LOWEST_INT, 0xFFFFFFFFU));
    EXPECT_TRUE(RnBins::isBin(HIGHEST_INT, 0xFFFFFFFFU));
    EXPECT_FALSE(RnBins::isBin(0, 0));
}

TEST(RnBins, ACounterCountsEachBin)
{
    HistogramRandom random(763);
    for (const unsigned int nBins : {1U, 2U, 7U, 100U})
        for (const unsigned int n : {0U, 1U, 3U, 4U, 5U, 1000U})
        {
            RnBins::Counter counter(nBins);
            std::vector<std::uint32_t> expected(nBins + 1, 0);
            // Counts of several calls add up, and a value in no bin is counted for none.
            for (int call = 0; call < 3; ++call)
            {
                std::vector<std::int32_t> bins;
                for (unsigned int i = 0; i < n; ++i)
                    bins.push_back(static_cast<std::int32_t>(random.below(nBins + 1)));
                for (const std::int32_t bin : bins) ++expected[static_cast<std::uint32_t>(bin)];
                counter.add(n, bins.data());
            }
            for (unsigned int bin = 0; bin < nBins; ++bin)
                ASSERT_EQ(counter.countOf(bin), expected[bin]) << nBins << " " << n << " " << bin;
        }
}

TEST(RnBins, CountingPaysWhereThereAreMoreValuesThanCounts)
{
    EXPECT_FALSE(RnBins::Counter::pays(100, 0));
    EXPECT_FALSE(RnBins::Counter::pays(100, 99));
    EXPECT_TRUE(RnBins::Counter::pays(100, 100000));
}

template <class T> T oneByOne(T number, std::uint32_t count)
{
    for (std::uint32_t i = 0; i < count; ++i) number += T(1);
    return number;
}

TYPED_TEST(RnBinsTest, OnesAreAddedAsOneByOne)
{
    using T = TypeParam;
    const T exact = std::ldexp(T(1), std::numeric_limits<T>::digits);
    // A sum that began at 0 is never -0.
    const T numbers[] = {T(0),
                         T(1),
                         T(0.1),
                         T(0.3),
                         T(0.5),
                         T(1) / T(3),
                         T(1e-30),
                         T(-0.25),
                         T(-3),
                         T(-1e-9),
                         T(-1000.7),
                         T(123.456),
                         T(65535.7),
                         exact / 4 + T(0.5),
                         exact / 2 - T(0.5),
                         exact / 2 - T(100.5),
                         exact - T(1000),
                         exact - T(3),
                         exact - T(2),
                         exact - T(1),
                         exact,
                         exact + T(2),
                         exact * 2,
                         -exact,
                         -exact - T(2),
                         T(1e30),
                         T(-1e30),
                         INFINITE<T>,
                         -INFINITE<T>,
                         NO_NUMBER<T>};
    for (const T number : numbers)
        for (const std::uint32_t count : {0U, 1U, 2U, 3U, 4U, 5U, 999U, 1000U, 1001U, 5000U})
            EXPECT_TRUE(same(RnBins::withOnes(number, count), oneByOne(number, count)))
                << number << " " << count;
    HistogramRandom random(764);
    for (int round = 0; round < 300; ++round)
    {
        const T number = random.within(T(-1), T(1)) * random.magnitude<T>(-4, 9);
        const std::uint32_t count = random.below(2000);
        ASSERT_TRUE(same(RnBins::withOnes(number, count), oneByOne(number, count)))
            << number << " " << count;
    }
}

TEST(RnBins, AFloatStopsGrowingByOnes)
{
    EXPECT_EQ(RnBins::withOnes(0.0F, 0x1000000U), 0x1p24F);
    EXPECT_EQ(RnBins::withOnes(0.0F, 0x1000001U), 0x1p24F);
    EXPECT_EQ(RnBins::withOnes(0.0F, 0xFFFFFFFFU), 0x1p24F);
    EXPECT_EQ(RnBins::withOnes(16777215.0F, 7), 0x1p24F);
    EXPECT_EQ(RnBins::withOnes(0x1p24F + 2, 0xFFFFFFFFU), 0x1p24F + 4);
    EXPECT_EQ(RnBins::withOnes(0.0, 0xFFFFFFFFU), 4294967295.0);
    EXPECT_EQ(RnBins::withOnes(0x1p53, 0xFFFFFFFFU), 0x1p53);
}

TYPED_TEST(RnBinsTest, ACumulativeTableIsSummedInOrder)
{
    using T = TypeParam;
    EXPECT_EQ(RnBins::cumulated(std::vector<T>{T(1), T(0), T(3)}),
              (std::vector<T>{T(0), T(0.25), T(0.25), T(1)}));
    for (const std::size_t nBins : {1U, 2U, 7U, 64U, 4096U})
        for (const auto& [name, weights] : support::weightTables<T>(nBins))
            EXPECT_TRUE(same(RnBins::cumulated(weights), support::toldCdf(weights)))
                << nBins << " " << name;
}

TYPED_TEST(RnBinsTest, ACumulativeTableOfNothingIsAZero)
{
    using T = TypeParam;
    EXPECT_EQ(RnBins::cumulated(std::vector<T>()), std::vector<T>{T(0)});
}

TYPED_TEST(RnBinsTest, ACumulativeTableWithoutWeightHasNoNumberBehindItsFirst)
{
    using T = TypeParam;
    EXPECT_TRUE(same(RnBins::cumulated(std::vector<T>(2, T(0))),
                     std::vector<T>{T(0), NO_NUMBER<T>, NO_NUMBER<T>}));
}

TYPED_TEST(RnBinsTest, ANaNIsShownWithoutItsSign)
{
    using T = TypeParam;
    std::ostringstream out;
    out << RnBins::shown(std::copysign(NO_NUMBER<T>, T(-1))) << " " << RnBins::shown(T(-1.5));
    EXPECT_EQ(out.str(), "nan -1.5");
}

} // namespace

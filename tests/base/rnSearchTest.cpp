#include "base/rnSearch.h"

#include "support/histogramReference.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace
{

using support::before;
using support::behind;
using support::HistogramRandom;
using support::INFINITE;
using support::NO_NUMBER;
using support::toldSearch;
using Zu::RnSearch;

template <class T> class RnSearchTest : public testing::Test
{
};

TYPED_TEST_SUITE(RnSearchTest, support::FloatAndDouble, );

// Values at, beside and between the entries, and outside all of them.
template <class T> std::vector<T> valuesFor(const std::vector<T>& entries, HistogramRandom& random)
{
    std::vector<T> values{T(0),
                          -T(0),
                          T(1),
                          T(-1),
                          std::numeric_limits<T>::max(),
                          std::numeric_limits<T>::lowest(),
                          std::numeric_limits<T>::denorm_min(),
                          INFINITE<T>,
                          -INFINITE<T>,
                          NO_NUMBER<T>,
                          -NO_NUMBER<T>};
    for (const T entry : entries)
        for (const T value : {before(entry), entry, behind(entry)}) values.push_back(value);
    for (int i = 0; i < 50; ++i)
    {
        const T low = entries[random.below(static_cast<unsigned int>(entries.size()))];
        const T high = entries[random.below(static_cast<unsigned int>(entries.size()))];
        values.push_back(low / 2 + high / 2);
        values.push_back(low + (high / 2 - low / 2) * random.unit<T>());
    }
    return values;
}

template <class T> void expectSearches(const std::vector<T>& entries, HistogramRandom& random)
{
    const RnSearch<T> search(entries);
    for (const T value : valuesFor(entries, random))
        ASSERT_EQ(search.countUpTo(entries, value), toldSearch(entries, value))
            << value << " in " << testing::PrintToString(entries);
}

TYPED_TEST(RnSearchTest, CountsTheEntriesThatAreNotGreater)
{
    using T = TypeParam;
    const std::vector<T> entries{T(-1), T(0), T(0), T(0.5), T(4)};
    const RnSearch<T> search(entries);
    const struct
    {
        T _value;
        unsigned int _count;
    } rows[] = {{T(-2), 0},        {before(T(-1)), 0}, {T(-1), 1},       {T(-0.5), 1},
                {before(T(0)), 1}, {-T(0), 3},         {T(0), 3},        {T(0.25), 3},
                {T(0.5), 4},       {before(T(4)), 4},  {T(4), 5},        {T(5), 5},
                {INFINITE<T>, 5},  {-INFINITE<T>, 0},  {NO_NUMBER<T>, 0}};
    for (const auto& row : rows)
        EXPECT_EQ(search.countUpTo(entries, row._value), row._count) << row._value;
}

TYPED_TEST(RnSearchTest, IsABinarySearchInEvenTables)
{
    using T = TypeParam;
    HistogramRandom random(751);
    for (const unsigned int nBins : {0U, 1U, 2U, 3U, 7U, 64U, 100U, 1000U})
    {
        expectSearches(support::toldEdges(nBins, T(0), T(1)), random);
        expectSearches(support::toldEdges(nBins, T(-17.3), T(0.1)), random);
        expectSearches(support::toldEdges(nBins, T(1e6), T(1e6) + T(1)), random);
    }
}

TYPED_TEST(RnSearchTest, IsABinarySearchInRandomTables)
{
    using T = TypeParam;
    HistogramRandom random(752);
    for (int round = 0; round < 150; ++round)
    {
        std::vector<T> entries(1 + random.below(round % 10 == 0 ? 300 : 20));
        for (T& entry : entries)
            entry =
                random.within(T(-1), T(1)) * (round % 2 == 0 ? T(1) : random.magnitude<T>(-8, 8));
        std::sort(entries.begin(), entries.end());
        expectSearches(entries, random);
    }
}

TYPED_TEST(RnSearchTest, IsABinarySearchAmongEqualEntries)
{
    using T = TypeParam;
    HistogramRandom random(753);
    for (int round = 0; round < 150; ++round)
    {
        std::vector<T> entries(1 + random.below(60));
        for (T& entry : entries) entry = T(random.below(5)) / T(3);
        std::sort(entries.begin(), entries.end());
        expectSearches(entries, random);
    }
    expectSearches(std::vector<T>(40, T(0)), random);
    expectSearches(std::vector<T>(40, T(-3.5)), random);
    expectSearches(std::vector<T>(40, INFINITE<T>), random);
    expectSearches(std::vector<T>(40, std::numeric_limits<T>::max()), random);
}

TYPED_TEST(RnSearchTest, IsABinarySearchWhereEntriesCrowdInOnePlace)
{
    using T = TypeParam;
    HistogramRandom random(754);
    std::vector<T> crowded{T(0)};
    for (int i = 0; i < 200; ++i) crowded.push_back(behind(crowded.back()));
    expectSearches(crowded, random);
    crowded.push_back(T(1));
    expectSearches(crowded, random);
    crowded.insert(crowded.begin(), T(-1e20));
    expectSearches(crowded, random);

    std::vector<T> atTheEnd{T(0)};
    for (T entry = T(1); atTheEnd.size() < 200; entry = before(entry))
        atTheEnd.insert(atTheEnd.begin() + 1, entry);
    expectSearches(atTheEnd, random);
}

TYPED_TEST(RnSearchTest, FindsTheOnlyEntry)
{
    using T = TypeParam;
    HistogramRandom random(755);
    for (const T entry : {T(0), -T(0), T(1), T(-7.25), std::numeric_limits<T>::max(),
                          std::numeric_limits<T>::denorm_min(), INFINITE<T>, -INFINITE<T>})
        expectSearches(std::vector<T>{entry}, random);
}

TYPED_TEST(RnSearchTest, IsABinarySearchInHugeAndTinyRanges)
{
    using T = TypeParam;
    using Limits = std::numeric_limits<T>;
    HistogramRandom random(756);
    expectSearches(std::vector<T>{Limits::lowest(), T(-1), T(0), T(1), Limits::max()}, random);
    expectSearches(std::vector<T>{T(0), T(1), Limits::max()}, random);
    expectSearches(std::vector<T>{Limits::lowest(), Limits::max()}, random);
    expectSearches(std::vector<T>{Limits::lowest() / 2, T(0), Limits::max() / 2}, random);
    expectSearches(std::vector<T>{T(0), Limits::denorm_min()}, random);
    expectSearches(std::vector<T>{-Limits::denorm_min(), T(0), Limits::denorm_min(), Limits::min()},
                   random);
    expectSearches(std::vector<T>{T(0), Limits::min(), 3 * Limits::min()}, random);
    expectSearches(std::vector<T>{T(1), behind(T(1)), behind(behind(T(1)))}, random);
    expectSearches(std::vector<T>{before(Limits::max()), Limits::max()}, random);
}

TYPED_TEST(RnSearchTest, IsABinarySearchAmongInfinities)
{
    using T = TypeParam;
    HistogramRandom random(757);
    expectSearches(std::vector<T>{-INFINITE<T>, INFINITE<T>}, random);
    expectSearches(std::vector<T>{-INFINITE<T>, T(0), T(1), INFINITE<T>}, random);
    expectSearches(std::vector<T>{-INFINITE<T>, -INFINITE<T>, T(0)}, random);
    expectSearches(std::vector<T>{T(0), T(1), INFINITE<T>, INFINITE<T>}, random);
}

TYPED_TEST(RnSearchTest, ReadsNothingOutsideOfTablesThatDoNotAscend)
{
    using T = TypeParam;
    HistogramRandom random(758);
    for (int round = 0; round < 300; ++round)
    {
        std::vector<T> entries(1 + random.below(40));
        for (T& entry : entries)
        {
            const unsigned int kind = random.below(20);
            entry = kind == 0              ? NO_NUMBER<T>
                    : kind == 1            ? INFINITE<T>
                    : kind == 2            ? -INFINITE<T>
                    : random.below(2) == 0 ? T(random.below(4))
                                           : random.within(T(-9), T(9));
        }
        const RnSearch<T> search(entries);
        for (const T value : valuesFor(entries, random))
            ASSERT_LE(search.countUpTo(entries, value), entries.size())
                << value << " in " << testing::PrintToString(entries);
    }
}

TYPED_TEST(RnSearchTest, ATableWithoutNumbersBehindItsFirstEntryHoldsThatOneAtMost)
{
    using T = TypeParam;
    for (const std::size_t size : {2U, 3U, 64U})
    {
        std::vector<T> entries(size, NO_NUMBER<T>);
        entries[0] = T(0);
        const RnSearch<T> search(entries);
        EXPECT_EQ(search.countUpTo(entries, T(-1)), 0U);
        EXPECT_EQ(search.countUpTo(entries, NO_NUMBER<T>), 0U);
        EXPECT_EQ(search.countUpTo(entries, T(0)), 1U);
        EXPECT_EQ(search.countUpTo(entries, T(0.5)), 1U);
    }
}

} // namespace

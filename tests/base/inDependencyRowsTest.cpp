#include "base/inDependencyRows.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <utility>
#include <vector>

namespace
{

using Zu::InDependencyRows;

// The same closure bit by bit, in the plainest form.
struct Reference
{
    explicit Reference(std::size_t size) : _bits(size, std::vector<bool>(size)), _counts(size) {}

    void close()
    {
        const std::size_t size = _bits.size();
        for (std::size_t i = 0; i < size; ++i)
        {
            if (_counts[i] == 0) continue;
            for (std::size_t j = 0; j < size; ++j)
            {
                if (j == i || !_bits[j][i]) continue;
                for (std::size_t k = 0; k < size; ++k)
                {
                    if (k == i || !_bits[i][k] || _bits[j][k]) continue;
                    _bits[j][k] = true;
                    if (j == k)
                        _cycle = true;
                    else
                        ++_counts[j];
                }
            }
        }
    }

    std::vector<std::vector<bool>> _bits;
    std::vector<std::int32_t> _counts;
    bool _cycle = false;
};

TEST(InDependencyRows, StartsWithAllBitsClear)
{
    const InDependencyRows rows(33);
    EXPECT_EQ(rows.size(), 33);
    for (int i = 0; i < 33; ++i)
        for (int j = 0; j < 33; ++j) EXPECT_FALSE(rows.test(i, j));
}

TEST(InDependencyRows, SetsOneBitAndNoOther)
{
    for (const int bit : {0, 31, 32, 63, 64, 99})
    {
        InDependencyRows rows(100);
        rows.set(7, bit);
        for (int i = 0; i < 100; ++i)
            for (int j = 0; j < 100; ++j) EXPECT_EQ(rows.test(i, j), i == 7 && j == bit);
    }
}

TEST(InDependencyRows, AnEmptySquareClosesWithoutCycle)
{
    InDependencyRows rows(0);
    std::vector<std::int32_t> counts;
    EXPECT_FALSE(rows.close(counts));
}

TEST(InDependencyRows, ADependencyOnItselfAloneIsNoCycleAndIsNotPassedOn)
{
    InDependencyRows rows(2);
    rows.set(0, 0);
    rows.set(1, 0);
    std::vector<std::int32_t> counts{1, 1};
    EXPECT_FALSE(rows.close(counts));
    EXPECT_EQ(counts, (std::vector<std::int32_t>{1, 1}));
    EXPECT_FALSE(rows.test(1, 1));
}

TEST(InDependencyRows, TwoThatNameEachOtherAreACycle)
{
    InDependencyRows rows(2);
    rows.set(0, 1);
    rows.set(1, 0);
    std::vector<std::int32_t> counts{1, 1};
    EXPECT_TRUE(rows.close(counts));
    EXPECT_TRUE(rows.test(0, 0) || rows.test(1, 1));
}

TEST(InDependencyRows, ChainCountsWhatIsBelow)
{
    const int size = 70;
    InDependencyRows rows(size);
    std::vector<std::int32_t> counts(size, 1);
    counts[0] = 0;
    for (int i = 1; i < size; ++i) rows.set(i, i - 1);
    EXPECT_FALSE(rows.close(counts));
    for (int i = 0; i < size; ++i) EXPECT_EQ(counts[static_cast<std::size_t>(i)], i);
}

TEST(InDependencyRows, RandomGraphsCloseAsTheReferenceDoes)
{
    std::mt19937 random(20);
    for (int round = 0; round < 400; ++round)
    {
        const int size = 1 + static_cast<int>(random() % 80);
        const auto edges = random() % (3 * static_cast<std::size_t>(size));
        // Half of the graphs point downwards only and so have no cycle.
        const bool acyclic = round % 2 == 0;
        InDependencyRows rows(size);
        Reference reference(static_cast<std::size_t>(size));
        std::vector<std::int32_t> counts(static_cast<std::size_t>(size));
        for (std::size_t edge = 0; edge < edges; ++edge)
        {
            std::size_t from = random() % static_cast<std::size_t>(size);
            std::size_t to = random() % static_cast<std::size_t>(size);
            if (acyclic && from < to) std::swap(from, to);
            if (acyclic && from == to) continue;
            rows.set(static_cast<int>(from), static_cast<int>(to));
            reference._bits[from][to] = true;
            ++counts[from];
            ++reference._counts[from];
        }
        reference.close();
        ASSERT_EQ(rows.close(counts), reference._cycle);
        ASSERT_EQ(counts, reference._counts);
        for (int i = 0; i < size; ++i)
            for (int j = 0; j < size; ++j)
                ASSERT_EQ(
                    rows.test(i, j),
                    reference._bits[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)]);
        if (acyclic)
        {
            ASSERT_FALSE(reference._cycle);
        }
    }
}

} // namespace

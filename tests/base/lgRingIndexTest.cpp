#include "base/lgRingIndex.h"

#include <gtest/gtest.h>

namespace
{

using Zu::LgRingIndex;

TEST(LgRingIndex, StartsAtTheBeginningOfItsRing)
{
    const LgRingIndex index(1024);
    EXPECT_EQ(index.get(), 0U);
    EXPECT_EQ(index.size(), 1024U);
}

TEST(LgRingIndex, WrapsInBothDirections)
{
    LgRingIndex index(8);
    --index;
    EXPECT_EQ(index.get(), 7U);
    ++index;
    EXPECT_EQ(index.get(), 0U);
    EXPECT_EQ(index--, 0U);
    EXPECT_EQ(index++, 7U);
    EXPECT_EQ(index++, 0U);
    EXPECT_EQ(index, 1U);
}

TEST(LgRingIndex, TakesAnyNumberModuloItsSize)
{
    LgRingIndex index(8);
    for (std::uint32_t value = 0; value < 40; ++value)
    {
        index = value;
        EXPECT_EQ(index, value % 8);
        for (std::uint32_t count = 0; count < 20; ++count)
        {
            EXPECT_EQ(index.plus(count), (value + count) % 8);
            EXPECT_EQ(index.minus(count), (value + 64 - count) % 8);
        }
    }
}

TEST(LgRingIndex, MeasuresForwardDistances)
{
    LgRingIndex from(8);
    for (std::uint32_t a = 0; a < 8; ++a)
    {
        from = a;
        for (std::uint32_t b = 0; b < 8; ++b)
            EXPECT_EQ(from.distanceTo(b), a > b ? b + 8 - a : b - a);
    }
}

TEST(LgRingIndex, CopiesHaveSizeAndPosition)
{
    LgRingIndex source(8);
    source = 5U;
    const LgRingIndex copy(source);
    LgRingIndex assigned(1024);
    assigned = source;
    EXPECT_EQ(copy.get(), 5U);
    EXPECT_EQ(assigned.get(), 5U);
    EXPECT_EQ(assigned.size(), 8U);
}

} // namespace

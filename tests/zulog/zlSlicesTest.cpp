#include "zulog/zlSlices.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace
{

using Zu::ZlSlices;

TEST(ZlSlices, HaveTheCountsOfASlowReference)
{
    constexpr int ROUNDS = 200;
    std::mt19937_64 random(20261122);
    for (int round = 0; round < ROUNDS; ++round)
    {
        ZlSlices slices({10, 100, 600, 6000, 60000}, 50);
        const std::int64_t range = std::int64_t{1} << (random() % 20);
        std::vector<std::int64_t> walls;
        for (int i = 0; i < 300; ++i)
        {
            walls.push_back(static_cast<std::int64_t>(random() % (2 * range)) - range);
            slices.add(walls.back());
        }
        ZlSlices::Counts expected;
        for (const std::int64_t wall : walls)
        {
            std::int64_t number = 0;
            while (number * slices.getWidth() > wall) --number;
            while ((number + 1) * slices.getWidth() <= wall) ++number;
            ++expected[number];
        }
        ASSERT_EQ(slices.getCounts(), expected) << round;
        EXPECT_TRUE(expected.size() <= 50 || slices.getWidth() == 60000) << round;
    }
}

TEST(ZlSlices, TimesMayBeCenturiesApart)
{
    constexpr std::int64_t EARLY = -7924181047877000000;
    constexpr std::int64_t LATE = 1795385452123456000;
    ZlSlices slices({1000000000}, 10);
    for (const std::int64_t wall : {EARLY, LATE, EARLY, LATE + 1}) slices.add(wall);
    EXPECT_EQ(slices.getCounts(), (ZlSlices::Counts{{-7924181048, 2}, {1795385452, 2}}));
}

TEST(ZlSlices, AreAsNarrowAsTheirNumberAllows)
{
    ZlSlices slices({1, 10, 100}, 3);
    for (const std::int64_t wall : {0, 1, 2}) slices.add(wall);
    EXPECT_EQ(slices.getWidth(), 1);
    slices.add(3);
    EXPECT_EQ(slices.getWidth(), 10);
    EXPECT_EQ(slices.getCounts(), (ZlSlices::Counts{{0, 4}}));
    for (const std::int64_t wall : {-1, 25, 9999}) slices.add(wall);
    EXPECT_EQ(slices.getWidth(), 100);
    EXPECT_EQ(slices.getCounts(), (ZlSlices::Counts{{-1, 1}, {0, 5}, {99, 1}}));
    // The widest ones are as many as there are.
    for (std::int64_t i = 200; i < 210; ++i) slices.add(i * 100);
    EXPECT_EQ(slices.getWidth(), 100);
    EXPECT_EQ(slices.getCounts().size(), 13U);
}

} // namespace

#include "base/pow2.h"

#include "base/exInternalError.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using Zu::Pow2;

static_assert(std::is_same_v<decltype(Pow2::exp(1U)), unsigned int>);
static_assert(std::is_same_v<decltype(Pow2::log2Floor(1U)), unsigned int>);
static_assert(std::is_same_v<decltype(Pow2::log2Ceil(1U)), unsigned int>);
static_assert(std::is_same_v<decltype(Pow2::ceil(1U)), unsigned int>);

static_assert(Pow2::exp(33) == 2);
static_assert(Pow2::log2Floor(0x80000000U) == 31);
static_assert(Pow2::log2Ceil(5) == 3);
static_assert(Pow2::ceil(0x80000001U) == 1);

// Every number near a power of two, the ends of the range, and random ones of all lengths.
std::vector<std::uint32_t> samples()
{
    std::vector<std::uint32_t> all = {0, 0xFFFFFFFFU};
    for (std::uint32_t n = 0; n < 32; ++n)
    {
        const std::uint32_t power = std::uint32_t{1} << n;
        all.insert(all.end(), {power - 1, power, power + 1});
    }
    std::mt19937 random(17);
    for (int i = 0; i < 10000; ++i) all.push_back(static_cast<std::uint32_t>(random()) >> (i % 32));
    return all;
}

// The smallest k with 2 to the power k at or above x, counted in 64 bits.
std::uint32_t powerAtOrAbove(std::uint32_t x)
{
    std::uint32_t k = 0;
    while ((std::uint64_t{1} << k) < x) ++k;
    return k;
}

TEST(Pow2, ThePowerIsAShiftWhoseCountIsTakenModulo32)
{
    std::uint32_t power = 1;
    for (std::uint32_t n = 0; n < 32; ++n, power += power)
    {
        EXPECT_EQ(Pow2::exp(n), power);
        EXPECT_EQ(Pow2::exp(n + 32), power);
        EXPECT_EQ(Pow2::exp(n + 64), power);
        EXPECT_EQ(Pow2::exp(0xFFFFFFE0U + n), power);
    }
    EXPECT_EQ(Pow2::exp(32), 1U);
    EXPECT_EQ(Pow2::exp(33), 2U);
}

TEST(Pow2, TheFloorOfTheLogarithmIsThePositionOfTheHighestBit)
{
    EXPECT_EQ(Pow2::log2Floor(1), 0U);
    EXPECT_EQ(Pow2::log2Floor(0x80000000U), 31U);
    EXPECT_EQ(Pow2::log2Floor(0xFFFFFFFFU), 31U);
    for (const std::uint32_t x : samples())
    {
        if (x == 0) continue;
        std::uint32_t highest = 31;
        while ((x & (std::uint32_t{1} << highest)) == 0) --highest;
        EXPECT_EQ(Pow2::log2Floor(x), highest) << x;
    }
}

TEST(Pow2, ZeroHasNoLogarithm)
{
    std::string reason = "nothing raised";
    try
    {
        Pow2::log2Floor(0);
    }
    catch (const Zu::ExInternalError& exception)
    {
        reason = exception.getReason();
    }
    EXPECT_EQ(reason, "Assertion 'x != 0' failed.");
}

TEST(Pow2, TheCeilingOfTheLogarithm)
{
    const struct
    {
        std::uint32_t _x;
        std::uint32_t _result;
    } cases[] = {
        {0, 32},          {1, 0},           {2, 1},           {3, 2},           {4, 2},
        {5, 3},           {8, 3},           {9, 4},           {0x7FFFFFFF, 31}, {0x80000000, 31},
        {0x80000001, 32}, {0xC0000000, 32}, {0xFFFFFFFF, 32},
    };
    for (const auto& row : cases) EXPECT_EQ(Pow2::log2Ceil(row._x), row._result) << row._x;
}

TEST(Pow2, TheSmallestPowerAtOrAbove)
{
    const struct
    {
        std::uint32_t _x;
        std::uint32_t _result;
    } cases[] = {
        {0, 0},
        {1, 1},
        {2, 2},
        {3, 4},
        {4, 4},
        {5, 8},
        {0x40000000, 0x40000000},
        {0x40000001, 0x80000000},
        {0x7FFFFFFF, 0x80000000},
        {0x80000000, 0x80000000},
        {0x80000001, 1},
        {0xC0000000, 1},
        {0xFFFFFFFF, 1},
    };
    for (const auto& row : cases) EXPECT_EQ(Pow2::ceil(row._x), row._result) << row._x;
}

TEST(Pow2, CeilingsAgreeWithASearch)
{
    for (const std::uint32_t x : samples())
    {
        if (x == 0) continue;
        const std::uint32_t k = powerAtOrAbove(x);
        EXPECT_EQ(Pow2::log2Ceil(x), k) << x;
        EXPECT_EQ(Pow2::ceil(x), std::uint32_t{1} << k % 32) << x;
    }
}

} // namespace

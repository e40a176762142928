#include "base/osDateTypes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <type_traits>
#include <unordered_set>
#include <vector>

namespace
{

using Zu::OsDateTypes;
using DateRep = Zu::OsDateTypes::DateRep;
using DateStruct = Zu::OsDateTypes::DateStruct;

static_assert(std::is_standard_layout_v<DateRep> && std::is_trivially_copyable_v<DateRep>);
static_assert(std::is_aggregate_v<DateRep> && sizeof(DateRep) == 8);
static_assert(offsetof(DateRep, _high) == 0 && offsetof(DateRep, _low) == 4);
static_assert(std::is_same_v<decltype(DateRep::_high), std::uint32_t>);
static_assert(std::is_same_v<decltype(DateRep::_low), std::uint32_t>);

static_assert(DateRep{1, 2} == DateRep{1, 2} && DateRep{1, 2} != DateRep{2, 1});
static_assert(DateRep{1, 0xFFFFFFFFU} < DateRep{2, 0});

static_assert(OsDateTypes::TimeUniversal == 0 && OsDateTypes::TimeLocal == 1);

static_assert(std::is_same_v<decltype(DateStruct::second), double>);
static_assert(!std::is_default_constructible_v<DateStruct>);

std::uint64_t countOf(const DateRep& date)
{
    return std::uint64_t{date._high} << 32 | date._low;
}

TEST(OsDateTypes, TheHighWordComesFirst)
{
    const DateRep date = {0x01D9AB12, 0x34567890};
    const auto words = std::bit_cast<std::array<std::uint32_t, 2>>(date);
    EXPECT_EQ(words[0], 0x01D9AB12U);
    EXPECT_EQ(words[1], 0x34567890U);
    EXPECT_EQ(date._high, 0x01D9AB12U);
}

TEST(OsDateTypes, DatesCompareAsTheirUnsignedCounts)
{
    std::vector<DateRep> dates = {{0, 0},          {0, 1},          {0, 0xFFFFFFFF},
                                  {1, 0},          {1, 1},          {0x7FFFFFFF, 0xFFFFFFFF},
                                  {0x80000000, 0}, {0xFFFFFFFF, 0}, {0xFFFFFFFF, 0xFFFFFFFF}};
    std::mt19937 random(81);
    for (int i = 0; i < 40; ++i)
        dates.push_back(
            {static_cast<std::uint32_t>(random()) % 3, static_cast<std::uint32_t>(random())});
    for (const DateRep& a : dates)
        for (const DateRep& b : dates)
        {
            EXPECT_EQ(a == b, countOf(a) == countOf(b));
            EXPECT_EQ(a != b, countOf(a) != countOf(b));
            EXPECT_EQ(a < b, countOf(a) < countOf(b));
        }
}

TEST(OsDateTypes, EqualDatesHaveEqualHashes)
{
    const std::hash<DateRep> hash;
    const DateRep date = {3, 4};
    EXPECT_EQ(hash(date), hash(DateRep{3, 4}));
    const std::unordered_set<DateRep> set = {{3, 4}, {4, 3}, {3, 4}, {3, 5}};
    EXPECT_EQ(set.size(), 3U);
    EXPECT_EQ(set.count({4, 3}), 1U);
    EXPECT_EQ(set.count({4, 4}), 0U);
}

TEST(OsDateTypes, FieldsAreKeptAsGivenInTheirOrder)
{
    const DateStruct date(2000, 2, 29, 12, 34, 56.789, 3);
    EXPECT_EQ(date.year, 2000);
    EXPECT_EQ(date.month, 2);
    EXPECT_EQ(date.day, 29);
    EXPECT_EQ(date.hour, 12);
    EXPECT_EQ(date.minute, 34);
    EXPECT_EQ(date.second, 56.789);
    EXPECT_EQ(date.dayOfWeek, 3);

    const void* const places[] = {&date.year,   &date.month,  &date.day,      &date.hour,
                                  &date.minute, &date.second, &date.dayOfWeek};
    EXPECT_TRUE(std::is_sorted(std::begin(places), std::end(places), std::less<>()));
    EXPECT_EQ(places[0], static_cast<const void*>(&date));
}

TEST(OsDateTypes, FieldsAreNotChecked)
{
    const DateStruct date(-1, 13, 0, 24, 60, -0.5, 7);
    EXPECT_EQ(date.year, -1);
    EXPECT_EQ(date.month, 13);
    EXPECT_EQ(date.day, 0);
    EXPECT_EQ(date.hour, 24);
    EXPECT_EQ(date.minute, 60);
    EXPECT_EQ(date.second, -0.5);
    EXPECT_EQ(date.dayOfWeek, 7);
}

} // namespace

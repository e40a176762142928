#include "base/osEndian.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <type_traits>
#include <utility>

namespace
{

using Zu::OsEndian;

template <class T> using Memory = std::array<unsigned char, sizeof(T)>;

template <class T> Memory<T> memoryOf(T value)
{
    return std::bit_cast<Memory<T>>(value);
}

static_assert(OsEndian::isBigEndian() == (std::endian::native == std::endian::big));
static_assert(OsEndian::invert(0x12345678) == 0x78563412);
static_assert(OsEndian::invert(std::int16_t{0x0102}) == 0x0201);
static_assert(OsEndian::invertIf(false, 0x12345678U) == 0x12345678U);
static_assert(OsEndian::invertIf(true, 0x12345678U) == 0x78563412U);
static_assert(std::bit_cast<std::uint64_t>(OsEndian::invert(1.0)) == 0x000000000000F03FULL);
static_assert(std::bit_cast<std::uint32_t>(OsEndian::invert(1.0F)) == 0x0000803FU);

TEST(OsEndian, TheHostOfTheLibraryIsLittleEndian)
{
    EXPECT_FALSE(OsEndian::isBigEndian());
    EXPECT_EQ(OsEndian::isBigEndian(), memoryOf(std::uint32_t{1})[3] == 1);
}

TEST(OsEndian, InvertsIntegersOfEveryWidth)
{
    EXPECT_EQ(OsEndian::invert(static_cast<signed char>(-2)), -2);
    EXPECT_EQ(OsEndian::invert(static_cast<unsigned char>(0x9A)), 0x9A);
    EXPECT_EQ(OsEndian::invert('z'), 'z');
    EXPECT_EQ(OsEndian::invert(static_cast<short>(0x0102)), 0x0201);
    EXPECT_EQ(OsEndian::invert(static_cast<short>(0x0180)), static_cast<short>(-0x7FFF));
    EXPECT_EQ(OsEndian::invert(static_cast<unsigned short>(0x01FE)), 0xFE01);
    EXPECT_EQ(OsEndian::invert(0x12345678), 0x78563412);
    EXPECT_EQ(OsEndian::invert(-2), static_cast<int>(0xFEFFFFFFU));
    EXPECT_EQ(OsEndian::invert(0x123456FEU), 0xFE563412U);
    EXPECT_EQ(OsEndian::invert(0x0102030405060708LL), 0x0807060504030201LL);
    EXPECT_EQ(OsEndian::invert(-2LL), static_cast<long long>(0xFEFFFFFFFFFFFFFFULL));
    EXPECT_EQ(OsEndian::invert(0x01020304050607FEULL), 0xFE07060504030201ULL);
}

TEST(OsEndian, MovesTheBitPatternsOfFloatingPointNumbers)
{
    const struct
    {
        float _value;
        std::uint32_t _bits;
    } floats[] = {
        {1.0F, 0x0000803F},
        {0.0F, 0x00000000},
        {-0.0F, 0x00000080},
        {std::numeric_limits<float>::infinity(), 0x0000807F},
        {std::bit_cast<float>(0x12345678U), 0x78563412},
    };
    for (const auto& row : floats)
        EXPECT_EQ(std::bit_cast<std::uint32_t>(OsEndian::invert(row._value)), row._bits);

    const struct
    {
        double _value;
        std::uint64_t _bits;
    } doubles[] = {
        {1.0, 0x000000000000F03F},
        {0.0, 0x0000000000000000},
        {-0.0, 0x0000000000000080},
        {std::numeric_limits<double>::infinity(), 0x000000000000F07F},
        {std::bit_cast<double>(0x0102030405060708ULL), 0x0807060504030201},
    };
    for (const auto& row : doubles)
        EXPECT_EQ(std::bit_cast<std::uint64_t>(OsEndian::invert(row._value)), row._bits);
}

template <class T> class OsEndianOf : public testing::Test
{
};

using Types =
    testing::Types<char, signed char, unsigned char, short, unsigned short, int, unsigned int, long,
                   unsigned long, long long, unsigned long long, float, double>;
TYPED_TEST_SUITE(OsEndianOf, Types);

TYPED_TEST(OsEndianOf, InvertReversesTheBytesInMemory)
{
    using T = TypeParam;
    static_assert(std::is_same_v<decltype(OsEndian::invert(std::declval<T>())), T>);
    static_assert(std::is_same_v<decltype(OsEndian::invertIf(true, std::declval<T>())), T>);
    std::mt19937 random(71);
    for (int i = 0; i < 1000; ++i)
    {
        Memory<T> bytes;
        for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
        const T value = std::bit_cast<T>(bytes);
        Memory<T> reversed = bytes;
        std::reverse(reversed.begin(), reversed.end());
        EXPECT_EQ(memoryOf(OsEndian::invert(value)), reversed);
        EXPECT_EQ(memoryOf(OsEndian::invert(OsEndian::invert(value))), bytes);
        EXPECT_EQ(memoryOf(OsEndian::invertIf(true, value)), reversed);
        EXPECT_EQ(memoryOf(OsEndian::invertIf(false, value)), bytes);
    }
}

TYPED_TEST(OsEndianOf, IsInvertedOnAHostOfTheOtherOrderForALittleEndianLayout)
{
    const TypeParam value = 1;
    const Memory<TypeParam> layout = memoryOf(OsEndian::invertIf(OsEndian::isBigEndian(), value));
    EXPECT_EQ(layout, memoryOf(value));
    const Memory<TypeParam> bigEndian =
        memoryOf(OsEndian::invertIf(!OsEndian::isBigEndian(), value));
    EXPECT_TRUE(std::equal(layout.begin(), layout.end(), bigEndian.rbegin()));
}

TYPED_TEST(OsEndianOf, InvertsInConstantExpressions)
{
    constexpr TypeParam inverted = OsEndian::invert(TypeParam{1});
    constexpr TypeParam restored = OsEndian::invertIf(true, inverted);
    EXPECT_EQ(restored, TypeParam{1});
    EXPECT_EQ(memoryOf(inverted).back(), memoryOf(TypeParam{1}).front());
}

} // namespace

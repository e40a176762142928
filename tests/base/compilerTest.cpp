#include "base/compiler.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace
{

namespace Compiler = Zu::Compiler;
namespace Portable = Zu::Compiler::Portable;

// Numbers of all lengths, with runs of ones and zeros.
std::uint64_t drawn(std::mt19937_64& random)
{
    const std::uint64_t number = random() >> random() % 64;
    return random() % 2 == 0 ? number : ~number;
}

__extension__ using Wide = unsigned __int128;

Wide wide(std::uint64_t high, std::uint64_t low)
{
    return Wide{high} << 64 | low;
}

void expectSame(Portable::UInt128 found, Wide expected)
{
    EXPECT_EQ(static_cast<std::uint64_t>(found), static_cast<std::uint64_t>(expected));
    EXPECT_EQ(static_cast<std::uint64_t>(found >> 64), static_cast<std::uint64_t>(expected >> 64));
}

TEST(Compiler, ThePortableWideNumberCalculatesAsTheCompilersOwn)
{
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i)
    {
        const std::uint64_t parts[] = {drawn(random), drawn(random), drawn(random), drawn(random)};
        const Portable::UInt128 a(parts[0], parts[1]);
        const Portable::UInt128 b(i % 3 == 0 ? parts[0] : parts[2], parts[3]);
        const Wide wideA = wide(parts[0], parts[1]);
        const Wide wideB = wide(i % 3 == 0 ? parts[0] : parts[2], parts[3]);
        expectSame(a - b, wideA - wideB);
        expectSame(a * parts[3], wideA * parts[3]);
        expectSame(a & b, wideA & wideB);
        const int count = static_cast<int>(random() % 128);
        expectSame(a << count, wideA << count);
        expectSame(a >> count, wideA >> count);
        EXPECT_EQ(a > b, wideA > wideB);
        EXPECT_EQ(a == b, wideA == wideB);
        EXPECT_TRUE(a == a);
        EXPECT_FALSE(a > a);
    }
    expectSame(Portable::UInt128(7), 7);
    expectSame(Portable::UInt128(7) << 0, 7);
    expectSame(Portable::UInt128(1) << 64, Wide{1} << 64);
}

TEST(Compiler, BothFormsCountZeros)
{
    std::mt19937_64 random(2);
    for (int i = 0; i < 20000; ++i)
    {
        const std::uint64_t number = drawn(random) << random() % 64;
        if (number != 0)
        {
            EXPECT_EQ(Portable::countTrailingZeros(number), std::countr_zero(number));
            EXPECT_EQ(Compiler::countTrailingZeros(number), std::countr_zero(number));
        }
        const auto word = static_cast<std::uint32_t>(number >> 32);
        if (word == 0) continue;
        EXPECT_EQ(Compiler::countTrailingZeros(word), std::countr_zero(word));
        EXPECT_EQ(Portable::countLeadingZeros(word), std::countl_zero(word));
        EXPECT_EQ(Compiler::countLeadingZeros(word), std::countl_zero(word));
    }
}

TEST(Compiler, TheBytesOfAnObjectMakeAnotherOne)
{
    static_assert(Compiler::bitCast<std::uint32_t>(1.0F) == 0x3F800000);
    static_assert(Compiler::bitCast<double>(std::uint64_t{0x4000000000000000}) == 2.0);
}

template <class T> void expectSigns()
{
    using Limits = std::numeric_limits<T>;
    const T values[] = {T(0), T(1.5), Limits::infinity(), Limits::quiet_NaN(),
                        Limits::denorm_min()};
    for (const T value : values)
    {
        EXPECT_FALSE(Compiler::isSignBitSet(std::copysign(value, T(1))));
        EXPECT_TRUE(Compiler::isSignBitSet(std::copysign(value, T(-1))));
    }
}

TEST(Compiler, SignsAreThoseOfZerosAndNaNsToo)
{
    expectSigns<float>();
    expectSigns<double>();
}

TEST(Compiler, AHintIsAllowedForAnyPlace)
{
    Compiler::prefetchForWriting(nullptr);
    Portable::prefetchForWriting(nullptr);
}

TEST(Compiler, AProductThatDoesNotFitIsKnown)
{
    constexpr std::int64_t MIN = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t MAX = std::numeric_limits<std::int64_t>::max();
    const std::int64_t edges[] = {MIN, MIN + 1, -3037000500, -2, -1, 0, 1, 2, 3037000500, MAX};
    std::mt19937_64 random(4);
    __extension__ using Signed = __int128;
    const auto expectAsWide = [](std::int64_t a, std::int64_t b)
    {
        const Signed expected = static_cast<Signed>(a) * b;
        const bool overflows = expected < MIN || expected > MAX;
        for (const auto multiply : {&Portable::multiplyOverflows, &Compiler::multiplyOverflows})
        {
            std::int64_t product = 0;
            EXPECT_EQ(multiply(a, b, product), overflows) << a << " " << b;
            EXPECT_EQ(product, static_cast<std::int64_t>(static_cast<std::uint64_t>(expected)));
        }
    };
    for (const std::int64_t a : edges)
        for (const std::int64_t b : edges) expectAsWide(a, b);
    for (int i = 0; i < 20000; ++i)
        expectAsWide(static_cast<std::int64_t>(drawn(random)),
                     static_cast<std::int64_t>(drawn(random)));
}

} // namespace

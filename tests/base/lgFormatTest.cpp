#include "base/lgFormat.h"

#include "base/lgStream.h"

#include "support/ringText.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace
{

using support::ringTextOf;
using Zu::lgDecimals;
using Zu::lgHex;
using Zu::lgShortest;
using Zu::lgWidth;

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

TEST(LgFormat, HexadecimalIsOfTheBitsOfTheType)
{
    EXPECT_EQ(ringTextOf(lgHex(0)), "0");
    EXPECT_EQ(ringTextOf(lgHex(0xdeadbeefU)), "deadbeef");
    EXPECT_EQ(ringTextOf(lgHex(-1)), "ffffffff");
    EXPECT_EQ(ringTextOf(lgHex(static_cast<short>(-2))), "fffe");
    EXPECT_EQ(ringTextOf(lgHex(static_cast<signed char>(-1))), "ff");
    EXPECT_EQ(ringTextOf(lgHex('A')), "41");
    EXPECT_EQ(ringTextOf(lgHex(true)), "1");
    EXPECT_EQ(ringTextOf(lgHex(std::numeric_limits<std::int64_t>::min())), "8000000000000000");
    EXPECT_EQ(ringTextOf(lgHex(std::numeric_limits<std::uint64_t>::max())), "ffffffffffffffff");
}

TEST(LgFormat, DecimalsAreThoseOfPrintf)
{
    std::mt19937_64 random(11);
    for (int i = 0; i < 2000; ++i)
    {
        const double value = static_cast<double>(static_cast<std::int64_t>(random())) / 1e12;
        const int decimals = static_cast<int>(random() % 20);
        char printed[80];
        std::snprintf(printed, sizeof printed, "%.*f", decimals, value);
        EXPECT_EQ(ringTextOf(lgDecimals(value, decimals)), printed);
    }
    EXPECT_EQ(ringTextOf(lgDecimals(2.5, 0)), "2");
    EXPECT_EQ(ringTextOf(lgDecimals(0.125, 2)), "0.12");
    EXPECT_EQ(ringTextOf(lgDecimals(7, 2)), "7.00");
    EXPECT_EQ(ringTextOf(lgDecimals(-INFINITE, 2)), "-inf");
    EXPECT_EQ(ringTextOf(lgDecimals(-NOT_A_NUMBER, 2)), "nan");
}

TEST(LgFormat, DecimalsAreFromNoneToAHundred)
{
    EXPECT_EQ(ringTextOf(lgDecimals(1.5, -3)), "2");
    EXPECT_EQ(ringTextOf(lgDecimals(1.5, 1000)), "1.5" + std::string(99, '0'));
    EXPECT_EQ(ringTextOf(lgDecimals(-std::numeric_limits<double>::max(), 100)).size(),
              1U + 309U + 1U + 100U);
}

TEST(LgFormat, TheShortestFormReadsBackAsTheSameNumber)
{
    EXPECT_EQ(ringTextOf(lgShortest(0.1)), "0.1");
    EXPECT_EQ(ringTextOf(lgShortest(0.1F)), "0.1");
    EXPECT_EQ(ringTextOf(lgShortest(1e100)), "1e+100");
    EXPECT_EQ(ringTextOf(lgShortest(-0.0)), "-0");
    EXPECT_EQ(ringTextOf(lgShortest(-NOT_A_NUMBER)), "nan");
    EXPECT_EQ(ringTextOf(lgShortest(INFINITE)), "inf");
    std::mt19937_64 random(12);
    for (int i = 0; i < 2000; ++i)
    {
        const double value = std::ldexp(static_cast<double>(random()), static_cast<int>(i) - 1000);
        EXPECT_EQ(std::strtod(ringTextOf(lgShortest(value)).c_str(), nullptr), value);
        const auto single = static_cast<float>(random()) * 1e-12F;
        EXPECT_EQ(std::strtof(ringTextOf(lgShortest(single)).c_str(), nullptr), single);
    }
}

TEST(LgFormat, AFieldIsFilledAtTheLeftAndCutsNothing)
{
    EXPECT_EQ(ringTextOf(lgWidth(42, 5)), "   42");
    EXPECT_EQ(ringTextOf(lgWidth(-42, 5)), "  -42");
    EXPECT_EQ(ringTextOf(lgWidth(42, 5, '0')), "00042");
    EXPECT_EQ(ringTextOf(lgWidth(-42, 5, '0')), "-0042");
    EXPECT_EQ(ringTextOf(lgWidth(-42, 5, '*')), "**-42");
    EXPECT_EQ(ringTextOf(lgWidth(123456, 5)), "123456");
    EXPECT_EQ(ringTextOf(lgWidth(12345, 5)), "12345");
    EXPECT_EQ(ringTextOf(lgWidth(7, 0)), "7");
    EXPECT_EQ(ringTextOf(lgWidth(7, -5)), "7");
    EXPECT_EQ(ringTextOf(lgWidth(7, 1000)), std::string(99, ' ').append("7"));
}

TEST(LgFormat, AFieldTakesEachForm)
{
    EXPECT_EQ(ringTextOf(lgWidth(lgHex(255), 4, '0')), "00ff");
    EXPECT_EQ(ringTextOf(lgWidth(lgDecimals(-2.5, 1), 7, '0')), "-0002.5");
    EXPECT_EQ(ringTextOf(lgWidth(lgShortest(0.5), 5)), "  0.5");
    EXPECT_EQ(ringTextOf(lgWidth(1.5, 10)), "  1.500000");
    EXPECT_EQ(ringTextOf(lgWidth(1.5F, 10)), "  1.500000");
    EXPECT_EQ(ringTextOf(lgWidth(1.5L, 10)), "  1.500000");
    EXPECT_EQ(ringTextOf(lgWidth(std::numeric_limits<std::uint64_t>::max(), 21)),
              " 18446744073709551615");
    EXPECT_EQ(ringTextOf(lgWidth(std::numeric_limits<std::int64_t>::min(), 21)),
              " -9223372036854775808");
}

TEST(LgFormat, ANumberIsOnePieceOfText)
{
    Zu::LgStream stream;
    stream << std::string(32763, 'x') << lgWidth(1, 5) << Zu::ends;
    std::vector<char> text(32768);
    stream >> text.data();
    EXPECT_EQ(std::string(text.data()), std::string(32763, 'x').append("#"));
}

} // namespace

#include "base/lgNumberText.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace
{

std::string written(double value)
{
    char text[Zu::LG_DOUBLE_TEXT_SIZE];
    return {text, Zu::lgWriteDouble(text, value)};
}

// What the quick way writes; empty if it does not take the number. What lies behind the text that
// it may write stays as it was.
std::string writtenQuickly(double value)
{
    std::array<char, Zu::LG_USUAL_DOUBLE_TEXT_SIZE + 1> text;
    text.fill('~');
    char* const end = Zu::lgWriteUsualDouble(text.data(), value);
    EXPECT_EQ(text.back(), '~');
    if (!end)
    {
        EXPECT_EQ(text.front(), '~');
        return "";
    }
    return {text.data(), end};
}

// The same text by the standard library's conversion, which has no locale.
std::string converted(double value)
{
    char text[400];
    return {text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6).ptr};
}

// Whether a number is one that the quick way is documented to take.
bool isUsual(double value)
{
    const double size = std::fabs(value);
    return size == 0 || (size >= 0x1p-11 && size < 0x1p52);
}

void expectBothWays(double value)
{
    const std::string expected = converted(value);
    ASSERT_EQ(written(value), expected);
    ASSERT_EQ(writtenQuickly(value), isUsual(value) ? expected : "") << expected;
}

// The number itself and its neighbours, with both signs.
void expectAround(double value)
{
    double below = value;
    double above = value;
    expectBothWays(value);
    expectBothWays(-value);
    for (int i = 0; i < 3; ++i)
    {
        below = std::nextafter(below, -std::numeric_limits<double>::max());
        above = std::nextafter(above, std::numeric_limits<double>::max());
        for (const double other : {below, above})
        {
            expectBothWays(other);
            expectBothWays(-other);
        }
    }
}

std::string printed(double value)
{
    char text[400];
    std::snprintf(text, sizeof text, "%f", value);
    return text;
}

TEST(LgNumberText, WritesWhatPrintfWrites)
{
    using Limits = std::numeric_limits<double>;
    const struct
    {
        double _value;
        const char* _text;
    } cases[] = {
        {0.0, "0.000000"},
        {-0.0, "-0.000000"},
        {1.0, "1.000000"},
        {-1.5, "-1.500000"},
        {0.1, "0.100000"},
        {123456.789, "123456.789000"},
        {0.0000005, "0.000000"},
        {0.0000015, "0.000002"},
        {0.5000005, "0.500000"},
        {0.9999995, "1.000000"},
        {0.9999999, "1.000000"},
        {9.9999999, "10.000000"},
        {-0.0000001, "-0.000000"},
        {9007199254740991.0, "9007199254740991.000000"},
        {4503599627370495.5, "4503599627370495.500000"},
        {18446744073709549568.0, "18446744073709549568.000000"},
        {18446744073709551616.0, "18446744073709551616.000000"},
        {1e22, "10000000000000000000000.000000"},
        {Limits::denorm_min(), "0.000000"},
        {Limits::min(), "0.000000"},
        {Limits::infinity(), "inf"},
        {-Limits::infinity(), "-inf"},
        {Limits::quiet_NaN(), "nan"},
        {-Limits::quiet_NaN(), "nan"},
    };
    for (const auto& row : cases) EXPECT_EQ(written(row._value), row._text);
    EXPECT_EQ(written(Limits::max()).size(), 309U + 7U);
    EXPECT_EQ(written(Limits::max()), printed(Limits::max()));
}

TEST(LgNumberText, HalvesOfAMillionthGoToTheEvenOne)
{
    // Multiples of 2^-7 have a digit 5 behind the sixth as their last one.
    for (int i = 0; i < 128 * 40; ++i)
    {
        const double value = i / 128.0;
        ASSERT_EQ(written(value), printed(value));
        ASSERT_EQ(written(-value), printed(-value));
    }
}

TEST(LgNumberText, RandomNumbersOfAllSizes)
{
    std::mt19937_64 random(11);
    for (int i = 0; i < 300000; ++i)
    {
        const auto value = std::bit_cast<double>(random());
        if (std::isnan(value)) continue;
        ASSERT_EQ(written(value), printed(value)) << i;
    }
}

TEST(LgNumberText, RandomNumbersOfOrdinarySizes)
{
    std::mt19937_64 random(12);
    for (int i = 0; i < 700000; ++i)
    {
        const double scale = std::ldexp(1.0, static_cast<int>(random() % 90) - 110);
        const double value = static_cast<double>(static_cast<std::int64_t>(random())) * scale;
        ASSERT_EQ(written(value), printed(value)) << i;
    }
}

TEST(LgNumberText, TheQuickWayTakesTheUsualNumbers)
{
    const struct
    {
        double _value;
        const char* _text;
    } cases[] = {
        {0.0, "0.000000"},
        {-0.0, "-0.000000"},
        {0x1p-11, "0.000488"},
        {-1.5, "-1.500000"},
        {0.1, "0.100000"},
        {99.999999, "99.999999"},
        {99.9999996, "100.000000"},
        {-4567.65, "-4567.650000"},
        {0.9999995, "1.000000"},
        {0.5000005, "0.500000"},
        {2251799813685247.5, "2251799813685247.500000"},
        {-4503599627370495.5, "-4503599627370495.500000"},
    };
    for (const auto& row : cases) EXPECT_EQ(writtenQuickly(row._value), row._text);
}

TEST(LgNumberText, TheQuickWayLeavesTheOthers)
{
    using Limits = std::numeric_limits<double>;
    for (const double value :
         {Limits::denorm_min(), Limits::min(), std::nextafter(0x1p-11, 0), 0x1p52, 0x1p53, 0x1p64,
          1e22, Limits::max(), Limits::infinity(), Limits::quiet_NaN()})
    {
        EXPECT_EQ(writtenQuickly(value), "") << value;
        EXPECT_EQ(writtenQuickly(-value), "") << value;
    }
}

TEST(LgNumberText, BothWaysAgreeAroundPowers)
{
    for (int exponent = -1074; exponent < 1024; ++exponent) expectAround(std::ldexp(1.0, exponent));
    double power = 1e-20;
    for (int i = 0; i < 50; ++i, power *= 10)
        for (int times = 1; times < 10; ++times) expectAround(times * power);
}

TEST(LgNumberText, BothWaysAgreeOnTiesAndBesideThem)
{
    // An odd multiple of 2^-7 is a tie of millionths: its last digit, a 5, is the seventh.
    for (int i = 1; i < 128 * 50; i += 2) expectAround(i / 128.0);
    std::mt19937_64 random(13);
    for (int i = 0; i < 5000; ++i)
    {
        const auto whole = static_cast<double>(random() >> (19 + random() % 44));
        expectAround(whole + static_cast<double>(random() % 128) / 128);
        // Not ties, but as near to one as a double can be.
        expectAround(whole + (static_cast<double>(random() % 1'000'000) + 0.5) / 1e6);
    }
}

TEST(LgNumberText, BothWaysAgreeOnRandomNumbers)
{
    std::mt19937_64 random(14);
    constexpr std::uint64_t NOT_EXPONENT = 0x800F'FFFF'FFFF'FFFF;
    for (int i = 0; i < 150000; ++i)
    {
        // Exponents from -14 to 66.
        const std::uint64_t exponent = 1023 - 14 + random() % 81;
        expectBothWays(std::bit_cast<double>((random() & NOT_EXPONENT) | exponent << 52));
        expectBothWays(
            static_cast<double>(static_cast<std::int64_t>(random() % 2'000'000'001)) / 1e6 - 1000);
    }
}

} // namespace

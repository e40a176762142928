#include "base/lgNumberText.h"

#include <bit>
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

} // namespace

#include "base/textToDouble.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace
{

using Zu::textToDouble;

constexpr double INFINITE = std::numeric_limits<double>::infinity();

TEST(TextToDouble, ReadsTheNumberAtTheBeginning)
{
    const struct
    {
        const char* _text;
        double _value;
    } rows[] = {
        {"", 0},
        {"abc", 0},
        {"1", 1},
        {" \t\n\v\f\r1.5", 1.5},
        {"+1.5", 1.5},
        {"-1.5", -1.5},
        {"+-1", 0},
        {"--1", 0},
        {"1.5x", 1.5},
        {".5", 0.5},
        {"5.", 5},
        {"1e3", 1000},
        {"1E+3", 1000},
        {"1e-3", 0.001},
        {"1e", 1},
        {"1d3", 1},
        {"1,5", 1},
        {"0x10", 16},
        {"-0X1p4", -16},
        {"0x1.8", 1.5},
        // A digit follows "0x", or the number is the "0".
        {"0x", 0},
        {"0x.", 0},
        {"0x.8", 0.5},
        {"0x-5", 0},
        {"0xinf", 0},
        {"0xnan", 0},
        {"0x3ap+1", 116},
        {"0x3ap+-1", 58},
        {"0x3ap-+1", 58},
        {"inf", INFINITE},
        {"-Infinity", -INFINITE},
        {"1e400", INFINITE},
        {"-1e400", -INFINITE},
        {"1e-400", 0},
        {"1e99999999999999999999", INFINITE},
        {"1e-99999999999999999999", 0},
        {"1e9223372036854775807", INFINITE},
        {"1e-9223372036854775807", 0},
        {"0.00001e401", INFINITE},
        {"100000e-400", 0},
        {"0x1p2000", INFINITE},
        {"0x1p-2000", 0},
        {"1.7976931348623157e308", std::numeric_limits<double>::max()},
    };
    for (const auto& row : rows) EXPECT_EQ(textToDouble(row._text), row._value) << row._text;
    EXPECT_TRUE(std::isnan(textToDouble("nan")));
    EXPECT_TRUE(std::signbit(textToDouble("-0")));
    EXPECT_TRUE(std::signbit(textToDouble("-0x")));
}

TEST(TextToDouble, ANumberOfManyDigitsBeyondTheRangeIsInfinite)
{
    EXPECT_EQ(textToDouble(std::string(400, '9').c_str()), INFINITE);
    EXPECT_EQ(textToDouble(("0." + std::string(400, '0') + "1").c_str()), 0);
}

TEST(TextToDouble, ANumberOfManyZerosBehindThePointIsTooSmallForItsPositiveExponent)
{
    const std::string zeros(800, '0');
    for (const char* const exponent : {"1e400", "1e+400", "1E+5", "1e+0"})
        EXPECT_EQ(textToDouble(("0." + zeros + exponent).c_str()), 0) << exponent;
    for (const char* const exponent : {"1p400", "1p+400", "1P+5"})
        EXPECT_EQ(textToDouble(("0x0." + zeros + exponent).c_str()), 0) << exponent;
}

TEST(TextToDouble, DigitsBehindTheFirstThatCountsMakeNoNumberSmaller)
{
    EXPECT_EQ(textToDouble(("1." + std::string(500, '0') + "e400").c_str()), INFINITE);
    EXPECT_EQ(textToDouble(("0.1" + std::string(500, '0') + "e400").c_str()), INFINITE);
    EXPECT_EQ(textToDouble(("0x1." + std::string(600, '0') + "p2000").c_str()), INFINITE);
}

} // namespace

#include "base/fromChars.h"

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

using Zu::portableFromChars;

struct Result
{
    double _value;
    std::ptrdiff_t _length;
    std::errc _error;
};

constexpr double UNTOUCHED = -12345;

Result read(const std::string& text, std::chars_format format = std::chars_format::general)
{
    double value = UNTOUCHED;
    const char* const begin = text.data();
    const auto result = portableFromChars(begin, begin + text.size(), value, format);
    return {value, result.ptr - begin, result.ec};
}

// A text with many zeros in the middle.
std::string withZeros(const char* head, int count, const char* tail)
{
    std::string text(head);
    text.append(static_cast<std::size_t>(count), '0');
    return text.append(tail);
}

// The standard library's function, for texts that all of them read alike.
void expectAsStandard(const std::string& text, std::chars_format format)
{
    double value = UNTOUCHED;
    const char* const begin = text.data();
    const auto expected = std::from_chars(begin, begin + text.size(), value, format);
    const Result found = read(text, format);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(found._value), std::bit_cast<std::uint64_t>(value))
        << text;
    EXPECT_EQ(found._length, expected.ptr - begin) << text;
    EXPECT_EQ(found._error, expected.ec) << text;
}

TEST(FromChars, ReadsWhatIsANumberAndNoMore)
{
    const struct
    {
        const char* _text;
        double _value;
        std::ptrdiff_t _length;
    } rows[] = {
        {"0", 0, 1},
        {"-0.0", -0.0, 4},
        {"1.5x", 1.5, 3},
        {"5.", 5, 2},
        {".5", 0.5, 2},
        {"1.2.3", 1.2, 3},
        {"1e3", 1000, 3},
        {"1E+3", 1000, 4},
        {"1e-3", 0.001, 4},
        {"1e", 1, 1},
        {"1e+", 1, 1},
        {"1e+-1", 1, 1},
        {"1p3", 1, 1},
        {"007", 7, 3},
        {"1f", 1, 1},
        {"00000000000000000000.1", 0.1, 22},
        {"1e00000000001", 10, 13},
    };
    for (const auto& row : rows)
    {
        const Result result = read(row._text);
        EXPECT_EQ(result._value, row._value) << row._text;
        EXPECT_EQ(std::signbit(result._value), std::signbit(row._value)) << row._text;
        EXPECT_EQ(result._length, row._length) << row._text;
        EXPECT_EQ(result._error, std::errc()) << row._text;
    }
}

TEST(FromChars, ReadsHexadecimalNumbers)
{
    const struct
    {
        const char* _text;
        double _value;
        std::ptrdiff_t _length;
    } rows[] = {
        {"1.8", 1.5, 3},
        {"fFp0", 255, 4},
        {".8p1", 1, 4},
        {"1p-1", 0.5, 4},
        {"1P+4", 16, 4},
        {"1px", 1, 1},
        {"1e1", 481, 3},
        {"-a", -10, 2},
        // A tie goes to the even number, unless further digits decide.
        {"20000000000001", 0x20000000000000, 14},
        {"20000000000003", 0x20000000000004, 14},
        {"20000000000001.0", 0x20000000000000, 16},
        {"20000000000001.000000000000000000000000001", 0x20000000000002, 42},
    };
    for (const auto& row : rows)
    {
        const Result result = read(row._text, std::chars_format::hex);
        EXPECT_EQ(result._value, row._value) << row._text;
        EXPECT_EQ(result._length, row._length) << row._text;
        EXPECT_EQ(result._error, std::errc()) << row._text;
    }
}

TEST(FromChars, WhatIsNoNumberIsNotTouched)
{
    for (const char* const text : {"", "-", ".", "-.", "x", "+1", " 1", "e5", "in", "na", "--1"})
    {
        const Result result = read(text);
        EXPECT_EQ(result._value, UNTOUCHED) << text;
        EXPECT_EQ(result._length, 0) << text;
        EXPECT_EQ(result._error, std::errc::invalid_argument) << text;
    }
}

TEST(FromChars, ReadsTheWordsForNoFiniteNumber)
{
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    EXPECT_EQ(read("inf")._value, INFINITE);
    EXPECT_EQ(read("-INFinity")._value, -INFINITE);
    EXPECT_EQ(read("infinit")._length, 3);
    EXPECT_EQ(read("-infinity!")._length, 9);
    for (const auto& [text, length] :
         {std::pair{"nan", 3}, {"NaN(a_1)", 8}, {"nan(a b)", 3}, {"nan(", 3}, {"nan()", 5}})
    {
        EXPECT_TRUE(std::isnan(read(text)._value)) << text;
        EXPECT_EQ(read(text)._length, length) << text;
    }
}

// Neighbours of the edges of the range, and of the middle between two doubles.
TEST(FromChars, RoundsToTheNearest)
{
    constexpr double GREATEST = std::numeric_limits<double>::max();
    constexpr double LEAST = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(read("9007199254740993")._value, 9007199254740992.0);
    EXPECT_EQ(read("9007199254740995")._value, 9007199254740996.0);
    EXPECT_EQ(read(withZeros("9007199254740993.", 900, "1"))._value, 9007199254740994.0);
    EXPECT_EQ(read(withZeros("9007199254740993.", 900, ""))._value, 9007199254740992.0);
    EXPECT_EQ(read(withZeros("179769313486231570", 291, ""))._value, GREATEST);
    EXPECT_EQ(read("1.7976931348623158e308")._value, GREATEST);
    EXPECT_EQ(read("1.7976931348623159e308")._error, std::errc::result_out_of_range);
    EXPECT_EQ(read("1.7976931348623159e308")._value, UNTOUCHED);
    EXPECT_EQ(read("4.9406564584124654e-324")._value, LEAST);
    EXPECT_EQ(read("2.4703282292062328e-324")._value, LEAST);
    EXPECT_EQ(read("2.4703282292062327e-324")._error, std::errc::result_out_of_range);
    EXPECT_EQ(read("2.4703282292062327e-324")._length, 23);
    EXPECT_EQ(read("2.2250738585072011e-308")._value, 2.2250738585072011e-308);
}

TEST(FromChars, ExponentsAndDigitsOfAnyLengthMeet)
{
    EXPECT_EQ(read(withZeros("0.", 500, "1e501"))._value, 1);
    EXPECT_EQ(read(withZeros("1", 500, "e-500"))._value, 1);
    EXPECT_EQ(read(withZeros("", 900, withZeros("1", 900, "e-900").c_str()))._value, 1);
    EXPECT_EQ(read("1e400")._error, std::errc::result_out_of_range);
    EXPECT_EQ(read("1e-400")._error, std::errc::result_out_of_range);
    EXPECT_EQ(read("1e99999999999999999999")._error, std::errc::result_out_of_range);
    EXPECT_EQ(read("1e-99999999999999999999")._error, std::errc::result_out_of_range);
    EXPECT_EQ(read("0e99999999999999999999")._value, 0);
    EXPECT_EQ(read("1p1024", std::chars_format::hex)._error, std::errc::result_out_of_range);
    EXPECT_EQ(read("1p-1075", std::chars_format::hex)._error, std::errc::result_out_of_range);
    EXPECT_EQ(read("1p-1074", std::chars_format::hex)._value,
              std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(read(withZeros("1", 400, "p-1600"), std::chars_format::hex)._value, 1);
}

TEST(FromChars, ReadsAnyDoubleThatWasWritten)
{
    std::mt19937_64 random(3);
    char text[64];
    for (int i = 0; i < 4000; ++i)
    {
        const auto value = std::bit_cast<double>(random());
        if (!std::isfinite(value)) continue;
        for (const char* const format : {"%.17g", "%.16e", "%.15g"})
        {
            std::snprintf(text, sizeof text, format, value);
            expectAsStandard(text, std::chars_format::general);
        }
        EXPECT_EQ(read(text)._length, static_cast<std::ptrdiff_t>(std::string(text).size()));
        auto* const end =
            std::to_chars(text, text + sizeof text, value, std::chars_format::hex).ptr;
        const Result found = read(std::string(text, end), std::chars_format::hex);
        EXPECT_EQ(found._value, value);
        EXPECT_EQ(found._length, end - text);
    }
}

TEST(FromChars, ReadsAnyDigitsAsTheStandardLibraryDoes)
{
    std::mt19937_64 random(4);
    for (int i = 0; i < 4000; ++i)
    {
        std::string text(random() % 2, '-');
        for (std::uint64_t length = random() % 40; length > 0; --length)
            text += static_cast<char>('0' + random() % 10);
        if (random() % 2 == 0) text += '.';
        for (std::uint64_t length = random() % 40; length > 0; --length)
            text += static_cast<char>('0' + random() % 10);
        if (random() % 3 != 0) text += "e" + std::to_string(static_cast<int>(random() % 700) - 350);
        expectAsStandard(text, std::chars_format::general);
    }
}

TEST(FromChars, TheStandardLibrarysOwnIsTakenWhereThereIsOne)
{
    double value = 0;
    const std::string text = "1.5 ";
    const auto result =
        Zu::fromChars(text.data(), text.data() + text.size(), value, std::chars_format::general);
    EXPECT_EQ(value, 1.5);
    EXPECT_EQ(result.ptr, text.data() + 3);
}

} // namespace

#include "base/textToInt.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <limits>

namespace
{

constexpr int LOWEST = std::numeric_limits<int>::min();
constexpr int HIGHEST = std::numeric_limits<int>::max();

struct TextRow
{
    const char* _text;
    int _value;
};

const TextRow ROWS[] = {
    {"0", 0},
    {"42", 42},
    {"+42", 42},
    {"-42", -42},
    {"-0", 0},
    {"007", 7},
    {" 5", 5},
    {" \t\n\v\f\r5", 5},
    {"12 34", 12},
    {"12abc", 12},
    {"1.9", 1},
    {"1e3", 1},
    {"0x1F", 0},
    {"5-", 5},
    // No number at the beginning.
    {"", 0},
    {" ", 0},
    {"abc", 0},
    {"+", 0},
    {"-", 0},
    {"--5", 0},
    {"+-5", 0},
    {"- 5", 0},
    {"x5", 0},
    {".5", 0},
    // The ends of the range, and values beyond.
    {"2147483646", 2147483646},
    {"2147483647", HIGHEST},
    {"2147483648", HIGHEST},
    {"4294967295", HIGHEST},
    {"4294967296", HIGHEST},
    {"9223372036854775807", HIGHEST},
    {"9223372036854775808", HIGHEST},
    {"99999999999999999999999999", HIGHEST},
    {"-2147483647", -2147483647},
    {"-2147483648", LOWEST},
    {"-2147483649", LOWEST},
    {"-4294967296", LOWEST},
    {"-9223372036854775809", LOWEST},
    {"-99999999999999999999999999", LOWEST},
    {"00000000000000000000000000012", 12},
};

TEST(TextToInt, IsTheDecimalNumberAtTheBeginningOrTheNearestInt)
{
    for (const TextRow& row : ROWS)
        EXPECT_EQ(Zu::textToInt(row._text), row._value) << '"' << row._text << '"';
}

TEST(TextToInt, LeavesTheErrorNumberAlone)
{
    for (const TextRow& row : ROWS)
        for (const int error : {0, EDOM, ERANGE})
        {
            errno = error;
            Zu::textToInt(row._text);
            EXPECT_EQ(errno, error) << '"' << row._text << '"';
        }
    errno = 0;
}

} // namespace

#include "app/apCheckValue.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using Zu::apAreNear;
using Zu::apCompare;
using Zu::apShown;

struct Printable
{
    int _value;
};

std::ostream& operator<<(std::ostream& os, const Printable& value)
{
    return os << "value " << value._value;
}

struct Broken
{
};

std::ostream& operator<<(std::ostream&, const Broken&)
{
    throw std::runtime_error("why");
}

struct Opaque
{
    void run() {}
    int _value;
};

enum class Colour
{
    Red
};

enum Number
{
    SEVEN = 7
};

static_assert(Zu::apIsPrintable<Printable>);
static_assert(!Zu::apIsPrintable<Opaque>);

void function() {}

TEST(ApCheckValue, ShowsTextsBetweenQuotes)
{
    EXPECT_EQ(apShown("text"), "\"text\"");
    EXPECT_EQ(apShown(std::string("a\"b\\c\n\r\t\x1b\x7f")), "\"a\\\"b\\\\c\\n\\r\\t\\x1b\\x7f\"");
    EXPECT_EQ(apShown(std::string_view("\0", 1)), "\"\\x00\"");
    EXPECT_EQ(apShown(std::string("\xC3\xA4")), "\"\xC3\xA4\"");
    char buffer[8] = "abc";
    EXPECT_EQ(apShown(buffer), "\"abc\"");
    const char* const null = nullptr;
    EXPECT_EQ(apShown(null), "null");
    EXPECT_EQ(apShown('a'), "'a'");
    EXPECT_EQ(apShown('\n'), "'\\n'");
}

TEST(ApCheckValue, ShowsNumbersSoThatTheyCanBeToldApart)
{
    EXPECT_EQ(apShown(-3), "-3");
    EXPECT_EQ(apShown(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(apShown(std::uint8_t{65}), "65");
    EXPECT_EQ(apShown(std::int8_t{-1}), "-1");
    EXPECT_EQ(apShown(true), "true");
    EXPECT_EQ(apShown(false), "false");
    EXPECT_EQ(apShown(0.1), "0.1");
    EXPECT_EQ(apShown(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(apShown(0.1F), "0.1");
    EXPECT_EQ(apShown(0.5L), "0.5");
    EXPECT_EQ(apShown(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(apShown(SEVEN), "7");
    EXPECT_EQ(apShown(std::atomic<int>(3)), "3");
}

TEST(ApCheckValue, ShowsWhatHasAnOperator)
{
    EXPECT_EQ(apShown(Printable{3}), "value 3");
    EXPECT_EQ(apShown(std::filesystem::path("a")), "\"a\"");
    const int value = 0;
    EXPECT_EQ(apShown(&value).substr(0, 2), "0x");
    EXPECT_EQ(apShown(nullptr), "null");
    EXPECT_EQ(apShown(static_cast<const int*>(nullptr)), "null");
    // It may be no text at all.
    const auto* const bytes = reinterpret_cast<const unsigned char*>("bytes");
    EXPECT_EQ(apShown(bytes).substr(0, 2), "0x");
}

TEST(ApCheckValue, WhatHasNoneIsNotPrintable)
{
    EXPECT_EQ(apShown(Opaque{1}), "(not printable)");
    EXPECT_EQ(apShown(Colour::Red), "(not printable)");
    EXPECT_EQ(apShown(std::vector<int>{1}), "(not printable)");
    EXPECT_EQ(apShown(Broken()), "(not printable)");
    EXPECT_EQ(apShown(&function), "(not printable)");
    EXPECT_EQ(apShown(&Opaque::run), "(not printable)");
    EXPECT_EQ(apShown(&Opaque::_value), "(not printable)");
    const int numbers[] = {1, 2};
    EXPECT_EQ(apShown(numbers), "(not printable)");
}

TEST(ApCheckValue, NumbersAreShownInTheSameWayInEveryLocale)
{
    struct Commas : std::numpunct<char>
    {
        char do_thousands_sep() const override
        {
            return ',';
        }
        std::string do_grouping() const override
        {
            return "\3";
        }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new Commas));
    EXPECT_EQ(apShown(1234567), "1234567");
    EXPECT_EQ(apShown(Printable{1234567}), "value 1234567");
    std::locale::global(before);
}

// What the six comparisons of two values return, as a text such as "!= < <=".
template <class A, class B> std::string comparisons(const A& a, const B& b)
{
    std::string text;
    if (apCompare(a, b, std::equal_to<>())) text += "== ";
    if (apCompare(a, b, std::not_equal_to<>())) text += "!= ";
    if (apCompare(a, b, std::less<>())) text += "< ";
    if (apCompare(a, b, std::less_equal<>())) text += "<= ";
    if (apCompare(a, b, std::greater<>())) text += "> ";
    if (apCompare(a, b, std::greater_equal<>())) text += ">= ";
    return text;
}

const std::string SAME = "== <= >= ";
const std::string LESS = "!= < <= ";
const std::string GREATER = "!= > >= ";

TEST(ApCheckValue, WholeNumbersAreComparedByTheirValues)
{
    constexpr auto MAX = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(comparisons(3, 3), SAME);
    EXPECT_EQ(comparisons(3, 3U), SAME);
    EXPECT_EQ(comparisons(std::size_t{3}, 4), LESS);
    EXPECT_EQ(comparisons(-1, MAX), LESS);
    EXPECT_EQ(comparisons(MAX, -1), GREATER);
    EXPECT_EQ(comparisons(std::numeric_limits<std::int64_t>::min(), 0U), LESS);
    EXPECT_EQ(comparisons(std::int8_t{-1}, std::uint8_t{255}), LESS);
    EXPECT_EQ(comparisons(std::uint8_t{255}, -1L), GREATER);
    EXPECT_EQ(comparisons(true, 1), SAME);
    EXPECT_EQ(comparisons(-1, true), LESS);
}

TEST(ApCheckValue, TextsOfCAreComparedByTheirCharacters)
{
    const char* const null = nullptr;
    char buffer[] = "abc";
    EXPECT_EQ(comparisons("abc", buffer), SAME);
    EXPECT_EQ(comparisons(static_cast<const char*>("abc"), buffer), SAME);
    EXPECT_EQ(comparisons("abc", "abd"), LESS);
    EXPECT_EQ(comparisons("abcd", "abc"), GREATER);
    EXPECT_EQ(comparisons(null, null), SAME);
    EXPECT_EQ(comparisons(null, ""), LESS);
    EXPECT_EQ(comparisons("", null), GREATER);
    EXPECT_EQ(comparisons(std::string("abc"), "abc"), SAME);
}

TEST(ApCheckValue, EverythingElseIsComparedByItsOwnOperators)
{
    EXPECT_EQ(comparisons(1.5, 1), GREATER);
    EXPECT_EQ(comparisons(std::numeric_limits<double>::quiet_NaN(), 1.0), "!= ");
    EXPECT_EQ(comparisons(std::chrono::seconds(1), std::chrono::milliseconds(1000)), SAME);
    EXPECT_EQ(comparisons(std::vector<int>{1, 2}, std::vector<int>{1, 3}), LESS);
    const int numbers[2] = {};
    EXPECT_EQ(comparisons(&numbers[0], &numbers[1]), LESS);
    EXPECT_TRUE(apCompare(static_cast<const int*>(nullptr), nullptr, std::equal_to<>()));
}

TEST(ApCheckValue, NearIsWithinTheToleranceIncluded)
{
    constexpr double INF = std::numeric_limits<double>::infinity();
    constexpr double NONE = std::numeric_limits<double>::quiet_NaN();
    constexpr auto MAX = std::numeric_limits<std::uint64_t>::max();
    EXPECT_TRUE(apAreNear(1.0, 1.25, 0.25));
    EXPECT_TRUE(apAreNear(1.25, 1.0, 0.25));
    EXPECT_FALSE(apAreNear(1.0, 1.2500001, 0.25));
    EXPECT_TRUE(apAreNear(1.0, 1.0, 0));
    EXPECT_TRUE(apAreNear(2U, 5U, 3));
    EXPECT_FALSE(apAreNear(2U, 5U, 2));
    EXPECT_FALSE(apAreNear(-1, MAX, 1));
    EXPECT_TRUE(apAreNear(MAX, MAX - 1, 1));
    EXPECT_FALSE(apAreNear(MAX, MAX - 2, 1));
    EXPECT_TRUE(apAreNear(INF, INF, 1));
    EXPECT_FALSE(apAreNear(INF, -INF, 1));
    EXPECT_FALSE(apAreNear(INF, 1.0, 1));
    EXPECT_FALSE(apAreNear(NONE, NONE, 1));
    EXPECT_FALSE(apAreNear(1.0, 1.0 + 1e-9, NONE));
    using std::chrono::milliseconds;
    EXPECT_TRUE(apAreNear(milliseconds(5), milliseconds(8), milliseconds(3)));
    EXPECT_TRUE(apAreNear(milliseconds(8), milliseconds(5), milliseconds(3)));
    EXPECT_FALSE(apAreNear(milliseconds(5), milliseconds(8), milliseconds(2)));
}

} // namespace

#include "app/lgSuffix.h"

#include "base/lgQueue.h"
#include "base/lgStream.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace
{

namespace LgSuffix = Zu::LgSuffix;

std::string suffix(const char* file = "dir/orders.cpp", int line = 17)
{
    Zu::LgStream stream;
    stream << "x";
    Zu::LgQueue::insertSuffix(stream, file, line);
    stream << Zu::ends;
    std::vector<char> text(stream.getNextSize() + 1);
    stream >> text.data();
    return text.data() + 1;
}

TEST(LgSuffix, FieldsAreQuotedWhereTheyNeedIt)
{
    const struct
    {
        std::string _name;
        std::string _value;
        std::string _field;
    } cases[] = {
        {"request", "4711", "request=4711"},
        {"path", "/a_b/c-d.e:f@g+h", "path=/a_b/c-d.e:f@g+h"},
        {"user", "Ann Lee", "user=\"Ann Lee\""},
        {"", "", "\"\"=\"\""},
        {"a b", "c", "\"a b\"=c"},
        {"a=b", "c}", "\"a=b\"=\"c}\""},
        {"q", "\"\\", "q=\"\\\"\\\\\""},
        {"c", std::string("a\0b\nc\x7f", 6), "c=\"a?b?c?\""},
        {"u", "\xc3\xa4", "u=\"\xc3\xa4\""},
    };
    for (const auto& row : cases) EXPECT_EQ(LgSuffix::field(row._name, row._value), row._field);
}

TEST(LgSuffix, ABeginningHasWholeCharacters)
{
    const struct
    {
        std::string _text;
        std::size_t _most;
        const char* _beginning;
    } cases[] = {
        {"", 3, ""},
        {"abc", 3, "abc"},
        {"abcd", 3, "abc"},
        {"ab\xc3\xa4", 3, "ab"},
        {"a\xc3\xa4", 3, "a\xc3\xa4"},
        {"\xf0\x9f\x98\x80", 3, ""},
        {"abc", 0, ""},
        {std::string("a\0b", 3), 3, "a"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(LgSuffix::beginningOf(row._text, row._most), row._beginning);
}

TEST(LgSuffix, FieldsStandInTheirOrderAndEndInReverse)
{
    EXPECT_EQ(suffix(), "");
    const std::size_t first = LgSuffix::push("request", "1");
    EXPECT_EQ(suffix(), " {request=1}");
    const std::size_t second = LgSuffix::push("user", "ann");
    EXPECT_EQ(suffix(), " {request=1, user=ann}");
    LgSuffix::pop(second);
    EXPECT_EQ(suffix(), " {request=1}");
    LgSuffix::push("user", "bob");
    LgSuffix::pop(first);
    EXPECT_EQ(suffix(), "") << "with those that were added after it";
    LgSuffix::pop(second);
    EXPECT_EQ(suffix(), "");
}

TEST(LgSuffix, AThreadHasItsOwn)
{
    const std::size_t before = LgSuffix::push("request", "1");
    std::string first;
    std::string named;
    std::string last;
    std::thread(
        [&]
        {
            first = suffix();
            LgSuffix::nameThread("worker 3");
            named = suffix();
            LgSuffix::push("job", "7");
            last = suffix();
        })
        .join();
    EXPECT_EQ(first, "");
    EXPECT_EQ(named, " {thread=\"worker 3\"}");
    EXPECT_EQ(last, " {thread=\"worker 3\", job=7}");
    EXPECT_EQ(suffix(), " {request=1}");
    LgSuffix::nameThread("main");
    EXPECT_EQ(suffix(), " {thread=main, request=1}");
    LgSuffix::nameThread("");
    LgSuffix::pop(before);
    EXPECT_EQ(suffix(), "");
}

TEST(LgSuffix, PlacesStandBeforeFields)
{
    LgSuffix::showPlaces(true);
    EXPECT_EQ(suffix(), " [orders.cpp:17]");
    EXPECT_EQ(suffix("C:\\dir\\orders.cpp", 1), " [orders.cpp:1]");
    EXPECT_EQ(suffix("orders.cpp", 2), " [orders.cpp:2]");
    const std::size_t before = LgSuffix::push("request", "1");
    EXPECT_EQ(suffix(), " [orders.cpp:17] {request=1}");
    LgSuffix::showPlaces(false);
    EXPECT_EQ(suffix(), " {request=1}");
    LgSuffix::pop(before);
}

} // namespace

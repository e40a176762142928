#include "zulog/zlSuffix.h"

#include "app/lgSuffix.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

// "source|name=value|...".
std::string found(const std::string& text)
{
    const Zu::ZlSuffix suffix = Zu::zlSuffixOf(text);
    std::string shown = suffix._source;
    for (const auto& [name, value] : suffix._fields) shown.append("|" + name).append("=" + value);
    return shown;
}

TEST(ZlSuffix, IsFoundAtTheEndOfATextAlone)
{
    const struct
    {
        const char* _text;
        const char* _found;
    } cases[] = {
        {"", ""},
        {"order 7 is late", ""},
        {"order 7 is late {request=4711}", "|request=4711"},
        {"late {request=4711, user=\"Ann Lee\"}", "|request=4711|user=Ann Lee"},
        {"late [orders.cpp:17]", "orders.cpp:17"},
        {"late [orders.cpp:17] {a=b}", "orders.cpp:17|a=b"},
        {" {a=b}", "|a=b"},
        {"{a=b}", "|a=b"},
        {"x{a=b}", ""},
        {"[a.cpp:1]", "a.cpp:1"},
        {"[a.cpp:1] {a=b}", "a.cpp:1|a=b"},
        {"late {a=b} ", ""},
        {"late {a=b}.", ""},
        {"late {a}", ""},
        {"late {a=}", ""},
        {"late {=b}", ""},
        {"late {}", ""},
        {"late {a=b,c=d}", ""},
        {"late {a=b c=d}", ""},
        {"late {a=\"b}", ""},
        {"late {a=\"\\", ""},
        {"late {\"\"=\"\"}", "|="},
        {"late {a=\"x {b=c}\"}", "|a=x {b=c}"},
        {"late {a=\"\\\"\\\\\"}", "|a=\"\\"},
        {"late {a=1} {b=2}", "|b=2"},
        {"late {thread=w, thread=v}", "|thread=w|thread=v"},
        {"late [orders.cpp:]", ""},
        {"late [:17]", ""},
        {"late [orders.cpp:1x]", ""},
        {"late[orders.cpp:17]", ""},
        {"late [a b.cpp:17]", "a b.cpp:17"},
        {"late [orders.cpp:17] then", ""},
    };
    for (const auto& row : cases) EXPECT_EQ(found(row._text), row._found) << row._text;
}

TEST(ZlSuffix, WhatTheServiceWritesIsReadBack)
{
    for (const std::string& text :
         {std::string("x"), std::string("a b"), std::string("\"}, {\\"), std::string(),
          std::string("\xc3\xa4, b=c"), std::string("\\\\\""), std::string(" {a=b}")})
        for (const std::string& other : {std::string("1"), std::string("} {"), text})
        {
            const std::string line = "late {" + Zu::LgSuffix::field(text, other) + ", " +
                                     Zu::LgSuffix::field("n", text) + "}";
            EXPECT_EQ(found(line), "|" + text + "=" + other + "|n=" + text) << line;
        }
}

} // namespace

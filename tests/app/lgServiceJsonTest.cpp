#include "app/lgServiceJson.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace
{

struct Row
{
    const char* _name;
    std::string_view _text;
    const char* _json;
};

constexpr Row ROWS[] = {
    {"Nothing", "", R"("")"},
    {"Plain", "plain", R"("plain")"},
    {"QuotationMark", "a\"b", R"("a\"b")"},
    {"Backslash", R"(C:\temp)", R"("C:\\temp")"},
    {"Controls", "a\nb\tc\x01", R"("a\u000ab\u0009c\u0001")"},
    {"Umlaut", "gr\xc3\xbc\xc3\x9f", "\"gr\xc3\xbc\xc3\x9f\""},
    {"NoUtf8", "a\xff", R"("a\\xff")"},
};

class LgServiceJsonText : public testing::TestWithParam<Row>
{
};

TEST_P(LgServiceJsonText, IsAString)
{
    EXPECT_EQ(Zu::lgJsonText(GetParam()._text), GetParam()._json);
}

INSTANTIATE_TEST_SUITE_P(Texts, LgServiceJsonText, testing::ValuesIn(ROWS),
                         [](const auto& row) { return row.param._name; });

TEST(LgJsonMembers, FollowEachOtherInTheirOrder)
{
    EXPECT_EQ(Zu::LgJsonMembers().object(), "{}");
    EXPECT_EQ(Zu::LgJsonMembers().add("b", 18446744073709551615U).add("a", "[1,2]").object(),
              R"({"b":18446744073709551615,"a":[1,2]})");
    EXPECT_EQ(Zu::LgJsonMembers().add("\"", "null").object(), R"({"\"":null})");
}

} // namespace

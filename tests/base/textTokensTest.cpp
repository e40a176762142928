#include "base/textTokens.h"

#include "support/rowName.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using Texts = std::vector<std::string>;

struct TokenRow
{
    const char* _name;
    std::string _text;
    Texts _tokens;
};

class NextToken : public testing::TestWithParam<TokenRow>
{
};

TEST_P(NextToken, GivesWhatStandsBetweenDelimitersAndNoneThatIsEmpty)
{
    std::string text = GetParam()._text;
    char* rest = text.data();
    Texts tokens;
    while (const char* const token = Zu::nextToken(rest, ',')) tokens.emplace_back(token);
    EXPECT_EQ(tokens, GetParam()._tokens);
    EXPECT_EQ(rest, text.data() + text.size());
}

INSTANTIATE_TEST_SUITE_P(Table, NextToken,
                         testing::Values(TokenRow{"Empty", "", {}},
                                         TokenRow{"DelimitersAlone", ",,,", {}},
                                         TokenRow{"One", "one", {"one"}},
                                         TokenRow{"Two", "one,two", {"one", "two"}},
                                         TokenRow{"Around", ",one,,two,", {"one", "two"}},
                                         TokenRow{"OthersAreText", " one; two\t", {" one; two\t"}}),
                         support::RowName());

TEST(NextTokenOfSeveral, TheDelimiterMayChangeFromTokenToToken)
{
    std::string text = "a=1,b=,c";
    char* rest = text.data();
    EXPECT_STREQ(Zu::nextToken(rest, '='), "a");
    EXPECT_STREQ(Zu::nextToken(rest, ','), "1");
    EXPECT_STREQ(Zu::nextToken(rest, '='), "b");
    EXPECT_STREQ(Zu::nextToken(rest, ','), "c");
    EXPECT_EQ(Zu::nextToken(rest, '='), nullptr);
}

struct CutRow
{
    const char* _name;
    std::string _text;
    char _delimiter;
    std::string _front;
    std::string _rest;
};

class CutAt : public testing::TestWithParam<CutRow>
{
};

TEST_P(CutAt, TheFirstDelimiterEndsTheText)
{
    std::string text = GetParam()._text;
    char* rest = text.data();
    EXPECT_EQ(Zu::cutAt(rest, ",="), GetParam()._delimiter);
    EXPECT_STREQ(text.c_str(), GetParam()._front.c_str());
    EXPECT_STREQ(rest, GetParam()._rest.c_str());
}

INSTANTIATE_TEST_SUITE_P(Table, CutAt,
                         testing::Values(CutRow{"Empty", "", '\0', "", ""},
                                         CutRow{"None", "text", '\0', "text", ""},
                                         CutRow{"TheFirstOfTwo", "a=b,c", '=', "a", "b,c"},
                                         CutRow{"TheOther", "a,b=c", ',', "a", "b=c"},
                                         CutRow{"AtTheFront", ",a", ',', "", "a"},
                                         CutRow{"AtTheEnd", "a=", '=', "a", ""}),
                         support::RowName());

struct FieldRow
{
    const char* _name;
    std::string _text;
    std::string _field;
    std::string _rest;
};

class TakeField : public testing::TestWithParam<FieldRow>
{
};

TEST_P(TakeField, TheDelimitersBehindTheFieldGoWithIt)
{
    std::string_view rest = GetParam()._text;
    EXPECT_EQ(Zu::takeField(rest, ' '), GetParam()._field);
    EXPECT_EQ(rest, GetParam()._rest);
}

INSTANTIATE_TEST_SUITE_P(Table, TakeField,
                         testing::Values(FieldRow{"Empty", "", "", ""},
                                         FieldRow{"DelimitersAlone", "  ", "", ""},
                                         FieldRow{"One", "one", "one", ""},
                                         FieldRow{"Two", "one  two ", "one", "two "},
                                         FieldRow{"DelimiterInFront", " one", "", "one"}),
                         support::RowName());

TEST(Skip, OnlyTheFrontIsLookedAt)
{
    std::string_view rest = "  one two ";
    Zu::skip(rest, ' ');
    EXPECT_EQ(rest, "one two ");
    rest = "   ";
    Zu::skip(rest, ' ');
    EXPECT_EQ(rest, "");
}

TEST(LessByBytes, BytesAreUnsignedAndAPrefixComesFirst)
{
    const Zu::LessByBytes less;
    std::vector<const char*> texts = {"b", "\xC4", "a\x01", "", "a", "B"};
    std::sort(texts.begin(), texts.end(), less);
    EXPECT_EQ(Texts(texts.begin(), texts.end()), (Texts{"", "B", "a", "a\x01", "b", "\xC4"}));
    EXPECT_FALSE(less("a", "a"));
}

} // namespace

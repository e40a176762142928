#include "app/apTestGlob.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

TEST(ApTestGlob, MatchesAsThePatternSays)
{
    const struct
    {
        const char* _pattern;
        const char* _text;
        bool _matches;
    } cases[] = {
        {"", "", true},
        {"", "a", false},
        {"a", "", false},
        {"a", "a", true},
        {"a", "A", false},
        {"a", "ab", false},
        {"ab", "a", false},
        {"*", "", true},
        {"*", "anything", true},
        {"**", "", true},
        {"?", "", false},
        {"?", "a", true},
        {"?", "ab", false},
        {"??", "ab", true},
        {"?*", "", false},
        {"?*", "a", true},
        {"*?", "abc", true},
        {"a*", "a", true},
        {"a*", "ba", false},
        {"*a", "ba", true},
        {"*a", "ab", false},
        {"*a*", "bab", true},
        {"a*c", "abc", true},
        {"a*c", "abcd", false},
        {"a*c", "acbc", true},
        {"*ab*ab*", "ab", false},
        {"*ab*ab*", "xabyabz", true},
        {"a*b*c", "axbxbxc", true},
        {"a*b?c", "abbbc", true},
        {"a*b?c", "abc", false},
        {"*aab", "aaaab", true},
        // No other character is special, not even behind one that is elsewhere.
        {"[a]", "a", false},
        {"[a]", "[a]", true},
        {"a.c", "abc", false},
        {"\\*", "*", false},
        {"\\*", "\\x", true},
        {"*", "*", true},
        {"a?", "a*", true},
        // A character may have several bytes; what is none counts as one.
        {"?", "\xC3\xA4", true},
        {"??", "\xC3\xA4", false},
        {"?b",
         "\xE2\x82\xAC"
         "b",
         true},
        {"*?", "\xF0\x9F\x98\x80", true},
        {"??", "\xA4\xA4", true},
        {"?\xA4", "\xC3\xA4", false},
        {"\xC3\xA4", "\xC3\xA4", true},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Zu::apMatchesGlob(row._pattern, row._text), row._matches)
            << row._pattern << " and " << row._text;
}

// The definition, without any cleverness.
bool matchesSlowly(const std::string& pattern, const std::string& text)
{
    if (pattern.empty()) return text.empty();
    const std::string rest = pattern.substr(1);
    if (pattern[0] == '*')
        return matchesSlowly(rest, text) ||
               (!text.empty() && matchesSlowly(pattern, text.substr(1)));
    return !text.empty() && (pattern[0] == '?' || pattern[0] == text[0]) &&
           matchesSlowly(rest, text.substr(1));
}

// All texts of these characters up to a length.
std::vector<std::string> textsOf(const std::string& characters, std::size_t longest)
{
    std::vector<std::string> texts = {""};
    for (std::size_t i = 0; i < texts.size(); ++i)
        if (texts[i].size() < longest)
            for (const char c : characters) texts.push_back(texts[i] + c);
    return texts;
}

TEST(ApTestGlob, AgreesWithTheDefinitionOnAllShortTexts)
{
    for (const std::string& pattern : textsOf("ab*?", 5))
        for (const std::string& text : textsOf("ab", 5))
            ASSERT_EQ(Zu::apMatchesGlob(pattern, text), matchesSlowly(pattern, text))
                << pattern << " and " << text;
}

TEST(ApTestGlob, ManyStarsTakeNoTimeThatGrowsWithTheirPower)
{
    std::string pattern;
    for (int i = 0; i < 1000; ++i) pattern += "a*";
    EXPECT_FALSE(Zu::apMatchesGlob(pattern + "b", std::string(2000, 'a')));
    EXPECT_TRUE(Zu::apMatchesGlob(pattern, std::string(2000, 'a')));
}

TEST(ApTestGlob, APatternHasAStarOrAQuestionMark)
{
    EXPECT_TRUE(Zu::apIsGlob("a*"));
    EXPECT_TRUE(Zu::apIsGlob("?"));
    EXPECT_FALSE(Zu::apIsGlob("a[b]"));
    EXPECT_FALSE(Zu::apIsGlob(""));
}

} // namespace

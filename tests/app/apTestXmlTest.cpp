#include "app/apTestXml.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace
{

using namespace std::string_view_literals;

std::string xmlOf(std::string_view text)
{
    std::string out;
    Zu::apAppendXml(out, text);
    return out;
}

TEST(ApTestXml, EscapesWhatHasAMeaningAndWhatXmlCannotContain)
{
    const struct
    {
        std::string_view _text;
        const char* _xml;
    } cases[] = {
        {"", ""},
        {"plain 'text'", "plain 'text'"},
        {"a < b && c > \"d\"", "a &lt; b &amp;&amp; c &gt; &quot;d&quot;"},
        {"]]>", "]]&gt;"},
        {"a\tb\nc\r\n", "a&#9;b&#10;c&#13;&#10;"},
        {"\0"sv, "\\x00"},
        {"\x01\x08\x0b\x0c\x0e\x1b\x1f", "\\x01\\x08\\x0b\\x0c\\x0e\\x1b\\x1f"},
        {"\x20\x7e\x7f", "\x20\x7e\x7f"},
        // The first and the last characters of each length.
        {"\xC2\x80\xDF\xBF", "\xC2\x80\xDF\xBF"},
        {"\xE0\xA0\x80\xED\x9F\xBF", "\xE0\xA0\x80\xED\x9F\xBF"},
        {"\xEE\x80\x80\xEF\xBF\xBD", "\xEE\x80\x80\xEF\xBF\xBD"},
        {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
        // U+FFFE and U+FFFF; those of other planes are allowed.
        {"\xEF\xBF\xBE", "\\xef\\xbf\\xbe"},
        {"\xEF\xBF\xBF", "\\xef\\xbf\\xbf"},
        {"\xF0\x9F\xBF\xBE", "\xF0\x9F\xBF\xBE"},
        // Surrogates, forms that are too long, what is above U+10FFFF.
        {"\xED\xA0\x80", "\\xed\\xa0\\x80"},
        {"\xED\xBF\xBF", "\\xed\\xbf\\xbf"},
        {"\xC0\x80", "\\xc0\\x80"},
        {"\xC1\xBF", "\\xc1\\xbf"},
        {"\xE0\x9F\xBF", "\\xe0\\x9f\\xbf"},
        {"\xF0\x8F\xBF\xBF", "\\xf0\\x8f\\xbf\\xbf"},
        {"\xF4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},
        {"\xF5\x80\x80\x80", "\\xf5\\x80\\x80\\x80"},
        {"\xFF\xFE", "\\xff\\xfe"},
        // Characters without a beginning or an end.
        {"\x80", "\\x80"},
        {"\xC3", "\\xc3"},
        {"\xC3<", "\\xc3&lt;"},
        {"\xE2\x82", "\\xe2\\x82"},
        {"\xE2\x82"
         "a",
         "\\xe2\\x82"
         "a"},
        {"\xF0\x9F\x98", "\\xf0\\x9f\\x98"},
        {"\xC3\xA4\xA4", "\xC3\xA4\\xa4"},
    };
    for (const auto& row : cases) EXPECT_EQ(xmlOf(row._text), row._xml);
}

TEST(ApTestXml, AppendsToWhatIsThere)
{
    std::string out = "<a>";
    Zu::apAppendXml(out, "b");
    EXPECT_EQ(out, "<a>b");
}

} // namespace

#include "appToml/apToml.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using Zu::ApFileError;
using Zu::ApFileValue;
using Zu::ApToml;

std::string read(const std::string& content)
{
    std::string text;
    try
    {
        for (const ApFileValue& value : ApToml().read(content))
            text += std::to_string(value._line) + " " + value._name + " " +
                    "tis"[static_cast<int>(value._kind)] + " " + value._text + "\n";
    }
    catch (const ApFileError& error)
    {
        text += "! " + std::to_string(error.getLine()) + " " + error.what() + "\n";
    }
    return text;
}

TEST(ApToml, ReadsWhatVariablesTake)
{
    const struct
    {
        const char* _content;
        const char* _values;
    } cases[] = {
        {"", ""},
        {"# nothing\n", ""},
        {"port = 80", "1 port i 80\n"},
        {"port = -0x10", "! "},
        {"port = 0x10", "1 port i 16\n"},
        {"port = +1_000", "1 port i 1000\n"},
        {"port = 9223372036854775807", "1 port i 9223372036854775807\n"},
        {"name = \"a \\\"b\\\" \\u00e4\"", "1 name t a \"b\" \xC3\xA4\n"},
        {"name = 'C:\\temp'", "1 name t C:\\temp\n"},
        {"name = ''", "1 name t \n"},
        {"isOn = true\nisOff = false", "1 isOn s true\n2 isOff s false\n"},
        {"z = 1\n[server]\nport = 80\nname = 'x'\n[server.log]\nsize = 3\n[a]\nb.c = 4\n",
         "1 z i 1\n3 server::port i 80\n4 server::name t x\n6 server::log::size i 3\n"
         "8 a::b::c i 4\n"},
        {"\"server::port\" = 80", "1 server::port i 80\n"},
        {"server = { port = 80, name = 'x' }", "1 server::name t x\n1 server::port i 80\n"},
        {"a = \"\"\"\nfirst\nsecond\"\"\"\nb = 1", "1 a t first\nsecond\n4 b i 1\n"},
    };
    for (const auto& row : cases)
    {
        const std::string values = read(row._content);
        if (std::string(row._values) == "! ")
            EXPECT_EQ(values.substr(0, 4), "! 1 ") << row._content;
        else
            EXPECT_EQ(values, row._values) << row._content;
    }
}

TEST(ApToml, RefusesWhatNoVariableTakes)
{
    const std::string expected =
        ", which no setting takes: expected a text, a whole number, true or false\n";
    const struct
    {
        const char* _content;
        const char* _error;
    } cases[] = {
        {"a = 1.5", "! 1 'a' is a floating-point number"},
        {"\n\na = [1, 2]", "! 3 'a' is an array"},
        {"[b]\na = 2026-11-24", "! 2 'b::a' is a date"},
        {"a = 12:00:00", "! 1 'a' is a time"},
        {"a = 2026-11-24T12:00:00Z", "! 1 'a' is a date with a time"},
        {"[[a]]\nb = 1", "! 1 'a' is an array"},
    };
    for (const auto& row : cases) EXPECT_EQ(read(row._content), row._error + expected);
}

std::string repeated(const std::string& text, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

TEST(ApToml, RefusesTablesThatAreTooDeep)
{
    const std::string refusal = " a key has more than 64 parts\n";
    const struct
    {
        std::string _content;
        std::string _line;
    } cases[] = {
        {repeated("a.", 64) + "a = 1", ""},
        {repeated("a.", 65) + "a = 1", "1"},
        {repeated("a.", 100'000) + "a = 1", "1"},
        {"b = 1\n[" + repeated("a.", 100'000) + "a]\nb = 1", "2"},
        {"a = " + repeated("{a = ", 65) + "1" + repeated("}", 65), "1"},
        {"a = " + repeated("{a.b.c = ", 30) + "1" + repeated("}", 30), "1"},
        {"a = " + repeated("{b = 1, a = ", 20) + "1" + repeated("}", 20), ""},
        {"# " + repeated(".", 70) + "\n\na." + repeated("a.", 70) + "a = 1", "3"},
        {"b = 'x\\'\na." + repeated("a.", 70) + "a = 1", "2"},
        {"b = \"x\\\"\"\na." + repeated("a.", 70) + "a = 1", "2"},
        {"b = \"\"\"\n\"\\\"\n\"\"\"\n" + repeated("a.", 70) + "a = 1", "4"},
        {"b = '''\n\n'''\n" + repeated("a.", 70) + "a = 1", "4"},
        {"b = ''\nc = \"\"\n" + repeated("a.", 70) + "a = 1", "3"},
    };
    for (const auto& row : cases)
    {
        const std::string text = read(row._content);
        if (row._line.empty())
            EXPECT_NE(text[0], '!') << row._content;
        else
            EXPECT_EQ(text, "! " + row._line + refusal) << row._content.substr(0, 100);
    }
}

TEST(ApToml, DotsInTextsAndCommentsAreNoKeys)
{
    const std::string dots = repeated("{.", 70);
    for (const std::string quote : {"'", "\"", "'''", "\"\"\""})
        EXPECT_EQ(read("a = " + quote + dots + quote + " # " + dots), "1 a t " + dots + "\n");
    EXPECT_EQ(read("a = \"\"\"" + dots + "\\\n" + dots + "\"\"\""), "1 a t " + dots + dots + "\n");
    EXPECT_EQ(read("\"" + dots + "\" = 1"), "1 " + dots + " i 1\n");
    std::string array = "a = [";
    for (int i = 0; i < 100; ++i) array += "1.5, ";
    EXPECT_EQ(read(array + "]").substr(0, 14), "! 1 'a' is an ");
}

TEST(ApToml, ReportsTheLineOfWhatIsNotToml)
{
    for (const char* const content : {"a", "a = ", "a = 1\nb = 'x", "[a\nb = 1", "a = 1\na = 2",
                                      "a = 1 b = 2", "a = \xff", "a = 99999999999999999999"})
    {
        const std::string error = read(content);
        EXPECT_EQ(error.substr(0, 2), "! ") << content;
        EXPECT_GT(error.size(), 8U) << content;
    }
    EXPECT_EQ(read("a = 1\nb = 'x").substr(0, 4), "! 2 ");
    EXPECT_EQ(read("a = 1\n\na = 2").substr(0, 4), "! 3 ");
}

} // namespace

#include "app/apCommandLine.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using Zu::ApCommandLine;
using Zu::ApOption;

using Texts = std::vector<std::string>;

const std::vector<ApOption> OPTIONS = {{'p', true, "port"},
                                       {'v', false, "verbose"},
                                       {'x', false, ""},
                                       {0, false, "help"},
                                       {0, true, "file"}};

std::string describe(const ApCommandLine& line)
{
    std::string text;
    for (const Zu::ApGiven& given : line.given())
        text +=
            "[" + given._spelling + ":" + std::to_string(given._option) + ":" + given._value + "]";
    for (const std::string& word : line.words()) text += " " + word;
    for (const std::string& error : line.errors()) text += "! " + error;
    return text;
}

TEST(ApCommandLine, TakesWordsApart)
{
    const struct
    {
        Texts _words;
        const char* _meaning;
        Texts _inLetters;
    } cases[] = {
        {{}, "", {}},
        {{"-p", "80"}, "[-p:0:80]", {"-p", "80"}},
        {{"-p80"}, "[-p:0:80]", {"-p", "80"}},
        {{"-p", "-v"}, "[-p:0:-v]", {"-p", "-v"}},
        {{"-p", "--"}, "[-p:0:--]", {"-p", "--"}},
        {{"-p", ""}, "[-p:0:]", {"-p", ""}},
        {{"--port", "80"}, "[--port:0:80]", {"-p", "80"}},
        {{"--port=80"}, "[--port:0:80]", {"-p", "80"}},
        {{"--port="}, "[--port:0:]", {"-p", ""}},
        {{"--port=a=b"}, "[--port:0:a=b]", {"-p", "a=b"}},
        {{"--port", "--verbose"}, "[--port:0:--verbose]", {"-p", "--verbose"}},
        {{"-v"}, "[-v:1:]", {"-v"}},
        {{"-vx"}, "[-v:1:][-x:2:]", {"-v", "-x"}},
        {{"-vxp80"}, "[-v:1:][-x:2:][-p:0:80]", {"-v", "-x", "-p", "80"}},
        {{"-vp", "80"}, "[-v:1:][-p:0:80]", {"-v", "-p", "80"}},
        {{"--verbose", "-v"}, "[--verbose:1:][-v:1:]", {"-v", "-v"}},
        {{"--help", "--file=a"}, "[--help:3:][--file:4:a]", {}},
        {{"a", "-v", "b"}, "[-v:1:] a b", {"-v", "--", "a", "b"}},
        {{"-", "a"}, " - a", {"--", "-", "a"}},
        {{"", "a"}, "  a", {"--", "", "a"}},
        {{"--", "-v", "--port"}, " -v --port", {"--", "-v", "--port"}},
        {{"a", "--", "--", "b"}, " a -- b", {"--", "a", "--", "b"}},
        {{"-v", "--"}, "[-v:1:]", {"-v"}},
        {{"-q"}, "! unknown option '-q'", {}},
        {{"-vq"}, "[-v:1:]! unknown option '-q' in '-vq'", {"-v"}},
        {{"-h"}, "! unknown option '-h'", {}},
        {{"-p"}, "! option '-p' needs a value", {}},
        {{"-vp"}, "[-v:1:]! option '-p' needs a value", {"-v"}},
        {{"--port"}, "! option '--port' needs a value", {}},
        {{"--verbose=1"}, "! option '--verbose' takes no value", {}},
        {{"--verbose="}, "! option '--verbose' takes no value", {}},
        {{"--prot=80"}, "! unknown option '--prot'; did you mean '--port'?", {}},
        {{"--Port=80"}, "! unknown option '--Port'; did you mean '--port'?", {}},
        {{"--nothing"}, "! unknown option '--nothing'", {}},
        {{"--=1"}, "! unknown option '--'", {}},
        {{"-\xC3\xA4"}, "! unknown option '-\xC3' in '-\xC3\xA4'", {}},
        {{"--nothing", "-q", "a"},
         " a! unknown option '--nothing'! unknown option '-q'",
         {"--", "a"}},
    };
    for (const auto& row : cases)
    {
        const ApCommandLine line(OPTIONS, row._words);
        EXPECT_EQ(describe(line), row._meaning);
        EXPECT_EQ(line.inLetters(), row._inLetters) << row._meaning;
    }
}

TEST(ApCommandLine, WithoutOptionsKnowsNone)
{
    const std::vector<ApOption> none;
    EXPECT_EQ(describe(ApCommandLine(none, {"a", "-v", "--verbose"})),
              " a! unknown option '-v'! unknown option '--verbose'");
}

} // namespace

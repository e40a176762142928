#include "zulog/zlJson.h"

#include "formatted.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>

namespace
{

using logTexts::BANNER;
using logTexts::ORIGIN;
using logTexts::tickLine;
using Zu::ZlFormatOptions;

// The records of a log as lines of JSON.
std::string formatted(const std::string& log, const ZlFormatOptions& options)
{
    return formattedBy(*Zu::zlMakeJsonFormat(options), log);
}

const std::string LOG = BANNER + ORIGIN + tickLine(7, "Warning: Orders \"a\", b=c\n\tC:\\\\x1b") +
                        tickLine(9, "Informational: Event overflow [17]") + "\x1b[2Jtorn\n";

TEST(ZlJson, HasWhatIsKnownOfEachRecord)
{
    EXPECT_EQ(
        formatted(LOG, utc()),
        R"({"time":"2026-11-22T10:00:00.000000Z","kind":"start","ticks":0,"host":"alpha",)"
        R"("process":4711,"text":"===== Message Logger Startup =====","file":"a b.log","line":1})"
        "\n"
        R"({"time":"2026-11-22T10:00:00.000007Z","kind":"event","ticks":7,"host":"alpha",)"
        R"("process":4711,"thread":2748,"level":"Warning","group":"Orders",)"
        R"("text":"\"a\", b=c\nC:\\\\x1b","file":"a b.log","line":6})"
        "\n"
        R"({"time":"2026-11-22T10:00:00.000009Z","kind":"overflow","ticks":9,"host":"alpha",)"
        R"("process":4711,"thread":2748,"level":"Informational","count":17,)"
        R"("text":"Event overflow [17]","file":"a b.log","line":8})"
        "\n"
        R"({"kind":"unreadable","text":"\u001b[2Jtorn","file":"a b.log","line":9})"
        "\n");
}

TEST(ZlJson, HasTheSuffixOfATextAsMembers)
{
    EXPECT_EQ(formatted(tickLine(7, R"(Error: Orders late [a.cpp:17] {r=1, user="A \""})"), utc()),
              R"({"kind":"event","ticks":7,"thread":2748,"level":"Error",)"
              R"("group":"Orders","text":"late [a.cpp:17] {r=1, user=\"A \\\"\"}",)"
              R"("source":"a.cpp:17","context":{"r":"1","user":"A \""},"file":"a b.log","line":1})"
              "\n");
}

TEST(ZlJson, UndoesEscapesIfThatIsAskedFor)
{
    ZlFormatOptions options = utc();
    options._isRaw = true;
    EXPECT_EQ(formatted(tickLine(7, "Error: \\xff \\x41"), options),
              "{\"kind\":\"event\",\"ticks\":7,\"thread\":2748,\"level\":\"Error\",\"text\":"
              "\"\xef\xbf\xbd A\",\"file\":\"a b.log\",\"line\":1}\n");
}

// U+009B begins commands as ESC [ does, U+202E turns what follows it round.
const std::string HOSTILE = "\x1b]0;\xc2\x9b"
                            "31m \x7f \xe2\x80\xae x\r\xff";

TEST(ZlJson, EscapesOnATerminalAndElsewhere)
{
    const std::string line = tickLine(7, "Error: A \\\\x7f " + HOSTILE);
    const std::string expected =
        R"({"kind":"event","ticks":7,"thread":2748,"level":"Error","group":"A",)"
        R"("text":"\\\\x7f \u001b]0;\u009b31m \u007f \u202e x\r)"
        "\xef\xbf\xbd"
        R"(","file":"a b.log","line":1})"
        "\n";
    ZlFormatOptions options = utc();
    EXPECT_EQ(formatted(line, options), expected);
    options._isTerminal = true;
    EXPECT_EQ(formatted(line, options), expected);
}

struct Row
{
    const char* _json;
    const char* _escaped;
};

// Each is a string of JSON; bytes behind U+001F may stand in one as they are.
constexpr Row STRINGS[] = {
    {R"("")", R"("")"},
    {R"("plain \\ \" \u0007")", R"("plain \\ \" \u0007")"},
    {"\"\x7f\"", R"("\u007f")"},
    {"\"a\x7f\x7f z\"", R"("a\u007f\u007f z")"},
    {"\"\xc2\x80\xc2\x9b\xc2\x9f\"", R"("\u0080\u009b\u009f")"},
    {"\"\xe2\x80\x8e\xe2\x80\x8f\"", R"("\u200e\u200f")"},
    {"\"\xe2\x80"
     "\xaa\xe2\x80"
     "\xae\"",
     R"("\u202a\u202e")"},
    {"\"\xe2\x81\xa6\xe2\x81\xa9\"", R"("\u2066\u2069")"},
    {"\"gr\xc3\xb6\xc3\x9f \xe2\x82\xac \xf0\x9f\x98\x80\"",
     "\"gr\xc3\xb6\xc3\x9f \xe2\x82\xac \xf0\x9f\x98\x80\""},
};

TEST(ZlJson, IsEscapedWithoutAnotherMeaning)
{
    for (const Row& row : STRINGS)
    {
        std::string out = "before ";
        Zu::zlAppendJson(out, row._json);
        ASSERT_EQ(out, "before " + std::string(row._escaped));
        EXPECT_EQ(nlohmann::json::parse(row._escaped), nlohmann::json::parse(row._json));
    }
}

} // namespace

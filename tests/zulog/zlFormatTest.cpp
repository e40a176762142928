#include "zulog/zlFormat.h"

#include "formatted.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using logTexts::BANNER;
using logTexts::ORIGIN;
using logTexts::tickLine;
using Zu::ZlFormatOptions;
using Times = ZlFormatOptions::Times;

// What a format makes of a log.
std::string formatted(const std::string& name, const std::string& log,
                      const ZlFormatOptions& options)
{
    return formattedBy(*Zu::zlMakeFormat(name, options), log);
}

const std::string LOG = BANNER + ORIGIN + tickLine(7, "Warning: Orders \"a\", b=c\n\tC:\\\\x1b") +
                        tickLine(9, "Informational: Event overflow [17]") + "\x1b[2Jtorn\n";

TEST(ZlFormat, ShowsText)
{
    EXPECT_EQ(formatted("text", LOG, utc()),
              "2026-11-22 10:00:00.000000Z    4711 -          -              "
              "===== Message Logger Startup =====\n"
              "2026-11-22 10:00:00.000007Z    4711 0x00000abc Warning        "
              "Orders \"a\", b=c\n\tC:\\\\x1b\n"
              "2026-11-22 10:00:00.000009Z    4711 0x00000abc Informational  "
              "Event overflow [17]\n"
              "\\x1b[2Jtorn\n");
    EXPECT_EQ(formatted("text", tickLine(7, "Error: x") + "plain\n", utc()),
              "-                                 - 0x00000abc Error          x\n"
              "plain\n");
}

TEST(ZlFormat, ShowsOtherTimes)
{
    ZlFormatOptions options;
    options._times = Times::Ticks;
    EXPECT_EQ(formatted("text", tickLine(7, "Error: x"), options),
              "0000000000 0000000007       - 0x00000abc Error          x\n");
    options._times = Times::Relative;
    EXPECT_EQ(formatted("text", ORIGIN + tickLine(7, "Error: x") + tickLine(1500007, "Error: y"),
                        options),
              "     +0.000000    4711 0x00000abc Error          x\n"
              "     +1.500000    4711 0x00000abc Error          y\n");
}

TEST(ZlFormat, TimesThatAreTooFarApartAreAsFarAsCanBeShown)
{
    ZlFormatOptions options;
    options._times = Times::Relative;
    const std::string early = "1718-11-22T22:35:52.123456Z 1 (0x00000abc) Error: x\n";
    const std::string late = "2026-11-22T22:10:52.123456Z 1 (0x00000abc) Error: y\n";
    EXPECT_EQ(formatted("text", early + late, options).substr(51, 30),
              "+9223372036.854775       1 0x0");
    EXPECT_EQ(formatted("text", late + early, options).substr(51, 30),
              "-9223372036.854775       1 0x0");
}

TEST(ZlFormat, ShowsHostsAndFiles)
{
    ZlFormatOptions options = utc();
    options._hasHosts = true;
    options._hasFiles = true;
    EXPECT_EQ(formatted("text", ORIGIN + tickLine(7, "Error: x"), options),
              "a b.log:2: 2026-11-22 10:00:00.000007Z alpha    4711 0x00000abc Error          x\n");
}

TEST(ZlFormat, ColoursLevelsAndMarks)
{
    ZlFormatOptions options = utc();
    options._isColoured = true;
    EXPECT_EQ(formatted("text", BANNER + ORIGIN + tickLine(7, "Error: x"), options),
              "2026-11-22 10:00:00.000000Z    4711 -          -              "
              "\x1b[2m===== Message Logger Startup =====\x1b[0m\n"
              "2026-11-22 10:00:00.000007Z    4711 0x00000abc \x1b[31mError         \x1b[0m x\n");
}

TEST(ZlFormat, UndoesEscapesButNotOnATerminal)
{
    ZlFormatOptions options = utc();
    options._isRaw = true;
    const std::string log = ORIGIN + tickLine(7, "Error: A \\x1b[2J\\u202e\\\\x41\n\ttwo");
    const std::string head = "2026-11-22 10:00:00.000007Z    4711 0x00000abc Error          A ";
    EXPECT_EQ(formatted("text", log, options), head + "\x1b[2J\xe2\x80\xae\\x41\ntwo\n");
    options._isTerminal = true;
    EXPECT_EQ(formatted("text", log, options), head + "\\x1b[2J\\u202e\\x41\ntwo\n");
}

TEST(ZlFormat, WritesTheLinesOfTheLogService)
{
    EXPECT_EQ(formatted("iso", LOG, utc()),
              "===== Message Logger Startup =====\n"
              "2026-11-22T10:00:00.000007Z 4711 (0x00000abc) Warning: "
              "Orders \"a\", b=c\n\tC:\\\\x1b\n"
              "2026-11-22T10:00:00.000009Z 4711 (0x00000abc) Informational: Event overflow [17]\n"
              "\x1b[2Jtorn\n");
    // What it writes it reads again.
    EXPECT_EQ(formatted("iso", formatted("iso", LOG, utc()), utc()), formatted("iso", LOG, utc()));
}

TEST(ZlFormat, WritesCsv)
{
    EXPECT_EQ(formatted("csv", LOG, utc()),
              "time,kind,host,process,thread,level,group,count,text,file,line\r\n"
              "2026-11-22T10:00:00.000000Z,start,alpha,4711,,,,,"
              "===== Message Logger Startup =====,a b.log,1\r\n"
              "2026-11-22T10:00:00.000007Z,event,alpha,4711,0x00000abc,Warning,Orders,,"
              "\"\"\"a\"\", b=c\nC:\\\\x1b\",a b.log,6\r\n"
              "2026-11-22T10:00:00.000009Z,overflow,alpha,4711,0x00000abc,Informational,,17,"
              "Event overflow [17],a b.log,8\r\n"
              ",unreadable,,,,,,,\x1b[2Jtorn,a b.log,9\r\n");
}

// U+009B begins commands as ESC [ does, U+202E turns what follows it round.
const std::string HOSTILE = "\x1b]0;\xc2\x9b"
                            "31m \x7f \xe2\x80\xae x\r\xff";

TEST(ZlFormat, EscapesCsvOnATerminal)
{
    ZlFormatOptions options = utc();
    const std::string line = tickLine(7, "Error: A " + HOSTILE + "\n\tnext");
    const std::string head = "time,kind,host,process,thread,level,group,count,text,file,line\r\n"
                             ",event,,,0x00000abc,Error,A,,\"";
    EXPECT_EQ(formatted("csv", line, options), head + HOSTILE + "\nnext\",a b.log,1\r\n");
    options._isTerminal = true;
    EXPECT_EQ(formatted("csv", line, options),
              head + "\\x1b]0;\\u009b31m \\x7f \\u202e x\\x0d\\xff\nnext\",a b.log,1\r\n");
}

TEST(ZlFormat, WritesLogfmt)
{
    EXPECT_EQ(formatted("logfmt", LOG, utc()),
              "time=2026-11-22T10:00:00.000000Z kind=start host=alpha process=4711 "
              "text=\"===== Message Logger Startup =====\" file=\"a b.log\" line=1\n"
              "time=2026-11-22T10:00:00.000007Z kind=event host=alpha process=4711 "
              "thread=0x00000abc level=Warning group=Orders "
              "text=\"\\\"a\\\", b=c\\nC:\\\\\\\\x1b\" file=\"a b.log\" line=6\n"
              "time=2026-11-22T10:00:00.000009Z kind=overflow host=alpha process=4711 "
              "thread=0x00000abc level=Informational count=17 text=\"Event overflow [17]\" "
              "file=\"a b.log\" line=8\n"
              "kind=unreadable text=\"\\\\x1b[2Jtorn\" file=\"a b.log\" line=9\n");
    EXPECT_EQ(formatted("logfmt", "\n", utc()), "kind=event text=\"\" file=\"a b.log\" line=1\n");
}

TEST(ZlFormat, HasNoOtherNames)
{
    EXPECT_EQ(Zu::zlMakeFormat("xml", {}), nullptr);
}

TEST(ZlFormat, MakesBytesPrintable)
{
    const struct
    {
        std::string _bytes;
        bool _hasLines;
        const char* _text;
    } rows[] = {
        {"plain", false, "plain"},
        {"a\tb\nc", true, "a\tb\nc"},
        {"a\nb\n", false, "a\\x0ab\\x0a"},
        {"\n", false, "\\x0a"},
        {std::string("\0\x07\x1b\x7f\r", 5), true, "\\x00\\x07\\x1b\\x7f\\x0d"},
        {"\\x1b C:\\\\temp", true, "\\x1b C:\\\\temp"},
        {"\xff\xc3(\xe2\x82", true, "\\xff\\xc3(\\xe2\\x82"},
        {"gr\xc3\xb6\xc3\x9f"
         "e",
         true,
         "gr\xc3\xb6\xc3\x9f"
         "e"},
        {"\xe2\x80\xae\xc2\x9b", true, "\\u202e\\u009b"},
        {"===== \tx", true, "===== \tx"},
    };
    for (const auto& row : rows)
    {
        std::string text;
        Zu::zlAppendPrintable(text, row._bytes, row._hasLines);
        EXPECT_EQ(text, row._text);
    }
}

} // namespace

#include "zulog/zlLine.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using Zu::ZlHead;
using Zu::zlParseHead;
namespace LgTypes = Zu::LgTypes;

const std::string TICKS = "0000000001 0000000005 (0x00000abc) Warning: ";
const std::string ISO = "2026-11-22T23:10:51.123456+01:00 4711 (0x00000abc) Warning: ";

TEST(ZlLine, ReadsTheHeadOfTheTickForm)
{
    ZlHead head;
    ASSERT_TRUE(zlParseHead(TICKS + "Orders text", head));
    EXPECT_EQ(head._form, ZlHead::Form::Ticks);
    EXPECT_EQ(head._ticks, 0x100000005U);
    EXPECT_EQ(head._thread, 0xabcU);
    EXPECT_EQ(head._level, LgTypes::Warning);
    EXPECT_EQ(head._length, TICKS.size());
    ASSERT_TRUE(zlParseHead("4294967295 4294967295 (0xffffffff) Error: ", head));
    EXPECT_EQ(head._ticks, 0xffffffffffffffffU);
    EXPECT_EQ(head._thread, 0xffffffffU);
}

TEST(ZlLine, ReadsTheHeadOfTheIsoForm)
{
    const struct
    {
        const char* _time;
        // From GNU date, with the nanoseconds behind it.
        std::int64_t _wall;
        int _zone;
    } rows[] = {
        {"2026-11-22T23:10:51.123456+01:00", 1795385451123456000, 60},
        {"2026-11-22T22:10:51.123456Z", 1795385451123456000, 0},
        {"2026-11-22T16:40:51.123456-05:30", 1795385451123456000, -330},
        {"1969-12-31T23:59:59.999999Z", -1000, 0},
        {"2000-02-29T00:00:00.000000Z", 951782400000000000, 0},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row._time);
        ZlHead head;
        ASSERT_TRUE(zlParseHead(std::string(row._time) + " 7 (0x00000001) Fatal Error: x", head));
        EXPECT_EQ(head._form, ZlHead::Form::Iso);
        EXPECT_EQ(head._wall, row._wall);
        EXPECT_EQ(head._zone, row._zone);
        EXPECT_EQ(head._process, 7U);
        EXPECT_EQ(head._level, LgTypes::FatalError);
    }
}

TEST(ZlLine, ReadsEachLevel)
{
    for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
    {
        const auto level = static_cast<LgTypes::Level>(i);
        const std::string name = LgTypes::levelToString(level);
        ZlHead head;
        ASSERT_TRUE(zlParseHead("0000000000 0000000000 (0x00000000) " + name + ": ", head)) << name;
        EXPECT_EQ(head._level, level);
    }
}

TEST(ZlLine, RefusesEachOtherByte)
{
    ZlHead head;
    for (const std::string& line : {TICKS, ISO})
        for (std::size_t i = 0; i < line.size(); ++i)
        {
            std::string changed = line;
            changed[i] = '~';
            EXPECT_FALSE(zlParseHead(changed, head)) << changed;
            EXPECT_FALSE(zlParseHead(line.substr(0, i), head)) << line.substr(0, i);
        }
    const char* const others[] = {
        "",
        "4294967296 0000000000 (0x00000000) Warning: ",
        "0000000000 4294967296 (0x00000000) Warning: ",
        "0000000000 0000000000 (0x00000ABC) Warning: ",
        "0000000000 0000000000 (0x00000abc) warning: ",
        "0000000000 0000000000 (0x00000abc) Warning:",
        "2026-11-31T22:10:51.123456Z 7 (0x00000001) Error: ",
        "2026-11-22T24:10:51.123456Z 7 (0x00000001) Error: ",
        "2026-11-22T22:10:51.12345Z 7 (0x00000001) Error: ",
        "2026-11-22T22:10:51.123456Z 07 (0x00000001) Error: ",
        "2026-11-22T22:10:51.123456Z 4294967296 (0x00000001) Error: ",
        "2026-11-22T22:10:51.123456+0100 7 (0x00000001) Error: ",
        "2026-11-22T22:10:51.123456+01:60 7 (0x00000001) Error: ",
    };
    for (const char* const line : others) EXPECT_FALSE(zlParseHead(line, head)) << line;
}

TEST(ZlLine, FindsTheLevelWithoutALookAtTheRest)
{
    for (const std::string& line : {TICKS, ISO})
        EXPECT_EQ(line.substr(Zu::zlFindLevel(line)), "Warning: ");
    EXPECT_EQ(Zu::zlFindLevel("no level"), std::string::npos);
    EXPECT_EQ(Zu::zlFindLevel(std::string(100, 'x') + ") Warning: "), std::string::npos);
}

TEST(ZlLine, TellsTheNameOfAGroupFromOtherWords)
{
    const struct
    {
        const char* _text;
        std::size_t _length;
    } rows[] = {
        {"Orders text", 6},
        {"Orders", 6},
        {"a::b_1 x", 6},
        {"Orders\n\tmore", 6},
        {"", 0},
        {" text", 0},
        {"1st text", 0},
        {"Orders, text", 0},
        {"a-b c", 0},
        {"Orders\t", 0},
    };
    for (const auto& row : rows) EXPECT_EQ(Zu::zlGroupLength(row._text), row._length) << row._text;
}

TEST(ZlLine, ReadsTheCountsOfLosses)
{
    std::uint64_t count = 0;
    EXPECT_TRUE(Zu::zlParseOverflow("Event overflow [17]", count));
    EXPECT_EQ(count, 17U);
    for (const char* const text :
         {"Event overflow [17", "Event overflow []", "Event overflow [17] ", "Event overflow",
          " Event overflow [17]", "Event overflow [-1]", "Event overflow [99999999999999999999]"})
        EXPECT_FALSE(Zu::zlParseOverflow(text, count)) << text;

    std::int64_t since = 0;
    const std::string line = "===== Not Written: 17 events since 2026-11-22T22:10:51.123456Z =====";
    EXPECT_TRUE(Zu::zlParseNotWritten(line, count, since));
    EXPECT_EQ(count, 17U);
    EXPECT_EQ(since, 1795385451123456000);
    for (std::size_t i = 0; i < line.size(); ++i)
        EXPECT_FALSE(Zu::zlParseNotWritten(line.substr(0, i), count, since)) << i;
    EXPECT_FALSE(Zu::zlParseNotWritten(line + " ", count, since));
}

} // namespace

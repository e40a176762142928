#include "app/lgServiceLine.h"

#include "app/lgServiceThreads.h"
#include "base/exInternalError.h"
#include "base/lgLog.h"
#include "base/lgQueue.h"
#include "base/lgReader.h"
#include "support/commaLocale.h"
#include "support/platform.h"
#include "support/runningLogger.h"
#include "support/variableGuard.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

using Zu::LgLineEvent;
using Zu::LgLineForm;
using Zu::LgLineOrigin;
using Zu::LgLineWriter;
namespace LgTypes = Zu::LgTypes;
using namespace std::string_literals;

constexpr std::uint64_t GIGA = 1000000000;
constexpr std::int64_t SECOND = 1000000000;
constexpr std::int64_t EARLIEST = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t LATEST = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t YEAR = 31536000;

// 2026-11-22T22:10:51.123456789Z.
constexpr std::int64_t EVENING = 1795385451123456789;

std::string escaped(std::string_view text)
{
    std::string out;
    Zu::lgAppendEscaped(out, text);
    return out;
}

// An origin whose counter was at 0 at this time, in ticks of a nanosecond.
LgLineOrigin originAt(std::int64_t wall)
{
    LgLineOrigin origin;
    origin._wall = wall;
    origin._ticksPerSecond = GIGA;
    origin._process = 4711;
    return origin;
}

std::string lineOf(LgLineForm form, const LgLineOrigin& origin, const LgLineEvent& event,
                   bool isRaw = false)
{
    LgLineWriter writer(form, isRaw);
    writer.setOrigin(origin);
    std::string line;
    writer.append(line, event);
    return line;
}

// ISO 8601 as it stands at the beginning of a line.
std::string timeOf(const std::string& line)
{
    return line.substr(0, line.find(' '));
}

TEST(LgLineWriter, TicksCountFromTheStartInTwoWords)
{
    LgLineOrigin origin = originAt(EVENING);
    origin._start = 1000;
    const struct
    {
        LgLineEvent _event;
        const char* _line;
    } cases[] = {
        {{1000, 0, LgTypes::InternalError, ""},
         "0000000000 0000000000 (0x00000000) Internal Error: \n"},
        {{4294968301, 0xabc, LgTypes::FatalError, "text"},
         "0000000001 0000000005 (0x00000abc) Fatal Error: text\n"},
        {{4294968295, 0xffffffff, LgTypes::Error, "a b"},
         "0000000000 4294967295 (0xffffffff) Error: a b\n"},
        {{5299989643264001000, 0x89abcdef, LgTypes::Warning, "x"},
         "1234000000 0000000000 (0x89abcdef) Warning: x\n"},
        // Before the start it wraps around.
        {{999, 1, LgTypes::Informational, "early"},
         "4294967295 4294967295 (0x00000001) Informational: early\n"},
        {{1001, 16, LgTypes::Tracing, "t"}, "0000000000 0000000001 (0x00000010) Tracing: t\n"},
        {{1010, 17, LgTypes::Profiling, "p"}, "0000000000 0000000010 (0x00000011) Profiling: p\n"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(lineOf(LgLineForm::Ticks, origin, row._event), row._line);
}

TEST(LgLineWriter, TicksAreTheBytesThatTheLibrarysReaderWrites)
{
    const support::RunningLogger logger;
    Zu::LgServiceThreads& threads = Zu::LgServiceThreads::instance();
    threads.start();
    LgLineOrigin origin;
    origin._start = Zu::LgLog::getStart();
    std::vector<std::string> expected;
    Zu::LgQueue& queue = *Zu::LgServiceThreads::queueOfThread();
    for (int level = 0; level < LgTypes::Tracing; ++level)
    {
        const std::string text = "text " + std::to_string(level) + " C:\\temp \xc3\xa4\t=====";
        ASSERT_TRUE(queue.reserveEntry(static_cast<LgTypes::Level>(level)));
        queue.getStream() << text << Zu::ends;
        queue.addEntry();
        const Zu::LgQueue::Entry& entry = queue.readEntry();
        const LgLineEvent event = {entry.getTimeStamp(), queue.getThreadId(), entry.getLevel(),
                                   text};
        expected.push_back(lineOf(LgLineForm::Ticks, origin, event));
        expected.back().pop_back();
        ASSERT_TRUE(Zu::LgReader().flushEarliest());
    }
    threads.stop();
    EXPECT_EQ(logger.linesOf("events.log"), expected);
}

TEST(LgLineWriter, PlainLinesAreTheirTexts)
{
    const LgLineOrigin origin = originAt(EVENING);
    for (const char* const text : {"", "text", "0000000000 0000000001 (0x00000010) Tracing: t"})
        EXPECT_EQ(lineOf(LgLineForm::Plain, origin, {7, 8, LgTypes::Error, text}), text + "\n"s);
}

TEST(LgLineWriter, UtcLinesBeginWithTimeAndProcess)
{
    LgLineOrigin origin = originAt(EVENING);
    const struct
    {
        std::uint64_t _time;
        const char* _line;
    } cases[] = {
        {0, "2026-11-22T22:10:51.123456Z 4711 (0x00000abc) Warning: text\n"},
        // The microseconds are truncated.
        {210, "2026-11-22T22:10:51.123456Z 4711 (0x00000abc) Warning: text\n"},
        {211, "2026-11-22T22:10:51.123457Z 4711 (0x00000abc) Warning: text\n"},
        {876543210, "2026-11-22T22:10:51.999999Z 4711 (0x00000abc) Warning: text\n"},
        {876543211, "2026-11-22T22:10:52.000000Z 4711 (0x00000abc) Warning: text\n"},
        {0 - std::uint64_t{123456789}, "2026-11-22T22:10:51.000000Z 4711 (0x00000abc) Warning: "
                                       "text\n"},
        {0 - std::uint64_t{123456790}, "2026-11-22T22:10:50.999999Z 4711 (0x00000abc) Warning: "
                                       "text\n"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(lineOf(LgLineForm::Utc, origin, {row._time, 0xabc, LgTypes::Warning, "text"}),
                  row._line);
    origin._process = 4294967295;
    EXPECT_EQ(lineOf(LgLineForm::Utc, origin, {0, 0xfedcba98, LgTypes::InternalError, "x"}),
              "2026-11-22T22:10:51.123456Z 4294967295 (0xfedcba98) Internal Error: x\n");
    origin._process = 0;
    EXPECT_EQ(lineOf(LgLineForm::Utc, origin, {0, 0, LgTypes::Profiling, "x"}),
              "2026-11-22T22:10:51.123456Z 0 (0x00000000) Profiling: x\n");
}

// One writer, whose cached second has to follow in either direction.
TEST(LgLineWriter, LinesMayComeInAnyOrder)
{
    LgLineWriter writer(LgLineForm::Utc, false);
    writer.setOrigin(originAt(0));
    const std::pair<std::int64_t, const char*> cases[] = {
        {0, "1970-01-01T00:00:00.000000Z"},
        {-1, "1969-12-31T23:59:59.999999Z"},
        {-SECOND, "1969-12-31T23:59:59.000000Z"},
        {-SECOND - 1, "1969-12-31T23:59:58.999999Z"},
        {SECOND - 1, "1970-01-01T00:00:00.999999Z"},
        {SECOND, "1970-01-01T00:00:01.000000Z"},
        {951825601 * SECOND, "2000-02-29T12:00:01.000000Z"},
        {4107542399 * SECOND, "2100-02-28T23:59:59.000000Z"},
        {4107542400 * SECOND, "2100-03-01T00:00:00.000000Z"},
        {LATEST, "2262-04-11T23:47:16.854775Z"},
        {EARLIEST, "1677-09-21T00:12:43.145224Z"},
        {60 * SECOND, "1970-01-01T00:01:00.000000Z"},
    };
    for (const auto& [time, text] : cases)
    {
        std::string line;
        writer.append(line, {static_cast<std::uint64_t>(time), 0, LgTypes::Error, ""});
        EXPECT_EQ(timeOf(line), text);
    }
}

TEST(LgLineWriter, ANewOriginAppliesAtOnce)
{
    LgLineWriter writer(LgLineForm::Utc, false);
    LgLineOrigin origin = originAt(EVENING);
    std::string lines;
    // Without an origin times are not known.
    writer.append(lines, {5, 1, LgTypes::Error, "a"});
    writer.setOrigin(origin);
    writer.append(lines, {0, 1, LgTypes::Error, "b"});
    origin._process = 12;
    writer.setOrigin(origin);
    writer.append(lines, {0, 1, LgTypes::Error, "c"});
    origin._wall -= 3600 * SECOND;
    writer.setOrigin(origin);
    writer.append(lines, {0, 1, LgTypes::Error, "d"});
    EXPECT_EQ(lines, "1970-01-01T00:00:00.000000Z 0 (0x00000001) Error: a\n"
                     "2026-11-22T22:10:51.123456Z 4711 (0x00000001) Error: b\n"
                     "2026-11-22T22:10:51.123456Z 12 (0x00000001) Error: c\n"
                     "2026-11-22T21:10:51.123456Z 12 (0x00000001) Error: d\n");
}

TEST(LgLineWriter, EscapesTextsUnlessTheyAreRaw)
{
    const std::string text = "=====\x1b[0m\nforged \xff\\x1b\r";
    const std::pair<LgLineForm, std::string> prefixes[] = {
        {LgLineForm::Ticks, "0000000000 0000000009 (0x00000002) Warning: "},
        {LgLineForm::Plain, ""},
        {LgLineForm::Utc, "1970-01-01T00:00:00.000000Z 4711 (0x00000002) Warning: "},
    };
    for (const auto& [form, prefix] : prefixes)
    {
        const LgLineEvent event = {9, 2, LgTypes::Warning, text};
        EXPECT_EQ(lineOf(form, originAt(0), event, true), prefix + text + "\n");
        EXPECT_EQ(lineOf(form, originAt(0), event),
                  prefix + "\\x3d====\\x1b[0m\n\tforged \\xff\\\\x1b\\x0d\n");
    }
}

TEST(LgLineWriter, RefusesWhatIsNoLevelAndAppendsNothing)
{
    const LgLineEvent event = {0, 1, LgTypes::NUM_LEVELS, "text"};
    for (const LgLineForm form : {LgLineForm::Ticks, LgLineForm::Local, LgLineForm::Utc})
    {
        LgLineWriter writer(form, false);
        std::string out = "before";
        EXPECT_THROW(writer.append(out, event), Zu::ExInternalError);
        EXPECT_EQ(out, "before");
    }
    EXPECT_EQ(lineOf(LgLineForm::Plain, {}, event), "text\n");
}

TEST(LgLineWriter, NoLocaleChangesALine)
{
    LgLineOrigin origin = originAt(EVENING);
    origin._process = 1234567;
    const std::string written = "===== Clock Origin: 0000000000 0000000000 is "
                                "2026-11-22T22:10:51.123456789Z, 1000000000 ticks per second, "
                                "process 1234567 started 1970-01-01T00:00:00.000000000Z, "
                                "host -, boot - =====\n";
    const support::CommaStreams streams;
    const support::CommaNumerals numerals;
    const LgLineEvent event = {0, 0xabcdef, LgTypes::Warning, "a\xff"};
    EXPECT_EQ(lineOf(LgLineForm::Utc, origin, event),
              "2026-11-22T22:10:51.123456Z 1234567 (0x00abcdef) Warning: a\\xff\n");
    EXPECT_EQ(lineOf(LgLineForm::Ticks, origin, event),
              "0000000000 0000000000 (0x00abcdef) Warning: a\\xff\n");
    EXPECT_EQ(Zu::lgOriginLine(origin), written);
    LgLineOrigin parsed;
    ASSERT_TRUE(Zu::lgParseOriginLine(written, parsed));
    EXPECT_EQ(parsed._ticksPerSecond, GIGA);
}

// Puts the process into a place of the world.
class LgLineWriterLocalTest : public testing::Test
{
protected:
    // False where the environment does not affect local time; then the test has to end.
    bool moveTo(const char* rules)
    {
        _guard.set(rules);
        return !support::onWindows;
    }

    static std::string localOf(LgLineWriter& writer, std::int64_t second)
    {
        std::string line;
        const auto time = static_cast<std::uint64_t>(second * SECOND);
        writer.append(line, {time, 1, LgTypes::Error, ""});
        return timeOf(line);
    }

    support::VariableGuard _guard = support::VariableGuard("TZ");
};

constexpr const char* CENTRAL_EUROPE = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr const char* SKIP_REASON =
    "here local time is the present day's offset from UTC, which the environment does not set";

TEST_F(LgLineWriterLocalTest, LocalLinesHaveTheZonesOffset)
{
    if (!moveTo(CENTRAL_EUROPE)) GTEST_SKIP() << SKIP_REASON;
    EXPECT_EQ(lineOf(LgLineForm::Local, originAt(EVENING), {0, 0xabc, LgTypes::Warning, "text"}),
              "2026-11-22T23:10:51.123456+01:00 4711 (0x00000abc) Warning: text\n");
}

// One writer throughout, as for the lines of a day on which clocks change.
TEST_F(LgLineWriterLocalTest, TheOffsetIsThatOfTheInstant)
{
    if (!moveTo(CENTRAL_EUROPE)) GTEST_SKIP() << SKIP_REASON;
    LgLineWriter writer(LgLineForm::Local, false);
    writer.setOrigin(originAt(0));
    const std::pair<std::int64_t, const char*> cases[] = {
        {1616893199, "2021-03-28T01:59:59.000000+01:00"},
        {1616893200, "2021-03-28T03:00:00.000000+02:00"},
        {1635641999, "2021-10-31T02:59:59.000000+02:00"},
        {1635642000, "2021-10-31T02:00:00.000000+01:00"},
        {1635641999, "2021-10-31T02:59:59.000000+02:00"},
        {1626343200, "2021-07-15T12:00:00.000000+02:00"},
        {1795385451, "2026-11-22T23:10:51.000000+01:00"},
    };
    for (const auto& [second, text] : cases) EXPECT_EQ(localOf(writer, second), text);
}

// The minute after the hour is the finest at which clocks change.
TEST_F(LgLineWriterLocalTest, TheOffsetIsThatOfTheMinute)
{
    if (!moveTo("NST3:30NDT,M3.2.0/0:01,M11.1.0/0:01")) GTEST_SKIP() << SKIP_REASON;
    LgLineWriter writer(LgLineForm::Local, false);
    writer.setOrigin(originAt(0));
    EXPECT_EQ(localOf(writer, 1615692600), "2021-03-14T00:00:00.000000-03:30");
    EXPECT_EQ(localOf(writer, 1615692659), "2021-03-14T00:00:59.000000-03:30");
    EXPECT_EQ(localOf(writer, 1615692660), "2021-03-14T01:01:00.000000-02:30");
}

TEST_F(LgLineWriterLocalTest, PlacesOfOtherRules)
{
    const struct
    {
        const char* _rules;
        std::int64_t _second;
        const char* _text;
    } cases[] = {
        {"UTC0", 1626343200, "2021-07-15T10:00:00.000000+00:00"},
        {"<+0530>-5:30", 1626399000, "2021-07-16T07:00:00.000000+05:30"},
        {"EST5EDT,M3.2.0,M11.1.0", 1610676000, "2021-01-14T21:00:00.000000-05:00"},
        {"<-0330>3:30", 1610676000, "2021-01-14T22:30:00.000000-03:30"},
        {"<-0030>0:30", 1610676000, "2021-01-15T01:30:00.000000-00:30"},
        {"<+1245>-12:45", 1610676000, "2021-01-15T14:45:00.000000+12:45"},
        // Seconds of an offset are left out of the time as well.
        {"<+0019>-0:19:32", 1610676000, "2021-01-15T02:19:00.000000+00:19"},
        {"<-0019>0:19:32", 1610676000, "2021-01-15T01:41:00.000000-00:19"},
        {"<+0530>-5:30", -1, "1970-01-01T05:29:59.000000+05:30"},
    };
    for (const auto& row : cases)
    {
        if (!moveTo(row._rules)) GTEST_SKIP() << SKIP_REASON;
        LgLineWriter writer(LgLineForm::Local, false);
        writer.setOrigin(originAt(0));
        EXPECT_EQ(localOf(writer, row._second), row._text) << row._rules;
    }
}

// The local time less its offset is UTC, also where the environment does not set the zone.
TEST_F(LgLineWriterLocalTest, TimeAndOffsetDenoteTheInstant)
{
    static_cast<void>(moveTo(CENTRAL_EUROPE));
    std::mt19937_64 random(18);
    LgLineWriter local(LgLineForm::Local, false);
    LgLineWriter utc(LgLineForm::Utc, false);
    for (int i = 0; i < 500; ++i)
    {
        const auto second = static_cast<std::int64_t>(random() % 4000000000);
        local.setOrigin(originAt(0));
        const std::string text = localOf(local, second);
        ASSERT_EQ(text.size(), 32U) << text;
        const int minutes = std::stoi(text.substr(27, 2)) * 60 + std::stoi(text.substr(30, 2));
        const std::int64_t sign = text[26] == '-' ? -1 : 1;
        // The same fields read as UTC.
        utc.setOrigin(originAt(sign * minutes * 60 * SECOND));
        EXPECT_EQ(localOf(utc, second), text.substr(0, 26) + "Z") << second;
    }
}

TEST(LgWallOf, IsExactAndRoundedDown)
{
    // Computed with fractions of any length.
    const struct
    {
        std::uint64_t _origin;
        std::uint64_t _tick;
        std::uint64_t _rate;
        std::int64_t _wall;
    } cases[] = {
        {0, 0, GIGA, 1795385451123456789},
        {5, 4, GIGA, 1795385451123456788},
        {0, 1, 3, 1795385451456790122},
        {0, 2, 3, 1795385451790123455},
        {1, 0, 3, 1795385450790123455},
        {10, 0, 3, 1795385447790123455},
        // A year and more.
        {0, YEAR * 2999999999, 2999999999, 1826921451123456789},
        {0, YEAR * 2999999999 + 12345, 2999999999, 1826921451123460904},
        {YEAR * 2999999999 + 12345, 0, 2999999999, 1763849451123452673},
        {0, YEAR * 3579545, 3579545, 1826921451123456789},
        {0, YEAR * 3579545 + 1, 3579545, 1826921451123457068},
        {std::uint64_t{1} << 40, (std::uint64_t{1} << 40) + (std::uint64_t{1} << 45) + 7,
         2494140123, 1795399557937971491},
        // The counter wraps around.
        {~std::uint64_t{0}, 1, GIGA, 1795385451123456791},
        // Rates at which a second's ticks in nanoseconds need more than 64 bits, and just not.
        {0, 18446744073, 18446744074, 1795385452123456788},
        {0, 18446744072, 18446744073, 1795385452123456788},
        {0, 12345678901234567, 98765432109876543, 1795385451248456787},
        {98765432109876543, 1, 98765432109876543, 1795385450123456789},
        {0, 999999999999999999, 1000000000000000000, 1795385452123456788},
        {0, 1, 1000000000000000000, 1795385451123456789},
        {1, 0, 1000000000000000000, 1795385451123456788},
    };
    for (const auto& row : cases)
    {
        LgLineOrigin origin = originAt(EVENING);
        origin._tick = row._origin;
        origin._ticksPerSecond = row._rate;
        EXPECT_EQ(Zu::lgWallOf(origin, row._tick), row._wall)
            << row._origin << " " << row._tick << " " << row._rate;
    }
}

TEST(LgWallOf, ATimeThatDoesNotFitIsTheNearestOne)
{
    const auto wallOf = [](std::int64_t wall, std::uint64_t rate, std::int64_t ticks)
    {
        LgLineOrigin origin = originAt(wall);
        origin._tick = 77;
        origin._ticksPerSecond = rate;
        return Zu::lgWallOf(origin, 77 + static_cast<std::uint64_t>(ticks));
    };
    EXPECT_EQ(wallOf(LATEST - 5, GIGA, 5), LATEST);
    EXPECT_EQ(wallOf(LATEST - 5, GIGA, 6), LATEST);
    EXPECT_EQ(wallOf(LATEST - 5, GIGA, 2 * SECOND), LATEST);
    EXPECT_EQ(wallOf(EARLIEST + 5, GIGA, -5), EARLIEST);
    EXPECT_EQ(wallOf(EARLIEST + 5, GIGA, -6), EARLIEST);
    EXPECT_EQ(wallOf(EARLIEST + 5, GIGA, -2 * SECOND), EARLIEST);
    EXPECT_EQ(wallOf(EARLIEST, GIGA, LATEST), -1);
    EXPECT_EQ(wallOf(0, 1, LATEST), LATEST);
    EXPECT_EQ(wallOf(0, 1, EARLIEST), EARLIEST);
    EXPECT_EQ(wallOf(0, 1, 9223372036), 9223372036 * SECOND);
    EXPECT_EQ(wallOf(0, 1, 9223372037), LATEST);
}

TEST(LgWallOf, WithoutAKnownRateItIsTheOrigins)
{
    for (const std::uint64_t rate : {std::uint64_t{0}, GIGA * GIGA + 1, ~std::uint64_t{0}})
    {
        LgLineOrigin origin = originAt(EVENING);
        origin._ticksPerSecond = rate;
        EXPECT_EQ(Zu::lgWallOf(origin, 123456789), EVENING) << rate;
    }
}

TEST(LgIsoTime, Table)
{
    const struct
    {
        std::int64_t _wall;
        int _decimals;
        const char* _text;
    } cases[] = {
        {EVENING, 9, "2026-11-22T22:10:51.123456789Z"},
        {EVENING, 6, "2026-11-22T22:10:51.123456Z"},
        {EVENING, 3, "2026-11-22T22:10:51.123Z"},
        {EVENING, 0, "2026-11-22T22:10:51Z"},
        {0, 9, "1970-01-01T00:00:00.000000000Z"},
        {1, 9, "1970-01-01T00:00:00.000000001Z"},
        {-1, 9, "1969-12-31T23:59:59.999999999Z"},
        {-1, 0, "1969-12-31T23:59:59Z"},
        {946684799999999999, 6, "1999-12-31T23:59:59.999999Z"},
        {-2203891200 * SECOND, 0, "1900-03-01T00:00:00Z"},
        {LATEST, 9, "2262-04-11T23:47:16.854775807Z"},
        {EARLIEST, 9, "1677-09-21T00:12:43.145224192Z"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Zu::lgIsoTime(row._wall, row._decimals), row._text) << row._wall;
}

TEST(LgAppendEscaped, Table)
{
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {"plain text, with = and ~", "plain text, with = and ~"},
        // Line feeds and TABs.
        {"a\nb", "a\n\tb"},
        {"a\n", "a\n\t"},
        {"\n", "\n\t"},
        {"\n\n\n", "\n\t\n\t\n\t"},
        {"a\n\tb", "a\n\t\tb"},
        {"a\tb\t", "a\tb\t"},
        {"\t", "\\x09"},
        {"\ta\tb", "\\x09a\tb"},
        {"\t\t", "\\x09\t"},
        // Controls.
        {"a\rb", "a\\x0db"},
        {"a\r\nb", "a\\x0d\n\tb"},
        {"\x1b[31m", "\\x1b[31m"},
        {"\0"s, "\\x00"},
        {"a\0b"s, "a\\x00b"},
        {"\x01\x1f \x7e\x7f", "\\x01\\x1f ~\\x7f"},
        // Backslashes.
        {"C:\\temp", "C:\\temp"},
        {"C:\\users", "C:\\\\users"},
        {"\\\\server\\share", "\\\\\\server\\share"},
        {"\\x1b", "\\\\x1b"},
        {"\\u202e", "\\\\u202e"},
        {"\\X \\U \\n", "\\X \\U \\n"},
        {"\\", "\\"},
        {"\\\\", "\\\\\\"},
        {"\\\\\\", "\\\\\\\\\\"},
        {"\\\\x", "\\\\\\\\x"},
        {"\\\n", "\\\n\t"},
        {"\\\t", "\\\t"},
        {"\\\x1b", "\\\\\\x1b"},
        {"\\\xff", "\\\\\\xff"},
        {"\\\xc2\x85", "\\\\\\u0085"},
        {"\\\xc3\xa4", "\\\xc3\xa4"},
        // What would pass for a banner.
        {"=====", "\\x3d===="},
        {"===== Clock Origin: ", "\\x3d==== Clock Origin: "},
        {"======", "\\x3d====="},
        {"====", "===="},
        {"==== =", "==== ="},
        {" =====", " ====="},
        {"a\n=====", "a\n\t====="},
        // Valid UTF-8 that stays.
        {"\xc3\xa4\xc3\xb6\xe2\x82\xac\xf0\x9f\x98\x80", "\xc3\xa4\xc3\xb6\xe2\x82\xac"
                                                         "\xf0\x9f\x98\x80"},
        {"\xc2\xa0\xdf\xbf\xe0\xa0\x80\xef\xbf\xbf\xf0\x90\x80\x80\xf4\x8f\xbf\xbf",
         "\xc2\xa0\xdf\xbf\xe0\xa0\x80\xef\xbf\xbf\xf0\x90\x80\x80\xf4\x8f\xbf\xbf"},
        {"\xed\x9f\xbf\xee\x80\x80", "\xed\x9f\xbf\xee\x80\x80"},
        // Invalid bytes, and where text begins again after them.
        {"\x80", "\\x80"},
        {"\xff\xfe", "\\xff\\xfe"},
        {"\xc3", "\\xc3"},
        {"\xc3(", "\\xc3("},
        {"\xc3\n", "\\xc3\n\t"},
        {"\xe2\x82", "\\xe2\\x82"},
        {"\xe2\x82\xc3\xa4", "\\xe2\\x82\xc3\xa4"},
        {"\xf0\x9f\x98", "\\xf0\\x9f\\x98"},
        {"\xc0\x80", "\\xc0\\x80"},
        {"\xc1\xbf", "\\xc1\\xbf"},
        {"\xe0\x80\x8a", "\\xe0\\x80\\x8a"},
        {"\xe0\x9f\xbf", "\\xe0\\x9f\\xbf"},
        {"\xf0\x8f\xbf\xbf", "\\xf0\\x8f\\xbf\\xbf"},
        {"\xed\xa0\x80", "\\xed\\xa0\\x80"},
        {"\xed\xbf\xbf", "\\xed\\xbf\\xbf"},
        {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},
        {"\xf5\x80\x80\x80", "\\xf5\\x80\\x80\\x80"},
        {"\xf8\x88\x80\x80\x80", "\\xf8\\x88\\x80\\x80\\x80"},
    };
    for (const auto& [text, line] : cases)
    {
        EXPECT_EQ(escaped(text), line);
        EXPECT_EQ(Zu::lgUnescaped(line), text);
    }
}

std::string utf8Of(std::uint32_t code)
{
    const auto lead = [code](int shift, int mark)
    { return std::string(1, static_cast<char>(mark | static_cast<int>(code >> shift))); };
    const auto trail = [code](int shift)
    { return std::string(1, static_cast<char>(0x80 | static_cast<int>(code >> shift & 63))); };
    if (code < 0x80) return lead(0, 0);
    if (code < 0x800) return lead(6, 0xc0) + trail(0);
    if (code < 0x10000) return lead(12, 0xe0) + trail(6) + trail(0);
    return lead(18, 0xf0) + trail(12) + trail(6) + trail(0);
}

std::string hexText(std::uint32_t value, int digits)
{
    std::string text;
    for (int i = digits - 1; i >= 0; --i) text += "0123456789abcdef"[value >> (4 * i) & 15];
    return text;
}

// The code points from U+0080 on that do something to the text around them.
bool isHidden(std::uint32_t code)
{
    const std::pair<std::uint32_t, std::uint32_t> ranges[] = {
        {0x80, 0x9f}, {0x61c, 0x61c}, {0x200e, 0x200f}, {0x2028, 0x202e}, {0x2066, 0x2069},
    };
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [code](const auto& range)
                       { return range.first <= code && code <= range.second; });
}

TEST(LgAppendEscaped, EveryCodePointToU2FFFAndSomeBeyond)
{
    constexpr std::uint32_t STEP = 251;
    for (std::uint32_t code = 0x80; code <= 0x10ffff; code += code < 0x3000 ? 1 : STEP)
    {
        if (code >= 0xd800 && code <= 0xdfff) continue;
        const std::string text = utf8Of(code);
        const std::string line = isHidden(code) ? "\\u" + hexText(code, 4) : text;
        ASSERT_EQ(escaped(text), line) << code;
        ASSERT_EQ(Zu::lgUnescaped(line), text) << code;
    }
}

// The length of the well-formed sequence that begins at `at`, or 0: the table of the Unicode
// Standard, chapter 3.
std::size_t wellFormedAt(std::string_view text, std::size_t at)
{
    struct Range
    {
        int _lowest;
        int _highest;
    };
    static const std::vector<std::vector<Range>> table = {
        {{0xc2, 0xdf}, {0x80, 0xbf}},
        {{0xe0, 0xe0}, {0xa0, 0xbf}, {0x80, 0xbf}},
        {{0xe1, 0xec}, {0x80, 0xbf}, {0x80, 0xbf}},
        {{0xed, 0xed}, {0x80, 0x9f}, {0x80, 0xbf}},
        {{0xee, 0xef}, {0x80, 0xbf}, {0x80, 0xbf}},
        {{0xf0, 0xf0}, {0x90, 0xbf}, {0x80, 0xbf}, {0x80, 0xbf}},
        {{0xf1, 0xf3}, {0x80, 0xbf}, {0x80, 0xbf}, {0x80, 0xbf}},
        {{0xf4, 0xf4}, {0x80, 0x8f}, {0x80, 0xbf}, {0x80, 0xbf}},
    };
    if (static_cast<unsigned char>(text[at]) < 0x80) return 1;
    for (const std::vector<Range>& row : table)
    {
        bool isMatch = at + row.size() <= text.size();
        for (std::size_t i = 0; isMatch && i < row.size(); ++i)
        {
            const int byte = static_cast<unsigned char>(text[at + i]);
            isMatch = row[i]._lowest <= byte && byte <= row[i]._highest;
        }
        if (isMatch) return row.size();
    }
    return 0;
}

std::map<std::string, std::string> makeHiddenEscapes()
{
    std::map<std::string, std::string> escapes;
    for (std::uint32_t code = 0x80; code < 0x2070; ++code)
        if (isHidden(code)) escapes[utf8Of(code)] = "\\u" + hexText(code, 4);
    return escapes;
}

// The escapes in the slowest way: piece by piece, then joined from the end.
std::string escapedSlowly(const std::string& text)
{
    static const std::map<std::string, std::string> hidden = makeHiddenEscapes();
    std::vector<std::string> pieces;
    for (std::size_t at = 0; at < text.size();)
    {
        const std::size_t length = wellFormedAt(text, at);
        const std::string piece = text.substr(at, std::max<std::size_t>(length, 1));
        const auto byte = static_cast<unsigned char>(piece[0]);
        const bool isControl = (byte < 0x20 && byte != '\n' && byte != '\t') || byte == 0x7f;
        const bool isFirst =
            at == 0 && (byte == '\t' || std::string_view(text).substr(0, 5) == "=====");
        std::string line = piece;
        if (length == 0 || isControl || isFirst)
            line = "\\x" + hexText(byte, 2);
        else if (byte == '\n')
            line = "\n\t";
        else if (const auto escape = hidden.find(piece); escape != hidden.end())
            line = escape->second;
        pieces.push_back(line);
        at += piece.size();
    }
    std::string out;
    for (auto piece = pieces.rbegin(); piece != pieces.rend(); ++piece)
    {
        const char next = out.empty() ? ' ' : out[0];
        if (*piece == "\\" && (next == '\\' || next == 'x' || next == 'u')) out.insert(0, "\\");
        out.insert(0, *piece);
    }
    return out;
}

TEST(LgAppendEscaped, EveryShortStringOfTheBytesThatMatter)
{
    constexpr std::string_view ALPHABET = "\\xu1\n\t\x1b\xc2\x85"
                                          "a";
    constexpr std::size_t MAX_LENGTH = 5;
    std::vector<std::string> texts = {""};
    for (std::size_t i = 0; i < texts.size(); ++i)
    {
        const std::string text = texts[i];
        const std::string line = escaped(text);
        ASSERT_EQ(line, escapedSlowly(text)) << testing::PrintToString(text);
        ASSERT_EQ(Zu::lgUnescaped(line), text) << testing::PrintToString(line);
        if (text.size() == MAX_LENGTH) continue;
        for (const char byte : ALPHABET) texts.push_back(text + byte);
    }
    EXPECT_EQ(texts.size(), 111111U);
}

TEST(LgAppendEscaped, EverySequenceOfTwoBytesAndTheBoundsOfLongerOnes)
{
    const auto check = [](const std::string& text)
    { return escaped(text) == escapedSlowly(text) && Zu::lgUnescaped(escaped(text)) == text; };
    for (int first = 0x80; first < 0x100; ++first)
        for (int second = 0; second < 0x100; ++second)
        {
            const std::string text = {static_cast<char>(first), static_cast<char>(second)};
            ASSERT_TRUE(check(text)) << first << " " << second;
            if (first < 0xe0 || second < 0x7f) continue;
            for (const char third : {'\x7f', '\x80', '\xbf', '\xc0'})
            {
                ASSERT_TRUE(check(text + third)) << first << " " << second;
                for (const char fourth : {'\x7f', '\x80', '\xbf', '\xc0'})
                    ASSERT_TRUE(check(text + third + fourth)) << first << " " << second;
            }
        }
}

// Bytes, code points and backslashes, so that each rule meets the others.
std::string randomText(std::mt19937_64& random)
{
    const std::string pieces[] = {"\\", "\\\\", "x", "u", "=====", "\n", "\t", "\xe2\x80\xae"};
    std::string text;
    for (std::uint64_t count = random() % 60; count > 0; --count)
    {
        const std::uint64_t kind = random() % 4;
        if (kind == 0) text += static_cast<char>(random() & 0xff);
        if (kind == 1) text += utf8Of(static_cast<std::uint32_t>(random() % 0xd800));
        if (kind == 2) text += pieces[random() % std::size(pieces)];
        // Runs longer than what is looked at in one step.
        if (kind == 3) text += std::string(random() % 20, 'a');
    }
    return text;
}

TEST(LgAppendEscaped, RandomTexts)
{
    std::mt19937_64 random(1818);
    for (int i = 0; i < 5000; ++i)
    {
        const std::string text = randomText(random);
        const std::string line = escaped(text);
        ASSERT_EQ(line, escapedSlowly(text)) << testing::PrintToString(text);
        ASSERT_EQ(Zu::lgUnescaped(line), text) << testing::PrintToString(line);
        ASSERT_LE(line.size(), 4 * text.size());
    }
}

// Eight bytes are looked at in one step: here each byte at each place, beside each other one.
TEST(LgAppendEscaped, FindsWhatMattersAtEachPlace)
{
    for (std::size_t place = 1; place < 17; ++place)
        for (int byte = 0; byte < 0x80; ++byte)
            for (const char beside : {'a', ' ', '[', '\x1f', '\x7f'})
            {
                std::string text(18, 'a');
                text[place] = static_cast<char>(byte);
                text[place + 1] = beside;
                ASSERT_EQ(escaped(text), escapedSlowly(text)) << place << " " << byte;
            }
}

TEST(LgAppendEscaped, AppendsToWhatIsThere)
{
    std::string out = "before\\";
    Zu::lgAppendEscaped(out, "x");
    EXPECT_EQ(out, "before\\x");
}

TEST(LgUnescaped, LeavesWhatIsNoEscape)
{
    const std::pair<std::string, std::string> cases[] = {
        {"\\", "\\"},
        {"\\a", "\\a"},
        {"\\x", "\\x"},
        {"\\x1", "\\x1"},
        {"\\x1B", "\\x1B"},
        {"\\xg0", "\\xg0"},
        {"\\u", "\\u"},
        {"\\u202", "\\u202"},
        {"\\u202E", "\\u202E"},
        {"\\ud800", "\\ud800"},
        {"\\udfff", "\\udfff"},
        {"\\\0"s, "\\\0"s},
        {"a\nb", "a\nb"},
        {"a\n", "a\n"},
        // Escapes that are never written.
        {"\\x41\\u0041\\u00e4\\u20ac", "AA\xc3\xa4\xe2\x82\xac"},
    };
    for (const auto& [line, text] : cases) EXPECT_EQ(Zu::lgUnescaped(line), text);
}

LgLineOrigin exampleOrigin()
{
    LgLineOrigin origin;
    origin._start = 1000000;
    origin._tick = 1012345;
    origin._wall = 1795384800 * SECOND;
    origin._ticksPerSecond = GIGA;
    origin._process = 4711;
    origin._processStart = 1795384799 * SECOND;
    origin._host = "name";
    origin._boot = "3f2b-01";
    return origin;
}

const char* const EXAMPLE =
    "===== Clock Origin: 0000000000 0000012345 is 2026-11-22T22:00:00.000000000Z, "
    "1000000000 ticks per second, process 4711 started 2026-11-22T21:59:59.000000000Z, "
    "host name, boot 3f2b-01 =====";

// The example with a part replaced.
std::string changedExample(const std::string& part, const std::string& with)
{
    std::string line = EXAMPLE;
    const std::size_t place = line.find(part);
    EXPECT_NE(place, std::string::npos) << part;
    return line.replace(place, part.size(), with);
}

TEST(LgOriginLine, IsWrittenAsDocumented)
{
    EXPECT_EQ(Zu::lgOriginLine(exampleOrigin()), EXAMPLE + "\n"s);
}

TEST(LgOriginLine, CountsFromTheStartAsLinesDo)
{
    LgLineOrigin origin = exampleOrigin();
    origin._tick = origin._start + 4294967296 * 12 + 4294967295;
    origin._wall = EVENING;
    EXPECT_EQ(Zu::lgOriginLine(origin).substr(0, 75),
              "===== Clock Origin: 0000000012 4294967295 is 2026-11-22T22:10:51.123456789Z");
}

TEST(LgOriginLine, HostAndBootCanNotConfuse)
{
    const std::pair<std::string, std::string> cases[] = {
        {"", "-"},
        {"-", "\\x2d"},
        {"--", "--"},
        {"a-", "a-"},
        {"a, boot b", "a\\x2c boot b"},
        {"\\,", "\\\\\\x2c"},
        {"a\nb\tc", "a\\x0ab\\x09c"},
        {"\xff\xc3\xa4\xe2\x80\xae\x1b", "\\xff\xc3\xa4\\u202e\\x1b"},
        {" ===== ", " ===== "},
        {"=====", "====="},
        {"\\x2c", "\\\\x2c"},
        {"\\", "\\"},
        {"with blanks", "with blanks"},
        {"\0"s, "\\x00"},
    };
    for (const auto& [text, field] : cases)
    {
        LgLineOrigin origin = exampleOrigin();
        origin._host = text;
        origin._boot = text;
        const std::string line = Zu::lgOriginLine(origin);
        const std::string expected =
            changedExample("host name, boot 3f2b-01", "host " + field + ", boot " + field);
        EXPECT_EQ(line, expected + "\n");
        LgLineOrigin parsed;
        ASSERT_TRUE(Zu::lgParseOriginLine(line, parsed)) << line;
        EXPECT_EQ(parsed._host, text);
        EXPECT_EQ(parsed._boot, text);
    }
}

void expectSame(const LgLineOrigin& parsed, const LgLineOrigin& origin)
{
    EXPECT_EQ(parsed._start, 0U);
    EXPECT_EQ(parsed._tick, origin._tick - origin._start);
    EXPECT_EQ(parsed._wall, origin._wall);
    EXPECT_EQ(parsed._ticksPerSecond, origin._ticksPerSecond);
    EXPECT_EQ(parsed._process, origin._process);
    EXPECT_EQ(parsed._processStart, origin._processStart);
    EXPECT_EQ(parsed._host, origin._host);
    EXPECT_EQ(parsed._boot, origin._boot);
}

TEST(LgParseOriginLine, ReadsWhatIsWritten)
{
    for (const char* const end : {"", "\n"})
    {
        LgLineOrigin parsed;
        ASSERT_TRUE(Zu::lgParseOriginLine(std::string(EXAMPLE) + end, parsed));
        expectSame(parsed, exampleOrigin());
    }
}

TEST(LgParseOriginLine, ReadsTheBoundsOfEachValue)
{
    std::mt19937_64 random(1819);
    const std::int64_t walls[] = {EARLIEST, EARLIEST + 1, -SECOND - 1, -SECOND,    -1,    0,
                                  1,        SECOND,       EVENING,     LATEST - 1, LATEST};
    const std::uint64_t numbers[] = {0, 1, 4294967295, 4294967296, ~std::uint64_t{0}};
    const std::uint64_t rates[] = {1, 3579545, GIGA, GIGA * GIGA};
    for (const std::int64_t wall : walls)
        for (const std::uint64_t number : numbers)
            for (const std::uint64_t rate : rates)
            {
                LgLineOrigin origin;
                origin._start = random();
                origin._tick = origin._start + number;
                origin._wall = wall;
                origin._ticksPerSecond = rate;
                origin._process = static_cast<std::uint32_t>(number);
                origin._processStart = walls[random() % std::size(walls)];
                origin._host = randomText(random);
                origin._boot = randomText(random);
                LgLineOrigin parsed;
                ASSERT_TRUE(Zu::lgParseOriginLine(Zu::lgOriginLine(origin), parsed));
                expectSame(parsed, origin);
            }
}

TEST(LgParseOriginLine, RefusesEverythingElse)
{
    const std::pair<const char*, const char*> cases[] = {
        {"=====", "===="},
        {"Clock", "clock"},
        {"0000000000", "000000000"},
        {"0000000000", "00000000000"},
        {"0000000000", "4294967296"},
        {"0000012345", "12345"},
        {"0000012345", "+000012345"},
        {"2026-11-22T22", "2026-11-31T22"},
        {"2026-11-22T22", "2026-11-22T24"},
        {"2026-11-22T22", "2026-13-22T22"},
        {"2026-11-22T22", "2026-1-22T22"},
        {"2026-11-22T22", "67562-11-22T22"},
        {"2026-11-22T22", "1677-09-20T22"},
        {"2026-11-22T22", "2262-04-12T22"},
        {"2026-11-22T22", "1600-04-12T22"},
        {"22:00:00", "22:00:60"},
        {"22:00:00", "22:0:00"},
        {".000000000Z", ".0000000000Z"},
        {".000000000Z", ".00000000Z"},
        {".000000000Z", ".1000000000Z"},
        {".000000000Z", ".-00000001Z"},
        {".000000000Z", ".000000000z"},
        {".000000000Z", "Z"},
        {"1000000000 ticks", "0 ticks"},
        {"1000000000 ticks", "1000000000000000001 ticks"},
        {"1000000000 ticks", "18446744073709551616 ticks"},
        {"1000000000 ticks", "01000000000 ticks"},
        {"1000000000 ticks", "-1000000000 ticks"},
        {"1000000000 ticks", " ticks"},
        {"4711", "4294967296"},
        {"4711", "04711"},
        {"4711", "0x4711"},
        {" started ", " Started "},
        {"host name", "host "},
        {"host name", "host na\tme"},
        {"host name", "host na\nme"},
        {"host name", "host na,me"},
        {"host name", "host na\\x6de"},
        {"host name", "host na\xff"},
        {"host name", "host \\x2d0"},
        {", boot", " boot"},
        {"3f2b-01", ""},
        {"3f2b-01", "3f2b,01"},
        {" =====", ""},
    };
    for (const auto& [part, with] : cases)
    {
        LgLineOrigin origin = originAt(5);
        EXPECT_FALSE(Zu::lgParseOriginLine(changedExample(part, with), origin)) << with;
        EXPECT_EQ(origin._wall, 5);
        EXPECT_EQ(origin._process, 4711U);
    }
    LgLineOrigin origin;
    for (const std::string& line : {EXAMPLE + " "s, " "s + EXAMPLE, EXAMPLE + "\n\n"s,
                                    EXAMPLE + "\r\n"s, ""s, "\n"s, EXAMPLE + "\0"s})
        EXPECT_FALSE(Zu::lgParseOriginLine(line, origin)) << line;
}

TEST(LgParseOriginLine, RefusesEachBeginningOfALine)
{
    const std::string line = EXAMPLE;
    for (std::size_t length = 0; length < line.size(); ++length)
    {
        LgLineOrigin origin;
        EXPECT_FALSE(Zu::lgParseOriginLine(line.substr(0, length), origin)) << length;
    }
}

TEST(LgParseOriginLine, NoEventMakesSuchALine)
{
    for (const LgLineForm form : {LgLineForm::Plain, LgLineForm::Ticks, LgLineForm::Utc})
        for (const char* const before : {"", "\n", "text\n", "\t\n"})
        {
            const std::string text = std::string(before) + EXAMPLE + "\n" + EXAMPLE;
            const std::string lines = lineOf(form, originAt(EVENING), {0, 1, LgTypes::Error, text});
            std::size_t begin = 0;
            for (std::size_t end = 0; (end = lines.find('\n', begin)) != std::string::npos;)
            {
                LgLineOrigin origin;
                EXPECT_FALSE(Zu::lgParseOriginLine(lines.substr(begin, end - begin), origin));
                begin = end + 1;
            }
        }
}

TEST(LgServiceLine, MakesBytesPrintableWithoutEscapingTwice)
{
    const std::pair<std::string, std::string> rows[] = {
        {"", ""},
        {"a\tb\n\tc", "a\tb\n\tc"},
        {"\tbegins", "\tbegins"},
        {"===== x", "===== x"},
        {"-, \\x1b \\\\ C:\\temp", "-, \\x1b \\\\ C:\\temp"},
        {"\x1b[2J\xff\x7f\r", "\\x1b[2J\\xff\\x7f\\x0d"},
        {"\u202eabc\u00e9", "\\u202eabc\u00e9"},
    };
    for (const auto& [bytes, expected] : rows)
    {
        std::string text = "> ";
        Zu::lgAppendPrintable(text, bytes);
        EXPECT_EQ(text, "> " + expected);
        std::string again = "> ";
        Zu::lgAppendPrintable(again, expected);
        EXPECT_EQ(again, text);
    }
}

} // namespace

#include "zulog/zlReader.h"

#include "logTexts.h"
#include "support/tempDir.h"

#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using logTexts::BANNER;
using logTexts::Copy;
using logTexts::MICROSECOND;
using logTexts::ORIGIN;
using logTexts::OTHER_ORIGIN;
using logTexts::readAll;
using logTexts::Result;
using logTexts::STOPPED;
using logTexts::TEN;
using logTexts::textsOf;
using logTexts::TextSource;
using logTexts::tickLine;
using Zu::ZlReader;
using Kind = Zu::ZlRecord::Kind;
namespace LgTypes = Zu::LgTypes;
using Texts = std::vector<std::string>;

TEST(ZlReader, ReadsAnEventWithItsOrigin)
{
    const Result result = readAll(BANNER + ORIGIN + tickLine(7, "Warning: Orders a text"));
    ASSERT_EQ(result._records.size(), 2U);
    const Copy& start = result._records[0];
    EXPECT_EQ(start._kind, Kind::Start);
    EXPECT_EQ(start._wall, TEN);
    EXPECT_EQ(start._process, 4711U);
    EXPECT_EQ(start._line, 1U);
    const Copy& event = result._records[1];
    EXPECT_EQ(event._kind, Kind::Event);
    EXPECT_EQ(event._wall, TEN + 7 * MICROSECOND);
    EXPECT_EQ(event._ticks, 7U);
    EXPECT_EQ(event._process, 4711U);
    EXPECT_EQ(event._thread, 0xabcU);
    EXPECT_EQ(event._level, LgTypes::Warning);
    EXPECT_EQ(event._group, "Orders");
    EXPECT_EQ(event._text, "a text");
    EXPECT_EQ(event._host, "alpha");
    EXPECT_EQ(event._line, 6U);
    EXPECT_EQ(result._lines, 6U);
    EXPECT_EQ(result._reports, "");
}

TEST(ZlReader, LeavesOpenWhatTheFileDoesNotSay)
{
    const Result result = readAll(BANNER + tickLine(7, "Warning: Orders text") +
                                  "2026-11-22T10:00:00.000001Z 5 (0x00000abc) Error: 1st\n");
    ASSERT_EQ(result._records.size(), 3U);
    EXPECT_EQ(result._records[0]._wall, std::nullopt);
    EXPECT_EQ(result._records[0]._process, std::nullopt);
    EXPECT_EQ(result._records[1]._wall, std::nullopt);
    EXPECT_EQ(result._records[1]._process, std::nullopt);
    EXPECT_EQ(result._records[1]._ticks, 7U);
    EXPECT_EQ(result._records[2]._wall, TEN + MICROSECOND);
    EXPECT_EQ(result._records[2]._process, 5U);
    EXPECT_EQ(result._records[2]._host, "");
    EXPECT_EQ(result._records[2]._group, "");
    EXPECT_EQ(result._records[2]._text, "1st");
    EXPECT_EQ(result._reports, "");
}

TEST(ZlReader, KeepsTheHostOfAProcessWhenAnotherOneStarts)
{
    const std::string iso = "2026-11-22T10:00:00.000001Z ";
    const std::string one = iso + "4711 (0x00000abc) Error: a\n";
    const Result result =
        readAll(BANNER + ORIGIN + one + BANNER + OTHER_ORIGIN + one + STOPPED + one);
    ASSERT_EQ(result._records.size(), 6U);
    EXPECT_EQ(result._records[1]._host, "alpha");
    EXPECT_EQ(result._records[3]._host, "alpha");
    EXPECT_EQ(result._records[5]._host, "alpha");
}

TEST(ZlReader, KnowsTheHostOfAProcessAlone)
{
    const std::string iso = "2026-11-22T10:00:00.000001Z ";
    const Result result = readAll(BANNER + ORIGIN + iso + "4711 (0x00000abc) Error: a\n" + iso +
                                  "12 (0x00000abc) Error: b\n");
    ASSERT_EQ(result._records.size(), 3U);
    EXPECT_EQ(result._records[1]._host, "alpha");
    EXPECT_EQ(result._records[2]._host, "");
}

TEST(ZlReader, CutsSegmentsAtBannersAndRecoveryMarks)
{
    const std::string event = tickLine(600, "Error: A x");
    const Result result = readAll(
        BANNER + ORIGIN + event +
        "===== Recovered: events of process 12, started 2026-11-22T09:59:59.000000Z, host beta "
        "=====\n" +
        OTHER_ORIGIN + event + "===== Recovered: end of the events of process 12 =====\n" + event +
        ORIGIN + event + STOPPED + event + BANNER + event);
    const struct
    {
        Kind _kind;
        std::optional<std::uint32_t> _process;
        std::optional<std::int64_t> _wall;
    } rows[] = {
        {Kind::Start, 4711, TEN},
        {Kind::Event, 4711, TEN + 600 * MICROSECOND},
        {Kind::RecoveryBegin, 12, std::nullopt},
        {Kind::Event, 12, TEN + 300 * MICROSECOND},
        {Kind::RecoveryEnd, 12, std::nullopt},
        {Kind::Event, std::nullopt, std::nullopt},
        {Kind::Event, 4711, TEN + 600 * MICROSECOND},
        {Kind::Stop, 4711, std::nullopt},
        {Kind::Event, std::nullopt, std::nullopt},
        {Kind::Start, std::nullopt, std::nullopt},
        {Kind::Event, std::nullopt, std::nullopt},
    };
    ASSERT_EQ(result._records.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i)
    {
        SCOPED_TRACE(i);
        EXPECT_EQ(result._records[i]._kind, rows[i]._kind);
        EXPECT_EQ(result._records[i]._process, rows[i]._process);
        EXPECT_EQ(result._records[i]._wall, rows[i]._wall);
    }
}

TEST(ZlReader, ReadsLosses)
{
    const Result result =
        readAll(BANNER + ORIGIN + tickLine(1, "Informational: Event overflow [17]") +
                "===== Not Written: 3 events since 2026-11-22T10:00:00.000005Z =====\n" +
                tickLine(1, "Informational: Orders Event overflow [17]"));
    ASSERT_EQ(result._records.size(), 4U);
    EXPECT_EQ(result._records[1]._kind, Kind::Overflow);
    EXPECT_EQ(result._records[1]._count, 17U);
    EXPECT_EQ(result._records[1]._group, "");
    EXPECT_EQ(result._records[2]._kind, Kind::NotWritten);
    EXPECT_EQ(result._records[2]._count, 3U);
    EXPECT_EQ(result._records[2]._wall, TEN + 5 * MICROSECOND);
    EXPECT_EQ(result._records[3]._kind, Kind::Event);
    EXPECT_EQ(result._records[3]._group, "Orders");
}

TEST(ZlReader, AddsContinuationsToTheirEvent)
{
    const Result result = readAll(BANNER + tickLine(1, "Error: A one\n\ttwo\n\t\n\tthree") +
                                  tickLine(2, "Error: A four") + STOPPED + "\tfive\n");
    EXPECT_EQ(
        textsOf(result),
        Texts({"start: ===== Message Logger Startup =====", "event: one\n\ttwo\n\t\n\tthree",
               "event: four", "stop: ===== Message Logger Stopped =====", "unreadable: \tfive"}));
    EXPECT_EQ(result._records[2]._line, 9U);
    EXPECT_EQ(result._lines, 11U);
    EXPECT_EQ(result._reports, "zulog: a.log:11: a continuation without its event\n");
}

TEST(ZlReader, TakesLinesWithoutTimesForEventsWhereTheLogHasNone)
{
    const Texts texts = {"start: ===== Message Logger Startup =====", "event: one",
                         "event: two words", "event: "};
    const Result plain = readAll(logTexts::PLAIN_BANNER + "Orders one\nOrders two words\n\n");
    EXPECT_EQ(textsOf(plain), texts);
    EXPECT_EQ(plain._records[1]._group, "Orders");
    EXPECT_EQ(plain._records[1]._level, std::nullopt);
    EXPECT_EQ(plain._reports, "");
    // A file whose beginning is missing.
    EXPECT_EQ(textsOf(readAll("Orders one\n")), Texts({"event: one"}));
}

TEST(ZlReader, ShowsAndReportsWhatIsNoLineOfALog)
{
    const Result result = readAll(BANNER + "torn\n" + tickLine(1, "Error: A x") +
                                      "===== Something =====\n0000000000 00000",
                                  5);
    EXPECT_EQ(textsOf(result),
              Texts({"start: ===== Message Logger Startup =====", "unreadable: torn", "event: x",
                     "unreadable: ===== Something =====", "unreadable: 0000000000 00000"}));
    EXPECT_EQ(result._reports, "zulog: a.log:5: this is no line of a log\n"
                               "zulog: a.log:7: this is no line of a log\n"
                               "zulog: a.log:8: the last line has no end\n");
    EXPECT_EQ(result._lines, 8U);
}

TEST(ZlReader, ReadsALastLineWithoutItsEnd)
{
    std::string text = tickLine(1, "Error: A x");
    text.pop_back();
    const Result result = readAll(text);
    EXPECT_EQ(textsOf(result), Texts({"event: x"}));
    EXPECT_EQ(result._reports, "zulog: a.log:1: the last line has no end\n");
    EXPECT_EQ(textsOf(readAll("")), Texts());
}

TEST(ZlReader, ReadsLineEndsOfTwoCharacters)
{
    const Result result = readAll("===== Message Logger Startup =====\r\n"
                                  "0000000000 0000000001 (0x00000abc) Error: A x\r\n");
    EXPECT_EQ(textsOf(result), Texts({"start: ===== Message Logger Startup =====", "event: x"}));
}

TEST(ZlReader, TakesWhatIsTooLongInParts)
{
    const std::string line = tickLine(1, "Error: A " + std::string(ZlReader::LONGEST, 'x'));
    const Result result = readAll(BANNER + line + tickLine(2, "Error: A y"));
    ASSERT_EQ(result._records.size(), 4U);
    EXPECT_EQ(result._records[1]._raw.size() + result._records[2]._raw.size(), line.size() - 1);
    EXPECT_EQ(result._records[3]._text, "y");
    EXPECT_NE(result._reports.find("a.log:5: the line is longer than 1 MiB, and taken in parts\n"),
              std::string::npos);
    std::string many = tickLine(1, "Error: A x");
    while (many.size() < ZlReader::LONGEST + 100) many += "\t" + std::string(1000, 'y') + "\n";
    std::string together;
    for (const Copy& record : readAll(many)._records) together += record._raw + "\n";
    // One line is cut in two.
    EXPECT_EQ(together.size(), many.size() + 1);
}

TEST(ZlReader, CountsALineThatIsTakenInPartsOnce)
{
    const std::string part(ZlReader::LONGEST, 'x');
    const std::string line = "Error: A " + part + part;
    const Result result = readAll(tickLine(1, line) + tickLine(2, "Error: A y") +
                                  tickLine(3, "Error: A z\n\t" + part) + tickLine(4, line));
    std::vector<std::uint64_t> lines;
    for (const Copy& record : result._records) lines.push_back(record._line);
    EXPECT_EQ(lines, std::vector<std::uint64_t>({1, 1, 1, 2, 3, 4, 5, 5, 5}));
    EXPECT_EQ(result._lines, 5U);
}

// Whatever its text looks like.
TEST(ZlReader, TakesTheRestOfALineForNoEvent)
{
    const std::string forged = tickLine(9, "Error: A forged");
    const std::string head = tickLine(1, "Error: A ");
    std::string line = head.substr(0, head.size() - 1);
    line.resize(ZlReader::LONGEST, 'x');
    for (const std::string& rest : {forged, STOPPED})
    {
        const Result result = readAll(line + rest);
        ASSERT_EQ(result._records.size(), 2U);
        EXPECT_EQ(result._records[1]._kind, Zu::ZlRecord::Kind::Unreadable);
        EXPECT_EQ(result._records[1]._raw + "\n", rest);
        EXPECT_EQ(result._lines, 1U);
    }
}

// Otherwise its bytes would be in no record.
TEST(ZlReader, TakesNothingElseForAPartOfABanner)
{
    const std::string date = "===== Started on Sun Nov 22 11:00:00 2026";
    const Result continued = readAll(logTexts::PLAIN_BANNER + date + "\n\n\tone\n");
    ASSERT_EQ(continued._records.size(), 2U);
    EXPECT_EQ(continued._records[1]._kind, Zu::ZlRecord::Kind::Unreadable);
    EXPECT_EQ(continued._records[1]._raw, "\n\tone");
    EXPECT_EQ(continued._records[1]._line, 3U);
    const std::string line = date + std::string(ZlReader::LONGEST, 'x');
    const Result cut = readAll(logTexts::PLAIN_BANNER + line + "\n");
    ASSERT_EQ(cut._records.size(), 3U);
    EXPECT_EQ(cut._records[1]._kind, Zu::ZlRecord::Kind::Unreadable);
    EXPECT_EQ(cut._records[1]._raw + cut._records[2]._raw, line);
}

// The pieces in which a file is read must not show.
TEST(ZlReader, ReadsTheSameInPiecesOfAnySize)
{
    const std::string text = BANNER + ORIGIN + tickLine(1, "Error: A one\n\ttwo") + "torn\n" +
                             tickLine(2, "Informational: Event overflow [5]") + STOPPED + BANNER +
                             tickLine(3, "Error: A three\n\tfour");
    const Result whole = readAll(text);
    for (std::size_t piece = 1; piece < 300; ++piece)
    {
        const Result parts = readAll(text, piece);
        ASSERT_EQ(textsOf(parts), textsOf(whole)) << piece;
        ASSERT_EQ(parts._reports, whole._reports) << piece;
        ASSERT_EQ(parts._lines, whole._lines) << piece;
    }
}

TEST(ZlReader, SkipsOtherLevelsAndCountsTheirLines)
{
    ZlReader::Options options;
    options._levels = 1U << LgTypes::Error;
    options._areMarksSkipped = true;
    const Result result = readAll(
        BANNER + ORIGIN + tickLine(1, "Error: A one\n\tmore") + tickLine(2, "Warning: A two") +
            "torn\n2026-11-22T10:00:00.000001Z 5 (0x00000abc) Error: A three\n" +
            "2026-11-22T10:00:00.000001Z 5 (0x00000abc) Tracing: A four\n\tmore\n" + STOPPED,
        std::string::npos, options);
    EXPECT_EQ(textsOf(result), Texts({"event: one\n\tmore", "event: three"}));
    EXPECT_EQ(result._records[0]._wall, TEN + MICROSECOND);
    EXPECT_EQ(result._lines, 13U);
    EXPECT_EQ(result._reports, "");
}

TEST(ZlReader, WhatHasNoLevelIsSkippedWithTheMarksOnly)
{
    const std::string text = BANNER + ORIGIN + tickLine(1, "Error: A one") +
                             tickLine(2, "Warning: A two") + tickLine(3, "Nonsense: A three") +
                             "torn\n" + STOPPED;
    ZlReader::Options options;
    options._levels = 1U << LgTypes::Error;
    const Result levels = readAll(text, std::string::npos, options);
    ASSERT_EQ(levels._records.size(), 5U);
    EXPECT_EQ(levels._records[0]._kind, Kind::Start);
    EXPECT_EQ(levels._records[1]._text, "one");
    EXPECT_EQ(levels._records[2]._kind, Kind::Unreadable);
    EXPECT_EQ(levels._records[3]._text, "torn");
    EXPECT_EQ(levels._records[4]._kind, Kind::Stop);
    EXPECT_NE(levels._reports, "");
    options._areMarksSkipped = true;
    const Result alone = readAll(text, std::string::npos, options);
    EXPECT_EQ(textsOf(alone), Texts({"event: one"}));
    EXPECT_EQ(alone._reports, "");
}

TEST(ZlReader, ReadsAnyBytes)
{
    const std::string sample = BANNER + ORIGIN + tickLine(1, "Error: A one\n\ttwo") + STOPPED;
    std::mt19937 random(1);
    for (int run = 0; run < 3000; ++run)
    {
        std::string text = sample;
        for (int i = 0; i < 4; ++i) text[random() % text.size()] = static_cast<char>(random());
        text.resize(random() % text.size());
        const Result result = readAll(text, 1 + random() % 64);
        const auto feeds = static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n'));
        const bool isCut = !text.empty() && text.back() != '\n';
        ASSERT_EQ(result._lines, feeds + (isCut ? 1 : 0)) << text;
    }
}

class ZlReaderLive : public ::testing::Test
{
protected:
    ZlReaderLive()
    {
        _reader.setLive();
    }

    std::string next()
    {
        return _reader.next() ? logTexts::shown(_reader.getRecord()) : "(none)";
    }

    TextSource* const _source = new TextSource("");
    std::ostringstream _reported;
    Zu::ZlReports _reports{_reported};
    ZlReader _reader{"a.log", std::unique_ptr<Zu::ZlSource>(_source), _reports, {}};
};

TEST_F(ZlReaderLive, KeepsWhatMayGoOn)
{
    EXPECT_EQ(next(), "(none)");
    std::string line = tickLine(1, "Error: A one");
    _source->add(line.substr(0, 20));
    EXPECT_EQ(next(), "(none)");
    _source->add(line.substr(20));
    EXPECT_EQ(next(), "(none)");
    _source->add("\ttw");
    EXPECT_EQ(next(), "(none)");
    _source->add("o\n");
    _source->add(tickLine(2, "Error: A three"));
    EXPECT_EQ(next(), "event: one\n\ttwo");
    EXPECT_EQ(next(), "(none)");
    _reader.release(false);
    EXPECT_EQ(next(), "event: three");
    EXPECT_EQ(next(), "(none)");
}

TEST_F(ZlReaderLive, ReleasesALineWithoutItsEndOnlyForGood)
{
    _source->add("a torn");
    _reader.release(false);
    EXPECT_EQ(next(), "(none)");
    _reader.release(true);
    EXPECT_EQ(next(), "event: torn");
    EXPECT_EQ(next(), "(none)");
    EXPECT_EQ(_reported.str(), "zulog: a.log:1: the last line has no end\n");
}

TEST_F(ZlReaderLive, GoesOnWithAFurtherFile)
{
    _source->add(BANNER + ORIGIN + tickLine(1, "Error: A one") + "0000");
    EXPECT_EQ(next(), "start: ===== Message Logger Startup =====");
    EXPECT_EQ(next(), "event: one");
    EXPECT_EQ(next(), "(none)");
    auto* const second = new TextSource(tickLine(2, "Error: A two"));
    _reader.append(std::unique_ptr<Zu::ZlSource>(second));
    EXPECT_EQ(next(), "unreadable: 0000");
    EXPECT_EQ(next(), "(none)");
    _reader.release(false);
    EXPECT_EQ(next(), "event: two");
    // The origin was that of the first file.
    EXPECT_EQ(_reader.getRecord()._wall, std::nullopt);
    EXPECT_EQ(_reader.getRecord()._line, 1U);
    second->add(tickLine(3, "Error: A three"));
    _reader.release(false);
    EXPECT_EQ(next(), "event: three");
}

TEST_F(ZlReaderLive, ShowsABannerWithoutLinesBehindIt)
{
    _source->add(BANNER);
    EXPECT_EQ(next(), "(none)");
    _reader.release(false);
    EXPECT_EQ(next(), "start: ===== Message Logger Startup =====");
    EXPECT_EQ(next(), "(none)");
}

TEST(ZlReader, ReadsOneFileAfterTheOther)
{
    const support::TempDir directory;
    const std::string old = directory.file("a.log.1");
    const std::string present = directory.file("a.log");
    logTexts::writeFile(old, BANNER + ORIGIN + tickLine(1, "Error: A one"));
    logTexts::writeFile(present, tickLine(2, "Error: A two"));
    std::ostringstream reported;
    Zu::ZlReports reports(reported);
    ZlReader reader({old, directory.file("missing"), present}, reports, {});
    ASSERT_TRUE(reader.next());
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.getRecord()._text, "one");
    EXPECT_EQ(*reader.getRecord()._file, old);
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.getRecord()._text, "two");
    EXPECT_EQ(*reader.getRecord()._file, present);
    EXPECT_EQ(reader.getRecord()._line, 1U);
    EXPECT_EQ(reader.getRecord()._wall, std::nullopt);
    EXPECT_FALSE(reader.next());
    EXPECT_TRUE(reports.hasFailed());
    EXPECT_NE(reported.str().find("missing\" can't be opened: "), std::string::npos);
}

} // namespace

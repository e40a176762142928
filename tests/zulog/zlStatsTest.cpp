#include "zulog/zlStats.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{

namespace LgTypes = Zu::LgTypes;
using Zu::ZlRecord;
using Zu::ZlStats;
using Json = nlohmann::json;

constexpr std::int64_t MILLISECOND = 1000000;
constexpr std::int64_t SECOND = 1000 * MILLISECOND;
constexpr std::int64_t MINUTE = 60 * SECOND;
constexpr std::int64_t DAY = 1440 * MINUTE;

// 2026-11-22T22:10:00Z
constexpr std::int64_t BEGIN = 1795385400 * SECOND;

class ZlStatsTest : public testing::Test
{
protected:
    ZlStatsTest()
    {
        owner._host = "web1";
        owner._process = 4711;
        owner._processStart = 17;
        options._times = Zu::ZlTimeWriter::Form::Utc;
        options._width = 60;
    }

    ZlRecord make(ZlRecord::Kind kind, std::optional<std::int64_t> wall = std::nullopt)
    {
        ZlRecord record;
        record._kind = kind;
        record._wall = wall;
        record._owner = &owner;
        record._file = &file;
        record._line = 5;
        return record;
    }

    void addEvent(std::optional<std::int64_t> wall,
                  std::optional<LgTypes::Level> level = LgTypes::Warning,
                  const std::string& group = "Orders", std::optional<std::uint32_t> thread = 0xabc)
    {
        ZlRecord record = make(ZlRecord::Kind::Event, wall);
        record._level = level;
        record._group = group;
        record._thread = thread;
        stats->add(record);
    }

    void addCount(ZlRecord::Kind kind, std::uint64_t count, std::optional<std::int64_t> wall)
    {
        ZlRecord record = make(kind, wall);
        record._count = count;
        stats->add(record);
    }

    // A mark of a process, or of one that is not known, in a file.
    void addMark(ZlRecord::Kind kind, std::optional<std::uint32_t> process, const std::string& name)
    {
        Zu::ZlOwner other = owner;
        other._process = process;
        if (!process) other._processStart.reset();
        ZlRecord record = make(kind);
        record._owner = &other;
        record._file = &name;
        stats->add(record);
    }

    std::string text() const
    {
        std::string out;
        stats->appendText(out, options);
        return out;
    }

    Json json() const
    {
        std::string out;
        stats->appendJson(out);
        EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 1);
        return Json::parse(out);
    }

    // A part of the text, from its title to the next empty line.
    std::string part(const std::string& title) const
    {
        const std::string all = text() + "\n";
        const auto begin = all.find("\n" + title);
        if (begin == std::string::npos) return {};
        return all.substr(begin + 1, all.find("\n\n", begin + 1) - begin);
    }

    std::optional<ZlStats> stats{std::in_place};
    Zu::ZlStatsOptions options;
    Zu::ZlOwner owner;
    std::string file = "events.log";
};

TEST_F(ZlStatsTest, NothingHasNoFigures)
{
    EXPECT_EQ(text(), "Lines       0\nUnreadable  0\nEvents      0\n");
    const Json object = json();
    EXPECT_EQ(object.at("lines"), 0);
    EXPECT_EQ(object.at("events"), 0);
    for (const char* const name :
         {"first", "last", "duration_ns", "events_per_second", "busiest_second"})
        EXPECT_TRUE(object.at(name).is_null()) << name;
    for (const char* const name : {"groups", "threads", "slices", "gaps"})
        EXPECT_EQ(object.at(name), Json::array()) << name;
}

TEST_F(ZlStatsTest, TheTextOfASmallLog)
{
    addEvent(BEGIN, LgTypes::Warning, "Orders");
    addEvent(BEGIN + 500 * MILLISECOND, LgTypes::Error, "Orders");
    addEvent(BEGIN + 900 * MILLISECOND, LgTypes::Warning, "Database", 0xdef);
    addEvent(BEGIN + 90900 * MILLISECOND, LgTypes::Informational, "Orders");
    addEvent(std::nullopt, std::nullopt, "", std::nullopt);
    stats->add(make(ZlRecord::Kind::Unreadable));
    stats->setLineCount(9);
    std::string expected = "Lines       9\n"
                           "Unreadable  1\n"
                           "Events      5, 1 of them at an unknown time\n"
                           "First       2026-11-22 22:10:00.000000Z\n"
                           "Last        2026-11-22 22:11:30.900000Z\n"
                           "Duration    90.900000 s\n"
                           "Rate        0.044 per second\n"
                           "Most        3 in the second from 2026-11-22 22:10:00.000000Z\n"
                           "\n"
                           "Levels\n"
                           "           1 Error\n"
                           "           2 Warning\n"
                           "           1 Informational\n"
                           "           1 unknown\n"
                           "\n"
                           "Groups\n"
                           "           3 Orders\n"
                           "           1 Database\n"
                           "           1 unknown\n"
                           "\n"
                           "Threads\n"
                           "           3 process 4711 on web1, thread 0x00000abc\n"
                           "           1 process 4711 on web1, unknown thread\n"
                           "           1 process 4711 on web1, thread 0x00000def\n"
                           "\n"
                           "Busiest minutes\n"
                           "           3 2026-11-22 22:10:00.000000Z\n"
                           "           1 2026-11-22 22:11:00.000000Z\n"
                           "\n"
                           "Events over time, each row 5.000000 s\n"
                           "  2026-11-22 22:10:00.000000Z 3 ############################\n";
    for (const char* const time :
         {"10:05", "10:10", "10:15", "10:20", "10:25", "10:30", "10:35", "10:40", "10:45", "10:50",
          "10:55", "11:00", "11:05", "11:10", "11:15", "11:20", "11:25"})
        expected += std::string("  2026-11-22 22:") + time + ".000000Z 0\n";
    expected += "  2026-11-22 22:11:30.000000Z 1 #########\n"
                "\n"
                "Longest silences\n"
                "  90.000000 s from 2026-11-22 22:10:00.900000Z\n"
                "  0.500000 s from 2026-11-22 22:10:00.000000Z\n"
                "  0.400000 s from 2026-11-22 22:10:00.500000Z\n";
    EXPECT_EQ(text(), expected);
}

TEST_F(ZlStatsTest, TheSameAsJson)
{
    addEvent(BEGIN, LgTypes::Warning, "Orders");
    addEvent(BEGIN + 500 * MILLISECOND, LgTypes::Error, "Orders");
    addEvent(BEGIN + 2000 * MILLISECOND, LgTypes::Warning, "Database", 0xdef);
    addEvent(std::nullopt, std::nullopt, "", std::nullopt);
    stats->setLineCount(4);
    const Json object = json();
    EXPECT_EQ(object.at("lines"), 4);
    EXPECT_EQ(object.at("unreadable"), 0);
    EXPECT_EQ(object.at("events"), 4);
    EXPECT_EQ(object.at("undated"), 1);
    EXPECT_EQ(object.at("first"), "2026-11-22T22:10:00.000000Z");
    EXPECT_EQ(object.at("last"), "2026-11-22T22:10:02.000000Z");
    EXPECT_EQ(object.at("duration_ns"), 2000000000);
    EXPECT_EQ(object.at("events_per_second"), 1.5);
    EXPECT_EQ(object.at("busiest_second"),
              (Json{{"time", "2026-11-22T22:10:00.000000Z"}, {"events", 2}}));
    EXPECT_EQ(object.at("levels"), (Json{{"Internal Error", 0},
                                         {"Fatal Error", 0},
                                         {"Error", 1},
                                         {"Warning", 2},
                                         {"Informational", 0},
                                         {"Tracing", 0},
                                         {"Profiling", 0},
                                         {"unknown", 1}}));
    EXPECT_EQ(object.at("groups"), (Json::array({Json{{"group", "Orders"}, {"events", 2}},
                                                 Json{{"group", "Database"}, {"events", 1}}})));
    EXPECT_EQ(object.at("unknown_groups"), 1);
    EXPECT_EQ(object.at("other_groups"), 0);
    ASSERT_EQ(object.at("threads").size(), 3U);
    EXPECT_EQ(object.at("threads")[0],
              (Json{{"host", "web1"}, {"process", 4711}, {"thread", 0xabc}, {"events", 2}}));
    EXPECT_EQ(object.at("threads")[1],
              (Json{{"host", "web1"}, {"process", 4711}, {"thread", nullptr}, {"events", 1}}));
    EXPECT_EQ(object.at("slice_minutes"), 1);
    EXPECT_EQ(object.at("slices"),
              (Json::array({Json{{"time", "2026-11-22T22:10:00.000000Z"}, {"events", 3}}})));
    EXPECT_EQ(object.at("gaps"),
              (Json::array({Json{{"begin", "2026-11-22T22:10:00.500000Z"}, {"ns", 1500000000}},
                            Json{{"begin", "2026-11-22T22:10:00.000000Z"}, {"ns", 500000000}}})));
}

TEST_F(ZlStatsTest, EventsAtOneTimeHaveNoRateAndNoSilence)
{
    addEvent(BEGIN);
    addEvent(BEGIN);
    EXPECT_NE(text().find("\nDuration    0.000000 s\nMost        2 in the second from "),
              std::string::npos)
        << text();
    EXPECT_EQ(part("Longest"), "");
    EXPECT_TRUE(json().at("events_per_second").is_null());
    EXPECT_EQ(json().at("duration_ns"), 0);
}

TEST_F(ZlStatsTest, ListsInTextAreShortAndTheRestIsSummedUp)
{
    options._most = 2;
    const char* const groups[] = {"A", "B", "B", "C", "C", "C", "D"};
    for (const char* const group : groups)
    {
        const auto number = static_cast<std::uint32_t>(group[0]);
        addEvent(BEGIN + number * MINUTE, LgTypes::Error, group, number);
    }
    EXPECT_EQ(part("Groups"), "Groups\n"
                              "           3 C\n"
                              "           2 B\n"
                              "           2 2 other groups\n");
    EXPECT_EQ(part("Threads"), "Threads\n"
                               "           3 process 4711 on web1, thread 0x00000043\n"
                               "           2 process 4711 on web1, thread 0x00000042\n"
                               "           2 2 other threads\n");
    // "A" is 65 minutes after the beginning.
    EXPECT_EQ(part("Busiest"), "Busiest minutes\n"
                               "           3 2026-11-22 23:17:00.000000Z\n"
                               "           2 2026-11-22 23:16:00.000000Z\n"
                               "           2 2 other slices of time\n");
    EXPECT_EQ(json().at("groups").size(), 4U);
    options._most = 3;
    EXPECT_NE(part("Groups").find("           1 1 other group\n"), std::string::npos);
}

TEST_F(ZlStatsTest, ThreadsOfOneNumberInSeveralProcessesAndHostsAreSeveral)
{
    addEvent(BEGIN);
    owner._host = "web2";
    addEvent(BEGIN);
    owner._process.reset();
    addEvent(BEGIN);
    ZlRecord record = make(ZlRecord::Kind::Event, BEGIN);
    record._process = 12;
    record._thread = 0xabc;
    stats->add(record);
    EXPECT_EQ(json().at("threads").size(), 4U);
    EXPECT_EQ(part("Threads"), "Threads\n"
                               "           1 process 4711 on web1, thread 0x00000abc\n"
                               "           1 unknown process on web2, thread 0x00000abc\n"
                               "           1 process 12 on web2, thread 0x00000abc\n"
                               "           1 process 4711 on web2, thread 0x00000abc\n");
}

TEST_F(ZlStatsTest, ManyGroupsAndLongNamesCountAmongOthers)
{
    for (std::size_t i = 0; i < ZlStats::MOST_GROUPS + 10; ++i)
        addEvent(BEGIN, LgTypes::Error, "Group" + std::to_string(i));
    addEvent(BEGIN, LgTypes::Error, "Group0");
    addEvent(BEGIN, LgTypes::Error, std::string(ZlStats::LONGEST_GROUP + 1, 'x'));
    const Json object = json();
    EXPECT_EQ(object.at("groups").size(), ZlStats::MOST_GROUPS);
    EXPECT_EQ(object.at("groups")[0], (Json{{"group", "Group0"}, {"events", 2}}));
    EXPECT_EQ(object.at("other_groups"), 11);
    options._most = 1;
    EXPECT_EQ(part("Groups"), "Groups\n"
                              "           2 Group0\n"
                              "       65546 others, too many to be counted one by one\n");
}

TEST_F(ZlStatsTest, ManyThreadsCountAmongOthers)
{
    for (std::uint32_t i = 0; i < ZlStats::MOST_THREADS + 3; ++i)
        addEvent(BEGIN, LgTypes::Error, "A", i);
    addEvent(BEGIN, LgTypes::Error, "A", 7);
    const Json object = json();
    EXPECT_EQ(object.at("threads").size(), ZlStats::MOST_THREADS);
    EXPECT_EQ(object.at("threads")[0].at("events"), 2);
    EXPECT_EQ(object.at("other_threads"), 3);
    EXPECT_NE(part("Threads").find(" others, too many to be counted one by one\n"),
              std::string::npos);
}

TEST_F(ZlStatsTest, TheBusiestSecondIsFoundWhereverItIs)
{
    // Twice as many seconds as are kept, each with one event; the third one has four.
    for (int i = 0; i < 10000; ++i) addEvent(BEGIN + i * SECOND);
    EXPECT_EQ(json().at("busiest_second").at("time"), "2026-11-22T22:10:00.000000Z");
    EXPECT_EQ(json().at("busiest_second").at("events"), 1);
    for (int i = 0; i < 3; ++i) addEvent(BEGIN + 9000 * SECOND + i);
    EXPECT_EQ(json().at("busiest_second").at("events"), 4);
    for (int i = 10000; i < 30000; ++i) addEvent(BEGIN + i * SECOND);
    EXPECT_EQ(json().at("busiest_second"),
              (Json{{"time", "2026-11-23T00:40:00.000000Z"}, {"events", 4}}));
}

TEST_F(ZlStatsTest, TheLongestSilencesAreKeptTheEarlierFirst)
{
    std::int64_t wall = BEGIN;
    addEvent(wall);
    // Silences of 1 to 150 s, each twice.
    for (int i = 0; i < 300; ++i) addEvent(wall += (i % 150 + 1) * SECOND);
    const Json gaps = json().at("gaps");
    ASSERT_EQ(gaps.size(), ZlStats::MOST_GAPS);
    EXPECT_EQ(gaps[0].at("ns"), 150 * SECOND);
    EXPECT_EQ(gaps[1].at("ns"), 150 * SECOND);
    EXPECT_EQ(gaps[99].at("ns"), 101 * SECOND);
    // The first one of 150 s begins behind the 149 before: 1 + ... + 149 = 11175 s.
    EXPECT_EQ(gaps[0].at("begin"), "2026-11-23T01:16:15.000000Z");
    EXPECT_LT(gaps[0].at("begin"), gaps[1].at("begin"));
    // What comes too late begins no silence.
    addEvent(BEGIN);
    EXPECT_EQ(json().at("gaps"), gaps);
}

TEST_F(ZlStatsTest, LossesAreSummedUpAndListed)
{
    addCount(ZlRecord::Kind::Overflow, 17, BEGIN);
    addCount(ZlRecord::Kind::NotWritten, 5, std::nullopt);
    addCount(ZlRecord::Kind::Overflow, 3, BEGIN + SECOND);
    EXPECT_EQ(part("Losses"), "Losses\n"
                              "          20 lost because a queue was full\n"
                              "           5 not written because a file failed\n"
                              "  2026-11-22 22:10:00.000000Z 17 lost, process 4711 on web1\n"
                              "  unknown time 5 not written, process 4711 on web1\n"
                              "  2026-11-22 22:10:01.000000Z 3 lost, process 4711 on web1\n");
    const Json losses = json().at("losses");
    EXPECT_EQ(losses.at("overflow"), 20);
    EXPECT_EQ(losses.at("not_written"), 5);
    EXPECT_EQ(losses.at("more"), 0);
    EXPECT_EQ(losses.at("list")[1], (Json{{"time", nullptr},
                                          {"kind", "not-written"},
                                          {"events", 5},
                                          {"host", "web1"},
                                          {"process", 4711}}));
    // They are no events.
    EXPECT_EQ(json().at("events"), 0);
}

TEST_F(ZlStatsTest, OfManyLossesTheFirstAreListed)
{
    for (std::size_t i = 0; i < ZlStats::MOST_ENTRIES + 7; ++i)
        addCount(ZlRecord::Kind::Overflow, 2, BEGIN);
    const Json losses = json().at("losses");
    EXPECT_EQ(losses.at("overflow"), 2014);
    EXPECT_EQ(losses.at("list").size(), ZlStats::MOST_ENTRIES);
    EXPECT_EQ(losses.at("more"), 7);
    EXPECT_TRUE(part("Losses").ends_with("  and 997 more\n"));
}

TEST_F(ZlStatsTest, StartsAndStopsArePaired)
{
    for (const std::uint32_t process : {1U, 2U, 3U})
        addMark(ZlRecord::Kind::Start, process, "a.log");
    addMark(ZlRecord::Kind::Start, 4, "b.log");
    addMark(ZlRecord::Kind::Stop, 2, "a.log");
    const Json starts = json().at("starts");
    EXPECT_EQ(starts.at("started"), 4);
    EXPECT_EQ(starts.at("stopped"), 1);
    EXPECT_EQ(starts.at("ended_without_stop_mark"), 1);
    EXPECT_EQ(starts.at("without_end"), 2);
}

TEST_F(ZlStatsTest, ManyStartsAreCountedInBoundedMemory)
{
    for (std::uint32_t i = 1; i <= 30000; ++i) addMark(ZlRecord::Kind::Start, i, "a.log");
    const Json starts = json().at("starts");
    EXPECT_EQ(starts.at("started"), 30000);
    EXPECT_EQ(starts.at("ended_without_stop_mark"), 29999);
    EXPECT_EQ(starts.at("without_end"), 1);
    EXPECT_EQ(starts.at("list").size(), ZlStats::MOST_ENTRIES);
    EXPECT_EQ(starts.at("more"), 29000);
    EXPECT_EQ(
        starts.at("list")[0],
        (Json{
            {"time", nullptr}, {"host", "web1"}, {"process", 1}, {"file", "a.log"}, {"line", 5}}));
    options._most = 1;
    EXPECT_EQ(part("Starts"), "Starts\n"
                              "       30000 started\n"
                              "       29999 ended without a stop mark\n"
                              "           1 without an end in the log: running, or ended since\n"
                              "  unknown time process 1 on web1, a.log:5\n"
                              "  and 29999 more\n");
}

// All in logs of their own; so none is forgotten because it has ended.
TEST_F(ZlStatsTest, ManyOpenStartsAreCountedInBoundedMemory)
{
    for (std::uint32_t i = 1; i <= 15000; ++i)
        addMark(ZlRecord::Kind::Start, i, std::to_string(i) + ".log");
    EXPECT_EQ(json().at("starts").at("without_end"), 15000);
    addMark(ZlRecord::Kind::Stop, 15000, "15000.log");
    EXPECT_EQ(json().at("starts").at("without_end"), 14999);
}

// Events of the other log come in between.
TEST_F(ZlStatsTest, EventsBelongToTheRecoveryOfTheirLog)
{
    const auto addIn = [this](const std::string& name, ZlRecord::Kind kind)
    {
        ZlRecord record = make(kind, BEGIN);
        record._file = &name;
        record._thread = 1;
        stats->add(record);
    };
    using Kind = ZlRecord::Kind;
    addIn("a.log", Kind::Event);
    addIn("a.log.1", Kind::RecoveryBegin);
    addIn("a.log.1", Kind::Event);
    addIn("b.log", Kind::Event);
    owner._process = 12;
    owner._processStart.reset();
    addIn("b.log", Kind::RecoveryBegin);
    addIn("b.log", Kind::Event);
    addIn("a.log", Kind::Event);
    addIn("a.log", Kind::RecoveryEnd);
    addIn("a.log", Kind::Event);
    addIn("b.log", Kind::Event);
    addIn("c.log", Kind::RecoveryEnd);
    EXPECT_EQ(part("Recoveries"), "Recoveries\n"
                                  "           2 recoveries\n"
                                  "           4 events in them\n"
                                  "  2 events of process 4711 on web1, started "
                                  "1970-01-01 00:00:00.000000Z\n"
                                  "  2 events of process 12 on web1, started unknown time, "
                                  "without an end\n");
    const Json recoveries = json().at("recoveries");
    EXPECT_EQ(recoveries.at("count"), 2);
    EXPECT_EQ(recoveries.at("events"), 4);
    EXPECT_EQ(recoveries.at("list")[0].at("complete"), true);
    EXPECT_EQ(recoveries.at("list")[1].at("complete"), false);
    EXPECT_EQ(recoveries.at("list")[1].at("process_start"), nullptr);
    EXPECT_EQ(json().at("events"), 7);
}

// What follows the mark says the rest.
TEST_F(ZlStatsTest, AMarkOfARecoveryMayHaveTheProcessAlone)
{
    for (const char* const log : {"a.log", "b.log"})
    {
        stats.emplace();
        addMark(ZlRecord::Kind::Start, 12, "a.log");
        addMark(ZlRecord::Kind::Start, 123, "b.log");
        const Zu::ZlOwner nobody;
        file = log;
        ZlRecord begin = make(ZlRecord::Kind::RecoveryBegin);
        begin._owner = &nobody;
        begin._process = 12;
        stats->add(begin);
        owner._process = 12;
        addEvent(BEGIN);
        const Json recovery = json().at("recoveries").at("list")[0];
        EXPECT_EQ(recovery.at("process"), 12);
        EXPECT_EQ(recovery.at("host"), "web1");
        EXPECT_EQ(recovery.at("process_start"), "1970-01-01T00:00:00.000000Z");
        // In the other log, it may be a process of another machine.
        const int ended = file == "a.log" ? 1 : 0;
        EXPECT_EQ(json().at("starts").at("ended_without_stop_mark"), ended);
        EXPECT_EQ(json().at("starts").at("without_end"), 2 - ended);
    }
}

TEST_F(ZlStatsTest, EventsOfARecoveryThatIsNotListedCount)
{
    for (std::size_t i = 0; i <= ZlStats::MOST_ENTRIES; ++i)
    {
        stats->add(make(ZlRecord::Kind::RecoveryBegin));
        addEvent(BEGIN);
        stats->add(make(ZlRecord::Kind::RecoveryEnd));
    }
    const Json recoveries = json().at("recoveries");
    EXPECT_EQ(recoveries.at("count"), ZlStats::MOST_ENTRIES + 1);
    EXPECT_EQ(recoveries.at("events"), ZlStats::MOST_ENTRIES + 1);
    EXPECT_EQ(recoveries.at("list").size(), ZlStats::MOST_ENTRIES);
    EXPECT_EQ(recoveries.at("more"), 1);
}

TEST_F(ZlStatsTest, NamesThatAreNoTextDoNoHarm)
{
    owner._host = "w\xff\x1b";
    file = "f\xfe\x1b";
    addEvent(BEGIN);
    stats->add(make(ZlRecord::Kind::Start));
    EXPECT_EQ(text().find('\x1b'), std::string::npos);
    const Json object = json();
    EXPECT_EQ(object.at("threads")[0].at("host"), "w\xEF\xBF\xBD\x1b");
    EXPECT_EQ(object.at("starts").at("list")[0].at("file"), "f\xEF\xBF\xBD\x1b");
}

// Rows of the histogram as numbers.
std::vector<std::uint64_t> rowsOf(const std::string& part)
{
    std::vector<std::uint64_t> rows;
    std::istringstream lines(part);
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line))
    {
        if (line.empty()) continue;
        std::istringstream words(line);
        std::string day;
        std::string time;
        std::uint64_t count = 0;
        words >> day >> time >> count;
        rows.push_back(count);
    }
    return rows;
}

TEST_F(ZlStatsTest, TheHistogramHasFewRowsAndAllEventsWhateverTheLength)
{
    for (const std::int64_t length :
         {std::int64_t{0}, std::int64_t{1}, MILLISECOND, 19 * MILLISECOND, 3 * SECOND, 20 * SECOND,
          7 * MINUTE, 300 * MINUTE, DAY, 11 * DAY, 400 * DAY, 90000 * DAY})
    {
        stats.emplace();
        constexpr int COUNT = 1000;
        for (int i = 0; i < COUNT; ++i) addEvent(BEGIN - length + length / (COUNT - 1) * i);
        const std::vector<std::uint64_t> rows = rowsOf(part("Events over time"));
        ASSERT_FALSE(rows.empty()) << length;
        EXPECT_LE(rows.size(), 20U) << length;
        // No width is more than five times the one before.
        const bool isLong = length >= 20 * MILLISECOND;
        EXPECT_GE(rows.size(), isLong ? 4U : 1U) << length;
        std::uint64_t sum = 0;
        for (const std::uint64_t row : rows) sum += row;
        EXPECT_EQ(sum, 1000U) << length;
        EXPECT_GT(rows.front(), 0U) << length;
        EXPECT_GT(rows.back(), 0U) << length;
    }
}

TEST_F(ZlStatsTest, AnyTimesCanBeCounted)
{
    addEvent(std::numeric_limits<std::int64_t>::min());
    addEvent(0);
    addEvent(std::numeric_limits<std::int64_t>::max());
    const std::vector<std::uint64_t> rows = rowsOf(part("Events over time"));
    std::uint64_t sum = 0;
    for (const std::uint64_t row : rows) sum += row;
    EXPECT_EQ(sum, 3U);
    EXPECT_LE(rows.size(), 20U);
    EXPECT_EQ(json().at("duration_ns"), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(json().at("gaps").size(), 2U);
}

TEST_F(ZlStatsTest, BarsOfBlocksHaveEighths)
{
    options._hasBlocks = true;
    // Room for 16 columns.
    options._width = 16 + 2 + 27 + 1 + 2 + 1;
    struct Row
    {
        int _count;
        const char* _bar;
    };
    const Row rows[] = {{64, "\u2588\u2588\u2588\u2588\u2588\u2588\u2588\u2588"
                             "\u2588\u2588\u2588\u2588\u2588\u2588\u2588\u2588"},
                        // 128 eighths for 64 events.
                        {2, "\u258c"},
                        {1, "\u258e"},
                        {5, "\u2588\u258e"},
                        {32, "\u2588\u2588\u2588\u2588\u2588\u2588\u2588\u2588"}};
    for (std::size_t i = 0; i < std::size(rows); ++i)
        for (int j = 0; j < rows[i]._count; ++j)
            addEvent(BEGIN + static_cast<std::int64_t>(i) * 100 * MILLISECOND);
    const std::string histogram = part("Events over time");
    for (const Row& row : rows)
    {
        std::string number = std::to_string(row._count);
        number.insert(0, 2 - number.size(), ' ');
        EXPECT_NE(histogram.find("Z " + number + " " + row._bar + "\n"), std::string::npos)
            << row._count << "\n"
            << histogram;
    }
}

TEST_F(ZlStatsTest, TheSmallestCountHasABar)
{
    for (int i = 0; i < 1000; ++i) addEvent(BEGIN);
    addEvent(BEGIN + SECOND);
    options._width = 1;
    const std::string histogram = part("Events over time");
    EXPECT_NE(histogram.find(" 1000 ##########\n"), std::string::npos) << histogram;
    EXPECT_NE(histogram.find("    1 #\n"), std::string::npos) << histogram;
}

// More minutes of events than are kept: ten together, with all events.
TEST_F(ZlStatsTest, ManyMinutesBecomeLongerSlices)
{
    constexpr int COUNT = 100010;
    for (int i = 0; i < COUNT; ++i) addEvent(BEGIN + i * MINUTE);
    const Json object = json();
    EXPECT_EQ(object.at("slice_minutes"), 10);
    EXPECT_EQ(object.at("slices").size(), 10001U);
    EXPECT_EQ(object.at("slices")[0],
              (Json{{"time", "2026-11-22T22:10:00.000000Z"}, {"events", 10}}));
    EXPECT_EQ(part("Busiest").substr(0, 19), "Busiest 10 minutes\n");
}

} // namespace

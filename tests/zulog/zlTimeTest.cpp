#include "zulog/zlTime.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <string>

namespace
{

using Zu::zlParseTime;
using Zu::ZlTimeWriter;

constexpr std::int64_t SECOND = 1000000000;
// 2026-11-22T22:10:51.5Z; the second from GNU date.
constexpr std::int64_t NOW = 1795385451 * SECOND + SECOND / 2;

std::string written(ZlTimeWriter::Form form, std::int64_t wall)
{
    std::string text;
    ZlTimeWriter writer(form);
    writer.append(text, wall);
    EXPECT_EQ(text.size(), writer.getLength());
    return text;
}

TEST(ZlTime, ReadsTimesWithAZone)
{
    const struct
    {
        const char* _text;
        std::int64_t _wall;
    } rows[] = {
        {"2026-11-22 22:10:51.5Z", NOW},
        {"2026-11-22T22:10:51.500000000Z", NOW},
        {"2026-11-22T23:10:51.5+01:00", NOW},
        {"2026-11-22T16:40:51.5-05:30", NOW},
        {"2026-11-22T22:10Z", NOW - 51 * SECOND - SECOND / 2},
        {"2026-11-22Z", NOW - (22 * 3600 + 10 * 60 + 51) * SECOND - SECOND / 2},
        {"1970-01-01T00:00:00.000000001Z", 1},
    };
    for (const auto& row : rows) EXPECT_EQ(zlParseTime(row._text, NOW), row._wall) << row._text;
}

TEST(ZlTime, ReadsTimesBeforeNow)
{
    EXPECT_EQ(zlParseTime("now", NOW), NOW);
    EXPECT_EQ(zlParseTime("0s ago", NOW), NOW);
    EXPECT_EQ(zlParseTime("90s ago", NOW), NOW - 90 * SECOND);
    EXPECT_EQ(zlParseTime("5m ago", NOW), NOW - 300 * SECOND);
    EXPECT_EQ(zlParseTime("2h ago", NOW), NOW - 7200 * SECOND);
    EXPECT_EQ(zlParseTime("3d ago", NOW), NOW - 3 * 86400 * SECOND);
    EXPECT_EQ(zlParseTime("2w ago", NOW), NOW - 14 * 86400 * SECOND);
    EXPECT_EQ(zlParseTime("1 h ago", NOW), NOW - 3600 * SECOND);
    EXPECT_EQ(zlParseTime("1h30m ago", NOW), NOW - 5400 * SECOND);
    EXPECT_EQ(zlParseTime("1 h  30 min  ago", NOW), NOW - 5400 * SECOND);
    EXPECT_EQ(zlParseTime("2 days 1s ago", NOW), NOW - (2 * 86400 + 1) * SECOND);
    EXPECT_EQ(zlParseTime("1 day ago", NOW), NOW - 86400 * SECOND);
}

TEST(ZlTime, ReadsDaysByTheirNames)
{
    const std::string today = written(ZlTimeWriter::Form::Local, NOW).substr(0, 10);
    const std::string yesterday =
        written(ZlTimeWriter::Form::Local, NOW - 86400 * SECOND).substr(0, 10);
    const struct
    {
        std::string _text;
        std::string _same;
    } rows[] = {
        {"today", today},
        {"yesterday", yesterday},
        {"today 00:00", today},
        {"today 23:10", today + " 23:10"},
        {"yesterday 23:10:51.5", yesterday + " 23:10:51.5"},
        {"yesterdayT23:10Z", yesterday + "T23:10Z"},
    };
    for (const auto& row : rows)
    {
        ASSERT_TRUE(zlParseTime(row._same, NOW)) << row._same;
        EXPECT_EQ(zlParseTime(row._text, NOW), zlParseTime(row._same, NOW)) << row._text;
    }
}

TEST(ZlTime, RefusesWhatIsNoTime)
{
    for (const char* const text : {"",
                                   "tomorrow",
                                   "yesterday23:10",
                                   "today 24:00",
                                   "today 23:1",
                                   "5m",
                                   "5mago",
                                   "5m 3 ago",
                                   "1h 5m",
                                   " 5m ago",
                                   "ago",
                                   "5 ago",
                                   "m ago",
                                   "-5m ago",
                                   "5y ago",
                                   "5M ago",
                                   "999999999d ago",
                                   "2026-13-01",
                                   "2026-02-29",
                                   "2026-11-22 24:00",
                                   "2026-11-22 23:60",
                                   "2026-11-22 23:10:60",
                                   "2026-11-22 23",
                                   "2026-11-22T",
                                   "2026-11-22 23:10:51.",
                                   "2026-11-22 23:10:51.1234567890",
                                   "2026-11-22 23:10Zulu",
                                   "2026-11-22 23:10+1",
                                   "23",
                                   "23:1",
                                   "22.11.2026",
                                   "1600-01-01"})
        EXPECT_EQ(zlParseTime(text, NOW), std::nullopt) << text;
}

TEST(ZlTime, ReadsLocalTimesAsItWritesThem)
{
    // Around the changes of most zones' clocks, by steps that meet no hour.
    for (std::int64_t second = 1740000000; second < 1780000000; second += 90061)
    {
        const std::int64_t wall = second * SECOND;
        const std::optional<std::int64_t> read =
            zlParseTime(written(ZlTimeWriter::Form::Local, wall), NOW);
        ASSERT_TRUE(read);
        // An hour that is shown twice is read as one of the two.
        EXPECT_EQ(written(ZlTimeWriter::Form::Local, *read),
                  written(ZlTimeWriter::Form::Local, wall));
        EXPECT_EQ(zlParseTime(written(ZlTimeWriter::Form::LocalIso, wall), NOW), wall);
    }
    const std::string today = written(ZlTimeWriter::Form::Local, NOW);
    EXPECT_EQ(zlParseTime(today.substr(11), NOW), NOW);
    EXPECT_EQ(zlParseTime(today.substr(0, 16), NOW), zlParseTime(today.substr(11, 5), NOW));
}

TEST(ZlTime, WritesTimesTruncatedToMicroseconds)
{
    EXPECT_EQ(written(ZlTimeWriter::Form::Utc, NOW), "2026-11-22 22:10:51.500000Z");
    EXPECT_EQ(written(ZlTimeWriter::Form::UtcIso, NOW), "2026-11-22T22:10:51.500000Z");
    EXPECT_EQ(written(ZlTimeWriter::Form::UtcIso, 999), "1970-01-01T00:00:00.000000Z");
    EXPECT_EQ(written(ZlTimeWriter::Form::UtcIso, -1), "1969-12-31T23:59:59.999999Z");
    std::string text;
    ZlTimeWriter writer(ZlTimeWriter::Form::UtcIso);
    for (const std::int64_t wall : {NOW, NOW + 1000, NOW + SECOND, NOW - 60 * SECOND})
    {
        writer.append(text, wall);
        text += '\n';
    }
    EXPECT_EQ(text, "2026-11-22T22:10:51.500000Z\n2026-11-22T22:10:51.500001Z\n"
                    "2026-11-22T22:10:52.500000Z\n2026-11-22T22:09:51.500000Z\n");
}

TEST(ZlTime, WritesSomethingForAnyNumber)
{
    using Limits = std::numeric_limits<std::int64_t>;
    EXPECT_EQ(written(ZlTimeWriter::Form::UtcIso, Limits::min()).substr(0, 5), "1677-");
    EXPECT_EQ(written(ZlTimeWriter::Form::UtcIso, Limits::max()).substr(0, 5), "2262-");
}

TEST(ZlTime, ReadsInstants)
{
    std::int64_t wall = 0;
    EXPECT_TRUE(Zu::zlParseInstant("2026-11-22T22:10:51.500000", wall));
    EXPECT_EQ(wall, NOW);
    for (const char* const text : {"2026-11-22T22:10:51.50000", "2026-11-22 22:10:51.500000",
                                   "1677-11-22T22:10:51.500000", "2262-01-01T00:00:00.000000"})
        EXPECT_FALSE(Zu::zlParseInstant(text, wall)) << text;
}

TEST(ZlTime, WritesLengthsOfTime)
{
    const struct
    {
        std::int64_t _nanoseconds;
        const char* _text;
    } rows[] = {
        {0, "+0.000000"},
        {1999, "+0.000001"},
        {-999, "+0.000000"},
        {-1000, "-0.000001"},
        {-1500000000, "-1.500000"},
        {std::numeric_limits<std::int64_t>::min(), "-9223372036.854775"},
    };
    for (const auto& row : rows)
    {
        std::string text;
        Zu::zlAppendSeconds(text, row._nanoseconds);
        EXPECT_EQ(text, row._text);
    }
}

} // namespace

#include "zulog/zlSyslog.h"

#include "logTexts.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using logTexts::ORIGIN;
using logTexts::TextSource;
using logTexts::tickLine;
using Texts = std::vector<std::string>;
using Zu::ZlRecord;
namespace LgTypes = Zu::LgTypes;

// The messages of all records of a log.
Texts messagesOf(const std::string& log, const Zu::ZlSyslog::Options& options = {})
{
    std::ostringstream reported;
    Zu::ZlReports reports(reported);
    Zu::ZlReader reader("/var/log/shop.log", std::make_unique<TextSource>(log), reports, {});
    Zu::ZlSyslog syslog(options);
    Texts messages;
    while (reader.next()) syslog.append(messages, reader.getRecord(), "/var/log/shop.log");
    return messages;
}

TEST(ZlSyslog, WritesAllThatIsKnown)
{
    EXPECT_EQ(messagesOf(ORIGIN + tickLine(7, "Warning: Orders late \"x]\\\"")),
              Texts({"<12>1 2026-11-22T10:00:00.000007Z alpha shop 4711 Orders [zulog@32473 "
                     "kind=\"event\" host=\"alpha\" process=\"4711\" thread=\"0x00000abc\" "
                     "level=\"Warning\" group=\"Orders\" ticks=\"7\" file=\"/var/log/shop.log\" "
                     "line=\"2\"] late \"x]\\\""}));
}

TEST(ZlSyslog, WhatIsNotKnownIsADashOrMissing)
{
    EXPECT_EQ(messagesOf("no log at all \xff\n"),
              Texts({"<13>1 - - shop - no [zulog@32473 kind=\"event\" group=\"no\" "
                     "file=\"/var/log/shop.log\" line=\"1\"] log at all \xef\xbf\xbd"}));
}

TEST(ZlSyslog, TheProgramMayBeNamed)
{
    Zu::ZlSyslog::Options options;
    options._app = "my shop";
    const Texts messages = messagesOf(ORIGIN + tickLine(7, "Error: x"), options);
    EXPECT_EQ(messages.front().substr(0, 45), "<11>1 2026-11-22T10:00:00.000007Z alpha my_sh");
}

TEST(ZlSyslog, ALongTextIsSentInParts)
{
    Zu::ZlSyslog::Options options;
    options._longest = Zu::ZlSyslog::LEAST_LONGEST;
    std::string text;
    for (int i = 0; i < 2000; ++i) text += "\xc3\xa4";
    const Texts messages = messagesOf(ORIGIN + tickLine(7, "Error: Orders " + text), options);
    ASSERT_EQ(messages.size(), 3U);
    std::string whole;
    for (std::size_t i = 0; i < messages.size(); ++i)
    {
        EXPECT_LE(messages[i].size(), options._longest);
        const std::string part = " part=\"" + std::to_string(i + 1) + "\" parts=\"3\"] ";
        const std::size_t place = messages[i].find(part);
        ASSERT_NE(place, std::string::npos) << messages[i];
        whole += messages[i].substr(place + part.size());
    }
    EXPECT_EQ(whole, text);
}

struct Severity
{
    ZlRecord::Kind _kind;
    std::optional<LgTypes::Level> _level;
    int _severity;
};

// The severities of RFC 5424, table 2: 2 critical, 3 error, 4 warning, 5 notice, 6 informational,
// 7 debug.
constexpr Severity SEVERITIES[] = {
    {ZlRecord::Kind::Event, LgTypes::InternalError, 2},
    {ZlRecord::Kind::Event, LgTypes::FatalError, 2},
    {ZlRecord::Kind::Event, LgTypes::Error, 3},
    {ZlRecord::Kind::Event, LgTypes::Warning, 4},
    {ZlRecord::Kind::Event, LgTypes::Informational, 6},
    {ZlRecord::Kind::Event, LgTypes::Tracing, 7},
    {ZlRecord::Kind::Event, LgTypes::Profiling, 7},
    {ZlRecord::Kind::Event, std::nullopt, 5},
    {ZlRecord::Kind::Overflow, LgTypes::Tracing, 4},
    {ZlRecord::Kind::NotWritten, std::nullopt, 3},
    {ZlRecord::Kind::Start, std::nullopt, 5},
    {ZlRecord::Kind::Unreadable, std::nullopt, 5},
};

TEST(ZlSyslog, SeverityFollowsFromTheLevel)
{
    for (const Severity& row : SEVERITIES)
    {
        ZlRecord record;
        record._kind = row._kind;
        record._level = row._level;
        EXPECT_EQ(Zu::zlSeverityOf(record), row._severity) << Zu::zlKindName(row._kind);
    }
}

TEST(ZlSyslog, ALogNamesItsProgram)
{
    EXPECT_EQ(Zu::zlAppOf("/var/log/events.log"), "events");
    EXPECT_EQ(Zu::zlAppOf("C:\\logs\\shop.4711.log"), "shop");
    EXPECT_EQ(Zu::zlAppOf("events"), "events");
    EXPECT_EQ(Zu::zlAppOf(".hidden.log"), ".hidden");
}

TEST(ZlSyslog, TextsAreUtf8)
{
    const struct
    {
        const char* _text;
        const char* _utf8;
    } rows[] = {
        {"plain", "plain"},
        {"\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80", "\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80"},
        {"a\xc0\x80", "a\xef\xbf\xbd\xef\xbf\xbd"},
        {"\xed\xa0\x80", "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd"},
        {"\xe2\x82", "\xef\xbf\xbd\xef\xbf\xbd"},
        {"\xf4\x90\x80\x80", "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd"},
    };
    for (const auto& row : rows)
    {
        std::string text;
        Zu::zlAppendUtf8(text, row._text);
        EXPECT_EQ(text, row._utf8);
    }
}

TEST(ZlSyslog, APartEndsBetweenCharacters)
{
    EXPECT_EQ(Zu::zlPartLength("abc", 3), 3U);
    EXPECT_EQ(Zu::zlPartLength("abcd", 3), 3U);
    EXPECT_EQ(Zu::zlPartLength("a\xe2\x82\xac", 3), 1U);
    EXPECT_EQ(Zu::zlPartLength("a\xe2\x82\xac-", 4), 4U);
    // There is no character to be kept.
    EXPECT_EQ(Zu::zlPartLength("\x80\x80\x80\x80\x80\x80", 5), 5U);
}

} // namespace

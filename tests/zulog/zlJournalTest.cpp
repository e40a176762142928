#include "zulog/zlJournal.h"

#include "logTexts.h"

#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using logTexts::ORIGIN;
using logTexts::TextSource;
using logTexts::tickLine;
using Texts = std::vector<std::string>;

// The entries of all records of a log.
Texts entriesOf(const std::string& log, const std::string& app = "")
{
    std::ostringstream reported;
    Zu::ZlReports reports(reported);
    Zu::ZlReader reader("/logs/shop.log", std::make_unique<TextSource>(log), reports, {});
    Zu::ZlJournalForm form(app, false);
    Texts entries;
    while (reader.next()) form.append(entries, reader.getRecord(), "/logs/shop.log");
    return entries;
}

std::string field(const std::string& value)
{
    std::string out;
    Zu::zlAppendJournalField(out, "NAME", value);
    return out;
}

TEST(ZlJournalForm, ValuesOfOneLineStandBehindAnEqualsSign)
{
    EXPECT_EQ(field("text"), "NAME=text\n");
    EXPECT_EQ(field(""), "NAME=\n");
    EXPECT_EQ(field("a=b"), "NAME=a=b\n");
    const std::string large(100000, 'x');
    EXPECT_EQ(field(large), "NAME=" + large + "\n");
}

TEST(ZlJournalForm, ValuesOfSeveralLinesHaveTheirLengthInFront)
{
    EXPECT_EQ(field("a\nb"), "NAME\n" + std::string("\3\0\0\0\0\0\0\0", 8) + "a\nb\n");
    EXPECT_EQ(field("\n"), "NAME\n" + std::string("\1\0\0\0\0\0\0\0", 8) + "\n\n");
    const std::string large = "\n" + std::string(0x012344, 'x');
    EXPECT_EQ(field(large), "NAME\n" + std::string("\x45\x23\1\0\0\0\0\0", 8) + large + "\n");
}

TEST(ZlJournalForm, AnEntryHasWhatTheRecordHas)
{
    EXPECT_EQ(entriesOf(ORIGIN + tickLine(7, "Error: Orders is late")),
              Texts({"MESSAGE=is late\n"
                     "PRIORITY=3\n"
                     "SYSLOG_IDENTIFIER=shop\n"
                     "ZULOG_TIME=2026-11-22T10:00:00.000007Z\n"
                     "ZULOG_HOST=alpha\n"
                     "ZULOG_PROCESS=4711\n"
                     "ZULOG_THREAD=2748\n"
                     "ZULOG_LEVEL=Error\n"
                     "ZULOG_GROUP=Orders\n"
                     "ZULOG_KIND=event\n"
                     "ZULOG_FILE=/logs/shop.log\n"
                     "ZULOG_LINE=2\n"}));
}

TEST(ZlJournalForm, WhatIsNotKnownIsLeftOut)
{
    EXPECT_EQ(entriesOf("no log at all\n"), Texts({"MESSAGE=log at all\n"
                                                   "PRIORITY=5\n"
                                                   "SYSLOG_IDENTIFIER=shop\n"
                                                   "ZULOG_GROUP=no\n"
                                                   "ZULOG_KIND=event\n"
                                                   "ZULOG_FILE=/logs/shop.log\n"
                                                   "ZULOG_LINE=1\n"}));
}

TEST(ZlJournalForm, LostEventsAreCountedAndTheProgramMayBeNamed)
{
    const Texts entries = entriesOf(tickLine(2, "Warning: Event overflow [5]"), "my shop");
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_NE(entries[0].find("\nZULOG_COUNT=5\n"), std::string::npos) << entries[0];
    EXPECT_NE(entries[0].find("\nZULOG_KIND=overflow\n"), std::string::npos) << entries[0];
    EXPECT_NE(entries[0].find("\nSYSLOG_IDENTIFIER=my shop\n"), std::string::npos) << entries[0];
}

} // namespace

#include "zulog/zlMerge.h"

#include "logTexts.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using logTexts::ORIGIN;
using logTexts::TextSource;
using logTexts::tickLine;
using Texts = std::vector<std::string>;

// The texts of the records of some logs, in the order of the merge.
Texts merged(const Texts& logs)
{
    std::ostringstream reported;
    Zu::ZlReports reports(reported);
    std::vector<std::unique_ptr<Zu::ZlReader>> readers;
    for (const std::string& log : logs)
        readers.push_back(std::make_unique<Zu::ZlReader>("a.log", std::make_unique<TextSource>(log),
                                                         reports, Zu::ZlReader::Options{}));
    Zu::ZlMerge merge(std::move(readers));
    Texts texts;
    while (const Zu::ZlRecord* const record = merge.next())
        texts.push_back(std::string(record->_text));
    EXPECT_EQ(merge.next(), nullptr);
    EXPECT_EQ(reported.str(), "");
    return texts;
}

TEST(ZlMerge, OrdersTheRecordsOfSeveralLogsByTime)
{
    EXPECT_EQ(
        merged({ORIGIN + tickLine(1, "Error: A 1") + tickLine(5, "Error: A 5"),
                // Its clock is 300 microseconds behind.
                logTexts::OTHER_ORIGIN + tickLine(302, "Error: A 2") + tickLine(306, "Error: A 6"),
                "", ORIGIN + tickLine(3, "Error: A 3")}),
        Texts({"1", "2", "3", "5", "6"}));
    EXPECT_EQ(merged({}), Texts());
}

TEST(ZlMerge, PrefersTheLogThatWasNamedFirst)
{
    EXPECT_EQ(merged({ORIGIN + tickLine(1, "Error: A a") + tickLine(1, "Error: A b"),
                      ORIGIN + tickLine(1, "Error: A c")}),
              Texts({"a", "b", "c"}));
}

TEST(ZlMerge, KeepsTheOrderOfEachLog)
{
    // Of the first one, the second record goes back.
    EXPECT_EQ(merged({ORIGIN + tickLine(4, "Error: A a") + tickLine(1, "Error: A b") +
                          tickLine(9, "Error: A f"),
                      ORIGIN + tickLine(3, "Error: A c") + tickLine(5, "Error: A e")}),
              Texts({"c", "a", "b", "e", "f"}));
}

TEST(ZlMerge, PutsWhatHasNoTimeBehindTheRecordInFrontOfIt)
{
    EXPECT_EQ(merged({"the first\n" + ORIGIN + tickLine(4, "Error: A 4") + logTexts::STOPPED,
                      ORIGIN + tickLine(3, "Error: A 3") + tickLine(4, "Error: A 4b")}),
              Texts({"first", "3", "4", "===== Message Logger Stopped =====", "4b"}));
}

// However events are spread over logs, merging gives them back in their order.
TEST(ZlMerge, UndoesAnySpreading)
{
    std::mt19937 random(7);
    for (int run = 0; run < 100; ++run)
    {
        Texts logs(1 + random() % 20, ORIGIN);
        Texts expected;
        for (std::uint32_t tick = 1; tick <= 200; ++tick)
        {
            expected.push_back(std::to_string(tick));
            logs[random() % logs.size()] += tickLine(tick, "Error: A " + expected.back());
        }
        ASSERT_EQ(merged(logs), expected) << run;
    }
}

} // namespace

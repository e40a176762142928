#include "zulog/zlShow.h"

#include "logTexts.h"
#include "support/fileTest.h"
#include "support/tempDir.h"
#include "zulog/zlFile.h"

#include <cstddef>
#include <cstdio>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using logTexts::ORIGIN;
using logTexts::tickLine;
using logTexts::writeFile;
namespace LgTypes = Zu::LgTypes;

constexpr std::uint32_t bitOf(LgTypes::Level level)
{
    return 1U << static_cast<unsigned>(level);
}

class ZlShow : public testing::Test
{
protected:
    ZlShow()
    {
        _options._formatOptions._times = Zu::ZlFormatOptions::Times::Ticks;
    }

    // What a function does with a printer.
    template <class Function> std::string print(Function function)
    {
        const std::string path = _directory.file("out");
        std::FILE* const file = std::fopen(path.c_str(), "wb");
        Zu::ZlReports reports(_reported);
        {
            Zu::ZlOutput output(file);
            Zu::ZlPrinter printer(_options, output, reports);
            function(printer);
            output.write();
        }
        std::fclose(file);
        return support::readFile(path);
    }

    // Each record of a log, with a call in front of it.
    template <class Function> void forEach(const std::string& log, Function function)
    {
        std::ostringstream ignored;
        Zu::ZlReports reports(ignored);
        Zu::ZlReader reader("a.log", std::make_unique<logTexts::TextSource>(log), reports, {});
        while (reader.next()) function(reader.getRecord());
    }

    std::string printAll(const std::string& log)
    {
        return print([&](Zu::ZlPrinter& printer)
                     { forEach(log, [&](const Zu::ZlRecord& record) { printer.add(record); }); });
    }

    support::TempDir _directory;
    std::ostringstream _reported;
    Zu::ZlShowOptions _options;
};

std::string shownLine(std::size_t number, bool isSelected)
{
    std::string digits = std::to_string(number);
    digits.insert(0, 10 - digits.size(), '0');
    return "0000000000 " + digits + "       - 0x00000abc " +
           (isSelected ? "Error          " : "Tracing        ") + "x\n";
}

// All lines that have a selected one near enough, with "--" where lines are missing between them.
std::string slowContext(const std::vector<bool>& areSelected, std::size_t context)
{
    std::string text;
    std::size_t end = 0;
    for (std::size_t i = 0; i < areSelected.size(); ++i)
    {
        bool isNear = false;
        for (std::size_t j = 0; j < areSelected.size(); ++j)
            isNear = isNear || (areSelected[j] && (i > j ? i - j : j - i) <= context);
        if (!isNear) continue;
        if (end > 0 && end < i) text += "--\n";
        text += shownLine(i, areSelected[i]);
        end = i + 1;
    }
    return text;
}

TEST_F(ZlShow, NeighboursAreThoseOfASlowReference)
{
    constexpr int ROUNDS = 200;
    std::mt19937 random(20261122);
    _options._selection._levels = bitOf(LgTypes::Error);
    for (int round = 0; round < ROUNDS; ++round)
    {
        const std::size_t share = random() % 9 + 1;
        std::vector<bool> areSelected(random() % 40);
        std::string log;
        for (std::size_t i = 0; i < areSelected.size(); ++i)
        {
            areSelected[i] = random() % share == 0;
            log +=
                tickLine(static_cast<std::uint32_t>(i), areSelected[i] ? "Error: x" : "Tracing: x");
        }
        _options._context = random() % 4 + 1;
        ASSERT_EQ(printAll(log), slowContext(areSelected, _options._context)) << round;
    }
}

TEST_F(ZlShow, OfTheLastRecordsThoseThatAreSelectedAreKept)
{
    _options._selection._levels = bitOf(LgTypes::Error);
    std::string log;
    for (std::uint32_t i = 0; i < 10; ++i)
        log += tickLine(i, i % 2 == 0 ? "Error: x" : "Tracing: x");
    const auto show = [&](std::size_t count)
    {
        return print(
            [&](Zu::ZlPrinter& printer)
            {
                printer.keepLast(count);
                forEach(log, [&](const Zu::ZlRecord& record) { printer.add(record); });
                printer.showLast();
                // From then on all are shown.
                forEach(tickLine(11, "Error: x"),
                        [&](const Zu::ZlRecord& record) { printer.add(record); });
            });
    };
    EXPECT_EQ(show(0), shownLine(11, true));
    EXPECT_EQ(show(2), shownLine(6, true) + shownLine(8, true) + shownLine(11, true));
    EXPECT_EQ(show(100), shownLine(0, true) + shownLine(2, true) + shownLine(4, true) +
                             shownLine(6, true) + shownLine(8, true) + shownLine(11, true));
}

TEST_F(ZlShow, AnUnknownFormatIsRefused)
{
    _options._format = "xml";
    try
    {
        printAll("");
        FAIL() << "it was taken";
    }
    catch (const Zu::ZlError& error)
    {
        EXPECT_STREQ(error.what(), "\"xml\" is no format");
    }
}

TEST_F(ZlShow, TheEndReportsRecordsWithoutATime)
{
    _options._selection._since = 0;
    EXPECT_EQ(print(
                  [&](Zu::ZlPrinter& printer)
                  {
                      forEach(tickLine(1, "Error: x") + tickLine(2, "Error: x"),
                              [&](const Zu::ZlRecord& record) { printer.add(record); });
                      EXPECT_EQ(_reported.str(), "");
                      printer.end();
                  }),
              "");
    EXPECT_NE(_reported.str().find("2 records"), std::string::npos) << _reported.str();
}

struct Row
{
    std::uint32_t _levels;
    std::size_t _context;
    std::size_t _logs;
    std::size_t _bufferSize;
    bool _areAllRead;
};

constexpr std::uint32_t SEVERE = bitOf(LgTypes::Error) | bitOf(LgTypes::Warning);
constexpr std::uint32_t ALL = Zu::ZlSelection::ALL_LEVELS;
constexpr std::size_t KIB = 1024;

// All buffers together take 8 MiB, and none more than 256 KiB. Lines of other levels are skipped
// unless they may be neighbours.
constexpr Row READING[] = {
    {ALL, 0, 0, 256 * KIB, true},     {ALL, 0, 1, 256 * KIB, true},
    {ALL, 0, 32, 256 * KIB, true},    {ALL, 0, 64, 128 * KIB, true},
    {ALL, 0, 1024, 8 * KIB, true},    {ALL, 3, 1, 256 * KIB, true},
    {SEVERE, 0, 1, 256 * KIB, false}, {SEVERE, 0, 64, 128 * KIB, false},
    {SEVERE, 1, 1, 256 * KIB, true},
};

TEST_F(ZlShow, ReadsWhatASelectionNeeds)
{
    const Zu::ZlReader::Options usual;
    for (const Row& row : READING)
    {
        _options._selection._levels = row._levels;
        _options._context = row._context;
        const Zu::ZlReader::Options reading = Zu::zlReaderOptions(_options, row._logs);
        EXPECT_EQ(reading._bufferSize, row._bufferSize) << row._logs;
        EXPECT_EQ(reading._areMarksSkipped, !row._areAllRead);
        EXPECT_EQ(reading._levels, row._areAllRead ? usual._levels : row._levels);
    }
}

TEST_F(ZlShow, AllLogsOfTheWordsAreMerged)
{
    const std::string first = _directory.file("a.log");
    const std::string second = _directory.file("b.log");
    writeFile(first + ".1", ORIGIN + tickLine(1, "Error: one") + tickLine(3, "Error: three"));
    writeFile(first, ORIGIN + tickLine(5, "Error: five"));
    writeFile(second, ORIGIN + tickLine(2, "Error: two") + tickLine(4, "Error: four"));
    _options._words = {first, _directory.file("missing"), second};
    _options._areRotatedAdded = true;
    Zu::ZlReports reports(_reported);
    Zu::ZlMerge merge = Zu::zlOpenMerge(_options, reports);
    std::string texts;
    while (const Zu::ZlRecord* const record = merge.next())
        texts += std::string(record->_group) + std::string(record->_text) + " ";
    EXPECT_EQ(texts, "one two three four five ");
    EXPECT_TRUE(reports.hasFailed());
    EXPECT_NE(_reported.str().find("missing"), std::string::npos);
}

} // namespace

#include "app/lgServiceRecovery.h"

#include "app/lgMapFile.h"
#include "app/lgServiceMap.h"

#include "support/childProcess.h"
#include "support/fileTest.h"
#include "support/platform.h"
#include "support/tempDir.h"
#include "support/variableGuard.h"
#include "support/victimLine.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace
{

using support::ProgramResult;
using support::TempDir;

// What the log files of a directory hold of the victim's threads.
struct Found
{
    // For each thread: how often each number is there.
    std::map<int, std::vector<int>> _numbers;
    int _lost = 0;
    int _odd = 0;
    int _recoveries = 0;
    int _lines = 0;
};

class LgServiceRecoveryTest : public testing::Test
{
protected:
    ~LgServiceRecoveryTest() override
    {
        for (const std::string& name : maps()) std::remove((Zu::lgMapDirectory() + name).c_str());
    }

    ProgramResult run(const std::string& way, int threads, int count, int step = 0)
    {
        numbersFile = _dir.file("numbers" + std::to_string(++_runs));
        return support::runProgram("logVictim",
                                   {way, numbersFile, std::to_string(threads),
                                    std::to_string(count), std::to_string(step)},
                                   {{"B7Q_TEST_DIR", _logs.path()}});
    }

    // A service that has nothing of its own to log.
    ProgramResult recover()
    {
        return run("main", 1, 0);
    }

    std::vector<std::string> maps() const
    {
        return Zu::lgNamesIn(Zu::lgMapDirectory(), Zu::LgServiceMap::prefixFor(_logs.path()));
    }

    // How many statements of a thread have returned in the last run.
    std::uint32_t returnedOf(int thread) const
    {
        std::ifstream file(numbersFile, std::ios::binary);
        file.seekg(thread * 4);
        std::uint32_t number = 0;
        file.read(reinterpret_cast<char*>(&number), sizeof number);
        return number;
    }

    Found find() const
    {
        Found found;
        std::ifstream file(_logs.file("events.log"), std::ios::binary);
        for (std::string line; std::getline(file, line);)
        {
            if (line.rfind("===== Recovered: events", 0) == 0) ++found._recoveries;
            if (line.empty() || line.rfind("=====", 0) == 0) continue;
            ++found._lines;
            int lost = 0;
            const std::size_t text = std::min(line.find(": "), line.size());
            if (const auto event = support::victimEventOf(line))
            {
                std::vector<int>& numbers = found._numbers[event->_thread];
                const auto number = static_cast<std::size_t>(event->_number);
                numbers.resize(std::max(numbers.size(), number + 1));
                ++numbers[number];
            }
            else if (std::sscanf(line.c_str() + text, ": Event overflow [%d]", &lost) == 1)
                found._lost += lost;
            else
                ++found._odd;
        }
        return found;
    }

    // Each number up to the last statement that returned is there once, but for the counted losses.
    void checkAll(int threads, const std::string& what)
    {
        const Found found = find();
        int missing = 0;
        for (int thread = 0; thread < threads; ++thread)
        {
            const auto numbers = found._numbers.find(thread);
            const std::vector<int> counts =
                numbers == found._numbers.end() ? std::vector<int>() : numbers->second;
            const std::uint32_t returned = returnedOf(thread);
            for (std::size_t i = 0; i < counts.size(); ++i)
                ASSERT_LE(counts[i], 1) << what << ": thread " << thread << ", number " << i;
            for (std::size_t i = 0; i < std::max<std::size_t>(returned, counts.size()); ++i)
                if (i >= counts.size() || counts[i] == 0) ++missing;
        }
        // A thread may be killed between the count of a loss and the end of its statement.
        EXPECT_LE(missing, found._lost) << what;
        EXPECT_GE(missing + threads, found._lost) << what;
        EXPECT_LE(found._odd, 1) << what;
        EXPECT_TRUE(maps().empty()) << what;
    }

    std::string logPath() const
    {
        return _logs.file("events.log");
    }

    // As it was when a process left it.
    static void putMap(const std::string& path, const std::string& text)
    {
        support::writeFile(path, text);
        std::filesystem::permissions(path, std::filesystem::perms::owner_read |
                                               std::filesystem::perms::owner_write);
    }

    // Places at which something may go wrong: about each line's end, and some others.
    static std::vector<std::size_t> cutsOf(const std::string& text)
    {
        std::vector<std::size_t> cuts;
        for (std::size_t size = 0; size <= text.size(); ++size)
        {
            const std::size_t end = text.find('\n', size < 2 ? 0 : size - 2);
            if (size % 29 == 0 || (end != std::string::npos && end <= size + 1))
                cuts.push_back(size);
        }
        return cuts;
    }

    TempDir _dir;
    TempDir _logs;
    std::string numbersFile;
    int _runs = 0;
};

const std::vector<std::string> WAYS = {"main",       "living", "outlives", "exit",
                                       "quick_exit", "_exit",  "abort",    "terminate",
                                       "uncaught",   "segv",   "kill"};

TEST_F(LgServiceRecoveryTest, WhateverTheEndEachAcceptedEventIsThereOnceAfterTheNextStart)
{
    for (const std::string& way : WAYS)
    {
        TempDir other;
        run(way, 1, 400);
        const std::string numbers = numbersFile;
        recover();
        numbersFile = numbers;
        ASSERT_EQ(returnedOf(0), 400U) << way;
        const Found found = find();
        ASSERT_EQ(found._numbers.at(0).size(), 400U) << way;
        checkAll(1, way);
        std::remove(_logs.file("events.log").c_str());
        std::remove(_logs.file("prof.log").c_str());
    }
}

// These ends wait until everything is written.
TEST_F(LgServiceRecoveryTest, AnOrderlyEndNeedsNoRecovery)
{
    for (const char* const way : {"main", "living", "outlives", "exit", "terminate", "uncaught"})
    {
        run(way, 3, 400);
        const Found found = find();
        EXPECT_EQ(found._lines, 1200) << way;
        EXPECT_EQ(found._recoveries, 0) << way;
        std::remove(_logs.file("events.log").c_str());
        recover();
        EXPECT_EQ(find()._lines, 0) << way;
    }
}

TEST_F(LgServiceRecoveryTest, AServiceThatOutlivesTheLoggerEndsWithIt)
{
    const ProgramResult result = run("outlives", 3, 400);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err,
              "The log service ends with the logger. It has to end before the packages do.\n");
    EXPECT_EQ(find()._lines, 1200);
}

// Of three maps of another directory one is kept; only the one with events is worth a line. Its
// events could not be written, so they are still there when the process is killed.
TEST_F(LgServiceRecoveryTest, MapsThatAreTooManyAreDiscardedAndEmptyOnesWithoutAWord)
{
    TempDir maps;
    const TempDir other;
    const auto leave = [&](const std::string& way, const TempDir& logs, int count)
    {
        return support::runProgram(
            "logVictim",
            {way, maps.file("numbers" + std::to_string(++_runs)), "1", std::to_string(count)},
            {{"B7Q_TEST_DIR", logs.path()},
             {"ZU_LOG_SERVICE_MAPPING_DIRECTORY", maps.path()},
             {"ZU_LOG_SERVICE_KEPT_MAPPINGS", "1"}});
    };
    const auto countMaps = [&] { return Zu::lgNamesIn(maps.file(""), Zu::lgMapPrefix()).size(); };
    leave("_exit", other, 0);
    const TempDir third;
    leave("blocked kill", third, 5);
    ASSERT_EQ(countMaps(), 2U);
    const ProgramResult first = leave("main", _logs, 0);
    EXPECT_EQ(first.err, "");
    EXPECT_EQ(countMaps(), 1U);
    const TempDir fourth;
    leave("blocked kill", fourth, 5);
    const ProgramResult second = leave("main", _logs, 0);
    EXPECT_NE(second.err.find("are discarded: there are too many such files"), std::string::npos)
        << second.err;
    EXPECT_EQ(countMaps(), 1U);
}

TEST_F(LgServiceRecoveryTest, AtEveryStepOfABatch)
{
    for (int step = 1; step <= 30; ++step)
    {
        run("step", 2, 50, step);
        const std::string numbers = numbersFile;
        recover();
        numbersFile = numbers;
        checkAll(2, "step " + std::to_string(step));
        if (HasFatalFailure()) return;
        std::remove(_logs.file("events.log").c_str());
    }
}

// The system may take any part of a text before the process is killed.
TEST_F(LgServiceRecoveryTest, AFileThatEndsAnywhereInABatch)
{
    const std::string log = _logs.file("events.log");
    // Of the first batch: written, but not yet noted as such.
    constexpr int WROTE = 4;
    run("step", 1, 20, WROTE);
    // The cuts reach into a line of an event before the last one.
    constexpr int TRIES = 100;
    for (int i = 0; i < TRIES && find()._lines < 2; ++i)
    {
        recover();
        std::remove(log.c_str());
        run("step", 1, 20, WROTE);
    }
    ASSERT_GE(find()._lines, 2);
    const std::string numbers = numbersFile;
    const std::vector<std::string> left = maps();
    ASSERT_EQ(left.size(), 1U);
    const std::string map = Zu::lgMapDirectory() + left.front();
    const std::string mapText = support::readFile(map);
    const std::string text = support::readFile(log);
    const std::size_t line = text.size() - text.rfind('\n', text.size() - 2) - 1;
    ASSERT_GT(line, 20U);
    for (std::size_t cut = 0; cut <= line + 2; ++cut)
    {
        std::filesystem::resize_file(log, text.size() - cut);
        support::writeFile(map, mapText);
        std::filesystem::permissions(map, std::filesystem::perms::owner_read |
                                              std::filesystem::perms::owner_write);
        recover();
        numbersFile = numbers;
        checkAll(1, std::to_string(cut) + " characters are missing");
        const int fragments = cut <= 1 || cut == line || cut == line + 1 ? 0 : 1;
        EXPECT_EQ(find()._odd, fragments) << cut;
        if (HasFailure()) return;
        // The same file, with what it had.
        support::writeFile(log, text);
    }
}

// What waits for a file that fails outlives the process, too, even one that ends in order.
TEST_F(LgServiceRecoveryTest, WhateverTheEndWhatWaitsForAFileIsThereOnceWhenItWorksAgain)
{
    for (const std::string& way : WAYS)
    {
        run("blocked " + way, 2, 100);
        const std::string numbers = numbersFile;
        ASSERT_EQ(maps().size(), 1U) << way;
        // The file still fails.
        recover();
        ASSERT_EQ(maps().size(), 1U) << way;
        std::filesystem::remove(logPath());
        recover();
        numbersFile = numbers;
        ASSERT_EQ(returnedOf(0), 100U) << way;
        ASSERT_EQ(find()._lines, 200) << way;
        EXPECT_EQ(find()._recoveries, 1) << way;
        checkAll(2, way);
        std::remove(logPath().c_str());
        std::remove(_logs.file("prof.log").c_str());
    }
}

// At most 64 KiB wait; the others are counted, and the count is as safe as the lines.
TEST_F(LgServiceRecoveryTest, WhatWasDroppedIsSaidOnce)
{
    const support::VariableGuard limit("ZU_LOG_SERVICE_PENDING_LIMIT");
    limit.set("64K");
    for (const std::string way : {"blocked kill", "blocked main", "unblocked write"})
    {
        run(way, 1, 2000);
        std::filesystem::remove(way[0] == 'b' ? logPath() : std::string());
        recover();
        const std::string text = support::readFile(logPath());
        unsigned long long dropped = 0;
        const std::string note = "===== Not Written: ";
        const std::size_t place = text.find(note);
        ASSERT_NE(place, std::string::npos) << way;
        std::sscanf(text.c_str() + place + note.size(), "%llu events since ", &dropped);
        EXPECT_GT(dropped, 100U) << way;
        EXPECT_EQ(text.find(note, place + 1), std::string::npos) << way;
        const unsigned long long all = way[0] == 'b' ? 2000 : 4000;
        EXPECT_EQ(static_cast<unsigned long long>(find()._lines) + dropped, all) << way;
        EXPECT_TRUE(maps().empty()) << way;
        std::remove(logPath().c_str());
    }
}

TEST_F(LgServiceRecoveryTest, AtEveryStepWhileWhatWaitedIsWritten)
{
    for (int step = 1; step <= 30; ++step)
    {
        run("unblocked step", 2, 20, step);
        const std::string numbers = numbersFile;
        recover();
        numbersFile = numbers;
        checkAll(2, "step " + std::to_string(step));
        if (HasFatalFailure()) return;
        std::remove(logPath().c_str());
    }
}

TEST_F(LgServiceRecoveryTest, AFileThatEndsAnywhereInWhatWaited)
{
    run("unblocked write", 1, 3);
    const std::string numbers = numbersFile;
    const std::vector<std::string> left = maps();
    ASSERT_EQ(left.size(), 1U);
    const std::string map = Zu::lgMapDirectory() + left.front();
    const std::string mapText = support::readFile(map);
    const std::string text = support::readFile(logPath());
    for (const std::size_t size : cutsOf(text))
    {
        support::writeFile(logPath(), text.substr(0, size));
        putMap(map, mapText);
        recover();
        numbersFile = numbers;
        checkAll(1, std::to_string(size) + " characters are there");
        if (HasFailure()) return;
    }
}

// One that is itself killed while it writes what waited, and the one after it, too.
TEST_F(LgServiceRecoveryTest, AFileThatEndsAnywhereInARecoveryOfWhatWaited)
{
    // After the batch is stored, committed, and written.
    constexpr int WROTE = 3;
    run("blocked kill", 1, 3);
    const std::string numbers = numbersFile;
    const std::vector<std::string> left = maps();
    ASSERT_EQ(left.size(), 1U);
    std::filesystem::remove(logPath());
    run("recovery step", 1, 0, WROTE);
    const std::string map = Zu::lgMapDirectory() + left.front();
    const std::string mapText = support::readFile(map);
    const std::string text = support::readFile(logPath());
    const std::vector<std::size_t> cuts = cutsOf(text);
    for (std::size_t i = 0; i < cuts.size(); ++i)
    {
        support::writeFile(logPath(), text.substr(0, cuts[i]));
        putMap(map, mapText);
        run("recovery step", 1, 0, WROTE);
        const std::string second = support::readFile(logPath());
        const std::vector<std::size_t> others = cutsOf(second);
        support::writeFile(logPath(),
                           second.substr(0, std::max(cuts[i], others[i * 7 % others.size()])));
        recover();
        numbersFile = numbers;
        const Found found = find();
        ASSERT_EQ(found._numbers.count(0), 1U) << cuts[i];
        ASSERT_EQ(found._numbers.at(0), (std::vector<int>{1, 1, 1})) << cuts[i];
        EXPECT_EQ(found._lost, 0);
        EXPECT_TRUE(maps().empty());
        if (HasFailure()) return;
    }
}

TEST_F(LgServiceRecoveryTest, AtEveryStepOfARecoveryOfWhatWaited)
{
    for (int step = 1; step <= 12; ++step)
    {
        run("blocked kill", 2, 30);
        const std::string numbers = numbersFile;
        std::filesystem::remove(logPath());
        run("recovery step", 1, 0, step);
        run("recovery step", 1, 0, step / 2 + 1);
        recover();
        numbersFile = numbers;
        checkAll(2, "step " + std::to_string(step));
        if (HasFatalFailure()) return;
        std::remove(logPath().c_str());
    }
}

// An event of several lines is written again as a whole.
TEST_F(LgServiceRecoveryTest, AnEventOfWhichALineIsMissingIsWrittenAgain)
{
    constexpr int WROTE = 3;
    run("blocked kill", 1, 3);
    const std::vector<std::string> left = maps();
    ASSERT_EQ(left.size(), 1U);
    std::filesystem::remove(logPath());
    run("recovery step", 1, 0, WROTE);
    // As if the text of the second event had a line feed.
    const auto fold = [](std::string text)
    {
        const std::size_t place = text.find(": Victim t0 n1 end\n");
        return text.replace(place, 18, ": Victim t0\n\t1 end");
    };
    const std::string map = Zu::lgMapDirectory() + left.front();
    std::string mapText = fold(support::readFile(map));
    auto* const header = reinterpret_cast<Zu::LgMap::Header*>(mapText.data());
    for (Zu::LgMap::WaitingLog& log : header->_waiting)
    {
        Zu::LgMap::Waiting& waiting = log._waiting[log._current];
        waiting._hash = Zu::LgMap::hashBytes(mapText.data() + waiting._place, waiting._size);
    }
    const std::string text = fold(support::readFile(logPath()));
    const std::size_t continuation = text.find("\n\t1 end");
    ASSERT_NE(continuation, std::string::npos);
    for (const std::size_t size : {continuation + 1, continuation + 5, continuation + 7})
    {
        support::writeFile(logPath(), text.substr(0, size));
        putMap(map, mapText);
        recover();
        const std::string result = support::readFile(logPath());
        const std::string whole = ": Victim t0\n\t1 end\n";
        const std::size_t place = result.find(whole);
        ASSERT_NE(place, std::string::npos) << result;
        EXPECT_EQ(result.find(whole, place + 1), std::string::npos) << result;
        EXPECT_EQ(find()._numbers.at(0), (std::vector<int>{1, 0, 1})) << result;
    }
}

// The next process may have no file for the first level whose events went to that log, and another
// one for those of the others.
TEST_F(LgServiceRecoveryTest, WhatWaitedGoesToALogOfALevelThatHasOne)
{
    for (const std::string way : {"blocked kill", "unblocked write"})
    {
        run(way, 1, 3);
        const std::string numbers = numbersFile;
        if (way[0] == 'b') std::filesystem::remove(logPath());
        {
            const support::VariableGuard none("ZU_LOG_INTERNAL_ERROR");
            none.set("+");
            recover();
        }
        numbersFile = numbers;
        checkAll(1, way);
        EXPECT_GE(find()._lines, 3) << way;
        std::remove(logPath().c_str());
    }
}

// Its bytes would go into the log as they are.
TEST_F(LgServiceRecoveryTest, WhatWaitedAndIsDamagedIsReportedAndNotWritten)
{
    run("blocked kill", 1, 5);
    std::filesystem::remove(logPath());
    const std::vector<std::string> left = maps();
    ASSERT_EQ(left.size(), 1U);
    const std::string map = Zu::lgMapDirectory() + left.front();
    std::string text = support::readFile(map);
    const std::size_t place = text.find("Warning: Victim t0 n2 end\n");
    ASSERT_NE(place, std::string::npos);
    text[place] = '\x1b';
    putMap(map, text);
    const ProgramResult result = recover();
    EXPECT_NE(result.err.find("are recovered: 1 of them could not be read"), std::string::npos)
        << result.err;
    EXPECT_EQ(find()._lines, 0);
    EXPECT_EQ(support::readFile(logPath()).find('\x1b'), std::string::npos);
    EXPECT_TRUE(maps().empty());
}

TEST_F(LgServiceRecoveryTest, AtEveryStepOfARecovery)
{
    for (int step = 1; step <= 16; ++step)
    {
        run("kill", 3, 60);
        const std::string numbers = numbersFile;
        run("recovery step", 1, 0, step);
        run("recovery step", 1, 0, step / 2 + 1);
        recover();
        numbersFile = numbers;
        checkAll(3, "step " + std::to_string(step));
        if (HasFatalFailure()) return;
        std::remove(_logs.file("events.log").c_str());
    }
}

TEST_F(LgServiceRecoveryTest, KilledAtFullSpeed)
{
    // Wine itself sometimes hangs in a process that ends so, the more often the more there are.
    const int rounds = support::onWindows ? 3 : 10;
    for (int round = 0; round < rounds; ++round)
    {
        run("other", 4, 100000, 200 + 700 * round);
        const std::string numbers = numbersFile;
        recover();
        numbersFile = numbers;
        checkAll(4, "round " + std::to_string(round));
        if (HasFatalFailure()) return;
        std::remove(_logs.file("events.log").c_str());
    }
}

// A program that recovers for others has logs of its own, and no logger.
TEST_F(LgServiceRecoveryTest, LogsOfTheCallersOwnAreWrittenWithoutABanner)
{
    using Zu::LgServiceRecovery;
    run("blocked kill", 1, 3);
    std::filesystem::remove(logPath());
    const std::vector<std::string> left = maps();
    ASSERT_EQ(left.size(), 1U);
    Zu::LgLeftFile file;
    ASSERT_EQ(file.open(Zu::lgMapDirectory() + left.front()), Zu::LgLeftFile::Outcome::Opened);
    Zu::LgServiceLog::Settings settings;
    settings._hasBanner = false;
    Zu::LgServiceLog::setSettings(settings);
    const std::string path = _dir.file("other.log");
    {
        Zu::LgServiceLog log(path);
        LgServiceRecovery::Logs logs;
        logs._ofLevels.fill(&log);
        // Nothing is written as long as a level lacks the file that it was meant to have.
        logs._isMissing.fill(true);
        LgServiceRecovery refused(file, Zu::LgLineForm::Ticks, false, logs);
        EXPECT_EQ(refused.runUnderLock(), LgServiceRecovery::Outcome::Unfinished);
        EXPECT_EQ(support::readFile(path), "");
        logs._isMissing.fill(false);
        LgServiceRecovery recovery(file, Zu::LgLineForm::Ticks, false, logs);
        EXPECT_EQ(recovery.runUnderLock(), LgServiceRecovery::Outcome::Complete);
        EXPECT_EQ(recovery.getCount(), 3U);
    }
    Zu::LgServiceLog::setSettings({});
    const std::string text = support::readFile(path);
    EXPECT_EQ(text.find("===== Recovered: events of process "), 0U) << text;
    for (const char* const event : {"t0 n0 end\n", "t0 n1 end\n", "t0 n2 end\n"})
        EXPECT_NE(text.find(event), std::string::npos) << text;
    EXPECT_FALSE(std::filesystem::exists(logPath()));
    EXPECT_TRUE(maps().empty());
}

// Whoever only looks has no logs.
TEST_F(LgServiceRecoveryTest, AMapCanBeReadWithoutLogs)
{
    // Of the first batch: committed, and not yet written; then written, and noted as such.
    for (const auto& [step, areKnown] : {std::pair{3, false}, std::pair{5, true}})
    {
        run("step", 1, 20, step);
        const std::vector<std::string> left = maps();
        ASSERT_EQ(left.size(), 1U);
        {
            Zu::LgLeftFile file;
            ASSERT_EQ(file.open(Zu::lgMapDirectory() + left.front()),
                      Zu::LgLeftFile::Outcome::Opened);
            Zu::LgServiceRecovery recovery(file, Zu::LgLineForm::Ticks, false, {});
            ASSERT_TRUE(recovery.load());
            const std::vector<char> isWritten = recovery.findWritten();
            const std::size_t inBatch = recovery.getMap().getBatchEvents();
            ASSERT_EQ(isWritten.size(), recovery.getMap().getEvents().size());
            const auto count = std::count(isWritten.begin(), isWritten.end(), 1);
            EXPECT_EQ(static_cast<std::size_t>(count), areKnown ? inBatch : 0U) << step;
            EXPECT_GT(inBatch, 0U) << step;
        }
        recover();
        std::remove(logPath().c_str());
    }
}

TEST(LgServiceRecovery, TheTimeOfAMapIsInItsName)
{
    struct Row
    {
        const char* _name;
        std::int64_t _time;
    };
    for (const Row& row :
         {Row{"zu-log-0-0123456789abcdef-1700000000123456789-4711-1", 1700000000123456789},
          Row{"zu-log-0123456789abcdef-5-4711-12", 5}, Row{"zu-log-x-4711-1", 0}, Row{"", 0},
          Row{"-", 0}, Row{"--", 0}, Row{"---", 0}, Row{"-7-1-1", 7}, Row{"left.map", 0}})
        EXPECT_EQ(Zu::LgServiceRecovery::timeOf(row._name), row._time) << row._name;
}

} // namespace

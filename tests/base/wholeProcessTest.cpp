// How the parts of the library work together in a process: its start and its end, the path of a log
// event, and the lifetimes of objects.

#include "base/lgTypes.h"

#include "support/childProcess.h"
#include "support/logTest.h"
#include "support/tempDir.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{

using support::Environment;
using support::linesOf;
using support::ProgramResult;
using support::TempDir;
namespace LgTypes = Zu::LgTypes;

using Lines = std::vector<std::string>;

// The output of a scenario in a successful run that writes nothing to standard error.
std::string told(const std::string& story, const Environment& changes = {},
                 const std::vector<std::string>& arguments = {})
{
    Environment environment = support::logEnvironment();
    // The program's log files go to a directory of their own.
    environment.erase("B7Q_TEST_DIR");
    environment["ZU_DEBUG_INITIALIZE"] = std::nullopt;
    environment["ZU_TRACE_OPTIONS"] = std::nullopt;
    environment["WHOLE_STORY"] = story;
    for (const auto& [name, value] : changes) environment[name] = value;
    const ProgramResult result = support::runProgram("wholeProgram", arguments, environment);
    EXPECT_EQ(result.exitCode, 0) << result.out;
    EXPECT_EQ(result.err, "");
    return result.out;
}

// The lines of a text that have a part, in their order.
Lines linesWith(const std::string& text, const std::string& part)
{
    Lines lines = linesOf(text);
    std::erase_if(lines,
                  [&](const std::string& line) { return line.find(part) == std::string::npos; });
    return lines;
}

// From the start of a process to its end, with a word from each source of values.
std::string startedAndStopped()
{
    return told("startAndStop", {{"WHOLE_WORD", "set"}}, {"-w", "typed", "rest"});
}

// A package that follows one of the library, its available values out of four, and what is ready
// when it starts. The same is available when it stops, except for facts about the machine, which
// remain.
struct Stage
{
    const char* _package;
    const char* _values;
    int _packagesWithValues;
    const char* _ready;
};

const Stage STAGES[] = {
    {"Earliest", "- - - -", 0, " nothing"},
    {"initialize~", "compiled set - forced", 1, " nothing"},
    {"heapMgr~", "compiled set - forced", 2, " heap"},
    {"initArg~", "compiled set typed forced", 3, " heap"},
    {"osal~", "compiled set typed forced", 4, " heap processor"},
    {"initVars~", "compiled set typed forced", 5, " heap processor"},
    {"profiling~", "compiled set typed forced", 6, " heap processor sleeper"},
    {"logger~", "compiled set typed forced", 7, " heap processor sleeper outputs groups"},
    {"debugging~", "compiled set typed forced", 8,
     " heap processor sleeper outputs groups switches"},
    {"baseMath~", "compiled set typed forced", 9,
     " heap processor sleeper outputs groups switches"},
    {"random~", "compiled set typed forced", 10, " heap processor sleeper outputs groups switches"},
    {"discreteTime~", "compiled set typed forced", 11,
     " heap processor sleeper outputs groups switches"},
    {"testing~", "compiled set typed forced", 12,
     " heap processor sleeper outputs groups switches"},
    {"base~", "compiled set typed forced", 13,
     " heap processor sleeper outputs groups switches record"},
    {"Client", "compiled set typed forced", 14,
     " heap processor sleeper outputs groups switches record ledger"},
};

std::string stageLine(const Stage& stage, const char* what, const std::string& ready)
{
    return std::string(stage._package) + " " + what + ": values " + stage._values + " (" +
           std::to_string(stage._packagesWithValues) + "), ready:" + ready;
}

// Facts about the processor stay available after their package has ended. Build records are
// released with the package "debugging", which is below the one that registers the library's own.
std::string readyOnTheWayDown(const Stage& stage)
{
    const std::string package = stage._package;
    if (package == "Earliest" || package == "initialize~") return " processor";
    if (package == "heapMgr~" || package == "initArg~") return " heap processor";
    const bool hasRecords = package == "debugging~" || package == "baseMath~" ||
                            package == "random~" || package == "discreteTime~" ||
                            package == "testing~";
    return stage._ready + std::string(hasRecords ? " record" : "");
}

TEST(WholeProcess, StaticObjectsOnlyDeclare)
{
    const Lines lines = linesOf(startedAndStopped());
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(lines[0], "static objects, ready: nothing");
    // Of the library, and of the program.
    EXPECT_EQ(lines[1],
              std::to_string(13 + std::size(STAGES)) + " packages waiting to be initialize:");
}

TEST(WholeProcess, EachPackageOfTheLibraryMakesReadyWhatThoseBehindItFind)
{
    Lines expected;
    for (const Stage& stage : STAGES) expected.push_back(stageLine(stage, "up", stage._ready));
    EXPECT_EQ(linesWith(startedAndStopped(), " up: "), expected);
}

TEST(WholeProcess, TheEngineOfTheCounterIsThereBehindItsPackageAndStays)
{
    const Lines lines = linesOf(startedAndStopped());
    for (const char* const what : {"up", "down"})
    {
        const auto line =
            std::find_if(lines.begin(), lines.end(),
                         [&](const std::string& any)
                         { return any.starts_with(std::string("profiling~ ") + what); });
        ASSERT_LT(line, lines.end() - 1) << what;
        EXPECT_EQ(line[1], "engine") << what;
    }
}

TEST(WholeProcess, ShutDownIsTheExactReverseAndTakesValuesAwayBehindEachPackage)
{
    Lines expected;
    for (const Stage& stage : STAGES)
        expected.insert(expected.begin(), stageLine(stage, "down", readyOnTheWayDown(stage)));
    const std::string out = startedAndStopped();
    EXPECT_EQ(linesWith(out, " down: "), expected);
    EXPECT_EQ(linesWith(out, "end, "), Lines{"end, ready: processor, values - - - -"});
}

TEST(WholeProcess, InMainEverythingIsUpAndNothingWaits)
{
    const std::string out = startedAndStopped();
    EXPECT_NE(out.find("main, ready: heap processor sleeper outputs groups switches record ledger\n"
                       "No packages waiting to be initialize.\n"
                       "Client down: "),
              std::string::npos)
        << out;
}

TEST(WholeProcess, TheCommandLineIsBoundByItsPackageAndDroppedBeforeAnyIsStopped)
{
    const std::string whole = "words: 'wholeProgram' '-w' 'typed' 'rest', unused override waits";
    const std::string left = "words: 'wholeProgram' 'rest', unused override waits";
    const std::string none = "words:, unused override gone";
    // On the way up at Earliest, heapMgr~, initArg~ and Client; on the way down; at the end.
    EXPECT_EQ(linesWith(startedAndStopped(), "words:"),
              (Lines{whole, whole, left, left, none, none, none, none, none}));
}

TEST(WholeProcess, ShutDownEndsNoPackageObject)
{
    const std::string count = std::to_string(std::size(STAGES));
    EXPECT_EQ(linesWith(startedAndStopped(), "packages living"),
              Lines{"packages living " + count + " of " + count});
}

TEST(WholeProcess, AModuleStartsAtTheEndOfTheOutermostGuardAndStopsFirst)
{
    EXPECT_EQ(told("loadModule", {{"WHOLE_MODULE", support::modulePath("boundaryLate")}}),
              "whole up\n"
              "loaded\n"
              "inner guard ended\n"
              "middle guard ended\n"
              "client up\n"
              "late up, without a size\n"
              "outer guard ended\n"
              "late down\n"
              "client down, ledger late;\n"
              "whole down\n"
              "end of main\n");
}

// Stories of events. Warnings go to a file of their own, and so do errors and profiling.
class WholeProcessRoad : public testing::Test
{
protected:
    std::string outputOf(const std::string& story, const Environment& changes = {}) const
    {
        Environment environment = {
            {"ZU_LOG_WARNING", _warnings},
            {"ZU_LOG_RECOVERABLE_ERROR", _errors},
            {"ZU_LOG_PROFILING", _profiling},
            {"ZU_LOG_GROUPS", "Roads=Warning,Roads=Profiling"},
            {"ZU_LOG_DISABLE_TIMESTAMPS", "1"},
            {"ZU_INTERNAL_INTERPROCESS_LOG_LOCK",
             std::filesystem::path(_dir.path()).filename().string()},
            {"WHOLE_FILE", _warnings},
            {"WHOLE_ERROR_FILE", _errors},
        };
        for (const auto& [name, value] : changes) environment[name] = value;
        return told(story, environment);
    }

    // The content of a file of a process without time stamps.
    static std::string fileWith(const std::string& lines)
    {
        return support::START_BANNER + lines + support::STOP_BANNER;
    }

    const TempDir _dir;
    const std::string _warnings = _dir.file("warnings.log");
    const std::string _errors = _dir.file("errors.log");
    const std::string _profiling = _dir.file("profiling.log");
};

TEST_F(WholeProcessRoad, IsSeenStepByStepFromOutside)
{
    const std::string level = std::to_string(LgTypes::Warning);
    EXPECT_EQ(outputOf("takeTheRoad", {{"ZU_LOG_WARNING", "%" + _warnings}}),
              // Nothing is formatted for a level that is off, whether the logger is active or not.
              "level off: formatted 0, waiting no, in the file 0\n"
              "level off: formatted 0, waiting no, in the file 0\n"
              // Inactive: straight to standard output, without events of level Profiling.
              "Road straight 1\n"
              "inactive: formatted 1, waiting no, in the file 0\n"
              // Active: an entry with its time and its text, and no line yet.
              "published\n"
              "active: formatted 2, waiting yes, in the file 0\n"
              "entry of level " +
                  level +
                  " in time, with 13 characters\n"
                  "published\n"
                  // The reader's thread: the echo, and the line in the file.
                  "Road queued 2\n"
                  "written under the lock, in the file 1\n"
                  "flushed: formatted 2, waiting yes, in the file 1\n"
                  "written under the lock, in the file 1\n"
                  "flushed: formatted 2, waiting no, in the file 1\n"
                  "the lock is free\n"
                  "end of main\n");
    EXPECT_EQ(support::bytesOf(_warnings), fileWith("Road queued 2\n"));
    EXPECT_EQ(support::bytesOf(_profiling), fileWith("Road profiled\n"));
    EXPECT_EQ(support::bytesOf(_errors), fileWith(""));
}

TEST_F(WholeProcessRoad, AnEventIsSeenWhenItIsPublishedAndHasTheTimeOfItsReservation)
{
    // Two slots of 1,024 are never used for events: an event that finds no room is counted.
    EXPECT_EQ(outputOf("walkByHand"), "enabled no yes\n"
                                      "reserved\n"
                                      "reserved: no event\n"
                                      "inserted: no event\n"
                                      "ended: no event\n"
                                      "nothing to flush\n"
                                      "published: event\n"
                                      "entry of level " +
                                          std::to_string(LgTypes::Warning) +
                                          " in time, with 12 characters\n"
                                          "room for 1022, lost 2\n"
                                          "end of main\n");
    std::string lines = "Road by hand\n";
    for (int i = 0; i < 1021; ++i) lines += "fills\n";
    EXPECT_EQ(support::bytesOf(_warnings), fileWith(lines));
}

// A line of a file with time stamps, taken apart.
struct Stamped
{
    std::uint64_t _ticks = 0;
    std::string _rest;
};

// The lines of a file that are events.
std::vector<Stamped> stampedLines(const std::string& file)
{
    std::vector<Stamped> lines;
    for (const std::string& line : linesOf(support::bytesOf(file)))
    {
        if (line.find("Road ") == std::string::npos) continue;
        std::istringstream stream(line);
        std::uint64_t high = 0;
        std::uint64_t low = 0;
        stream >> high >> low;
        Stamped stamped;
        stamped._ticks = (high << 32) + low;
        std::getline(stream >> std::ws, stamped._rest);
        lines.push_back(stamped);
    }
    return lines;
}

TEST_F(WholeProcessRoad, TheQueuesOfTwoThreadsAreWrittenInTheOrderOfTheirTimes)
{
    const std::string out =
        outputOf("produceInTwoThreads", {{"ZU_LOG_DISABLE_TIMESTAMPS", std::nullopt},
                                         {"ZU_LOG_RECOVERABLE_ERROR", "%" + _errors}});
    // The first of two numbers is a time before the event, the second one after it.
    std::vector<std::pair<std::uint64_t, std::uint64_t>> spans;
    for (const std::string& line : linesWith(out, "span "))
    {
        std::istringstream stream(line.substr(5));
        std::uint64_t from = 0;
        std::uint64_t to = 0;
        stream >> from >> to;
        spans.emplace_back(from, to);
    }
    const std::string turns = "abbabaab";
    ASSERT_EQ(spans.size(), turns.size());

    // Each level has its file; one of them is echoed.
    std::vector<Stamped> files[] = {stampedLines(_errors), stampedLines(_warnings)};
    ASSERT_EQ(files[0].size(), 3U);
    ASSERT_EQ(files[1].size(), 5U);
    std::size_t at[] = {0, 0};
    Lines progress;
    for (std::size_t i = 0; i < turns.size(); ++i)
    {
        const std::size_t file = i % 3 == 0 ? 0 : 1;
        const Stamped& line = files[file][at[file]++];
        EXPECT_EQ(line._rest, std::string("(0x0000000") + turns[i] + ") " +
                                  (file == 0 ? "Error" : "Warning") + ": Road " + turns[i] +
                                  " at " + std::to_string(i));
        EXPECT_LT(spans[i].first, line._ticks) << i;
        EXPECT_LE(line._ticks, spans[i].second) << i;
        if (i > 0)
        {
            EXPECT_LE(spans[i - 1].second, spans[i].first) << i;
        }
        progress.push_back("warnings " + std::to_string(at[1]) + ", errors " +
                           std::to_string(at[0]));
    }
    // One line at each call, the earliest of both queues.
    EXPECT_EQ(linesWith(out, "warnings "), progress);
    const Lines echoed = linesWith(out, "Road ");
    ASSERT_EQ(echoed.size(), files[0].size());
    for (std::size_t i = 0; i < echoed.size(); ++i)
        EXPECT_TRUE(echoed[i].ends_with(" " + files[0][i]._rest)) << echoed[i];
}

TEST_F(WholeProcessRoad, AForeignHolderOfTheLockStopsTheReaderAndNoProducer)
{
    // 1,022 of 2,001 events find room while nobody reads.
    EXPECT_EQ(outputOf("produceUnderAForeignLock"), "lost 979, in the file 0\n"
                                                    "released, in the file 1022\n"
                                                    "end of main\n");
    const Lines lines = linesWith(support::bytesOf(_warnings), "Road ");
    ASSERT_EQ(lines.size(), 1022U);
    EXPECT_EQ(lines[0], "Road before the reader");
    for (std::size_t i = 1; i < lines.size(); ++i)
        EXPECT_EQ(lines[i], "Road " + std::to_string(i - 1));
}

TEST_F(WholeProcessRoad, WhatWaitsInAQueueAtTheEndIsInNoFile)
{
    EXPECT_EQ(outputOf("leaveEvents"), "events wait\n"
                                       "end of main\n");
    EXPECT_EQ(support::bytesOf(_warnings), fileWith(""));
}

TEST_F(WholeProcessRoad, AClientThatFlushesBeforeTheLoggersEndHasItsLastEvents)
{
    EXPECT_EQ(outputOf("flushEvents"), "nothing waits\n"
                                       "end of main\n");
    EXPECT_EQ(support::bytesOf(_warnings), fileWith("Road main\n"
                                                    "Road the client stops\n"));
}

TEST(WholeProcess, TheLibraryStartsNoThread)
{
    EXPECT_EQ(told("countThreads"), "started: no more\n"
                                    "logged: no more\n"
                                    "slept: no more\n"
                                    "waited for a beat: no more\n"
                                    "stopped the beat: no more\n"
                                    "with a thread of the program: one more\n"
                                    "end of main\n");
}

TEST(WholeProcess, WhatIsMadeLazilyLivesToTheEndOfTheProcessAndSingletonsOfPackagesDoNot)
{
    const std::string lasting = " options manager clock memory performer counter";
    EXPECT_EQ(told("useToTheEnd"), "main:" + lasting +
                                       " sleeper heap ledger; ledgers 1\n"
                                       "after shut-down:" +
                                       lasting +
                                       "; ledgers 0\n"
                                       "end of main\n"
                                       "exit handler:" +
                                       lasting +
                                       "; ledgers 0\n"
                                       "static destructor:" +
                                       lasting + "; ledgers 0\n");
}

} // namespace

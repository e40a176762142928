// The program zulog as a whole.

#include "logTexts.h"
#include "support/childProcess.h"
#include "support/fileTest.h"
#include "support/tempDir.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace
{

using logTexts::BANNER;
using logTexts::ORIGIN;
using logTexts::OTHER_ORIGIN;
using logTexts::tickLine;
using logTexts::writeFile;
using support::ProgramResult;
using support::runProgram;

class Zulog : public ::testing::Test
{
protected:
    Zulog()
    {
        writeFile(_first, BANNER + ORIGIN + tickLine(1, "Error: Orders one") +
                              tickLine(3, "Warning: Orders three") + logTexts::STOPPED);
        writeFile(_second, BANNER + OTHER_ORIGIN + tickLine(302, "Warning: Stock two"));
    }

    support::TempDir _directory;
    const std::string _first = _directory.file("a.log");
    const std::string _second = _directory.file("b.log");
};

TEST_F(Zulog, MergesLogsByTime)
{
    const ProgramResult result = runProgram("zulog", {"show", "--utc", _first, _second});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "2026-11-22 09:59:59.999700Z      12 -          -              "
                          "===== Message Logger Startup =====\n"
                          "2026-11-22 10:00:00.000000Z    4711 -          -              "
                          "===== Message Logger Startup =====\n"
                          "2026-11-22 10:00:00.000001Z    4711 0x00000abc Error          "
                          "Orders one\n"
                          "2026-11-22 10:00:00.000002Z      12 0x00000abc Warning        "
                          "Stock two\n"
                          "2026-11-22 10:00:00.000003Z    4711 0x00000abc Warning        "
                          "Orders three\n"
                          "-                              4711 -          -              "
                          "===== Message Logger Stopped =====\n");
    EXPECT_EQ(runProgram("zulog", {"show", "--utc", _directory.path()}).out, result.out);
}

TEST_F(Zulog, ShowsTheNeighboursOfWhatIsSelected)
{
    std::string log = ORIGIN;
    for (std::uint32_t tick = 1; tick <= 9; ++tick)
        log += tickLine(tick, "Error: A " + std::to_string(tick));
    writeFile(_first, log);
    const ProgramResult result =
        runProgram("zulog", {"show", "--relative", "--context", "1", "--match", "[27]", _first});
    std::string texts;
    for (const std::string& line : support::linesOf(result.out)) texts += line.back();
    EXPECT_EQ(texts, "123-678");
}

TEST_F(Zulog, ReportsAMissingFileAndShowsTheOthers)
{
    const ProgramResult result =
        runProgram("zulog", {"show", "--level", "Error", _directory.file("c.log"), _first});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.out.find("Orders one\n"), std::string::npos);
    EXPECT_EQ(result.out.find("Orders three"), std::string::npos);
    EXPECT_EQ(result.err.substr(0, 8), "zulog: \"");
    EXPECT_NE(result.err.find("c.log\" can't be opened: "), std::string::npos);
}

TEST_F(Zulog, RefusesWrongWords)
{
    const ProgramResult result = runProgram("zulog", {"show", "--level", "Loud", _first});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.substr(0, 46), "zulog: --level: \"Loud\" can't be used: expected");
    EXPECT_EQ(runProgram("zulog", {"show", "--match", "(", _first}).exitCode, 2);
}

TEST_F(Zulog, FailsWhenItsHelpCantBeWritten)
{
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "there is no device that is full";
    const std::string err = _directory.file("err");
    ProgramResult result;
    support::runToFiles(support::programPath("zulog"), {"--help"}, {}, "/dev/full", err, result);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(support::readFile(err),
              "zulog: the output can't be written: No space left on device\n");
}

// Where the system permits few open files, they are read in turns.
TEST_F(Zulog, ReadsMoreFilesThanCanBeOpen)
{
    if (std::filesystem::path::preferred_separator != '/')
        GTEST_SKIP() << "only the shells of Linux limit files";
    const support::TempDir logs;
    for (int i = 0; i < 200; ++i)
        writeFile(logs.file("a" + std::to_string(i) + ".log"),
                  ORIGIN + tickLine(1, "Error: A " + std::to_string(i)));
    const std::string err = _directory.file("err");
    const std::string out = _directory.file("out");
    const std::string command = "ulimit -n 48; exec \"$0\" show --match '^A ' " + logs.path();
    ProgramResult result;
    support::runToFiles("/bin/sh", {"-c", command, support::programPath("zulog")}, {}, out, err,
                        result);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(support::readFile(err), "");
    EXPECT_EQ(support::linesOf(support::readFile(out)).size(), 200U);
}

TEST_F(Zulog, ShowsWhatItFoundBeforeAnExpressionWasTooCostly)
{
    std::string log;
    for (int i = 0; i < 150; ++i) log += tickLine(1, "Error: A " + std::string(40, 'a') + "b");
    writeFile(_first, log);
    const ProgramResult result = runProgram("zulog", {"show", "--exclude", "(a|aa)+$", _first});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(support::linesOf(result.out).size(), 100U);
    EXPECT_NE(result.err.find("took too long in 100 lines, and is ended\n"), std::string::npos);
}

TEST_F(Zulog, ReportsRecordsThatHaveNoTime)
{
    const ProgramResult result =
        runProgram("zulog", {"show", "--since", "2026-11-22 10:00:00.000002Z", _first});
    EXPECT_EQ(support::linesOf(result.out).size(), 1U);
    EXPECT_EQ(result.err, "zulog: 1 record without a known time was left out\n");
    EXPECT_EQ(result.exitCode, 0);
}

TEST_F(Zulog, CountsWhatIsInLogs)
{
    const ProgramResult text = runProgram("zulog", {"stats", "--utc", _directory.path()});
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_EQ(text.err, "");
    EXPECT_EQ(text.out.substr(0, 43), "Lines       14\nUnreadable  0\nEvents      3\n");
    const ProgramResult json =
        runProgram("zulog", {"stats", "--format", "json", "--level", "Error", _first, _second});
    EXPECT_EQ(json.exitCode, 0);
    EXPECT_NE(json.out.find("\"events\":1,"), std::string::npos) << json.out;
}

TEST_F(Zulog, MakesAPage)
{
    const std::string page = _directory.file("page.html");
    const ProgramResult result =
        runProgram("zulog", {"html", "--output", page, "--title", "a < b", _first, _second});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    std::ifstream in(page, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    EXPECT_NE(text.find("<title>a &lt; b</title>"), std::string::npos);
    for (const char* const word : {"one", "two", "three"})
        EXPECT_NE(text.find("\t" + std::string(word) + "\n"), std::string::npos) << word;
    EXPECT_EQ(runProgram("zulog", {"html", _first}).out.substr(0, 15), "<!DOCTYPE html>");
    const ProgramResult failed =
        runProgram("zulog", {"html", "--output", _directory.file("missing/page.html"), _first});
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_NE(failed.err.find("page.html\" can't be opened: "), std::string::npos);
}

TEST_F(Zulog, KeepsThePageWhenThereCanBeNoNewOne)
{
    const std::string page = _directory.file("page.html");
    writeFile(page, "the page of yesterday");
    const std::vector<std::string> words = {"html", "--output", page};
    const auto run = [&](const std::vector<std::string>& more)
    {
        std::vector<std::string> all = words;
        all.insert(all.end(), more.begin(), more.end());
        return runProgram("zulog", all).exitCode;
    };
    EXPECT_EQ(run({_directory.file("missing")}), 1);
    EXPECT_EQ(run({"--match", "(", _first}), 2);
    std::string costly;
    for (int i = 0; i < 150; ++i) costly += tickLine(1, "Error: A " + std::string(40, 'a') + "b");
    const std::string log = _directory.file("costly");
    writeFile(log, costly);
    EXPECT_EQ(run({"--match", "(a|aa)+$", log}), 1);
    EXPECT_TRUE(support::readFile(page) == "the page of yesterday");
    // What could be read is in the new one.
    EXPECT_EQ(run({_directory.file("missing"), _first}), 1);
    EXPECT_NE(support::readFile(page).find("one"), std::string::npos);
}

TEST_F(Zulog, DoesNotReplaceALogByItsPage)
{
    const ProgramResult result =
        runProgram("zulog", {"html", "--output", _first, _directory.path()});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.err.find("is one of the logs, and stays"), std::string::npos);
    EXPECT_NE(runProgram("zulog", {"show", _first}).out.find("Orders one"), std::string::npos);
}

TEST_F(Zulog, RemovesNoFileThatIsNoMap)
{
    // Such as a map may be: its user's alone.
    std::filesystem::permissions(_first, std::filesystem::perms::owner_read |
                                             std::filesystem::perms::owner_write);
    const ProgramResult result = runProgram("zulog", {"recover", "remove", _first});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(runProgram("zulog", {"show", _first}).out.find("Orders one"), std::string::npos);
}

TEST_F(Zulog, WritesWhatAKilledProcessLeft)
{
    const support::TempDir maps;
    const support::TempDir logs;
    const support::Environment environment = {{"B7Q_TEST_DIR", logs.path()},
                                              {"ZU_LOG_SERVICE_MAPPING_DIRECTORY", maps.path()}};
    // Nothing is written before the kill: the name of the log file is a directory's until then.
    runProgram("logVictim", {"blocked kill", _directory.file("numbers"), "1", "5"}, environment);
    std::filesystem::remove(logs.file("events.log"));
    const std::vector<std::string> where = {"--mappings", maps.path()};
    const auto run = [&](std::vector<std::string> words)
    {
        words.insert(words.end(), where.begin(), where.end());
        return runProgram("zulog", words, environment);
    };
    EXPECT_NE(run({"recover", "list"}).out.find(logs.path()), std::string::npos);
    EXPECT_EQ(run({"recover", "remove"}).exitCode, 2);
    EXPECT_EQ(run({"recover", "write"}).exitCode, 0);
    EXPECT_EQ(run({"recover", "list", "--format", "json"}).out.find("\"events\""),
              std::string::npos);
    const ProgramResult shown = runProgram("zulog", {"show", logs.file("events.log")}, environment);
    EXPECT_EQ(shown.err, "");
    EXPECT_NE(shown.out.find("===== Recovered: events of process"), std::string::npos);
}

} // namespace

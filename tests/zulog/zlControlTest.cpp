#include "zulog/zlControl.h"

#include "app/controlled.h"
#include "support/childProcess.h"
#include "support/fileTest.h"
#include "support/tempDir.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{

using app::Controlled;
using support::ProgramResult;
using Zu::ZlControlOptions;
namespace LgTypes = Zu::LgTypes;
using Json = nlohmann::json;

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

// zulog with the control files of the process.
ProgramResult run(const Controlled& process, std::vector<std::string> words)
{
    words.insert(words.end(), {"--mappings", process.directory()});
    return support::runProgram("zulog", words);
}

constexpr const char* ALL_WARNINGS = "Base      Warning\nDatabase  Warning\nUI        Warning\n";

struct Result
{
    std::string _out;
    std::string _err;
};

template <class Function> Result call(Function function, const ZlControlOptions& options)
{
    std::ostringstream errors;
    Zu::ZlReports reports(errors);
    Zu::ZlOutput output(stdout);
    function(options, output, reports);
    Result result{output.text(), errors.str()};
    output.text().clear();
    return result;
}

struct Parsed
{
    const char* _text;
    const char* _group;
    LgTypes::Level _level;
};

constexpr Parsed PARSED[] = {
    {"Database=Tracing", "Database", LgTypes::Tracing},
    {"Database=internal error", "Database", LgTypes::InternalError},
    {"Database=FATAL ERROR", "Database", LgTypes::FatalError},
    {"*=Profiling", "*", LgTypes::Profiling},
    {"a=b=Warning", "a=b", LgTypes::Warning},
};

TEST(ZlControl, ReadsChanges)
{
    for (const Parsed& row : PARSED)
    {
        SCOPED_TRACE(row._text);
        ZlControlOptions::Change change;
        ASSERT_TRUE(Zu::zlParseChange(row._text, change));
        EXPECT_EQ(change._group, row._group);
        EXPECT_EQ(change._level, row._level);
    }
    for (const char* const text :
         {"", "=", "=Error", "Database", "Database=", "Database=Loud", "Database=Error,Tracing"})
    {
        SCOPED_TRACE(text);
        ZlControlOptions::Change change;
        EXPECT_FALSE(Zu::zlParseChange(text, change));
    }
}

TEST(ZlControl, WithoutProcessesThereIsASentence)
{
    const support::TempDir dir;
    const ProgramResult result = support::runProgram("zulog", {"ps", "--mappings", dir.path()});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "No process has a log service.\n");
    const ProgramResult json =
        support::runProgram("zulog", {"ps", "--format", "json", "--mappings", dir.path()});
    EXPECT_EQ(json.out, "{\"processes\":[]}\n");
}

TEST(ZlControl, ADirectoryThatIsNotThereIsAFailure)
{
    const support::TempDir dir;
    const ProgramResult result =
        support::runProgram("zulog", {"ps", "--mappings", dir.file("nowhere")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(contains(result.err, "is not a directory")) << result.err;
}

TEST(ZlControl, ShowsARunningProcess)
{
    const Controlled process;
    process.waitForFile();
    const ProgramResult table = run(process, {"ps", "--utc"});
    EXPECT_EQ(table.exitCode, 0) << table.err;
    const std::vector<std::string> lines = support::linesOf(table.out);
    ASSERT_EQ(lines.size(), 2U) << table.out;
    EXPECT_EQ(lines[0], "   PROCESS  SINCE                            EVENTS        LOST   "
                        "UNWRITTEN     WAITING  PROGRAM");
    EXPECT_TRUE(contains(lines[1], "controlVictim"));
    const ProgramResult details = run(process, {"ps", "controlVictim"});
    EXPECT_TRUE(contains(details.out, "  lost       0, not written 0, recovered 0\n"))
        << details.out;
    EXPECT_TRUE(contains(details.out,
                         "\n    Base      Warning\n    Database  Warning\n    UI        Warning\n"))
        << details.out;
    const Json json = Json::parse(run(process, {"ps", "--format", "json"}).out);
    const Json& status = json.at("processes").at(0);
    EXPECT_EQ(status.at("groups").at(1).at("name"), "Database");
    EXPECT_EQ(status.at("service_start").get<std::string>().size(), 27U);
    // Members are named alike, whatever a service names them; names of levels stay.
    EXPECT_TRUE(status.at("health").contains("behind_microseconds"));
    EXPECT_TRUE(status.at("health").at("events").contains("Internal Error"));
    EXPECT_FALSE(status.at("health").contains("behindMicroseconds"));
    EXPECT_EQ(
        run(process, {"ps", std::to_string(status.at("process").get<int>())}).out.substr(0, 8),
        "Process ");
}

TEST(ZlControl, ChangesLevelsAndGivesThemBack)
{
    const Controlled process;
    process.waitForFile();
    EXPECT_EQ(run(process, {"level", "controlVictim"}).out, ALL_WARNINGS);
    const ProgramResult changed =
        run(process, {"level", "controlVictim", "Data*=informational", "UI=Profiling"});
    EXPECT_EQ(changed.out, "Base      Warning\n"
                           "Database  Informational (before: Warning)\n"
                           "UI        Warning, Profiling (before: Warning)\n");
    EXPECT_EQ(changed.exitCode, 0) << changed.err;
    const std::string log = process.waitForText("Informational: Table row ");
    EXPECT_TRUE(contains(log, ": Database=Informational, UI=Profiling\n"));
    EXPECT_EQ(run(process, {"level", "controlVictim", "--reset"}).out, ALL_WARNINGS);
    process.waitForText("LogLevels reset by process ");
}

TEST(ZlControl, WhatCannotBeDoneIsReportedAndChangesNothing)
{
    const Controlled process;
    process.waitForFile();
    const ProgramResult group = run(process, {"level", "controlVictim", "UI=Error", "Nix*=Error"});
    EXPECT_EQ(group.exitCode, 1);
    EXPECT_TRUE(
        contains(group.err, "no group is of the name \"Nix*\"; there are Base, Database, UI\n"))
        << group.err;
    const ProgramResult nobody = run(process, {"level", "nobody", "UI=Error"});
    EXPECT_EQ(nobody.exitCode, 1);
    EXPECT_EQ(nobody.err, "zulog: there is no process \"nobody\" with a log service\n");
    const ProgramResult word = run(process, {"level", "controlVictim", "UI=Loud"});
    EXPECT_EQ(word.exitCode, 2);
    EXPECT_TRUE(contains(word.err, "\"Loud\" is no level: expected Internal Error, "));
    EXPECT_EQ(run(process, {"level", "controlVictim", "UI=Error", "--reset"}).exitCode, 2);
    EXPECT_EQ(run(process, {"level", "controlVictim"}).out, ALL_WARNINGS);
}

TEST(ZlControl, LevelsOfSeveralProcessesAreShownButNotChanged)
{
    const Controlled process;
    process.waitForFile();
    const Controlled neighbour({}, {}, &process);
    process.waitForFiles(2);
    const ProgramResult shown = run(process, {"level", "controlVictim"});
    EXPECT_EQ(shown.exitCode, 0) << shown.err;
    const std::vector<std::string> lines = support::linesOf(shown.out);
    ASSERT_EQ(lines.size(), 8U) << shown.out;
    for (const std::size_t first : {0U, 4U})
    {
        EXPECT_TRUE(lines[first].starts_with("process ")) << shown.out;
        EXPECT_EQ(lines[first + 1], "  Base      Warning");
        EXPECT_EQ(lines[first + 3], "  UI        Warning");
    }
    EXPECT_NE(lines[0], lines[4]);
    const ProgramResult changed = run(process, {"level", "controlVictim", "UI=Error"});
    EXPECT_EQ(changed.exitCode, 1);
    EXPECT_TRUE(contains(changed.err, "several processes are meant; choose one of "));
    EXPECT_EQ(run(process, {"level", "controlVictim"}).out, shown.out);
}

TEST(ZlControl, RemovesWhatAKilledProcessLeft)
{
    Controlled process;
    process.waitForFile();
    process.end("kill");
    EXPECT_EQ(run(process, {"ps"}).out, "No process has a log service.\n");
    EXPECT_TRUE(process.controlFiles().empty());
}

TEST(ZlControl, AnAnswerThatCannotBeReadIsReported)
{
    for (const char* const answer : {"x", "[]", "{}", "{\"groups\":5}", "{\"groups\":[5]}",
                                     "{\"health\":{},\"groups\":[]}", "\xff"})
    {
        SCOPED_TRACE(answer);
        const Controlled process({}, {answer});
        process.waitForFile();
        ZlControlOptions options;
        options._directory = process.directory();
        options._processes = {"2"};
        const std::string expected =
            "zulog: process 2 (/bin/victim): it gives an answer that can't "
            "be read\n";
        EXPECT_EQ(call(Zu::zlShowProcesses, options)._err, expected);
    }
}

TEST(ZlControl, AnErrorOfTheProcessIsReported)
{
    const Controlled process({}, {R"({"error":"not today"})"});
    process.waitForFile();
    ZlControlOptions options;
    options._directory = process.directory();
    const Result result = call(Zu::zlShowProcesses, options);
    EXPECT_EQ(result._err, "zulog: process 2 (/bin/victim): not today\n");
}

TEST(ZlControl, AProcessThatDoesNotAnswerIsAFailure)
{
    const Controlled process({}, {""});
    process.waitForFile();
    ZlControlOptions options;
    options._directory = process.directory();
    options._patience = std::chrono::milliseconds(20);
    const Result result = call(Zu::zlShowProcesses, options);
    EXPECT_EQ(result._err, "zulog: process 2 (/bin/victim): it does not answer\n");
}

TEST(ZlControl, AFileThatCannotBeUsedIsNoted)
{
    const support::TempDir dir;
    const std::string path = dir.file(Zu::LgControlFile::prefix() + "1-1");
    std::filesystem::create_directory(path);
    ZlControlOptions options;
    options._directory = dir.path();
    const Result result = call(Zu::zlShowProcesses, options);
    EXPECT_TRUE(contains(result._err, "it can't be opened as a plain file")) << result._err;
    EXPECT_EQ(result._out, "No process has a log service.\n");
}

} // namespace

#include "zulog/zlRecover.h"

#include "app/lgMapFile.h"
#include "app/lgMapLayout.h"

#include "support/childProcess.h"
#include "support/fileTest.h"
#include "support/tempDir.h"
#include "support/variableGuard.h"
#include "support/victimLine.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{

using support::ProgramResult;
using support::TempDir;
using Zu::ZlLeft;
namespace LgMap = Zu::LgMap;

using Function = void (*)(const Zu::ZlRecoverOptions&, Zu::ZlOutput&, Zu::ZlReports&);

// What one of the functions has written.
struct Result
{
    std::string _out;
    std::string _err;
    bool _hasFailed;
};

class ZlRecover : public testing::Test
{
protected:
    ZlRecover()
    {
        options._mapDirectory = _maps.path();
    }

    // A process with a log service that ends so; see tests/app/logVictim.cpp.
    ProgramResult leave(const std::string& way, int threads, int count, int step = 0,
                        const support::Environment& more = {})
    {
        support::Environment environment = {{"B7Q_TEST_DIR", _logs.path()},
                                            {"ZU_LOG_SERVICE_MAPPING_DIRECTORY", _maps.path()}};
        for (const auto& [name, value] : more) environment[name] = value;
        return support::runProgram("logVictim",
                                   {way, _dir.file("numbers" + std::to_string(++_runs)),
                                    std::to_string(threads), std::to_string(count),
                                    std::to_string(step)},
                                   environment);
    }

    // All of its events wait as lines, since the log was a directory.
    void leaveLines(int threads, int count, const support::Environment& more = {})
    {
        leave("blocked kill", threads, count, 0, more);
        std::filesystem::remove(logPath());
    }

    // The next service, which has nothing of its own to log.
    void startNextService()
    {
        leave("main", 1, 0);
    }

    ProgramResult runVictim(const std::string& command, int step = 0,
                            const std::vector<std::string>& maps = {})
    {
        std::vector<std::string> arguments = {command, _maps.path(), std::to_string(step)};
        arguments.insert(arguments.end(), maps.begin(), maps.end());
        return support::runProgram("recoverVictim", arguments);
    }

    Result call(Function function)
    {
        const std::string path = _dir.file("out");
        std::FILE* const file = std::fopen(path.c_str(), "wb");
        std::ostringstream err;
        Zu::ZlReports reports(err);
        {
            Zu::ZlOutput out(file);
            function(options, out, reports);
            out.write();
        }
        std::fclose(file);
        return {support::readFile(path), err.str(), reports.hasFailed()};
    }

    std::vector<ZlLeft> find()
    {
        std::ostringstream err;
        Zu::ZlReports reports(err);
        return Zu::zlFindLeft(options, reports);
    }

    std::vector<std::string> mapNames() const
    {
        return Zu::lgNamesIn(_maps.file(""), Zu::lgMapPrefix());
    }

    std::string onlyMap() const
    {
        const std::vector<std::string> names = mapNames();
        EXPECT_EQ(names.size(), 1U);
        return names.empty() ? std::string() : _maps.file(names.front());
    }

    std::string logPath() const
    {
        return _logs.file("events.log");
    }

    // Changes the header of a map, as nothing but an error or an attack would do.
    void changeHeader(const std::function<void(LgMap::Header&)>& change) const
    {
        const std::string path = onlyMap();
        std::string text = support::readFile(path);
        ASSERT_GE(text.size(), sizeof(LgMap::Header));
        LgMap::Header header;
        std::memcpy(&header, text.data(), sizeof header);
        change(header);
        std::memcpy(text.data(), &header, sizeof header);
        putMap(path, text);
    }

    // As it was when a process left it.
    static void putMap(const std::string& path, const std::string& text)
    {
        support::writeFile(path, text);
        std::filesystem::permissions(path, std::filesystem::perms::owner_read |
                                               std::filesystem::perms::owner_write);
    }

    // How often each number of each thread is in a log.
    using Counts = std::map<std::pair<int, int>, int>;

    static Counts countsIn(const std::string& text)
    {
        Counts counts;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);)
            if (const auto event = support::victimEventOf(line))
                ++counts[{event->_thread, event->_number}];
        return counts;
    }

    static Counts eachOnce(int threads, int count)
    {
        Counts counts;
        for (int thread = 0; thread < threads; ++thread)
            for (int number = 0; number < count; ++number) counts[{thread, number}] = 1;
        return counts;
    }

    void expectEachOnce(int threads, int count, const std::string& what) const
    {
        EXPECT_EQ(countsIn(support::readFile(logPath())), eachOnce(threads, count)) << what;
        EXPECT_TRUE(mapNames().empty()) << what;
    }

    Zu::ZlRecoverOptions options;
    TempDir _dir;
    TempDir _logs;
    TempDir _maps;
    int _runs = 0;
};

TEST_F(ZlRecover, ADirectoryWithoutMapsIsSaidToBeEmpty)
{
    const Result list = call(&Zu::zlRecoverList);
    EXPECT_EQ(list._out, "Nothing is left in " + _maps.file("") + "\n");
    EXPECT_FALSE(list._hasFailed);
    options._isJson = true;
    EXPECT_EQ(call(&Zu::zlRecoverList)._out, "{\"maps\":[]}\n");
    EXPECT_EQ(call(&Zu::zlRecoverShow)._out, "");
    EXPECT_EQ(call(&Zu::zlRecoverWrite)._out, "");
    options._isAll = true;
    EXPECT_EQ(call(&Zu::zlRecoverRemove)._out, "");
}

TEST_F(ZlRecover, ADirectoryThatIsNotThereIsAFailure)
{
    options._mapDirectory = _dir.file("nowhere");
    for (const Function function : {&Zu::zlRecoverList, &Zu::zlRecoverShow, &Zu::zlRecoverWrite})
    {
        const Result result = call(function);
        EXPECT_TRUE(result._hasFailed);
        EXPECT_NE(result._err.find("is not a directory"), std::string::npos) << result._err;
        EXPECT_EQ(result._out, "");
    }
}

TEST_F(ZlRecover, TheListHasWhatTheMapSays)
{
    leaveLines(2, 30);
    const std::vector<ZlLeft> found = find();
    ASSERT_EQ(found.size(), 1U);
    const ZlLeft& left = found.front();
    EXPECT_EQ(left._state, ZlLeft::State::Left);
    EXPECT_EQ(left._path, onlyMap());
    EXPECT_EQ(left._logDirectory, _logs.path());
    EXPECT_EQ(left._host, Zu::lgProcessFacts()._host);
    EXPECT_EQ(left._lines, 60U);
    EXPECT_EQ(left._events, 0U);
    EXPECT_EQ(left._unsure, 0U);
    EXPECT_EQ(left._lost, 0U);
    EXPECT_EQ(left._notWritten, 0U);
    EXPECT_EQ(left._damaged, 0U);
    ASSERT_TRUE(left._process.has_value());
    const std::string name = mapNames().front();
    EXPECT_NE(name.find("-" + std::to_string(*left._process) + "-"), std::string::npos) << name;
    ASSERT_TRUE(left._made.has_value());
    EXPECT_NE(name.find("-" + std::to_string(*left._made) + "-"), std::string::npos) << name;
    // It was made after the process began, and both before now.
    EXPECT_LT(left._processStart, Zu::lgWallClock());
    EXPECT_LT(*left._made, Zu::lgWallClock());
    const std::string text = call(&Zu::zlRecoverList)._out;
    EXPECT_TRUE(text.starts_with(onlyMap() + "\n  made ")) << text;
    EXPECT_NE(text.find("  process " + std::to_string(*left._process) + ", started "),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("\n  log directory " + _logs.path() + "\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\n  0 events wait, 60 lines wait for a file that failed\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(mapNames().size(), 1U);
}

// Some of a killed process are in the log already, and some may be.
TEST_F(ZlRecover, WhatWaitsAndWhatIsInTheLogAreAll)
{
    for (int step = 1; step <= 20; ++step)
    {
        std::filesystem::remove(logPath());
        leave("step", 2, 50, step);
        const std::uint64_t written = countsIn(support::readFile(logPath())).size();
        const std::vector<ZlLeft> found = find();
        // With few batches, it comes to its end before the step does.
        if (found.empty())
        {
            EXPECT_EQ(written, 100U) << step;
            continue;
        }
        const ZlLeft& left = found.front();
        EXPECT_LE(written + left._events - left._unsure, 100U) << step;
        const Counts shown = countsIn(call(&Zu::zlRecoverShow)._out);
        EXPECT_EQ(shown.size(), left._events) << step;
        startNextService();
        const std::uint64_t all = countsIn(support::readFile(logPath())).size();
        EXPECT_LE(all, written + left._events) << step;
        EXPECT_GE(all, written + left._events - left._unsure) << step;
        EXPECT_EQ(mapNames().size(), 0U) << step;
    }
}

TEST_F(ZlRecover, TheListCountsWhatWasNotWritten)
{
    leaveLines(1, 2000, {{"ZU_LOG_SERVICE_PENDING_LIMIT", "64K"}});
    const std::vector<ZlLeft> found = find();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_GT(found.front()._notWritten, 100U);
    EXPECT_EQ(found.front()._lines + found.front()._notWritten, 2000U);
    const std::string note = "===== Not Written: " + std::to_string(found.front()._notWritten);
    EXPECT_NE(call(&Zu::zlRecoverShow)._out.find(note), std::string::npos);
}

TEST_F(ZlRecover, TheListAsJsonHasTheSame)
{
    leaveLines(1, 3);
    changeHeader([](LgMap::Header& header) { std::strcpy(header._host, "a\xff\nb"); });
    const ZlLeft left = find().front();
    options._isJson = true;
    const std::string text = call(&Zu::zlRecoverList)._out;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
    const auto map = nlohmann::json::parse(text).at("maps").at(0);
    EXPECT_EQ(map.at("path"), left._path);
    EXPECT_EQ(map.at("state"), "left");
    EXPECT_TRUE(map.at("reason").is_null());
    EXPECT_EQ(map.at("process"), *left._process);
    EXPECT_EQ(map.at("host"), "a\xEF\xBF\xBD\nb");
    EXPECT_EQ(map.at("log_directory"), _logs.path());
    EXPECT_EQ(map.at("lines"), 3);
    EXPECT_EQ(map.at("events"), 0);
    EXPECT_EQ(map.at("damaged"), 0);
    EXPECT_GE(map.at("age_seconds"), 0);
    EXPECT_EQ(map.at("made").get<std::string>().size(), 27U);
}

TEST_F(ZlRecover, OnlyMapsOfTheNamedLogDirectoryAreFound)
{
    const TempDir other;
    leaveLines(1, 3);
    leave("kill", 1, 3, 0, {{"B7Q_TEST_DIR", other.path()}});
    EXPECT_EQ(find().size(), 2U);
    options._logDirectory = _logs.path();
    ASSERT_EQ(find().size(), 1U);
    EXPECT_EQ(find().front()._logDirectory, _logs.path());
    options._logDirectory = _logs.path() + "x";
    EXPECT_TRUE(find().empty());
}

TEST_F(ZlRecover, TheLogDirectoryMayBeSpelledInSeveralWays)
{
    leaveLines(1, 3);
    const std::filesystem::path logs(_logs.path());
    std::vector<std::string> spellings = {_logs.path() + "/", _logs.path() + "/.",
                                          _logs.path() + "/../" + logs.filename().string()};
    // From one drive of Windows to another there is no relative path.
    const std::string relative = std::filesystem::relative(logs).string();
    if (!relative.empty()) spellings.insert(spellings.end(), {relative, "./" + relative + "/"});
    for (const std::string& spelling : spellings)
    {
        options._logDirectory = spelling;
        EXPECT_EQ(find().size(), 1U) << spelling;
    }
}

TEST_F(ZlRecover, TheLogDirectoryMayBeNamedThroughALink)
{
    leaveLines(1, 3);
    const std::string link = _dir.file("link");
    std::error_code error;
    std::filesystem::create_directory_symlink(_logs.path(), link, error);
    if (error) GTEST_SKIP() << "no symbolic links here: " << error.message();
    options._logDirectory = link;
    EXPECT_EQ(find().size(), 1U);
}

// Two dots behind a link are not what stands before it, but on Windows.
TEST_F(ZlRecover, TheParentOfALinkIsThatOfItsTarget)
{
    namespace fs = std::filesystem;
    fs::create_directories(_dir.file("other/deep"));
    fs::create_directories(_dir.file("other/logs"));
    fs::create_directories(_dir.file("logs"));
    std::error_code error;
    fs::create_directory_symlink(_dir.file("other/deep"), _dir.file("link"), error);
    if (error) GTEST_SKIP() << "no symbolic links here: " << error.message();
    leave("kill", 1, 3, 0, {{"B7Q_TEST_DIR", _dir.file("logs")}});
    options._logDirectory = _dir.file("link/../logs");
    const bool isLexical = fs::path::preferred_separator != '/';
    EXPECT_EQ(find().size(), isLexical ? 1U : 0U);
    options._logDirectory = _dir.file("other/../logs");
    EXPECT_EQ(find().size(), 1U);
    leave("kill", 1, 3, 0, {{"B7Q_TEST_DIR", _dir.file("other/logs")}});
    options._logDirectory = _dir.file("link/../logs");
    ASSERT_EQ(find().size(), 1U);
    EXPECT_EQ(find().front()._logDirectory, _dir.file(isLexical ? "logs" : "other/logs"));
}

TEST_F(ZlRecover, MapsOfOtherLogDirectoriesAloneAreAFailure)
{
    leaveLines(1, 3);
    options._logDirectory = _logs.path() + "x";
    const std::string begin =
        "no map is of a service with the log directory \"" + _logs.path() + "x\"; ";
    const Result one = call(&Zu::zlRecoverList);
    EXPECT_TRUE(one._hasFailed);
    EXPECT_EQ(one._out, "");
    EXPECT_NE(one._err.find(begin + "1 other is in " + _maps.file("")), std::string::npos)
        << one._err;
    const TempDir other;
    leave("kill", 1, 3, 0, {{"B7Q_TEST_DIR", other.path()}});
    const Result two = call(&Zu::zlRecoverList);
    EXPECT_NE(two._err.find(begin + "2 others are in " + _maps.file("")), std::string::npos)
        << two._err;
}

TEST_F(ZlRecover, WhatIsShownIsWhatIsWritten)
{
    leaveLines(2, 30);
    const std::string before = support::readFile(onlyMap());
    const Result shown = call(&Zu::zlRecoverShow);
    EXPECT_FALSE(shown._hasFailed);
    EXPECT_TRUE(shown._out.starts_with("===== Recovered: events of process ")) << shown._out;
    EXPECT_EQ(support::readFile(onlyMap()), before);
    const Result written = call(&Zu::zlRecoverWrite);
    EXPECT_EQ(written._err, "");
    EXPECT_TRUE(written._out.ends_with(": 60 events written to the logs in " + _logs.path() + "\n"))
        << written._out;
    EXPECT_EQ(support::readFile(logPath()), shown._out);
    expectEachOnce(2, 30, "written");
    EXPECT_EQ(call(&Zu::zlRecoverWrite)._out, "");
}

TEST_F(ZlRecover, WhateverWasWrittenBeforeEachEventIsThereOnce)
{
    for (int round = 0; round < 5; ++round)
    {
        leave("kill", 3, 60);
        const Result written = call(&Zu::zlRecoverWrite);
        EXPECT_EQ(written._err, "");
        expectEachOnce(3, 60, std::to_string(round));
        std::filesystem::remove(logPath());
    }
}

TEST_F(ZlRecover, ALineFormOfTheSetUpIsUsed)
{
    leave("step", 1, 20, 1);
    options._service._lineForm = Zu::LgServiceOptions::LineForm::Utc;
    const ZlLeft left = find().front();
    ASSERT_GT(left._events, 0U);
    const std::string shown = call(&Zu::zlRecoverShow)._out;
    const std::string middle = "Z " + std::to_string(*left._process) + " (0x";
    std::size_t count = 0;
    for (auto at = shown.find(middle); at != std::string::npos; at = shown.find(middle, at + 1))
        ++count;
    EXPECT_EQ(count, left._events) << shown;
    call(&Zu::zlRecoverWrite);
    EXPECT_NE(support::readFile(logPath()).find(middle), std::string::npos);
}

TEST_F(ZlRecover, LinesAreShownInUtcIfThatIsAskedFor)
{
    leave("step", 1, 20, 1);
    const ZlLeft left = find().front();
    const std::string middle = "Z " + std::to_string(*left._process) + " (0x";
    EXPECT_EQ(call(&Zu::zlRecoverShow)._out.find(middle), std::string::npos);
    options._times = Zu::ZlTimeWriter::Form::Utc;
    EXPECT_NE(call(&Zu::zlRecoverShow)._out.find(middle), std::string::npos);
}

TEST_F(ZlRecover, WithProcessesInNamesTheLogIsTheDeadProcesss)
{
    leaveLines(1, 3);
    options._service._processInNames = true;
    const std::string name = "events." + std::to_string(*find().front()._process) + ".log";
    call(&Zu::zlRecoverWrite);
    EXPECT_EQ(countsIn(support::readFile(_logs.file(name))), eachOnce(1, 3));
}

TEST_F(ZlRecover, AFileThatTheEnvironmentNamesIsUsed)
{
    const support::VariableGuard warnings("ZU_LOG_WARNING");
    const support::VariableGuard others("ZU_LOG_INTERNAL_ERROR");
    leave("step", 1, 20, 1);
    const Counts before = countsIn(support::readFile(logPath()));
    ASSERT_LT(before.size(), 20U);
    const std::string file = _dir.file("warnings.log");
    warnings.set("+" + file);
    call(&Zu::zlRecoverWrite);
    EXPECT_EQ(countsIn(support::readFile(logPath())), before);
    EXPECT_FALSE(countsIn(support::readFile(file)).empty());
    EXPECT_TRUE(mapNames().empty());
}

// On its way to a terminal, nothing of it is a command.
TEST_F(ZlRecover, ControlCharactersInLinesThatWaitAreEscaped)
{
    leaveLines(1, 3);
    const std::string map = onlyMap();
    std::string text = support::readFile(map);
    const std::size_t place = text.find("Victim t0 n1 end\n");
    ASSERT_NE(place, std::string::npos);
    text[place] = '\x1b';
    LgMap::Header header;
    std::memcpy(&header, text.data(), sizeof header);
    for (LgMap::WaitingLog& log : header._waiting)
    {
        LgMap::Waiting& waiting = log._waiting[log._current];
        waiting._hash = LgMap::hashBytes(text.data() + waiting._place, waiting._size);
    }
    std::memcpy(text.data(), &header, sizeof header);
    putMap(map, text);
    EXPECT_NE(call(&Zu::zlRecoverShow)._out.find("\\x1bictim t0 n1 end\n"), std::string::npos);
    options._service._rawText = true;
    EXPECT_NE(call(&Zu::zlRecoverShow)._out.find("\x1bictim t0 n1 end\n"), std::string::npos);
    options._isTerminal = true;
    EXPECT_NE(call(&Zu::zlRecoverShow)._out.find("\\x1bictim t0 n1 end\n"), std::string::npos);
}

TEST_F(ZlRecover, EndedAtEveryStepAndRunAgain)
{
    for (int step = 1; step <= 16; ++step)
    {
        leave("kill", 3, 60);
        runVictim("write", step);
        runVictim("write", step / 2 + 1);
        EXPECT_EQ(call(&Zu::zlRecoverWrite)._err, "");
        expectEachOnce(3, 60, "step " + std::to_string(step));
        if (HasFailure()) return;
        std::filesystem::remove(logPath());
    }
}

TEST_F(ZlRecover, EndedAtEveryStepWhileLinesThatWaitedAreWritten)
{
    for (int step = 1; step <= 12; ++step)
    {
        leaveLines(2, 30);
        const ProgramResult first = runVictim("write", step);
        runVictim("write", step / 2 + 1);
        EXPECT_EQ(call(&Zu::zlRecoverWrite)._err, "");
        expectEachOnce(2, 30, "step " + std::to_string(step));
        if (HasFailure()) return;
        // The first steps are of every recovery.
        EXPECT_TRUE(step > 1 || first.exitCode != 0);
        std::filesystem::remove(logPath());
    }
}

// The next service goes on where this program was ended, and the other way round.
TEST_F(ZlRecover, ThisProgramAndTheServiceGoOnForEachOther)
{
    for (int step = 1; step <= 12; ++step)
    {
        leave("kill", 2, 40);
        runVictim("write", step);
        startNextService();
        expectEachOnce(2, 40, "service, step " + std::to_string(step));
        std::filesystem::remove(logPath());
        leave("kill", 2, 40);
        leave("recovery step", 1, 0, step);
        EXPECT_EQ(call(&Zu::zlRecoverWrite)._err, "");
        expectEachOnce(2, 40, "program, step " + std::to_string(step));
        if (HasFailure()) return;
        std::filesystem::remove(logPath());
    }
}

TEST_F(ZlRecover, ALogThatCanNotBeWrittenLeavesTheMap)
{
    leave("blocked kill", 2, 30);
    const Result failed = call(&Zu::zlRecoverWrite);
    EXPECT_TRUE(failed._hasFailed);
    EXPECT_NE(failed._err.find(": a log file can't be written; its events stay"), std::string::npos)
        << failed._err;
    EXPECT_EQ(failed._out, "");
    ASSERT_EQ(find().size(), 1U);
    EXPECT_EQ(find().front()._lines, 60U);
    std::filesystem::remove(logPath());
    EXPECT_FALSE(call(&Zu::zlRecoverWrite)._hasFailed);
    expectEachOnce(2, 30, "again");
}

// A device of Linux on which every write fails as on a full disk.
TEST_F(ZlRecover, WhatAFullDiskDidNotTakeIsNotCounted)
{
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "there is no device that is full";
    const support::VariableGuard warnings("ZU_LOG_WARNING");
    const support::VariableGuard others("ZU_LOG_INTERNAL_ERROR");
    leave("step", 1, 20, 1);
    const std::uint64_t events = find().front()._events;
    ASSERT_GT(events, 0U);
    warnings.set("+/dev/full");
    const Result failed = call(&Zu::zlRecoverWrite);
    EXPECT_TRUE(failed._hasFailed);
    EXPECT_EQ(failed._out, "");
    EXPECT_EQ(find().front()._events, events);
}

TEST_F(ZlRecover, ALogDirectoryThatIsNotThereIsNotMade)
{
    leaveLines(1, 3);
    const std::string gone = _dir.file("gone");
    changeHeader([&](LgMap::Header& header) { std::strcpy(header._directory, gone.c_str()); });
    const Result result = call(&Zu::zlRecoverWrite);
    EXPECT_TRUE(result._hasFailed);
    EXPECT_NE(result._err.find("its log directory \"" + gone + "\" is not there"),
              std::string::npos)
        << result._err;
    EXPECT_FALSE(std::filesystem::exists(gone));
    EXPECT_EQ(find().front()._lines, 3U);
}

TEST_F(ZlRecover, ARelativeLogDirectoryMustBeNamed)
{
    leaveLines(1, 3);
    const std::string path = onlyMap();
    changeHeader([](LgMap::Header& header) { std::strcpy(header._directory, "logs"); });
    const support::CurrentDirectoryGuard guard(_dir.path());
    std::filesystem::create_directory("logs");
    const Result refused = call(&Zu::zlRecoverWrite);
    EXPECT_TRUE(refused._hasFailed);
    EXPECT_NE(refused._err.find("its log directory \"logs\" is relative"), std::string::npos)
        << refused._err;
    options._logDirectory = "logs";
    options._maps = {path};
    EXPECT_EQ(call(&Zu::zlRecoverWrite)._err, "");
    EXPECT_EQ(countsIn(support::readFile(_dir.file("logs/events.log"))), eachOnce(1, 3));
}

TEST_F(ZlRecover, AMapOfAnotherVersionIsListedAndStays)
{
    leaveLines(1, 3);
    changeHeader([](LgMap::Header& header) { ++header._version; });
    const ZlLeft left = find().front();
    EXPECT_EQ(left._state, ZlLeft::State::Unreadable);
    EXPECT_EQ(left._reason, "it has another version");
    EXPECT_TRUE(left._process.has_value());
    EXPECT_NE(call(&Zu::zlRecoverList)._out.find("  unreadable: it has another version\n"),
              std::string::npos);
    for (const Function function : {&Zu::zlRecoverShow, &Zu::zlRecoverWrite})
    {
        const Result result = call(function);
        EXPECT_TRUE(result._hasFailed);
        EXPECT_NE(result._err.find(": it has another version"), std::string::npos) << result._err;
    }
    options._isAll = true;
    EXPECT_NE(call(&Zu::zlRecoverRemove)
                  ._out.find(": removed, with what can't be read: it has another version\n"),
              std::string::npos);
    EXPECT_TRUE(mapNames().empty());
}

TEST_F(ZlRecover, WhatIsNotAFileIsRefused)
{
    const std::string name = Zu::lgMapPrefix() + "0123456789abcdef-1000000000-4711-1";
    std::filesystem::create_directory(_maps.file(name));
    const ZlLeft left = find().front();
    EXPECT_EQ(left._state, ZlLeft::State::Refused);
    EXPECT_EQ(left._made, 1000000000);
    EXPECT_EQ(left._process, 4711U);
    options._isAll = true;
    for (const Function function : {&Zu::zlRecoverShow, &Zu::zlRecoverWrite, &Zu::zlRecoverRemove})
        EXPECT_TRUE(call(function)._hasFailed);
    EXPECT_EQ(mapNames().size(), 1U);
}

// This process has a map, and lives; the other one looks at it.
TEST_F(ZlRecover, MapsOfLivingProcessesAreNotTouched)
{
    const std::string process = std::to_string(Zu::lgProcessFacts()._process);
    const std::string name = Zu::lgMapPrefix() + "0123456789abcdef-5000000000-" + process + "-1";
    {
        Zu::LgMapFile file;
        ASSERT_TRUE(file.create(_maps.file(name))) << file.getError();
        ASSERT_TRUE(file.extend(0x10000)) << file.getError();
        const ProgramResult list = runVictim("list");
        EXPECT_EQ(list.exitCode, 0);
        EXPECT_EQ(list.out, "In use: 1 map of process " + process + "\n");
        for (const char* const command : {"show", "write", "remove"})
        {
            const ProgramResult all = runVictim(command);
            EXPECT_EQ(all.exitCode, 0) << command;
            EXPECT_EQ(all.out, "") << command;
            const ProgramResult named = runVictim(command, 0, {name});
            EXPECT_EQ(named.exitCode, 1) << command;
            EXPECT_NE(named.err.find(": its process is running, or another one is recovering it"),
                      std::string::npos)
                << named.err;
        }
        EXPECT_EQ(mapNames(), std::vector<std::string>{name});
    }
    // It counts as left as soon as nobody has it.
    EXPECT_NE(runVictim("list").out.find("  unreadable: it is not a map of events\n"),
              std::string::npos);
}

TEST_F(ZlRecover, OnlyNamedMapsAreWrittenOrRemoved)
{
    const TempDir other;
    leaveLines(1, 3);
    const std::string own = mapNames().front();
    leave("blocked kill", 1, 4, 0, {{"B7Q_TEST_DIR", other.path()}});
    ASSERT_EQ(mapNames().size(), 2U);
    options._maps = {own};
    EXPECT_EQ(call(&Zu::zlRecoverShow)._out.find("n3 end"), std::string::npos);
    EXPECT_EQ(call(&Zu::zlRecoverWrite)._err, "");
    EXPECT_EQ(countsIn(support::readFile(logPath())), eachOnce(1, 3));
    ASSERT_EQ(mapNames().size(), 1U);
    options._maps = {_maps.file(mapNames().front())};
    const Result removed = call(&Zu::zlRecoverRemove);
    EXPECT_FALSE(removed._hasFailed);
    EXPECT_EQ(removed._out, options._maps.front() + ": removed, with 4 events\n");
    EXPECT_TRUE(mapNames().empty());
    const Result gone = call(&Zu::zlRecoverRemove);
    EXPECT_TRUE(gone._hasFailed);
    EXPECT_NE(gone._err.find("\" is not there"), std::string::npos) << gone._err;
}

TEST_F(ZlRecover, AllMapsAreRemovedOnlyIfThatIsSaid)
{
    leaveLines(1, 3);
    const Result refused = call(&Zu::zlRecoverRemove);
    EXPECT_TRUE(refused._hasFailed);
    EXPECT_EQ(refused._out, "");
    EXPECT_EQ(mapNames().size(), 1U);
    options._isAll = true;
    EXPECT_FALSE(call(&Zu::zlRecoverRemove)._hasFailed);
    EXPECT_TRUE(mapNames().empty());
}

// One that a process leaves which ends by exit() while its service lives.
TEST_F(ZlRecover, AnEmptyMapIsRemovedWithoutALineInTheLog)
{
    leave("_exit", 1, 0);
    ASSERT_EQ(mapNames().size(), 1U);
    const std::string path = onlyMap();
    std::filesystem::remove(logPath());
    EXPECT_EQ(call(&Zu::zlRecoverShow)._out, "");
    EXPECT_EQ(call(&Zu::zlRecoverWrite)._out, path + ": nothing was left in it\n");
    EXPECT_TRUE(mapNames().empty());
    EXPECT_FALSE(std::filesystem::exists(logPath()));
}

} // namespace

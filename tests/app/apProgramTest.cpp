#include "app/apProgram.h"

#include "base/inContextAlias.h"
#include "support/childProcess.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using support::Environment;
using support::ProgramResult;
using support::TempDir;

using Texts = std::vector<std::string>;

ProgramResult runFront(const Texts& words, Environment environment = {})
{
    environment.emplace("ZU_LOG_GROUPS", std::nullopt);
    environment.emplace("ZU_LOG_DEFAULT_LEVEL", std::nullopt);
    return support::runProgram("frontProgram", words, environment);
}

// The lines that a run without arguments writes, but for the first one of the program itself.
const std::string STARTED = "storage starts\nweb starts\n";
const std::string STOPPED = "web stops\n"
                            "Requests is logged behind the end of its package\n"
                            "storage stops\n";
const std::string LAST = "Requests is logged at the very end\n";
const std::string SEE = "frontProgram: 'frontProgram --help' shows what can be given\n";

TEST(ApProgram, StartsItsPackagesAndStopsThem)
{
    const ProgramResult result = runFront({});
    EXPECT_EQ(result.out, STARTED + "port 8080, verbose 0\n" + STOPPED + LAST);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_FALSE(result.aborted);
}

TEST(ApProgram, ReadsTheCommandLineAsPeopleWriteIt)
{
    const struct
    {
        Texts _words;
        const char* _line;
    } cases[] = {
        {{"-p", "80"}, "port 80, verbose 0"},
        {{"--port=80"}, "port 80, verbose 0"},
        {{"a", "--port", "80", "-v"}, "port 80, verbose 1, a"},
        {{"--verbose", "--", "-p", "--port"}, "port 8080, verbose 1, -p, --port"},
        {{"-vp0", "a", "-", "c"}, "port 0, verbose 1, a, -, c"},
        {{"-p", "1", "-p", "2"}, "port 2, verbose 0"},
    };
    for (const auto& row : cases)
    {
        const ProgramResult result = runFront(row._words);
        EXPECT_EQ(result.out, STARTED + row._line + "\n" + STOPPED + LAST);
        EXPECT_EQ(result.exitCode, 0);
    }
}

TEST(ApProgram, TakesVariablesOfTheEnvironment)
{
    EXPECT_EQ(runFront({}, {{"FRONT_PORT", "81"}}).out,
              STARTED + "port 81, verbose 0\n" + STOPPED + LAST);
}

TEST(ApProgram, RefusesWhatItCannotUse)
{
    const std::string range = " needs a whole number from 0 to 65535, not ";
    const struct
    {
        Texts _words;
        Environment _environment;
        std::string _error;
    } cases[] = {
        {{"-p", "notanumber"}, {}, "option '-p'" + range + "'notanumber'"},
        {{"--port=2x"}, {}, "option '--port'" + range + "'2x'"},
        {{"-p", "65536"}, {}, "option '-p'" + range + "'65536'"},
        {{"-p"}, {}, "option '-p' needs a value"},
        {{}, {{"FRONT_PORT", "http"}}, "the variable FRONT_PORT" + range + "'http'"},
        {{},
         {{"FRONT_LOUD", "yes"}},
         "the variable FRONT_LOUD needs 0, 1, false or true, not 'yes'"},
        {{"--prot", "80"}, {}, "unknown option '--prot'; did you mean '--port'?"},
        {{"-q"}, {}, "unknown option '-q'"},
        {{"a", "b", "c", "d"}, {}, "too many arguments: expected [WORD]..."},
        {{"a"},
         {{"FRONT_WITHOUT_WORDS", "1"}},
         "unexpected argument 'a': the program takes options only"},
        {{"-k", "x"}, {{"FRONT_REQUIRES", "1"}}, "too few arguments: expected [WORD]..."},
        {{"a"}, {{"FRONT_REQUIRES", "1"}}, "option '-k' or '--key' is needed: key of the storage"},
    };
    const TempDir directory;
    for (const auto& row : cases)
    {
        Environment environment = row._environment;
        environment["FRONT_MARK"] = directory.file("mark");
        const ProgramResult result = runFront(row._words, environment);
        EXPECT_EQ(result.err, "frontProgram: " + row._error + "\n" + SEE);
        EXPECT_EQ(result.out, LAST);
        EXPECT_EQ(result.exitCode, 2) << row._error;
        EXPECT_FALSE(std::filesystem::exists(directory.file("mark"))) << "nothing was started";
    }
}

TEST(ApProgram, ReportsEveryMistakeOfACommandLine)
{
    EXPECT_EQ(runFront({"-q", "--nothing", "-p", "x"}).err,
              "frontProgram: unknown option '-q'\n"
              "frontProgram: unknown option '--nothing'\n"
              "frontProgram: option '-p' needs a whole number from 0 to 65535, not 'x'\n" +
                  SEE);
}

TEST(ApProgram, NamesThatAllProgramsHaveAreTaken)
{
    const Zu::InArgAlias option("Z", "an option");
    const char* const words[] = {"program", "--version", nullptr};
    for (const char* const name : {"help", "version", "settings", "completion"})
    {
        Zu::ApProgram program;
        program.longName('Z', name);
        try
        {
            program.run(2, words, [] {});
            FAIL() << name;
        }
        catch (const std::logic_error& error)
        {
            EXPECT_EQ(std::string(error.what()), std::string("the name '--") + name + "' is taken");
        }
    }
}

TEST(ApProgram, ExplainsItselfWithoutStartingAnything)
{
    const std::string help =
        "usage: frontProgram [option]... [WORD]...\n"
        "Shows what a front does.\n"
        "\n"
        "options:\n"
        "  -k, --key=VALUE         key of the storage\n"
        "  -p, --port=VALUE        port to listen on [FRONT_PORT] [default: 8080, the usual one]\n"
        "  -v, --verbose           says more\n"
        "  -h, --help              shows this text, and ends\n"
        "      --version           shows the version, and ends\n"
        "      --completion        writes a completion for bash, and ends\n"
        "\n"
        "environment:\n"
        "  FRONT_LOUD              is loud\n";
    const struct
    {
        Texts _words;
        std::string _out;
    } cases[] = {
        {{"--help"}, help},
        {{"-h"}, help},
        {{"-vh", "-p", "notanumber"}, help},
        {{"--version"}, "Front 1.4 beta\nlibrary: frontProgram\nstamp: stamp 12\n"},
    };
    for (const auto& row : cases)
    {
        const TempDir directory;
        const ProgramResult result = runFront(row._words, {{"FRONT_MARK", directory.file("mark")},
                                                           {"B7Q_TEST_DIR", directory.path()},
                                                           {"ZU_LOG_GROUPS", "Http"}});
        EXPECT_EQ(result.out, row._out + LAST);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_TRUE(std::filesystem::is_empty(directory.path())) << "nothing was made";
    }
}

TEST(ApProgram, WritesACompletion)
{
    const std::string out = runFront({"--completion"}).out;
    EXPECT_NE(out.find("compgen -W '-k --key -p --port -v --verbose -h --help --version "
                       "--completion'"),
              std::string::npos)
        << out;
    EXPECT_NE(out.find("complete -o default -F _complete_frontProgram 'frontProgram'\n"),
              std::string::npos)
        << out;
}

TEST(ApProgram, AFailedStartIsALineAndTheValueOne)
{
    const ProgramResult broken = runFront({}, {{"FRONT_FAILS", "1"}});
    EXPECT_EQ(broken.err, "frontProgram: the storage is broken\n");
    EXPECT_EQ(broken.exitCode, 1);
    EXPECT_FALSE(broken.aborted);

    const ProgramResult package = runFront({}, {{"FRONT_FAILS_AS_PACKAGE", "1"}});
    EXPECT_EQ(package.err, "frontProgram: Init error in package: 'storage'.\n");
    EXPECT_NE(package.out.find("Initialisation failed: Init error in package: 'storage'."),
              std::string::npos);
    EXPECT_EQ(package.exitCode, 1);
}

TEST(ApProgram, ExceptionsOfTheProgramAndItsEndAreLinesToo)
{
    const struct
    {
        Texts _words;
        Environment _environment;
        const char* _error;
    } cases[] = {
        {{"throw"}, {}, "the program gives up"},
        {{"unknown"}, {}, "an exception of an unknown type"},
        {{}, {{"FRONT_FAILS_TO_STOP", "1"}}, "the storage can't be closed"},
    };
    for (const auto& row : cases)
    {
        const ProgramResult result = runFront(row._words, row._environment);
        EXPECT_EQ(result.err, std::string("frontProgram: ") + row._error + "\n");
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_NE(result.out.find(STOPPED), std::string::npos);
    }
}

TEST(ApProgram, ReturnsTheValueOfTheProgram)
{
    EXPECT_EQ(runFront({"three"}).exitCode, 3);
}

TEST(ApProgram, HasALogServiceUnlessItIsWithout)
{
    const auto eventsOf = [](const TempDir& directory)
    {
        std::ifstream file(directory.file("events.log"));
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        return text.find("Requests is in the log") != std::string::npos;
    };
    const TempDir logs;
    const ProgramResult result = runFront({"log"}, {{"B7Q_TEST_DIR", logs.path()}});
    EXPECT_NE(result.out.find("flushed: 1\n"), std::string::npos) << result.out;
    EXPECT_EQ(result.out.find("is in the log"), std::string::npos);
    EXPECT_TRUE(eventsOf(logs));

    const TempDir others;
    const ProgramResult without =
        runFront({"log"}, {{"B7Q_TEST_DIR", others.path()}, {"FRONT_WITHOUT_LOG", "1"}});
    EXPECT_NE(without.out.find("Requests is in the log\n"), std::string::npos);
    EXPECT_EQ(without.err, "frontProgram: the program has no log service now\n");
    EXPECT_EQ(without.exitCode, 1);
    EXPECT_FALSE(eventsOf(others));
}

TEST(ApProgram, GroupsThatWouldEndTheStartAreRefused)
{
    const ProgramResult result = runFront({}, {{"ZU_LOG_GROUPS", "Web"}});
    EXPECT_EQ(result.err,
              "frontProgram: ZU_LOG_GROUPS is 'Web', where 'Web' has no level: expected "
              "GROUP=LEVEL,GROUP=LEVEL... with the levels Internal Error, Fatal Error, Error, "
              "Warning, Informational, Tracing, Profiling\n" +
                  SEE);
    EXPECT_EQ(result.exitCode, 2);
}

TEST(ApProgram, GroupsAndLevelsThatDoNotExistAreReported)
{
    const ProgramResult result = runFront({}, {{"ZU_LOG_GROUPS", "Wob=Error,Web=Waring,Base=Error"},
                                               {"ZU_LOG_DEFAULT_LEVEL", "Eror"}});
    EXPECT_EQ(result.err,
              "frontProgram: ZU_LOG_GROUPS: no statement belongs to the group 'Wob'; did you mean "
              "'Web'?\n"
              "frontProgram: ZU_LOG_GROUPS: 'Waring' is not a level; did you mean 'Warning'?\n"
              "frontProgram: ZU_LOG_DEFAULT_LEVEL: 'Eror' is not a level; did you mean 'Error'?\n");
    EXPECT_EQ(result.exitCode, 0);
}

TEST(ApProgram, AMistakeOfTheProgramItselfIsAnException)
{
    EXPECT_TRUE(runFront({}, {{"FRONT_WRONG", "1"}}).aborted);
}

} // namespace

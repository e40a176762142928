#include "base/testMgr.h"

#include "base/testGroup.h"

#include "support/childProcess.h"
#include "support/fileTest.h"
#include "support/groupTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <cstddef>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <system_error>
#include <type_traits>
#include <vector>

namespace
{

using support::Environment;
using support::outputOfGroups;
using support::ProgramResult;
using support::runGroups;
using support::TempDir;
using Zu::TestMgr;

static_assert(!std::is_default_constructible_v<TestMgr>);

using Words = std::vector<std::string>;

const std::string USAGE = "\nArguments: \n\n"
                          "<testGroup> { <args> } \n"
                          "<testGroup> -perf <fileName>\n"
                          "<testGroup> -dumpLeaks { <args> }\n"
                          "<testGroup> -dumpLibs { <args> }\n"
                          "<testGroup> -detectLeaks { <args> }\n";

const std::string UNKNOWN_GROUP = "Abnormal termination: Unknown test group name.\n";

const std::string LIBRARIES = "| Loaded Libraries:\n";

// What precedes and follows a group's output.
std::string before(const std::string& name)
{
    return "| \n| Executing " + name + "\n| \n";
}

const std::string AFTER = "| \n| ***** End *****\n| \n| Test group executed successfully.\n| \n";

// What the group "arguments" and similar ones print with these words.
std::string calls(const std::string& words)
{
    return "prepare " + words + " null\nrun " + words + " null\nterminate\n";
}

std::string warning(const std::string& option)
{
    return "| Warning: " + option + " specified but MemDebug version of smartheap is not loaded\n";
}

std::string textOf(const Words& words)
{
    std::string text;
    for (const std::string& word : words) text += " '" + word + "'";
    return text;
}

// The messages in a file, with line endings reduced to line feeds.
std::string messagesIn(const std::string& file)
{
    std::string text = support::readFile(file);
    if (support::onWindows) std::erase(text, '\r');
    return text;
}

// Whether the text is a list of libraries that contains the program and the library.
testing::AssertionResult isLibraryList(const std::string& text)
{
    const std::regex path("\n\tLibrary path: [^\n]*testProgram[^\n]* \n");
    const std::regex libraryPath("\n\tLibrary path: [^\n]*ZUbase[^\n]* \n");
    if (text.starts_with("\n\nLibrary: 0 \n\tLibrary path: ") && std::regex_search(text, path) &&
        std::regex_search(text, libraryPath))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "no list of libraries: " << text;
}

// Whether the text is the beginning, followed by a list of libraries.
testing::AssertionResult endsWithLibraryList(const std::string& text, const std::string& beginning)
{
    if (!text.starts_with(beginning))
        return testing::AssertionFailure() << "doesn't begin with " << beginning << ": " << text;
    return isLibraryList(text.substr(beginning.size()));
}

TEST(TestMgr, AGroupIsPreparedRunAndTerminated)
{
    EXPECT_EQ(outputOfGroups({"arguments"}), before("arguments") + calls("0") + AFTER);
    EXPECT_EQ(outputOfGroups({"arguments", "a", "b c", "", "-d", "--", "%s"}),
              before("arguments") + calls("6 'a' 'b c' '' '-d' '--' '%s'") + AFTER);
}

TEST(TestMgr, AGroupTakesAnyNumberOfWords)
{
    Words words{"arguments"};
    std::string text = "500";
    for (int i = 0; i < 500; ++i)
    {
        words.push_back("word" + std::to_string(i));
        text += " '" + words.back() + "'";
    }
    EXPECT_EQ(outputOfGroups(words), before("arguments") + calls(text) + AFTER);
}

TEST(TestMgr, AGroupMayTakeItsNameAsTheFirstWord)
{
    EXPECT_EQ(outputOfGroups({"named"}), before("named") + calls("1 'named'") + AFTER);
    EXPECT_EQ(outputOfGroups({"named", "a"}), before("named") + calls("2 'named' 'a'") + AFTER);
    EXPECT_EQ(outputOfGroups({"-detectLeaks", "named", "a"}),
              warning("-detectLeaks") + before("named") + calls("2 'named' 'a'") + AFTER);
}

TEST(TestMgr, AGroupMayDoWithoutHeaders)
{
    EXPECT_EQ(outputOfGroups({"quiet", "a"}), calls("1 'a'"));
}

TEST(TestMgr, OnlyRunMustBeThere)
{
    EXPECT_EQ(outputOfGroups({"bare", "a"}), before("bare") + AFTER);
}

TEST(TestMgr, AGroupsNameIsOfAnyLength)
{
    const std::string name(48, 'n');
    EXPECT_EQ(outputOfGroups({name}), before(name) + AFTER);
}

TEST(TestMgr, TracingSaysWhetherAndHowHeadersAreShown)
{
    const std::string place = "testMgr.cpp          (<line>) ";
    const std::string groupPlace = "testGroup.cpp        (<line>) ";
    const struct
    {
        const char* _options;
        std::string _before;
        std::string _after;
    } cases[] = {
        {"", before("arguments"), AFTER},
        {"hide=Main", "", ""},
        {"off", "", ""},
        {"hide=Main,show=Main", before("arguments"), AFTER},
        // A line without text does not count.
        {"noindent", "Executing arguments\n",
         "***** End *****\nTest group executed successfully.\n"},
        {"line", place + "| \n" + place + "| Executing arguments\n" + place + "| \n",
         groupPlace + "| \n" + groupPlace + "| ***** End *****\n" + groupPlace + "| \n" + place +
             "| Test group executed successfully.\n" + place + "| \n"},
    };
    for (const auto& row : cases)
    {
        const std::string out = outputOfGroups({"arguments"}, {{"ZU_TRACE_OPTIONS", row._options}});
        EXPECT_EQ(std::regex_replace(out, std::regex("\\([ 0-9]{4}\\)"), "(<line>)"),
                  row._before + calls("0") + row._after)
            << row._options;
    }
}

TEST(TestMgr, WithoutWordsUsageAndGroupsAreShown)
{
    const std::string levels = outputOfGroups({"commands", "levels"});
    ASSERT_TRUE(levels.starts_with("\nRegistered trace levels:\n\n")) << levels;
    EXPECT_EQ(outputOfGroups({}), USAGE +
                                      "\n\nRegistered test groups:\n\n"
                                      "arguments \n\n"
                                      "named \n\n"
                                      "quiet \n\n"
                                      "bare \n\n" +
                                      std::string(47, 'n') + " \n\n" + std::string(48, 'n') +
                                      " \n\n"
                                      "described { <words> }\n"
                                      "Does nothing.\nAnd that in two lines.\n\n"
                                      "<untitled> -x\n\n"
                                      "<untitled> \nHas no name.\n\n"
                                      "failing \n\n"
                                      "abnormal \n\n"
                                      "counting \n\n"
                                      "spinning \n\n"
                                      "commands \n\n" +
                                      levels + "\n");
}

TEST(TestMgr, TheUsageIsShownWhileTracingIsOff)
{
    EXPECT_TRUE(outputOfGroups({}, {{"ZU_TRACE_OPTIONS", "off"}})
                    .starts_with(USAGE + "\n\nRegistered test groups:\n\narguments \n\n"));
}

TEST(TestMgr, AnUnknownGroupIsAnAbnormalTermination)
{
    const Words cases[] = {
        {"nobody"},        {"nobody", "arguments"}, {""},           {"Arguments"},  {"<untitled>"},
        {"-unknown"},      {"-unknown", "bare"},    {"-x", "bare"}, {"-dumpLibsx"}, {"-DumpLibs"},
        {"-dumpLibs", ""}, {"-dumpLibs", "nobody"},
    };
    for (const Words& words : cases)
    {
        const ProgramResult result = runGroups(words);
        EXPECT_EQ(result.exitCode, 1) << textOf(words);
        EXPECT_EQ(result.out, UNKNOWN_GROUP) << textOf(words);
        EXPECT_EQ(result.err, "") << textOf(words);
    }
}

TEST(TestMgr, ASwitchWithNothingBehindItIsAnUnknownGroup)
{
    for (const std::string name : {"-dumpLeaks", "-detectLeaks"})
    {
        const ProgramResult result = runGroups({name});
        EXPECT_EQ(result.exitCode, 1) << name;
        EXPECT_EQ(result.out, warning(name) + UNKNOWN_GROUP);
    }
}

TEST(TestMgr, OnlyTheFirstSwitchIsOne)
{
    for (const std::string first : {"-dumpLeaks", "-detectLeaks", "-dumpLibs"})
        for (const std::string second : {"-dumpLeaks", "-detectLeaks", "-dumpLibs", "-perf"})
        {
            const ProgramResult result = runGroups({first, second, "bare"});
            EXPECT_EQ(result.exitCode, 1) << first << " " << second;
            EXPECT_EQ(result.out, (first == "-dumpLibs" ? "" : warning(first)) + UNKNOWN_GROUP)
                << first << " " << second;
        }
}

TEST(TestMgr, ASwitchBehindTheGroupIsAWordOfIt)
{
    for (const std::string name : {"-dumpLeaks", "-detectLeaks", "-dumpLibs", "-perf"})
        EXPECT_EQ(outputOfGroups({"arguments", name, "x"}),
                  before("arguments") + calls("2 '" + name + "' 'x'") + AFTER);
}

TEST(TestMgr, SearchingForLeaksWarnsWithoutADebuggingHeap)
{
    for (const std::string name : {"-dumpLeaks", "-detectLeaks"})
    {
        EXPECT_EQ(outputOfGroups({name, "arguments", "a"}),
                  warning(name) + before("arguments") + calls("1 'a'") + AFTER);
        EXPECT_EQ(outputOfGroups({name, "arguments", "a"}, {{"ZU_TRACE_OPTIONS", "hide=Main"}}),
                  calls("1 'a'"));
        EXPECT_EQ(outputOfGroups({name, "quiet", "a"}), warning(name) + calls("1 'a'"));
    }
}

TEST(TestMgr, ALeakIsTheExitValueThreeAndNoMessage)
{
    for (const std::string name : {"-dumpLeaks", "-detectLeaks"})
    {
        const TempDir dir;
        for (const Environment& environment :
             {Environment{}, Environment{{"ZU_RUN_TEST_MSGS", dir.file("messages")}}})
        {
            const ProgramResult result = runGroups({name, "failing", "run", "leak"}, environment);
            EXPECT_EQ(result.exitCode, 3) << name;
            EXPECT_EQ(result.out, warning(name) + before("failing") + "prepare\nrun\n");
            EXPECT_EQ(result.err, "");
        }
        EXPECT_FALSE(std::filesystem::exists(dir.file("messages")));
    }
}

TEST(TestMgr, OutsideOfTheSearchALeakIsAnExceptionLikeOthers)
{
    const std::string message =
        "Exception encountered: [Exception Type = Zu::HmGCEx::ExGarbageDetected, File = "
        "dir/thrown.cpp, Line=7]\nGarbage Collector has detected leaks.\n";
    const struct
    {
        Words _words;
        std::string _out;
    } cases[] = {
        {{"failing", "prepare", "leak"}, before("failing") + "prepare\n"},
        {{"failing", "run", "leak"}, before("failing") + "prepare\nrun\n"},
        {{"failing", "terminate", "leak"}, before("failing") + "prepare\nrun\nterminate\n"},
        {{"-dumpLibs", "failing", "run", "leak"}, before("failing") + "prepare\nrun\n"},
        {{"-dumpLeaks", "failing", "prepare", "leak"},
         warning("-dumpLeaks") + before("failing") + "prepare\n"},
        {{"-detectLeaks", "failing", "terminate", "leak"},
         warning("-detectLeaks") + before("failing") + "prepare\nrun\nterminate\n"},
    };
    for (const auto& row : cases)
    {
        const ProgramResult result = runGroups(row._words);
        EXPECT_EQ(result.exitCode, 2) << textOf(row._words);
        EXPECT_EQ(result.out, row._out + message) << textOf(row._words);
    }
}

TEST(TestMgr, AnExceptionEndsTheRunAtOnceWithItsMessage)
{
    const struct
    {
        const char* _what;
        const char* _message;
    } kinds[] = {
        {"family", "Exception encountered: [Exception Type = Zu::ExInternalError, File = "
                   "dir/thrown.cpp, Line=7]\nwhy 100%s\n"},
        {"standard", "Exception encountered: [Exception Type = std::out_of_range]\nwhy 100%s\n\n"},
        {"number", "Exception encountered: Unknown exception.\n"},
    };
    const struct
    {
        const char* _operation;
        const char* _calls;
    } operations[] = {
        {"prepare", "prepare\n"},
        {"run", "prepare\nrun\n"},
        {"terminate", "prepare\nrun\nterminate\n"},
    };
    for (const auto& kind : kinds)
        for (const auto& operation : operations)
            for (const std::string option : {"", "-dumpLibs", "-detectLeaks"})
            {
                Words words{"failing", operation._operation, kind._what};
                if (!option.empty()) words.insert(words.begin(), option);
                const std::string start = option == "-detectLeaks" ? warning(option) : "";

                const ProgramResult result = runGroups(words);
                EXPECT_EQ(result.exitCode, 2) << textOf(words);
                EXPECT_EQ(result.out, start + before("failing") + operation._calls + kind._message)
                    << textOf(words);
                EXPECT_EQ(result.err, "") << textOf(words);
            }
}

TEST(TestMgr, AMessageGoesToTheFileThatIsAskedFor)
{
    const struct
    {
        Words _words;
        int _exitCode;
        std::string _message;
    } cases[] = {
        {{"nobody"}, 1, UNKNOWN_GROUP},
        {{"-perf"}, 1, "Abnormal termination: " + USAGE + "\n"},
        {{"failing", "run", "number"}, 2, "Exception encountered: Unknown exception.\n"},
        {{"failing", "run", "standard"},
         2,
         "Exception encountered: [Exception Type = std::out_of_range]\nwhy 100%s\n\n"},
        {{"failing", "run", "family"},
         2,
         "Exception encountered: [Exception Type = Zu::ExInternalError, File = dir/thrown.cpp, "
         "Line=7]\nwhy 100%s\n"},
    };
    for (const auto& row : cases)
    {
        const TempDir dir;
        support::writeFile(dir.file("messages"), std::string(1000, 'x'));
        const ProgramResult result =
            runGroups(row._words, {{"ZU_RUN_TEST_MSGS", dir.file("messages")}});
        EXPECT_EQ(result.exitCode, row._exitCode) << textOf(row._words);
        EXPECT_EQ(messagesIn(dir.file("messages")), row._message) << textOf(row._words);
        EXPECT_EQ(result.out.find("Exception encountered"), std::string::npos) << result.out;
        EXPECT_EQ(result.out.find("Abnormal termination"), std::string::npos) << result.out;
    }
}

TEST(TestMgr, ARunThatPassesLeavesTheFileOfMessages)
{
    const TempDir dir;
    const Environment environment = {{"ZU_RUN_TEST_MSGS", dir.file("messages")}};
    EXPECT_EQ(outputOfGroups({"bare"}, environment), before("bare") + AFTER);
    EXPECT_FALSE(std::filesystem::exists(dir.file("messages")));
    support::writeFile(dir.file("messages"), "of an earlier run");
    outputOfGroups({}, environment);
    EXPECT_EQ(support::readFile(dir.file("messages")), "of an earlier run");
}

TEST(TestMgr, AFailureOfTheStartIsAnExceptionLikeOthers)
{
    // A group of the logger without a level.
    const Environment environment = {{"ZU_LOG_GROUPS", "A"}, {"TEST_PROGRAM_TELLS", "1"}};
    for (const Words& words : {Words{"bare"}, Words{}, Words{"-perf"}})
    {
        const ProgramResult result = runGroups(words, environment);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(support::withoutPlaces(result.out, "[A-Za-z]+"),
                  "Exception encountered: [Exception Type = Zu::ExInternalError, <place>]\n"
                  "Assertion 's' failed.\n")
            << textOf(words);
    }
}

TEST(TestMgr, ThePackagesAreStoppedOnEveryWayOut)
{
    const TempDir dir;
    support::writeFile(dir.file("empty"), "");
    const struct
    {
        Words _words;
        int _exitCode;
    } cases[] = {
        {{}, 0},
        {{"bare"}, 0},
        {{"-perf", dir.file("empty")}, 0},
        {{"-dumpLibs"}, 0},
        {{"nobody"}, 1},
        {{"-perf"}, 1},
        {{"-perf", dir.file("missing")}, 2},
        {{"failing", "run", "family"}, 2},
        {{"failing", "run", "standard"}, 2},
        {{"failing", "run", "number"}, 2},
        {{"-dumpLeaks", "failing", "run", "leak"}, 3},
    };
    for (const auto& row : cases)
    {
        const ProgramResult result = runGroups(row._words, {{"TEST_PROGRAM_TELLS", "1"}});
        EXPECT_EQ(result.exitCode, row._exitCode) << textOf(row._words);
        EXPECT_TRUE(result.out.starts_with("packages start\n")) << textOf(row._words);
        EXPECT_NE(result.out.find("\npackages stop\n"), std::string::npos) << textOf(row._words);
    }
}

TEST(TestMgr, WordsThatVariablesTakeAreNotTheGroups)
{
    EXPECT_EQ(outputOfGroups({"-z", "5", "commands", "size"}), "5\n");
    EXPECT_EQ(outputOfGroups({"commands", "size"}), "10\n");
    EXPECT_EQ(outputOfGroups({"-z5", "arguments", "-z", "6"}),
              before("arguments") + calls("2 '-z' '6'") + AFTER);
    EXPECT_TRUE(outputOfGroups({"-z", "5"}).starts_with(USAGE));
    EXPECT_TRUE(outputOfGroups({"--"}).starts_with(USAGE));
}

TEST(TestMgr, TheLibrariesAreListedOnDemand)
{
    EXPECT_TRUE(endsWithLibraryList(outputOfGroups({"-dumpLibs"}), LIBRARIES));
    EXPECT_TRUE(isLibraryList(outputOfGroups({"-dumpLibs"}, {{"ZU_TRACE_OPTIONS", "hide=Main"}})));
}

TEST(TestMgr, TheLibrariesAreListedBehindAGroup)
{
    EXPECT_TRUE(endsWithLibraryList(outputOfGroups({"-dumpLibs", "arguments", "a"}),
                                    before("arguments") + calls("1 'a'") + AFTER + LIBRARIES));
    EXPECT_TRUE(
        endsWithLibraryList(outputOfGroups({"-dumpLibs", "quiet"}), calls("0") + LIBRARIES));
    EXPECT_TRUE(endsWithLibraryList(
        outputOfGroups({"-dumpLibs", "arguments"}, {{"ZU_TRACE_OPTIONS", "hide=Main"}}),
        calls("0")));
}

TEST(TestMgr, APerformanceRunNeedsAFile)
{
    const ProgramResult result = runGroups({"-perf"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "Abnormal termination: " + USAGE + "\n");
    EXPECT_EQ(result.err, "");
}

TEST(TestMgr, APerformanceRunTakesOneFileAlone)
{
    const TempDir dir;
    support::writeFile(dir.file("list"), "bare -3 a\n");
    const std::string expected = "\n\nGroup Name              nbCycles   average time    options\n"
                                 "----------              --------   ------------    -------\n\n\n"
                                 "bare                          -3       0.000000    a \n\n\n";
    EXPECT_EQ(outputOfGroups({"-perf", dir.file("list")}), expected);
    EXPECT_EQ(outputOfGroups({"-perf", dir.file("list"), "nobody", "-dumpLibs"}), expected);
}

TEST(TestMgr, TheProgramIsRegisteredAsAnApplication)
{
    const Words lines = support::linesOf(outputOfGroups({"commands", "application"}));
    ASSERT_EQ(lines.size(), 16U);
    EXPECT_EQ(lines[0], "RV Test Suite");
    EXPECT_EQ(lines[1], "1");
    EXPECT_EQ(lines[2], "0");
    EXPECT_EQ(lines[3], "Internal");
    for (const std::size_t at : {4U, 10U})
    {
        EXPECT_EQ(lines[at], "N/A");
        EXPECT_EQ(lines[at + 1], "[No Prod. #]");
        // The day of the compilation.
        EXPECT_TRUE(std::regex_match(lines[at + 2],
                                     std::regex("(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) "
                                                "[ 123][0-9] 2[0-9]{3}")))
            << lines[at + 2];
        EXPECT_EQ(lines[at + 3], "WinNT_ostore_release");
        EXPECT_EQ(lines[at + 4], "[Information not available]");
        EXPECT_EQ(lines[at + 5], "[Information not available]");
    }
}

// What the program prints about its libraries.
std::string banner()
{
    const std::string text = outputOfGroups({"commands", "banner"});
    EXPECT_TRUE(std::regex_match(
        text, std::regex("RV Test Suite 1\\.0 Internal \\(\\[No Prod\\. #\\], [^\n]*\\)\n"
                         "API [^\n]*: \n"
                         "\tlibZUbase \\([^\n]*\\)\n")))
        << text;
    return text;
}

TEST(TestMgr, TheLibrariesAreLoggedAtTheStart)
{
    EXPECT_EQ(outputOfGroups({"quiet"}, {{"ZU_LOG_DEFAULT_LEVEL", "Informational"}}),
              "BuildInfo Registered versioned libraries:\n" + banner() + "\n" + calls("0"));
    for (const char* const level : {"Warning", "Error"})
        EXPECT_EQ(outputOfGroups({"quiet"}, {{"ZU_LOG_DEFAULT_LEVEL", level}}), calls("0"));
    EXPECT_EQ(outputOfGroups({"quiet"}, {{"ZU_LOG_GROUPS", "Base=Informational"}}),
              "BuildInfo Registered versioned libraries:\n" + banner() + "\n" + calls("0"));
}

TEST(TestMgr, AnActiveLoggerGetsTheLibrariesAsOneEvent)
{
    EXPECT_EQ(outputOfGroups({"commands", "pixified", "flush"},
                             {{"TEST_PROGRAM_LOGS", "1"},
                              {"ZU_LOG_DEFAULT_LEVEL", "Informational"},
                              {"ZU_LOG_INFORMATIONAL", "%"},
                              {"ZU_LOG_DISABLE_TIMESTAMPS", "1"}}),
              "not pixified\n"
              "BuildInfo Registered versioned libraries:\n" +
                  banner() + "\n");
}

TEST(TestMgr, TheFlagOfAProfiledProgramIsKept)
{
    EXPECT_FALSE(Zu::TestGroup::isPixified());
    TestMgr::setIsPixified(true);
    EXPECT_TRUE(Zu::TestGroup::isPixified());
    TestMgr::setIsPixified(false);
    EXPECT_FALSE(Zu::TestGroup::isPixified());
}

// Copies of the program under other names. On Windows they are beside the original, where the
// libraries are found.
class RenamedProgram : public testing::Test
{
protected:
    RenamedProgram()
        : _unique(std::filesystem::path(_dir.path()).filename().string()),
          _place(support::onWindows ? original().parent_path() : std::filesystem::path(_dir.path()))
    {
    }

    ~RenamedProgram() override
    {
        std::error_code ignored;
        for (const std::filesystem::path& path : _made) std::filesystem::remove(path, ignored);
    }

    static std::filesystem::path original()
    {
        return support::programPath("testProgram");
    }

    // A new copy with this in its name, before the program's suffix.
    std::string copyNamed(const std::string& name)
    {
        // On Windows names that differ in case alone are one.
        const std::string number = std::to_string(_made.size());
        _made.push_back(_place / (_unique + number + name + original().extension().string()));
        std::filesystem::copy_file(original(), _made.back());
        return _made.back().string();
    }

    // A new directory with this in its name.
    std::filesystem::path directoryNamed(const std::string& name)
    {
        _made.push_back(_place / (_unique + name));
        std::filesystem::create_directory(_made.back());
        return _made.back();
    }

    // Whether a program reports that it was instrumented.
    std::string saidBy(const std::string& path) const
    {
        Environment environment = support::groupEnvironment({});
        environment["B7Q_TEST_DIR"] = _dir.file("logs");
        ProgramResult result;
        support::runToFiles(path, {"commands", "pixified"}, environment, _dir.file("out"),
                            _dir.file("err"), result);
        EXPECT_EQ(result.exitCode, 0) << path;
        return messagesIn(_dir.file("out"));
    }

private:
    const TempDir _dir;
    std::string _unique;
    std::filesystem::path _place;
    std::vector<std::filesystem::path> _made;
};

TEST_F(RenamedProgram, TellsAProfiledProgramByItsName)
{
    EXPECT_EQ(saidBy(original().string()), "not pixified\n");
    for (const char* const name : {".pixie", ".pixie.x", ".pixies", "x.y.pixie"})
        EXPECT_EQ(saidBy(copyNamed(name)), "pixified\n") << name;
    for (const char* const name : {"pixie", ".pixi", ".Pixie", ".pix.ie"})
        EXPECT_EQ(saidBy(copyNamed(name)), "not pixified\n") << name;
}

TEST_F(RenamedProgram, LooksAtTheBaseNameAlone)
{
    const std::filesystem::path program = copyNamed("plain");
    const std::filesystem::path detour = directoryNamed(".pixie") / ".." / program.filename();
    EXPECT_EQ(saidBy(detour.string()), "not pixified\n");
}

TEST(TestMgr, GivingUpTellsAnAbnormalTerminationAndAborts)
{
    for (const std::string way : {"terminate", "noexcept", "thread"})
    {
        const std::string message = "Abnormal termination: Terminate handler called.\n";
        const ProgramResult shown = runGroups({"abnormal", way});
        EXPECT_TRUE(shown.aborted) << way;
        EXPECT_EQ(shown.out, before("abnormal") + "+ terminateHandler()\n" + message) << way;

        const ProgramResult hidden =
            runGroups({"abnormal", way}, {{"ZU_TRACE_OPTIONS", "hide=Main"}});
        EXPECT_TRUE(hidden.aborted) << way;
        EXPECT_EQ(hidden.out, message) << way;

        const TempDir dir;
        const ProgramResult toFile =
            runGroups({"abnormal", way}, {{"ZU_RUN_TEST_MSGS", dir.file("messages")}});
        EXPECT_TRUE(toFile.aborted) << way;
        EXPECT_EQ(toFile.out, before("abnormal") + "+ terminateHandler()\n") << way;
        EXPECT_EQ(messagesIn(dir.file("messages")), message) << way;
    }
}

TEST(TestMgr, AnAbortTellsNothing)
{
    const TempDir dir;
    const ProgramResult result =
        runGroups({"abnormal", "abort"}, {{"ZU_RUN_TEST_MSGS", dir.file("messages")}});
    EXPECT_TRUE(result.aborted);
    EXPECT_EQ(result.out, before("abnormal"));
    EXPECT_FALSE(std::filesystem::exists(dir.file("messages")));
}

TEST(TestMgr, ASecondRunOfAProcessRunsNothingAndSaysWhy)
{
    const std::string reason = "The packages have stopped: tests run once in a process.\n";
    for (const Words& words : {Words{"bare"}, Words{}, Words{"-perf"}, Words{"-dumpLibs", "bare"}})
    {
        const TempDir dir;
        const std::string messages = dir.file("messages");
        const ProgramResult result =
            runGroups(words, {{"TEST_PROGRAM_TWICE", "1"}, {"ZU_RUN_TEST_MSGS", messages}});
        EXPECT_FALSE(result.aborted) << textOf(words);
        EXPECT_EQ(result.exitCode, 2) << textOf(words);
        EXPECT_EQ(result.err, "") << textOf(words);
        // What the first run has printed is there, although it is not yet flushed.
        const std::size_t second =
            result.out.find(words == Words{"-perf"} ? "first 1\n" : "first 0\n");
        ASSERT_NE(second, std::string::npos) << result.out;
        EXPECT_EQ(support::withoutPlaces(result.out.substr(second + 8), "testMgr"),
                  "| Throwing exception [Exception Type = Zu::ExInternalError, <place>]\n" + reason)
            << textOf(words);
        EXPECT_EQ(support::withoutPlaces(messagesIn(messages), "testMgr"),
                  "Exception encountered: [Exception Type = Zu::ExInternalError, <place>]\n" +
                      reason)
            << textOf(words);
    }
}

} // namespace

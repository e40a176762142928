#include "app/apTestRunner.h"

#include "checkProgramRun.h"
#include "support/fileTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <vector>

namespace
{

using support::failedIn;
using support::ProgramResult;
using support::runChecks;
using support::TempDir;
using support::withoutNumbers;

using Texts = std::vector<std::string>;

const std::string NAMES = "Passing\nFailing\nThrowsFamily\nThrowsStandard\nThrowsNumber\nThreads\n"
                          "FailingThreads\nMany\nTerminating\nQuiet\nSteps\n";

const std::string SEE = "checkProgram: 'checkProgram --help' shows what can be given\n";

TEST(ApTestRunner, WithoutWordsItSaysWhatThereIsAndHasRunNothing)
{
    const ProgramResult result = runChecks({});
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.rfind("usage: checkProgram [option]... [GROUP]...\n", 0), 0U);
    EXPECT_NE(result.err.find("\n\ngroups:\n" + NAMES), std::string::npos) << result.err;
    EXPECT_EQ(result.exitCode, 2);
}

TEST(ApTestRunner, ExplainsItself)
{
    for (const Texts& words : {Texts{"--help"}, Texts{"-h"}, Texts{"Nothing", "--help"}})
    {
        const ProgramResult result = runChecks(words);
        EXPECT_EQ(result.out.rfind("usage: checkProgram [option]... [GROUP]...\n", 0), 0U);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.exitCode, 0);
    }
}

TEST(ApTestRunner, ListsNamesAndRunsNothing)
{
    const struct
    {
        Texts _words;
        std::string _names;
    } cases[] = {
        {{"--list"}, NAMES},
        {{"--list", "Th*"}, "ThrowsFamily\nThrowsStandard\nThrowsNumber\nThreads\n"},
        {{"--list", "Th*", "-*Num???"}, "ThrowsFamily\nThrowsStandard\nThreads\n"},
    };
    for (const auto& row : cases)
    {
        const ProgramResult result = runChecks(row._words);
        EXPECT_EQ(result.out, row._names);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.exitCode, 0);
    }
}

TEST(ApTestRunner, RefusesWhatItCannotUseBeforeAnythingRuns)
{
    const TempDir directory;
    const std::string missing = directory.file("missing/report.xml");
    const struct
    {
        Texts _words;
        std::string _errors;
    } cases[] = {
        {{"--lst"}, "checkProgram: unknown option '--lst'; did you mean '--list'?\n"},
        {{"Pasing"}, "checkProgram: there is no group 'Pasing'; did you mean 'Passing'?\n"},
        {{"Passing", "-Thread"},
         "checkProgram: there is no group 'Thread'; did you mean 'Threads'?\n"},
        {{"--al", "x*"},
         "checkProgram: unknown option '--al'; did you mean '--all'?\n"
         "checkProgram: no group matches 'x*'\n"},
        {{"Passing", "--junit", missing},
         "checkProgram: the report '" + missing + "' can't be written\n"},
    };
    for (const auto& row : cases)
    {
        const ProgramResult result = runChecks(row._words);
        EXPECT_EQ(result.err, row._errors + SEE);
        EXPECT_EQ(result.out, "") << "nothing was started";
        EXPECT_EQ(result.exitCode, 2);
    }
}

TEST(ApTestRunner, RunsGroupsInTheirOrderAndGoesOnAfterFailures)
{
    const ProgramResult result = runChecks({"Quiet", "Throws*", "Passing"});
    EXPECT_EQ(
        withoutNumbers(result.out),
        "packages start\n"
        "Executing Passing\n"
        "Passing passed: 13 checks, <time> s\n"
        "Executing ThrowsFamily\n"
        "Exception encountered: [Exception Type = Zu::ExInternalError, File = dir/thrown.cpp, "
        "Line=7]\nwhy 100%s <&>\n"
        "ThrowsFamily FAILED: 0 checks, 1 failure, <time> s\n"
        "Executing ThrowsStandard\n"
        "Exception encountered: [Exception Type = std::out_of_range]\ntoo far\n"
        "ThrowsStandard FAILED: 0 checks, 1 failure, <time> s\n"
        "Executing ThrowsNumber\n" +
            failedIn("ThrowsNumber") +
            "calls < 0\n"
            "Exception encountered: Unknown exception.\n"
            "ThrowsNumber FAILED: 1 check, 2 failures, <time> s\n"
            "prepare 1 Quiet null\n"
            "run 1 Quiet null\n"
            "terminate\n"
            "packages stop\n"
            "\n"
            "failed: ThrowsFamily, ThrowsStandard, ThrowsNumber\n"
            "5 groups, 15 checks, 4 failures, <time> s\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.exitCode, 2);
}

TEST(ApTestRunner, RunsAllButThoseThatAreLeftOut)
{
    for (const Texts& words :
         {Texts{"--all", "-Fail*", "-Throws*", "--exclude=Many", "-Terminating"},
          Texts{"-Fail*", "-Throws*", "--exclude", "Many", "-Terminating"}})
    {
        const ProgramResult result = runChecks(words);
        EXPECT_NE(
            withoutNumbers(result.out).find("\n4 groups, 8016 checks, 0 failures, <time> s\n"),
            std::string::npos)
            << result.out;
        EXPECT_EQ(result.out.find("untitled"), std::string::npos);
        EXPECT_EQ(result.exitCode, 0);
    }
}

TEST(ApTestRunner, AGroupThatAnnouncesNothingStillAnnouncesItsFailure)
{
    const ProgramResult result = runChecks({"Quiet"}, {{"CHECK_PROGRAM", "loud"}});
    EXPECT_EQ(result.out.find("Executing"), std::string::npos);
    EXPECT_NE(result.out.find("Quiet FAILED: 1 check, 1 failure, "), std::string::npos);
    EXPECT_EQ(result.exitCode, 2);
}

TEST(ApTestRunner, AnExceptionEndsTheStepsOfItsGroup)
{
    const struct
    {
        const char* _step;
        std::string _steps;
    } cases[] = {
        {"prepare", "prepare\n"},
        {"run", "prepare\nrun\n"},
        {"terminate", "prepare\nrun\nterminate\n"},
    };
    for (const auto& row : cases)
    {
        const ProgramResult result = runChecks({"Steps"}, {{"CHECK_PROGRAM", row._step}});
        EXPECT_NE(result.out.find("Executing Steps\n" + row._steps +
                                  "Exception encountered: [Exception Type = std::runtime_error]\n"
                                  "no " +
                                  row._step + "\nSteps FAILED: "),
                  std::string::npos)
            << result.out;
        EXPECT_EQ(result.exitCode, 2);
    }
}

TEST(ApTestRunner, PackagesThatFailFailTheRun)
{
    const ProgramResult start = runChecks({"Passing"}, {{"CHECK_PROGRAM", "brokenStart"}});
    EXPECT_EQ(withoutNumbers(start.out),
              "Exception encountered: [Exception Type = std::runtime_error]\nno start\n"
              "\n"
              "failed: (packages)\n"
              "0 groups, 0 checks, 1 failure, <time> s\n");
    EXPECT_EQ(start.exitCode, 2);

    const ProgramResult stop = runChecks({"Passing"}, {{"CHECK_PROGRAM", "brokenStop"}});
    EXPECT_NE(withoutNumbers(stop.out).find("no stop\n"
                                            "\n"
                                            "failed: (packages)\n"
                                            "1 group, 13 checks, 1 failure, <time> s\n"),
              std::string::npos)
        << stop.out;
    EXPECT_EQ(stop.exitCode, 2);
}

TEST(ApTestRunner, AThreadThatTerminatesTheProgramIsReported)
{
    const TempDir directory;
    const std::string report = directory.file("report.xml");
    support::writeFile(report, "old");
    const ProgramResult result = runChecks({"Terminating", "--junit", report});
    EXPECT_NE(result.out.find("Executing Terminating\n"
                              "Abnormal termination: Terminate handler called.\n"
                              "[Exception Type = std::out_of_range]\n"
                              "too far\n"),
              std::string::npos)
        << result.out;
    EXPECT_TRUE(result.aborted);
    EXPECT_EQ(support::readFile(report), "old");
}

TEST(ApTestRunner, TestsRunOnceInAProcess)
{
    const ProgramResult result = runChecks({"Passing"}, {{"CHECK_PROGRAM", "twice"}});
    EXPECT_EQ(result.err, "checkProgram: tests run once in a process\n" + SEE);
    EXPECT_EQ(result.exitCode, 2);
}

TEST(ApTestRunner, WritesAReportForOtherPrograms)
{
    const TempDir directory;
    const std::string report = directory.file("report.xml");
    support::writeFile(report, std::string(10000, 'x'));
    const ProgramResult result = runChecks({"Passing", "ThrowsFamily", "Many", "--junit=" + report},
                                           {{"CHECK_PROGRAM", "stop"}});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_FALSE(std::filesystem::exists(report + ".new"));
    const std::string xml = withoutNumbers(support::readFile(report));
    const std::string sums = "tests=\"4\" failures=\"2\" errors=\"1\" time=\"<time>\">\n";
    const std::string begin =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<testsuites " +
        sums + "  <testsuite name=\"checkProgram\" " + sums +
        "    <testcase classname=\"checkProgram\" name=\"Passing\" assertions=\"13\" "
        "time=\"<time>\"/>\n"
        "    <testcase classname=\"checkProgram\" name=\"ThrowsFamily\" assertions=\"0\" "
        "time=\"<time>\">\n"
        "      <error message=\"[Exception Type = Zu::ExInternalError, File = dir/thrown.cpp, "
        "Line=7]\">[Exception Type = Zu::ExInternalError, File = dir/thrown.cpp, Line=7]&#10;"
        "why 100%s &lt;&amp;&gt;</error>\n"
        "    </testcase>\n"
        "    <testcase classname=\"checkProgram\" name=\"Many\" assertions=\"150\" "
        "time=\"<time>\">\n"
        "      <failure message=\"checkProgram.cpp:<line>: i == -1\">"
        "checkProgram.cpp:<line>: i == -1&#10;    i: 0</failure>\n";
    EXPECT_EQ(xml.substr(0, begin.size()), begin);
    const std::string end =
        "&#10;    i: 99</failure>\n"
        "      <failure message=\"50 further failures\">50 further failures</failure>\n"
        "    </testcase>\n"
        "    <testcase classname=\"checkProgram\" name=\"(outside of groups)\" assertions=\"1\" "
        "time=\"<time>\">\n"
        "      <failure message=\"checkProgram.cpp:<line>: where.size() == "
        "where.size()\">checkProgram.cpp:<line>: where.size() == where.size()"
        "</failure>\n"
        "    </testcase>\n"
        "  </testsuite>\n"
        "</testsuites>\n";
    ASSERT_GT(xml.size(), end.size());
    EXPECT_EQ(xml.substr(xml.size() - end.size()), end);
}

TEST(ApTestRunner, OutputThatCannotBeWrittenFailsTheRun)
{
    if (support::onWindows) GTEST_SKIP() << "there is no full device";
    const TempDir directory;
    const std::string err = directory.file("err");
    for (const char* const word : {"Passing", "--list", "--help"})
    {
        ProgramResult result;
        support::runToFiles(support::programPath("checkProgram"), {word},
                            {{"CHECK_PROGRAM", std::nullopt}}, "/dev/full", err, result);
        EXPECT_EQ(support::readFile(err), "checkProgram: standard output can't be written\n");
        EXPECT_EQ(result.exitCode, 2) << word;
    }
}

TEST(ApTestRunner, GroupsKnowAProgramThatIsInstrumented)
{
    namespace fs = std::filesystem;
    const TempDir directory;
    const fs::path original = support::programPath("checkProgram");
    // On Windows the libraries are beside it.
    const fs::path place = support::onWindows ? original.parent_path() : fs::path(directory.path());
    const std::string unique = fs::path(directory.path()).filename().string();
    for (const std::string name : {".pixie", ".pixi"})
    {
        const fs::path copy = place / (unique + name + original.extension().string());
        fs::copy_file(original, copy);
        ProgramResult result;
        support::runToFiles(copy.string(), {"Quiet"}, {{"CHECK_PROGRAM", std::nullopt}},
                            directory.file("out"), directory.file("err"), result);
        fs::remove(copy);
        EXPECT_EQ(result.exitCode, 0);
        const std::string out = support::readFile(directory.file("out"));
        EXPECT_EQ(out.find("pixified") != std::string::npos, name == ".pixie") << out;
    }
}

// The block of a document behind the line that names it.
std::string outputIn(const std::string& document, const std::string& name)
{
    const std::string mark = "<!-- output of " + name + " -->\n```\n";
    const std::size_t begin = document.find(mark);
    if (begin == std::string::npos) return "there is no output of " + name;
    const std::string rest = document.substr(begin + mark.size());
    return rest.substr(0, rest.find("```\n"));
}

TEST(ApTestRunner, TheExampleWritesWhatItsPageShows)
{
    const std::string page = support::readFile(ZU_TEST_DOCS_DIR "/testing.md");
    const auto run = [](const Texts& words)
    {
        return support::runProgram(
            "checking", words,
            {{"ZU_RUN_TEST_MSGS", std::nullopt}, {"ZU_TRACE_OPTIONS", std::nullopt}});
    };
    const ProgramResult all = run({"--all"});
    // A compiler's cache names sources from its own folder.
    const std::string out = std::regex_replace(all.out, std::regex("[^ ]*examples.checking\\.cpp:"),
                                               "examples/checking.cpp:");
    EXPECT_EQ(withoutNumbers(out), withoutNumbers(outputIn(page, "checking --all")));
    EXPECT_EQ(all.exitCode, 2);

    const ProgramResult list = run({"--list"});
    EXPECT_EQ(list.out, outputIn(page, "checking --list"));
    const ProgramResult wrong = run({"Numbres"});
    EXPECT_EQ(wrong.err, outputIn(page, "checking Numbres"));
    EXPECT_EQ(wrong.exitCode, 2);
    EXPECT_EQ(run({"-Broken"}).exitCode, 0);
}

} // namespace

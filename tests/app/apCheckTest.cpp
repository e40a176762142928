#include "app/apCheck.h"

#include "checkProgramRun.h"
#include "support/fileTest.h"
#include "support/tempDir.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using support::failedIn;
using support::OUTSIDE;
using support::ProgramResult;
using support::runChecks;
using support::withoutNumbers;

TEST(ApCheck, ChecksThatHoldAreCountedAndSilent)
{
    const ProgramResult result = runChecks({"Passing"});
    EXPECT_EQ(withoutNumbers(result.out), "packages start\n"
                                          "Executing Passing\n"
                                          "Passing passed: 13 checks, <time> s\n"
                                          "packages stop\n"
                                          "\n"
                                          "1 group, 13 checks, 0 failures, <time> s\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.exitCode, 0);
}

// What the group "Failing" reports, in its order.
std::vector<std::string> failures()
{
    return {"text.empty()\n",
            "text == \"text\"\n    text: \"a\\nb\"\n",
            "text.size() == 4\n    text.size(): 3\n",
            "Opaque() == Opaque()\n    Opaque(): (not printable)\n    Opaque(): (not printable)\n",
            "1 != 1\n",
            "1 < 1\n",
            "2 <= 1\n",
            "1 > 1\n",
            "0 >= 1\n",
            "1.0 is near half(text.size())\n    1.0: 1\n    half(text.size()): 1.5\n",
            "doNothing() raises std::out_of_range\n    nothing was raised\n",
            "raiseRange() raises Zu::ExBase\n    raised: [Exception Type = std::out_of_range]\n"
            "    too far\n",
            "countCall() == 0\n    countCall(): 1\n"};
}

TEST(ApCheck, ChecksThatFailShowTheirPlaceAndValuesAndTheGroupGoesOn)
{
    std::string expected;
    for (const std::string& failure : failures()) expected += failedIn("Failing") + failure;
    const ProgramResult result = runChecks({"Failing"});
    EXPECT_EQ(withoutNumbers(result.out), "packages start\n"
                                          "Executing Failing\n" +
                                              expected +
                                              "the group goes on\n"
                                              "Failing FAILED: 13 checks, 13 failures, <time> s\n"
                                              "packages stop\n"
                                              "\n"
                                              "failed: Failing\n"
                                              "1 group, 13 checks, 13 failures, <time> s\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_FALSE(result.aborted);
}

TEST(ApCheck, APlaceIsTheLineOfTheCheck)
{
    const std::string source = support::readFile(ZU_TEST_PROGRAMS_DIR "/checkProgram.cpp");
    const std::vector<std::string> lines = support::linesOf(source);
    const auto found = std::find_if(lines.begin(), lines.end(),
                                    [](const std::string& line)
                                    { return line.find("ZU_CHECK(text.empty())") != line.npos; });
    ASSERT_NE(found, lines.end());
    const std::string number = std::to_string(found - lines.begin() + 1);
    EXPECT_NE(runChecks({"Failing"}).out.find("checkProgram.cpp:" + number + ": text.empty()\n"),
              std::string::npos);
}

TEST(ApCheck, FailuresGoWhereTheTestFrameworkReportsThem)
{
    const support::TempDir directory;
    const std::string file = directory.file("messages");
    const ProgramResult result = runChecks({"Failing"}, {{"ZU_RUN_TEST_MSGS", file}});
    std::string expected;
    for (const std::string& failure : failures()) expected += failedIn("Failing") + failure;
    std::string messages = support::readFile(file);
    std::erase(messages, '\r');
    EXPECT_EQ(withoutNumbers(messages), expected);
    EXPECT_EQ(result.out.find("Check failed"), std::string::npos);
    EXPECT_NE(result.out.find("Failing FAILED: 13 checks, 13 failures"), std::string::npos);
    EXPECT_EQ(result.exitCode, 2);
}

TEST(ApCheck, ThreadsCheckAndAreCountedExactly)
{
    const ProgramResult result = runChecks({"Threads"});
    EXPECT_NE(result.out.find("\nThreads passed: 8000 checks, "), std::string::npos) << result.out;
    EXPECT_EQ(result.exitCode, 0);
}

TEST(ApCheck, FailuresInThreadsAreReportedInOnePiece)
{
    const ProgramResult result = runChecks({"FailingThreads"});
    EXPECT_NE(result.out.find("\nFailingThreads FAILED: 8080 checks, 80 failures, "),
              std::string::npos)
        << result.out;
    EXPECT_EQ(result.exitCode, 2);
    const std::vector<std::string> lines = support::linesOf(withoutNumbers(result.out));
    const std::string first = failedIn("FailingThreads") + "thread == -1";
    std::vector<int> counts(8);
    for (std::size_t i = 0; i + 1 < lines.size(); ++i)
        if (lines[i] == first)
        {
            ASSERT_EQ(lines[i + 1].rfind("    thread: ", 0), 0U) << lines[i + 1];
            ++counts.at(static_cast<std::size_t>(std::stoi(lines[i + 1].substr(12))));
        }
    EXPECT_EQ(counts, std::vector<int>(8, 10));
}

TEST(ApCheck, ACheckOutsideOfTheGroupsFailsTheProgramEvenIfItHolds)
{
    for (const std::string where : {"early", "start", "stop"})
    {
        const ProgramResult result = runChecks({"Passing"}, {{"CHECK_PROGRAM", where}});
        const std::string out = withoutNumbers(result.out);
        EXPECT_NE(out.find(OUTSIDE + "where.size() == where.size()\n"), std::string::npos) << out;
        EXPECT_NE(out.find("\nPassing passed: 13 checks, <time> s\n"), std::string::npos);
        EXPECT_NE(out.find("\nfailed: (outside of groups)\n"
                           "1 group, 14 checks, 1 failure, <time> s\n"),
                  std::string::npos)
            << out;
        EXPECT_EQ(result.exitCode, 2) << where;
        EXPECT_FALSE(result.aborted);
    }
}

TEST(ApCheck, EveryCheckOutsideIsReported)
{
    const std::string plain =
        withoutNumbers(runChecks({"Quiet"}, {{"CHECK_PROGRAM", "plain"}}).out);
    EXPECT_EQ(plain.rfind(OUTSIDE + "isRequested(\"plain\")\n", 0), 0U) << plain;
    EXPECT_NE(plain.find("1 group, 2 checks, 1 failure, "), std::string::npos) << plain;
    const std::string wrong =
        withoutNumbers(runChecks({"Quiet"}, {{"CHECK_PROGRAM", "wrong"}}).out);
    EXPECT_EQ(wrong.rfind(OUTSIDE + "calls == 5\n    calls: 0\n", 0), 0U) << wrong;
    EXPECT_NE(wrong.find("1 group, 2 checks, 1 failure, "), std::string::npos) << wrong;
}

TEST(ApCheck, ACheckAfterTheRunChangesTheProgramsExitValue)
{
    for (const std::string where : {"after", "late"})
    {
        const ProgramResult result = runChecks({"Passing"}, {{"CHECK_PROGRAM", where}});
        EXPECT_EQ(withoutNumbers(result.out), "packages start\n"
                                              "Executing Passing\n"
                                              "Passing passed: 13 checks, <time> s\n"
                                              "packages stop\n"
                                              "\n"
                                              "1 group, 13 checks, 0 failures, <time> s\n" +
                                                  OUTSIDE + "where.size() == where.size()\n");
        EXPECT_EQ(result.exitCode, 2) << where;
        EXPECT_FALSE(result.aborted);
    }
}

TEST(ApCheck, WithTheOtherRunnerEveryCheckIsOutside)
{
    const ProgramResult result = runChecks({"Threads"}, {{"CHECK_PROGRAM", "base"}});
    EXPECT_NE(withoutNumbers(result.out).find(OUTSIDE + "i < CHECKS\n"), std::string::npos);
    EXPECT_NE(result.out.find("Test group executed successfully."), std::string::npos);
    EXPECT_EQ(result.exitCode, 2);
}

} // namespace

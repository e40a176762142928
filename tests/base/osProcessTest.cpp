#include "base/osProcess.h"

#include "base/exSysError.h"
#include "support/childProcess.h"
#include "support/platform.h"
#include "support/tempDir.h"
#include "support/variableGuard.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace
{

using support::onWindows;
using Zu::ExSysErrorWindows;
using Zu::OsProcess;

// Starts the program that reports what it sees.
void startEcho(OsProcess& process, const std::string& file, const std::vector<std::string>& words)
{
    const std::string program =
        std::filesystem::path(support::programPath("echoArguments")).make_preferred().string();
    std::vector<const char*> argv{program.c_str(), file.c_str()};
    for (const std::string& word : words) argv.push_back(word.c_str());
    argv.push_back(nullptr);
    process.start(argv.data());
}

void startUnknown(OsProcess& process)
{
    const char* const argv[] = {"zuNoProgramOfThisName", "word", nullptr};
    process.start(argv);
}

std::string read(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// What the child saw of these words.
std::string echoOf(const std::vector<std::string>& words)
{
    const support::TempDir dir;
    OsProcess process;
    startEcho(process, dir.file("out"), words);
    process.wait();
    return read(dir.file("out"));
}

// Waits until the file can be read, which may be slightly later than its name appears; the patience
// only limits a hang.
bool appears(const std::string& file)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(120);
    while (!std::ifstream(file).is_open())
    {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

TEST(OsProcess, WithoutAChildThereIsNothingToWaitFor)
{
    OsProcess process;
    process.wait();
    process.wait();
    SUCCEED();
}

TEST(OsProcess, TheChildGetsItsWords)
{
    EXPECT_EQ(echoOf({}), "");
    EXPECT_EQ(echoOf({"one", "-two", "three=3"}), "one\n-two\nthree=3\n");
}

TEST(OsProcess, WordsWithBlanksAreSplitOnWindowsOnly)
{
    EXPECT_EQ(echoOf({"a b", "c"}), onWindows ? "a\nb\nc\n" : "a b\nc\n");
    EXPECT_EQ(echoOf({"", "c "}), onWindows ? "c\n" : "\nc \n");
    EXPECT_EQ(echoOf({"\"a", "b\""}), onWindows ? "a b\n" : "\"a\nb\"\n");
}

TEST(OsProcess, TheChildHasTheEnvironmentAndTheDirectoryOfItsParent)
{
    const support::VariableGuard variable("ZU_TEST_OF_CHILD");
    variable.set("some value");
    EXPECT_EQ(echoOf({"--variable=ZU_TEST_OF_CHILD", "--directory"}),
              "some value\n" + std::filesystem::current_path().string() + "\n");
}

TEST(OsProcess, TheChildDoesNotInheritTheFilesOfItsParent)
{
    if (onWindows) GTEST_SKIP() << "Only on Linux does a process list its open files.";
    const support::TempDir dir;
    const std::string file = std::filesystem::canonical(dir.path()).string() + "/file";
    const std::ofstream open(file);
    ASSERT_TRUE(open.is_open());
    EXPECT_EQ(echoOf({"--open=" + file}), "closed\n");
    // The child does see the file that it has open itself: its report.
    const std::string answers = std::filesystem::canonical(dir.path()).string() + "/answers";
    OsProcess process;
    startEcho(process, answers, {"--open=" + answers + ".part"});
    process.wait();
    EXPECT_EQ(read(answers), "open\n");
}

TEST(OsProcess, WaitReturnsAfterTheEndOfTheChild)
{
    const support::TempDir dir;
    OsProcess process;
    startEcho(process, dir.file("out"), {"--await=" + dir.file("gate"), "done"});
    EXPECT_FALSE(std::filesystem::exists(dir.file("out")));
    std::ofstream(dir.file("gate")) << "open";
    process.wait();
    EXPECT_EQ(read(dir.file("out")), "done\n");
}

TEST(OsProcess, AChildIsWaitedForAnyNumberOfTimes)
{
    const support::TempDir dir;
    OsProcess process;
    startEcho(process, dir.file("out"), {"done"});
    process.wait();
    process.wait();
    process.wait();
    EXPECT_EQ(read(dir.file("out")), "done\n");
}

TEST(OsProcess, AnUnknownProgramIsNotStarted)
{
    OsProcess process;
    EXPECT_THROW(startUnknown(process), ExSysErrorWindows);
    process.wait();
    const support::TempDir dir;
    const std::string path = dir.file("missing");
    const char* const argv[] = {path.c_str(), nullptr};
    EXPECT_THROW(process.start(argv), ExSysErrorWindows);
    const std::string directory = dir.path();
    const char* const argvOfDirectory[] = {directory.c_str(), nullptr};
    EXPECT_THROW(process.start(argvOfDirectory), ExSysErrorWindows);
}

TEST(OsProcess, TheFailureOfAStartHasTheCodeOfTheSystem)
{
    OsProcess process;
    try
    {
        startUnknown(process);
        FAIL();
    }
    catch (const ExSysErrorWindows& ex)
    {
        // Both systems give this number to a missing file.
        EXPECT_EQ(ex.getErrorCode(), 2);
    }
}

TEST(OsProcess, AFailedStartKeepsTheEarlierChild)
{
    const support::TempDir dir;
    OsProcess process;
    startEcho(process, dir.file("out"), {"--await=" + dir.file("gate"), "done"});
    EXPECT_THROW(startUnknown(process), ExSysErrorWindows);
    std::ofstream(dir.file("gate")) << "open";
    process.wait();
    EXPECT_EQ(read(dir.file("out")), "done\n");
}

TEST(OsProcess, ASecondStartLetsTheFirstChildRunOn)
{
    const support::TempDir dir;
    OsProcess process;
    startEcho(process, dir.file("first"), {"--await=" + dir.file("gate"), "first"});
    startEcho(process, dir.file("second"), {"second"});
    process.wait();
    EXPECT_EQ(read(dir.file("second")), "second\n");
    EXPECT_FALSE(std::filesystem::exists(dir.file("first")));
    std::ofstream(dir.file("gate")) << "open";
    ASSERT_TRUE(appears(dir.file("first")));
    EXPECT_EQ(read(dir.file("first")), "first\n");
    support::awaitEndOfAnyChild();
}

TEST(OsProcess, TheEndOfTheObjectLetsItsChildRunOn)
{
    const support::TempDir dir;
    {
        OsProcess process;
        startEcho(process, dir.file("out"), {"--await=" + dir.file("gate"), "done"});
    }
    EXPECT_FALSE(std::filesystem::exists(dir.file("out")));
    std::ofstream(dir.file("gate")) << "open";
    ASSERT_TRUE(appears(dir.file("out")));
    EXPECT_EQ(read(dir.file("out")), "done\n");
    support::awaitEndOfAnyChild();
}

TEST(OsProcess, ChildrenThatWereLetGoOfAreReapedLater)
{
    const support::TempDir dir;
    {
        OsProcess process;
        startEcho(process, dir.file("out"), {"--await=" + dir.file("gate"), "done"});
    }
    std::ofstream(dir.file("gate")) << "open";
    ASSERT_TRUE(appears(dir.file("out")));
    support::awaitEndOfAnyChild();
    EXPECT_EQ(echoOf({"next"}), "next\n");
    EXPECT_FALSE(support::hasUnreapedChild());
}

TEST(OsProcess, WithoutAWordThereIsNothingToStart)
{
    OsProcess process;
    const char* const argv[] = {nullptr};
    EXPECT_THROW(process.start(argv), ExSysErrorWindows);
    process.wait();
}

} // namespace

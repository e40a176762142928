#include "base/testDir.h"

#include "base/exInternalError.h"
#include "base/exSysError.h"
#include "base/osFilePath.h"

#include "support/errorCode.h"
#include "support/fileTest.h"
#include "support/groupTest.h"
#include "support/platform.h"
#include "support/tempDir.h"
#include "support/variableGuard.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using support::TempDir;
using Zu::OsFilePath;
using Zu::TestDir;

static_assert(!std::is_default_constructible_v<TestDir>);

// The lines that a run of commands prints.
std::vector<std::string> linesOfCommands(std::vector<std::string> commands,
                                         const support::Environment& environment)
{
    commands.insert(commands.begin(), "commands");
    return support::linesOf(support::outputOfGroups(commands, environment));
}

TEST(TestDir, TheVariableNamesTheDefaultDirectory)
{
    for (const char* const value : {"some/where/", "nowhere at all", "."})
        EXPECT_EQ(linesOfCommands({"default"}, {{"ZU_TEST_DIR", value}}),
                  std::vector<std::string>{value});
}

TEST(TestDir, AnEmptyVariableIsTheEmptyPath)
{
    EXPECT_EQ(linesOfCommands({"default"}, {{"ZU_TEST_DIR", ""}}), std::vector<std::string>{""});
}

TEST(TestDir, WithoutTheVariableItIsTheDirectoryForTemporaryFiles)
{
    const TempDir dir;
    // The logger's variable is of no matter here.
    const support::Environment environment = {
        {"TMPDIR", dir.path()}, {"B7Q_TEST_DIR", dir.file("logs")}, {"ZU_TEST_DIR", std::nullopt}};
    const std::vector<std::string> lines = linesOfCommands({"default", "tempDir"}, environment);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], lines[1]);
    if (!support::onWindows)
    {
        EXPECT_EQ(lines[0], dir.path() + "/");
    }
}

TEST(TestDir, TheFirstAnswerStays)
{
    EXPECT_EQ(linesOfCommands({"default", "variable", "ZU_TEST_DIR=second", "default", "variable",
                               "ZU_TEST_DIR=", "default"},
                              {{"ZU_TEST_DIR", "first"}}),
              (std::vector<std::string>{"first", "first", "first"}));
    // The answer is that of the first call, and not of the start.
    EXPECT_EQ(
        linesOfCommands({"variable", "ZU_TEST_DIR=second", "default"}, {{"ZU_TEST_DIR", "first"}}),
        std::vector<std::string>{"second"});
}

TEST(TestDir, TheDefaultDirectoryIsNotMade)
{
    const TempDir dir;
    EXPECT_EQ(linesOfCommands({"default"}, {{"ZU_TEST_DIR", dir.file("new")}}),
              std::vector<std::string>{dir.file("new")});
    EXPECT_FALSE(std::filesystem::exists(dir.file("new")));
}

TEST(TestDir, AllCallsGiveTheSameObject)
{
    const OsFilePath& path = TestDir::getDefaultPath();
    const std::string text = path.getChars();
    const support::VariableGuard variable("ZU_TEST_DIR");
    variable.set(text + "x");
    EXPECT_EQ(&TestDir::getDefaultPath(), &path);
    EXPECT_EQ(path.getChars(), text);
}

TEST(TestDir, CreateMakesADirectoryAndGivesItsPath)
{
    const TempDir dir;
    const std::string name = dir.file("new");
    const OsFilePath path(name.c_str());
    EXPECT_EQ(TestDir::create(path).getChars(), name);
    EXPECT_TRUE(std::filesystem::is_directory(name));
}

TEST(TestDir, CreateLeavesADirectoryThatIsThere)
{
    const TempDir dir;
    support::writeFile(dir.file("kept"), "content");
    const std::string name = dir.path();
    EXPECT_EQ(TestDir::create(OsFilePath(name.c_str())).getChars(), name);
    EXPECT_EQ(support::readFile(dir.file("kept")), "content");
}

TEST(TestDir, CreateRaisesForAFileAndForAMissingParent)
{
    const TempDir dir;
    const std::string file = dir.file("file");
    support::writeFile(file, "content");
    try
    {
        TestDir::create(OsFilePath(file.c_str()));
        ADD_FAILURE() << "nothing raised";
    }
    catch (const Zu::ExInternalError& exception)
    {
        EXPECT_STREQ(exception.getReason(), "A regular file with the same path name exists.");
    }
    EXPECT_EQ(support::readFile(file), "content");

    const std::string below = (std::filesystem::path(dir.file("missing")) / "new").string();
    EXPECT_NE(support::codeOf([&] { TestDir::create(OsFilePath(below.c_str())); }), 0);
    EXPECT_FALSE(std::filesystem::exists(dir.file("missing")));
}

} // namespace

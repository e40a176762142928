// A program that takes a file of settings, as a whole.

#include "support/childProcess.h"
#include "support/tempDir.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

namespace fs = std::filesystem;

using support::Environment;
using support::ProgramResult;

class SettingsProgramTest : public testing::Test
{
protected:
    std::string write(const std::string& name, const std::string& content) const
    {
        const std::string path = _dir.file(name);
        std::ofstream(path, std::ios::binary) << content;
        fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
        return path;
    }

    static ProgramResult run(const std::vector<std::string>& words, const Environment& changes = {})
    {
        Environment environment{{"SETTINGS_PORT", std::nullopt},
                                {"SETTINGS_KEY", std::nullopt},
                                {"SETTINGS_DEFAULT", std::nullopt}};
        for (const auto& [name, value] : changes) environment[name] = value;
        return support::runProgram("settingsProgram", words, environment);
    }

    const support::TempDir _dir;
    const std::string _file = write("a.toml", "[server]\n"
                                              "port = 80\n"
                                              "name = \"alpha\"\n"
                                              "key = 'k'\n"
                                              "loud = true\n");
};

TEST_F(SettingsProgramTest, TheFileStandsBehindTheEnvironmentAndBeforeDefaults)
{
    EXPECT_EQ(run({"--settings", _file}).out, "80 alpha k 1\n");
    EXPECT_EQ(run({"--settings=" + _file, "-p", "81"}).out, "81 alpha k 1\n");
    EXPECT_EQ(run({"--settings", _file}, {{"SETTINGS_PORT", "82"}}).out, "82 alpha k 1\n");
    EXPECT_EQ(run({}, {{"SETTINGS_KEY", "e"}}).out, "8080 nobody e 0\n") << "without a file";
}

TEST_F(SettingsProgramTest, AnotherFileTakesThePlaceOfTheUsualOne)
{
    const std::string other = write("b.toml", "server.key = 'other'\n");
    EXPECT_EQ(run({}, {{"SETTINGS_DEFAULT", _file}}).out, "80 alpha k 1\n");
    EXPECT_EQ(run({"--settings", other}, {{"SETTINGS_DEFAULT", _file}}).out,
              "8080 nobody other 0\n");
}

TEST_F(SettingsProgramTest, RefusesAFileWithAMistakeByItsLine)
{
    const std::string path = write("c.toml", "[server]\nkey = 'k'\nport = 70000\nprot = 1\n");
    const ProgramResult result = run({"--settings", path});
    const std::string program = "settingsProgram: ";
    EXPECT_EQ(result.err,
              program + path +
                  ":3: 'server::port' needs a whole number from 0 to 65535, not '70000'\n" +
                  program + path +
                  ":4: there is no setting 'server::prot'; did you mean 'server::port'?\n" +
                  program + "'settingsProgram --help' shows what can be given\n");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.exitCode, 2);
}

TEST_F(SettingsProgramTest, RefusesAFileThatIsNotThereAndAMissingValue)
{
    EXPECT_EQ(run({"--settings="}).err,
              "settingsProgram: option '--settings' needs the path of a file\n"
              "settingsProgram: the variable SETTINGS_KEY is needed: key\n"
              "settingsProgram: 'settingsProgram --help' shows what can be given\n");
    const ProgramResult result = run({"--settings", _dir.file("none")});
    EXPECT_EQ(result.err.rfind("settingsProgram: " + _dir.file("none") + ": can't be read: ", 0),
              0U)
        << result.err;
    EXPECT_NE(result.err.find("the variable SETTINGS_KEY is needed: key\n"), std::string::npos);
    EXPECT_EQ(result.exitCode, 2);
}

} // namespace

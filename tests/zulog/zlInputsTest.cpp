#include "zulog/zlInputs.h"

#include "logTexts.h"
#include "support/tempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using Zu::ZlLog;
using Logs = std::vector<ZlLog>;

class ZlInputs : public ::testing::Test
{
protected:
    void make(const std::vector<std::string>& names)
    {
        for (const std::string& name : names) logTexts::writeFile(_directory.file(name), "");
    }

    // What the words name, without the directory.
    Logs find(const std::vector<std::string>& words, bool areRotatedAdded = false)
    {
        Logs logs = Zu::zlFindLogs(words, areRotatedAdded, _reports);
        for (ZlLog& log : logs)
            for (std::string& file : log)
                if (file != "-") file = std::filesystem::path(file).filename().string();
        return logs;
    }

    support::TempDir _directory;
    std::ostringstream _reported;
    Zu::ZlReports _reports{_reported};
};

TEST_F(ZlInputs, TakesFilesAsTheyAreNamed)
{
    make({"a.log", "a.log.1"});
    EXPECT_EQ(find({_directory.file("a.log"), "-"}), Logs({{"a.log"}, {"-"}}));
    EXPECT_EQ(find({_directory.file("a.log"), _directory.file("a.log.1")}),
              Logs({{"a.log"}, {"a.log.1"}}));
}

TEST_F(ZlInputs, AddsRotatedFilesFromTheOldestOn)
{
    make({"a.log", "a.log.1", "a.log.2.gz", "a.log.10.gz", "a.log.3", "a.log.3.gz", "a.log.x",
          "a.log.01", "a.log.1.bz2", "b.log.1", "a.log.0"});
    EXPECT_EQ(find({_directory.file("a.log")}, true),
              Logs({{"a.log.10.gz", "a.log.3", "a.log.2.gz", "a.log.1", "a.log"}}));
    EXPECT_EQ(find({_directory.file("c.log")}, true), Logs({{"c.log"}}));
    EXPECT_EQ(find({"-"}, true), Logs({{"-"}}));
}

TEST_F(ZlInputs, FindsTheLogsOfADirectory)
{
    make({"b.log", "a.log", "a.log.2.gz", "a.log.1", "a.log-20261122.gz", "c.log.1", "notes.txt",
          ".log", "d.logs"});
    std::filesystem::create_directory(_directory.file("e.log"));
    EXPECT_EQ(
        find({_directory.path()}),
        Logs({{"a.log.2.gz", "a.log.1", "a.log"}, {"a.log-20261122.gz"}, {"b.log"}, {"c.log.1"}}));
    EXPECT_EQ(_reported.str(), "");
}

TEST_F(ZlInputs, TakesAFileOnceWhateverItsNames)
{
    make({"a.log", "a.log.1", "b.log"});
    const std::string other = _directory.path() + "/../" +
                              std::filesystem::path(_directory.path()).filename().string() +
                              "/b.log";
    EXPECT_EQ(find({_directory.path(), _directory.file("a.log"), other}),
              Logs({{"a.log.1", "a.log"}, {"b.log"}}));
    EXPECT_EQ(find({_directory.file("a.log"), _directory.path()}),
              Logs({{"a.log"}, {"a.log.1"}, {"b.log"}}));
    EXPECT_EQ(find({_directory.file("missing"), _directory.file("missing"), "-", "-"}).size(), 4U);
}

TEST_F(ZlInputs, ReportsADirectoryWithoutALog)
{
    EXPECT_EQ(find({_directory.path()}), Logs());
    EXPECT_TRUE(_reports.hasFailed());
    EXPECT_EQ(_reported.str().substr(0, 30),
              "zulog: there is no log in \"" + _directory.path().substr(0, 3));
}

using Names = std::vector<std::string>;

// As one look finds them, without the directory.
Names look(Zu::ZlLogWords& words)
{
    Zu::ZlListing listing;
    Names names = words.findLogs(listing);
    for (std::string& name : names) name = std::filesystem::path(name).filename().string();
    return names;
}

TEST_F(ZlInputs, WordsAreFilesAndTheLogsOfDirectories)
{
    make({"a.log", "b.log", "b.log.1", "c.txt"});
    Zu::ZlLogWords words(
        {_directory.file("later.log"), _directory.path(), _directory.file("b.log")});
    EXPECT_EQ(look(words), Names({"later.log", "a.log", "b.log", "b.log"}));
    make({"0.log"});
    EXPECT_EQ(look(words), Names({"later.log", "0.log", "a.log", "b.log", "b.log"}));
}

TEST_F(ZlInputs, AWordThatWasADirectoryIsNeverAFile)
{
    const std::string name = _directory.file("logs.log");
    Zu::ZlLogWords words({name});
    EXPECT_EQ(look(words), Names({"logs.log"}));
    std::filesystem::create_directory(name);
    make({"logs.log/a.log"});
    EXPECT_EQ(look(words), Names({"a.log"}));
    std::filesystem::remove_all(name);
    EXPECT_EQ(look(words), Names());
    make({"logs.log"});
    EXPECT_EQ(look(words), Names());
    std::filesystem::remove(name);
    std::filesystem::create_directory(name);
    make({"logs.log/b.log"});
    EXPECT_EQ(look(words), Names({"b.log"}));
}

TEST_F(ZlInputs, WordsAreWatchedInTheDirectoriesThatTheyAreIn)
{
    const std::string path = _directory.path();
    Zu::ZlLogWords words({path, _directory.file("a.log"), _directory.file("b.log"), "c.log"});
    Zu::ZlListing listing;
    words.findLogs(listing);
    EXPECT_EQ(words.getDirectories(), Names({".", path}));
}

} // namespace

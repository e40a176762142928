#include "zulog/zlFollow.h"

#include "logTexts.h"
#include "support/tempDir.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace
{

using logTexts::BANNER;
using logTexts::ORIGIN;
using logTexts::tickLine;
namespace fs = std::filesystem;

void append(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary | std::ios::app) << text;
}

// So many seconds from now on.
void setTime(const std::string& path, int seconds)
{
    fs::last_write_time(path, fs::file_time_type::clock::now() + std::chrono::seconds(seconds));
}

class ZlFollow : public ::testing::Test
{
protected:
    ~ZlFollow() override
    {
        if (_file) std::fclose(_file);
    }

    void start(const std::vector<std::string>& words, std::size_t lines = 10)
    {
        Zu::ZlShowOptions options;
        options._words = words;
        options._format = "iso";
        options._formatOptions._times = Zu::ZlFormatOptions::Times::Utc;
        options._selection._areMarksHidden = true;
        _follower = std::make_unique<Zu::ZlFollower>(options, lines, _output, _reports);
    }

    // The last characters of the lines that are shown by further looks.
    std::string look()
    {
        while (_follower->look()) continue;
        _follower->release();
        return shown();
    }

    std::string shown()
    {
        std::ifstream in(_directory.file("shown"), std::ios::binary);
        in.seekg(static_cast<std::streamoff>(_seen));
        std::string texts;
        for (std::string line; std::getline(in, line); _seen += line.size() + 1)
            texts += line.back();
        return texts;
    }

    support::TempDir _directory;
    const std::string _log = _directory.file("a.log");
    std::FILE* _file = std::fopen(_directory.file("shown").c_str(), "wb");
    std::size_t _seen = 0;
    Zu::ZlOutput _output{_file};
    std::ostringstream _reported;
    Zu::ZlReports _reports{_reported};
    std::unique_ptr<Zu::ZlFollower> _follower;
};

TEST_F(ZlFollow, ShowsTheLastRecordsAndThenWhatIsWritten)
{
    append(_log, ORIGIN + tickLine(1, "Error: A 1") + tickLine(2, "Error: A 2") +
                     tickLine(3, "Error: A 3"));
    start({_log}, 2);
    EXPECT_EQ(shown(), "23");
    EXPECT_EQ(look(), "");
    append(_log, tickLine(4, "Error: A 4") + tickLine(5, "Error: A 5").substr(0, 20));
    EXPECT_EQ(look(), "4");
    append(_log, tickLine(5, "Error: A 5").substr(20));
    EXPECT_EQ(look(), "5");
    EXPECT_EQ(_reported.str(), "");
}

TEST_F(ZlFollow, ShowsAFileThatAppearsLater)
{
    start({_log});
    EXPECT_NE(_reported.str().find("a.log\" is not there yet\n"), std::string::npos);
    EXPECT_FALSE(_reports.hasFailed());
    EXPECT_EQ(look(), "");
    append(_log, tickLine(1, "Error: A 1"));
    EXPECT_EQ(look(), "1");
}

TEST_F(ZlFollow, GoesOnAcrossARotation)
{
    append(_log, ORIGIN + tickLine(1, "Error: A 1"));
    start({_log});
    EXPECT_EQ(shown(), "1");
    append(_log, tickLine(2, "Error: A 2"));
    fs::rename(_log, _log + ".1");
    EXPECT_EQ(look(), "2");
    append(_log + ".1", tickLine(3, "Error: A 3"));
    append(_log, tickLine(4, "Error: A 4"));
    EXPECT_EQ(look(), "34");
}

TEST_F(ZlFollow, GoesOnAcrossSeveralRotationsAtOnce)
{
    append(_log, tickLine(1, "Error: A 1"));
    start({_log});
    append(_log, tickLine(2, "Error: A 2"));
    fs::rename(_log, _log + ".3");
    append(_log + ".4", tickLine(0, "Error: A 0"));
    setTime(_log + ".4", -1);
    append(_log + ".2", tickLine(3, "Error: A 3"));
    append(_log + ".1", tickLine(4, "Error: A 4"));
    append(_log, tickLine(5, "Error: A 5"));
    EXPECT_EQ(look(), "12345");
}

// Whoever rotates may give the newest file the highest number, or a date.
TEST_F(ZlFollow, ShowsNothingAgainWhereNumbersRise)
{
    append(_log + ".1", tickLine(1, "Error: A 1"));
    append(_log + ".2", tickLine(2, "Error: A 2"));
    append(_log, tickLine(3, "Error: A 3"));
    start({_log});
    EXPECT_EQ(shown(), "3");
    fs::rename(_log, _log + ".3");
    append(_log, tickLine(4, "Error: A 4"));
    EXPECT_EQ(look(), "4");
    fs::rename(_log, _log + ".20261121");
    append(_log, tickLine(5, "Error: A 5"));
    EXPECT_EQ(look(), "5");
    append(_log, tickLine(6, "Error: A 6"));
    fs::rename(_log, _log + ".20261122");
    append(_log + ".20261123", tickLine(7, "Error: A 7"));
    append(_log + ".20261124", tickLine(8, "Error: A 8"));
    append(_log, tickLine(9, "Error: A 9"));
    EXPECT_EQ(look(), "6789");
}

TEST_F(ZlFollow, ShowsNothingAgainWhenARotatedFileIsCompressed)
{
    append(_log + ".1", tickLine(1, "Error: A 1"));
    setTime(_log + ".1", -5);
    append(_log, tickLine(2, "Error: A 2"));
    start({_log});
    EXPECT_EQ(shown(), "2");
    // It has the time of the file that it was made of, whatever that contains here.
    append(_log + ".2.gz", tickLine(1, "Error: A 1"));
    fs::last_write_time(_log + ".2.gz", fs::last_write_time(_log + ".1"));
    fs::remove(_log + ".1");
    fs::rename(_log, _log + ".1");
    append(_log, tickLine(3, "Error: A 3"));
    EXPECT_EQ(look(), "3");
}

TEST_F(ZlFollow, BeginsAnewWhenAFileWasEmptied)
{
    append(_log, ORIGIN + tickLine(1, "Error: A 1") + tickLine(2, "Error: A 2"));
    start({_log});
    EXPECT_EQ(shown(), "12");
    std::ofstream(_log, std::ios::binary | std::ios::trunc).close();
    append(_log, tickLine(3, "Error: A 3"));
    EXPECT_EQ(look(), "3");
}

TEST_F(ZlFollow, BeginsAnewWhenAFileWasEmptiedAndFilledAgain)
{
    append(_log, tickLine(1, "Error: A 1") + tickLine(2, "Error: A 2"));
    start({_log});
    EXPECT_EQ(shown(), "12");
    logTexts::writeFile(_log, tickLine(3, "Error: A 3") + tickLine(4, "Error: A 4"));
    setTime(_log, 1);
    EXPECT_EQ(look(), "34");
    logTexts::writeFile(_log, tickLine(5, "Error: A 5") + tickLine(6, "Error: A 6") +
                                  tickLine(7, "Error: A 7"));
    EXPECT_EQ(look(), "567");
    append(_log, tickLine(8, "Error: A 8"));
    EXPECT_EQ(look(), "8");
    EXPECT_EQ(_reported.str(), "");
}

TEST_F(ZlFollow, GoesOnInADirectoryThatIsMadeAgain)
{
    const std::string directory = _directory.file("logs");
    const std::string log = directory + "/b.log";
    fs::create_directory(directory);
    append(log, tickLine(1, "Error: A 1"));
    start({directory});
    EXPECT_EQ(shown(), "1");
    std::error_code error;
    fs::rename(directory, directory + ".old", error);
    if (error) GTEST_SKIP() << "this system renames no directory with an open file";
    EXPECT_EQ(look(), "");
    fs::create_directory(directory);
    EXPECT_EQ(look(), "");
    append(log, tickLine(2, "Error: A 2"));
    EXPECT_EQ(look(), "2");
    EXPECT_EQ(_reported.str(), "");
}

TEST_F(ZlFollow, FollowsTheLogsOfADirectoryThatIsMadeLater)
{
    const std::string directory = _directory.file("logs");
    start({directory});
    EXPECT_EQ(look(), "");
    fs::create_directory(directory);
    append(directory + "/b.log", tickLine(1, "Error: A 1"));
    EXPECT_EQ(look(), "1");
    EXPECT_FALSE(_reports.hasFailed()) << _reported.str();
}

TEST_F(ZlFollow, MergesWhatIsNewInSeveralFiles)
{
    const std::string other = _directory.file("b.log");
    append(_log, ORIGIN);
    append(other, ORIGIN);
    start({_directory.path()});
    append(other, tickLine(1, "Error: A 1") + tickLine(4, "Error: A 4"));
    append(_log, tickLine(2, "Error: A 2") + tickLine(3, "Error: A 3") + tickLine(5, "Error: A 5"));
    EXPECT_EQ(look(), "12345");
    append(_directory.file("c.log"), ORIGIN + tickLine(6, "Error: A 6"));
    EXPECT_EQ(look(), "6");
}

TEST_F(ZlFollow, KeepsAnEventThatMayBeContinued)
{
    append(_log, ORIGIN);
    start({_log});
    append(_log, tickLine(1, "Error: A 1"));
    EXPECT_TRUE(_follower->look());
    EXPECT_EQ(shown(), "");
    append(_log, "\t2\n");
    EXPECT_EQ(look(), "12");
}

// A thread follows a log while its directory is removed, or renamed with one that it is in.
TEST_F(ZlFollow, IsNotifiedOfWhatIsWrittenInADirectoryThatIsMadeAgain)
{
    const std::string outer = _directory.file("outer");
    const std::string directory = outer + "/logs";
    const std::string log = directory + "/b.log";
    fs::create_directories(directory);
    append(log, ORIGIN);
    Zu::ZlShowOptions options;
    options._words = {log};
    options._format = "iso";
    options._selection._areMarksHidden = true;
    std::atomic<bool> isStopped = false;
    std::thread follower([&] { Zu::zlFollow(options, 10, _output, _reports, isStopped); });
    std::string texts;
    std::error_code error;
    for (std::uint32_t tick = 1; tick <= 6; ++tick)
    {
        if (tick == 3) fs::rename(directory, directory + ".old", error);
        if (tick == 5) fs::rename(outer, outer + ".old", error);
        fs::create_directories(directory);
        append(log, tickLine(tick, "Error: A " + std::to_string(tick)));
        while (texts.size() < tick)
        {
            std::this_thread::yield();
            texts += shown();
        }
    }
    EXPECT_EQ(texts, "123456");
    isStopped = true;
    append(log, tickLine(10, "Error: A x"));
    follower.join();
}

// The whole of it: a thread follows while this one writes.
TEST_F(ZlFollow, ShowsLinesWhileTheyAreWritten)
{
    append(_log, ORIGIN);
    Zu::ZlShowOptions options;
    options._words = {_log};
    options._format = "iso";
    options._selection._areMarksHidden = true;
    std::atomic<bool> isStopped = false;
    std::thread follower([&] { Zu::zlFollow(options, 10, _output, _reports, isStopped); });
    std::string texts;
    for (std::uint32_t tick = 1; tick <= 9; ++tick)
    {
        append(_log, tickLine(tick, "Error: A " + std::to_string(tick)));
        if (tick == 5) fs::rename(_log, _log + ".1");
        while (texts.size() < tick)
        {
            std::this_thread::yield();
            texts += shown();
        }
    }
    EXPECT_EQ(texts, "123456789");
    isStopped = true;
    // So that it looks once more.
    append(_log, tickLine(10, "Error: A x"));
    follower.join();
}

} // namespace

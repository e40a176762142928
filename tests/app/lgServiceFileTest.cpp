#include "app/lgServiceFile.h"

#include "support/fileTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using support::onWindows;
using support::readFile;
using support::writeFile;
using Zu::LgServiceFile;
using Rotation = LgServiceFile::Rotation;
using Content = std::map<std::string, std::string>;

// The codes of the platform.
constexpr int NOT_FOUND = 2;
constexpr int NO_SUCH_DIRECTORY = onWindows ? 3 : 2;
constexpr int IS_DIRECTORY = onWindows ? 5 : 21;
constexpr int NOT_OPEN = onWindows ? 6 : 9;
constexpr int NOT_PERMITTED = 1;

constexpr std::int64_t HOUR = 3600;
constexpr std::int64_t DAY = 24 * HOUR;

std::int64_t secondsNow()
{
    return std::time(nullptr);
}

void setModified(const std::string& file, std::int64_t seconds)
{
    const auto past = std::chrono::seconds(seconds - secondsNow());
    std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now() + past);
}

class LgServiceFileTest : public testing::Test
{
protected:
    std::string file(const std::string& name) const
    {
        return _dir.file(name);
    }

    // The files of the directory.
    Content content() const
    {
        return support::treeAt(_dir.path());
    }

    void make(const Content& files) const
    {
        for (const auto& [name, text] : files) writeFile(file(name), text);
    }

    void removeAll() const
    {
        for (const auto& entry : content()) std::filesystem::remove(file(entry.first));
    }

    support::TempDir _dir;
};

void expectWritten(LgServiceFile& log, std::string_view text)
{
    const LgServiceFile::Written written = log.write(text);
    EXPECT_EQ(written._size, text.size());
    EXPECT_EQ(written._error, 0);
}

std::string readBack(const LgServiceFile& log, std::uint64_t offset, std::size_t size)
{
    std::string buffer(size, '#');
    const std::ptrdiff_t done = log.readAt(offset, buffer.data(), size);
    return done < 0 ? "error" : buffer.substr(0, static_cast<std::size_t>(done));
}

TEST_F(LgServiceFileTest, TextGoesBehindWhatIsThere)
{
    writeFile(file("log"), "old\n");
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.getPath(), file("log"));
    EXPECT_FALSE(log.isOpen());
    EXPECT_EQ(log.open(), 0);
    EXPECT_TRUE(log.isOpen());
    EXPECT_EQ(log.getSize(), 4U);
    expectWritten(log, "new\n");
    expectWritten(log, "");
    expectWritten(log, std::string("\0\r\n", 3));
    EXPECT_EQ(log.getSize(), 11U);
    EXPECT_TRUE(log.sync());
    EXPECT_EQ(readFile(file("log")), std::string("old\nnew\n\0\r\n", 11));
}

TEST_F(LgServiceFileTest, AMissingFileIsMadeAndAnEmptyOneIsUsed)
{
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    EXPECT_EQ(content(), (Content{{"log", ""}}));
    log.close();
    EXPECT_EQ(log.open(), 0);
    expectWritten(log, "a");
    EXPECT_EQ(log.open(), 0);
    expectWritten(log, "b");
    log.close();
    log.close();
    EXPECT_FALSE(log.isOpen());
    EXPECT_EQ(log.open(), 0);
    expectWritten(log, "c");
    EXPECT_EQ(content(), (Content{{"log", "abc"}}));
}

TEST_F(LgServiceFileTest, AClosedFileIsAnErrorOrAnswersNo)
{
    writeFile(file("log"), "text");
    LgServiceFile log(file("log"), {1, 0, 10});
    const auto expectClosed = [&log]
    {
        char byte = '#';
        const LgServiceFile::Written written = log.write("lost");
        EXPECT_EQ(written._size, 0U);
        EXPECT_EQ(written._error, NOT_OPEN);
        EXPECT_FALSE(log.getIdentity());
        EXPECT_EQ(log.getSize(), 0U);
        EXPECT_FALSE(log.isReplaced());
        EXPECT_FALSE(log.isTruncated());
        EXPECT_FALSE(log.isRotationDue(1000, secondsNow() + 3 * DAY));
        EXPECT_FALSE(log.sync());
        EXPECT_EQ(log.readAt(0, &byte, 1), -1);
    };
    expectClosed();
    EXPECT_EQ(log.open(), 0);
    EXPECT_TRUE(log.getIdentity());
    log.close();
    expectClosed();
    EXPECT_EQ(readFile(file("log")), "text");
}

TEST_F(LgServiceFileTest, WhatCanNotBeOpenedIsAnErrorUntilItCan)
{
    std::filesystem::create_directory(file("directory"));
    struct Row
    {
        std::string _path;
        int _code;
    };
    for (const Row& row : {Row{file("directory"), IS_DIRECTORY},
                           Row{file("no") + "/log", NO_SUCH_DIRECTORY}, Row{"", NO_SUCH_DIRECTORY}})
    {
        LgServiceFile log(row._path, {});
        EXPECT_EQ(log.open(), row._code) << row._path;
        EXPECT_FALSE(log.isOpen());
        EXPECT_EQ(log.write("lost")._error, NOT_OPEN);
    }
    LgServiceFile log(file("no") + "/log", {});
    EXPECT_NE(log.open(), 0);
    std::filesystem::create_directory(file("no"));
    EXPECT_EQ(log.open(), 0);
    expectWritten(log, "text");
    EXPECT_EQ(readFile(file("no") + "/log"), "text");
}

TEST_F(LgServiceFileTest, EachWritesBehindWhatOthersHaveWritten)
{
    LgServiceFile first(file("log"), {});
    LgServiceFile second(file("log"), {});
    EXPECT_EQ(first.open(), 0);
    EXPECT_EQ(second.open(), 0);
    for (const char* const text : {"a", "b"})
    {
        expectWritten(first, text);
        expectWritten(second, text);
    }
    EXPECT_EQ(first.getSize(), 4U);
    EXPECT_EQ(readFile(file("log")), "aabb");
    EXPECT_TRUE(first.getIdentity());
    EXPECT_EQ(first.getIdentity(), second.getIdentity());
    LgServiceFile other(file("other"), {});
    EXPECT_EQ(other.open(), 0);
    EXPECT_NE(first.getIdentity(), other.getIdentity());
    EXPECT_EQ(first.getIdentity()->_volume, other.getIdentity()->_volume);
}

// Not rotated here, in case that were to rename it: it is the machine's.
TEST_F(LgServiceFileTest, TheNullDeviceTakesEverything)
{
    char byte = '#';
    LgServiceFile log(onWindows ? "NUL" : "/dev/null", {1, 0, 10});
    ASSERT_EQ(log.open(), 0);
    EXPECT_EQ(log.getIdentity().has_value(), !onWindows);
    expectWritten(log, "text");
    EXPECT_EQ(log.getSize(), 0U);
    EXPECT_EQ(log.readAt(0, &byte, 1), -1);
    EXPECT_FALSE(log.isReplaced());
    EXPECT_FALSE(log.isTruncated());
    EXPECT_FALSE(log.isRotationDue(100, secondsNow() + 3 * DAY));
    EXPECT_TRUE(log.sync());
}

TEST_F(LgServiceFileTest, LongTextIsWrittenAndReadBack)
{
    const std::string text = support::noise(3000000);
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    expectWritten(log, text);
    EXPECT_EQ(readBack(log, 0, text.size() + 10), text);
    EXPECT_EQ(readBack(log, 2999990, 100), text.substr(2999990));
    EXPECT_EQ(readBack(log, 1000, 5), text.substr(1000, 5));
    EXPECT_EQ(readBack(log, 3000000, 5), "");
    EXPECT_EQ(readBack(log, std::uint64_t{1} << 33, 5), "");
    EXPECT_EQ(readBack(log, 0, 0), "");
    // Reading moves nothing.
    expectWritten(log, "end");
    EXPECT_EQ(readFile(file("log")), text + "end");
}

TEST_F(LgServiceFileTest, ARenamedRemovedOrReplacedFileIsNoticed)
{
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    expectWritten(log, "1");
    EXPECT_FALSE(log.isReplaced());

    std::filesystem::rename(file("log"), file("away"));
    EXPECT_TRUE(log.isReplaced());
    expectWritten(log, "2");
    EXPECT_EQ(readFile(file("away")), "12");

    std::filesystem::rename(file("away"), file("log"));
    EXPECT_FALSE(log.isReplaced());

    std::filesystem::rename(file("log"), file("away"));
    writeFile(file("log"), "3");
    EXPECT_TRUE(log.isReplaced());
    log.close();
    EXPECT_EQ(log.open(), 0);
    EXPECT_FALSE(log.isReplaced());
    expectWritten(log, "4");
    EXPECT_EQ(content(), (Content{{"away", "12"}, {"log", "34"}}));

    std::filesystem::remove(file("log"));
    // Wine keeps the name until the file is closed, and does not say that it is to go.
    EXPECT_TRUE(onWindows || log.isReplaced());
    log.close();
    EXPECT_EQ(log.open(), 0);
    expectWritten(log, "5");
    EXPECT_FALSE(log.isReplaced());
    EXPECT_EQ(content(), (Content{{"away", "12"}, {"log", "5"}}));
}

TEST_F(LgServiceFileTest, ADirectoryInTheFilesPlaceIsAnotherFile)
{
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    std::filesystem::rename(file("log"), file("away"));
    std::filesystem::create_directory(file("log"));
    EXPECT_TRUE(log.isReplaced());
    // Nor is it put away.
    EXPECT_EQ(log.rotate(), 0);
    EXPECT_TRUE(std::filesystem::is_directory(file("log")));
}

TEST_F(LgServiceFileTest, TextOfOthersIsNoticedOnce)
{
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    expectWritten(log, "abc");
    EXPECT_FALSE(log.isTruncated());
    EXPECT_FALSE(log.hasOthersText());
    std::ofstream(file("log"), std::ios::binary | std::ios::app) << "other";
    EXPECT_FALSE(log.isTruncated());
    EXPECT_TRUE(log.hasOthersText());
    expectWritten(log, "def");
    EXPECT_FALSE(log.isTruncated());
    EXPECT_FALSE(log.hasOthersText());
    std::filesystem::resize_file(file("log"), 1);
    EXPECT_TRUE(log.isTruncated());
    EXPECT_FALSE(log.hasOthersText());
}

TEST_F(LgServiceFileTest, AnEmptiedFileIsNoticedOnce)
{
    writeFile(file("log"), "0123456789");
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    EXPECT_FALSE(log.isTruncated());
    expectWritten(log, "abc");
    EXPECT_FALSE(log.isTruncated());

    std::filesystem::resize_file(file("log"), 0);
    EXPECT_FALSE(log.isReplaced());
    EXPECT_TRUE(log.isTruncated());
    EXPECT_FALSE(log.isTruncated());
    expectWritten(log, "banner");
    EXPECT_FALSE(log.isTruncated());
    EXPECT_EQ(readFile(file("log")), "banner");

    // Shorter by one character.
    std::filesystem::resize_file(file("log"), 5);
    EXPECT_TRUE(log.isTruncated());
    EXPECT_FALSE(log.isTruncated());
}

TEST_F(LgServiceFileTest, AnEmptiedFileIsNoticedEvenIfItWasWrittenSince)
{
    LgServiceFile log(file("log"), {});
    LgServiceFile other(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    EXPECT_EQ(other.open(), 0);
    expectWritten(log, "0123456789");
    std::filesystem::resize_file(file("log"), 0);
    expectWritten(log, "abc");
    EXPECT_TRUE(log.isTruncated());
    EXPECT_FALSE(log.isTruncated());

    // What others write counts from the time at which it was seen.
    expectWritten(other, "0123456789");
    EXPECT_FALSE(log.isTruncated());
    std::filesystem::resize_file(file("log"), 8);
    EXPECT_TRUE(log.isTruncated());
}

TEST_F(LgServiceFileTest, RotationBySizeIsDueWhenTheTextWouldExceedIt)
{
    struct Row
    {
        std::uint64_t _limit;
        std::size_t _there;
        std::size_t _more;
        bool _expected;
    };
    for (const Row& row :
         {Row{100, 60, 40, false}, Row{100, 60, 41, true}, Row{100, 100, 0, false},
          Row{100, 101, 0, true}, Row{100, 0, 1000, false}, Row{1, 1, 1, true},
          Row{0, 1000, 1000, false}, Row{std::uint64_t{1} << 40, 1000, 1000, false}})
    {
        removeAll();
        LgServiceFile log(file("log"), {row._limit, -1, 10});
        EXPECT_EQ(log.open(), 0);
        expectWritten(log, std::string(row._there, 'x'));
        EXPECT_EQ(log.isRotationDue(row._more, secondsNow()), row._expected)
            << row._limit << ' ' << row._there << ' ' << row._more;
    }
}

TEST_F(LgServiceFileTest, RotationBySizeCountsWhatOthersWrite)
{
    LgServiceFile log(file("log"), {100, -1, 10});
    LgServiceFile other(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    EXPECT_EQ(other.open(), 0);
    expectWritten(other, std::string(90, 'x'));
    EXPECT_TRUE(log.isRotationDue(11, secondsNow()));
}

// The last time at which clocks came to this minute, and one that is half an hour before it.
class LgServiceFileTimeTest : public LgServiceFileTest
{
protected:
    // A minute of the day that is some hours away from now, before and after.
    LgServiceFileTimeTest()
    {
        const std::int64_t local = _now + LgServiceFile::getLocalOffset(_now);
        _minute = static_cast<int>((local + 12 * HOUR) % DAY / 60);
        _latest = LgServiceFile::getLatest(_minute, _now, LgServiceFile::getLocalOffset);
    }

    const std::int64_t _now = secondsNow();
    int _minute = 0;
    std::int64_t _latest = 0;
};

TEST_F(LgServiceFileTimeTest, AFileFromBeforeThatTimeIsDue)
{
    struct Row
    {
        std::int64_t _modified;
        bool _expected;
    };
    for (const Row& row : {Row{_latest - 60, true}, Row{_latest + 60, false}, Row{_now, false},
                           Row{_latest - 400 * DAY, true},
                           // The clock was wrong then.
                           Row{_now + 400 * DAY, true}, Row{_now + HOUR, false}})
    {
        writeFile(file("log"), "text");
        setModified(file("log"), row._modified);
        LgServiceFile log(file("log"), {0, _minute, 10});
        EXPECT_EQ(log.open(), 0);
        EXPECT_EQ(log.isRotationDue(1, _now), row._expected) << row._modified - _now;
        // Writing to it changes nothing about that.
        expectWritten(log, "more");
        EXPECT_EQ(log.isRotationDue(1, _now), row._expected) << row._modified - _now;
    }
}

TEST_F(LgServiceFileTimeTest, AnEmptyFileIsNeverDueAndBeginsWithItsFirstText)
{
    writeFile(file("log"), "");
    setModified(file("log"), _latest - 5 * DAY);
    LgServiceFile log(file("log"), {0, _minute, 10});
    EXPECT_EQ(log.open(), 0);
    EXPECT_FALSE(log.isRotationDue(1, _now));
    expectWritten(log, "text");
    EXPECT_FALSE(log.isRotationDue(1, _now));
    EXPECT_TRUE(log.isRotationDue(1, _now + DAY));
}

TEST_F(LgServiceFileTimeTest, TheNewFileIsDueADayLater)
{
    LgServiceFile log(file("log"), {0, _minute, 10});
    for (int day = 0; day < 3; ++day)
    {
        EXPECT_EQ(log.open(), 0);
        expectWritten(log, std::to_string(day));
        EXPECT_FALSE(log.isRotationDue(1, _now));
        EXPECT_TRUE(log.isRotationDue(1, _now + DAY));
        EXPECT_EQ(log.rotate(), 0);
    }
    EXPECT_EQ(content(), (Content{{"log.1", "2"}, {"log.2", "1"}, {"log.3", "0"}}));
}

TEST_F(LgServiceFileTimeTest, WhatIsNoTimeOfDayIsNeverDue)
{
    writeFile(file("log"), "text");
    setModified(file("log"), _now - 5 * DAY);
    for (const int minute : {-1, -100, 1440, 100000})
    {
        LgServiceFile log(file("log"), {0, minute, 10});
        EXPECT_EQ(log.open(), 0);
        EXPECT_FALSE(log.isRotationDue(1000, _now)) << minute;
    }
}

TEST_F(LgServiceFileTest, FilesMoveUpAndTheOldestAreRemoved)
{
    LgServiceFile log(file("log"), {0, -1, 3});
    for (int number = 1; number <= 5; ++number)
    {
        EXPECT_EQ(log.open(), 0);
        expectWritten(log, std::to_string(number));
        EXPECT_EQ(log.rotate(), 0);
        EXPECT_FALSE(log.isOpen());
    }
    EXPECT_EQ(content(), (Content{{"log.1", "5"}, {"log.2", "4"}, {"log.3", "3"}}));
    EXPECT_EQ(log.open(), 0);
    EXPECT_EQ(log.getSize(), 0U);
    EXPECT_FALSE(log.isTruncated());
    EXPECT_FALSE(log.isReplaced());
}

TEST_F(LgServiceFileTest, RotationKeepsEveryFileInItsOrder)
{
    struct Row
    {
        const char* _what;
        int _kept;
        Content _before;
        Content _after;
    };
    const Row rows[] = {
        {"nothing but numbers", 3, {}, {}},
        {"no file to put away",
         3,
         {{"log.1", "b"}, {"log.3", "d"}},
         {{"log.1", "b"}, {"log.3", "d"}}},
        {"the first", 3, {{"log", "a"}}, {{"log.1", "a"}}},
        {"compressed",
         3,
         {{"log", "a"}, {"log.1", "b"}, {"log.2.gz", "c"}},
         {{"log.1", "a"}, {"log.2", "b"}, {"log.3.gz", "c"}}},
        {"compressed, the oldest goes",
         2,
         {{"log", "a"}, {"log.1.gz", "b"}, {"log.2.gz", "c"}},
         {{"log.1", "a"}, {"log.2.gz", "b"}}},
        {"being compressed when that ended",
         3,
         {{"log", "a"}, {"log.1", "b"}, {"log.1.gz", "half"}},
         {{"log.1", "a"}, {"log.2", "b"}, {"log.2.gz", "half"}}},
        {"a free number is filled",
         5,
         {{"log", "a"}, {"log.1", "b"}, {"log.3", "d"}},
         {{"log.1", "a"}, {"log.2", "b"}, {"log.3", "d"}}},
        {"the first number is free",
         5,
         {{"log", "a"}, {"log.2", "c"}},
         {{"log.1", "a"}, {"log.2", "c"}}},
        {"fewer are kept than before, and a number is free",
         1,
         {{"log", "a"},
          {"log.1", "b"},
          {"log.2", "c"},
          {"log.3.gz", "d"},
          {"log.6", "f"},
          {"log.9", "far"}},
         {{"log.1", "a"}, {"log.9", "far"}}},
        {"none is kept", 0, {{"log", "a"}, {"log.1", "b"}}, {}},
        {"less than none", -7, {{"log", "a"}, {"log.1", "b"}}, {}},
        {"names that are others'",
         1,
         {{"log", "a"},
          {"log.20240131", "x"},
          {"log.1.bz2", "y"},
          {"log.old", "z"},
          {"log.0", "0"},
          {"log.01", "01"},
          {"log2", "2"}},
         {{"log.1", "a"},
          {"log.20240131", "x"},
          {"log.1.bz2", "y"},
          {"log.old", "z"},
          {"log.0", "0"},
          {"log.01", "01"},
          {"log2", "2"}}},
    };
    for (const auto& [what, kept, before, after] : rows)
    {
        removeAll();
        make(before);
        LgServiceFile log(file("log"), {0, -1, kept});
        EXPECT_EQ(log.rotate(), 0) << what;
        EXPECT_EQ(content(), after) << what;
    }
}

TEST_F(LgServiceFileTest, TwoDigitsFollowOne)
{
    make({{"log", "0"}});
    for (int number = 1; number <= 12; ++number)
        writeFile(file("log." + std::to_string(number)), std::to_string(number));
    LgServiceFile log(file("log"), {0, -1, 12});
    EXPECT_EQ(log.rotate(), 0);
    Content expected;
    for (int number = 1; number <= 12; ++number)
        expected["log." + std::to_string(number)] = std::to_string(number - 1);
    EXPECT_EQ(content(), expected);
}

// Simulates an end of the process between any two steps, also in the rotation that follows.
TEST_F(LgServiceFileTest, AnEndAtAnyStepLosesNoFileThatIsToBeKept)
{
    const Content starts[] = {
        {{"log", "a"}, {"log.1", "b"}, {"log.2", "c"}, {"log.3", "d"}},
        {{"log", "a"}, {"log.1", "b"}, {"log.2.gz", "c"}, {"log.3.gz", "d"}},
        {{"log", "a"}, {"log.1", "b"}, {"log.3", "c"}},
        {{"log", "a"}, {"log.1", "b"}, {"log.1.gz", "half of b"}, {"log.2", "c"}},
    };
    constexpr int KEPT = 3;
    const auto isThere = [](const std::string& name) { return std::filesystem::exists(name); };
    // Takes so many steps; whether it did not come to the end.
    const auto rotateInPart = [&](std::size_t steps)
    {
        const auto renames = LgServiceFile::getRenames(file("log"), isThere);
        for (const auto& [from, to] : renames)
        {
            if (steps-- == 0) return true;
            EXPECT_FALSE(isThere(to)) << to;
            std::filesystem::rename(from, to);
        }
        for (const auto& name : LgServiceFile::getSurplus(file("log"), KEPT, isThere))
        {
            if (steps-- == 0) return true;
            std::filesystem::remove(name);
        }
        return false;
    };
    const auto texts = [](const Content& files)
    {
        std::set<std::string> found;
        for (const auto& entry : files) found.insert(entry.second);
        return found;
    };
    for (const Content& start : starts)
        for (std::size_t first = 0;; ++first)
        {
            bool isInterrupted = true;
            for (std::size_t second = 0; second < 8; ++second)
            {
                removeAll();
                make(start);
                isInterrupted = rotateInPart(first);
                rotateInPart(second);
                // What is written from then on.
                if (!isThere(file("log"))) writeFile(file("log"), "new");
                LgServiceFile log(file("log"), {0, -1, KEPT});
                EXPECT_EQ(log.rotate(), 0);
                const Content after = content();
                SCOPED_TRACE(std::to_string(first) + " and " + std::to_string(second));
                for (const char* const text : {"a", "b"}) EXPECT_TRUE(texts(after).count(text));
                EXPECT_LE(texts(after).size(), std::size_t{KEPT} + 1);
                EXPECT_FALSE(after.count("log"));
                EXPECT_FALSE(after.count("log.4") + after.count("log.4.gz"));
                EXPECT_TRUE(after.count("log.1"));
                // The younger has the lower number.
                std::string order;
                for (const auto& entry : after)
                    if (entry.second.size() == 1) order += entry.second;
                EXPECT_TRUE(std::is_sorted(order.begin(), order.end())) << order;
            }
            if (!isInterrupted) break;
        }
}

TEST_F(LgServiceFileTest, OthersFindTheNewFile)
{
    LgServiceFile first(file("log"), {});
    LgServiceFile second(file("log"), {});
    EXPECT_EQ(first.open(), 0);
    EXPECT_EQ(second.open(), 0);
    expectWritten(first, "1");
    EXPECT_EQ(first.rotate(), 0);
    // Before there is one, and after.
    EXPECT_TRUE(second.isReplaced());
    EXPECT_EQ(first.open(), 0);
    EXPECT_TRUE(second.isReplaced());
    EXPECT_FALSE(first.isReplaced());
    second.close();
    EXPECT_EQ(second.open(), 0);
    expectWritten(second, "2");
    expectWritten(first, "3");
    EXPECT_EQ(content(), (Content{{"log", "23"}, {"log.1", "1"}}));
}

TEST_F(LgServiceFileTest, ARotationAfterSomebodyElsesOnlyClosesTheFile)
{
    make({{"log.1", "b"}});
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    expectWritten(log, "a");
    std::filesystem::rename(file("log"), file("away"));
    EXPECT_EQ(log.rotate(), 0);
    EXPECT_FALSE(log.isOpen());
    EXPECT_EQ(content(), (Content{{"away", "a"}, {"log.1", "b"}}));
}

// A standard stream opens files so that they can't be renamed on Windows.
TEST_F(LgServiceFileTest, WhereOthersForbidTheRenameTheOldFileStaysInUse)
{
    constexpr int SHARING_VIOLATION = 32;
    for (const char* const held : {"log", "log.1"})
    {
        removeAll();
        make({{"log.1", "b"}, {"log.2", "c"}});
        LgServiceFile log(file("log"), {0, -1, 3});
        EXPECT_EQ(log.open(), 0);
        expectWritten(log, "a");
        std::ifstream reader(file(held));
        EXPECT_TRUE(reader.is_open());
        EXPECT_EQ(log.rotate(), onWindows ? SHARING_VIOLATION : 0) << held;
        EXPECT_EQ(log.isOpen(), onWindows);
        EXPECT_FALSE(log.isReplaced());
        EXPECT_EQ(log.open(), 0);
        expectWritten(log, "+");
        reader.close();
        log.close();
        // The next one works.
        EXPECT_EQ(log.rotate(), 0) << held;
        std::string all;
        for (const auto& entry : content()) all += entry.second;
        EXPECT_EQ(all, onWindows ? "a+bc" : "+ab") << held;
    }
}

TEST_F(LgServiceFileTest, TheFileOfAServiceCanBeReadWrittenAndRemovedByOthers)
{
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    expectWritten(log, "a");
    std::ofstream(file("log"), std::ios::app) << "b";
    expectWritten(log, "c");
    EXPECT_EQ(readFile(file("log")), "abc");
    EXPECT_TRUE(std::filesystem::remove(file("log")));
    expectWritten(log, "d");
}

// Windows may open handles of its own at any time, but not one in each round.
TEST_F(LgServiceFileTest, NothingStaysOpen)
{
    constexpr std::size_t ROUNDS = 50;
    const std::size_t before = support::openHandles();
    for (std::size_t round = 0; round < ROUNDS; ++round)
    {
        LgServiceFile log(file("log"), {1, 0, 1});
        EXPECT_EQ(log.open(), 0);
        expectWritten(log, "text");
        EXPECT_FALSE(log.isReplaced());
        EXPECT_EQ(log.rotate(), 0);
        EXPECT_TRUE(log.open() == 0 && !log.isReplaced());
        LgServiceFile none(_dir.path(), {});
        EXPECT_NE(none.open(), 0);
    }
    EXPECT_LT(support::openHandles(), before + ROUNDS / 2);
}

TEST_F(LgServiceFileTest, ACopyStoresWhatWasWrittenThoughTheFileGoesOn)
{
    LgServiceFile log(file("log"), {});
    std::unique_ptr<LgServiceFile> copy;
    EXPECT_EQ(log.copyToStore(copy), 0);
    EXPECT_EQ(copy, nullptr);
    ASSERT_EQ(log.open(), 0);
    EXPECT_FALSE(log.isUnstored());
    expectWritten(log, "text");
    EXPECT_TRUE(log.isUnstored());
    ASSERT_EQ(log.copyToStore(copy), 0);
    EXPECT_FALSE(log.isUnstored());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->getPath(), log.getPath());
    EXPECT_EQ(log.rotate(), 0);
    EXPECT_FALSE(log.isOpen());
    EXPECT_TRUE(copy->sync());
    EXPECT_EQ(copy->getSize(), 4U);
    ASSERT_EQ(log.open(), 0);
    expectWritten(log, "more");
    EXPECT_TRUE(log.sync());
    EXPECT_FALSE(log.isUnstored());
}

TEST_F(LgServiceFileTest, WhatIsNoPlainFileHasNothingToStore)
{
    LgServiceFile log(onWindows ? "NUL" : "/dev/null", {});
    ASSERT_EQ(log.open(), 0);
    expectWritten(log, "text");
    EXPECT_FALSE(log.isUnstored());
    std::unique_ptr<LgServiceFile> copy;
    EXPECT_EQ(log.copyToStore(copy), 0);
    EXPECT_EQ(copy, nullptr);
    EXPECT_TRUE(log.sync());
}

TEST_F(LgServiceFileTest, ErrorsHaveTheSystemsWords)
{
    // Windows says that a file is not found in more than one way.
    const std::string missing = LgServiceFile::errorText(NOT_FOUND);
    EXPECT_NE(missing.find(onWindows ? "ile" : "No such file or directory"), std::string::npos)
        << missing;
    for (const int code : {0, 1, 2, 5, 13, 28, 32, 112, 123456789, -1})
    {
        const std::string text = LgServiceFile::errorText(code);
        EXPECT_FALSE(text.empty()) << code;
        EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos) << text;
        EXPECT_NE(text.back(), ' ') << text;
    }
    EXPECT_EQ(LgServiceFile::errorText(123456789),
              onWindows ? "Error 123456789" : "Unknown error 123456789");
}

// In a directory that all may write to. Windows has no such modes.
class LgServiceFileSharedTest : public LgServiceFileTest
{
protected:
    void SetUp() override
    {
        if (onWindows) GTEST_SKIP() << "Windows has no modes, and its place is private.";
        std::filesystem::permissions(_dir.path(), std::filesystem::perms{01777});
    }

    int openedAs(const std::string& name) const
    {
        LgServiceFile log(file(name), {});
        const int code = log.open();
        EXPECT_EQ(log.isOpen(), code == 0);
        return code;
    }
};

TEST_F(LgServiceFileSharedTest, ANewFileIsReadableByItsOwnerAlone)
{
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    expectWritten(log, "text");
    EXPECT_EQ(support::modeOf(file("log")), 0600U);
    EXPECT_EQ(readBack(log, 0, 10), "text");
}

TEST_F(LgServiceFileSharedTest, ALinkOfOnesOwnIsFollowed)
{
    writeFile(file("target"), "old");
    std::filesystem::create_symlink(file("target"), file("log"));
    LgServiceFile log(file("log"), {});
    EXPECT_EQ(log.open(), 0);
    expectWritten(log, "new");
    EXPECT_FALSE(log.isReplaced());
    EXPECT_EQ(readBack(log, 0, 10), "oldnew");
    EXPECT_EQ(readFile(file("target")), "oldnew");
}

TEST_F(LgServiceFileSharedTest, ASecondNameIsRefused)
{
    writeFile(file("target"), "old");
    std::filesystem::create_hard_link(file("target"), file("log"));
    EXPECT_EQ(openedAs("log"), NOT_PERMITTED);
    std::filesystem::create_symlink(file("target"), file("link"));
    std::filesystem::create_hard_link(file("link"), file("second"));
    EXPECT_EQ(openedAs("second"), NOT_PERMITTED);
    EXPECT_EQ(readFile(file("target")), "old");
}

TEST_F(LgServiceFileSharedTest, WhatBelongsToAnotherUserIsRefused)
{
    constexpr int ACCESS_DENIED = 13;
    std::filesystem::create_directory(file("place"));
    writeFile(file("place/log"), "old");
    writeFile(file("log"), "old");
    std::filesystem::create_symlink(file("place/log"), file("link"));
    std::filesystem::create_directory_symlink(file("place"), file("way"));
    for (const char* const name : {"log", "link", "way"})
        if (!support::giveToAnotherUser(file(name)))
            GTEST_SKIP() << "That takes the system's user.";
    for (const char* const name : {"log", "link"})
    {
        // The system may itself refuse to open such a file or link in such a place.
        const int code = openedAs(name);
        EXPECT_TRUE(code == NOT_PERMITTED || code == ACCESS_DENIED) << name << ' ' << code;
    }
    EXPECT_EQ(openedAs("way/log"), NOT_PERMITTED);
    EXPECT_EQ(openedAs("place/log"), 0);
    EXPECT_EQ(readFile(file("log")), "old");
    EXPECT_EQ(readFile(file("place/log")), "old");
}

// Offsets from UTC that change at instants.
struct Zone
{
    std::int64_t operator()(std::int64_t universal) const
    {
        std::int64_t offset = _first;
        for (const auto& [instant, next] : _changes)
            if (universal >= instant) offset = next;
        return offset;
    }

    const char* _name;
    std::int64_t _first;
    std::vector<std::pair<std::int64_t, std::int64_t>> _changes;
};

// 31 March 2024 and 27 October 2024, 1:00 UTC: from 2:00 to 3:00, and from 3:00 to 2:00.
constexpr std::int64_t SPRING = 1711846800;
constexpr std::int64_t AUTUMN = 1729990800;
const Zone CENTRAL = {"central", HOUR, {{SPRING, 2 * HOUR}, {AUTUMN, HOUR}}};

TEST(LgServiceFileTimes, TheLatestOccurrenceFollowsTheClocksOfTheZone)
{
    struct Row
    {
        const char* _what;
        int _minute;
        std::int64_t _now;
        std::int64_t _expected;
    };
    const Row rows[] = {
        {"long before the change", 150, SPRING - 1800, SPRING + 1800 - DAY},
        {"an hour that is skipped, before it", 150, SPRING, SPRING + 1800 - DAY},
        {"an hour that is skipped, not yet", 150, SPRING + 1799, SPRING + 1800 - DAY},
        {"an hour that is skipped", 150, SPRING + 1800, SPRING + 1800},
        {"on the day after", 150, SPRING + 23 * HOUR, SPRING + 1800},
        {"on the day after, reached", 150, SPRING + DAY - 1800, SPRING + DAY - 1800},
        {"midnight, on the day of the change", 0, SPRING + 5 * HOUR, SPRING - 2 * HOUR},
        {"midnight, a day of 23 hours later", 0, SPRING + 21 * HOUR, SPRING + 21 * HOUR},
        {"midnight, a second earlier", 0, SPRING + 21 * HOUR - 1, SPRING - 2 * HOUR},
        {"an hour that comes twice, before it", 150, AUTUMN - 1801, AUTUMN - 1800 - DAY},
        {"an hour that comes twice, first", 150, AUTUMN - 1800, AUTUMN - 1800},
        {"an hour that comes twice, between", 150, AUTUMN, AUTUMN - 1800},
        {"an hour that comes twice, second", 150, AUTUMN + 1800, AUTUMN - 1800},
        {"on the day after", 150, AUTUMN + DAY + 1799, AUTUMN - 1800},
        {"on the day after, reached", 150, AUTUMN + DAY + 1800, AUTUMN + DAY + 1800},
        {"midnight, on the day of the change", 0, AUTUMN + 5 * HOUR, AUTUMN - 3 * HOUR},
        {"midnight, a day of 25 hours later", 0, AUTUMN + 22 * HOUR, AUTUMN + 22 * HOUR},
        {"midnight, a second earlier", 0, AUTUMN + 22 * HOUR - 1, AUTUMN - 3 * HOUR},
        {"the last minute", 1439, AUTUMN + 22 * HOUR, AUTUMN + 22 * HOUR - 60},
    };
    for (const auto& [what, minute, now, expected] : rows)
        EXPECT_EQ(LgServiceFile::getLatest(minute, now, CENTRAL) - expected, 0) << what;
}

// The instants at which clocks first show this minute of the day, found by looking at every minute.
// The clocks of the zone are changed at whole minutes.
std::vector<std::int64_t> occurrencesOf(int minute, const Zone& zone, std::int64_t from,
                                        std::int64_t to)
{
    std::vector<std::int64_t> found;
    // The latest local time that was passed, shown or skipped.
    std::int64_t passed = from + zone(from) - 60;
    for (std::int64_t now = from; now < to; now += 60)
    {
        const std::int64_t local = now + zone(now);
        for (std::int64_t step = passed + 60; step <= local; step += 60)
            if ((step % DAY + DAY) % DAY == minute * 60)
                // As long after the skip began as the time is after the first one that is skipped.
                found.push_back(now + (step - passed - 60) * (local > passed + 60 && step < local));
        passed = std::max(passed, local);
    }
    std::sort(found.begin(), found.end());
    return found;
}

TEST(LgServiceFileTimes, TheLatestOccurrenceIsTheOneThatASlowSearchFinds)
{
    // 1 March 2023, 0:00 UTC.
    constexpr std::int64_t MARCH = 1677628800;
    const Zone zones[] = {
        {"UTC", 0, {}},
        {"half an hour", 5 * HOUR + 1800, {}},
        {"far west", -12 * HOUR, {{MARCH, -11 * HOUR}, {MARCH + 20 * DAY, -12 * HOUR}}},
        {"far east", 14 * HOUR, {{MARCH, 13 * HOUR}, {MARCH + 20 * DAY, 14 * HOUR}}},
        // Clocks go from 0:00 to 1:00, and back from 0:00 to 23:00.
        {"at midnight",
         2 * HOUR,
         {{MARCH - 2 * HOUR, 3 * HOUR}, {MARCH + 20 * DAY - 3 * HOUR, 2 * HOUR}}},
        // From 0:30 back to 23:30.
        {"past midnight", 3 * HOUR, {{MARCH + DAY - 3 * HOUR + 1800, 2 * HOUR}}},
        {"by half an hour",
         10 * HOUR + 1800,
         {{MARCH, 11 * HOUR}, {MARCH + 20 * DAY, 10 * HOUR + 1800}}},
    };
    for (const Zone& zone : zones)
        for (const std::int64_t middle : {MARCH, MARCH + DAY, MARCH + 20 * DAY})
            for (const int minute : {0, 1, 15, 30, 45, 59, 60, 75, 90, 135, 720, 1410, 1425, 1439})
            {
                const auto found = occurrencesOf(minute, zone, middle - 5 * DAY, middle + 3 * DAY);
                for (std::int64_t now = middle - 3 * DAY; now < middle + 3 * DAY;
                     now += 13 * 60 + 7)
                {
                    const auto next = std::upper_bound(found.begin(), found.end(), now);
                    ASSERT_NE(next, found.begin());
                    ASSERT_EQ(LgServiceFile::getLatest(minute, now, zone) - *(next - 1), 0)
                        << zone._name << ' ' << minute << ' ' << now - middle;
                }
            }
}

TEST(LgServiceFileTimes, TimesBefore1970AreFoundAsWell)
{
    const auto utc = [](std::int64_t) { return std::int64_t{0}; };
    EXPECT_EQ(LgServiceFile::getLatest(0, -1, utc), -DAY);
    EXPECT_EQ(LgServiceFile::getLatest(0, 0, utc), 0);
    EXPECT_EQ(LgServiceFile::getLatest(1, 59, utc), 60 - DAY);
    EXPECT_EQ(LgServiceFile::getLatest(1439, -DAY, utc), -DAY - 60);
}

TEST(LgServiceFileTimes, TheLocalOffsetIsTheRuntimes)
{
    const std::time_t now = std::time(nullptr);
    const std::tm local = *std::localtime(&now);
    const std::tm universal = *std::gmtime(&now);
    const int days = local.tm_year != universal.tm_year ? local.tm_year - universal.tm_year
                                                        : local.tm_yday - universal.tm_yday;
    const int minutes =
        ((days * 24 + local.tm_hour - universal.tm_hour) * 60) + local.tm_min - universal.tm_min;
    EXPECT_EQ(LgServiceFile::getLocalOffset(now), minutes * 60);
}

} // namespace

#include "app/lgMapFile.h"

#include "support/childProcess.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <system_error>
#include <vector>

namespace
{

namespace fs = std::filesystem;

using support::TempDir;
using Zu::LgLeftFile;
using Zu::LgMapFile;
using Outcome = Zu::LgLeftFile::Outcome;

constexpr std::uint64_t UNIT = 65536;

class LgMapFileTest : public testing::Test
{
protected:
    void write(const std::string& text) const
    {
        std::ofstream(_path, std::ios::binary) << text;
        // Nobody else may read it.
        fs::permissions(_path, fs::perms::owner_read | fs::perms::owner_write);
    }

    std::string read() const
    {
        std::ifstream file(_path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static Outcome open(const std::string& path)
    {
        LgLeftFile file;
        return file.open(path);
    }

    TempDir _dir;
    const std::string _path = _dir.file("map");
};

TEST_F(LgMapFileTest, WhatIsWrittenToItsMemoryIsInTheFile)
{
    {
        LgMapFile file;
        ASSERT_TRUE(file.create(_path)) << file.getError();
        EXPECT_EQ(file.getPath(), _path);
        ASSERT_TRUE(file.extend(3 * UNIT));
        ASSERT_TRUE(file.reserve(UNIT, UNIT));
        auto* const place = static_cast<char*>(file.map(UNIT, 2 * UNIT));
        ASSERT_NE(place, nullptr) << file.getError();
        EXPECT_EQ(std::count(place, place + 2 * UNIT, '\0'), std::ptrdiff_t{2 * UNIT});
        std::strcpy(place, "here");
        std::strcpy(place + UNIT, "there");
        // Others can see it at once.
        EXPECT_EQ(read().substr(UNIT, 4), "here");
        LgMapFile::unmap(place, 2 * UNIT);
    }
    const std::string text = read();
    EXPECT_EQ(text.size(), 3 * UNIT);
    EXPECT_EQ(text.substr(2 * UNIT, 6), std::string("there\0", 6));
}

TEST_F(LgMapFileTest, MemoryOutlivesTheObject)
{
    char* place = nullptr;
    {
        LgMapFile file;
        ASSERT_TRUE(file.create(_path) && file.extend(UNIT));
        place = static_cast<char*>(file.map(0, UNIT));
        ASSERT_NE(place, nullptr);
    }
    std::strcpy(place, "later");
    EXPECT_EQ(read().substr(0, 5), "later");
    LgMapFile::unmap(place, UNIT);
}

TEST_F(LgMapFileTest, IsNeverAFileThatExists)
{
    write("mine");
    LgMapFile file;
    EXPECT_FALSE(file.create(_path));
    EXPECT_NE(file.getError(), "");
    EXPECT_EQ(file.getPath(), "");
    EXPECT_EQ(read(), "mine");
}

TEST_F(LgMapFileTest, NeedsItsDirectory)
{
    LgMapFile file;
    EXPECT_FALSE(file.create(_dir.file("none") + "/map"));
    EXPECT_NE(file.getError(), "");
}

TEST_F(LgMapFileTest, BelongsToItsUserAlone)
{
    const unsigned int former = support::setModeMask(0);
    LgMapFile file;
    const bool isMade = file.create(_path);
    support::setModeMask(former);
    ASSERT_TRUE(isMade);
    if (support::onWindows) GTEST_SKIP() << "Windows has no modes of files.";
    EXPECT_EQ(fs::status(_path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(LgMapFileTest, PartsAreZeroAfterTheyWereCleared)
{
    LgMapFile file;
    ASSERT_TRUE(file.create(_path) && file.extend(2 * UNIT) && file.reserve(0, 2 * UNIT));
    auto* const place = static_cast<char*>(file.map(0, 2 * UNIT));
    ASSERT_NE(place, nullptr);
    std::memset(place, 'x', 2 * UNIT);
    file.clear(place + 4096, 4096, UNIT);
    const std::string expected =
        std::string(4096, 'x') + std::string(UNIT, '\0') + std::string(UNIT - 4096, 'x');
    EXPECT_EQ(std::string(place, 2 * UNIT), expected);
    EXPECT_EQ(read(), expected);
    LgMapFile::unmap(place, 2 * UNIT);
}

TEST_F(LgMapFileTest, PrivateMemoryIsZeroAndNotInTheFile)
{
    LgMapFile file;
    ASSERT_TRUE(file.create(_path) && file.extend(UNIT));
    auto* const place = static_cast<char*>(file.map(0, UNIT));
    ASSERT_NE(place, nullptr);
    std::memset(place, 'x', UNIT);
    const bool isReplaced = LgMapFile::replaceByPrivate(place + 4096, UNIT - 4096);
    // Where room is taken at once, it is never needed.
    EXPECT_EQ(isReplaced, LgMapFile::reservesInSteps());
    if (isReplaced)
    {
        EXPECT_EQ(std::count(place + 4096, place + UNIT, '\0'), std::ptrdiff_t{UNIT - 4096});
        std::memset(place + 4096, 'y', UNIT - 4096);
    }
    EXPECT_EQ(read(), std::string(UNIT, 'x'));
    LgMapFile::unmap(place, UNIT);
}

TEST_F(LgMapFileTest, LeavesNoNameWhenItIsRemoved)
{
    LgMapFile file;
    ASSERT_TRUE(file.create(_path) && file.extend(UNIT));
    auto* const place = static_cast<char*>(file.map(0, UNIT));
    ASSERT_NE(place, nullptr);
    file.remove();
    // Windows keeps the name until the memory is no longer used.
    EXPECT_EQ(fs::exists(_path), support::onWindows);
    std::strcpy(place, "usable");
    EXPECT_STREQ(place, "usable");
    LgMapFile::unmap(place, UNIT);
}

TEST_F(LgMapFileTest, OfAProcessThatLivesIsInUse)
{
    // The child opens what this process has made.
    LgMapFile file;
    ASSERT_TRUE(file.create(_path) && file.extend(UNIT));
    EXPECT_EQ(support::runProgram("logVictim", {"open", _path}).exitCode,
              static_cast<int>(Outcome::InUse));
}

TEST_F(LgMapFileTest, OfAProcessThatHasEndedCanBeOpened)
{
    // The child makes it, and ends without closing it.
    ASSERT_EQ(support::runProgram("logVictim", {"_exit", _path, "1", "1"}).exitCode, 0);
    LgLeftFile file;
    ASSERT_EQ(file.open(_path), Outcome::Opened);
    std::uint32_t number = 0;
    EXPECT_TRUE(file.read(0, &number, sizeof number));
    EXPECT_EQ(number, 1U);
    // And while it is open here, nowhere else.
    EXPECT_EQ(support::runProgram("logVictim", {"open", _path}).exitCode,
              static_cast<int>(Outcome::InUse));
}

TEST_F(LgMapFileTest, ALeftFileIsReadAndWrittenExactly)
{
    write("0123456789");
    LgLeftFile file;
    ASSERT_EQ(file.open(_path), Outcome::Opened);
    EXPECT_EQ(file.getSize(), 10U);
    char text[11] = {};
    EXPECT_TRUE(file.read(3, text, 7));
    EXPECT_STREQ(text, "3456789");
    EXPECT_FALSE(file.read(4, text, 7));
    EXPECT_FALSE(file.read(10, text, 1));
    EXPECT_FALSE(file.read(1ULL << 47, text, 1));
    EXPECT_FALSE(file.read(1ULL << 63, text, 1));
    EXPECT_FALSE(file.read(~0ULL, text, 1));
    EXPECT_TRUE(file.read(10, text, 0));
    EXPECT_TRUE(file.write(8, "AB", 2));
    EXPECT_TRUE(file.read(0, text, 10));
    EXPECT_STREQ(text, "01234567AB");
    file.remove();
    EXPECT_FALSE(fs::exists(_path));
}

TEST_F(LgMapFileTest, ALeftFileThatIsNotThereIsGone)
{
    EXPECT_EQ(open(_path), Outcome::Gone);
}

TEST_F(LgMapFileTest, ADirectoryIsRefused)
{
    EXPECT_EQ(open(_dir.path()), Outcome::Refused);
}

TEST_F(LgMapFileTest, ASymbolicLinkIsRefused)
{
    write("text");
    std::error_code error;
    fs::create_symlink(_path, _dir.file("link"), error);
    if (error) GTEST_SKIP() << "Symbolic links can't be made here: " << error.message();
    EXPECT_EQ(open(_dir.file("link")), Outcome::Refused);
    EXPECT_EQ(open(_path), Outcome::Opened);
}

TEST_F(LgMapFileTest, AFileWithASecondNameIsRefused)
{
    write("text");
    std::error_code error;
    fs::create_hard_link(_path, _dir.file("second"), error);
    if (error) GTEST_SKIP() << "Second names can't be made here: " << error.message();
    EXPECT_EQ(open(_path), Outcome::Refused);
    fs::remove(_dir.file("second"));
    EXPECT_EQ(open(_path), Outcome::Opened);
}

TEST_F(LgMapFileTest, AFileThatOthersCanReadOrChangeIsRefused)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no modes of files.";
    write("text");
    for (const fs::perms perm : {fs::perms::group_write, fs::perms::group_read,
                                 fs::perms::others_write, fs::perms::others_read})
    {
        fs::permissions(_path, fs::perms::owner_read | fs::perms::owner_write | perm);
        EXPECT_EQ(open(_path), Outcome::Refused) << static_cast<unsigned>(perm);
    }
    fs::permissions(_path, fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(open(_path), Outcome::Opened);
}

TEST_F(LgMapFileTest, AFileOfAnotherUserIsRefused)
{
    write("text");
    if (!support::giveToAnotherUser(_path))
        GTEST_SKIP() << "This user can't make another one the owner of a file.";
    EXPECT_EQ(open(_path), Outcome::Refused);
}

TEST_F(LgMapFileTest, NamesAreFoundByTheirBeginning)
{
    for (const char* const name : {"map-1", "map-2", "mop-3", "ma"})
        std::ofstream(_dir.file(name)) << name;
    const std::string separator(1, static_cast<char>(fs::path::preferred_separator));
    std::vector<std::string> names = Zu::lgNamesIn(_dir.path() + separator, "map-");
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"map-1", "map-2"}));
    EXPECT_TRUE(Zu::lgNamesIn(_dir.path() + separator, "x").empty());
    EXPECT_TRUE(Zu::lgNamesIn(_dir.file("none") + separator, "").empty());
}

TEST_F(LgMapFileTest, FactsAreThoseOfThisProcess)
{
    const std::int64_t before = Zu::lgWallClock();
    const Zu::LgProcessFacts facts = Zu::lgProcessFacts();
    EXPECT_EQ(facts._process, support::processId());
    EXPECT_EQ(facts._host, support::hostName());
    // Its beginning is a multiple of a hundredth of a second.
    constexpr std::int64_t MARGIN = 20'000'000;
    EXPECT_LE(facts._processStart, before + MARGIN);
    EXPECT_GT(facts._processStart, 0);
    EXPECT_EQ(facts._boot, Zu::lgProcessFacts()._boot);
    EXPECT_LE(before, Zu::lgWallClock());
}

TEST_F(LgMapFileTest, TheUsualDirectoryEndsWithASeparator)
{
    const std::string directory = Zu::lgMapDirectory();
    ASSERT_FALSE(directory.empty());
    EXPECT_TRUE(directory.back() == '/' || directory.back() == '\\') << directory;
    EXPECT_EQ(Zu::lgMapPrefix().substr(0, 7), "zu-log-");
}

} // namespace

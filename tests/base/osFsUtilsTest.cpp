#include "base/osFsUtils.h"

#include "base/exInternalError.h"
#include "base/exSysError.h"
#include "base/osFileEx.h"
#include "support/errorCode.h"
#include "support/fileTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace
{

using support::codeOf;
using support::onWindows;
using Zu::ExSysErrorWindows;
using Zu::OsFileEx;
using Zu::OsFileTypes;
using Zu::OsFsUtils;

const OsFileTypes::Permissions usual;

void write(const std::string& file, const std::string& text)
{
    std::ofstream(file, std::ios::binary) << text;
}

std::string read(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

unsigned int modeOf(const std::string& path)
{
    return static_cast<unsigned int>(std::filesystem::status(path).permissions());
}

// What createDir() raises an ExInternalError with; empty if it doesn't.
std::string refusalToCreate(const std::string& path)
{
    try
    {
        OsFsUtils::createDir(path.c_str(), true);
    }
    catch (const Zu::ExInternalError& ex)
    {
        return ex.getReason();
    }
    return "";
}

class OsFsUtilsTest : public testing::Test
{
protected:
    std::string file(const std::string& name) const
    {
        return _dir.file(name);
    }

private:
    support::TempDir _dir;
};

class OsFsUtilsLinkTest : public OsFsUtilsTest
{
protected:
    void SetUp() override
    {
        if (onWindows) GTEST_SKIP() << "Links are recognised on Linux only.";
    }
};

class OsFsUtilsModeTest : public OsFsUtilsTest
{
protected:
    void SetUp() override
    {
        if (onWindows) GTEST_SKIP() << "Windows has no modes and ignores permissions.";
    }
};

TEST_F(OsFsUtilsTest, AMissingPathIsAFileThatDoesNotExist)
{
    for (const std::string& path : {file("missing"), file("missing/below"), std::string()})
    {
        EXPECT_TRUE(OsFsUtils::isFile(path.c_str()));
        EXPECT_FALSE(OsFsUtils::isDirectory(path.c_str()));
        EXPECT_FALSE(OsFsUtils::fileExists(path.c_str()));
        EXPECT_FALSE(OsFsUtils::isSymLink(path.c_str()));
    }
}

TEST_F(OsFsUtilsTest, ADirectoryExistsAndIsNoFile)
{
    OsFsUtils::createDir(file("d").c_str(), false);
    EXPECT_FALSE(OsFsUtils::isFile(file("d").c_str()));
    EXPECT_TRUE(OsFsUtils::isDirectory(file("d").c_str()));
    EXPECT_TRUE(OsFsUtils::fileExists(file("d").c_str()));
    EXPECT_FALSE(OsFsUtils::isSymLink(file("d").c_str()));
}

TEST_F(OsFsUtilsTest, AFileExistsAndIsNoDirectory)
{
    write(file("f"), "text");
    EXPECT_TRUE(OsFsUtils::isFile(file("f").c_str()));
    EXPECT_FALSE(OsFsUtils::isDirectory(file("f").c_str()));
    EXPECT_TRUE(OsFsUtils::fileExists(file("f").c_str()));
    EXPECT_FALSE(OsFsUtils::isSymLink(file("f").c_str()));
}

TEST_F(OsFsUtilsTest, ADirectoryIsCreatedOnceAndTwice)
{
    for (const bool flag : {false, true})
    {
        const std::string path = file(flag ? "true" : "false");
        OsFsUtils::createDir(path.c_str(), flag);
        EXPECT_TRUE(std::filesystem::is_directory(path));
        write(path + "/kept", "text");
        EXPECT_NO_THROW(OsFsUtils::createDir(path.c_str(), flag));
        EXPECT_EQ(read(path + "/kept"), "text");
    }
}

TEST_F(OsFsUtilsTest, MissingParentsAreNeverCreated)
{
    for (const bool flag : {false, true})
    {
        EXPECT_THROW(OsFsUtils::createDir(file("a/b").c_str(), flag), ExSysErrorWindows);
        EXPECT_FALSE(std::filesystem::exists(file("a")));
    }
}

TEST_F(OsFsUtilsTest, ADirectoryDoesNotTakeThePlaceOfAFile)
{
    write(file("f"), "text");
    EXPECT_EQ(refusalToCreate(file("f")), "A regular file with the same path name exists.");
    EXPECT_EQ(read(file("f")), "text");
}

TEST_F(OsFsUtilsTest, ADirectoryNeedsAName)
{
    EXPECT_THROW(OsFsUtils::createDir("", true), ExSysErrorWindows);
}

TEST_F(OsFsUtilsTest, AnEmptyDirectoryIsRemoved)
{
    std::filesystem::create_directory(file("d"));
    OsFsUtils::removeDir(file("d").c_str());
    EXPECT_FALSE(std::filesystem::exists(file("d")));
}

TEST_F(OsFsUtilsTest, WhatIsNoEmptyDirectoryIsNotRemovedAsOne)
{
    EXPECT_THROW(OsFsUtils::removeDir(file("missing").c_str()), ExSysErrorWindows);
    write(file("f"), "text");
    EXPECT_THROW(OsFsUtils::removeDir(file("f").c_str()), ExSysErrorWindows);
    EXPECT_EQ(read(file("f")), "text");
    std::filesystem::create_directory(file("d"));
    write(file("d/f"), "text");
    EXPECT_THROW(OsFsUtils::removeDir(file("d").c_str()), ExSysErrorWindows);
    EXPECT_EQ(read(file("d/f")), "text");
}

TEST_F(OsFsUtilsTest, AFileIsCreatedEmpty)
{
    for (const bool exclusive : {false, true})
    {
        const std::string path = file(exclusive ? "exclusive" : "shared");
        OsFsUtils::createFile(path.c_str(), usual, exclusive);
        EXPECT_TRUE(std::filesystem::is_regular_file(path));
        EXPECT_EQ(std::filesystem::file_size(path), 0U);
    }
}

TEST_F(OsFsUtilsTest, AnExistingFileIsEmptied)
{
    write(file("f"), "text");
    OsFsUtils::createFile(file("f").c_str(), usual, false);
    EXPECT_EQ(std::filesystem::file_size(file("f")), 0U);
}

TEST_F(OsFsUtilsTest, ExclusiveCreationRefusesAnExistingFile)
{
    write(file("f"), "text");
    EXPECT_THROW(OsFsUtils::createFile(file("f").c_str(), usual, true), OsFileEx::ExFileExists);
    EXPECT_EQ(read(file("f")), "text");
}

TEST_F(OsFsUtilsTest, AFileNeedsAName)
{
    for (const bool exclusive : {false, true})
    {
        EXPECT_THROW(OsFsUtils::createFile(nullptr, usual, exclusive), OsFileEx::ExNullFilePath);
        EXPECT_THROW(OsFsUtils::createFile("", usual, exclusive), OsFileEx::ExNullFilePath);
    }
}

TEST_F(OsFsUtilsTest, AFileThatCanNotBeCreatedRaises)
{
    for (const bool exclusive : {false, true})
        EXPECT_THROW(OsFsUtils::createFile(file("no/f").c_str(), usual, exclusive),
                     ExSysErrorWindows);
    std::filesystem::create_directory(file("d"));
    EXPECT_THROW(OsFsUtils::createFile(file("d").c_str(), usual, false), ExSysErrorWindows);
}

TEST_F(OsFsUtilsTest, ACreatedFileIsNotKeptOpen)
{
    OsFsUtils::createFile(file("f").c_str(), usual, true);
    // An open file could not be renamed on Windows.
    std::filesystem::rename(file("f"), file("g"));
    EXPECT_TRUE(std::filesystem::exists(file("g")));
}

TEST_F(OsFsUtilsTest, AFileIsDeleted)
{
    write(file("f"), "text");
    OsFsUtils::deleteFile(file("f").c_str());
    EXPECT_FALSE(std::filesystem::exists(file("f")));
}

TEST_F(OsFsUtilsTest, DeletingAMissingFileIsNoFailure)
{
    EXPECT_NO_THROW(OsFsUtils::deleteFile(file("missing").c_str()));
}

TEST_F(OsFsUtilsTest, AMissingDirectoryOnTheWayToAFileIsAFailureOnWindowsOnly)
{
    // Linux has one code for both, and it means a missing file.
    if (onWindows)
    {
        EXPECT_THROW(OsFsUtils::deleteFile(file("no/f").c_str()), ExSysErrorWindows);
    }
    else
    {
        EXPECT_NO_THROW(OsFsUtils::deleteFile(file("no/f").c_str()));
    }
}

TEST_F(OsFsUtilsTest, ADirectoryIsNotDeletedAsAFile)
{
    std::filesystem::create_directory(file("d"));
    EXPECT_THROW(OsFsUtils::deleteFile(file("d").c_str()), ExSysErrorWindows);
    EXPECT_TRUE(std::filesystem::exists(file("d")));
}

TEST_F(OsFsUtilsLinkTest, ALinkIsRecognisedWhereverItLeads)
{
    write(file("f"), "text");
    std::filesystem::create_directory(file("d"));
    std::filesystem::create_symlink(file("f"), file("toFile"));
    std::filesystem::create_symlink(file("d"), file("toDir"));
    std::filesystem::create_symlink(file("missing"), file("dangling"));
    for (const char* const link : {"toFile", "toDir", "dangling"})
        EXPECT_TRUE(OsFsUtils::isSymLink(file(link).c_str())) << link;
}

TEST_F(OsFsUtilsLinkTest, TheOtherQuestionsFollowLinks)
{
    write(file("f"), "text");
    std::filesystem::create_directory(file("d"));
    std::filesystem::create_symlink(file("f"), file("toFile"));
    std::filesystem::create_symlink(file("d"), file("toDir"));
    std::filesystem::create_symlink(file("missing"), file("dangling"));
    EXPECT_TRUE(OsFsUtils::isFile(file("toFile").c_str()));
    EXPECT_TRUE(OsFsUtils::fileExists(file("toFile").c_str()));
    EXPECT_TRUE(OsFsUtils::isDirectory(file("toDir").c_str()));
    EXPECT_FALSE(OsFsUtils::isFile(file("toDir").c_str()));
    EXPECT_FALSE(OsFsUtils::fileExists(file("dangling").c_str()));
    EXPECT_FALSE(OsFsUtils::isDirectory(file("dangling").c_str()));
    EXPECT_TRUE(OsFsUtils::isFile(file("dangling").c_str()));
}

TEST_F(OsFsUtilsLinkTest, DeletingALinkLeavesWhatItLeadsTo)
{
    write(file("f"), "text");
    std::filesystem::create_directory(file("d"));
    std::filesystem::create_symlink(file("f"), file("toFile"));
    std::filesystem::create_symlink(file("d"), file("toDir"));
    std::filesystem::create_symlink(file("missing"), file("dangling"));
    for (const char* const link : {"toFile", "toDir", "dangling"})
    {
        OsFsUtils::deleteFile(file(link).c_str());
        EXPECT_FALSE(std::filesystem::is_symlink(file(link))) << link;
    }
    EXPECT_EQ(read(file("f")), "text");
    EXPECT_TRUE(std::filesystem::is_directory(file("d")));
}

TEST_F(OsFsUtilsLinkTest, RemovingADirectoryDoesNotFollowALink)
{
    std::filesystem::create_directory(file("d"));
    std::filesystem::create_symlink(file("d"), file("toDir"));
    EXPECT_THROW(OsFsUtils::removeDir(file("toDir").c_str()), ExSysErrorWindows);
    EXPECT_TRUE(std::filesystem::is_directory(file("d")));
    EXPECT_TRUE(std::filesystem::is_symlink(file("toDir")));
}

TEST_F(OsFsUtilsLinkTest, ALinkInThePlaceOfADirectoryCountsAsWhatItLeadsTo)
{
    write(file("f"), "text");
    std::filesystem::create_directory(file("d"));
    std::filesystem::create_symlink(file("f"), file("toFile"));
    std::filesystem::create_symlink(file("d"), file("toDir"));
    std::filesystem::create_symlink(file("missing"), file("dangling"));
    EXPECT_NO_THROW(OsFsUtils::createDir(file("toDir").c_str(), true));
    EXPECT_EQ(refusalToCreate(file("toFile")), "A regular file with the same path name exists.");
    EXPECT_THROW(OsFsUtils::createDir(file("dangling").c_str(), true), ExSysErrorWindows);
    EXPECT_FALSE(std::filesystem::exists(file("missing")));
}

TEST_F(OsFsUtilsModeTest, PermissionsAreApplied)
{
    const support::ModeMaskGuard mask(0);
    OsFsUtils::createFile(file("usual").c_str(), usual, false);
    EXPECT_EQ(modeOf(file("usual")), 0644U);
    OsFsUtils::createFile(file("mixed").c_str(), OsFileTypes::Permissions(7, 5, 4), true);
    EXPECT_EQ(modeOf(file("mixed")), 0751U);
    OsFsUtils::createFile(file("none").c_str(), OsFileTypes::Permissions(0, 0, 0), false);
    EXPECT_EQ(modeOf(file("none")), 0U);
    OsFsUtils::createFile(file("all").c_str(), OsFileTypes::Permissions(7, 7, 7), true);
    EXPECT_EQ(modeOf(file("all")), 0777U);
}

TEST_F(OsFsUtilsModeTest, TheMaskOfTheProcessTakesModesAway)
{
    const support::ModeMaskGuard mask(0027);
    OsFsUtils::createFile(file("f").c_str(), OsFileTypes::Permissions(7, 7, 7), true);
    EXPECT_EQ(modeOf(file("f")), 0750U);
    OsFsUtils::createDir(file("d").c_str(), true);
    EXPECT_EQ(modeOf(file("d")), 0750U);
}

TEST_F(OsFsUtilsModeTest, ADirectoryHasAllModes)
{
    const support::ModeMaskGuard mask(0);
    OsFsUtils::createDir(file("d").c_str(), false);
    EXPECT_EQ(modeOf(file("d")), 0777U);
}

TEST(OsFileTypes, PermissionsLetTheOwnerReadAndWriteAndTheOthersReadUnlessTold)
{
    EXPECT_EQ(usual.getUserMode(), 3);
    EXPECT_EQ(usual.getGroupMode(), 1);
    EXPECT_EQ(usual.getOtherMode(), 1);
    EXPECT_EQ(OsFileTypes::Permissions(7).getUserMode(), 7);
    EXPECT_EQ(OsFileTypes::Permissions(7).getGroupMode(), 1);
    const OsFileTypes::Permissions given(4, 2, 6);
    EXPECT_EQ(given.getUserMode(), 4);
    EXPECT_EQ(given.getGroupMode(), 2);
    EXPECT_EQ(given.getOtherMode(), 6);
}

TEST(OsFileTypes, AccessBitsHaveFixedValues)
{
    EXPECT_EQ(OsFileTypes::AccessRead, 1);
    EXPECT_EQ(OsFileTypes::AccessWrite, 2);
    EXPECT_EQ(OsFileTypes::AccessExecute, 4);
}

TEST_F(OsFsUtilsTest, FailuresCarryTheCodeOfTheSystem)
{
    const std::string deep = file("missing/x");
    const std::string full = file("full");
    OsFsUtils::createDir(full.c_str(), false);
    std::ofstream(file("full/inside")) << "x";
    // No such file or directory; Windows distinguishes a missing directory on the way from that.
    const int missing = 2;
    const int missingOnTheWay = onWindows ? 3 : 2;
    const int notEmpty = onWindows ? 145 : 39;
    EXPECT_EQ(codeOf([&] { OsFsUtils::createDir(deep.c_str(), true); }), missingOnTheWay);
    EXPECT_EQ(codeOf([&] { OsFsUtils::removeDir(file("missing").c_str()); }), missing);
    EXPECT_EQ(codeOf([&] { OsFsUtils::removeDir(full.c_str()); }), notEmpty);
    EXPECT_EQ(codeOf([&] { OsFsUtils::createFile(deep.c_str(), {}, true); }), missingOnTheWay);
    EXPECT_EQ(codeOf([&] { OsFsUtils::createFile(deep.c_str(), {}, false); }), missingOnTheWay);
}

TEST_F(OsFsUtilsTest, NullIsANameThatLeadsNowhere)
{
    for (const char* const name : {static_cast<const char*>(nullptr), ""})
    {
        EXPECT_NE(codeOf([=] { OsFsUtils::createDir(name, false); }), 0);
        EXPECT_NE(codeOf([=] { OsFsUtils::removeDir(name); }), 0);
        EXPECT_NE(codeOf([=] { OsFsUtils::deleteFile(name); }), 0);
        EXPECT_FALSE(OsFsUtils::fileExists(name));
        EXPECT_FALSE(OsFsUtils::isDirectory(name));
        EXPECT_FALSE(OsFsUtils::isSymLink(name));
        EXPECT_TRUE(OsFsUtils::isFile(name));
    }
}

} // namespace

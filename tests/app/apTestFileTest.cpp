#include "app/apTestFile.h"

#include "support/fileTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace
{

using support::TempDir;
using Zu::ApTestFile;

TEST(ApTestFile, MakesAFile)
{
    const TempDir directory;
    const std::string path = directory.file("report.xml");
    ApTestFile file(path);
    ASSERT_TRUE(file.isOpen());
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_TRUE(file.write("new\n"));
    EXPECT_EQ(support::readFile(path), "new\n");
    EXPECT_FALSE(std::filesystem::exists(path + ".new"));
}

TEST(ApTestFile, TakesThePlaceOfAnOlderOneAtItsEnd)
{
    const TempDir directory;
    const std::string path = directory.file("report.xml");
    support::writeFile(path, "a much longer old text\n");
    ApTestFile file(path);
    EXPECT_EQ(support::readFile(path), "a much longer old text\n");
    EXPECT_TRUE(file.write("new\n"));
    EXPECT_EQ(support::readFile(path), "new\n");
}

TEST(ApTestFile, WithoutATextAllStaysAsItWas)
{
    const TempDir directory;
    const std::string path = directory.file("report.xml");
    support::writeFile(path, "old");
    {
        const ApTestFile file(path);
        EXPECT_TRUE(file.isOpen());
        EXPECT_TRUE(std::filesystem::exists(path + ".new"));
    }
    EXPECT_EQ(support::readFile(path), "old");
    EXPECT_FALSE(std::filesystem::exists(path + ".new"));
}

TEST(ApTestFile, APlaceThatCannotBeWrittenToIsKnownAtOnce)
{
    const TempDir directory;
    EXPECT_FALSE(ApTestFile(directory.file("missing/report.xml")).isOpen());
    EXPECT_FALSE(ApTestFile(directory.path()).isOpen());
}

TEST(ApTestFile, ALinkStaysAndWhatItLeadsToIsWritten)
{
    if (support::onWindows) GTEST_SKIP() << "links are not made there without a right";
    const TempDir directory;
    const std::string target = directory.file("target");
    const std::string link = directory.file("link");
    support::writeFile(target, "a much longer old text\n");
    std::filesystem::create_symlink(target, link);
    EXPECT_TRUE(ApTestFile(link).write("new\n"));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(support::readFile(target), "new\n");
}

TEST(ApTestFile, ADeviceIsWrittenItself)
{
    if (support::onWindows) GTEST_SKIP() << "devices have no names in directories there";
    EXPECT_TRUE(ApTestFile("/dev/null").write("new\n"));
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    EXPECT_FALSE(ApTestFile("/dev/full").write("new\n"));
}

TEST(ApTestFile, WhatCannotTakeItsPlaceIsRemoved)
{
    const TempDir directory;
    const std::string path = directory.file("report.xml");
    ApTestFile file(path);
    // A directory that is not empty can't be replaced.
    std::filesystem::create_directories(path + "/inside");
    EXPECT_FALSE(file.write("new\n"));
    EXPECT_FALSE(std::filesystem::exists(path + ".new"));
}

} // namespace

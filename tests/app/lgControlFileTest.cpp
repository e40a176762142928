#include "app/lgControlFile.h"

#include "app/lgMapFile.h"

#include "app/controlled.h"
#include "stress/hardEnd.h"
#include "support/fileTest.h"
#include "support/tempDir.h"

#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <system_error>

namespace
{

using Outcome = Zu::LgControlPeer::Outcome;
namespace LgControl = Zu::LgControl;

TEST(LgControlFile, IsZerosAtFirstAndIsRemovedAtTheEnd)
{
    const support::TempDir dir;
    const std::string path = dir.file("control");
    {
        Zu::LgControlFile file;
        ASSERT_TRUE(file.create(path)) << file.getError();
        EXPECT_EQ(std::filesystem::file_size(path), LgControl::SIZE);
        const LgControl::Header zeros{};
        EXPECT_EQ(std::memcmp(file.header(), &zeros, sizeof zeros), 0);
        EXPECT_EQ(file.request()[LgControl::MOST_REQUEST - 1], '\0');
        char* const room = file.roomForAnswer(LgControl::MOST_ANSWER);
        ASSERT_NE(room, nullptr);
        room[LgControl::MOST_ANSWER - 1] = 'x';
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(LgControlFile, AFileThatIsThereIsNotUsed)
{
    const support::TempDir dir;
    support::writeFile(dir.file("control"), "mine");
    {
        Zu::LgControlFile file;
        EXPECT_FALSE(file.create(dir.file("control")));
        EXPECT_NE(file.getError(), "");
        EXPECT_EQ(file.header(), nullptr);
    }
    EXPECT_EQ(support::readFile(dir.file("control")), "mine");
}

TEST(LgControlFile, AFileThatMayNotGetSoLongIsRefused)
{
    if (std::filesystem::path::preferred_separator == '\\')
        GTEST_SKIP() << "Windows has no limit to the size of a file";
    const support::TempDir dir;
    const stress::ResourceLimit limit(stress::Resource::FILE_SIZE, LgControl::SIZE - 1);
    Zu::LgControlFile file;
    EXPECT_FALSE(file.create(dir.file("control")));
    EXPECT_EQ(file.getError(), "File too large");
}

TEST(LgControlFile, OnlyItsUserCanOpenIt)
{
    const support::TempDir dir;
    Zu::LgControlFile file;
    ASSERT_TRUE(file.create(dir.file("control")));
    const auto permissions = std::filesystem::status(dir.file("control")).permissions();
    if (std::filesystem::path::preferred_separator == '\\')
        GTEST_SKIP() << "on Windows the directory for temporary files is the user's own";
    EXPECT_EQ(permissions,
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST(LgControlPeer, OpensTheFileOfARunningProcess)
{
    const app::Controlled process;
    const std::string path = process.waitForFile();
    Zu::LgControlPeer peer;
    ASSERT_EQ(peer.open(path), Outcome::Opened);
    EXPECT_TRUE(peer.isAlive());
    EXPECT_TRUE(peer.claim());
    peer.release();
    EXPECT_TRUE(peer.claim());
    char magic[8];
    ASSERT_TRUE(peer.read(0, magic, sizeof magic));
    EXPECT_EQ(std::string(magic, sizeof magic), "ZULOGCTL");
    EXPECT_FALSE(peer.read(LgControl::SIZE - 4, magic, sizeof magic));
    EXPECT_TRUE(peer.write(LgControl::ANSWER_AT - 8, "response", 8));
    EXPECT_TRUE(peer.read(LgControl::ANSWER_AT - 8, magic, 8));
    EXPECT_EQ(std::string(magic, 8), "response");
}

TEST(LgControlPeer, SeesTheEndOfAProcess)
{
    app::Controlled process;
    const std::string path = process.waitForFile();
    Zu::LgControlPeer peer;
    ASSERT_EQ(peer.open(path), Outcome::Opened);
    process.end("kill");
    EXPECT_FALSE(peer.isAlive());
}

TEST(LgControlPeer, WhatIsNotThereIsGone)
{
    const support::TempDir dir;
    Zu::LgControlPeer peer;
    EXPECT_EQ(peer.open(dir.file("control")), Outcome::Gone);
}

TEST(LgControlPeer, AFileThatNobodyHoldsWasLeft)
{
    const support::TempDir dir;
    const std::string path = dir.file("control");
    support::writeFile(path, "left");
    std::filesystem::permissions(path, std::filesystem::perms::owner_read |
                                           std::filesystem::perms::owner_write);
    {
        Zu::LgControlPeer peer;
        EXPECT_EQ(peer.open(path), Outcome::Left);
    }
    Zu::LgControlPeer::remove(path);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(LgControlPeer, RefusesWhatOthersMayChangeAndWhatIsNoPlainFile)
{
    const support::TempDir dir;
    std::filesystem::create_directory(dir.file("directory"));
    Zu::LgControlPeer peer;
    EXPECT_EQ(peer.open(dir.file("directory")), Outcome::Refused);
    support::writeFile(dir.file("file"), "left");
    std::error_code error;
    std::filesystem::create_hard_link(dir.file("file"), dir.file("second"), error);
    if (error) GTEST_SKIP() << "the system refuses a second name: " << error.message();
    Zu::LgControlPeer other;
    EXPECT_EQ(other.open(dir.file("file")), Outcome::Refused);
    std::filesystem::remove(dir.file("second"));
    if (std::filesystem::path::preferred_separator == '\\')
        GTEST_SKIP() << "on Windows, files have no modes, and links take a right";
    std::filesystem::permissions(dir.file("file"), std::filesystem::perms(0660));
    Zu::LgControlPeer third;
    EXPECT_EQ(third.open(dir.file("file")), Outcome::Refused);
    std::filesystem::permissions(dir.file("file"), std::filesystem::perms(0600));
    std::filesystem::create_symlink(dir.file("file"), dir.file("link"));
    Zu::LgControlPeer fourth;
    EXPECT_EQ(fourth.open(dir.file("link")), Outcome::Refused);
}

TEST(LgControlFile, TheProgramKnowsItsFile)
{
    EXPECT_TRUE(
        std::filesystem::equivalent(Zu::lgProgramPath(), support::programPath("appInternalTest")));
}

} // namespace

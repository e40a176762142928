#include "zulog/zlAsker.h"

#include "app/controlled.h"
#include "support/childProcess.h"
#include "support/fileTest.h"
#include "support/tempDir.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using app::Controlled;
using Zu::ZlAsker;
namespace LgControl = Zu::LgControl;

constexpr std::chrono::minutes PATIENCE{2};

TEST(ZlAsker, AsksARunningProcess)
{
    const Controlled process;
    ZlAsker asker(process.waitForFile());
    ASSERT_EQ(asker.getState(), ZlAsker::State::Ready) << asker.getReason();
    EXPECT_NE(asker.getProcess(), 0U);
    EXPECT_GE(asker.getServiceStart(), asker.getProcessStart());
    EXPECT_TRUE(
        std::filesystem::equivalent(asker.getProgram(), support::programPath("controlVictim")));
    std::string answer;
    for (int i = 0; i < 3; ++i)
    {
        ASSERT_TRUE(asker.ask("status\n", PATIENCE, answer)) << asker.getReason();
        EXPECT_EQ(answer.rfind("{\"process\":" + std::to_string(asker.getProcess()) + ",", 0), 0U)
            << answer;
    }
}

TEST(ZlAsker, SeveralMayAskOneAfterTheOther)
{
    const Controlled process;
    const std::string path = process.waitForFile();
    std::string answer;
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(ZlAsker(path).ask("status\n", PATIENCE, answer));
}

TEST(ZlAsker, AProcessThatDoesNotAnswerIsNotWaitedForForever)
{
    const Controlled process({}, {""});
    ZlAsker asker(process.waitForFile());
    std::string answer;
    EXPECT_FALSE(asker.ask("status\n", std::chrono::milliseconds(20), answer));
    EXPECT_EQ(asker.getReason(), "it does not answer");
}

TEST(ZlAsker, AnEndBeforeTheAnswerIsReported)
{
    Controlled process({}, {""});
    ZlAsker asker(process.waitForFile());
    process.end("stop");
    std::string answer;
    EXPECT_FALSE(asker.ask("status\n", PATIENCE, answer));
    EXPECT_EQ(asker.getReason(), "it has ended");
}

TEST(ZlAsker, ARequestThatIsTooLongIsRefused)
{
    const Controlled process;
    ZlAsker asker(process.waitForFile());
    std::string answer;
    EXPECT_FALSE(asker.ask(std::string(LgControl::MOST_REQUEST + 1, 'x'), PATIENCE, answer));
    EXPECT_EQ(asker.getReason(), "its control file can't be written");
}

TEST(ZlAsker, ANewerVersionIsRefused)
{
    const Controlled process({}, {""});
    const std::string path = process.waitForFile();
    Zu::LgControlPeer peer;
    ASSERT_EQ(peer.open(path), Zu::LgControlPeer::Outcome::Opened);
    const std::uint32_t version = LgControl::VERSION + 1;
    ASSERT_TRUE(peer.write(offsetof(LgControl::Header, _version), &version, sizeof version));
    const ZlAsker asker(path);
    EXPECT_EQ(asker.getState(), ZlAsker::State::Refused);
    EXPECT_EQ(asker.getReason(), "it is of another version than this program");
    ASSERT_TRUE(peer.write(0, "zu", 2));
    EXPECT_EQ(ZlAsker(path).getReason(), "it is not a control file");
}

TEST(ZlAsker, WhatNobodyHoldsWasLeftOrIsGone)
{
    const support::TempDir dir;
    const std::string path = dir.file("control");
    EXPECT_EQ(ZlAsker(path).getState(), ZlAsker::State::Gone);
    support::writeFile(path, "left");
    std::filesystem::permissions(path, std::filesystem::perms(0600));
    EXPECT_EQ(ZlAsker(path).getState(), ZlAsker::State::Left);
    std::filesystem::create_directory(dir.file("directory"));
    const ZlAsker refused(dir.file("directory"));
    EXPECT_EQ(refused.getState(), ZlAsker::State::Refused);
    EXPECT_EQ(refused.getReason(),
              "it can't be opened as a plain file that only this user can change");
}

TEST(ZlAsker, FilesAreFoundByTheirNames)
{
    const support::TempDir dir;
    const std::string prefix = Zu::LgControlFile::prefix();
    for (const std::string& name : {prefix + "20-1", prefix + "10-2", std::string("zu-log-0-1")})
        support::writeFile(dir.file(name), "");
    const std::string directory = dir.path() + "/";
    EXPECT_EQ(Zu::zlFindControlFiles(directory),
              (std::vector<std::string>{directory + prefix + "10-2", directory + prefix + "20-1"}));
    EXPECT_TRUE(Zu::zlFindControlFiles(dir.file("missing") + "/").empty());
}

} // namespace

#include "base/osOutputFile.h"

#include "support/fileTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace
{

constexpr std::uint32_t ME = 1000;
constexpr std::uint32_t SYSTEM = 0;
constexpr std::uint32_t OTHER = 1001;

TEST(OsOutputFile, APlaceIsSharedWhereOthersMayWriteOrAnotherUserRules)
{
    struct Row
    {
        std::uint32_t _owner;
        std::uint32_t _mode;
        bool _expected;
    };
    for (const auto& [owner, mode, expected] : {
             Row{ME, 0700, false},
             Row{ME, 0755, false},
             // The group is one that the user has chosen; the system's is not.
             Row{ME, 0775, false},
             Row{SYSTEM, 0775, true},
             Row{SYSTEM, 0720, true},
             Row{ME, 0777, true},
             Row{ME, 0702, true},
             Row{SYSTEM, 0755, false},
             Row{SYSTEM, 01777, true},
             Row{OTHER, 0755, true},
             Row{OTHER, 0700, true},
         })
        EXPECT_EQ(Zu::osIsSharedPlace({owner, mode, 2}, ME), expected)
            << owner << ' ' << std::oct << mode;
    EXPECT_TRUE(Zu::osIsSharedPlace({OTHER, 0755, 2}, SYSTEM));
    EXPECT_FALSE(Zu::osIsSharedPlace({SYSTEM, 0755, 2}, SYSTEM));
    EXPECT_TRUE(Zu::osIsSharedPlace({SYSTEM, 0775, 2}, SYSTEM));
}

TEST(OsOutputFile, LinksOfOnesOwnAndOfTheSystemAreTrusted)
{
    EXPECT_TRUE(Zu::osIsTrustedLink({ME, 0777, 1}, ME));
    EXPECT_TRUE(Zu::osIsTrustedLink({SYSTEM, 0777, 1}, ME));
    EXPECT_FALSE(Zu::osIsTrustedLink({OTHER, 0777, 1}, ME));
    EXPECT_FALSE(Zu::osIsTrustedLink({OTHER, 0777, 1}, SYSTEM));
}

TEST(OsOutputFile, WhatStandsThereIsOnesOwnWithoutASecondName)
{
    EXPECT_TRUE(Zu::osIsOwnOutput({ME, 0600, 1}, ME));
    EXPECT_TRUE(Zu::osIsOwnOutput({ME, 0666, 1}, ME));
    EXPECT_FALSE(Zu::osIsOwnOutput({ME, 0600, 2}, ME));
    EXPECT_FALSE(Zu::osIsOwnOutput({OTHER, 0666, 1}, ME));
    EXPECT_FALSE(Zu::osIsOwnOutput({SYSTEM, 0666, 1}, ME));
}

// Writes a line to the file; whether it was opened.
bool writes(const std::string& name, bool appends)
{
    std::ofstream stream;
    Zu::osOpenOutput(stream, name.c_str(), appends);
    stream << "line\n";
    stream.close();
    return !stream.fail();
}

class OsOutputFileTest : public testing::Test
{
protected:
    std::string file(const std::string& name) const
    {
        return _directory.file(name);
    }

    support::TempDir _directory;
};

// The same in a directory that all may write to. Windows has no such modes.
class OsOutputFileSharedTest : public OsOutputFileTest
{
protected:
    void SetUp() override
    {
        if (support::onWindows) GTEST_SKIP() << "Windows has no modes, and its place is private.";
        std::filesystem::permissions(_directory.path(), std::filesystem::perms{01777});
    }
};

TEST_F(OsOutputFileTest, TextIsWrittenAsItIsAndAppendedOnDemand)
{
    EXPECT_TRUE(writes(file("f"), false));
    EXPECT_EQ(support::readFile(file("f")), "line\n");
    EXPECT_TRUE(writes(file("f"), true));
    EXPECT_EQ(support::readFile(file("f")), "line\nline\n");
    EXPECT_TRUE(writes(file("f"), false));
    EXPECT_EQ(support::readFile(file("f")), "line\n");
}

TEST_F(OsOutputFileTest, WhatCanNotBeOpenedFailsTheStream)
{
    for (const std::string& name : {std::string(), _directory.path(), file("no/f")})
        EXPECT_FALSE(writes(name, false)) << name;
}

TEST_F(OsOutputFileTest, NothingStaysOpen)
{
    writes(file("f"), false);
    const auto before = support::openHandles();
    for (const std::string& name : {file("f"), file("no/f"), _directory.path()})
        writes(name, false);
    EXPECT_EQ(support::openHandles(), before);
}

TEST_F(OsOutputFileSharedTest, NothingStaysOpen)
{
    support::writeFile(file("target"), "old");
    std::filesystem::create_hard_link(file("target"), file("second"));
    std::filesystem::create_symlink(file("target"), file("link"));
    writes(file("f"), false);
    const auto before = support::openHandles();
    for (const std::string& name :
         {file("f"), file("new"), file("second"), file("link"), file("no/f"), _directory.path()})
        writes(name, false);
    EXPECT_EQ(support::openHandles(), before);
}

// Output that the system refuses is lost at once, and not written when the file is closed.
TEST_F(OsOutputFileTest, NothingIsKeptForLater)
{
    std::ofstream stream;
    Zu::osOpenOutput(stream, file("f").c_str(), false);
    for (const char* const text : {"a", "line\n", "", "b"}) stream << text;
    EXPECT_EQ(support::readFile(file("f")), "aline\nb");
}

TEST_F(OsOutputFileTest, AStreamThatWasOpenTakesTheNewFile)
{
    std::ofstream stream(file("former"));
    stream << "former";
    stream.setstate(std::ios::failbit);
    Zu::osOpenOutput(stream, file("f").c_str(), false);
    stream << "line\n" << std::flush;
    EXPECT_EQ(support::readFile(file("f")), "line\n");
    EXPECT_EQ(support::readFile(file("former")), "former");
}

TEST_F(OsOutputFileTest, WhoAppendsDoesSoBehindWhatOthersHaveWritten)
{
    std::ofstream streams[2];
    for (std::ofstream& stream : streams) Zu::osOpenOutput(stream, file("f").c_str(), true);
    for (const char* const text : {"a", "b"})
        for (std::ofstream& stream : streams) stream << text;
    EXPECT_EQ(support::readFile(file("f")), "aabb");
}

TEST_F(OsOutputFileTest, ProgramsThatAreStartedDoNotInheritTheFile)
{
    if (support::onWindows) GTEST_SKIP() << "No command there lists the handles of a process.";
    const auto isInherited = [](const std::string& name)
    { return std::system(("ls -l /proc/self/fd | grep -qF '" + name + "'").c_str()) == 0; };
    std::ofstream streams[2];
    std::filesystem::create_directory(file("shared"));
    std::filesystem::permissions(file("shared"), std::filesystem::perms{01777});
    for (const char* const name : {"f", "shared/f"})
    {
        const std::ofstream plain(file(name));
        EXPECT_TRUE(isInherited(file(name)));
    }
    Zu::osOpenOutput(streams[0], file("f").c_str(), false);
    Zu::osOpenOutput(streams[1], file("shared/f").c_str(), false);
    EXPECT_TRUE(streams[0].is_open() && streams[1].is_open());
    EXPECT_FALSE(isInherited(file("f")));
    EXPECT_FALSE(isInherited(file("shared/f")));
}

TEST_F(OsOutputFileTest, SlashesInFrontOfTheNameMayBeMany)
{
    std::filesystem::create_directory(file("d"));
    EXPECT_TRUE(writes(file("d") + "///f", false));
    EXPECT_EQ(support::readFile(file("d/f")), "line\n");
    EXPECT_FALSE(writes(file("d") + "/", false));
}

TEST_F(OsOutputFileTest, ALinkOfAnotherUserToADirectoryIsRefused)
{
    if (support::onWindows) GTEST_SKIP() << "Making links takes a right there.";
    std::filesystem::create_directory(file("d"));
    support::writeFile(file("d/f"), "old");
    std::filesystem::create_directory_symlink(file("d"), file("link"));
    EXPECT_TRUE(writes(file("link/g"), false));
    if (!support::giveToAnotherUser(file("link"))) GTEST_SKIP() << "That takes the system's user.";
    for (const char* const name : {"link/f", "link//f"})
    {
        EXPECT_FALSE(writes(file(name), false)) << name;
        EXPECT_FALSE(writes(file(name), true)) << name;
    }
    EXPECT_EQ(support::readFile(file("d/f")), "old");
    EXPECT_TRUE(writes(file("d/f"), false));
}

TEST_F(OsOutputFileTest, InAPrivatePlaceLinksAreFollowed)
{
    if (support::onWindows) GTEST_SKIP() << "Making links takes a right there.";
    support::writeFile(file("target"), "old");
    std::filesystem::create_symlink(file("target"), file("link"));
    EXPECT_TRUE(writes(file("link"), false));
    EXPECT_EQ(support::readFile(file("target")), "line\n");
}

TEST_F(OsOutputFileSharedTest, ANewFileIsReadableByItsOwnerAlone)
{
    EXPECT_TRUE(writes(file("f"), false));
    EXPECT_EQ(support::modeOf(file("f")), 0600U);
    EXPECT_EQ(support::readFile(file("f")), "line\n");
}

TEST_F(OsOutputFileSharedTest, AFileOfOnesOwnIsTakenAsItIs)
{
    support::writeFile(file("f"), "old\n");
    EXPECT_TRUE(writes(file("f"), true));
    EXPECT_EQ(support::readFile(file("f")), "old\nline\n");
    EXPECT_TRUE(writes(file("f"), false));
    EXPECT_EQ(support::readFile(file("f")), "line\n");
}

TEST_F(OsOutputFileSharedTest, ALinkOfOnesOwnIsFollowed)
{
    support::writeFile(file("target"), "old");
    std::filesystem::create_symlink(file("target"), file("link"));
    EXPECT_TRUE(writes(file("link"), false));
    EXPECT_EQ(support::readFile(file("target")), "line\n");
}

TEST_F(OsOutputFileSharedTest, ASecondNameOfAFileIsRefused)
{
    support::writeFile(file("target"), "old");
    std::filesystem::create_hard_link(file("target"), file("f"));
    EXPECT_FALSE(writes(file("f"), false));
    EXPECT_FALSE(writes(file("f"), true));
    EXPECT_EQ(support::readFile(file("target")), "old");
}

TEST_F(OsOutputFileSharedTest, ASecondNameOfALinkIsRefused)
{
    support::writeFile(file("target"), "old");
    std::filesystem::create_symlink(file("target"), file("link"));
    std::filesystem::create_hard_link(file("link"), file("f"));
    ASSERT_TRUE(std::filesystem::is_symlink(std::filesystem::symlink_status(file("f"))));
    EXPECT_FALSE(writes(file("f"), false));
    EXPECT_EQ(support::readFile(file("target")), "old");
}

TEST_F(OsOutputFileSharedTest, ALinkOfOnesOwnToNothingMakesTheFile)
{
    std::filesystem::create_symlink(file("target"), file("link"));
    EXPECT_TRUE(writes(file("link"), true));
    EXPECT_EQ(support::readFile(file("target")), "line\n");
}

TEST_F(OsOutputFileSharedTest, ALinkOfAnotherUserIsRefused)
{
    support::writeFile(file("target"), "old");
    std::filesystem::create_symlink(file("target"), file("link"));
    if (!support::giveToAnotherUser(file("link"))) GTEST_SKIP() << "That takes the system's user.";
    EXPECT_FALSE(writes(file("link"), false));
    EXPECT_FALSE(writes(file("link"), true));
    EXPECT_EQ(support::readFile(file("target")), "old");
    // Nor is a missing target made.
    std::filesystem::remove(file("target"));
    EXPECT_FALSE(writes(file("link"), false));
    EXPECT_FALSE(std::filesystem::exists(file("target")));
}

TEST_F(OsOutputFileSharedTest, AFileOfAnotherUserIsRefused)
{
    support::writeFile(file("f"), "old");
    std::filesystem::permissions(file("f"), std::filesystem::perms{0666});
    if (!support::giveToAnotherUser(file("f"))) GTEST_SKIP() << "That takes the system's user.";
    EXPECT_FALSE(writes(file("f"), false));
    EXPECT_FALSE(writes(file("f"), true));
    EXPECT_EQ(support::readFile(file("f")), "old");
}

TEST_F(OsOutputFileSharedTest, ADirectoryOfAnotherUserIsAPlaceLikeThat)
{
    std::filesystem::create_directory(file("d"));
    support::writeFile(file("target"), "old");
    std::filesystem::create_hard_link(file("target"), file("d/f"));
    if (!support::giveToAnotherUser(file("d"))) GTEST_SKIP() << "That takes the system's user.";
    EXPECT_FALSE(writes(file("d/f"), false));
    EXPECT_EQ(support::readFile(file("target")), "old");
    EXPECT_TRUE(writes(file("d/g"), false));
}

TEST_F(OsOutputFileSharedTest, NamesWithoutADirectoryStandInTheCurrentOne)
{
    const support::CurrentDirectoryGuard current(_directory.path());
    support::writeFile("target", "old");
    std::filesystem::create_hard_link("target", "f");
    EXPECT_FALSE(writes("f", false));
    EXPECT_EQ(support::readFile("target"), "old");
}

} // namespace

// What other users can do in shared places: the directory for temporary files, and the names of
// locks.

#include "base/exSysError.h"
#include "base/lgInterProcessLock.h"

#include "support/childProcess.h"
#include "support/fileTest.h"
#include "support/logTest.h"
#include "support/platform.h"
#include "support/tempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace
{

using Zu::LgInterProcessLock;

class SharedPlaces : public testing::Test
{
protected:
    void SetUp() override
    {
        if (support::onWindows)
            GTEST_SKIP() << "Windows gives each user a place and names of locks of his own.";
        std::filesystem::permissions(_directory.path(), std::filesystem::perms{01777});
    }

    // Runs a program that logs an error, with this directory as the one for temporary files.
    void log()
    {
        support::logOutputOf({"start"}, {{"TMPDIR", _directory.path()}});
    }

    support::TempDir _directory;
};

// The place of an object of this name in the memory that all processes share.
std::string objectOf(const std::string& name)
{
    return "/dev/shm/ZU-lock-" + std::to_string(support::userId()) + "-" + name;
}

// Removes what a test has put in a lock's place.
struct Placed
{
    explicit Placed(const std::string& name) : _path(objectOf(name)) {}
    Placed(const Placed&) = delete;
    Placed& operator=(const Placed&) = delete;

    ~Placed()
    {
        std::filesystem::remove(_path);
    }

    std::string _path;
};

bool canBeMade(const std::string& name)
{
    try
    {
        const std::unique_ptr<LgInterProcessLock> lock(LgInterProcessLock::create(name.c_str()));
        return true;
    }
    catch (const Zu::ExSysErrorWindows&)
    {
        return false;
    }
}

std::string uniqueName(const char* what)
{
    return what + std::to_string(support::processId());
}

TEST_F(SharedPlaces, TheLogIsReadableByItsOwnerAlone)
{
    log();
    for (const char* const name : {"events.log", "prof.log"})
        EXPECT_EQ(support::modeOf(_directory.file(name)), 0600U) << name;
}

TEST_F(SharedPlaces, TheLogDoesNotFollowALinkThatAnotherUserPutThere)
{
    const std::string target = _directory.file("target");
    support::writeFile(target, "precious");
    for (const char* const name : {"events.log", "prof.log"})
    {
        std::filesystem::create_symlink(target, _directory.file(name));
        if (!support::giveToAnotherUser(_directory.file(name)))
            GTEST_SKIP() << "That takes the system's user.";
    }
    log();
    EXPECT_EQ(support::readFile(target), "precious");
}

TEST_F(SharedPlaces, ALockIsItsUsersAlone)
{
    const std::string name = uniqueName("own");
    const std::unique_ptr<LgInterProcessLock> lock(LgInterProcessLock::create(name.c_str()));
    EXPECT_EQ(support::modeOf(objectOf(name)), 0600U);
}

TEST_F(SharedPlaces, ALockThatOthersMayWriteToIsRefused)
{
    const std::string name = uniqueName("open");
    const Placed placed(name);
    support::writeFile(placed._path, std::string(100, '\0'));
    for (const unsigned int mode : {0666U, 0602U, 0620U, 0604U})
    {
        std::filesystem::permissions(placed._path, std::filesystem::perms{mode});
        EXPECT_FALSE(canBeMade(name)) << std::oct << mode;
    }
    std::filesystem::permissions(placed._path, std::filesystem::perms{0600});
    EXPECT_TRUE(canBeMade(name));
}

TEST_F(SharedPlaces, ALockOfAnotherUserIsRefused)
{
    const std::string name = uniqueName("foreign");
    const Placed placed(name);
    support::writeFile(placed._path, std::string(100, '\0'));
    std::filesystem::permissions(placed._path, std::filesystem::perms{0600});
    if (!support::giveToAnotherUser(placed._path)) GTEST_SKIP() << "That takes the system's user.";
    EXPECT_FALSE(canBeMade(name));
    EXPECT_EQ(support::readFile(placed._path), std::string(100, '\0'));
}

TEST_F(SharedPlaces, ALinkInThePlaceOfALockIsRefused)
{
    const std::string name = uniqueName("link");
    const Placed placed(name);
    const std::string target = _directory.file("target");
    support::writeFile(target, "precious");
    std::filesystem::permissions(target, std::filesystem::perms{0600});
    std::filesystem::create_symlink(target, placed._path);
    EXPECT_FALSE(canBeMade(name));
    EXPECT_EQ(support::readFile(target), "precious");
}

TEST_F(SharedPlaces, NamesOfLocksDoNotLeaveTheirPlace)
{
    const std::string outside = uniqueName("outside");
    const std::string name = "../../tmp/" + outside;
    const std::unique_ptr<LgInterProcessLock> lock(LgInterProcessLock::create(name.c_str()));
    EXPECT_FALSE(std::filesystem::exists("/tmp/" + outside));
    EXPECT_TRUE(std::filesystem::exists(objectOf("..%2f..%2ftmp%2f" + outside)));
}

TEST_F(SharedPlaces, ANameThatIsTooLongIsAnError)
{
    EXPECT_FALSE(canBeMade(std::string(300, 'x')));
}

} // namespace

// What only Linux shows of a lock between processes: the file behind its name, and who waits for
// whom.

#include "base/lgInterProcessLock.h"

#include "base/lgLockName.h"
#include "base/osDescriptor.h"

#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <iomanip>
#include <memory>
#include <sstream>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace
{

using Zu::LgInterProcessLock;
using Lock = std::unique_ptr<LgInterProcessLock>;

// Another user of a lock's file, with the file locks that every user takes. They belong to an open
// file and not to a process, so a user within this process is as good as one in another.
class OtherUser
{
public:
    // As the library has them: the byte held by who comes or goes, and the byte held by users.
    static constexpr off_t CHANGE = 0;
    static constexpr off_t USE = 1;

    explicit OtherUser(const std::string& file) : _file(shm_open(file.c_str(), O_RDWR, 0)) {}

    bool isOpen() const
    {
        return _file.get() >= 0;
    }

    // Does not wait.
    bool set(off_t byte, short kind) const
    {
        struct flock lock = {};
        lock.l_type = kind;
        lock.l_whence = SEEK_SET;
        lock.l_start = byte;
        lock.l_len = 1;
        return fcntl(_file.get(), F_OFD_SETLK, &lock) == 0;
    }

    // How many file locks of this file the system lists that are held, or waited for.
    int listed(bool waiting) const
    {
        struct stat status = {};
        if (fstat(_file.get(), &status) != 0) return 0;
        std::ostringstream place;
        place << std::hex << std::setfill('0') << ' ' << std::setw(2) << major(status.st_dev) << ':'
              << std::setw(2) << minor(status.st_dev) << ':' << std::dec << status.st_ino << ' ';
        int count = 0;
        std::ifstream locks("/proc/locks");
        for (std::string line; std::getline(locks, line);)
            if (line.find(place.str()) != std::string::npos &&
                (line.find(" -> ") != std::string::npos) == waiting)
                ++count;
        return count;
    }

private:
    Zu::OsDescriptor _file;
};

// Removes a name, should the test leave it.
class NameGuard
{
public:
    explicit NameGuard(const std::string& file) : _file(file) {}
    NameGuard(const NameGuard&) = delete;
    NameGuard& operator=(const NameGuard&) = delete;

    ~NameGuard()
    {
        shm_unlink(_file.c_str());
    }

private:
    std::string _file;
};

// Who leaves looks for other users, and removes the name if there is none. A user who comes at that
// moment must not be left with a name that the next one does not find.
TEST(LgInterProcessLockLinux, WhoLeavesWaitsForWhoComes)
{
    const std::string name = "zuTest leaving " + std::to_string(getpid());
    const std::string file = Zu::lgLockName(name.c_str(), geteuid());
    const NameGuard nameGuard(file);
    Lock lock(LgInterProcessLock::create(name.c_str()));
    const OtherUser other(file);
    ASSERT_TRUE(other.isOpen());
    ASSERT_TRUE(other.set(OtherUser::CHANGE, F_WRLCK));
    // That of the lock, and that of the other user.
    if (other.listed(false) != 2) GTEST_SKIP() << "this system does not list who holds file locks";
    std::future<void> left = std::async(std::launch::async, [&lock] { lock.reset(); });
    const auto hasLeft = [&left]
    { return left.wait_for(std::chrono::milliseconds(1)) == std::future_status::ready; };
    while (other.listed(true) == 0 && !hasLeft()) continue;
    EXPECT_FALSE(hasLeft());
    EXPECT_TRUE(other.set(OtherUser::USE, F_RDLCK));
    EXPECT_TRUE(other.set(OtherUser::CHANGE, F_UNLCK));
    left.get();
    EXPECT_TRUE(OtherUser(file).isOpen());
}

TEST(LgInterProcessLockLinux, TheLastUserRemovesTheName)
{
    const std::string name = "zuTest last " + std::to_string(getpid());
    const std::string file = Zu::lgLockName(name.c_str(), geteuid());
    const NameGuard nameGuard(file);
    Lock lock(LgInterProcessLock::create(name.c_str()));
    EXPECT_TRUE(OtherUser(file).isOpen());
    lock.reset();
    EXPECT_FALSE(OtherUser(file).isOpen());
}

} // namespace

#include "app/lgServiceFile.h"

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Zu
{

std::int64_t LgServiceFile::getLocalOffset(std::int64_t universal)
{
    const time_t time = universal;
    struct tm fields = {};
    return localtime_r(&time, &fields) ? fields.tm_gmtoff : 0;
}

namespace LgServiceFilePlatform
{

namespace
{

int numberOf(File file)
{
    return static_cast<int>(file);
}

LgServiceFile::Identity identityOf(const struct stat& status)
{
    return {status.st_dev, status.st_ino};
}

Status statusOf(const struct stat& status)
{
    const bool isPlain = S_ISREG(status.st_mode);
    return {identityOf(status), isPlain ? static_cast<std::uint64_t>(status.st_size) : 0,
            status.st_mtim.tv_sec, isPlain};
}

// What is written to a standard stream must not end in a file.
int aboveStandardStreams(int number)
{
    if (number < 0 || number > STDERR_FILENO) return number;
    const int other = fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    ::close(number);
    errno = error;
    return other;
}

// Whether the file is a plain one of this user, has this name alone, and is nobody else's to write.
// Another process may have renamed it before it was locked here.
bool takeAlone(int number, const std::string& path)
{
    struct stat status = {};
    struct stat named = {};
    if (flock(number, LOCK_EX | LOCK_NB) != 0 || fstat(number, &status) != 0) return false;
    const bool isNamed =
        lstat(path.c_str(), &named) == 0 && identityOf(named) == identityOf(status);
    errno = isNamed ? EPERM : EWOULDBLOCK;
    if (!isNamed) return false;
    return S_ISREG(status.st_mode) && status.st_uid == geteuid() && status.st_nlink == 1;
}

} // namespace

int lastError()
{
    return errno;
}

int notOpen()
{
    return EBADF;
}

std::optional<Status> statusOf(File file)
{
    struct stat status = {};
    if (fstat(numberOf(file), &status) != 0) return std::nullopt;
    return statusOf(status);
}

std::optional<Status> statusOf(const std::string& path)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) return std::nullopt;
    return statusOf(status);
}

Target targetOf(const std::string& path, File, const LgServiceFile::Identity& identity)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) == 0)
        return identityOf(status) == identity ? Target::SAME : Target::OTHER;
    const bool leadsNowhere = errno == ENOENT || errno == ENOTDIR || errno == ELOOP;
    return leadsNowhere ? Target::OTHER : Target::UNKNOWN;
}

bool isThere(const std::string& name)
{
    struct stat status = {};
    return lstat(name.c_str(), &status) == 0;
}

std::ptrdiff_t write(File file, const char* text, std::size_t size)
{
    ssize_t taken = -1;
    do
    {
        taken = ::write(numberOf(file), text, size);
    } while (taken < 0 && errno == EINTR);
    if (taken != 0 || size == 0) return taken;
    errno = EIO;
    return -1;
}

std::ptrdiff_t readAt(File file, std::uint64_t offset, char* buffer, std::size_t size)
{
    ssize_t given = -1;
    do
    {
        given = pread(numberOf(file), buffer, size, static_cast<off_t>(offset));
    } while (given < 0 && errno == EINTR);
    return given;
}

bool rename(const std::string& from, const std::string& to)
{
    if (syscall(SYS_renameat2, AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    // Otherwise the file system can't do it in one step.
    if (errno != EINVAL && errno != ENOSYS) return false;
    if (!isThere(to)) return std::rename(from.c_str(), to.c_str()) == 0;
    errno = EEXIST;
    return false;
}

void remove(const std::string& name)
{
    unlink(name.c_str());
}

File openToRead(const std::string& path)
{
    const int flags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    return aboveStandardStreams(::open(path.c_str(), flags));
}

File createAlone(const std::string& path, File like)
{
    constexpr mode_t OWNER_ALONE = 0600;
    constexpr mode_t RIGHTS = 0777;
    const int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    const int number = aboveStandardStreams(::open(path.c_str(), flags, OWNER_ALONE));
    if (number < 0) return NO_FILE;
    struct stat status = {};
    if (takeAlone(number, path) && ftruncate(number, 0) == 0 &&
        fstat(numberOf(like), &status) == 0 && fchmod(number, status.st_mode & RIGHTS) == 0)
        return number;
    const int error = errno;
    ::close(number);
    errno = error;
    return NO_FILE;
}

bool isInUse(int error)
{
    return error == EWOULDBLOCK;
}

bool keepsNamesOfOpenFiles()
{
    return false;
}

File duplicate(File file)
{
    // Behind the standard streams, as the file itself.
    return fcntl(numberOf(file), F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
}

bool sync(File file)
{
    int result = -1;
    do
    {
        result = fsync(numberOf(file));
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

void close(File file)
{
    ::close(numberOf(file));
}

std::string textOf(int code)
{
    // The system keeps a static "C" locale; this returns it and makes no new one.
    return strerror_l(code, newlocale(LC_ALL_MASK, "C", nullptr));
}

} // namespace LgServiceFilePlatform

} // namespace Zu

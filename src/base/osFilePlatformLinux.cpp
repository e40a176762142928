#include "base/osFilePlatform.h"

#include "base/osDescriptor.h"
#include "base/osFsPlatform.h"
#include "base/osRemoteVolume.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <limits>
#include <linux/fs.h>
#include <memory>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <unistd.h>
#include <vector>

namespace Zu::OsFilePlatform
{

namespace
{

int descriptorOf(Handle handle)
{
    return static_cast<int>(handle);
}

// Repeats a call as long as a signal interrupts it.
template <class Call> auto resumed(const Call& call)
{
    auto result = call();
    while (result == -1 && errno == EINTR) result = call();
    return result;
}

Handle openFile(const char* path, int flags, mode_t mode = 0)
{
    return osAboveStandard(resumed([&] { return open(path, flags | O_CLOEXEC | O_NOCTTY, mode); }));
}

int flagsOf(int access)
{
    const bool isRead = access & OsFileTypes::AccessRead;
    if (!(access & OsFileTypes::AccessWrite)) return O_RDONLY;
    return isRead ? O_RDWR : O_WRONLY;
}

bool isFull(int error)
{
    return error == ENOSPC || error == EDQUOT;
}

bool canOpen(const char* path, int flags)
{
    const Handle handle = openFile(path, flags | O_NONBLOCK);
    if (handle == NONE) return false;
    ::close(descriptorOf(handle));
    return true;
}

bool momentOf(const timespec& time, Moment& moment)
{
    // Local time would not distinguish the two hours at the end of daylight saving.
    tm fields;
    if (!gmtime_r(&time.tv_sec, &fields)) return false;
    if (fields.tm_year > std::numeric_limits<int>::max() - 1900)
    {
        errno = EOVERFLOW;
        return false;
    }
    moment = {OsDateTypes::TimeUniversal,
              fields.tm_year + 1900,
              fields.tm_mon + 1,
              fields.tm_mday,
              fields.tm_hour,
              fields.tm_min,
              fields.tm_sec};
    return true;
}

bool isDots(const char* name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

} // namespace

Handle openExisting(const char* path, int access)
{
    return openFile(path, flagsOf(access));
}

Handle openNew(const char* path, const OsFileTypes::Permissions& permissions, bool exclusive)
{
    return openFile(path, O_WRONLY | O_CREAT | (exclusive ? O_EXCL : O_TRUNC),
                    static_cast<mode_t>(osFsMode(permissions)));
}

// The descriptor is released whatever close() reports, unless it was not open.
Closed close(Handle handle)
{
    if (::close(descriptorOf(handle)) == 0 || errno == EINTR) return Closed::Done;
    return errno == EBADF ? Closed::Failed : Closed::Gone;
}

bool seek(Handle handle, std::int64_t offset, OsFileTypes::SeekMode mode, std::int64_t& position)
{
    const int origins[] = {SEEK_CUR, SEEK_SET, SEEK_END};
    position = lseek(descriptorOf(handle), offset, origins[mode]);
    return position >= 0;
}

bool read(Handle handle, void* buffer, std::uint32_t size, std::uint32_t& count)
{
    const ssize_t result = resumed([&] { return ::read(descriptorOf(handle), buffer, size); });
    count = result < 0 ? 0 : static_cast<std::uint32_t>(result);
    return result >= 0;
}

bool write(Handle handle, const void* buffer, std::uint32_t size, std::uint32_t& count)
{
    const char* const bytes = static_cast<const char*>(buffer);
    for (count = 0; count < size;)
    {
        const ssize_t result =
            resumed([&] { return ::write(descriptorOf(handle), bytes + count, size - count); });
        if (result < 0) return isFull(errno);
        if (result == 0) return true;
        count += static_cast<std::uint32_t>(result);
    }
    return true;
}

bool isPlain(Handle handle)
{
    struct stat status;
    return fstat(descriptorOf(handle), &status) == 0 && S_ISREG(status.st_mode);
}

bool resize(Handle handle, std::int64_t size)
{
    return resumed([&] { return ftruncate(descriptorOf(handle), size); }) == 0 &&
           lseek(descriptorOf(handle), size, SEEK_SET) >= 0;
}

bool flush(Handle handle)
{
    return resumed([&] { return fsync(descriptorOf(handle)); }) == 0;
}

bool sizeOf(const char* path, std::uint64_t& size)
{
    struct stat status;
    if (stat(path, &status) != 0) return false;
    if (S_ISDIR(status.st_mode))
    {
        errno = EISDIR;
        return false;
    }
    size = static_cast<std::uint64_t>(status.st_size);
    return true;
}

// Opening something other than a file may have side effects, so its modes are examined instead. A
// directory can't be opened like a file, as on the other platform.
int accessTo(const char* path, int mask)
{
    struct stat status;
    if (stat(path, &status) != 0 || S_ISDIR(status.st_mode)) return 0;
    int access = 0;
    for (const int bit : {OsFileTypes::AccessRead, OsFileTypes::AccessWrite})
    {
        if (!(mask & bit)) continue;
        const int mode = bit == OsFileTypes::AccessRead ? R_OK : W_OK;
        const bool isThere = S_ISREG(status.st_mode)
                                 ? canOpen(path, flagsOf(bit))
                                 : faccessat(AT_FDCWD, path, mode, AT_EACCESS) == 0;
        if (isThere) access |= bit;
    }
    return access;
}

bool typeOf(const char* path, OsFileTypes::ElementType& type)
{
    struct stat status;
    if (stat(path, &status) != 0) return false;
    if (S_ISDIR(status.st_mode))
        type = OsFileTypes::ElementDirectory;
    else
        type = S_ISREG(status.st_mode) ? OsFileTypes::ElementRegular : OsFileTypes::ElementSpecial;
    return true;
}

bool ownerOf(const char* path, std::string& owner)
{
    struct stat status;
    if (stat(path, &status) != 0) return false;
    std::vector<char> buffer(1024);
    passwd entry;
    passwd* found = nullptr;
    int code;
    while ((code = getpwuid_r(status.st_uid, &entry, buffer.data(), buffer.size(), &found)) ==
           ERANGE)
        buffer.resize(buffer.size() * 2);
    // A user without a name is reported by number.
    owner = code == 0 && found ? entry.pw_name : std::to_string(status.st_uid);
    return true;
}

bool lastModificationOf(const char* path, Moment& moment)
{
    struct stat status;
    return stat(path, &status) == 0 && momentOf(status.st_mtim, moment);
}

bool lastAccessOf(const char* path, Moment& moment)
{
    struct stat status;
    return stat(path, &status) == 0 && momentOf(status.st_atim, moment);
}

bool volumeOf(const char* path, Volume& volume)
{
    struct statfs status;
    if (statfs(path, &status) != 0) return false;
    volume = {static_cast<std::uint32_t>(status.f_bsize),
              osIsRemoteVolume(static_cast<std::uint32_t>(status.f_type)), path};
    return true;
}

bool remove(const char* path)
{
    return unlink(path) == 0;
}

bool isLink(const char* path)
{
    struct stat status;
    return lstat(path, &status) == 0 && S_ISLNK(status.st_mode);
}

bool removeLink(const char* path)
{
    return unlink(path) == 0;
}

bool linkTarget(const char* path, std::string& target)
{
    char text[PATH_MAX];
    const ssize_t length = readlink(path, text, sizeof text);
    if (length < 0) return false;
    target.assign(text, static_cast<std::size_t>(length));
    return true;
}

bool isSpecial(const char* path)
{
    struct stat status;
    return stat(path, &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

bool rename(const char* path, const char* target)
{
    if (syscall(SYS_renameat2, AT_FDCWD, path, AT_FDCWD, target, RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    // The file system can't do it in one step, so there is a gap between check and rename.
    struct stat status;
    if (lstat(target, &status) == 0)
    {
        errno = EEXIST;
        return false;
    }
    return ::rename(path, target) == 0;
}

bool replace(const char* path, const char* target)
{
    return ::rename(path, target) == 0;
}

void keepOwnerAndModes(const char* from, Handle to)
{
    struct stat status;
    if (lstat(from, &status) != 0 || !S_ISREG(status.st_mode)) return;
    const int file = descriptorOf(to);
    const bool isGroupKept = fchown(file, static_cast<uid_t>(-1), status.st_gid) == 0;
    const bool isOwnerKept = fchown(file, status.st_uid, static_cast<gid_t>(-1)) == 0;
    // A change of the owner clears bits, so the modes are set after it.
    fchmod(file, osFsKeptMode(status.st_mode & 07777, isOwnerKept, isGroupKept));
}

bool attributesOf(Handle handle, Attributes& attributes)
{
    struct stat status;
    if (fstat(descriptorOf(handle), &status) != 0) return false;
    attributes = {status.st_mode & 0777U,
                  {status.st_atim.tv_sec, status.st_atim.tv_nsec},
                  {status.st_mtim.tv_sec, status.st_mtim.tv_nsec}};
    return true;
}

bool setAttributes(Handle handle, const Attributes& attributes)
{
    const timespec times[] = {{attributes._accessed[0], attributes._accessed[1]},
                              {attributes._modified[0], attributes._modified[1]}};
    return fchmod(descriptorOf(handle), attributes._mode) == 0 &&
           futimens(descriptorOf(handle), times) == 0;
}

// An owner who may open it may also set its attributes.
Handle openDirectory(const char* path, int)
{
    return openFile(path, O_RDONLY | O_DIRECTORY);
}

void flushDirectoryOf(const char* path)
{
    const char* const end = std::strrchr(path, '/');
    const std::string directory = !end ? "." : end == path ? "/" : std::string(path, end);
    const Handle handle = openDirectory(directory.c_str(), OsFileTypes::AccessRead);
    if (handle == NONE) return;
    fsync(descriptorOf(handle));
    ::close(descriptorOf(handle));
}

bool isSame(const char* a, const char* b)
{
    struct stat statusA;
    struct stat statusB;
    return stat(a, &statusA) == 0 && stat(b, &statusB) == 0 && statusA.st_dev == statusB.st_dev &&
           statusA.st_ino == statusB.st_ino;
}

std::string resolved(const char* path)
{
    const std::unique_ptr<char, void (*)(void*)> text(realpath(path, nullptr), &std::free);
    return text ? text.get() : "";
}

bool createDirectory(const char* path, const OsFileTypes::Permissions& permissions)
{
    return mkdir(path, static_cast<mode_t>(osFsMode(permissions))) == 0;
}

bool removeDirectory(const char* path)
{
    return rmdir(path) == 0;
}

int codeOf(Error error)
{
    switch (error)
    {
    case Error::DiskFull:
        return ENOSPC;
    case Error::TooLarge:
        return EFBIG;
    case Error::TooManyLinks:
        break;
    }
    return ELOOP;
}

struct Scan::State
{
    DIR* _directory;
};

Scan::Scan(const char* path) : _state(new State{nullptr})
{
    OsDescriptor directory(descriptorOf(openDirectory(path, OsFileTypes::AccessRead)));
    if (directory.get() < 0) return;
    _state->_directory = fdopendir(directory.get());
    if (_state->_directory) directory.release();
}

Scan::~Scan()
{
    if (_state->_directory) closedir(_state->_directory);
}

Scan::Result Scan::next(const char*& name)
{
    if (!_state->_directory) return Result::Failed;
    for (;;)
    {
        errno = 0;
        const dirent* const entry = readdir(_state->_directory);
        if (!entry) return errno == 0 ? Result::End : Result::Failed;
        if (isDots(entry->d_name)) continue;
        name = entry->d_name;
        return Result::Name;
    }
}

} // namespace Zu::OsFilePlatform

#include "app/lgControlFile.h"

#include "app/lgNewFile.h"
#include "base/osDescriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Zu
{

namespace
{

constexpr const char* PREFIX = "zu-control-";

int descriptor(std::intptr_t file)
{
    return static_cast<int>(file);
}

struct flock byteAt(std::uint64_t place)
{
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(place);
    lock.l_len = 1;
    return lock;
}

// A lock of the process: it ends with it, and children do not inherit it.
bool lock(int file, std::uint64_t place)
{
    struct flock lock = byteAt(place);
    return fcntl(file, F_SETLK, &lock) == 0;
}

bool isLocked(int file, std::uint64_t place)
{
    struct flock lock = byteAt(place);
    return fcntl(file, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

// Root may ask everybody's services.
bool isOfUser(const struct stat& status)
{
    const bool isOwn = status.st_uid == geteuid() || geteuid() == 0;
    return S_ISREG(status.st_mode) && isOwn && (status.st_mode & 0077) == 0 && status.st_nlink <= 1;
}

// A file that would get longer than the process may make one ends the process by a signal.
bool isLengthAllowed()
{
    struct rlimit limit = {};
    if (getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur >= LgControl::SIZE) return true;
    errno = EFBIG;
    return false;
}

bool reserve(int file, std::uint64_t offset, std::size_t size)
{
    int result = 0;
    do result = fallocate(file, 0, static_cast<off_t>(offset), static_cast<off_t>(size));
    while (result != 0 && errno == EINTR);
    return result == 0;
}

} // namespace

LgControlFile::~LgControlFile()
{
    if (_place) munmap(_place, LgControl::SIZE);
    if (_file < 0) return;
    unlink(_path.c_str());
    close(descriptor(_file));
}

bool LgControlFile::fail()
{
    _error = std::generic_category().message(errno);
    return false;
}

bool LgControlFile::create(const std::string& path)
{
    // First, because copying may raise an exception.
    std::string name = path;
    const int own =
        lgNewFile(path, [](int file) { return lock(file, LgControl::LOCK_OF_SERVICE); });
    if (own < 0) return fail();
    _path = std::move(name);
    _file = own;
    // Where a file has its name from the beginning, it may have been taken for a remnant.
    struct stat status = {};
    if (fstat(own, &status) != 0 || status.st_nlink == 0) return fail();
    if (!isLengthAllowed() || ftruncate(own, LgControl::SIZE) != 0 ||
        !reserve(own, 0, LgControl::REQUEST_AT))
        return fail();
    void* const place = mmap(nullptr, LgControl::SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, own, 0);
    if (place == MAP_FAILED) return fail();
    _place = place;
    return true;
}

char* LgControlFile::roomForAnswer(std::size_t length)
{
    if (!reserve(descriptor(_file), LgControl::ANSWER_AT, length)) return nullptr;
    return static_cast<char*>(_place) + LgControl::ANSWER_AT;
}

std::string LgControlFile::prefix()
{
    return PREFIX + std::to_string(geteuid()) + "-";
}

LgControlPeer::~LgControlPeer()
{
    if (_file >= 0) close(descriptor(_file));
}

LgControlPeer::Outcome LgControlPeer::open(const std::string& path)
{
    const int flags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    OsDescriptor file(osAboveStandard(::open(path.c_str(), flags)));
    if (file.get() < 0) return errno == ENOENT ? Outcome::Gone : Outcome::Refused;
    struct stat status = {};
    if (fstat(file.get(), &status) != 0 || !isOfUser(status)) return Outcome::Refused;
    _file = file.release();
    return isAlive() ? Outcome::Opened : Outcome::Left;
}

bool LgControlPeer::isAlive() const
{
    return isLocked(descriptor(_file), LgControl::LOCK_OF_SERVICE);
}

bool LgControlPeer::claim()
{
    return lock(descriptor(_file), LgControl::LOCK_OF_ASKER);
}

void LgControlPeer::release()
{
    struct flock lock = byteAt(LgControl::LOCK_OF_ASKER);
    lock.l_type = F_UNLCK;
    fcntl(descriptor(_file), F_SETLK, &lock);
}

bool LgControlPeer::read(std::uint64_t offset, void* to, std::size_t size) const
{
    ssize_t count = 0;
    do count = pread(descriptor(_file), to, size, static_cast<off_t>(offset));
    while (count < 0 && errno == EINTR);
    return count >= 0 && static_cast<std::size_t>(count) == size;
}

bool LgControlPeer::write(std::uint64_t offset, const void* from, std::size_t size)
{
    ssize_t count = 0;
    do count = pwrite(descriptor(_file), from, size, static_cast<off_t>(offset));
    while (count < 0 && errno == EINTR);
    return count >= 0 && static_cast<std::size_t>(count) == size;
}

void LgControlPeer::remove(const std::string& path)
{
    unlink(path.c_str());
}

std::string LgControlPeer::prefix()
{
    return geteuid() == 0 ? PREFIX : LgControlFile::prefix();
}

std::string lgProgramPath()
{
    std::string path(LgControl::TEXT_SIZE, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    path.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return path;
}

} // namespace Zu

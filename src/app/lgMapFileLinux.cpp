#include "app/lgMapFile.h"

#include "app/lgNewFile.h"
#include "base/osDescriptor.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <fstream>
#include <memory>
#include <sstream>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Zu
{

namespace
{

constexpr std::int64_t NANOSECONDS = 1000000000;

int descriptor(std::intptr_t file)
{
    return static_cast<int>(file);
}

// A lock of the process: it ends with it, children do not inherit it. Closing any descriptor of the
// file ends it, too, so a process never opens its own map a second time.
bool lockWhole(int file)
{
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return fcntl(file, F_SETLK, &lock) == 0;
}

// A file that would get longer than the process may make one ends the process by a signal.
bool isLengthAllowed(std::uint64_t size)
{
    struct rlimit limit = {};
    if (getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return true;
    if (size <= limit.rlim_cur) return true;
    errno = EFBIG;
    return false;
}

std::int64_t toNanoseconds(const timespec& time)
{
    return static_cast<std::int64_t>(time.tv_sec) * NANOSECONDS + time.tv_nsec;
}

std::string firstLineOf(const char* path)
{
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

// The start of the process in ticks since that of the machine: the field 22, of which the second
// can contain blanks.
std::int64_t startOfProcess()
{
    const std::string line = firstLineOf("/proc/self/stat");
    const auto end = line.rfind(')');
    std::istringstream fields(end == std::string::npos ? std::string() : line.substr(end + 1));
    std::string skipped;
    constexpr int FIELDS_BEFORE = 19;
    for (int i = 0; i < FIELDS_BEFORE; ++i) fields >> skipped;
    std::int64_t ticks = 0;
    timespec now = {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const long perSecond = sysconf(_SC_CLK_TCK);
    if (!(fields >> ticks) || perSecond <= 0) return lgWallClock();
    return lgWallClock() - toNanoseconds(now) + ticks * (NANOSECONDS / perSecond);
}

// Calls `call`, which reads or writes at an offset, until the whole part is through.
template <class Call, class Byte>
bool transfer(Call call, int file, Byte* place, std::size_t size, std::uint64_t offset)
{
    while (size > 0)
    {
        const ssize_t count = call(file, place, size, static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        place += count;
        offset += static_cast<std::uint64_t>(count);
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace

LgMapFile::~LgMapFile()
{
    if (_file >= 0) close(descriptor(_file));
}

bool LgMapFile::fail()
{
    _error = std::generic_category().message(errno);
    return false;
}

bool LgMapFile::create(const std::string& path)
{
    // First, because copying may raise an exception.
    std::string name = path;
    const int file = lgNewFile(path, &lockWhole);
    if (file < 0) return fail();
    _path = std::move(name);
    _file = file;
    return true;
}

bool LgMapFile::extend(std::uint64_t size)
{
    if (size <= _size) return true;
    if (!isLengthAllowed(size) || ftruncate(descriptor(_file), static_cast<off_t>(size)) != 0)
        return fail();
    _size = size;
    return true;
}

bool LgMapFile::reserve(std::uint64_t offset, std::uint64_t size)
{
    if (!isLengthAllowed(offset + size)) return fail();
    int result = 0;
    do
        result =
            fallocate(descriptor(_file), 0, static_cast<off_t>(offset), static_cast<off_t>(size));
    while (result != 0 && errno == EINTR);
    return result == 0 || fail();
}

void* LgMapFile::map(std::uint64_t offset, std::uint64_t size)
{
    void* const place = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor(_file),
                             static_cast<off_t>(offset));
    if (place != MAP_FAILED) return place;
    fail();
    return nullptr;
}

void LgMapFile::clear(void* place, std::uint64_t offset, std::uint64_t size)
{
    const int mode = FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE;
    if (fallocate(descriptor(_file), mode, static_cast<off_t>(offset), static_cast<off_t>(size)) ==
        0)
        return;
    // A file system without holes keeps the room; what was never used there is not read.
    std::memset(place, 0, size);
}

void LgMapFile::rename(const std::string& path)
{
    if (::rename(_path.c_str(), path.c_str()) == 0) _path = path;
}

void LgMapFile::remove()
{
    unlink(_path.c_str());
}

bool LgMapFile::reservesInSteps()
{
    return true;
}

bool LgMapFile::replaceByPrivate(void* place, std::uint64_t size)
{
    const int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED;
    return mmap(place, size, PROT_READ | PROT_WRITE, flags, -1, 0) != MAP_FAILED;
}

void LgMapFile::unmap(void* place, std::uint64_t size)
{
    munmap(place, size);
}

LgLeftFile::~LgLeftFile()
{
    if (_file >= 0) close(descriptor(_file));
}

LgLeftFile::Outcome LgLeftFile::open(const std::string& path)
{
    const int flags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    OsDescriptor file(osAboveStandard(::open(path.c_str(), flags)));
    if (file.get() < 0) return errno == ENOENT ? Outcome::Gone : Outcome::Refused;
    struct stat status = {};
    if (fstat(file.get(), &status) != 0) return Outcome::Refused;
    const bool isOwn = S_ISREG(status.st_mode) && status.st_uid == geteuid() &&
                       (status.st_mode & 0077) == 0 && status.st_nlink <= 1;
    if (!isOwn) return Outcome::Refused;
    if (!lockWhole(file.get())) return Outcome::InUse;
    // Another process may have recovered and removed it before the lock was ours.
    if (fstat(file.get(), &status) != 0 || status.st_nlink == 0) return Outcome::Gone;
    _path = path;
    _file = file.release();
    return Outcome::Opened;
}

std::uint64_t LgLeftFile::getSize() const
{
    struct stat status = {};
    return fstat(descriptor(_file), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

bool LgLeftFile::read(std::uint64_t offset, void* to, std::size_t size) const
{
    return transfer(&pread, descriptor(_file), static_cast<char*>(to), size, offset);
}

bool LgLeftFile::write(std::uint64_t offset, const void* from, std::size_t size)
{
    return transfer(&pwrite, descriptor(_file), static_cast<const char*>(from), size, offset);
}

void LgLeftFile::remove()
{
    unlink(_path.c_str());
}

std::int64_t lgWallClock()
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return toNanoseconds(now);
}

LgProcessFacts lgProcessFacts()
{
    utsname names = {};
    const bool hasNames = uname(&names) == 0;
    return {static_cast<std::uint32_t>(getpid()), startOfProcess(), hasNames ? names.nodename : "",
            firstLineOf("/proc/sys/kernel/random/boot_id")};
}

std::string lgMapDirectory()
{
    return "/dev/shm/";
}

std::string lgMapPrefix()
{
    return "zu-log-" + std::to_string(geteuid()) + "-";
}

std::vector<std::string> lgNamesIn(const std::string& directory, const std::string& prefix)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(directory.c_str()), &closedir);
    std::vector<std::string> names;
    if (!listing) return names;
    while (const dirent* const entry = readdir(listing.get()))
        if (std::strncmp(entry->d_name, prefix.c_str(), prefix.size()) == 0)
            names.emplace_back(entry->d_name);
    return names;
}

} // namespace Zu

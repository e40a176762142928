#include "support/faults.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
#include <limits>
#include <pwd.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace
{

using support::Call;

std::size_t largestTransfer = std::numeric_limits<std::size_t>::max();
bool isStatusFalse = false;
uid_t falseOwner = 0;
time_t falseTime = 0;
bool isVolumeFalse = false;
std::uint32_t falseType = 0;
std::uint32_t falseBlockSize = 0;
std::int64_t lastSleep = 0;

// Whether this call is to fail; sets errno if so.
bool fails(Call call)
{
    return support::isToFail(call, errno);
}

} // namespace

// The linker gives the calls these names.
extern "C"
{

    int __real_open(const char* path, int flags, ...);
    int __real_close(int descriptor);
    ssize_t __real_read(int descriptor, void* buffer, size_t size);
    ssize_t __real_write(int descriptor, const void* buffer, size_t size);
    int __real_ftruncate(int descriptor, off_t size);
    int __real_posix_fallocate(int descriptor, off_t offset, off_t size);
    off_t __real_lseek(int descriptor, off_t offset, int origin);
    int __real_fsync(int descriptor);
    int __real_stat(const char* path, struct stat* status);
    int __real_statfs(const char* path, struct statfs* status);
    long __real_syscall(long number, ...);
    int __real_rename(const char* from, const char* to);
    int __real_fstat(int descriptor, struct stat* status);
    int __real_fchmod(int descriptor, mode_t mode);
    int __real_fchown(int descriptor, uid_t owner, gid_t group);
    int __real_futimens(int descriptor, const timespec times[2]);
    DIR* __real_fdopendir(int descriptor);
    dirent* __real_readdir(DIR* directory);
    int __real_gethostname(char* name, size_t size);
    int __real_clock_getres(clockid_t clock, timespec* resolution);
    int __real_nanosleep(const timespec* time, timespec* left);
    int __real_getpwuid_r(uid_t user, passwd* entry, char* buffer, size_t size, passwd** result);

    int __wrap_open(const char* path, int flags, ...)
    {
        va_list arguments;
        va_start(arguments, flags);
        const mode_t mode = va_arg(arguments, mode_t);
        va_end(arguments);
        return fails(Call::OPEN) ? -1 : __real_open(path, flags, mode);
    }

    int __wrap_close(int descriptor)
    {
        if (!fails(Call::CLOSE)) return __real_close(descriptor);
        const int error = errno;
        if (error != EBADF) __real_close(descriptor);
        errno = error;
        return -1;
    }

    ssize_t __wrap_read(int descriptor, void* buffer, size_t size)
    {
        if (fails(Call::READ)) return -1;
        return __real_read(descriptor, buffer, std::min(size, largestTransfer));
    }

    ssize_t __wrap_write(int descriptor, const void* buffer, size_t size)
    {
        if (fails(Call::WRITE)) return errno == 0 ? 0 : -1;
        return __real_write(descriptor, buffer, std::min(size, largestTransfer));
    }

    int __wrap_ftruncate(int descriptor, off_t size)
    {
        return fails(Call::FTRUNCATE) ? -1 : __real_ftruncate(descriptor, size);
    }

    int __wrap_posix_fallocate(int descriptor, off_t offset, off_t size)
    {
        int error = 0;
        if (support::isToFail(Call::FALLOCATE, error)) return error;
        return __real_posix_fallocate(descriptor, offset, size);
    }

    off_t __wrap_lseek(int descriptor, off_t offset, int origin)
    {
        return fails(Call::LSEEK) ? -1 : __real_lseek(descriptor, offset, origin);
    }

    int __wrap_fsync(int descriptor)
    {
        return fails(Call::FSYNC) ? -1 : __real_fsync(descriptor);
    }

    int __wrap_stat(const char* path, struct stat* status)
    {
        if (fails(Call::STAT)) return -1;
        const int result = __real_stat(path, status);
        if (result != 0 || !isStatusFalse) return result;
        status->st_uid = falseOwner;
        status->st_mtim = {falseTime, 0};
        status->st_atim = {falseTime, 0};
        return result;
    }

    int __wrap_statfs(const char* path, struct statfs* status)
    {
        if (fails(Call::STATFS)) return -1;
        const int result = __real_statfs(path, status);
        if (result != 0 || !isVolumeFalse) return result;
        status->f_type = falseType;
        status->f_bsize = falseBlockSize;
        return result;
    }

    // The five arguments after the number are passed in registers, so passing too many does no
    // harm. No call of the library has more.
    long __wrap_syscall(long number, ...)
    {
        if (number == SYS_renameat2 && fails(Call::RENAMEAT2)) return -1;
        std::array<long, 5> words{};
        va_list arguments;
        va_start(arguments, number);
        for (long& word : words) word = va_arg(arguments, long);
        va_end(arguments);
        return __real_syscall(number, words[0], words[1], words[2], words[3], words[4]);
    }

    int __wrap_rename(const char* from, const char* to)
    {
        return fails(Call::RENAME) ? -1 : __real_rename(from, to);
    }

    int __wrap_fstat(int descriptor, struct stat* status)
    {
        return fails(Call::FSTAT) ? -1 : __real_fstat(descriptor, status);
    }

    int __wrap_fchmod(int descriptor, mode_t mode)
    {
        return fails(Call::FCHMOD) ? -1 : __real_fchmod(descriptor, mode);
    }

    int __wrap_fchown(int descriptor, uid_t owner, gid_t group)
    {
        return fails(Call::FCHOWN) ? -1 : __real_fchown(descriptor, owner, group);
    }

    int __wrap_futimens(int descriptor, const timespec times[2])
    {
        return fails(Call::FUTIMENS) ? -1 : __real_futimens(descriptor, times);
    }

    DIR* __wrap_fdopendir(int descriptor)
    {
        return fails(Call::FDOPENDIR) ? nullptr : __real_fdopendir(descriptor);
    }

    int __wrap_gethostname(char* name, size_t size)
    {
        return fails(Call::GETHOSTNAME) ? -1 : __real_gethostname(name, size);
    }

    int __wrap_clock_getres(clockid_t clock, timespec* resolution)
    {
        return fails(Call::CLOCK_GETRES) ? -1 : __real_clock_getres(clock, resolution);
    }

    int __wrap_nanosleep(const timespec* time, timespec* left)
    {
        if (!support::isToFail(Call::NANOSLEEP, errno)) return __real_nanosleep(time, left);
        lastSleep = time->tv_sec;
        *left = {time->tv_sec - 1, time->tv_nsec};
        return errno == 0 ? 0 : -1;
    }

    dirent* __wrap_readdir(DIR* directory)
    {
        return fails(Call::READDIR) ? nullptr : __real_readdir(directory);
    }

    int __wrap_getpwuid_r(uid_t user, passwd* entry, char* buffer, size_t size, passwd** result)
    {
        int error = 0;
        if (!support::isToFail(Call::GETPWUID_R, error))
            return __real_getpwuid_r(user, entry, buffer, size, result);
        *result = nullptr;
        return error;
    }

} // extern "C"

namespace support
{

std::int64_t secondsOfLastSleep()
{
    return lastSleep;
}

TransferLimit::TransferLimit(std::size_t bytes)
{
    largestTransfer = bytes;
}

TransferLimit::~TransferLimit()
{
    largestTransfer = std::numeric_limits<std::size_t>::max();
}

FalseStatus::FalseStatus(std::uint32_t owner, std::int64_t time)
{
    isStatusFalse = true;
    falseOwner = owner;
    falseTime = time;
}

FalseStatus::~FalseStatus()
{
    isStatusFalse = false;
}

FalseVolume::FalseVolume(std::uint32_t type, std::uint32_t blockSize)
{
    isVolumeFalse = true;
    falseType = type;
    falseBlockSize = blockSize;
}

FalseVolume::~FalseVolume()
{
    isVolumeFalse = false;
}

SizeLimit::SizeLimit(std::uint64_t bytes)
{
    rlimit limit;
    getrlimit(RLIMIT_FSIZE, &limit);
    _old = limit.rlim_cur;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
    // By default it ends the process.
    std::signal(SIGXFSZ, SIG_IGN);
}

SizeLimit::~SizeLimit()
{
    rlimit limit;
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = _old;
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, SIG_DFL);
}

OrdinaryUser::OrdinaryUser() : _old(geteuid())
{
    constexpr uid_t NOBODY = 65534;
    if (_old == 0 && seteuid(NOBODY) != 0) throw std::runtime_error("root can't step down");
}

OrdinaryUser::~OrdinaryUser()
{
    if (seteuid(_old) != 0) std::abort();
}

void makeFifo(const std::string& path)
{
    if (mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("no FIFO can be made");
}

void makeSocket(const std::string& path)
{
    if (mknod(path.c_str(), S_IFSOCK | 0600, 0) != 0)
        throw std::runtime_error("no socket can be made");
}

} // namespace support

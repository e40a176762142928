// Makes system calls fail on command. The program is linked with --wrap for each of the calls of
// its platform.

#ifndef ZU_TESTS_FAULTS_H
#define ZU_TESTS_FAULTS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace support
{

enum class Call
{
#if defined(_WIN32)
    CLOSE_HANDLE,
    CREATE_FILE,
    FIND_FIRST_FILE,
    FIND_NEXT_FILE,
    FLUSH_FILE_BUFFERS,
    GET_DISK_FREE_SPACE,
    GET_FILE_ATTRIBUTES,
    GET_FILE_INFORMATION,
    GET_FILE_SIZE,
    GET_FILE_TIME,
    GET_FINAL_PATH_NAME,
    GET_HOST_NAME,
    GET_USER_NAME,
    MOVE_FILE,
    // Nothing is read, and nothing is written.
    READ_FILE,
    SET_FILE_TIME,
    WRITE_FILE,
    SET_END_OF_FILE,
    SET_FILE_POINTER,
#else
    OPEN,
    // The descriptor is released nevertheless, unless the error is EBADF.
    CLOSE,
    READ,
    // The error 0 gives a count of 0.
    WRITE,
    FTRUNCATE,
    FALLOCATE,
    LSEEK,
    FSYNC,
    STAT,
    STATFS,
    RENAMEAT2,
    RENAME,
    FCHMOD,
    // The first call changes the group, the second one the owner.
    FCHOWN,
    FDOPENDIR,
    FSTAT,
    FUTIMENS,
    READDIR,
    GETHOSTNAME,
    CLOCK_GETRES,
    // The remaining time is the requested time minus a second. The error 0 lets it end at once.
    NANOSLEEP,
    // The error 0 means that there is no such user.
    GETPWUID_R,
#endif
    COUNT
};

// While it lives, calls of this kind fail with this error, after the first few have passed. Only
// one at a time for each kind.
class Fault
{
public:
    static constexpr int ALWAYS = 1 << 30;

    Fault(Call call, int error, int times = ALWAYS, int after = 0);
    Fault(const Fault&) = delete;
    Fault& operator=(const Fault&) = delete;
    ~Fault();

    // How many calls it made fail.
    int failures() const;

private:
    Call _call;
};

// While it lives, an action runs before each call of this kind. Only one at a time for each kind.
class Before
{
public:
    Before(Call call, std::function<void()> act);
    Before(const Before&) = delete;
    Before& operator=(const Before&) = delete;
    ~Before();

private:
    Call _call;
};

// For the halves of this component: whether a call is to fail, and with which error. Runs the
// action that precedes the call.
bool isToFail(Call call, int& error);

#if defined(_WIN32)

// Closes the last handle that was left open because its call was to fail.
void closeUnclosed();

// While it lives, every drive is of this type, and its sectors have this size.
class FalseDrive
{
public:
    FalseDrive(std::uint32_t type, std::uint32_t sectorSize);
    FalseDrive(const FalseDrive&) = delete;
    FalseDrive& operator=(const FalseDrive&) = delete;
    ~FalseDrive();
};

// While it lives, the file system has no file numbers.
class NoFileNumbers
{
public:
    NoFileNumbers();
    NoFileNumbers(const NoFileNumbers&) = delete;
    NoFileNumbers& operator=(const NoFileNumbers&) = delete;
    ~NoFileNumbers();
};

#else

// While it lives, no single call reads or writes more than the limit.
class TransferLimit
{
public:
    explicit TransferLimit(std::size_t bytes);
    TransferLimit(const TransferLimit&) = delete;
    TransferLimit& operator=(const TransferLimit&) = delete;
    ~TransferLimit();
};

// While it lives, every file has this owner and these times, in seconds since 1970.
class FalseStatus
{
public:
    FalseStatus(std::uint32_t owner, std::int64_t time);
    FalseStatus(const FalseStatus&) = delete;
    FalseStatus& operator=(const FalseStatus&) = delete;
    ~FalseStatus();
};

// While it lives, every file is on a volume of this type with this block size.
class FalseVolume
{
public:
    FalseVolume(std::uint32_t type, std::uint32_t blockSize);
    FalseVolume(const FalseVolume&) = delete;
    FalseVolume& operator=(const FalseVolume&) = delete;
    ~FalseVolume();
};

// While it lives, no file grows beyond the limit: such a write fails with EFBIG.
class SizeLimit
{
public:
    explicit SizeLimit(std::uint64_t bytes);
    SizeLimit(const SizeLimit&) = delete;
    SizeLimit& operator=(const SizeLimit&) = delete;
    ~SizeLimit();

private:
    std::uint64_t _old;
};

// While it lives, the process belongs to a user to whom file modes apply.
class OrdinaryUser
{
public:
    OrdinaryUser();
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    ~OrdinaryUser();

private:
    std::uint32_t _old;
};

// The whole seconds requested from the last call of NANOSLEEP that was to fail.
std::int64_t secondsOfLastSleep();

void makeFifo(const std::string& path);
void makeSocket(const std::string& path);

#endif

} // namespace support

#endif

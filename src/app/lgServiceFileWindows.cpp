#include "app/lgServiceFile.h"

#include <algorithm>
#include <cstdint>
#include <windows.h>

namespace Zu
{

namespace
{

constexpr std::int64_t TICKS_PER_SECOND = 10000000;
// From 1601, where the platform's counts begin, to 1970.
constexpr std::int64_t SECONDS_TO_1970 = 11644473600;

FILETIME fileTimeOf(std::int64_t seconds)
{
    const std::int64_t count = (seconds + SECONDS_TO_1970) * TICKS_PER_SECOND;
    return {static_cast<DWORD>(count), static_cast<DWORD>(count >> 32)};
}

std::int64_t secondsOf(const FILETIME& time)
{
    const std::uint64_t count = std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
    return static_cast<std::int64_t>(count) / TICKS_PER_SECOND - SECONDS_TO_1970;
}

} // namespace

// The platform's shorter call applies today's offset to every time.
std::int64_t LgServiceFile::getLocalOffset(std::int64_t universal)
{
    const FILETIME time = fileTimeOf(universal);
    FILETIME localTime = {};
    SYSTEMTIME fields = {};
    SYSTEMTIME localFields = {};
    if (!FileTimeToSystemTime(&time, &fields)) return 0;
    if (!SystemTimeToTzSpecificLocalTime(nullptr, &fields, &localFields)) return 0;
    return SystemTimeToFileTime(&localFields, &localTime) ? secondsOf(localTime) - universal : 0;
}

namespace LgServiceFilePlatform
{

namespace
{

HANDLE handleOf(File file)
{
    return reinterpret_cast<HANDLE>(file);
}

// No call transfers more than it can count.
DWORD countOf(std::size_t size)
{
    constexpr std::size_t LARGEST = 1U << 30;
    return static_cast<DWORD>(std::min(size, LARGEST));
}

// Opens what a name leads to, be it a directory, without a right to its content.
File openToAsk(const std::string& path)
{
    constexpr DWORD SHARING = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return reinterpret_cast<File>(CreateFileA(path.c_str(), FILE_READ_ATTRIBUTES, SHARING, nullptr,
                                              OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

// The name of a file that was removed while it is open may stay until it is closed.
bool isRemoved(File file)
{
    FILE_STANDARD_INFO info = {};
    return GetFileInformationByHandleEx(handleOf(file), FileStandardInfo, &info, sizeof info) &&
           info.DeletePending;
}

} // namespace

int lastError()
{
    return static_cast<int>(GetLastError());
}

int notOpen()
{
    return ERROR_INVALID_HANDLE;
}

std::optional<Status> statusOf(File file)
{
    if (GetFileType(handleOf(file)) != FILE_TYPE_DISK) return Status{std::nullopt, 0, 0, false};
    BY_HANDLE_FILE_INFORMATION info = {};
    if (!GetFileInformationByHandle(handleOf(file), &info)) return std::nullopt;
    const LgServiceFile::Identity identity = {
        info.dwVolumeSerialNumber, std::uint64_t{info.nFileIndexHigh} << 32 | info.nFileIndexLow};
    return Status{identity, std::uint64_t{info.nFileSizeHigh} << 32 | info.nFileSizeLow,
                  secondsOf(info.ftLastWriteTime),
                  (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0};
}

std::optional<Status> statusOf(const std::string& path)
{
    const File file = openToAsk(path);
    if (file == NO_FILE) return std::nullopt;
    const std::optional<Status> status = statusOf(file);
    close(file);
    return status;
}

Target targetOf(const std::string& path, File file, const LgServiceFile::Identity& identity)
{
    if (isRemoved(file)) return Target::OTHER;
    const File target = openToAsk(path);
    if (target == NO_FILE)
    {
        const DWORD error = GetLastError();
        const bool leadsNowhere = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
        return leadsNowhere ? Target::OTHER : Target::UNKNOWN;
    }
    const std::optional<Status> status = statusOf(target);
    close(target);
    if (!status) return Target::UNKNOWN;
    return status->_identity == identity ? Target::SAME : Target::OTHER;
}

bool isThere(const std::string& name)
{
    return GetFileAttributesA(name.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::ptrdiff_t write(File file, const char* text, std::size_t size)
{
    DWORD taken = 0;
    if (!WriteFile(handleOf(file), text, countOf(size), &taken, nullptr)) return -1;
    if (taken != 0 || size == 0) return taken;
    SetLastError(ERROR_WRITE_FAULT);
    return -1;
}

std::ptrdiff_t readAt(File file, std::uint64_t offset, char* buffer, std::size_t size)
{
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    DWORD given = 0;
    if (ReadFile(handleOf(file), buffer, countOf(size), &given, &place)) return given;
    return GetLastError() == ERROR_HANDLE_EOF ? 0 : -1;
}

bool rename(const std::string& from, const std::string& to)
{
    return MoveFileExA(from.c_str(), to.c_str(), 0);
}

void remove(const std::string& name)
{
    DeleteFileA(name.c_str());
}

File openToRead(const std::string& path)
{
    constexpr DWORD SHARING = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return reinterpret_cast<File>(CreateFileA(path.c_str(), GENERIC_READ, SHARING, nullptr,
                                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// The access rights are those of the directory, as for the other file.
File createAlone(const std::string& path, File)
{
    constexpr DWORD SHARING = FILE_SHARE_READ | FILE_SHARE_DELETE;
    constexpr DWORD ACCESS = GENERIC_READ | GENERIC_WRITE | DELETE;
    return reinterpret_cast<File>(CreateFileA(path.c_str(), ACCESS, SHARING, nullptr, CREATE_ALWAYS,
                                              FILE_ATTRIBUTE_NORMAL, nullptr));
}

bool isInUse(int error)
{
    return error == ERROR_SHARING_VIOLATION;
}

bool keepsNamesOfOpenFiles()
{
    return true;
}

File duplicate(File file)
{
    const HANDLE process = GetCurrentProcess();
    HANDLE other = INVALID_HANDLE_VALUE;
    if (!DuplicateHandle(process, handleOf(file), process, &other, 0, FALSE, DUPLICATE_SAME_ACCESS))
        return NO_FILE;
    return reinterpret_cast<File>(other);
}

bool sync(File file)
{
    return FlushFileBuffers(handleOf(file));
}

void close(File file)
{
    CloseHandle(handleOf(file));
}

std::string textOf(int code)
{
    constexpr DWORD LARGEST = 512;
    // Texts with inserts would read arguments that were never passed.
    constexpr DWORD FLAGS = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    constexpr DWORD ENGLISH = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);
    constexpr DWORD ANY = 0;
    char text[LARGEST] = "";
    const auto number = static_cast<DWORD>(code);
    for (const DWORD language : {ENGLISH, ANY})
        if (FormatMessageA(FLAGS, nullptr, number, language, text, LARGEST, nullptr)) return text;
    return {};
}

} // namespace LgServiceFilePlatform

} // namespace Zu

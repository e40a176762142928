#include "app/lgMapFile.h"

#include <cstring>
#include <memory>
#include <system_error>
#include <utility>
#include <windows.h>

namespace Zu
{

namespace
{

// From 1601, where the system's times begin, to 1970, in units of 100 ns.
constexpr std::int64_t EPOCH = 116444736000000000;
constexpr std::int64_t NANOSECONDS_PER_UNIT = 100;

HANDLE handle(std::intptr_t file)
{
    return reinterpret_cast<HANDLE>(file);
}

std::int64_t unitsSince1970(const FILETIME& time)
{
    const auto units = (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
    return static_cast<std::int64_t>(units) - EPOCH;
}

OVERLAPPED placeOf(std::uint64_t offset)
{
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

} // namespace

LgMapFile::~LgMapFile()
{
    if (_file != -1) CloseHandle(handle(_file));
}

bool LgMapFile::fail()
{
    _error = std::system_category().message(static_cast<int>(GetLastError()));
    return false;
}

// While the process lives, others may open it for reading only.
bool LgMapFile::create(const std::string& path)
{
    // First, because copying may raise an exception.
    std::string name = path;
    const HANDLE file =
        CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                    nullptr, CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY, nullptr);
    if (file == INVALID_HANDLE_VALUE) return fail();
    _path = std::move(name);
    _file = reinterpret_cast<std::intptr_t>(file);
    return true;
}

bool LgMapFile::extend(std::uint64_t size)
{
    if (size <= _size) return true;
    LARGE_INTEGER end;
    end.QuadPart = static_cast<LONGLONG>(size);
    if (!SetFilePointerEx(handle(_file), end, nullptr, FILE_BEGIN) || !SetEndOfFile(handle(_file)))
        return fail();
    _size = size;
    return true;
}

bool LgMapFile::reserve(std::uint64_t, std::uint64_t)
{
    return true;
}

void* LgMapFile::map(std::uint64_t offset, std::uint64_t size)
{
    const std::uint64_t end = offset + size;
    const HANDLE section =
        CreateFileMappingA(handle(_file), nullptr, PAGE_READWRITE, static_cast<DWORD>(end >> 32),
                           static_cast<DWORD>(end), nullptr);
    if (!section)
    {
        fail();
        return nullptr;
    }
    void* const place =
        MapViewOfFile(section, FILE_MAP_READ | FILE_MAP_WRITE, static_cast<DWORD>(offset >> 32),
                      static_cast<DWORD>(offset), size);
    if (!place) fail();
    // The view keeps the section.
    CloseHandle(section);
    return place;
}

void LgMapFile::clear(void* place, std::uint64_t, std::uint64_t size)
{
    std::memset(place, 0, size);
}

void LgMapFile::rename(const std::string& path)
{
    if (MoveFileExA(_path.c_str(), path.c_str(), 0)) _path = path;
}

// What is mapped keeps a file from being removed; the system removes it with the last view.
void LgMapFile::remove()
{
    if (_file != -1) CloseHandle(handle(_file));
    _file = -1;
    DeleteFileA(_path.c_str());
}

bool LgMapFile::reservesInSteps()
{
    return false;
}

bool LgMapFile::replaceByPrivate(void*, std::uint64_t)
{
    return false;
}

void LgMapFile::unmap(void* place, std::uint64_t)
{
    UnmapViewOfFile(place);
}

LgLeftFile::~LgLeftFile()
{
    if (_file != -1) CloseHandle(handle(_file));
}

LgLeftFile::Outcome LgLeftFile::open(const std::string& path)
{
    // First, because copying may raise an exception.
    std::string name = path;
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        const DWORD code = GetLastError();
        if (code == ERROR_FILE_NOT_FOUND) return Outcome::Gone;
        return code == ERROR_SHARING_VIOLATION ? Outcome::InUse : Outcome::Refused;
    }
    BY_HANDLE_FILE_INFORMATION facts;
    const DWORD others = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    if (!GetFileInformationByHandle(file, &facts) || (facts.dwFileAttributes & others) != 0 ||
        facts.nNumberOfLinks > 1)
    {
        CloseHandle(file);
        return Outcome::Refused;
    }
    _path = std::move(name);
    _file = reinterpret_cast<std::intptr_t>(file);
    return Outcome::Opened;
}

std::uint64_t LgLeftFile::getSize() const
{
    LARGE_INTEGER size;
    return GetFileSizeEx(handle(_file), &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

bool LgLeftFile::read(std::uint64_t offset, void* to, std::size_t size) const
{
    OVERLAPPED place = placeOf(offset);
    DWORD count = 0;
    return size == 0 ||
           (ReadFile(handle(_file), to, static_cast<DWORD>(size), &count, &place) && count == size);
}

bool LgLeftFile::write(std::uint64_t offset, const void* from, std::size_t size)
{
    OVERLAPPED place = placeOf(offset);
    DWORD count = 0;
    return size == 0 || (WriteFile(handle(_file), from, static_cast<DWORD>(size), &count, &place) &&
                         count == size);
}

void LgLeftFile::remove()
{
    if (_file != -1) CloseHandle(handle(_file));
    _file = -1;
    DeleteFileA(_path.c_str());
}

std::int64_t lgWallClock()
{
    FILETIME now;
    GetSystemTimePreciseAsFileTime(&now);
    return unitsSince1970(now) * NANOSECONDS_PER_UNIT;
}

LgProcessFacts lgProcessFacts()
{
    FILETIME start = {};
    FILETIME end;
    FILETIME kernel;
    FILETIME user;
    GetProcessTimes(GetCurrentProcess(), &start, &end, &kernel, &user);
    char host[MAX_COMPUTERNAME_LENGTH + 1];
    DWORD size = sizeof host;
    const bool hasHost = GetComputerNameA(host, &size);
    return {GetCurrentProcessId(), unitsSince1970(start) * NANOSECONDS_PER_UNIT,
            hasHost ? host : "", ""};
}

std::string lgMapDirectory()
{
    char path[MAX_PATH + 1];
    const DWORD length = GetTempPathA(sizeof path, path);
    return length > 0 && length < sizeof path ? path : ".\\";
}

std::string lgMapPrefix()
{
    return "zu-log-";
}

std::vector<std::string> lgNamesIn(const std::string& directory, const std::string& prefix)
{
    std::vector<std::string> names;
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA((directory + prefix + "*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do names.emplace_back(found.cFileName);
    while (FindNextFileA(search, &found));
    FindClose(search);
    return names;
}

} // namespace Zu

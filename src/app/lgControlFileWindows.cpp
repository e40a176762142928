#include "app/lgControlFile.h"

#include <system_error>
#include <utility>
#include <windows.h>

namespace Zu
{

namespace
{

constexpr DWORD SHARED_WITH_ALL = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

HANDLE handle(std::intptr_t file)
{
    return reinterpret_cast<HANDLE>(file);
}

OVERLAPPED placeOf(std::uint64_t offset)
{
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

bool lock(HANDLE file, std::uint64_t offset)
{
    OVERLAPPED place = placeOf(offset);
    return LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place);
}

void unlock(HANDLE file, std::uint64_t offset)
{
    OVERLAPPED place = placeOf(offset);
    UnlockFileEx(file, 0, 1, 0, &place);
}

} // namespace

LgControlFile::~LgControlFile()
{
    if (_place) UnmapViewOfFile(_place);
    // The system removes it.
    if (_file != -1) CloseHandle(handle(_file));
}

bool LgControlFile::fail()
{
    _error = std::system_category().message(static_cast<int>(GetLastError()));
    return false;
}

bool LgControlFile::create(const std::string& path)
{
    // First, because copying may raise an exception.
    std::string name = path;
    const HANDLE file =
        CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, SHARED_WITH_ALL, nullptr,
                    CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file == INVALID_HANDLE_VALUE) return fail();
    _path = std::move(name);
    _file = reinterpret_cast<std::intptr_t>(file);
    if (!lock(file, LgControl::LOCK_OF_SERVICE)) return fail();
    const HANDLE section =
        CreateFileMappingA(file, nullptr, PAGE_READWRITE, 0, LgControl::SIZE, nullptr);
    if (!section) return fail();
    _place = MapViewOfFile(section, FILE_MAP_READ | FILE_MAP_WRITE, 0, 0, LgControl::SIZE);
    if (!_place) fail();
    // The view keeps the section.
    CloseHandle(section);
    return _place != nullptr;
}

char* LgControlFile::roomForAnswer(std::size_t)
{
    return static_cast<char*>(_place) + LgControl::ANSWER_AT;
}

std::string LgControlFile::prefix()
{
    return "zu-control-";
}

LgControlPeer::~LgControlPeer()
{
    if (_file != -1) CloseHandle(handle(_file));
}

LgControlPeer::Outcome LgControlPeer::open(const std::string& path)
{
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, SHARED_WITH_ALL,
                                    nullptr, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return GetLastError() == ERROR_FILE_NOT_FOUND ? Outcome::Gone : Outcome::Refused;
    _file = reinterpret_cast<std::intptr_t>(file);
    BY_HANDLE_FILE_INFORMATION facts;
    const DWORD others = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    if (!GetFileInformationByHandle(file, &facts) || (facts.dwFileAttributes & others) != 0 ||
        facts.nNumberOfLinks > 1)
        return Outcome::Refused;
    return isAlive() ? Outcome::Opened : Outcome::Left;
}

bool LgControlPeer::isAlive() const
{
    if (!lock(handle(_file), LgControl::LOCK_OF_SERVICE)) return true;
    unlock(handle(_file), LgControl::LOCK_OF_SERVICE);
    return false;
}

bool LgControlPeer::claim()
{
    return lock(handle(_file), LgControl::LOCK_OF_ASKER);
}

void LgControlPeer::release()
{
    unlock(handle(_file), LgControl::LOCK_OF_ASKER);
}

bool LgControlPeer::read(std::uint64_t offset, void* to, std::size_t size) const
{
    OVERLAPPED place = placeOf(offset);
    DWORD count = 0;
    return size == 0 ||
           (ReadFile(handle(_file), to, static_cast<DWORD>(size), &count, &place) && count == size);
}

bool LgControlPeer::write(std::uint64_t offset, const void* from, std::size_t size)
{
    OVERLAPPED place = placeOf(offset);
    DWORD count = 0;
    return size == 0 || (WriteFile(handle(_file), from, static_cast<DWORD>(size), &count, &place) &&
                         count == size);
}

void LgControlPeer::remove(const std::string& path)
{
    DeleteFileA(path.c_str());
}

std::string LgControlPeer::prefix()
{
    return LgControlFile::prefix();
}

std::string lgProgramPath()
{
    char path[LgControl::TEXT_SIZE];
    const DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
    return {path, length < sizeof path ? length : 0};
}

} // namespace Zu

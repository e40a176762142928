#include "base/osFilePlatform.h"

#include "base/internalAssert.h"

#include <cstdio>
#include <cstring>
#include <windows.h>

namespace Zu::OsFilePlatform
{

namespace
{

constexpr DWORD SHARED = FILE_SHARE_READ | FILE_SHARE_WRITE;

// Not a plain file: system, temporary, sparse, reparse point, compressed, offline, encrypted.
constexpr DWORD SPECIAL = 0x5f04;

HANDLE fileOf(Handle handle)
{
    return reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(handle));
}

Handle handleOf(HANDLE file)
{
    return static_cast<Handle>(reinterpret_cast<std::intptr_t>(file));
}

DWORD rightsOf(int access)
{
    return (access & OsFileTypes::AccessRead ? GENERIC_READ : 0) |
           (access & OsFileTypes::AccessWrite ? GENERIC_WRITE : 0);
}

HANDLE openFile(const char* path, DWORD rights, DWORD sharing, DWORD flags = FILE_ATTRIBUTE_NORMAL)
{
    return CreateFileA(path, rights, sharing, nullptr, OPEN_EXISTING, flags, nullptr);
}

// Closing must not hide why another call failed.
void closeQuietly(HANDLE file)
{
    const DWORD error = GetLastError();
    CloseHandle(file);
    SetLastError(error);
}

bool momentOf(const char* path, bool isAccess, Moment& moment)
{
    const HANDLE file = openFile(path, GENERIC_READ, SHARED, FILE_FLAG_BACKUP_SEMANTICS);
    if (file == INVALID_HANDLE_VALUE) return false;
    FILETIME accessed;
    FILETIME written;
    const bool isTold = GetFileTime(file, nullptr, &accessed, &written);
    closeQuietly(file);
    FILETIME local;
    SYSTEMTIME fields;
    if (!isTold || !FileTimeToLocalFileTime(isAccess ? &accessed : &written, &local) ||
        !FileTimeToSystemTime(&local, &fields))
        return false;
    moment = {OsDateTypes::TimeLocal, fields.wYear,   fields.wMonth, fields.wDay,
              fields.wHour,           fields.wMinute, fields.wSecond};
    return true;
}

// Opens a file or directory for queries, however it is open elsewhere.
HANDLE openToAsk(const char* path)
{
    return openFile(path, 0, SHARED | FILE_SHARE_DELETE, FILE_FLAG_BACKUP_SEMANTICS);
}

bool identityOf(const char* path, BY_HANDLE_FILE_INFORMATION& identity)
{
    const HANDLE file = openToAsk(path);
    if (file == INVALID_HANDLE_VALUE) return false;
    const bool isTold = GetFileInformationByHandle(file, &identity);
    closeQuietly(file);
    return isTold;
}

bool isDots(const char* name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

} // namespace

Handle openExisting(const char* path, int access)
{
    return handleOf(openFile(path, rightsOf(access), SHARED));
}

// This platform has no modes.
Handle openNew(const char* path, const OsFileTypes::Permissions&, bool exclusive)
{
    return handleOf(CreateFileA(path, GENERIC_WRITE, SHARED, nullptr,
                                exclusive ? CREATE_NEW : CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                                nullptr));
}

Closed close(Handle handle)
{
    return CloseHandle(fileOf(handle)) ? Closed::Done : Closed::Failed;
}

bool seek(Handle handle, std::int64_t offset, OsFileTypes::SeekMode mode, std::int64_t& position)
{
    const DWORD origins[] = {FILE_CURRENT, FILE_BEGIN, FILE_END};
    LARGE_INTEGER distance;
    LARGE_INTEGER result;
    distance.QuadPart = offset;
    if (!SetFilePointerEx(fileOf(handle), distance, &result, origins[mode])) return false;
    position = result.QuadPart;
    return true;
}

bool read(Handle handle, void* buffer, std::uint32_t size, std::uint32_t& count)
{
    DWORD transferred = 0;
    const bool isDone = ReadFile(fileOf(handle), buffer, size, &transferred, nullptr);
    count = transferred;
    return isDone || GetLastError() == ERROR_HANDLE_EOF;
}

bool write(Handle handle, const void* buffer, std::uint32_t size, std::uint32_t& count)
{
    DWORD transferred = 0;
    const bool isDone = WriteFile(fileOf(handle), buffer, size, &transferred, nullptr);
    count = transferred;
    return isDone || GetLastError() == ERROR_HANDLE_DISK_FULL || GetLastError() == ERROR_DISK_FULL;
}

bool isPlain(Handle handle)
{
    return GetFileType(fileOf(handle)) == FILE_TYPE_DISK;
}

bool resize(Handle handle, std::int64_t size)
{
    LARGE_INTEGER distance;
    distance.QuadPart = size;
    return SetFilePointerEx(fileOf(handle), distance, nullptr, FILE_BEGIN) &&
           SetEndOfFile(fileOf(handle));
}

bool flush(Handle handle)
{
    return FlushFileBuffers(fileOf(handle));
}

bool sizeOf(const char* path, std::uint64_t& size)
{
    const HANDLE file = openFile(path, GENERIC_READ, SHARED);
    if (file == INVALID_HANDLE_VALUE) return false;
    LARGE_INTEGER result;
    const bool isTold = GetFileSizeEx(file, &result);
    closeQuietly(file);
    size = static_cast<std::uint64_t>(result.QuadPart);
    return isTold;
}

// The trial does not share, so a file that is open elsewhere gives no access.
int accessTo(const char* path, int mask)
{
    int access = 0;
    for (const int bit : {OsFileTypes::AccessRead, OsFileTypes::AccessWrite})
    {
        if (!(mask & bit)) continue;
        const HANDLE file = openFile(path, rightsOf(bit), 0);
        if (file == INVALID_HANDLE_VALUE) continue;
        CloseHandle(file);
        access |= bit;
    }
    return access;
}

bool typeOf(const char* path, OsFileTypes::ElementType& type)
{
    const DWORD attributes = GetFileAttributesA(path);
    if (attributes == INVALID_FILE_ATTRIBUTES) return false;
    if (attributes & FILE_ATTRIBUTE_DIRECTORY)
        type = OsFileTypes::ElementDirectory;
    else
        type = attributes & SPECIAL ? OsFileTypes::ElementSpecial : OsFileTypes::ElementRegular;
    return true;
}

// Owners are not exposed here.
bool ownerOf(const char*, std::string& owner)
{
    owner.clear();
    return true;
}

bool lastModificationOf(const char* path, Moment& moment)
{
    return momentOf(path, false, moment);
}

bool lastAccessOf(const char* path, Moment& moment)
{
    return momentOf(path, true, moment);
}

bool volumeOf(const char* path, Volume& volume)
{
    ZU_INTERNAL_ASSERT(path[0] != '\0' && path[1] == ':');
    const char root[] = {path[0], ':', '\\', '\0'};
    DWORD sectors;
    DWORD bytes;
    DWORD freeClusters;
    DWORD clusters;
    const bool isTold = GetDiskFreeSpaceA(root, &sectors, &bytes, &freeClusters, &clusters);
    ZU_INTERNAL_ASSERT(isTold);
    volume = {bytes, GetDriveTypeA(root) == DRIVE_REMOTE, root};
    return true;
}

bool remove(const char* path)
{
    return DeleteFileA(path);
}

bool isLink(const char* path)
{
    const DWORD attributes = GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES && attributes & FILE_ATTRIBUTE_REPARSE_POINT;
}

// A link to a directory is removed by the call for directories.
bool removeLink(const char* path)
{
    const DWORD attributes = GetFileAttributesA(path);
    if (attributes == INVALID_FILE_ATTRIBUTES) return false;
    return attributes & FILE_ATTRIBUTE_DIRECTORY ? RemoveDirectoryA(path) : DeleteFileA(path);
}

// Links are themselves replaced.
bool linkTarget(const char*, std::string&)
{
    return false;
}

// On this platform, the name of a device is not a name in a directory.
bool isSpecial(const char*)
{
    return false;
}

bool rename(const char* path, const char* target)
{
    return std::rename(path, target) == 0;
}

bool replace(const char* path, const char* target)
{
    return MoveFileExA(path, target, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

// Owners are not exposed here, and there are no modes.
void keepOwnerAndModes(const char*, Handle) {}

bool attributesOf(Handle handle, Attributes& attributes)
{
    FILETIME accessed;
    FILETIME modified;
    if (!GetFileTime(fileOf(handle), nullptr, &accessed, &modified)) return false;
    attributes = {0,
                  {accessed.dwLowDateTime, accessed.dwHighDateTime},
                  {modified.dwLowDateTime, modified.dwHighDateTime}};
    return true;
}

bool setAttributes(Handle handle, const Attributes& attributes)
{
    const auto fileTime = [](const std::int64_t(&words)[2]) {
        return FILETIME{static_cast<DWORD>(words[0]), static_cast<DWORD>(words[1])};
    };
    const FILETIME accessed = fileTime(attributes._accessed);
    const FILETIME modified = fileTime(attributes._modified);
    return SetFileTime(fileOf(handle), nullptr, &accessed, &modified);
}

Handle openDirectory(const char* path, int access)
{
    const DWORD writing = access & OsFileTypes::AccessWrite ? FILE_WRITE_ATTRIBUTES : 0;
    return handleOf(
        openFile(path, FILE_READ_ATTRIBUTES | writing, SHARED, FILE_FLAG_BACKUP_SEMANTICS));
}

void flushDirectoryOf(const char*) {}

bool isSame(const char* a, const char* b)
{
    BY_HANDLE_FILE_INFORMATION identityA;
    BY_HANDLE_FILE_INFORMATION identityB;
    if (!identityOf(a, identityA) || !identityOf(b, identityB) ||
        identityA.dwVolumeSerialNumber != identityB.dwVolumeSerialNumber ||
        identityA.nFileIndexHigh != identityB.nFileIndexHigh ||
        identityA.nFileIndexLow != identityB.nFileIndexLow)
        return false;
    // Not every file system numbers its files.
    if (identityA.nFileIndexHigh != 0 || identityA.nFileIndexLow != 0) return true;
    return _stricmp(resolved(a).c_str(), resolved(b).c_str()) == 0;
}

std::string resolved(const char* path)
{
    const HANDLE file = openToAsk(path);
    if (file == INVALID_HANDLE_VALUE) return "";
    char text[MAX_PATH * 4];
    const DWORD length =
        GetFinalPathNameByHandleA(file, text, sizeof text, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
    closeQuietly(file);
    if (length == 0 || length >= sizeof text) return "";
    // It is reported in the form that other calls accept for a name without steps.
    const std::string full = text;
    if (full.rfind("\\\\?\\UNC\\", 0) == 0) return "\\" + full.substr(7);
    return full.rfind("\\\\?\\", 0) == 0 ? full.substr(4) : full;
}

bool createDirectory(const char* path, const OsFileTypes::Permissions&)
{
    return CreateDirectoryA(path, nullptr);
}

bool removeDirectory(const char* path)
{
    return RemoveDirectoryA(path);
}

int codeOf(Error error)
{
    switch (error)
    {
    case Error::DiskFull:
        return ERROR_DISK_FULL;
    case Error::TooLarge:
        return ERROR_FILE_TOO_LARGE;
    case Error::TooManyLinks:
        break;
    }
    return ERROR_CANT_RESOLVE_FILENAME;
}

struct Scan::State
{
    HANDLE _search;
    DWORD _error;
    WIN32_FIND_DATAA _entry;
    bool _isFirst;
};

Scan::Scan(const char* path) : _state(new State)
{
    std::string pattern = path;
    if (pattern.empty() || !std::strchr("\\/", pattern.back())) pattern += '\\';
    pattern += '*';
    _state->_search = FindFirstFileA(pattern.c_str(), &_state->_entry);
    _state->_error = GetLastError();
    _state->_isFirst = true;
}

Scan::~Scan()
{
    if (_state->_search != INVALID_HANDLE_VALUE) FindClose(_state->_search);
}

Scan::Result Scan::next(const char*& name)
{
    const auto failure = []
    { return GetLastError() == ERROR_NO_MORE_FILES ? Result::End : Result::Failed; };
    if (_state->_search == INVALID_HANDLE_VALUE)
    {
        SetLastError(_state->_error);
        return failure();
    }
    for (;;)
    {
        if (!_state->_isFirst && !FindNextFileA(_state->_search, &_state->_entry)) return failure();
        _state->_isFirst = false;
        if (isDots(_state->_entry.cFileName)) continue;
        name = _state->_entry.cFileName;
        return Result::Name;
    }
}

} // namespace Zu::OsFilePlatform

#include "zulog/zlFile.h"

#include "app/lgServiceFile.h"
#include "zulog/zlFormat.h"
#include "zulog/zlNames.h"

#include <filesystem>
#include <windows.h>

namespace Zu
{

namespace
{

[[noreturn]] void fail(const std::string& name, const char* what, DWORD error)
{
    std::string text = "\"";
    zlAppendPrintable(text, name, false);
    throw ZlError(text + "\" can't be " + what + ": " +
                  LgServiceFile::errorText(static_cast<int>(error)));
}

HANDLE handleOf(std::intptr_t value)
{
    return reinterpret_cast<HANDLE>(value);
}

// Shared with all that others may do to it.
HANDLE openShared(const std::string& name, DWORD access)
{
    constexpr DWORD SHARED = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const std::filesystem::path path = zlPathOf(name);
    return CreateFileW(path.c_str(), access, SHARED, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

ZlFile::Facts factsOf(HANDLE handle)
{
    // Counted in units of 100 ns.
    constexpr std::uint64_t UNIT = 100;
    BY_HANDLE_FILE_INFORMATION facts = {};
    if (!GetFileInformationByHandle(handle, &facts)) return {};
    const FILETIME& written = facts.ftLastWriteTime;
    // Nanoseconds since 1601 would be too many.
    const std::uint64_t units = std::uint64_t{written.dwHighDateTime} << 32 | written.dwLowDateTime;
    constexpr std::uint64_t UNITS_TO_1970 = 116444736000000000;
    return {{facts.dwVolumeSerialNumber,
             std::uint64_t{facts.nFileIndexHigh} << 32 | facts.nFileIndexLow},
            std::uint64_t{facts.nFileSizeHigh} << 32 | facts.nFileSizeLow,
            static_cast<std::int64_t>((units - UNITS_TO_1970) * UNIT)};
}

} // namespace

ZlFile::ZlFile(const std::string& name) : _name(name)
{
    HANDLE handle = INVALID_HANDLE_VALUE;
    if (name == "-")
        DuplicateHandle(GetCurrentProcess(), GetStdHandle(STD_INPUT_HANDLE), GetCurrentProcess(),
                        &handle, 0, FALSE, DUPLICATE_SAME_ACCESS);
    else
        handle = openShared(name, GENERIC_READ);
    if (handle == INVALID_HANDLE_VALUE || !handle) fail(name, "opened", GetLastError());
    _handle = reinterpret_cast<std::intptr_t>(handle);
    _isPlain = name != "-" && GetFileType(handle) == FILE_TYPE_DISK;
}

ZlFile::~ZlFile()
{
    CloseHandle(handleOf(_handle));
}

std::size_t ZlFile::read(char* place, std::size_t size)
{
    constexpr std::size_t MOST = std::size_t{1} << 30;
    DWORD count = 0;
    if (!ReadFile(handleOf(_handle), place, static_cast<DWORD>(size < MOST ? size : MOST), &count,
                  nullptr))
    {
        const DWORD error = GetLastError();
        // The writer of a pipe has closed it.
        if (error != ERROR_BROKEN_PIPE && error != ERROR_HANDLE_EOF) fail(_name, "read", error);
        count = 0;
    }
    _offset += count;
    return count;
}

void ZlFile::seek(std::uint64_t offset)
{
    LARGE_INTEGER place = {};
    place.QuadPart = static_cast<LONGLONG>(offset);
    if (!SetFilePointerEx(handleOf(_handle), place, nullptr, FILE_BEGIN))
        fail(_name, "read", GetLastError());
    _offset = offset;
}

std::uint64_t ZlFile::getSize() const
{
    LARGE_INTEGER size = {};
    if (!_isPlain || !GetFileSizeEx(handleOf(_handle), &size)) return 0;
    return static_cast<std::uint64_t>(size.QuadPart);
}

ZlFile::Facts ZlFile::getFacts() const
{
    return factsOf(handleOf(_handle));
}

bool ZlFile::find(const std::string& name, Facts& facts)
{
    const HANDLE handle = openShared(name, FILE_READ_ATTRIBUTES);
    if (handle == INVALID_HANDLE_VALUE) return false;
    facts = factsOf(handle);
    CloseHandle(handle);
    return true;
}

} // namespace Zu

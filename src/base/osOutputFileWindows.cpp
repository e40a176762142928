#include "base/osOutputFile.h"

#include <cstdint>
#include <fstream>
#include <io.h>
#include <windows.h>

namespace Zu
{

namespace
{

constexpr int LAST_STANDARD = 2;

// Makes a descriptor that owns the handle. Returns a negative number, with the handle closed, if
// there is none. It is none of the standard streams', which a process may have closed: what it then
// wrote to its standard output would land in the file.
int descriptorOf(HANDLE handle)
{
    const int descriptor = _open_osfhandle(reinterpret_cast<std::intptr_t>(handle), 0);
    if (descriptor < 0) CloseHandle(handle);
    if (descriptor < 0 || descriptor > LAST_STANDARD) return descriptor;
    HANDLE twin = INVALID_HANDLE_VALUE;
    const HANDLE process = GetCurrentProcess();
    const bool isMade =
        DuplicateHandle(process, handle, process, &twin, 0, FALSE, DUPLICATE_SAME_ACCESS);
    // The number stays in use until the next one is found.
    const int above = isMade ? descriptorOf(twin) : -1;
    _close(descriptor);
    return above;
}

DWORD accessOf(OsOutputMode mode)
{
    switch (mode)
    {
    case OsOutputMode::Emptied:
        return GENERIC_WRITE;
    case OsOutputMode::Appended:
        return FILE_APPEND_DATA;
    case OsOutputMode::Kept:
        break;
    }
    return FILE_APPEND_DATA | GENERIC_READ;
}

HANDLE openFile(const char* name, OsOutputMode mode, DWORD access)
{
    // Others may open it, too; appending goes after whatever they have written in the meantime.
    const DWORD sharing = FILE_SHARE_READ | FILE_SHARE_WRITE;
    return CreateFileA(name, access,
                       mode == OsOutputMode::Kept ? sharing | FILE_SHARE_DELETE : sharing, nullptr,
                       mode == OsOutputMode::Emptied ? CREATE_ALWAYS : OPEN_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

} // namespace

std::intptr_t osOpenOutputFile(const char* name, OsOutputMode mode)
{
    HANDLE file = openFile(name, mode, accessOf(mode));
    if (file == INVALID_HANDLE_VALUE && mode == OsOutputMode::Kept &&
        GetLastError() == ERROR_ACCESS_DENIED)
        file = openFile(name, mode, FILE_APPEND_DATA);
    return reinterpret_cast<std::intptr_t>(file);
}

void osOpenOutput(std::ofstream& file, const char* name, bool appends)
{
    const auto mode = appends ? OsOutputMode::Appended : OsOutputMode::Emptied;
    const std::intptr_t handle = osOpenOutputFile(name, mode);
    const int descriptor = handle < 0 ? -1 : descriptorOf(reinterpret_cast<HANDLE>(handle));
    if (descriptor >= 0 && osAdoptOutput(file, descriptor, appends)) return;
    if (descriptor >= 0) _close(descriptor);
    file.setstate(std::ios::failbit);
}

} // namespace Zu

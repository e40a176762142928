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

// Negative if there is none.
int openFile(const char* name, bool appends)
{
    // Others may open it, too; appending goes after whatever they have written in the meantime.
    const HANDLE handle = CreateFileA(
        name, appends ? FILE_APPEND_DATA : GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
        nullptr, appends ? OPEN_ALWAYS : CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    return handle == INVALID_HANDLE_VALUE ? -1 : descriptorOf(handle);
}

} // namespace

void osOpenOutput(std::ofstream& file, const char* name, bool appends)
{
    const int descriptor = openFile(name, appends);
    if (descriptor >= 0 && osAdoptOutput(file, descriptor, appends)) return;
    if (descriptor >= 0) _close(descriptor);
    file.setstate(std::ios::failbit);
}

} // namespace Zu

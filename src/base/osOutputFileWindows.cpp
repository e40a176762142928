#include "base/osOutputFile.h"

#include <cstdint>
#include <fstream>
#include <io.h>
#include <windows.h>

namespace Zu
{

namespace
{

// Negative if there is none.
int openFile(const char* name, bool appends)
{
    // Others may open it, too, and whoever appends does so behind what they have written meanwhile.
    const HANDLE handle = CreateFileA(
        name, appends ? FILE_APPEND_DATA : GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
        nullptr, appends ? OPEN_ALWAYS : CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return -1;
    const int descriptor = _open_osfhandle(reinterpret_cast<std::intptr_t>(handle), 0);
    if (descriptor < 0) CloseHandle(handle);
    return descriptor;
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

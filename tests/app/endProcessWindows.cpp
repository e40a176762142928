#include "endProcess.h"

#include <windows.h>

bool support::killProcess(std::uint32_t id)
{
    const HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, id);
    if (!process) return false;
    const bool isEnding = TerminateProcess(process, 9) != 0;
    CloseHandle(process);
    return isEnding;
}

bool support::askProcessToEnd(std::uint32_t)
{
    return false;
}

#include "base/lmLibraries.h"

#include "base/lmRegion.h"

#include <memory>
#include <windows.h>

namespace Zu
{

namespace
{

// Longer names are truncated to one character less.
constexpr DWORD NAME_SIZE = 150;

LPVOID pointerTo(LmRegion::Address address)
{
    return reinterpret_cast<LPVOID>(static_cast<ULONG_PTR>(address));
}

LmRegion::Address addressOf(const void* pointer)
{
    return reinterpret_cast<ULONG_PTR>(pointer);
}

bool query(HANDLE process, LmRegion::Address address, LmRegion::Region& region)
{
    MEMORY_BASIC_INFORMATION record;
    if (VirtualQueryEx(process, pointerTo(address), &record, sizeof record) == 0) return false;
    region = {addressOf(record.BaseAddress),
              addressOf(record.AllocationBase),
              record.AllocationProtect,
              record.RegionSize,
              record.State,
              record.Protect};
    return true;
}

bool nameOf(LmRegion::Address address, std::string& name)
{
    char text[NAME_SIZE];
    if (GetModuleFileNameA(static_cast<HMODULE>(pointerTo(address)), text, NAME_SIZE) == 0)
        return false;
    // Not every version of the system terminates a truncated name.
    text[NAME_SIZE - 1] = '\0';
    name = text;
    return true;
}

} // namespace

void LmLibraries::performGetList(std::vector<LmLibrary>& libraries)
{
    const std::unique_ptr<void, decltype(&CloseHandle)> owner(
        OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, GetCurrentProcessId()), CloseHandle);
    const HANDLE process = owner.get();
    if (!process) return;
    LmRegion::walk({[process](LmRegion::Address address, LmRegion::Region& region)
                    { return query(process, address, region); },
                    nameOf, DebugBreak},
                   libraries);
}

} // namespace Zu

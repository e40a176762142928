#include "support/platform.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <io.h>
#include <stdexcept>
#include <string>
#include <vector>
#include <windows.h>

namespace support
{

std::uint32_t processId()
{
    return GetCurrentProcessId();
}

std::uint32_t threadId()
{
    return GetCurrentThreadId();
}

// The process's own count is always 0 under Wine, but the list of all handles is right.
std::size_t openHandles()
{
    struct Entry
    {
        void* _object;
        ULONG_PTR _process;
        ULONG_PTR _handle;
        ULONG _access;
        USHORT _trace;
        USHORT _type;
        ULONG _attributes;
        ULONG _reserved;
    };
    struct List
    {
        ULONG_PTR _count;
        ULONG_PTR _reserved;
    };
    using Query = LONG(WINAPI*)(int, void*, ULONG, ULONG*);
    constexpr int ALL_HANDLES = 64;
    constexpr LONG TOO_SHORT = static_cast<LONG>(0xC0000004);
    const auto query = reinterpret_cast<Query>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQuerySystemInformation")));
    std::vector<char> bytes(1 << 16);
    LONG status;
    while ((status = query(ALL_HANDLES, bytes.data(), static_cast<ULONG>(bytes.size()), nullptr)) ==
           TOO_SHORT)
        bytes.resize(bytes.size() * 2);
    if (status < 0) throw std::runtime_error("handles can't be counted");
    List list;
    std::memcpy(&list, bytes.data(), sizeof list);
    std::size_t count = 0;
    for (std::size_t i = 0; i < list._count; ++i)
    {
        Entry entry;
        std::memcpy(&entry, bytes.data() + sizeof list + i * sizeof entry, sizeof entry);
        if (entry._process == GetCurrentProcessId()) ++count;
    }
    return count;
}

std::vector<int> openDescriptors()
{
    // The runtime answers a wrong number with EBADF once nobody handles it otherwise.
    _set_invalid_parameter_handler(
        [](const wchar_t*, const wchar_t*, const wchar_t*, unsigned int, std::uintptr_t) {});
    constexpr int SOME = 64;
    std::vector<int> numbers;
    for (int number = 0; number < SOME; ++number)
        if (_get_osfhandle(number) != -1) numbers.push_back(number);
    return numbers;
}

bool isInherited(int descriptor)
{
    DWORD flags = 0;
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
    return GetHandleInformation(handle, &flags) && (flags & HANDLE_FLAG_INHERIT) != 0;
}

void closeStandardStreams()
{
    for (const int number : {0, 1, 2}) _close(number);
}

std::string hostName()
{
    char name[256] = "";
    DWORD size = sizeof name;
    return GetComputerNameExA(ComputerNameNetBIOS, name, &size) ? name : "";
}

int pageSize()
{
    SYSTEM_INFO info;
    GetNativeSystemInfo(&info);
    return static_cast<int>(info.dwPageSize);
}

std::string translateRuntime(const std::string&)
{
    return "";
}

unsigned int setModeMask(unsigned int)
{
    return 0;
}

std::uint32_t userId()
{
    return 0;
}

bool giveToAnotherUser(const std::string&)
{
    return false;
}

bool resolvesLongPaths()
{
    char buffer[1024];
    const std::string path = "C:\\" + std::string(1020, 'x');
    return GetFullPathNameA(path.c_str(), sizeof buffer, buffer, nullptr) == path.size();
}

bool hasProcessBarrier()
{
    return true;
}

void awaitEndOfAnyChild() {}

Side forkProcess()
{
    return Side::NEITHER;
}

int awaitForkedChild()
{
    return -1;
}

bool hasUnreapedChild()
{
    return false;
}

} // namespace support

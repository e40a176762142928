#include "support/platform.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <io.h>
#include <stdexcept>
#include <string>
#include <vector>
#include <windows.h>

#include <tlhelp32.h>

namespace support
{

namespace
{

template <class Function> Function functionOf(const char* name)
{
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), name)));
}

// The start address of a thread; null if it has ended meanwhile.
const char* startOf(DWORD id)
{
    using Query = LONG(WINAPI*)(HANDLE, int, void*, ULONG, ULONG*);
    constexpr int START_ADDRESS = 9;
    const HANDLE thread = OpenThread(THREAD_QUERY_INFORMATION, FALSE, id);
    if (!thread) return nullptr;
    const char* start = nullptr;
    const LONG status = functionOf<Query>("NtQueryInformationThread")(thread, START_ADDRESS, &start,
                                                                      sizeof start, nullptr);
    CloseHandle(thread);
    if (status < 0) throw std::runtime_error("a thread doesn't tell where it began");
    return start;
}

// Whether the code at this address belongs to the timers, or to the loader and its pool.
bool isOfTheSystem(const char* code)
{
    HMODULE module = nullptr;
    if (!GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            code, &module))
        return false;
    for (const char* const name : {"winmm.dll", "winmmbase.dll", "ntdll.dll"})
        if (module == GetModuleHandleA(name)) return true;
    return false;
}

} // namespace

std::uint32_t processId()
{
    return GetCurrentProcessId();
}

std::uint32_t threadId()
{
    return GetCurrentThreadId();
}

// The process's own count is always 0 under Wine, but the list of all handles is correct.
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
    const auto query = functionOf<Query>("NtQuerySystemInformation");
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
    // The runtime reports a bad descriptor by EBADF once its handler does nothing.
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

std::size_t threadCount()
{
    const HANDLE list = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (list == INVALID_HANDLE_VALUE) throw std::runtime_error("threads can't be counted");
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    std::size_t count = 0;
    for (BOOL more = Thread32First(list, &entry); more; more = Thread32Next(list, &entry))
    {
        if (entry.th32OwnerProcessID != GetCurrentProcessId()) continue;
        const char* const start = startOf(entry.th32ThreadID);
        if (start && !isOfTheSystem(start)) ++count;
    }
    CloseHandle(list);
    return count;
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

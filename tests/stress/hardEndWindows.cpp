#include "stress/hardEnd.h"

#include <cstdlib>
#include <malloc.h>
#include <string>
#include <windows.h>

namespace stress
{

void killSelf()
{
    // The runtime's exit value of an abort, so that a killed process looks the same on both
    // platforms.
    constexpr UINT KILLED = 3;
    // For the process that waits for this one, see tests/support/childProcessWindows.cpp.
    const std::string name = "zuEndsHard" + std::to_string(GetCurrentProcessId());
    CreateEventA(nullptr, TRUE, TRUE, name.c_str());
    TerminateProcess(GetCurrentProcess(), KILLED);
    while (true) Sleep(INFINITE);
}

void quickExit()
{
    std::exit(0);
}

void* allocateAligned(std::size_t size, std::size_t alignment)
{
    return _aligned_malloc(size, alignment);
}

void freeAligned(void* memory)
{
    _aligned_free(memory);
}

// Never called: scenarios that need limits are skipped on Windows.
ResourceLimit::ResourceLimit(Resource resource, std::uint64_t limit)
    : _resource(resource), _former(limit)
{
    std::abort();
}

ResourceLimit::~ResourceLimit() = default;

void letLongFilesKill() {}

std::uint64_t addressSpace()
{
    return 0;
}

} // namespace stress

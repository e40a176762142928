#include "support/platform.h"

#include <string>
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

unsigned int setModeMask(unsigned int)
{
    return 0;
}

bool resolvesLongPaths()
{
    char buffer[1024];
    const std::string path = "C:\\" + std::string(1020, 'x');
    return GetFullPathNameA(path.c_str(), sizeof buffer, buffer, nullptr) == path.size();
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

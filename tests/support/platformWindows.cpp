#include "support/platform.h"

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

void awaitEndOfAnyChild() {}

bool hasUnreapedChild()
{
    return false;
}

} // namespace support

#include "base/osCpuInfo.h"

#include "base/exRaise.h"
#include "base/osCpuPlatform.h"

#include <cerrno>
#include <windows.h>

namespace Zu
{

unsigned int osCpuArchitecture()
{
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return info.wProcessorArchitecture;
}

bool osCpuHasMMX()
{
    return IsProcessorFeaturePresent(PF_MMX_INSTRUCTIONS_AVAILABLE) != 0;
}

bool osCpuHasSSE()
{
    return IsProcessorFeaturePresent(PF_XMMI_INSTRUCTIONS_AVAILABLE) != 0;
}

bool osCounterFrequency(std::uint64_t& frequency)
{
    LARGE_INTEGER value;
    if (!QueryPerformanceFrequency(&value))
    {
        errno = ENOSYS;
        return false;
    }
    frequency = static_cast<std::uint64_t>(value.QuadPart);
    return true;
}

int osPageSize()
{
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return static_cast<int>(info.dwPageSize);
}

std::uint64_t OsCpuInfo::getHwCounterValue()
{
    LARGE_INTEGER value;
    if (!QueryPerformanceCounter(&value)) ZU_RAISE_ERRNO(ENOSYS);
    return static_cast<std::uint64_t>(value.QuadPart);
}

} // namespace Zu

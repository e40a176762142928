#include "base/osCpuInfo.h"

#include "base/compilerSupport.h"
#include "base/exRaise.h"
#include "base/osCpuPlatform.h"

#include <cerrno>
#include <ctime>
#include <unistd.h>

namespace Zu
{

namespace
{

// The clock's stated unit: it counts nanoseconds.
constexpr std::uint64_t TICKS_PER_SECOND = 1'000'000'000;

} // namespace

unsigned int osCpuArchitecture()
{
    return 9;
}

bool osCpuHasMMX()
{
    constexpr int MMX = 23;
    return (Compiler::cpuid(1, 0)._edx >> MMX & 1) != 0;
}

bool osCpuHasSSE()
{
    constexpr int SSE = 25;
    return (Compiler::cpuid(1, 0)._edx >> SSE & 1) != 0;
}

bool osCounterFrequency(std::uint64_t& frequency)
{
    timespec resolution;
    if (clock_getres(CLOCK_MONOTONIC, &resolution) != 0) return false;
    frequency = TICKS_PER_SECOND;
    return true;
}

int osPageSize()
{
    return static_cast<int>(sysconf(_SC_PAGESIZE));
}

std::uint64_t OsCpuInfo::getHwCounterValue()
{
    timespec now;
    if (clock_gettime(CLOCK_MONOTONIC, &now) != 0) ZU_RAISE_ERRNO(errno);
    return static_cast<std::uint64_t>(now.tv_sec) * TICKS_PER_SECOND +
           static_cast<std::uint64_t>(now.tv_nsec);
}

} // namespace Zu

#include "base/osDatePlatform.h"

#include <windows.h>

namespace Zu::OsDatePlatform
{

namespace
{

FILETIME fileTimeOf(std::uint64_t count)
{
    return {static_cast<DWORD>(count), static_cast<DWORD>(count >> 32)};
}

std::uint64_t countOf(const FILETIME& time)
{
    return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

} // namespace

std::uint64_t currentCount()
{
    SYSTEMTIME fields;
    FILETIME time = {};
    GetSystemTime(&fields);
    SystemTimeToFileTime(&fields, &time);
    return countOf(time);
}

std::optional<std::uint64_t> universalOf(std::uint64_t local)
{
    const FILETIME localTime = fileTimeOf(local);
    FILETIME universal = {};
    if (!LocalFileTimeToFileTime(&localTime, &universal)) return std::nullopt;
    return countOf(universal);
}

std::uint64_t localOf(std::uint64_t universal)
{
    const FILETIME time = fileTimeOf(universal);
    FILETIME local = time;
    FileTimeToLocalFileTime(&time, &local);
    return countOf(local);
}

} // namespace Zu::OsDatePlatform

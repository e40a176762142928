#include "base/osUtils.h"

#include "base/exRaise.h"

#include <cerrno>
#include <process.h>
#include <windows.h>

namespace Zu
{

namespace
{

using NameQuery = BOOL(WINAPI*)(char*, DWORD*);

// The calls set no error of the C runtime.
ArrayPtrRet<char> queryName(NameQuery query, DWORD size)
{
    ArrayPtrRet<char> name(new char[size]);
    if (!query(name.get(), &size))
    {
        const bool isTooLong =
            GetLastError() == ERROR_BUFFER_OVERFLOW || GetLastError() == ERROR_INSUFFICIENT_BUFFER;
        ZU_RAISE_ERRNO(isTooLong ? ENAMETOOLONG : ENOENT);
    }
    return name;
}

} // namespace

void OsUtils::sleep(unsigned int seconds)
{
    // The call takes milliseconds, and the largest number means forever.
    constexpr unsigned int longest = 4'000'000;
    for (; seconds > longest; seconds -= longest) Sleep(longest * 1000);
    Sleep(seconds * 1000);
}

std::uint32_t OsUtils::getPid()
{
    return static_cast<std::uint32_t>(_getpid());
}

std::uint32_t OsUtils::getThreadId()
{
    return GetCurrentThreadId();
}

ArrayPtrRet<char> OsUtils::getHostName()
{
    return queryName(GetComputerNameA, MAX_COMPUTERNAME_LENGTH + 1);
}

ArrayPtrRet<char> OsUtils::getUserName(bool)
{
    return queryName(GetUserNameA, 257);
}

} // namespace Zu

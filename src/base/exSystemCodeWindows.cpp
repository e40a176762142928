#include "base/exSystemCode.h"

#include <cstring>

#include <windows.h>

namespace Zu
{

int lastSystemCode()
{
    return static_cast<int>(GetLastError());
}

void setLastSystemCode(int code)
{
    SetLastError(static_cast<DWORD>(code));
}

void systemCodeText(int code, char* buffer, std::size_t size)
{
    // Texts with inserts ("%1 is not a valid application") would read arguments that were never
    // passed.
    const DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    buffer[0] = '\0';
    FormatMessageA(flags, nullptr, static_cast<DWORD>(code), 0, buffer, static_cast<DWORD>(size),
                   nullptr);
}

const char* errnoText(int code)
{
    return std::strerror(code);
}

} // namespace Zu

#include "base/exSystemCode.h"

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>

namespace Zu
{

int lastSystemCode()
{
    return errno;
}

void setLastSystemCode(int code)
{
    errno = code;
}

void systemCodeText(int code, char* buffer, std::size_t size)
{
    std::snprintf(buffer, size, "%s", errnoText(code));
}

const char* errnoText(int code)
{
    // The system keeps a static "C" locale; this returns it and makes no new one.
    return strerror_l(code, newlocale(LC_ALL_MASK, "C", nullptr));
}

} // namespace Zu

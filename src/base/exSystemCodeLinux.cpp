#include "base/exSystemCode.h"

#include <cerrno>
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
    std::snprintf(buffer, size, "%s", std::strerror(code));
}

} // namespace Zu

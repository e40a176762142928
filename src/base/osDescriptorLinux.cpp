#include "base/osDescriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace Zu
{

int osAboveStandard(int number)
{
    if (number < 0 || number > STDERR_FILENO) return number;
    const int above = fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    close(number);
    errno = error;
    return above;
}

OsDescriptor::~OsDescriptor()
{
    reset(-1);
}

void OsDescriptor::reset(int number)
{
    if (_number >= 0) close(_number);
    _number = number;
}

} // namespace Zu

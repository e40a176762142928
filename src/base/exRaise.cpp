#include "base/exRaise.h"

#include "base/exSysError.h"

#include <cerrno>

namespace Zu
{

// The exceptions read the code from where the system leaves it.

void raiseSystemError(int code, const char* file, int line)
{
    setLastSystemCode(code);
    throw ExSysErrorWindows(file, line);
}

void raiseErrno(int code, const char* file, int line)
{
    errno = code;
    throw ExSysErrorANSI(file, line);
}

} // namespace Zu

#include "base/assertions.h"

#include "base/exDefine.h"
#include "base/exInternalError.h"
#include "base/exSystemCode.h"

namespace Zu
{

void Assertions::throwAssertionFailed(const char* file, int line, const char* expr)
{
    const ExText text("Assertion '%s' failed.", ExText::orEmpty(expr));
    throw ExInternalError(file, line, text.get());
}

void Assertions::throwSysAssertionFailed(const char* file, int line, const char* expr, int errnum)
{
    const ExText text("Assertion '%s' failed, errno = %d (%s).", ExText::orEmpty(expr), errnum,
                      errnoText(errnum));
    throw ExInternalError(file, line, text.get());
}

void Assertions::throwProgramAborted(const char* file, int line)
{
    throw ExInternalError(file, line, "Program aborted.");
}

} // namespace Zu

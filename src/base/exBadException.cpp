#include "base/exBadException.h"

#include "base/exDefine.h"

namespace Zu
{

ExBadException::ExBadException(const char* file, int line) : ExBase(file, line)
{
    setReason("Invalid exception thrown.");
}

ZU_EX_WHAT_AND_CLONE(ExBadException)

} // namespace Zu

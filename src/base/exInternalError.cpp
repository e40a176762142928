#include "base/exInternalError.h"

#include "base/exDefine.h"

namespace Zu
{

ExInternalError::ExInternalError(const char* file, int line, const char* reason)
    : std::runtime_error(""), ExBase(file, line)
{
    setReason(reason);
}

ZU_EX_WHAT_AND_CLONE(ExInternalError)

} // namespace Zu

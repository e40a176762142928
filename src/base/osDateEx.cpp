#include "base/osDateEx.h"

#include "base/exDefine.h"

namespace Zu
{

OsDateEx::OsDateEx(const char* file, int line) : ExBase(file, line) {}

OsDateEx::ExInvalidDate::ExInvalidDate(const char* file, int line)
    : std::runtime_error(""), OsDateEx(file, line)
{
    setReason("Invalid date specified.");
}

ZU_EX_WHAT_AND_CLONE(OsDateEx::ExInvalidDate)

} // namespace Zu

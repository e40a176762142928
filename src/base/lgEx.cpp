#include "base/lgEx.h"

#include "base/exDefine.h"

namespace Zu
{

LgEx::LgEx(const char* file, int line) : ExBase(file, line) {}

LgEx::InvalidLevelString::InvalidLevelString(const char* file, int line, const char* text)
    : std::invalid_argument(""), LgEx(file, line)
{
    setReason("Invalid level string specified: ");
    setReason(text);
}

ZU_EX_WHAT_AND_CLONE(LgEx::InvalidLevelString)

} // namespace Zu

#include "base/hmGCEx.h"

#include "base/exDefine.h"

namespace Zu
{

HmGCEx::ExGarbageDetected::ExGarbageDetected(const char* file, int line) : ExBase(file, line)
{
    setReason("Garbage Collector has detected leaks.");
}

ZU_EX_WHAT_AND_CLONE(HmGCEx::ExGarbageDetected)

} // namespace Zu

#include "app/lgServiceEx.h"

#include "base/exDefine.h"

namespace Zu
{

LgServiceEx::LgServiceEx(const char* file, int line, const char* reason) : ExBase(file, line)
{
    setReason(reason);
}

LgServiceEx::ExAlreadyRunning::ExAlreadyRunning(const char* file, int line)
    : std::logic_error(""), LgServiceEx(file, line, "A log service is running already.")
{
}

ZU_EX_WHAT_AND_CLONE(LgServiceEx::ExAlreadyRunning)

LgServiceEx::ExForked::ExForked(const char* file, int line)
    : std::logic_error(""),
      LgServiceEx(file, line, "A log service ran when this process was forked.")
{
}

ZU_EX_WHAT_AND_CLONE(LgServiceEx::ExForked)

LgServiceEx::ExLoggerNotStarted::ExLoggerNotStarted(const char* file, int line)
    : std::logic_error(""), LgServiceEx(file, line, "The package 'logger' is not started.")
{
}

ZU_EX_WHAT_AND_CLONE(LgServiceEx::ExLoggerNotStarted)

} // namespace Zu

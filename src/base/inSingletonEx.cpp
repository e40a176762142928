#include "base/inSingletonEx.h"

#include "base/exDefine.h"

namespace Zu
{

InSingletonEx::InSingletonEx(const char* file, int line, const char* name, const char* text)
    : InEx(file, line)
{
    const ExText reason("%s %s.", ExText::orEmpty(name), ExText::orEmpty(text));
    setReason(reason.get());
}

InSingletonEx::ExNotInitialized::ExNotInitialized(const char* file, int line, const char* name)
    : std::runtime_error(""), InSingletonEx(file, line, name, "is not initialized")
{
}

ZU_EX_WHAT_AND_CLONE(InSingletonEx::ExNotInitialized)

InSingletonEx::ExAlreadyInitialized::ExAlreadyInitialized(const char* file, int line,
                                                          const char* name)
    : std::runtime_error(""), InSingletonEx(file, line, name, "has already been initialized")
{
}

ZU_EX_WHAT_AND_CLONE(InSingletonEx::ExAlreadyInitialized)

InSingletonEx::ExAlreadyDestroyed::ExAlreadyDestroyed(const char* file, int line, const char* name)
    : std::runtime_error(""), InSingletonEx(file, line, name, "has already been destroyed")
{
}

ZU_EX_WHAT_AND_CLONE(InSingletonEx::ExAlreadyDestroyed)

} // namespace Zu

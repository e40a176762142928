#include "base/prEx.h"

#include "base/exDefine.h"

namespace Zu
{

PrEx::PrEx(const char* file, int line) : ExBase(file, line) {}

PrEx::ExUnsupported::ExUnsupported(const char* file, int line)
    : std::runtime_error(""), PrEx(file, line)
{
    setReason("Functionality unsupported by profiling package.");
}

ZU_EX_WHAT_AND_CLONE(PrEx::ExUnsupported)

PrEx::ExBadCounterIndex::ExBadCounterIndex(const char* file, int line, unsigned int index)
    : std::runtime_error(""), PrEx(file, line)
{
    // Deliberately printed as a signed number, like the index of an object.
    const ExText text("Request with illegal counter index %d.", static_cast<int>(index));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(PrEx::ExBadCounterIndex)

PrEx::ExBadCounterInstance::ExBadCounterInstance(const char* file, int line, const char* name)
    : std::runtime_error(""), PrEx(file, line)
{
    const ExText text("Request with illegal counter instance name %s.", ExText::orEmpty(name));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(PrEx::ExBadCounterInstance)

PrEx::ExBadCounterObjectIndex::ExBadCounterObjectIndex(const char* file, int line,
                                                       unsigned int index)
    : std::runtime_error(""), PrEx(file, line)
{
    const ExText text("Request with illegal counter object index %d.", static_cast<int>(index));
    setReason(text.get());
}

ZU_EX_WHAT_AND_CLONE(PrEx::ExBadCounterObjectIndex)

} // namespace Zu

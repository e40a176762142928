#include "base/hmGC.h"

#include "base/hmKnownLeaks.h"

namespace Zu
{

HmGC::HmGC() = default;

HmGC::~HmGC() noexcept(false) = default;

void HmGC::setOutput(std::ostream* output)
{
    _output = output;
}

void HmGC::setThrowException(bool throwException)
{
    _throwException = throwException;
}

void HmGC::setStackDump(bool stackDump)
{
    _stackDump = stackDump;
}

bool HmGC::isMemDebugLoaded()
{
    return false;
}

void HmGC::validateAndPrint(void*) {}

void HmGC::operator delete(void*) {}

bool HmGC::isLeakValid(ArrayPtr<char>* stack, const char* knownLeaks) const
{
    return hmIsUnknownLeak(stack, knownLeaks);
}

void HmGC::extractCallStack(void**, ArrayPtr<char>*, ArrayPtr<char>*) {}

void HmGC::printLeak(ArrayPtr<char>&, ArrayPtr<char>*) const {}

} // namespace Zu

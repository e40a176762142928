#include "base/rationalEx.h"

#include "base/exDefine.h"

namespace Zu
{

RationalEx::RationalEx(const char* file, int line) : ExBase(file, line) {}

void RationalEx::throwDenominatorZero(const char* file, int line)
{
    throw ExDenominatorZero(file, line);
}

RationalEx::ExDenominatorZero::ExDenominatorZero(const char* file, int line)
    : std::invalid_argument(""), RationalEx(file, line)
{
    setReason("Illegal zero denominator.");
}

ZU_EX_WHAT_AND_CLONE(RationalEx::ExDenominatorZero)

} // namespace Zu

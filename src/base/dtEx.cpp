#include "base/dtEx.h"

#include "base/exDefine.h"

namespace Zu
{

DtEx::DtEx(const char* file, int line) : ExBase(file, line) {}

void DtEx::throwBadRate(const char* file, int line)
{
    throw BadRate(file, line);
}

DtEx::BadRate::BadRate(const char* file, int line) : std::logic_error(""), DtEx(file, line)
{
    setReason("Null rate not allowed in DtTime.");
}

ZU_EX_WHAT_AND_CLONE(DtEx::BadRate)

DtEx::BadRefRate::BadRefRate(const char* file, int line) : std::logic_error(""), DtEx(file, line)
{
    setReason("Mismatched reference clock rates.");
}

ZU_EX_WHAT_AND_CLONE(DtEx::BadRefRate)

DtEx::DtStringError::DtStringError(const char* file, int line, ErrorCode code)
    : std::logic_error(""), DtEx(file, line), _code(code)
{
    const ExText reason("DtString conversion error: %s", toString(code));
    setReason(reason.get());
}

ZU_EX_WHAT_AND_CLONE(DtEx::DtStringError)

DtEx::DtStringError::ErrorCode DtEx::DtStringError::getErrorCode() const
{
    return _code;
}

const char* DtEx::DtStringError::toString(ErrorCode code)
{
    switch (code)
    {
    case RateNumeratorMalformed:
        return "Rate numerator malformed.";
    case RateNumeratorOverflow:
        return "Rate numerator overflow.";
    case RateDenominatorMalformed:
        return "Rate denominator malformed.";
    case RateDenominatorOverflow:
        return "Rate denominator overflow.";
    }
    return "Unknown error.";
}

} // namespace Zu

/// @file
/// The exceptions of discrete time.

#ifndef ZU_BASE_DTEX_H
#define ZU_BASE_DTEX_H

#include "base/exBase.h"

#include <stdexcept>

namespace Zu
{

/// Root of the exceptions of times.
class ZU_BASE_API DtEx : public ExBase
{
public:
    class BadRate;
    class BadRefRate;
    class DtStringError;

    /// Raises BadRate.
    [[noreturn]] static void throwBadRate(const char* file, int line);

protected:
    DtEx(const char* file, int line);
};

/// A time at the rate 0: "Null rate not allowed in DtTime."
class ZU_BASE_API DtEx::BadRate : public std::logic_error, public DtEx
{
public:
    BadRate(const char* file, int line);
    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// "Mismatched reference clock rates." For users of reference times; the library raises it nowhere.
class ZU_BASE_API DtEx::BadRefRate : public std::logic_error, public DtEx
{
public:
    BadRefRate(const char* file, int line);
    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// A text that is no time: "DtString conversion error: " and the text of the code.
class ZU_BASE_API DtEx::DtStringError : public std::logic_error, public DtEx
{
public:
    enum ErrorCode : int
    {
        RateNumeratorMalformed,
        RateNumeratorOverflow,
        RateDenominatorMalformed,
        RateDenominatorOverflow
    };

    DtStringError(const char* file, int line, ErrorCode code);
    const char* what() const noexcept override;
    ExBase* clone() const override;

    ErrorCode getErrorCode() const;

    /// "Rate numerator malformed.", "Rate numerator overflow.", "Rate denominator malformed.",
    /// "Rate denominator overflow.", and "Unknown error." for what is no code.
    static const char* toString(ErrorCode code);

private:
    ErrorCode _code;
};

} // namespace Zu

#endif

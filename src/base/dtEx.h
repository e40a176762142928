/// @file
/// The exceptions of discrete time.

#ifndef ZU_BASE_DTEX_H
#define ZU_BASE_DTEX_H

#include "exBase.h"

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

/// "Mismatched reference clock rates." For users of reference times; the library itself never
/// raises it.
class ZU_BASE_API DtEx::BadRefRate : public std::logic_error, public DtEx
{
public:
    BadRefRate(const char* file, int line);
    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// A text that is not a time: "DtString conversion error: " and the text of the code.
class ZU_BASE_API DtEx::DtStringError : public std::logic_error, public DtEx
{
public:
    /// What is wrong with the text.
    enum ErrorCode : int
    {
        /// The numerator of the rate is missing or has no digits.
        RateNumeratorMalformed,
        /// The numerator of the rate does not fit in 32 bits.
        RateNumeratorOverflow,
        /// The denominator of the rate is missing or has no digits.
        RateDenominatorMalformed,
        /// The denominator of the rate does not fit in 32 bits.
        RateDenominatorOverflow
    };

    /// The text of the code becomes the end of the reason.
    DtStringError(const char* file, int line, ErrorCode code);
    const char* what() const noexcept override;
    ExBase* clone() const override;

    /// The code that the constructor was given.
    ErrorCode getErrorCode() const;

    /// "Rate numerator malformed.", "Rate numerator overflow.", "Rate denominator malformed.",
    /// "Rate denominator overflow.", and "Unknown error." for any other value.
    static const char* toString(ErrorCode code);

private:
    ErrorCode _code;
};

} // namespace Zu

#endif

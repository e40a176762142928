/// @file
/// The exceptions of rational numbers.

#ifndef ZU_BASE_RATIONALEX_H
#define ZU_BASE_RATIONALEX_H

#include "exBase.h"

#include <stdexcept>

namespace Zu
{

/// Root of the exceptions of Rational.
class ZU_BASE_API RationalEx : public ExBase
{
public:
    class ExDenominatorZero;

    /// Raises ExDenominatorZero.
    [[noreturn]] static void throwDenominatorZero(const char* file, int line);

protected:
    RationalEx(const char* file, int line);
};

/// A fraction by 0: "Illegal zero denominator."
class ZU_BASE_API RationalEx::ExDenominatorZero : public std::invalid_argument, public RationalEx
{
public:
    ExDenominatorZero(const char* file, int line);
    const char* what() const noexcept override;
    ExBase* clone() const override;
};

} // namespace Zu

#endif

/// @file
/// Division of floating-point numbers where the divisor may be 0.

#ifndef ZU_BASE_IEEEDIVIDE_H
#define ZU_BASE_IEEEDIVIDE_H

#include "compiler.h"

#include <limits>

namespace Zu
{

/// `a / b` by the rules of IEEE 754, also for a divisor of 0, where the language leaves it
/// undefined: the result is then an infinity with the sign of the quotient, or a NaN for 0 / 0 and
/// for a NaN.
template <class T> constexpr T ieeeDivide(T a, T b) noexcept
{
    if (b != T(0)) return a / b;
    // Neither 0 nor a NaN is on one side of 0.
    if (!(a < T(0)) && !(a > T(0))) return std::numeric_limits<T>::quiet_NaN();
    const bool isNegative = (a < T(0)) != Compiler::isSignBitSet(b);
    return isNegative ? -std::numeric_limits<T>::infinity() : std::numeric_limits<T>::infinity();
}

} // namespace Zu

#endif

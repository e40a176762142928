/// @file
/// Floating-point numbers to integers, defined for every number.

#ifndef ZU_BASE_TRUNCATETO_H
#define ZU_BASE_TRUNCATETO_H

#include <limits>

namespace Zu
{

/// Truncates toward zero. A value that does not fit, and a NaN, gives the smallest integer, as the
/// conversion of x86-64 processors does.
template <class Integer, class Float> constexpr Integer truncateTo(Float value) noexcept
{
    constexpr Integer LOWEST = std::numeric_limits<Integer>::min();
    // A power of two, and so exact in every floating-point type.
    constexpr Float BOUND = -static_cast<Float>(LOWEST);
    // In a type with digits to spare, there are fractions between this and the bound.
    return value > -BOUND - 1 && value < BOUND ? static_cast<Integer>(value) : LOWEST;
}

} // namespace Zu

#endif

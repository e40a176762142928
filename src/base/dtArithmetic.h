/// @file
/// The arithmetic of times: defined for every operand, and the same everywhere.

#ifndef ZU_BASE_DTARITHMETIC_H
#define ZU_BASE_DTARITHMETIC_H

#include "truncateTo.h"

#include <cstdint>
#include <limits>

/// Signed integers that wrap around, and conversions of floating-point numbers that are also
/// defined outside the range of the integer. A divisor of 0 is a fault of the caller, as with the
/// processor's own division.
namespace Zu::DtArithmetic
{

/// @{
/// 64-bit arithmetic that wraps around.
constexpr std::int64_t add(std::int64_t a, std::int64_t b) noexcept
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}

constexpr std::int64_t subtract(std::int64_t a, std::int64_t b) noexcept
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}

constexpr std::int64_t multiply(std::int64_t a, std::int64_t b) noexcept
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}
/// @}

/// The quotient truncated toward zero. A processor traps when the smallest number is divided by -1;
/// here the result is the negation, which wraps.
constexpr std::int64_t divide(std::int64_t a, std::int64_t b) noexcept
{
    return b == -1 ? subtract(0, a) : a / b;
}

/// The remainder of divide(), with the sign of `a`.
constexpr std::int64_t remainder(std::int64_t a, std::int64_t b) noexcept
{
    return b == -1 ? 0 : a % b;
}

/// The 32-bit product, which wraps around.
constexpr std::int32_t multiply32(std::int32_t a, std::int32_t b) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

/// The number truncated toward zero by truncateTo().
constexpr std::int64_t truncate(double value) noexcept
{
    return truncateTo<std::int64_t>(value);
}

/// Rounded down. A number that is whole, does not fit or is a NaN gives truncate(). Any other
/// passes through `double` once more, so beyond 2^53 the result is a number that `double` can
/// represent.
constexpr std::int64_t floor(double value) noexcept
{
    const std::int64_t n = truncate(value);
    if (n == std::numeric_limits<std::int64_t>::min() || static_cast<double>(n) == value) return n;
    return truncate(static_cast<double>(value < 0 ? n - 1 : n));
}

/// Rounded up, by the rules of floor().
constexpr std::int64_t ceil(double value) noexcept
{
    const std::int64_t n = truncate(value);
    if (n == std::numeric_limits<std::int64_t>::min() || static_cast<double>(n) == value) return n;
    return truncate(static_cast<double>(value < 0 ? n : n + 1));
}

} // namespace Zu::DtArithmetic

#endif

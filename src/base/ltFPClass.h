/// @file
/// Classification of floating-point values.

#ifndef ZU_BASE_LTFPCLASS_H
#define ZU_BASE_LTFPCLASS_H

#include <limits>

namespace Zu
{

/// Checks for classes of floating-point values. Any thread may call them.
class LtFPClass
{
public:
    LtFPClass() = delete;

    /// @{
    /// Whether it is a NaN.
    static constexpr bool isNaN(double x) noexcept
    {
        return x != x;
    }

    static constexpr bool isNaN(float x) noexcept
    {
        return isNaN(static_cast<double>(x));
    }
    /// @}

    /// @{
    /// Whether it is positive or negative infinity.
    static constexpr bool isInfinity(double x) noexcept
    {
        return isPositiveInfinity(x) || isNegativeInfinity(x);
    }

    static constexpr bool isInfinity(float x) noexcept
    {
        return isInfinity(static_cast<double>(x));
    }
    /// @}

    /// @{
    /// Whether it is positive infinity.
    static constexpr bool isPositiveInfinity(double x) noexcept
    {
        return x == std::numeric_limits<double>::infinity();
    }

    static constexpr bool isPositiveInfinity(float x) noexcept
    {
        return isPositiveInfinity(static_cast<double>(x));
    }
    /// @}

    /// @{
    /// Whether it is negative infinity.
    static constexpr bool isNegativeInfinity(double x) noexcept
    {
        return x == -std::numeric_limits<double>::infinity();
    }

    static constexpr bool isNegativeInfinity(float x) noexcept
    {
        return isNegativeInfinity(static_cast<double>(x));
    }
    /// @}

    /// @{
    /// Whether it is neither infinite nor a NaN.
    static constexpr bool isFinite(double x) noexcept
    {
        return !isNaN(x) && !isInfinity(x);
    }

    static constexpr bool isFinite(float x) noexcept
    {
        return isFinite(static_cast<double>(x));
    }
    /// @}
};

} // namespace Zu

#endif

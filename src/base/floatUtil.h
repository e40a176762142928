/// @file
/// Mathematics in single and double precision, and comparison with a tolerance.

#ifndef ZU_BASE_FLOATUTIL_H
#define ZU_BASE_FLOATUTIL_H

#include "compiler.h"
#include "ltFPClass.h"
#include "truncateTo.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace Zu
{

/// The operations of FloatUtil for one precision.
template <class T> class FloatUtilOf
{
    static constexpr bool IS_SINGLE = std::is_same_v<T, float>;
    // The integer type that floor() and ceil() convert through.
    using Whole = std::conditional_t<IS_SINGLE, std::int32_t, std::int64_t>;

    // Chooses between the constants for single and double precision.
    static constexpr T choose(float single, double both) noexcept
    {
        return IS_SINGLE ? static_cast<T>(single) : static_cast<T>(both);
    }

    static constexpr bool isUnchanged(Whole whole, T x) noexcept
    {
        return whole == std::numeric_limits<Whole>::min() || static_cast<T>(whole) == x;
    }

public:
    /// The argument with its sign bit cleared.
    static constexpr T abs(T x) noexcept
    {
        using Bits = std::conditional_t<IS_SINGLE, std::uint32_t, std::uint64_t>;
        return Compiler::bitCast<T>(Compiler::bitCast<Bits>(x) & (~Bits{0} >> 1));
    }

    /// The default tolerance of comparisons: 0.0001 for `float` and 1e-7 for `double`.
    static constexpr T getCompareEps(T) noexcept
    {
        return choose(0.0001F, 1e-7);
    }

    /// The decimal digits that go with that tolerance: 5 and 8.
    static constexpr int getCompareEpsPrecision(T) noexcept
    {
        return IS_SINGLE ? 5 : 8;
    }

    /// 1 for numbers from 0 on, including -0; -1 for all others, including a NaN.
    static constexpr int sgn(T x) noexcept
    {
        return x >= 0 ? 1 : -1;
    }

    /// Rounds down to a whole number. A value that is whole, a NaN, or beyond 32 bits (float) or 64
    /// bits (double) is returned unchanged.
    static constexpr T floor(T x) noexcept
    {
        const auto whole = truncateTo<Whole>(x);
        if (isUnchanged(whole, x)) return x;
        return static_cast<T>(x < 0 ? whole - 1 : whole);
    }

    /// Rounds up to a whole number, by the rules of floor(); never to -0.
    static constexpr T ceil(T x) noexcept
    {
        const auto whole = truncateTo<Whole>(x);
        if (isUnchanged(whole, x)) return x;
        return static_cast<T>(x < 0 ? whole : whole + 1);
    }

    /// floor(x + 0.5): halves go up, also below 0.
    static constexpr T round(T x) noexcept
    {
        return floor(x + static_cast<T>(0.5));
    }

    /// @{
    /// The same as the functions of the standard library. mod() is `std::fmod`, with the sign of
    /// `x`.
    static T mod(T x, T y)
    {
        return std::fmod(x, y);
    }

    static T pow(T x, T y)
    {
        return std::pow(x, y);
    }

    static T sqrt(T x)
    {
        return std::sqrt(x);
    }
    /// @}

    /// sqrt(x * x + y * y), not guarded against intermediate overflow.
    static T hypot(T x, T y)
    {
        return std::sqrt(x * x + y * y);
    }

    /// @{
    /// The same as the functions of the standard library; angles are in radians.
    static T sin(T x)
    {
        return std::sin(x);
    }

    static T cos(T x)
    {
        return std::cos(x);
    }

    static T tan(T x)
    {
        return std::tan(x);
    }

    static T asin(T x)
    {
        return std::asin(x);
    }

    static T acos(T x)
    {
        return std::acos(x);
    }

    static T atan(T x)
    {
        return std::atan(x);
    }

    static T atan2(T y, T x)
    {
        return std::atan2(y, x);
    }

    static T exp(T x)
    {
        return std::exp(x);
    }

    static T log(T x)
    {
        return std::log(x);
    }

    static T log10(T x)
    {
        return std::log10(x);
    }
    /// @}

    /// @{
    /// The same as the checks of LtFPClass.
    static constexpr bool isnan(T x) noexcept
    {
        return LtFPClass::isNaN(x);
    }

    static constexpr bool isfinite(T x) noexcept
    {
        return LtFPClass::isFinite(x);
    }

    static constexpr bool isinf(T x) noexcept
    {
        return LtFPClass::isInfinity(x);
    }
    /// @}

    /// Converts an angle to degrees.
    static constexpr T radiansToDegrees(T x) noexcept
    {
        return x * T(180) * choose(0.31830987F, 0.3183098861837907);
    }

    /// Converts an angle to radians.
    static constexpr T degreesToRadians(T x) noexcept
    {
        return x * choose(3.1415927F, 3.141592653589793) *
               choose(0.0055555557F, 0.005555555555555556);
    }

    /// Whether both differ by less than `eps`, or an operand is a NaN.
    static constexpr bool isEqual(T a, T b, T eps) noexcept
    {
        return !(abs(a - b) >= eps);
    }

    /// Whether `a` is above `b` by more than `eps`.
    static constexpr bool isGreater(T a, T b, T eps) noexcept
    {
        return a > b + eps;
    }

    /// Whether `a` is above `b`, or below it by less than `eps`.
    static constexpr bool isGreaterEqual(T a, T b, T eps) noexcept
    {
        return a > b - eps;
    }

    /// Whether `a` is below `b` by more than `eps`, or an operand is a NaN.
    static constexpr bool isSmaller(T a, T b, T eps) noexcept
    {
        return !(a >= b - eps);
    }

    /// Whether `a` is below `b`, or above it by less than `eps`, or an operand is a NaN.
    static constexpr bool isSmallerEqual(T a, T b, T eps) noexcept
    {
        return !(a >= b + eps);
    }

    /// @{
    /// With the tolerance of getCompareEps().
    static constexpr bool isEqual(T a, T b) noexcept
    {
        return isEqual(a, b, getCompareEps(a));
    }

    static constexpr bool isGreater(T a, T b) noexcept
    {
        return isGreater(a, b, getCompareEps(a));
    }

    static constexpr bool isGreaterEqual(T a, T b) noexcept
    {
        return isGreaterEqual(a, b, getCompareEps(a));
    }

    static constexpr bool isSmaller(T a, T b) noexcept
    {
        return isSmaller(a, b, getCompareEps(a));
    }

    static constexpr bool isSmallerEqual(T a, T b) noexcept
    {
        return isSmallerEqual(a, b, getCompareEps(a));
    }
    /// @}
};

/// The mathematics of both precisions under one name; each operation computes in the precision of
/// its argument. Errors are not reported: domain and range errors follow the platform and IEEE 754.
///
/// Comparisons with a tolerance are strict: a value exactly `eps` away is outside in every form.
/// isEqual(), isSmaller() and isSmallerEqual() are deliberately true when an operand is a NaN,
/// whereas isGreater() and isGreaterEqual() are false.
///
/// The operations are compiled with the caller's options. hypot() and smoothStep() give the same
/// bits everywhere as long as those options forbid fused multiply-add (`-ffp-contract=off`).
///
/// Any thread may call them.
class FloatUtil : private FloatUtilOf<float>, private FloatUtilOf<double>
{
public:
    FloatUtil() = delete;

    // Every operation of FloatUtilOf, for both precisions.
    using FloatUtilOf<float>::abs;
    using FloatUtilOf<double>::abs;
    using FloatUtilOf<float>::acos;
    using FloatUtilOf<double>::acos;
    using FloatUtilOf<float>::asin;
    using FloatUtilOf<double>::asin;
    using FloatUtilOf<float>::atan;
    using FloatUtilOf<double>::atan;
    using FloatUtilOf<float>::atan2;
    using FloatUtilOf<double>::atan2;
    using FloatUtilOf<float>::ceil;
    using FloatUtilOf<double>::ceil;
    using FloatUtilOf<float>::cos;
    using FloatUtilOf<double>::cos;
    using FloatUtilOf<float>::degreesToRadians;
    using FloatUtilOf<double>::degreesToRadians;
    using FloatUtilOf<float>::exp;
    using FloatUtilOf<double>::exp;
    using FloatUtilOf<float>::floor;
    using FloatUtilOf<double>::floor;
    using FloatUtilOf<float>::getCompareEps;
    using FloatUtilOf<double>::getCompareEps;
    using FloatUtilOf<float>::getCompareEpsPrecision;
    using FloatUtilOf<double>::getCompareEpsPrecision;
    using FloatUtilOf<float>::hypot;
    using FloatUtilOf<double>::hypot;
    using FloatUtilOf<float>::isEqual;
    using FloatUtilOf<double>::isEqual;
    using FloatUtilOf<float>::isGreater;
    using FloatUtilOf<double>::isGreater;
    using FloatUtilOf<float>::isGreaterEqual;
    using FloatUtilOf<double>::isGreaterEqual;
    using FloatUtilOf<float>::isSmaller;
    using FloatUtilOf<double>::isSmaller;
    using FloatUtilOf<float>::isSmallerEqual;
    using FloatUtilOf<double>::isSmallerEqual;
    using FloatUtilOf<float>::isfinite;
    using FloatUtilOf<double>::isfinite;
    using FloatUtilOf<float>::isinf;
    using FloatUtilOf<double>::isinf;
    using FloatUtilOf<float>::isnan;
    using FloatUtilOf<double>::isnan;
    using FloatUtilOf<float>::log;
    using FloatUtilOf<double>::log;
    using FloatUtilOf<float>::log10;
    using FloatUtilOf<double>::log10;
    using FloatUtilOf<float>::mod;
    using FloatUtilOf<double>::mod;
    using FloatUtilOf<float>::pow;
    using FloatUtilOf<double>::pow;
    using FloatUtilOf<float>::radiansToDegrees;
    using FloatUtilOf<double>::radiansToDegrees;
    using FloatUtilOf<float>::round;
    using FloatUtilOf<double>::round;
    using FloatUtilOf<float>::sgn;
    using FloatUtilOf<double>::sgn;
    using FloatUtilOf<float>::sin;
    using FloatUtilOf<double>::sin;
    using FloatUtilOf<float>::sqrt;
    using FloatUtilOf<double>::sqrt;
    using FloatUtilOf<float>::tan;
    using FloatUtilOf<double>::tan;

    /// `low` below `edge0` and for a NaN; `high` from `edge1` on; between them the cubic curve
    /// whose slope is 0 at both ends.
    static constexpr float smoothStep(float edge0, float edge1, float x, float low,
                                      float high) noexcept
    {
        if (!(x >= edge0)) return low;
        if (x >= edge1) return high;
        const float t = (x - edge0) / (edge1 - edge0);
        return (3.0F - 2.0F * t) * t * t * (high - low) + low;
    }
};

} // namespace Zu

#endif

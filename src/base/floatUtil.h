/// @file
/// Mathematics of single and double precision, and comparison with a tolerance.

#ifndef ZU_BASE_FLOATUTIL_H
#define ZU_BASE_FLOATUTIL_H

#include "base/ltFPClass.h"
#include "base/truncateTo.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace Zu
{

/// One name for the mathematics of both precisions; an operation computes in the precision of its
/// argument. Nothing is reported: errors of domain and range follow the platform and IEEE 754.
///
/// Comparisons with a tolerance are strict: what lies exactly `eps` away is outside in every form.
/// isEqual(), isSmaller() and isSmallerEqual() are deliberately true when an operand is a NaN,
/// isGreater() and isGreaterEqual() false.
///
/// Any thread may call them.
class FloatUtil
{
    template <class T> using IfFloat = std::enable_if_t<std::is_floating_point_v<T>, T>;

public:
    FloatUtil() = delete;

    /// The argument with its sign bit cleared.
    static constexpr float abs(float x) noexcept
    {
        return __builtin_fabsf(x);
    }

    static constexpr double abs(double x) noexcept
    {
        return __builtin_fabs(x);
    }

    /// The tolerance of comparisons that are given none: 0.0001 and 1e-7.
    static constexpr float getCompareEps(float) noexcept
    {
        return 0.0001F;
    }

    static constexpr double getCompareEps(double) noexcept
    {
        return 1e-7;
    }

    /// The decimal digits that go with that: 5 and 8.
    static constexpr int getCompareEpsPrecision(float) noexcept
    {
        return 5;
    }

    static constexpr int getCompareEpsPrecision(double) noexcept
    {
        return 8;
    }

    /// 1 for numbers from 0 on, -0 among them, and -1 for all others, a NaN among them.
    template <class T, class = IfFloat<T>> static constexpr int sgn(T x) noexcept
    {
        return x >= 0 ? 1 : -1;
    }

    /// Down to a whole number. What is whole, a NaN, or beyond 32 bits (float) or 64 bits (double)
    /// comes back as it is.
    template <class T, class = IfFloat<T>> static constexpr T floor(T x) noexcept
    {
        const auto whole = truncateTo<Whole<T>>(x);
        if (isUnchanged(whole, x)) return x;
        return static_cast<T>(x < 0 ? whole - 1 : whole);
    }

    /// Up to a whole number, with the rules of floor(); never to -0.
    template <class T, class = IfFloat<T>> static constexpr T ceil(T x) noexcept
    {
        const auto whole = truncateTo<Whole<T>>(x);
        if (isUnchanged(whole, x)) return x;
        return static_cast<T>(x < 0 ? whole : whole + 1);
    }

    /// floor(x + 0.5): halves go up, also below 0.
    template <class T, class = IfFloat<T>> static constexpr T round(T x) noexcept
    {
        return floor(x + static_cast<T>(0.5));
    }

    template <class T, class = IfFloat<T>> static T mod(T x, T y)
    {
        return std::fmod(x, y);
    }

    template <class T, class = IfFloat<T>> static T pow(T x, T y)
    {
        return std::pow(x, y);
    }

    template <class T, class = IfFloat<T>> static T sqrt(T x)
    {
        return std::sqrt(x);
    }

    /// sqrt(x * x + y * y); not guarded against overflow on the way.
    template <class T, class = IfFloat<T>> static T hypot(T x, T y)
    {
        return std::sqrt(x * x + y * y);
    }

    template <class T, class = IfFloat<T>> static T sin(T x)
    {
        return std::sin(x);
    }

    template <class T, class = IfFloat<T>> static T cos(T x)
    {
        return std::cos(x);
    }

    template <class T, class = IfFloat<T>> static T tan(T x)
    {
        return std::tan(x);
    }

    template <class T, class = IfFloat<T>> static T asin(T x)
    {
        return std::asin(x);
    }

    template <class T, class = IfFloat<T>> static T acos(T x)
    {
        return std::acos(x);
    }

    template <class T, class = IfFloat<T>> static T atan(T x)
    {
        return std::atan(x);
    }

    template <class T, class = IfFloat<T>> static T atan2(T y, T x)
    {
        return std::atan2(y, x);
    }

    template <class T, class = IfFloat<T>> static T exp(T x)
    {
        return std::exp(x);
    }

    template <class T, class = IfFloat<T>> static T log(T x)
    {
        return std::log(x);
    }

    template <class T, class = IfFloat<T>> static T log10(T x)
    {
        return std::log10(x);
    }

    template <class T, class = IfFloat<T>> static constexpr bool isnan(T x) noexcept
    {
        return LtFPClass::isNaN(x);
    }

    template <class T, class = IfFloat<T>> static constexpr bool isfinite(T x) noexcept
    {
        return LtFPClass::isFinite(x);
    }

    template <class T, class = IfFloat<T>> static constexpr bool isinf(T x) noexcept
    {
        return LtFPClass::isInfinity(x);
    }

    /// `low` before `edge0`, and for a NaN; `high` from `edge1` on; between, the cubic curve that
    /// leaves and enters both levelly.
    static constexpr float smoothStep(float edge0, float edge1, float x, float low,
                                      float high) noexcept
    {
        if (!(x >= edge0)) return low;
        if (x >= edge1) return high;
        const float t = (x - edge0) / (edge1 - edge0);
        return (3.0F - 2.0F * t) * t * t * (high - low) + low;
    }

    static constexpr float radiansToDegrees(float x) noexcept
    {
        return x * 180.0F * 0.31830987F;
    }

    static constexpr double radiansToDegrees(double x) noexcept
    {
        return x * 180.0 * 0.3183098861837907;
    }

    static constexpr float degreesToRadians(float x) noexcept
    {
        return x * 3.1415927F * 0.0055555557F;
    }

    static constexpr double degreesToRadians(double x) noexcept
    {
        return x * 3.141592653589793 * 0.005555555555555556;
    }

    /// Whether both lie closer than `eps`.
    template <class T, class = IfFloat<T>> static constexpr bool isEqual(T a, T b, T eps) noexcept
    {
        return !(abs(a - b) >= eps);
    }

    template <class T, class = IfFloat<T>> static constexpr bool isGreater(T a, T b, T eps) noexcept
    {
        return a > b + eps;
    }

    template <class T, class = IfFloat<T>>
    static constexpr bool isGreaterEqual(T a, T b, T eps) noexcept
    {
        return a > b - eps;
    }

    template <class T, class = IfFloat<T>> static constexpr bool isSmaller(T a, T b, T eps) noexcept
    {
        return !(a >= b - eps);
    }

    template <class T, class = IfFloat<T>>
    static constexpr bool isSmallerEqual(T a, T b, T eps) noexcept
    {
        return !(a >= b + eps);
    }

    // With the tolerance of getCompareEps().

    template <class T, class = IfFloat<T>> static constexpr bool isEqual(T a, T b) noexcept
    {
        return isEqual(a, b, getCompareEps(a));
    }

    template <class T, class = IfFloat<T>> static constexpr bool isGreater(T a, T b) noexcept
    {
        return isGreater(a, b, getCompareEps(a));
    }

    template <class T, class = IfFloat<T>> static constexpr bool isGreaterEqual(T a, T b) noexcept
    {
        return isGreaterEqual(a, b, getCompareEps(a));
    }

    template <class T, class = IfFloat<T>> static constexpr bool isSmaller(T a, T b) noexcept
    {
        return isSmaller(a, b, getCompareEps(a));
    }

    template <class T, class = IfFloat<T>> static constexpr bool isSmallerEqual(T a, T b) noexcept
    {
        return isSmallerEqual(a, b, getCompareEps(a));
    }

private:
    // The integers through which floor() and ceil() go.
    template <class T>
    using Whole = std::conditional_t<std::is_same_v<T, float>, std::int32_t, std::int64_t>;

    template <class T> static constexpr bool isUnchanged(Whole<T> whole, T x) noexcept
    {
        return whole == std::numeric_limits<Whole<T>>::min() || static_cast<T>(whole) == x;
    }
};

} // namespace Zu

#endif

/// @file
/// Closed ranges of numbers.

#ifndef ZU_BASE_INTERVAL_H
#define ZU_BASE_INTERVAL_H

#include "floatUtil.h"
#include "ieeeDivide.h"
#include "plainNumber.h"

#include <algorithm>
#include <cstddef>
#include <optional> // std::hash, at a quarter of the cost of <functional>
#include <ostream>

namespace Zu
{

/// The range from one bound to the other, with interval arithmetic. Nothing keeps the lower bound
/// at or below the upper one: an interval can be inverted, see isInverted().
///
/// `T` is `float` or `double`; with DtTimeIndex an interval is only a pair of bounds. For a bound
/// that is a NaN, the "unless" and "if" of the comments below are deliberately to be taken
/// literally.
template <class T> class Interval
{
public:
    /// How an interval relates to another one.
    enum Containment
    {
        /// They have nothing in common.
        DISJOINT,
        /// It lies inside the other one or equals it.
        CONTAINED,
        /// They overlap, and neither lies inside the other.
        OVERLAPPING,
        /// The other one lies inside it.
        CONTAINING
    };

    /// @{
    /// The interval of one value, or from `min` to `max`, which are stored unchanged.
    constexpr Interval(T value) noexcept : _min(value), _max(value) {}
    constexpr Interval(T min, T max) noexcept : _min(min), _max(max) {}
    /// @}

    /// Upper bound minus lower bound; negative if the interval is inverted.
    constexpr T getLength() const noexcept
    {
        return _max - _min;
    }

    /// Half the sum of the bounds.
    constexpr T getCenter() const noexcept
    {
        return (_max + _min) * static_cast<T>(0.5);
    }

    /// @{
    /// Shifts both bounds.
    constexpr Interval& operator+=(T v) noexcept
    {
        _min += v;
        _max += v;
        return *this;
    }

    constexpr Interval& operator-=(T v) noexcept
    {
        _min -= v;
        _max -= v;
        return *this;
    }
    /// @}

    /// Adds each bound of `o` to the same bound of this interval.
    constexpr Interval& operator+=(const Interval& o) noexcept
    {
        const Interval other = o;
        _min += other._min;
        _max += other._max;
        return *this;
    }

    /// Subtracts from each bound the opposite bound of `o`.
    constexpr Interval& operator-=(const Interval& o) noexcept
    {
        const Interval other = o;
        _min -= other._max;
        _max -= other._min;
        return *this;
    }

    /// Scales both bounds, which change places unless `v` is at or above 0.
    constexpr Interval& operator*=(T v) noexcept
    {
        *this = v >= 0 ? Interval(_min * v, _max * v) : Interval(_max * v, _min * v);
        return *this;
    }

    /// Divides both bounds, which change places unless `v` is at or above 0. Division by 0 follows
    /// IEEE 754.
    constexpr Interval& operator/=(T v) noexcept
    {
        *this = v >= 0 ? Interval(ieeeDivide(_min, v), ieeeDivide(_max, v))
                       : Interval(ieeeDivide(_max, v), ieeeDivide(_min, v));
        return *this;
    }

    /// @{
    /// The in-place forms of the operators below.
    constexpr Interval& operator*=(const Interval& o) noexcept
    {
        return *this = *this * o;
    }

    constexpr Interval& operator/=(const Interval& o) noexcept
    {
        return *this = *this / o;
    }
    /// @}

    /// The interval from the least to the greatest product of the bounds.
    friend constexpr Interval operator*(const Interval& a, const Interval& b) noexcept
    {
        const T products[] = {a._min * b._min, a._min * b._max, a._max * b._min, a._max * b._max};
        return Interval(
            std::min(std::min(products[0], products[1]), std::min(products[2], products[3])),
            std::max(std::max(products[0], products[1]), std::max(products[2], products[3])));
    }

    /// Multiplies by the reciprocal, from 1 / upper bound to 1 / lower bound in double precision. A
    /// 0 in `b` is not treated specially: it gives infinities or NaNs.
    friend constexpr Interval operator/(const Interval& a, const Interval& b) noexcept
    {
        return a * Interval(static_cast<T>(ieeeDivide(1.0, static_cast<double>(b._max))),
                            static_cast<T>(ieeeDivide(1.0, static_cast<double>(b._min))));
    }

    /// @{
    /// The same as the in-place operators.
    friend constexpr Interval operator+(Interval a, const Interval& b) noexcept
    {
        return a += b;
    }

    friend constexpr Interval operator-(Interval a, const Interval& b) noexcept
    {
        return a -= b;
    }
    /// @}

    /// Grows to include `v`: the lower bound becomes `v` unless `v` is at or above it, the upper
    /// bound becomes `v` if `v` is above it.
    constexpr void extend(T v) noexcept
    {
        extend(Interval(v));
    }

    /// Grows to include `o`, by the same rule for each bound and its counterpart in `o`.
    constexpr void extend(const Interval& o) noexcept
    {
        const Interval other = o;
        if (!(other._min >= _min)) _min = other._min;
        if (other._max > _max) _max = other._max;
    }

    /// Shrinks to the intersection, which can be inverted: the lower bound becomes `v` if `v` is
    /// above it, the upper bound becomes `v` unless `v` is at or above it.
    constexpr void intersect(T v) noexcept
    {
        intersect(Interval(v));
    }

    /// Shrinks to the intersection with `o`, by the same rule for each bound and its counterpart in
    /// `o`.
    constexpr void intersect(const Interval& o) noexcept
    {
        const Interval other = o;
        if (other._min > _min) _min = other._min;
        if (!(other._max >= _max)) _max = other._max;
    }

    /// @{
    /// Whether `v`, or all of `o`, lies inside. An open end does not belong to the interval.
    constexpr bool containsClosed(T v) const noexcept
    {
        return v >= _min && v <= _max;
    }

    constexpr bool containsClosed(const Interval& o) const noexcept
    {
        return o._min >= _min && o._max <= _max;
    }

    constexpr bool containsOpen(T v) const noexcept
    {
        return v > _min && v < _max;
    }

    constexpr bool containsOpen(const Interval& o) const noexcept
    {
        return o._min > _min && o._max < _max;
    }

    constexpr bool containsLeftOpen(T v) const noexcept
    {
        return v > _min && v <= _max;
    }

    constexpr bool containsLeftOpen(const Interval& o) const noexcept
    {
        return o._min > _min && o._max <= _max;
    }

    constexpr bool containsRightOpen(T v) const noexcept
    {
        return v >= _min && v < _max;
    }

    constexpr bool containsRightOpen(const Interval& o) const noexcept
    {
        return o._min >= _min && o._max < _max;
    }
    /// @}

    /// How this interval relates to `o`; sharing only an end point counts as an overlap.
    constexpr Containment getInclusiveContainment(const Interval& o) const noexcept
    {
        const bool meet = !(_min > o._max) && !(o._min > _max);
        return static_cast<Containment>(_inclContMap[4 * meet + 2 * !liesInside(o) + 1 * holds(o)]);
    }

    /// How this interval relates to `o`; sharing only an end point does not count as an overlap.
    constexpr Containment getExclusiveContainment(const Interval& o) const noexcept
    {
        const bool interiorsMeet = !(_min >= o._max) && !(o._min >= _max);
        return static_cast<Containment>(
            _exclContMap[4 * !liesInside(o) + 2 * interiorsMeet + 1 * holds(o)]);
    }

    /// The value in the interval nearest to `v`. An inverted interval gives its lower bound for any
    /// `v` below that bound, and its upper bound for all others.
    constexpr T clamp(T v) const noexcept
    {
        if (!(v >= _min)) return _min;
        return _max >= v ? v : _max;
    }

    /// Whether the lower bound is above the upper one.
    constexpr bool isInverted() const noexcept
    {
        return _min > _max;
    }

    /// Whether the interval is not inverted; also true with a NaN.
    constexpr bool isValid() const noexcept
    {
        return !isInverted();
    }

    /// Whether there is anything between the bounds, or a bound is a NaN.
    constexpr bool isNonEmptyOpen() const noexcept
    {
        return !(_min >= _max);
    }

    /// Whether both bounds are equal by FloatUtil::isEqual().
    constexpr bool isEqual(const Interval& o, T eps) const noexcept
    {
        return FloatUtil::isEqual(_min, o._min, eps) && FloatUtil::isEqual(_max, o._max, eps);
    }

    /// Whether the bounds are the same.
    friend constexpr bool operator==(const Interval& a, const Interval& b) noexcept
    {
        return a._min == b._min && a._max == b._max;
    }

    /// Whether a bound differs; always true with a NaN.
    friend constexpr bool operator!=(const Interval& a, const Interval& b) noexcept
    {
        return !(a == b);
    }

    /// Writes "[0, 1]", independent of the locale; a NaN is written without a sign.
    friend std::ostream& operator<<(std::ostream& os, const Interval& interval)
    {
        return os << "[" << plainNumber(interval._min) << ", " << plainNumber(interval._max) << "]";
    }

    /// The lower bound.
    T _min;
    /// The upper bound.
    T _max;

private:
    static constexpr int _inclContMap[8] = {0, 0, 0, 0, 1, 1, 2, 3};
    static constexpr int _exclContMap[8] = {0, 0, 1, 1, 0, 0, 2, 3};

    constexpr bool liesInside(const Interval& o) const noexcept
    {
        return _min >= o._min && o._max >= _max;
    }

    constexpr bool holds(const Interval& o) const noexcept
    {
        return !(_min > o._min) && !(o._max > _max);
    }
};

} // namespace Zu

/// Hashes intervals, for unordered containers.
template <class T> struct std::hash<Zu::Interval<T>>
{
    /// Equal intervals have equal hashes.
    std::size_t operator()(const Zu::Interval<T>& interval) const noexcept
    {
        return std::hash<T>()(interval._min) * 31 + std::hash<T>()(interval._max);
    }
};

#endif

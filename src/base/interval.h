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

/// The range from one bound to the other, with the arithmetic of intervals. Nothing keeps the lower
/// bound at or below the upper one: an interval can be inverted, and isInverted() tells.
///
/// It is used of `float` and `double`; of DtTimeIndex it is a pair of bounds. A bound that is a NaN
/// is deliberately treated as the phrases below say, "unless" and "if" taken to the letter.
template <class T> class Interval
{
public:
    /// What an interval is to another one.
    enum Containment
    {
        /// They have no common part.
        DISJOINT,
        /// It lies inside the other, or is equal to it.
        CONTAINED,
        /// They share a part, and neither lies inside the other.
        OVERLAPPING,
        /// The other lies inside it.
        CONTAINING
    };

    /// @{
    /// The one value, or from `min` to `max`, which are kept as they are.
    constexpr Interval(T value) noexcept : _min(value), _max(value) {}
    constexpr Interval(T min, T max) noexcept : _min(min), _max(max) {}
    /// @}

    /// Upper bound less lower bound; negative if the interval is inverted.
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
    /// Moves both bounds.
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

    /// Adds the bounds of `o` to those here, each to its own.
    constexpr Interval& operator+=(const Interval& o) noexcept
    {
        const Interval other = o;
        _min += other._min;
        _max += other._max;
        return *this;
    }

    /// The bounds cross over.
    constexpr Interval& operator-=(const Interval& o) noexcept
    {
        const Interval other = o;
        _min -= other._max;
        _max -= other._min;
        return *this;
    }

    /// The bounds change places unless `v` is at or above 0.
    constexpr Interval& operator*=(T v) noexcept
    {
        *this = v >= 0 ? Interval(_min * v, _max * v) : Interval(_max * v, _min * v);
        return *this;
    }

    /// The bounds change places unless `v` is at or above 0; a division by 0 follows IEEE 754.
    constexpr Interval& operator/=(T v) noexcept
    {
        *this = v >= 0 ? Interval(ieeeDivide(_min, v), ieeeDivide(_max, v))
                       : Interval(ieeeDivide(_max, v), ieeeDivide(_min, v));
        return *this;
    }

    /// @{
    /// As the operators of two intervals below.
    constexpr Interval& operator*=(const Interval& o) noexcept
    {
        return *this = *this * o;
    }

    constexpr Interval& operator/=(const Interval& o) noexcept
    {
        return *this = *this / o;
    }
    /// @}

    /// From the least to the greatest product of the bounds.
    friend constexpr Interval operator*(const Interval& a, const Interval& b) noexcept
    {
        const T products[] = {a._min * b._min, a._min * b._max, a._max * b._min, a._max * b._max};
        return Interval(
            std::min(std::min(products[0], products[1]), std::min(products[2], products[3])),
            std::max(std::max(products[0], products[1]), std::max(products[2], products[3])));
    }

    /// Times the reciprocal, from 1 / upper bound to 1 / lower bound, in double precision. Nothing
    /// is done about a 0 in `b`: it gives infinities or NaNs.
    friend constexpr Interval operator/(const Interval& a, const Interval& b) noexcept
    {
        return a * Interval(static_cast<T>(ieeeDivide(1.0, static_cast<double>(b._max))),
                            static_cast<T>(ieeeDivide(1.0, static_cast<double>(b._min))));
    }

    /// @{
    /// As the operators that calculate in place.
    friend constexpr Interval operator+(Interval a, const Interval& b) noexcept
    {
        return a += b;
    }

    friend constexpr Interval operator-(Interval a, const Interval& b) noexcept
    {
        return a -= b;
    }
    /// @}

    /// Grows to take in `v`: the lower bound becomes `v` unless that is at or above it, the upper
    /// one if that is above it.
    constexpr void extend(T v) noexcept
    {
        extend(Interval(v));
    }

    /// Grows to take in `o`, each bound by the same rule with its own one of `o`.
    constexpr void extend(const Interval& o) noexcept
    {
        const Interval other = o;
        if (!(other._min >= _min)) _min = other._min;
        if (other._max > _max) _max = other._max;
    }

    /// Shrinks to the common part, which can be inverted: the lower bound becomes `v` if that is
    /// above it, the upper one unless that is at or above it.
    constexpr void intersect(T v) noexcept
    {
        intersect(Interval(v));
    }

    /// Shrinks to what is common with `o`, each bound by the same rule with its own one of `o`.
    constexpr void intersect(const Interval& o) noexcept
    {
        const Interval other = o;
        if (other._min > _min) _min = other._min;
        if (!(other._max >= _max)) _max = other._max;
    }

    /// @{
    /// Whether `v`, or all of `o`, lies inside; an open end does not belong to the interval.
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

    /// What this is to `o`, where a common end point is a common part.
    constexpr Containment getInclusiveContainment(const Interval& o) const noexcept
    {
        const bool meet = !(_min > o._max) && !(o._min > _max);
        return static_cast<Containment>(_inclContMap[4 * meet + 2 * !liesInside(o) + 1 * holds(o)]);
    }

    /// What this is to `o`, where a common end point is none.
    constexpr Containment getExclusiveContainment(const Interval& o) const noexcept
    {
        const bool interiorsMeet = !(_min >= o._max) && !(o._min >= _max);
        return static_cast<Containment>(
            _exclContMap[4 * !liesInside(o) + 2 * interiorsMeet + 1 * holds(o)]);
    }

    /// The value of the interval nearest to `v`. Of an inverted interval, the lower bound for what
    /// is below it, and the upper one for all else.
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

    /// Not inverted; so also with a NaN.
    constexpr bool isValid() const noexcept
    {
        return !isInverted();
    }

    /// Whether something lies between the bounds, or one is a NaN.
    constexpr bool isNonEmptyOpen() const noexcept
    {
        return !(_min >= _max);
    }

    /// Whether both bounds are equal as FloatUtil::isEqual() says.
    constexpr bool isEqual(const Interval& o, T eps) const noexcept
    {
        return FloatUtil::isEqual(_min, o._min, eps) && FloatUtil::isEqual(_max, o._max, eps);
    }

    /// Whether the bounds are the same.
    friend constexpr bool operator==(const Interval& a, const Interval& b) noexcept
    {
        return a._min == b._min && a._max == b._max;
    }

    /// Whether a bound differs; so with any NaN.
    friend constexpr bool operator!=(const Interval& a, const Interval& b) noexcept
    {
        return !(a == b);
    }

    /// Writes "[0, 1]"; a NaN without a sign, and by no locale.
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

/// @file
/// The exact ratio of two integers, as which every rate is held.

#ifndef ZU_BASE_RATIONAL_H
#define ZU_BASE_RATIONAL_H

#include "baseApi.h"
#include "ieeeDivide.h"
#include "rationalEx.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional> // std::hash, at a quarter of the cost of <functional>

namespace Zu
{

/// A fraction in lowest terms with a positive denominator; 0 is held as 0/1. Read as a rate it is
/// ticks per second.
///
/// Arithmetic wraps where it leaves 32 bits, so two fractions stay as they are given: one with the
/// numerator -2147483648, which is deliberately not reduced, and one with that denominator, whose
/// negation is itself.
///
/// Equality is exact. The ordering is deliberately not: it compares as `double`, with a tolerance
/// of 1e-7. Two rationals that are closer are neither smaller nor greater than each other, and may
/// still be unequal; so it is no ordering for a container.
class ZU_BASE_API Rational
{
public:
    /// 1/1.
    constexpr Rational() noexcept : _numerator(1), _denominator(1) {}

    /// As setValue().
    constexpr Rational(std::int32_t numerator, std::int32_t denominator)
        : _numerator(1), _denominator(1)
    {
        setValue(numerator, denominator);
    }

    /// Raises RationalEx::ExDenominatorZero, and leaves the value as it was, if the denominator is
    /// 0.
    constexpr void setValue(std::int32_t numerator, std::int32_t denominator)
    {
        if (denominator == 0) RationalEx::throwDenominatorZero(__FILE__, __LINE__);
        _numerator = denominator < 0 ? negated(numerator) : numerator;
        _denominator = denominator < 0 ? negated(denominator) : denominator;
        if (_numerator == 0)
            _denominator = 1;
        else
            lowestTerms();
    }

    /// @{
    /// The terms as they are held.
    constexpr std::int32_t getNumerator() const noexcept
    {
        return _numerator;
    }

    constexpr std::int32_t getDenominator() const noexcept
    {
        return _denominator;
    }
    /// @}

    /// Numerator through denominator.
    constexpr double getDouble() const noexcept
    {
        return static_cast<double>(_numerator) / static_cast<double>(_denominator);
    }

    /// The same, with both rounded to single precision before they are divided.
    constexpr float getFloat() const noexcept
    {
        return static_cast<float>(_numerator) / static_cast<float>(_denominator);
    }

    /// Denominator through numerator; infinity for 0.
    constexpr double getReciprocalDouble() const noexcept
    {
        return ieeeDivide(static_cast<double>(_denominator), static_cast<double>(_numerator));
    }

    /// The same, with both rounded to single precision before they are divided.
    constexpr float getReciprocalFloat() const noexcept
    {
        return ieeeDivide(static_cast<float>(_denominator), static_cast<float>(_numerator));
    }

    /// Writes "(30000/1001=29.97)", the value as the stream formats a `double`.
    void dump(std::ostream& os) const;

private:
    static constexpr std::int32_t negated(std::int32_t value) noexcept
    {
        return static_cast<std::int32_t>(0U - static_cast<std::uint32_t>(value));
    }

    // Of numbers that are not 0. Some steps of Euclid's algorithm are all that most rates need.
    // Then Stein's (Josef Stein, 1967, "Computational problems associated with Racah algebra"),
    // which does without divisions, and here without branches in its loop.
    static constexpr std::uint32_t greatestCommonDivisor(std::uint32_t a, std::uint32_t b) noexcept
    {
        constexpr int EUCLID_STEPS = 4;
        for (int i = 0; i < EUCLID_STEPS; ++i)
        {
            const std::uint32_t rest = a % b;
            if (rest == 0) return b;
            a = b;
            b = rest;
        }
        const int twos = __builtin_ctz(a | b);
        std::int64_t odd = a >> __builtin_ctz(a);
        std::int64_t rest = b;
        int zeros = __builtin_ctz(b);
        while (true)
        {
            rest >>= zeros;
            const std::int64_t difference = rest - odd;
            if (difference == 0) return static_cast<std::uint32_t>(odd) << twos;
            zeros = __builtin_ctzll(static_cast<std::uint64_t>(difference));
            // All ones if the rest is the smaller of both: it takes the other one's place.
            const std::int64_t swap = -static_cast<std::int64_t>(difference < 0);
            odd += difference & swap;
            rest = (difference ^ swap) - swap;
        }
    }

    constexpr void lowestTerms() noexcept
    {
        const std::int32_t magnitude = _numerator < 0 ? negated(_numerator) : _numerator;
        // Neither the smallest integer nor a denominator that became it can be reduced.
        if (magnitude < 0 || _denominator < 0) return;
        const auto divisor = static_cast<std::int32_t>(greatestCommonDivisor(
            static_cast<std::uint32_t>(magnitude), static_cast<std::uint32_t>(_denominator)));
        if (divisor == 1) return;
        _numerator /= divisor;
        _denominator /= divisor;
    }

    std::int32_t _numerator;
    std::int32_t _denominator;
};

/// @{
/// Compare both terms: exactly.
constexpr bool operator==(const Rational& a, const Rational& b) noexcept
{
    return a.getNumerator() == b.getNumerator() && a.getDenominator() == b.getDenominator();
}

constexpr bool operator!=(const Rational& a, const Rational& b) noexcept
{
    return !(a == b);
}
/// @}

/// How far apart two rationals are at least that the ordering tells apart.
inline constexpr double RATIONAL_TOLERANCE = 1e-7;

/// @{
/// Compare as `double`. `<` and `>` are true beyond RATIONAL_TOLERANCE alone, `<=` and `>=` also
/// for what lies closer on the other side.
constexpr bool operator<(const Rational& a, const Rational& b) noexcept
{
    return a.getDouble() < b.getDouble() - RATIONAL_TOLERANCE;
}

constexpr bool operator<=(const Rational& a, const Rational& b) noexcept
{
    return a.getDouble() < b.getDouble() + RATIONAL_TOLERANCE;
}

constexpr bool operator>(const Rational& a, const Rational& b) noexcept
{
    return a.getDouble() > b.getDouble() + RATIONAL_TOLERANCE;
}

constexpr bool operator>=(const Rational& a, const Rational& b) noexcept
{
    return a.getDouble() > b.getDouble() - RATIONAL_TOLERANCE;
}
/// @}

/// As Rational::dump().
ZU_BASE_API std::ostream& operator<<(std::ostream& os, const Rational& rational);

} // namespace Zu

/// Hashes rationals, for unordered containers.
template <> struct std::hash<Zu::Rational>
{
    /// Equal rationals have equal hashes.
    std::size_t operator()(const Zu::Rational& rational) const noexcept
    {
        const auto numerator = static_cast<std::uint32_t>(rational.getNumerator());
        const auto denominator = static_cast<std::uint32_t>(rational.getDenominator());
        return std::hash<std::uint64_t>()(std::uint64_t{numerator} << 32 | denominator);
    }
};

#endif

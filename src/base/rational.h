/// @file
/// The exact ratio of two integers, which represents every rate.

#ifndef ZU_BASE_RATIONAL_H
#define ZU_BASE_RATIONAL_H

#include "baseApi.h"
#include "compiler.h"
#include "ieeeDivide.h"
#include "rationalEx.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional> // std::hash, at a quarter of the cost of <functional>

namespace Zu
{

/// A fraction in lowest terms with a positive denominator; 0 is stored as 0/1. Read as a rate it is
/// in ticks per second.
///
/// Arithmetic wraps beyond 32 bits, so two kinds of fractions stay as given: one with the numerator
/// -2147483648, which is deliberately not reduced, and one with the denominator -2147483648, whose
/// negation is itself.
///
/// Equality is exact. The ordering is deliberately not: it compares as `double`, with a tolerance
/// of 1e-7. Two rationals that are closer are neither smaller nor greater than each other, and may
/// still be unequal, so the ordering is not suitable for a container.
class ZU_BASE_API Rational
{
    friend class DtTime;

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
    /// The terms as they are stored.
    constexpr std::int32_t getNumerator() const noexcept
    {
        return _numerator;
    }

    constexpr std::int32_t getDenominator() const noexcept
    {
        return _denominator;
    }
    /// @}

    /// Numerator divided by denominator.
    constexpr double getDouble() const noexcept
    {
        return static_cast<double>(_numerator) / static_cast<double>(_denominator);
    }

    /// The same, with both rounded to single precision before the division.
    constexpr float getFloat() const noexcept
    {
        return static_cast<float>(_numerator) / static_cast<float>(_denominator);
    }

    /// Denominator divided by numerator; infinity for 0.
    constexpr double getReciprocalDouble() const noexcept
    {
        return ieeeDivide(static_cast<double>(_denominator), static_cast<double>(_numerator));
    }

    /// The same, with both rounded to single precision before the division.
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

    // For numbers from 1 to the largest one. Stein's algorithm (Josef Stein, 1967, "Computational
    // problems associated with Racah algebra") needs no divisions, and here no branches in its
    // loop, so its speed hardly depends on the processor. It takes one step for each bit by which
    // its numbers differ in size, so a division is faster if they are far apart.
    static constexpr std::uint32_t greatestCommonDivisor(std::uint32_t a, std::uint32_t b) noexcept
    {
        constexpr int FAR_APART = 8;
        const int distance = Compiler::countLeadingZeros(a) - Compiler::countLeadingZeros(b);
        if (distance >= FAR_APART || distance <= -FAR_APART)
        {
            const std::uint32_t smaller = a < b ? a : b;
            const std::uint32_t rest = (a < b ? b : a) % smaller;
            if (rest == 0) return smaller;
            a = smaller;
            b = rest;
        }
        const int twos = Compiler::countTrailingZeros(a | b);
        auto odd = static_cast<std::int32_t>(a >> Compiler::countTrailingZeros(a));
        auto other = static_cast<std::int32_t>(b >> Compiler::countTrailingZeros(b));
        while (odd != other)
        {
            // The difference of two odd numbers, so it is even. Its zeros are counted before its
            // sign is removed: the count is the same for both signs, and this is the longest path
            // through the loop.
            const std::int32_t difference = other - odd;
            const int zeros = Compiler::countTrailingZeros(static_cast<std::uint32_t>(difference));
            odd = other < odd ? other : odd;
            other = (difference < 0 ? -difference : difference) >> zeros;
        }
        return static_cast<std::uint32_t>(odd) << twos;
    }

    static constexpr std::int32_t commonDivisor(std::int32_t a, std::int32_t b) noexcept
    {
        if (b == 1) return 1;
        const auto magnitude = static_cast<std::uint32_t>(a < 0 ? negated(a) : a);
        return static_cast<std::int32_t>(
            greatestCommonDivisor(magnitude, static_cast<std::uint32_t>(b)));
    }

    // Most divisors are 1, which a branch detects faster than a division would.
    static constexpr std::int32_t divided(std::int32_t value, std::int32_t divisor) noexcept
    {
        return divisor == 1 ? value : value / divisor;
    }

    // For two fractions in lowest terms, neither of them 0, where no product of terms exceeds 32
    // bits. Only the numerator of one and the denominator of the other can have a common divisor.
    // It is mostly 1, and both terms are smaller than the products.
    static constexpr Rational productOf(const Rational& a, const Rational& b) noexcept
    {
        const std::int32_t ab = commonDivisor(a._numerator, b._denominator);
        const std::int32_t ba = commonDivisor(b._numerator, a._denominator);
        Rational product;
        product._numerator = divided(a._numerator, ab) * divided(b._numerator, ba);
        product._denominator = divided(a._denominator, ba) * divided(b._denominator, ab);
        return product;
    }

    constexpr void lowestTerms() noexcept
    {
        const std::int32_t magnitude = _numerator < 0 ? negated(_numerator) : _numerator;
        // Neither the smallest integer nor a denominator that wrapped to it can be reduced.
        if (magnitude < 0 || _denominator < 0) return;
        const std::int32_t divisor = commonDivisor(magnitude, _denominator);
        _numerator = divided(_numerator, divisor);
        _denominator = divided(_denominator, divisor);
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

/// The ordering treats rationals as different only beyond this distance.
inline constexpr double RATIONAL_TOLERANCE = 1e-7;

/// @{
/// Compare as `double`. `<` and `>` are true only beyond RATIONAL_TOLERANCE; `<=` and `>=` are also
/// true for values that are closer on the other side.
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

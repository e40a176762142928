/// @file
/// The exact ratio of two integers, as which every rate is held.

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

    // Of numbers from 1 to the largest one. Stein's algorithm (Josef Stein, 1967, "Computational
    // problems associated with Racah algebra") does without divisions, and here without branches in
    // its loop: so it hardly depends on the processor. It takes one step for each bit by which its
    // numbers differ in size, so that of those which are far apart a division is ahead.
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
            // Of two odd numbers, so it is even. The number of its zeros is had before its sign is
            // taken away: the same for both signs, and that is the longest way through the loop.
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

    // Most divisors are 1, which a branch knows before a division would.
    static constexpr std::int32_t divided(std::int32_t value, std::int32_t divisor) noexcept
    {
        return divisor == 1 ? value : value / divisor;
    }

    // Of two in lowest terms, neither of which is 0, where no product of terms leaves 32 bits. What
    // can be reduced is one's numerator with the other's denominator; mostly that is 1, and both
    // are smaller than the products.
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
        // Neither the smallest integer nor a denominator that became it can be reduced.
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

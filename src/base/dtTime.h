/// @file
/// Time as a count of ticks at a stated rate.

#ifndef ZU_BASE_DTTIME_H
#define ZU_BASE_DTTIME_H

#include "baseApi.h"
#include "compiler.h"
#include "dtArithmetic.h"
#include "dtEx.h"
#include "ieeeDivide.h"
#include "rational.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <limits>
#include <optional> // std::hash, at a quarter of the cost of <functional>
#include <type_traits>

namespace Zu
{

/// A count of ticks. All arithmetic has 64 bits and wraps; `/` and `%` truncate toward zero; a
/// divisor of 0 is a fault of the caller. Counts compare as the integers that they convert to.
class DtTimeIndex
{
    friend class DtTime;

    template <class T> using IfInteger = std::enable_if_t<std::is_integral_v<T>>;

public:
    /// 0.
    constexpr DtTimeIndex() noexcept = default;

    /// `count` ticks.
    constexpr DtTimeIndex(std::int64_t count) noexcept : _count(count) {}

    /// The count.
    constexpr operator long long() const noexcept
    {
        return _count;
    }

    /// @{
    /// Arithmetic in place, by the rules of the class.
    constexpr DtTimeIndex& operator+=(std::int64_t count) noexcept
    {
        _count = DtArithmetic::add(_count, count);
        return *this;
    }

    constexpr DtTimeIndex& operator-=(std::int64_t count) noexcept
    {
        _count = DtArithmetic::subtract(_count, count);
        return *this;
    }

    constexpr DtTimeIndex& operator*=(std::int64_t factor) noexcept
    {
        _count = DtArithmetic::multiply(_count, factor);
        return *this;
    }

    constexpr DtTimeIndex& operator/=(std::int64_t divisor) noexcept
    {
        _count = DtArithmetic::divide(_count, divisor);
        return *this;
    }

    constexpr DtTimeIndex& operator%=(std::int64_t divisor) noexcept
    {
        _count = DtArithmetic::remainder(_count, divisor);
        return *this;
    }
    /// @}

    /// @{
    /// Arithmetic by the rules of the class.
    friend constexpr DtTimeIndex operator+(DtTimeIndex a, const DtTimeIndex& b) noexcept
    {
        return a += b._count;
    }

    friend constexpr DtTimeIndex operator-(DtTimeIndex a, const DtTimeIndex& b) noexcept
    {
        return a -= b._count;
    }

    friend constexpr DtTimeIndex operator*(DtTimeIndex a, const DtTimeIndex& b) noexcept
    {
        return a *= b._count;
    }

    friend constexpr DtTimeIndex operator/(DtTimeIndex a, const DtTimeIndex& b) noexcept
    {
        return a /= b._count;
    }

    friend constexpr DtTimeIndex operator%(DtTimeIndex a, const DtTimeIndex& b) noexcept
    {
        return a %= b._count;
    }
    /// @}

    // With an integer on one side. Without these operators it would be ambiguous whether the index
    // is converted to an integer or the integer to an index.

    /// @{
    /// The same with an integer on one side, which is converted to 64 bits.
    template <class T, class = IfInteger<T>>
    friend constexpr DtTimeIndex operator+(DtTimeIndex a, T b) noexcept
    {
        return a += static_cast<std::int64_t>(b);
    }

    template <class T, class = IfInteger<T>>
    friend constexpr DtTimeIndex operator+(T a, DtTimeIndex b) noexcept
    {
        return b += static_cast<std::int64_t>(a);
    }

    template <class T, class = IfInteger<T>>
    friend constexpr DtTimeIndex operator-(DtTimeIndex a, T b) noexcept
    {
        return a -= static_cast<std::int64_t>(b);
    }

    template <class T, class = IfInteger<T>>
    friend constexpr DtTimeIndex operator-(T a, DtTimeIndex b) noexcept
    {
        return DtTimeIndex(static_cast<std::int64_t>(a)) - b;
    }

    template <class T, class = IfInteger<T>>
    friend constexpr DtTimeIndex operator*(DtTimeIndex a, T b) noexcept
    {
        return a *= static_cast<std::int64_t>(b);
    }

    template <class T, class = IfInteger<T>>
    friend constexpr DtTimeIndex operator*(T a, DtTimeIndex b) noexcept
    {
        return b *= static_cast<std::int64_t>(a);
    }

    template <class T, class = IfInteger<T>>
    friend constexpr DtTimeIndex operator/(DtTimeIndex a, T b) noexcept
    {
        return a /= static_cast<std::int64_t>(b);
    }

    template <class T, class = IfInteger<T>>
    friend constexpr DtTimeIndex operator/(T a, DtTimeIndex b) noexcept
    {
        return DtTimeIndex(static_cast<std::int64_t>(a)) / b;
    }

    template <class T, class = IfInteger<T>>
    friend constexpr DtTimeIndex operator%(DtTimeIndex a, T b) noexcept
    {
        return a %= static_cast<std::int64_t>(b);
    }

    template <class T, class = IfInteger<T>>
    friend constexpr DtTimeIndex operator%(T a, DtTimeIndex b) noexcept
    {
        return DtTimeIndex(static_cast<std::int64_t>(a)) % b;
    }
    /// @}

    /// @{
    /// One tick forward or back. The postfix forms return the previous count.
    constexpr DtTimeIndex& operator++() noexcept
    {
        return *this += 1;
    }

    constexpr DtTimeIndex& operator--() noexcept
    {
        return *this -= 1;
    }

    constexpr DtTimeIndex operator++(int) noexcept
    {
        const DtTimeIndex before = *this;
        ++*this;
        return before;
    }

    constexpr DtTimeIndex operator--(int) noexcept
    {
        const DtTimeIndex before = *this;
        --*this;
        return before;
    }
    /// @}

    /// @{
    /// The count, rounded to the floating type.
    constexpr float getFloat() const noexcept
    {
        return static_cast<float>(_count);
    }

    constexpr double getDouble() const noexcept
    {
        return static_cast<double>(_count);
    }
    /// @}

    // The three fields of a clock, for ticks at a rate that is not 0. They are derived from the
    // whole seconds since tick 0, denominator * count / numerator; the product wraps.

    /// The whole hours.
    constexpr long long getHours(const Rational& rate) const noexcept
    {
        return wholeSeconds(rate) / 3600;
    }

    /// The whole minutes of the hour, -59 to 59.
    constexpr long long getMinutes(const Rational& rate) const noexcept
    {
        const std::int64_t seconds = wholeSeconds(rate);
        return (seconds - seconds / 3600 * 3600) / 60;
    }

    /// The seconds of the minute, with their fraction.
    constexpr double getSeconds(const Rational& rate) const noexcept
    {
        const std::int64_t seconds = wholeSeconds(rate);
        const double exact = static_cast<double>(_count) *
                             static_cast<double>(rate.getDenominator()) /
                             static_cast<double>(rate.getNumerator());
        const std::int64_t minutes = seconds / 60;
        return static_cast<double>(seconds - minutes * 60) + (exact - static_cast<double>(seconds));
    }

    /// The same instant, counted at another rate.
    ///
    /// std::round_toward_zero is computed in integers. The quotient of the rates is reduced, and
    /// the result is exact as long as its numerator times the count fits in 64 bits; beyond that
    /// the product wraps. Products of the rates themselves have 32 bits and wrap. Raises
    /// RationalEx::ExDenominatorZero if `from` is 0 or the divisor wraps to 0. If `to` is 0 the
    /// result is 0.
    ///
    /// All other styles are computed in `double`: std::round_to_nearest (halves up, also below 0),
    /// std::round_toward_infinity, std::round_toward_neg_infinity, std::round_indeterminate (away
    /// from zero). A result that does not fit becomes the smallest 64-bit integer. A value that is
    /// not a style gives 0.
    constexpr DtTimeIndex convert(const Rational& from, const Rational& to,
                                  std::float_round_style style) const
    {
        if (style == std::round_toward_zero) return convertTruncated(from, to);
        const double ticks = static_cast<double>(_count);
        const double seconds = ieeeDivide(ticks * static_cast<double>(from.getDenominator()),
                                          static_cast<double>(from.getNumerator()));
        const double y = seconds * static_cast<double>(to.getNumerator()) /
                         static_cast<double>(to.getDenominator());
        switch (static_cast<int>(style))
        {
        case std::round_to_nearest:
            return DtArithmetic::floor(y + 0.5);
        case std::round_toward_infinity:
            return DtArithmetic::ceil(y);
        case std::round_toward_neg_infinity:
            return DtArithmetic::floor(y);
        case std::round_indeterminate:
            return y >= 0 ? DtArithmetic::ceil(y) : DtArithmetic::floor(y);
        default:
            return 0;
        }
    }

private:
    constexpr std::int64_t wholeSeconds(const Rational& rate) const noexcept
    {
        return DtArithmetic::divide(DtArithmetic::multiply(rate.getDenominator(), _count),
                                    rate.getNumerator());
    }

    constexpr DtTimeIndex convertTruncated(const Rational& from, const Rational& to) const
    {
        const std::int32_t numerator =
            DtArithmetic::multiply32(from.getDenominator(), to.getNumerator());
        const std::int32_t denominator =
            DtArithmetic::multiply32(to.getDenominator(), from.getNumerator());
        // If the unreduced product fits, it gives the same quotient as the reduced one.
        std::int64_t product = 0;
        if (denominator > 0 && !Compiler::multiplyOverflows(_count, numerator, product))
            return denominator == 1 ? product : product / denominator;
        return scaled(Rational(numerator, denominator));
    }

    // The count times a ratio, truncated toward zero.
    constexpr DtTimeIndex scaled(const Rational& ratio) const noexcept
    {
        const std::int64_t product = DtArithmetic::multiply(ratio.getNumerator(), _count);
        // A denominator is never -1.
        return ratio.getDenominator() == 1 ? product : product / ratio.getDenominator();
    }

    std::int64_t _count = 0;
};

/// A count of ticks and its rate, which is never 0 and may be negative.
///
/// Times with different rates are compared exactly, by instant: 1 at 1/1 equals 30 at 30/1. If
/// exactly one of the rates is negative the comparison is deliberately reversed, so only times
/// whose rates have the same sign can be ordered.
///
/// Arithmetic uses a common rate: the product of both rates, capped at a million per second (and at
/// one per million seconds). The cap is deliberate: it bounds the products, although it can lose
/// ticks. Products of rates have 32 bits, all others 64, and they wrap. Comparisons are therefore
/// correct as long as denominator times numerator times count of either side fits in 64 bits: at
/// 48000/1 that is 1.9e14 ticks.
class DtTime
{
public:
    /// 0 at 1/1.
    constexpr DtTime() noexcept = default;

    /// Raises DtEx::BadRate if the rate is 0.
    constexpr DtTime(const DtTimeIndex& index, const Rational& rate) : _index(index), _rate(rate)
    {
        if (rate.getNumerator() == 0) DtEx::throwBadRate(__FILE__, __LINE__);
    }

    /// The same. A zero denominator raises RationalEx::ExDenominatorZero first.
    constexpr DtTime(const DtTimeIndex& index, std::int32_t numerator, std::int32_t denominator)
        : DtTime(index, Rational(numerator, denominator))
    {
    }

    /// The ticks.
    constexpr DtTimeIndex getCount() const noexcept
    {
        return _index;
    }

    /// Ticks per second; never 0.
    constexpr Rational getRate() const noexcept
    {
        return _rate;
    }

    /// Whether the rates are exactly equal.
    constexpr bool isRateEqual(const DtTime& other) const noexcept
    {
        return _rate == other._rate;
    }

    /// The same instant at another rate, truncated toward zero as DtTimeIndex::convert() does.
    /// Raises DtEx::BadRate if the rate is 0.
    constexpr DtTime convertRate(const Rational& rate) const
    {
        if (rate == _rate) return *this;
        return DtTime(_index.convert(_rate, rate, std::round_toward_zero), rate);
    }

    /// @{
    /// With a count: the rate is kept.
    constexpr DtTime& operator+=(const DtTimeIndex& count) noexcept
    {
        _index += count;
        return *this;
    }

    constexpr DtTime& operator-=(const DtTimeIndex& count) noexcept
    {
        _index -= count;
        return *this;
    }

    constexpr DtTime& operator*=(const DtTimeIndex& factor) noexcept
    {
        _index *= factor;
        return *this;
    }

    constexpr DtTime& operator/=(const DtTimeIndex& divisor) noexcept
    {
        _index /= divisor;
        return *this;
    }

    constexpr DtTime& operator%=(const DtTimeIndex& divisor) noexcept
    {
        _index %= divisor;
        return *this;
    }
    /// @}

    /// @{
    /// With a time: at equal rates the operation applies to the counts and keeps the rate.
    /// Otherwise both times are converted to the common rate, which becomes that of the result.
    /// `*`, `/` and `%` treat the counts as plain numbers. Raises RationalEx::ExDenominatorZero or
    /// DtEx::BadRate if a product of the rates wraps to 0.
    constexpr DtTime& operator+=(const DtTime& other)
    {
        const DtTime right = meet(other);
        return *this += right._index;
    }

    constexpr DtTime& operator-=(const DtTime& other)
    {
        const DtTime right = meet(other);
        return *this -= right._index;
    }

    constexpr DtTime& operator*=(const DtTime& other)
    {
        const DtTime right = meet(other);
        return *this *= right._index;
    }

    constexpr DtTime& operator/=(const DtTime& other)
    {
        const DtTime right = meet(other);
        return *this /= right._index;
    }

    constexpr DtTime& operator%=(const DtTime& other)
    {
        const DtTime right = meet(other);
        return *this %= right._index;
    }
    /// @}

    /// @{
    /// With a count: the rate is kept.
    friend constexpr DtTime operator+(DtTime a, const DtTimeIndex& b) noexcept
    {
        return a += b;
    }

    friend constexpr DtTime operator-(DtTime a, const DtTimeIndex& b) noexcept
    {
        return a -= b;
    }

    friend constexpr DtTime operator*(DtTime a, const DtTimeIndex& b) noexcept
    {
        return a *= b;
    }

    friend constexpr DtTime operator/(DtTime a, const DtTimeIndex& b) noexcept
    {
        return a /= b;
    }

    friend constexpr DtTime operator%(DtTime a, const DtTimeIndex& b) noexcept
    {
        return a %= b;
    }
    /// @}

    /// @{
    /// With a time, like the in-place operators.
    friend constexpr DtTime operator+(DtTime a, const DtTime& b)
    {
        return a += b;
    }

    friend constexpr DtTime operator-(DtTime a, const DtTime& b)
    {
        return a -= b;
    }

    friend constexpr DtTime operator*(DtTime a, const DtTime& b)
    {
        return a *= b;
    }

    friend constexpr DtTime operator/(DtTime a, const DtTime& b)
    {
        return a /= b;
    }

    friend constexpr DtTime operator%(DtTime a, const DtTime& b)
    {
        return a %= b;
    }
    /// @}

    /// @{
    /// One tick forward or back at the same rate. The postfix forms return the previous time.
    constexpr DtTime& operator++() noexcept
    {
        ++_index;
        return *this;
    }

    constexpr DtTime& operator--() noexcept
    {
        --_index;
        return *this;
    }

    constexpr DtTime operator++(int) noexcept
    {
        const DtTime before = *this;
        ++_index;
        return before;
    }

    constexpr DtTime operator--(int) noexcept
    {
        const DtTime before = *this;
        --_index;
        return before;
    }
    /// @}

    /// Writes "(1001 @ (30000/1001=29.97))".
    ZU_BASE_API void dump(std::ostream& os) const;

private:
    static constexpr std::int32_t FINEST = 1000000;

    static constexpr Rational productOf(const Rational& a, const Rational& b)
    {
        if (isProductSmall(a, b)) return Rational::productOf(a, b);
        return Rational(DtArithmetic::multiply32(a.getNumerator(), b.getNumerator()),
                        DtArithmetic::multiply32(a.getDenominator(), b.getDenominator()));
    }

    static constexpr Rational commonRate(const Rational& product)
    {
        const std::int32_t numerator = product.getNumerator();
        const std::int32_t sign = numerator > 0 ? 1 : -1;
        if (numerator > FINEST || numerator < -FINEST) return Rational(FINEST, sign);
        if (product.getDenominator() > FINEST) return Rational(sign, FINEST);
        return product;
    }

    // Whether both the product and its negation fit in 32 bits.
    static constexpr bool isSmall(std::int32_t a, std::int32_t b) noexcept
    {
        constexpr std::int64_t BOUND = std::numeric_limits<std::int32_t>::max();
        const std::int64_t product = std::int64_t{a} * b;
        return product >= -BOUND && product <= BOUND;
    }

    static constexpr bool isProductSmall(const Rational& a, const Rational& b) noexcept
    {
        return isSmall(a.getNumerator(), b.getNumerator()) &&
               isSmall(a.getDenominator(), b.getDenominator());
    }

    // The magnitude of a number that can be negated.
    static constexpr std::int32_t magnitude(std::int32_t value) noexcept
    {
        return value < 0 ? -value : value;
    }

    // Whether the small product of both is their common rate and no product in the conversions to
    // it wraps. A count at either rate is then converted by multiplying it by the other rate.
    static constexpr bool isPlainProduct(const Rational& a, const Rational& b,
                                         const Rational& product) noexcept
    {
        if (product.getNumerator() >= FINEST || product.getNumerator() <= -FINEST ||
            product.getDenominator() >= FINEST)
            return false;
        // The bitwise OR of two numbers is at least the larger one.
        const std::int32_t numerators = magnitude(a.getNumerator()) | magnitude(b.getNumerator());
        const std::int32_t denominators = a.getDenominator() | b.getDenominator();
        return isSmall(denominators, product.getNumerator()) &&
               isSmall(numerators, product.getDenominator());
    }

    // Converts this time to the common rate, and returns the other time at that rate.
    constexpr DtTime meet(const DtTime& other)
    {
        if (_rate == other._rate) return other;
        const Rational product = productOf(_rate, other._rate);
        if (isProductSmall(_rate, other._rate) && isPlainProduct(_rate, other._rate, product))
        {
            const DtTime right(other._index.scaled(_rate), product);
            *this = DtTime(_index.scaled(other._rate), product);
            return right;
        }
        const Rational common = commonRate(product);
        const DtTime left = convertRate(common);
        const DtTime right = other.convertRate(common);
        *this = left;
        return right;
    }

    DtTimeIndex _index;
    Rational _rate;
};

/// The left side of the comparison `a < b`: a.denominator * b.numerator * a.count.
constexpr DtTimeIndex crossMultLhs(const DtTime& a, const DtTime& b) noexcept
{
    const std::int64_t rates =
        DtArithmetic::multiply(a.getRate().getDenominator(), b.getRate().getNumerator());
    return DtArithmetic::multiply(rates, a.getCount());
}

/// The right side of the comparison `a < b`: b.denominator * a.numerator * b.count.
constexpr DtTimeIndex crossMultRhs(const DtTime& a, const DtTime& b) noexcept
{
    const std::int64_t rates =
        DtArithmetic::multiply(b.getRate().getDenominator(), a.getRate().getNumerator());
    return DtArithmetic::multiply(rates, b.getCount());
}

/// @{
/// Compare crossMultLhs() with crossMultRhs(): by instant, as documented at the class.
constexpr bool operator<(const DtTime& a, const DtTime& b) noexcept
{
    return crossMultLhs(a, b) < crossMultRhs(a, b);
}

constexpr bool operator<=(const DtTime& a, const DtTime& b) noexcept
{
    return crossMultLhs(a, b) <= crossMultRhs(a, b);
}

constexpr bool operator==(const DtTime& a, const DtTime& b) noexcept
{
    return crossMultLhs(a, b) == crossMultRhs(a, b);
}

constexpr bool operator>=(const DtTime& a, const DtTime& b) noexcept
{
    return crossMultLhs(a, b) >= crossMultRhs(a, b);
}

constexpr bool operator>(const DtTime& a, const DtTime& b) noexcept
{
    return crossMultLhs(a, b) > crossMultRhs(a, b);
}

constexpr bool operator!=(const DtTime& a, const DtTime& b) noexcept
{
    return crossMultLhs(a, b) != crossMultRhs(a, b);
}
/// @}

/// Writes the count, as the stream formats integers.
ZU_BASE_API std::ostream& operator<<(std::ostream& os, const DtTimeIndex& index);

/// The same as DtTime::dump().
ZU_BASE_API std::ostream& operator<<(std::ostream& os, const DtTime& time);

} // namespace Zu

/// Hashes counts, for unordered containers.
template <> struct std::hash<Zu::DtTimeIndex>
{
    /// Equal indices have equal hashes.
    std::size_t operator()(const Zu::DtTimeIndex& index) const noexcept
    {
        return std::hash<long long>()(index);
    }
};

/// Hashes times, for unordered containers.
template <> struct std::hash<Zu::DtTime>
{
    /// Times of the same instant have equal hashes, whatever their rates, as long as no product
    /// wraps.
    ZU_BASE_API std::size_t operator()(const Zu::DtTime& time) const noexcept;
};

#endif

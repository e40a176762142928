// A reference for counts at rates, computed in 128 bits and only then truncated to the library's
// widths.

#ifndef ZU_TESTS_TIMEREFERENCE_H
#define ZU_TESTS_TIMEREFERENCE_H

#include "base/dtEx.h"
#include "base/dtTime.h"
#include "base/rational.h"
#include "base/rationalEx.h"

#include <cstdint>
#include <limits>
#include <numeric>
#include <random>
#include <string>

namespace support
{

__extension__ using Int128 = __int128;

inline constexpr std::int64_t LOWEST = std::numeric_limits<std::int64_t>::min();
inline constexpr std::int64_t HIGHEST = std::numeric_limits<std::int64_t>::max();
inline constexpr std::int32_t LOWEST32 = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int32_t HIGHEST32 = std::numeric_limits<std::int32_t>::max();

// The value modulo 2^64 and modulo 2^32, as signed numbers.
constexpr std::int64_t wrapped64(Int128 value)
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(value));
}

constexpr std::int32_t wrapped32(Int128 value)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

// The reference has its own errors, so that it is independent of the code under test.
struct ZeroDenominator
{
};
struct NullRate
{
};

struct RateValue
{
    std::int32_t _numerator;
    std::int32_t _denominator;

    bool operator==(const RateValue&) const = default;
};

inline RateValue valueOf(const Zu::Rational& rate)
{
    return {rate.getNumerator(), rate.getDenominator()};
}

// The products may have any size; they are truncated to 32 bits before they are reduced.
inline RateValue normalForm(Int128 numerator, Int128 denominator)
{
    std::int32_t n = wrapped32(numerator);
    std::int32_t d = wrapped32(denominator);
    if (d == 0) throw ZeroDenominator();
    if (d < 0)
    {
        n = wrapped32(-Int128{n});
        d = wrapped32(-Int128{d});
    }
    if (n == 0) return {0, 1};
    if (n == LOWEST32 || d == LOWEST32) return {n, d};
    const std::int32_t divisor = std::gcd(n, d);
    return {n / divisor, d / divisor};
}

// Truncated toward zero.
inline std::int64_t convertedCount(std::int64_t count, const RateValue& from, const RateValue& to)
{
    const RateValue ratio = normalForm(Int128{from._denominator} * to._numerator,
                                       Int128{to._denominator} * from._numerator);
    const std::int64_t product = wrapped64(Int128{ratio._numerator} * count);
    return wrapped64(Int128{product} / ratio._denominator);
}

inline RateValue commonRate(const RateValue& a, const RateValue& b)
{
    const RateValue product =
        normalForm(Int128{a._numerator} * b._numerator, Int128{a._denominator} * b._denominator);
    const std::int32_t sign = product._numerator > 0 ? 1 : -1;
    const std::int64_t numerator = product._numerator;
    if (numerator > 1000000 || numerator < -1000000) return {sign * 1000000, 1};
    if (product._denominator > 1000000) return {sign, 1000000};
    return product;
}

struct TimeValue
{
    std::int64_t _count;
    RateValue _rate;

    bool operator==(const TimeValue&) const = default;
};

inline TimeValue valueOf(const Zu::DtTime& time)
{
    return {time.getCount(), valueOf(time.getRate())};
}

inline TimeValue convertedTime(const TimeValue& time, const RateValue& rate)
{
    if (rate == time._rate) return time;
    const std::int64_t count = convertedCount(time._count, time._rate, rate);
    if (rate._numerator == 0) throw NullRate();
    return {count, rate};
}

inline std::string textOf(std::int64_t count, const RateValue& rate)
{
    return std::to_string(count) + " at " + std::to_string(rate._numerator) + "/" +
           std::to_string(rate._denominator);
}

inline std::string textOf(const TimeValue& time)
{
    return textOf(time._count, time._rate);
}

inline std::string textOf(const Zu::DtTime& time)
{
    return textOf(valueOf(time));
}

// The text that an act returns, or a word for the error that it raises, the library's or the
// reference's.
template <class Act> std::string outcomeOf(Act act)
{
    try
    {
        return act();
    }
    catch (const NullRate&)
    {
        return "null rate";
    }
    catch (const Zu::DtEx::BadRate&)
    {
        return "null rate";
    }
    catch (const ZeroDenominator&)
    {
        return "zero denominator";
    }
    catch (const Zu::RationalEx::ExDenominatorZero&)
    {
        return "zero denominator";
    }
}

// Numbers uniform over all magnitudes, the same sequence on every platform.
class TimeRandom
{
public:
    explicit TimeRandom(std::uint64_t seed) : _engine(seed) {}

    std::uint64_t bits()
    {
        return _engine();
    }

    std::int64_t number64()
    {
        const auto number = static_cast<std::int64_t>(bits());
        return number >> bits() % 64;
    }

    // Powers of two are frequent: only their products wrap to 0.
    std::int32_t number32()
    {
        if (bits() % 4 == 0) return wrapped32(Int128{1} << bits() % 32);
        const auto number = static_cast<std::int32_t>(static_cast<std::uint32_t>(bits()));
        return number >> bits() % 32;
    }

    // From 1 to `highest`.
    std::int32_t upTo(std::int32_t highest)
    {
        return static_cast<std::int32_t>(bits() % static_cast<std::uint32_t>(highest)) + 1;
    }

    // Any rate but 0.
    Zu::Rational rate()
    {
        while (true)
        {
            const std::int32_t numerator = number32();
            const std::int32_t denominator = number32();
            if (numerator != 0 && denominator != 0) return Zu::Rational(numerator, denominator);
        }
    }

    // A rate above 0 with terms from 1 to these.
    Zu::Rational rate(std::int32_t numerator, std::int32_t denominator)
    {
        const std::int32_t n = upTo(numerator);
        return Zu::Rational(n, upTo(denominator));
    }

private:
    std::mt19937_64 _engine;
};

} // namespace support

#endif

/// @file
/// Conversion of times from and to the durations of the standard library.

#ifndef ZU_BASE_DTCHRONO_H
#define ZU_BASE_DTCHRONO_H

#include "dtTime.h"

#include <chrono>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace Zu
{

/// The rate at which a duration of this type counts: 1000/1 for milliseconds, 1/60 for minutes.
template <class Duration> constexpr Rational dtRateOf()
{
    using Period = typename Duration::period;
    constexpr auto MAX = std::numeric_limits<std::int32_t>::max();
    static_assert(Period::num <= MAX && Period::den <= MAX, "the rate does not fit a Rational");
    return Rational(static_cast<std::int32_t>(Period::den), static_cast<std::int32_t>(Period::num));
}

/// The duration as a time at its own rate. The conversion is exact; a count beyond signed 64 bits
/// wraps.
template <class Rep, class Period>
constexpr DtTime dtTimeFrom(const std::chrono::duration<Rep, Period>& duration)
{
    static_assert(std::is_integral_v<Rep>, "of whole ticks only; others are rounded by the caller");
    return DtTime(static_cast<std::int64_t>(duration.count()),
                  dtRateOf<std::chrono::duration<Rep, Period>>());
}

/// The duration at another rate, truncated toward zero by DtTimeIndex::convert(). Its products of
/// rates have 32 bits, so hours can't be converted to 1000000/1. Raises DtEx::BadRate if the rate
/// is 0.
template <class Rep, class Period>
constexpr DtTime dtTimeFrom(const std::chrono::duration<Rep, Period>& duration,
                            const Rational& rate)
{
    return dtTimeFrom(duration).convertRate(rate);
}

/// The time as a duration, rounded by DtTimeIndex::convert(): toward zero unless another style is
/// given. Rounding toward zero has the same limit as dtTimeFrom().
template <class Duration>
constexpr Duration dtDurationFrom(const DtTime& time,
                                  std::float_round_style style = std::round_toward_zero)
{
    using Rep = typename Duration::rep;
    static_assert(std::is_integral_v<Rep>, "in whole ticks only");
    const DtTimeIndex count = time.getCount().convert(time.getRate(), dtRateOf<Duration>(), style);
    return Duration(static_cast<Rep>(static_cast<long long>(count)));
}

} // namespace Zu

#endif

/// @file
/// Values of the standard library, and enumerations, in log statements.
///
/// It is not part of base.h, because the headers that it includes cost compile time.

#ifndef ZU_BASE_LGSTDTEXT_H
#define ZU_BASE_LGSTDTEXT_H

#include "baseApi.h"
#include "lgStream.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <ratio>
#include <system_error>
#include <thread>
#include <type_traits>

namespace Zu
{

/// Inserts the unit of a duration whose period is `numerator` / `denominator` seconds: "ms", "min",
/// "[1/30]s".
ZU_BASE_API LgStream& lgInsertUnit(LgStream& stream, std::intmax_t numerator,
                                   std::intmax_t denominator);

/// Inserts a UTC date, given as seconds since 1970 and nanoseconds of the second, with 0 to 9
/// decimals: "2026-11-22T16:25:08.125Z". Negative nanoseconds count from the end of the second.
ZU_BASE_API LgStream& lgInsertUtc(LgStream& stream, std::int64_t seconds, std::int64_t nanoseconds,
                                  int decimals);

/// How many decimals of a second a tick of 1/`denominator` seconds needs: 0, 3, 6 or 9.
constexpr int lgDecimalsOf(std::intmax_t denominator)
{
    if (denominator == 1) return 0;
    if (1000 % denominator == 0) return 3;
    return 1000000 % denominator == 0 ? 6 : 9;
}

/// Inserts an enumerator of an `enum class` as its number.
template <class E, class = std::enable_if_t<std::is_enum_v<E> && !std::is_convertible_v<E, int>>>
LgStream& operator<<(LgStream& stream, E value)
{
    return stream << +static_cast<std::underlying_type_t<E>>(value);
}

/// Inserts the count and the unit: "250ms".
template <class Rep, class Period>
LgStream& operator<<(LgStream& stream, const std::chrono::duration<Rep, Period>& duration)
{
    using Ratio = typename Period::type;
    return lgInsertUnit(stream << +duration.count(), Ratio::num, Ratio::den);
}

/// Inserts the UTC date with as many decimals as the ticks need: "2026-11-22T16:25:08.125Z".
template <class Duration>
LgStream& operator<<(LgStream& stream,
                     const std::chrono::time_point<std::chrono::system_clock, Duration>& time)
{
    using Seconds = std::chrono::duration<std::int64_t>;
    using Nanoseconds = std::chrono::duration<std::int64_t, std::nano>;
    const auto seconds = std::chrono::floor<Seconds>(time.time_since_epoch());
    std::int64_t fraction = 0;
    if constexpr (std::chrono::treat_as_floating_point_v<typename Duration::rep>)
        fraction =
            std::chrono::duration_cast<Nanoseconds>(time.time_since_epoch() - seconds).count();
    else
        fraction = std::chrono::floor<Nanoseconds>(time.time_since_epoch() % Seconds(1)).count();
    return lgInsertUtc(stream, seconds.count(), fraction,
                       lgDecimalsOf(Duration::period::type::den));
}

/// Inserts the time since the clock's epoch.
template <class Clock, class Duration>
LgStream& operator<<(LgStream& stream, const std::chrono::time_point<Clock, Duration>& time)
{
    return stream << time.time_since_epoch();
}

/// Inserts the id as standard streams write it.
ZU_BASE_API LgStream& operator<<(LgStream& stream, const std::thread::id& id);

/// @{
/// Inserts category and number, "generic:2", since the words of `message()` may depend on the
/// locale.
ZU_BASE_API LgStream& operator<<(LgStream& stream, const std::error_code& code);
ZU_BASE_API LgStream& operator<<(LgStream& stream, const std::error_condition& condition);
/// @}

/// Inserts a path unchanged, in UTF-8 on Windows.
ZU_BASE_API LgStream& lgInsertPath(LgStream& stream, const std::filesystem::path& path);

/// Calls lgInsertPath(); only for paths, not for types that convert to a path.
template <class P, class = std::enable_if_t<std::is_same_v<P, std::filesystem::path>>, class = void>
LgStream& operator<<(LgStream& stream, const P& path)
{
    return lgInsertPath(stream, path);
}

/// Inserts the value, or "(none)".
template <class T>
auto operator<<(LgStream& stream, const std::optional<T>& value) -> decltype(stream << *value)
{
    if (value) return stream << *value;
    return stream << "(none)";
}

} // namespace Zu

#endif

#include "base/osDatePlatform.h"

#include "base/osCalendar.h"

#include <ctime>

namespace Zu::OsDatePlatform
{

namespace
{

using OsCalendar::TICKS_PER_SECOND;

// From 1601, where counts begin, to 1970.
constexpr std::int64_t SECONDS_TO_1970 = 11644473600;

std::int64_t offsetAt(std::int64_t universal)
{
    const time_t time = universal;
    struct tm fields = {};
    return localtime_r(&time, &fields) ? fields.tm_gmtoff : 0;
}

// The count moved by so many seconds. One that falls before 1601 wraps, and is not a date.
std::uint64_t moved(std::uint64_t count, std::int64_t seconds)
{
    return count + static_cast<std::uint64_t>(seconds * TICKS_PER_SECOND);
}

// The whole seconds of a count, since 1970.
std::int64_t secondsOf(std::uint64_t count)
{
    return static_cast<std::int64_t>(count / TICKS_PER_SECOND) - SECONDS_TO_1970;
}

} // namespace

std::uint64_t currentCount()
{
    struct timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    const std::int64_t milliseconds = now.tv_nsec / 1000000;
    return static_cast<std::uint64_t>((now.tv_sec + SECONDS_TO_1970) * TICKS_PER_SECOND +
                                      milliseconds * (TICKS_PER_SECOND / 1000));
}

std::optional<std::uint64_t> universalOf(std::uint64_t local)
{
    const std::int64_t seconds = secondsOf(local);
    tzset();
    return moved(local, OsCalendar::universalOf(seconds, offsetAt) - seconds);
}

std::uint64_t localOf(std::uint64_t universal)
{
    if (universal >> 63 != 0) return universal;
    tzset();
    return moved(universal, offsetAt(secondsOf(universal)));
}

} // namespace Zu::OsDatePlatform

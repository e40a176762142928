#include "zulog/zlTime.h"

#include "app/lgServiceLine.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <system_error>

namespace Zu
{

namespace
{

constexpr std::int64_t NANOSECONDS = 1000000000;
constexpr std::int64_t MICROSECOND = 1000;
constexpr std::int64_t MINUTE = 60;
constexpr std::int64_t DAY = std::int64_t{24} * 60 * MINUTE;
constexpr int DECIMALS = 6;
// The years whose nanoseconds fit, without the first and the last one.
constexpr int FIRST_YEAR = 1678;
constexpr int LAST_YEAR = 2261;

std::int64_t floorQuotient(std::int64_t a, std::int64_t b)
{
    return a / b - (a % b < 0 ? 1 : 0);
}

// A day and a time of day, as they are written.
struct Civil
{
    int _year = 0;
    unsigned _month = 0;
    unsigned _day = 0;
    unsigned _hour = 0;
    unsigned _minute = 0;
    unsigned _second = 0;
    std::int64_t _fraction = 0;
};

// As if the time were UTC. A day has one calendar only, so 31 April is none.
bool toSecond(const Civil& civil, std::int64_t& second)
{
    namespace chrono = std::chrono;
    const chrono::year_month_day day{chrono::year(civil._year), chrono::month(civil._month),
                                     chrono::day(civil._day)};
    const bool isDay = civil._year >= FIRST_YEAR && civil._year <= LAST_YEAR && day.ok();
    if (!isDay || civil._hour > 23 || civil._minute > 59 || civil._second > 59) return false;
    const std::int64_t days = chrono::sys_days(day).time_since_epoch().count();
    second = ((days * 24 + civil._hour) * 60 + civil._minute) * 60 + civil._second;
    return true;
}

// The reverse, for the date alone.
void setDay(Civil& civil, std::int64_t second)
{
    namespace chrono = std::chrono;
    const chrono::sys_days days{chrono::days(floorQuotient(second, DAY))};
    const chrono::year_month_day day(days);
    civil._year = static_cast<int>(day.year());
    civil._month = static_cast<unsigned>(day.month());
    civil._day = static_cast<unsigned>(day.day());
}

// Takes a text apart from its beginning.
class TimeParser
{
public:
    explicit TimeParser(std::string_view text) : _rest(text) {}

    bool take(char c)
    {
        if (_rest.empty() || _rest.front() != c) return false;
        _rest.remove_prefix(1);
        return true;
    }

    template <class Number> bool takeDigits(std::size_t count, Number& value)
    {
        if (_rest.size() < count) return false;
        value = 0;
        for (const char c : _rest.substr(0, count))
        {
            if (c < '0' || c > '9') return false;
            value = static_cast<Number>(value * 10 + static_cast<Number>(c - '0'));
        }
        _rest.remove_prefix(count);
        return true;
    }

    bool takeDate(Civil& civil)
    {
        return takeDigits(4, civil._year) && take('-') && takeDigits(2, civil._month) &&
               take('-') && takeDigits(2, civil._day);
    }

    // Seconds and their fraction may be missing.
    bool takeTimeOfDay(Civil& civil)
    {
        if (!takeDigits(2, civil._hour) || !take(':') || !takeDigits(2, civil._minute))
            return false;
        if (!take(':')) return true;
        return takeDigits(2, civil._second) && (!take('.') || takeFraction(civil._fraction));
    }

    bool takeFraction(std::int64_t& fraction)
    {
        std::int64_t unit = NANOSECONDS;
        std::int64_t digit = 0;
        fraction = 0;
        while (unit > 1 && takeDigits(1, digit)) fraction += digit * (unit /= 10);
        return unit < NANOSECONDS;
    }

    // "Z" or "+01:00", as minutes.
    bool takeZone(int& minutes)
    {
        minutes = 0;
        if (take('Z')) return true;
        const bool isWest = take('-');
        unsigned hours = 0;
        unsigned rest = 0;
        if ((!isWest && !take('+')) || !takeDigits(2, hours) || !take(':') ||
            !takeDigits(2, rest) || hours > 23 || rest > 59)
            return false;
        minutes = static_cast<int>(hours * 60 + rest) * (isWest ? -1 : 1);
        return true;
    }

    std::string_view rest() const
    {
        return _rest;
    }

private:
    std::string_view _rest;
};

// The instant at which clocks here show this time. Where they show it twice, the first one; where
// they skip it, the one at which they would have shown it.
std::int64_t utcOfLocal(std::int64_t second)
{
    const std::int64_t earlier = second - lgLocalOffset(second - DAY) * MINUTE;
    if (earlier + lgLocalOffset(earlier) * MINUTE == second) return earlier;
    return second - lgLocalOffset(earlier) * MINUTE;
}

// In seconds; 0 for what is none.
std::int64_t unitOf(std::string_view name)
{
    struct Unit
    {
        std::string_view _name;
        std::int64_t _seconds;
    };
    constexpr Unit UNITS[] = {{"s", 1},   {"m", MINUTE}, {"min", MINUTE}, {"h", 60 * MINUTE},
                              {"d", DAY}, {"day", DAY},  {"days", DAY},   {"w", 7 * DAY}};
    for (const Unit& unit : UNITS)
        if (name == unit._name) return unit._seconds;
    return 0;
}

void skipBlanks(std::string_view& text)
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
}

// Takes "90s" or "90 min", and adds its seconds.
bool takeLength(std::string_view& text, std::int64_t& seconds)
{
    constexpr std::int64_t MOST = std::numeric_limits<std::int64_t>::max() / 4 / NANOSECONDS;
    std::int64_t count = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (error != std::errc() || count < 0) return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    skipBlanks(text);
    const auto isNoLetter = [](char c) { return c < 'a' || c > 'z'; };
    const auto* const last = std::find_if(text.begin(), text.end(), isNoLetter);
    const auto length = static_cast<std::size_t>(last - text.begin());
    const std::int64_t unit = unitOf(text.substr(0, length));
    if (unit == 0 || count > MOST / unit) return false;
    text.remove_prefix(length);
    seconds += count * unit;
    return seconds <= MOST;
}

// "5m ago", "1h30m ago", "2 days 1 h ago".
std::optional<std::int64_t> parseAgo(std::string_view text, std::int64_t now)
{
    std::int64_t seconds = 0;
    do
    {
        if (!takeLength(text, seconds)) return std::nullopt;
        const std::size_t before = text.size();
        skipBlanks(text);
        if (text == "ago" && text.size() < before) return now - seconds * NANOSECONDS;
    } while (!text.empty());
    return std::nullopt;
}

// The day of this instant, as clocks here show it, or so many days before.
Civil localDay(std::int64_t second, int daysBefore)
{
    Civil civil;
    setDay(civil, second + lgLocalOffset(second) * MINUTE - daysBefore * DAY);
    return civil;
}

// "today" and "yesterday", which may be followed by a time of the day; otherwise leaves the text.
bool takeNamedDay(std::string_view& text, std::int64_t now, Civil& civil)
{
    constexpr std::string_view NAMES[] = {"today", "yesterday"};
    for (int daysBefore = 0; daysBefore < 2; ++daysBefore)
    {
        const std::string_view name = NAMES[daysBefore];
        if (!text.starts_with(name)) continue;
        civil = localDay(floorQuotient(now, NANOSECONDS), daysBefore);
        text.remove_prefix(name.size());
        return true;
    }
    return false;
}

void appendFilled(std::string& out, std::uint32_t value, int width)
{
    char digits[10];
    for (int i = width; i > 0; --i, value /= 10)
        digits[i - 1] = static_cast<char>('0' + value % 10);
    out.append(digits, static_cast<std::size_t>(width));
}

} // namespace

std::optional<std::int64_t> zlParseTime(std::string_view text, std::int64_t now)
{
    if (text == "now") return now;
    if (const auto ago = parseAgo(text, now)) return ago;
    Civil civil;
    const bool isNamed = takeNamedDay(text, now, civil);
    TimeParser whole(text);
    bool isRead = isNamed || whole.takeDate(civil);
    if (isRead && (whole.take(' ') || whole.take('T'))) isRead = whole.takeTimeOfDay(civil);
    if (!isRead)
    {
        if (isNamed) return std::nullopt;
        whole = TimeParser(text);
        civil = localDay(floorQuotient(now, NANOSECONDS), 0);
        if (!whole.takeTimeOfDay(civil)) return std::nullopt;
    }
    std::int64_t second = 0;
    if (!toSecond(civil, second)) return std::nullopt;
    int zone = 0;
    if (whole.rest().empty())
        second = utcOfLocal(second);
    else if (whole.takeZone(zone) && whole.rest().empty())
        second -= zone * MINUTE;
    else
        return std::nullopt;
    return second * NANOSECONDS + civil._fraction;
}

bool zlParseInstant(std::string_view text, std::int64_t& wall)
{
    constexpr std::size_t LENGTH = std::string_view("2026-11-22T22:10:51.123456").size();
    if (text.size() != LENGTH) return false;
    TimeParser parser(text);
    Civil civil;
    std::int64_t second = 0;
    const bool isRead = parser.takeDate(civil) && parser.take('T') && parser.takeTimeOfDay(civil) &&
                        parser.rest().empty() && toSecond(civil, second);
    wall = second * NANOSECONDS + civil._fraction;
    return isRead;
}

void ZlTimeWriter::append(std::string& out, std::int64_t wall)
{
    // So far from the limits that no zone leads beyond them.
    constexpr std::int64_t DISTANCE = 2 * DAY * NANOSECONDS;
    using Limits = std::numeric_limits<std::int64_t>;
    wall = std::clamp(wall, Limits::min() + DISTANCE, Limits::max() - DISTANCE);
    const std::int64_t second = floorQuotient(wall, NANOSECONDS);
    if (!_isCached || second != _second) beginSecond(second);
    out += _before;
    appendFilled(out, static_cast<std::uint32_t>((wall - second * NANOSECONDS) / MICROSECOND),
                 DECIMALS);
    out += _behind;
}

std::size_t ZlTimeWriter::getLength() const
{
    constexpr std::size_t LOCAL = std::string_view("2026-11-22 23:10:51.123456").size();
    if (_form == Form::Local) return LOCAL;
    return _form == Form::LocalIso ? LOCAL + std::string_view("+01:00").size() : LOCAL + 1;
}

void ZlTimeWriter::beginSecond(std::int64_t second)
{
    const bool isLocal = _form == Form::Local || _form == Form::LocalIso;
    const std::int64_t minute = floorQuotient(second, MINUTE);
    if (isLocal && (!_isCached || minute != _minute)) _offsetMinutes = lgLocalOffset(second);
    _isCached = true;
    _minute = minute;
    _second = second;
    // "2026-11-22T22:10:51Z"
    _before = lgIsoTime((second + _offsetMinutes * MINUTE) * NANOSECONDS, 0);
    _before.back() = '.';
    if (_form == Form::Local || _form == Form::Utc) _before[_before.find('T')] = ' ';
    _behind = isLocal ? "" : "Z";
    if (_form != Form::LocalIso) return;
    const auto distance = static_cast<std::uint32_t>(std::abs(_offsetMinutes));
    _behind = _offsetMinutes < 0 ? "-" : "+";
    appendFilled(_behind, distance / 60, 2);
    _behind += ':';
    appendFilled(_behind, distance % 60, 2);
}

void zlAppendSeconds(std::string& out, std::int64_t nanoseconds)
{
    // Less than a microsecond is written as zero, which has one form.
    const bool isNegative = nanoseconds <= -MICROSECOND;
    const std::uint64_t distance = nanoseconds < 0 ? 0 - static_cast<std::uint64_t>(nanoseconds)
                                                   : static_cast<std::uint64_t>(nanoseconds);
    constexpr auto SECOND = static_cast<std::uint64_t>(NANOSECONDS);
    out += isNegative ? '-' : '+';
    out += std::to_string(distance / SECOND);
    out += '.';
    appendFilled(out, static_cast<std::uint32_t>(distance % SECOND / MICROSECOND), DECIMALS);
}

} // namespace Zu

#include "base/lgStdText.h"

#include "base/lgFormat.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <locale>
#include <ostream>
#include <streambuf>
#include <string_view>

namespace Zu
{

namespace
{

constexpr std::int64_t SECONDS_PER_DAY = 86400;
constexpr std::int64_t NANOSECONDS = 1000000000;
constexpr int NANO_DIGITS = 9;

struct Unit
{
    std::intmax_t _numerator;
    std::intmax_t _denominator;
    const char* _name;
};

constexpr Unit UNITS[] = {
    {1, 1000000000000000000, "as"},
    {1, 1000000000000000, "fs"},
    {1, 1000000000000, "ps"},
    {1, 1000000000, "ns"},
    {1, 1000000, "us"},
    {1, 1000, "ms"},
    {1, 100, "cs"},
    {1, 10, "ds"},
    {1, 1, "s"},
    {60, 1, "min"},
    {3600, 1, "h"},
    {SECONDS_PER_DAY, 1, "d"},
    {10, 1, "das"},
    {100, 1, "hs"},
    {1000, 1, "ks"},
    {1000000, 1, "Ms"},
    {1000000000, 1, "Gs"},
    {1000000000000, 1, "Ts"},
    {1000000000000000, 1, "Ps"},
    {1000000000000000000, 1, "Es"},
};

struct Date
{
    std::int64_t _year;
    int _month;
    int _day;
};

// From days since 1970, by Howard Hinnant, 2013, "chrono-Compatible Low-Level Date Algorithms".
// Years begin in March here, so that the leap day is the last day of the year.
Date dateOf(std::int64_t days)
{
    constexpr std::int64_t DAYS_OF_ERA = 146097;
    constexpr std::int64_t DAYS_TO_1970 = 719468;
    // The sum is never negative: the shift spans several eras.
    const std::int64_t shifted = days % DAYS_OF_ERA + DAYS_TO_1970;
    const std::int64_t era = days / DAYS_OF_ERA + shifted / DAYS_OF_ERA;
    const std::int64_t day = shifted % DAYS_OF_ERA;
    const std::int64_t year = (day - day / 1460 + day / 36524 - day / 146096) / 365;
    const std::int64_t dayOfYear = day - (365 * year + year / 4 - year / 100);
    const auto month = static_cast<int>((5 * dayOfYear + 2) / 153);
    const int dayOfMonth = static_cast<int>(dayOfYear) - (153 * month + 2) / 5 + 1;
    const int calendarMonth = month < 10 ? month + 3 : month - 9;
    return {era * 400 + year + (calendarMonth <= 2 ? 1 : 0), calendarMonth, dayOfMonth};
}

LgNumber twoDigits(std::int64_t value)
{
    return lgWidth(value, 2, '0');
}

// The buffer that a thread's id is written to.
class IdBuffer : public std::streambuf
{
public:
    IdBuffer()
    {
        setp(_text.data(), _text.data() + _text.size());
    }

    std::string_view text() const
    {
        return {pbase(), static_cast<std::size_t>(pptr() - pbase())};
    }

private:
    std::array<char, 64> _text;
};

} // namespace

LgStream& lgInsertUnit(LgStream& stream, std::intmax_t numerator, std::intmax_t denominator)
{
    const auto* const unit = std::find_if(std::begin(UNITS), std::end(UNITS),
                                          [=](const Unit& candidate) {
                                              return candidate._numerator == numerator &&
                                                     candidate._denominator == denominator;
                                          });
    if (unit != std::end(UNITS)) return stream << unit->_name;
    stream << '[' << numerator;
    if (denominator != 1) stream << '/' << denominator;
    return stream << "]s";
}

LgStream& lgInsertUtc(LgStream& stream, std::int64_t seconds, std::int64_t nanoseconds,
                      int decimals)
{
    std::int64_t days = seconds / SECONDS_PER_DAY;
    std::int64_t second = seconds % SECONDS_PER_DAY;
    if (second < 0)
    {
        second += SECONDS_PER_DAY;
        --days;
    }
    const Date date = dateOf(days);
    stream << lgWidth(date._year, date._year < 0 ? 5 : 4, '0') << '-' << twoDigits(date._month)
           << '-' << twoDigits(date._day) << 'T' << twoDigits(second / 3600) << ':'
           << twoDigits(second / 60 % 60) << ':' << twoDigits(second % 60);
    if (nanoseconds < 0) nanoseconds += NANOSECONDS;
    if (decimals > 0)
    {
        for (int i = decimals; i < NANO_DIGITS; ++i) nanoseconds /= 10;
        stream << '.' << lgWidth(nanoseconds, std::min(decimals, NANO_DIGITS), '0');
    }
    return stream << 'Z';
}

LgStream& operator<<(LgStream& stream, const std::thread::id& id)
{
    IdBuffer buffer;
    std::ostream os(&buffer);
    os.imbue(std::locale::classic());
    os << id;
    return stream << buffer.text();
}

LgStream& operator<<(LgStream& stream, const std::error_code& code)
{
    return stream << code.category().name() << ':' << code.value();
}

LgStream& operator<<(LgStream& stream, const std::error_condition& condition)
{
    return stream << condition.category().name() << ':' << condition.value();
}

LgStream& lgInsertPath(LgStream& stream, const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return stream << std::string_view(reinterpret_cast<const char*>(text.data()), text.size());
}

} // namespace Zu

#include "base/textToDouble.h"

#include <charconv>
#include <cstring>
#include <limits>

namespace Zu
{

namespace
{

bool isHexadecimal(const char* text)
{
    return text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

// Whether a number that does not fit is too great, and not too small: whether its digits before the
// point, moved by its exponent, are more than none.
bool isTooGreat(const char* begin, const char* end, bool isHex)
{
    long exponent = 0;
    const char* mark = begin;
    while (mark != end && std::strchr(isHex ? "pP" : "eE", *mark) == nullptr) ++mark;
    const char* const mantissaEnd = mark;
    if (mark != end)
    {
        const char* const digits = mark[1] == '+' ? mark + 2 : mark + 1;
        if (std::from_chars(digits, end, exponent).ec != std::errc()) return *digits != '-';
    }
    // Digits that count, from the first that is not 0, before the point or, negative, behind it.
    long places = 0;
    bool isBehindPoint = false;
    bool isBegun = false;
    for (const char* digit = begin; digit != mantissaEnd; ++digit)
    {
        if (*digit == '.')
        {
            isBehindPoint = true;
            continue;
        }
        isBegun = isBegun || *digit != '0';
        if (isBegun && !isBehindPoint) ++places;
        if (!isBegun && isBehindPoint) --places;
    }
    return places * (isHex ? 4 : 1) + exponent > 0;
}

} // namespace

double textToDouble(const char* text)
{
    text += std::strspn(text, " \t\n\v\f\r");
    const bool isNegative = *text == '-';
    if (*text == '-' || *text == '+') ++text;
    if (*text == '-') return 0;
    const bool isHex = isHexadecimal(text);
    const char* const begin = isHex ? text + 2 : text;
    double value = 0;
    const auto format = isHex ? std::chars_format::hex : std::chars_format::general;
    const auto result = std::from_chars(begin, begin + std::strlen(begin), value, format);
    if (result.ec == std::errc::invalid_argument) return 0;
    if (result.ec == std::errc::result_out_of_range)
        value = isTooGreat(begin, result.ptr, isHex) ? std::numeric_limits<double>::infinity() : 0;
    return isNegative ? -value : value;
}

} // namespace Zu

#include "base/textToDouble.h"

#include "base/fromChars.h"

#include <cctype>
#include <charconv>
#include <cstring>
#include <limits>

namespace Zu
{

namespace
{

// Whether a digit follows "0x", possibly after a decimal point. Otherwise the number is only the
// "0", whatever from_chars() would accept there: a sign, "inf", "nan".
bool isHexadecimal(const char* text)
{
    if (text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) return false;
    const char* const digit = text[2] == '.' ? text + 3 : text + 2;
    return std::isxdigit(static_cast<unsigned char>(*digit)) != 0;
}

// The latest possible end of a number that begins here: the standard library accepts "p+-1" as an
// exponent.
const char* boundOf(const char* begin, bool isHex)
{
    const char* const mark = isHex ? std::strpbrk(begin, "pP") : nullptr;
    if (mark && mark[1] == '+' && mark[2] == '-') return mark;
    return begin + std::strlen(begin);
}

// Whether a number that does not fit is too large rather than too small: whether it has digits
// before the decimal point once that is moved by its exponent.
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
    // The number of significant digits before the point, from the first that is not 0; negative for
    // the zeros after the point.
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
    return exponent > -places * (isHex ? 4 : 1);
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
    const auto result = fromChars(begin, boundOf(begin, isHex), value, format);
    if (result.ec == std::errc::invalid_argument) return 0;
    if (result.ec == std::errc::result_out_of_range)
        value = isTooGreat(begin, result.ptr, isHex) ? std::numeric_limits<double>::infinity() : 0;
    return isNegative ? -value : value;
}

} // namespace Zu

/// @file
/// Number formats for log statements other than the default one.

#ifndef ZU_BASE_LGFORMAT_H
#define ZU_BASE_LGFORMAT_H

#include "baseApi.h"

#include <cstdint>
#include <type_traits>

namespace Zu
{

class LgStream;

/// A number and the format in which a log statement shows it, made by the functions below:
/// ZU_LOG_WARNING(Query, "at " << Zu::lgWidth(Zu::lgHex(address), 16, '0')). The text is made when
/// it is inserted, without heap allocation and independent of the locale.
class LgNumber
{
    friend ZU_BASE_API LgStream& operator<<(LgStream& stream, const LgNumber& number);
    friend LgNumber lgDecimals(double value, int decimals);
    friend LgNumber lgWidth(LgNumber number, int width, char fill);
    template <class T> friend LgNumber lgHex(T value);
    template <class T> friend LgNumber lgShortest(T value);

public:
    /// Takes any number, in the format that LgStream gives it; characters and `bool` are numbers
    /// too. A `long double` is rounded to `double`.
    template <class T, class = std::enable_if_t<std::is_arithmetic_v<T>>>
    LgNumber(T value) : _form(Form::Plain)
    {
        if constexpr (std::is_floating_point_v<T>)
        {
            _isFloating = true;
            _floating = static_cast<double>(value);
        }
        else
        {
            if constexpr (std::is_signed_v<T>) _isNegative = value < T(0);
            _bits = static_cast<std::uint64_t>(value);
        }
    }

private:
    enum class Form : unsigned char
    {
        Plain,
        Hexadecimal,
        Decimals,
        Shortest,
        ShortestFloat
    };

    // An integer's two's complement in 64 bits, or a floating-point number.
    std::uint64_t _bits = 0;
    double _floating = 0;
    int _decimals = 0;
    int _width = 0;
    char _fill = ' ';
    Form _form;
    bool _isFloating = false;
    bool _isNegative = false;
};

/// An integer in hexadecimal digits, "ff", with as many bits as its type has.
template <class T> LgNumber lgHex(T value)
{
    static_assert(std::is_integral_v<T>, "only integers have a hexadecimal form");
    LgNumber number(0);
    if constexpr (std::is_same_v<T, bool>)
        number._bits = value ? 1 : 0;
    else if constexpr (std::is_integral_v<T>)
        number._bits = static_cast<std::make_unsigned_t<T>>(value);
    number._form = LgNumber::Form::Hexadecimal;
    return number;
}

/// A number with the given count of decimals, from 0 to 100, rounded from its exact value.
inline LgNumber lgDecimals(double value, int decimals)
{
    LgNumber number(value);
    number._form = LgNumber::Form::Decimals;
    number._decimals = decimals;
    return number;
}

/// A `float` or `double` in the fewest characters that read back as the same number:
/// "0.1", "1e+100".
template <class T> LgNumber lgShortest(T value)
{
    static_assert(std::is_same_v<T, float> || std::is_same_v<T, double>,
                  "only float and double have a shortest form");
    LgNumber number(value);
    number._form =
        std::is_same_v<T, float> ? LgNumber::Form::ShortestFloat : LgNumber::Form::Shortest;
    return number;
}

/// A number right-aligned in a field of `width` characters, at most 100; a longer one is not
/// truncated. The fill character '0' goes after the sign.
inline LgNumber lgWidth(LgNumber number, int width, char fill = ' ')
{
    number._width = width;
    number._fill = fill;
    return number;
}

/// Inserts the formatted number.
ZU_BASE_API LgStream& operator<<(LgStream& stream, const LgNumber& number);

} // namespace Zu

#endif

/// @file
/// Reads floating-point numbers as the standard library does, also where it lacks the function.
/// Internal to the library.

#ifndef ZU_BASE_FROMCHARS_H
#define ZU_BASE_FROMCHARS_H

#include <charconv>

namespace Zu
{

/// Works like `std::from_chars` for decimal and hexadecimal numbers, formats `general` and `hex`.
/// It rounds to the nearest double, ties to even, whatever the rounding mode of the processor. A
/// number that does not fit gives `result_out_of_range` and leaves `value` unchanged. Raises
/// std::bad_alloc.
std::from_chars_result portableFromChars(const char* begin, const char* end, double& value,
                                         std::chars_format format);

namespace FromChars
{

template <class Value>
auto choose(const char* begin, const char* end, Value& value, std::chars_format format, int)
    -> decltype(std::from_chars(begin, end, value, format))
{
    return std::from_chars(begin, end, value, format);
}

template <class Value>
std::from_chars_result choose(const char* begin, const char* end, Value& value,
                              std::chars_format format, long)
{
    return portableFromChars(begin, end, value, format);
}

} // namespace FromChars

/// Calls the standard library's function if it has one, otherwise the one above.
inline std::from_chars_result fromChars(const char* begin, const char* end, double& value,
                                        std::chars_format format)
{
    return FromChars::choose(begin, end, value, format, 0);
}

} // namespace Zu

#endif

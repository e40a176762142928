/// @file
/// The standard library's reading of floating-point numbers, also where it has none. Internal to
/// the library.

#ifndef ZU_BASE_FROMCHARS_H
#define ZU_BASE_FROMCHARS_H

#include <charconv>

namespace Zu
{

/// As `std::from_chars` for a decimal or a hexadecimal number of the formats `general` and `hex`:
/// the nearest double, to even in the middle, whatever the rounding of the processor. One that does
/// not fit is `result_out_of_range`, and leaves `value` as it is. Raises std::bad_alloc.
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

/// The standard library's own where it has one, otherwise the above.
inline std::from_chars_result fromChars(const char* begin, const char* end, double& value,
                                        std::chars_format format)
{
    return FromChars::choose(begin, end, value, format, 0);
}

} // namespace Zu

#endif

/// @file
/// What checks compare and show.

#ifndef ZU_APP_APCHECKVALUE_H
#define ZU_APP_APCHECKVALUE_H

#include "appApi.h"

#include <cstddef>
#include <locale>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace Zu
{

/// What is shown for a value that can't be printed.
inline constexpr const char* AP_NOT_PRINTABLE = "(not printable)";

/// The text between double quotes, with escapes as in C++ for quotes, backslashes, line feeds,
/// carriage returns and tabs, and one of two hexadecimal digits for other control characters. Any
/// thread.
ZU_APP_API std::string apQuoted(std::string_view text);

/// @{
/// The fewest digits from which the number can be read again. Any thread.
ZU_APP_API std::string apShownNumber(float value);
ZU_APP_API std::string apShownNumber(double value);
ZU_APP_API std::string apShownNumber(long double value);
/// @}

/// @{
/// Whether a value can be written to a std::ostream.
template <class T, class = void> inline constexpr bool apIsPrintable = false;
template <class T>
inline constexpr bool apIsPrintable<
    T, std::void_t<decltype(std::declval<std::ostream&>() << std::declval<const T&>())>> = true;
/// @}

/// Whether a value is a text of C: a pointer to char, or an array of it. Null is none.
template <class T>
inline constexpr bool apIsCText =
    std::is_same_v<std::decay_t<T>, char*> || std::is_same_v<std::decay_t<T>, const char*>;

/// What a value's own operator writes; AP_NOT_PRINTABLE if it raises.
template <class T> std::string apPrinted(const T& value)
{
    try
    {
        std::ostringstream stream;
        stream.imbue(std::locale::classic());
        stream << value;
        return stream.str();
    }
    catch (...)
    {
        return AP_NOT_PRINTABLE;
    }
}

/// What a check shows for a pointer: "null", or what it points to as the platform writes it.
template <class T> std::string apShownPointer(const T& value)
{
    if (value == nullptr) return "null";
    if constexpr (std::is_function_v<std::remove_pointer_t<T>>)
        return AP_NOT_PRINTABLE;
    else
        return apPrinted(const_cast<const void*>(static_cast<const volatile void*>(value)));
}

/// What a check shows for a value: texts and characters between quotes, numbers and bools as in
/// C++, pointers as apShownPointer() does, anything else by its operator for std::ostream, and
/// AP_NOT_PRINTABLE for what has none.
template <class T> std::string apShown(const T& value)
{
    if constexpr (apIsCText<T>)
    {
        const char* const text = value;
        return text ? apQuoted(text) : "null";
    }
    else if constexpr (std::is_same_v<T, std::nullptr_t>)
        return "null";
    else if constexpr (std::is_convertible_v<const T&, std::string_view>)
        return apQuoted(value);
    else if constexpr (std::is_same_v<T, bool>)
        return value ? "true" : "false";
    else if constexpr (std::is_same_v<T, char>)
    {
        const std::string text = apQuoted(std::string_view(&value, 1));
        return "'" + text.substr(1, text.size() - 2) + "'";
    }
    else if constexpr (std::is_same_v<T, signed char> || std::is_same_v<T, unsigned char>)
        return std::to_string(value);
    else if constexpr (std::is_floating_point_v<T>)
        return apShownNumber(value);
    else if constexpr (std::is_pointer_v<T>)
        return apShownPointer(value);
    // These would be written as the bool that they convert to.
    else if constexpr (std::is_member_pointer_v<T> || std::is_array_v<T> || !apIsPrintable<T>)
        return AP_NOT_PRINTABLE;
    else
        return apPrinted(value);
}

/// A text of C as a value: nothing for null.
inline std::optional<std::string_view> apTextOf(const char* text)
{
    return text ? std::optional<std::string_view>(text) : std::nullopt;
}

/// Compares two values as checks do: whole numbers by their values, whether or not they are signed;
/// texts of C by their characters, where null is less than any text; anything else by its own
/// operator.
template <class A, class B, class Compare>
bool apCompare(const A& a, const B& b, const Compare& compare)
{
    if constexpr (apIsCText<A> && apIsCText<B>)
        return compare(apTextOf(a), apTextOf(b));
    else if constexpr (std::is_integral_v<A> && std::is_integral_v<B>)
    {
        if constexpr (std::is_signed_v<A> && !std::is_signed_v<B>)
            return a < 0 ? compare(-1, 0) : compare(static_cast<std::make_unsigned_t<A>>(a), b);
        else if constexpr (!std::is_signed_v<A> && std::is_signed_v<B>)
            return b < 0 ? compare(0, -1) : compare(a, static_cast<std::make_unsigned_t<B>>(b));
        else
            return compare(a, b);
    }
    else
        return static_cast<bool>(compare(a, b));
}

/// Whether two values differ by no more than a tolerance. Numbers are compared as long double;
/// other types need `<`, `-` and `<=`. Not a number is near to nothing, an infinity to itself.
template <class A, class B, class Tolerance>
bool apAreNear(const A& a, const B& b, const Tolerance& tolerance)
{
    if constexpr (std::is_arithmetic_v<A> && std::is_arithmetic_v<B> &&
                  std::is_arithmetic_v<Tolerance>)
    {
        const auto left = static_cast<long double>(a);
        const auto right = static_cast<long double>(b);
        const long double difference = left < right ? right - left : left - right;
        const bool areSame = left <= right && right <= left;
        return areSame || difference <= static_cast<long double>(tolerance);
    }
    else
        return static_cast<bool>((a < b ? b - a : a - b) <= tolerance);
}

} // namespace Zu

#endif

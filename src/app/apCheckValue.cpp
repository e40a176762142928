#include "app/apCheckValue.h"

#include <charconv>

namespace Zu
{

namespace
{

// What a character is written as; null for itself.
const char* escapeOf(char character)
{
    switch (character)
    {
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return nullptr;
    }
}

template <class Number> std::string shortest(Number value)
{
    // Enough for the shortest form of any number, which has an exponent if it is long.
    char text[64];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
    return {text, end.ptr};
}

} // namespace

std::string apQuoted(std::string_view text)
{
    constexpr char DIGITS[] = "0123456789abcdef";
    std::string quoted = "\"";
    for (const char character : text)
    {
        const auto byte = static_cast<unsigned char>(character);
        if (const char* const escape = escapeOf(character))
            quoted += escape;
        else if (byte < 0x20U || byte == 0x7FU)
            quoted += std::string("\\x") + DIGITS[byte >> 4U] + DIGITS[byte & 0xFU];
        else
            quoted += character;
    }
    return quoted + '"';
}

std::string apShownNumber(float value)
{
    return shortest(value);
}

std::string apShownNumber(double value)
{
    return shortest(value);
}

std::string apShownNumber(long double value)
{
    return shortest(value);
}

} // namespace Zu

#include "app/apTestXml.h"

#include <cstddef>

namespace Zu
{

namespace
{

unsigned byteAt(std::string_view text, std::size_t index)
{
    return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
}

bool isContinuation(unsigned byte)
{
    return (byte & 0xC0U) == 0x80U;
}

// The number of bytes that the first one announces; 0 if it can't be the first one.
std::size_t announcedLength(unsigned first)
{
    if (first < 0x80U) return 1;
    if (first >= 0xC2U && first <= 0xDFU) return 2;
    if (first >= 0xE0U && first <= 0xEFU) return 3;
    return first >= 0xF0U && first <= 0xF4U ? 4 : 0;
}

// Whether the second byte leads to no shorter form, no surrogate, and nothing above U+10FFFF.
bool fitsFirst(unsigned first, unsigned second)
{
    switch (first)
    {
    case 0xE0U:
        return second >= 0xA0U;
    case 0xEDU:
        return second <= 0x9FU;
    case 0xF0U:
        return second >= 0x90U;
    case 0xF4U:
        return second <= 0x8FU;
    default:
        return true;
    }
}

// The number of bytes of the character at the index; 0 if XML can't contain what is there.
std::size_t lengthAt(std::string_view text, std::size_t index)
{
    const unsigned first = byteAt(text, index);
    if (first < 0x20U) return first == '\t' || first == '\n' || first == '\r' ? 1 : 0;
    const std::size_t length = announcedLength(first);
    if (length > 1 && !fitsFirst(first, byteAt(text, index + 1))) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if (!isContinuation(byteAt(text, index + i))) return 0;
    const std::string_view character = text.substr(index, length);
    return character == "\xEF\xBF\xBE" || character == "\xEF\xBF\xBF" ? 0 : length;
}

// What stands for a character that has a meaning in XML, or that a reader would change; null for
// any other.
const char* replacementOf(char character)
{
    switch (character)
    {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\t':
        return "&#9;";
    case '\n':
        return "&#10;";
    case '\r':
        return "&#13;";
    default:
        return nullptr;
    }
}

void appendByte(std::string& out, unsigned byte)
{
    constexpr char DIGITS[] = "0123456789abcdef";
    out += "\\x";
    out += DIGITS[byte >> 4U];
    out += DIGITS[byte & 0xFU];
}

} // namespace

void apAppendXml(std::string& out, std::string_view text)
{
    for (std::size_t i = 0; i < text.size();)
    {
        const std::size_t length = lengthAt(text, i);
        const char* const replacement = replacementOf(text[i]);
        if (length == 0)
            appendByte(out, byteAt(text, i));
        else if (replacement)
            out += replacement;
        else
            out += text.substr(i, length);
        i += length == 0 ? 1 : length;
    }
}

} // namespace Zu

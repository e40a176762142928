#include "app/lgServiceJson.h"

#include "app/lgServiceLine.h"

#include <algorithm>
#include <cstddef>

namespace Zu
{

namespace
{

// Adds what has no control characters: afterwards it is UTF-8.
void addPlain(std::string& json, std::string_view text)
{
    std::string escaped;
    lgAppendEscaped(escaped, text);
    for (const char character : escaped)
    {
        if (character == '"' || character == '\\') json += '\\';
        json += character;
    }
}

} // namespace

std::string lgJsonText(std::string_view text)
{
    constexpr std::string_view DIGITS = "0123456789abcdef";
    const auto isControl = [](char character) { return character >= 0 && character < ' '; };
    std::string json = "\"";
    for (std::size_t begin = 0; begin < text.size();)
    {
        const auto* const end = std::find_if(text.begin() + begin, text.end(), isControl);
        const auto length = static_cast<std::size_t>(end - text.begin()) - begin;
        addPlain(json, text.substr(begin, length));
        begin += length;
        if (begin == text.size()) break;
        const auto control = static_cast<unsigned char>(text[begin++]);
        json += "\\u00";
        json += DIGITS[control >> 4];
        json += DIGITS[control & 15];
    }
    return json += '"';
}

LgJsonMembers& LgJsonMembers::add(std::string_view name, std::string_view json)
{
    if (!_text.empty()) _text += ',';
    _text.append(lgJsonText(name)).append(":").append(json);
    return *this;
}

LgJsonMembers& LgJsonMembers::add(std::string_view name, std::uint64_t value)
{
    return add(name, std::to_string(value));
}

std::string LgJsonMembers::object() const
{
    return std::string("{").append(_text).append("}");
}

} // namespace Zu

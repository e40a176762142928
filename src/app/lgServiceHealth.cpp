#include "app/lgServiceHealth.h"

#include "app/lgServiceLine.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

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

std::string quoted(std::string_view text)
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
    return json + "\"";
}

std::string member(std::string_view name, std::uint64_t value)
{
    return quoted(name) + ":" + std::to_string(value);
}

std::string textOf(const LgServiceHealth::Queue& queue)
{
    return "{" + member("thread", queue._thread) + "," + member("entries", queue._entries) + "," +
           member("waiting", queue._waiting) + "," + member("largest", queue._largest) + "," +
           member("lost", queue._lost) + "}";
}

std::string textOf(const LgServiceHealth::File& file)
{
    return "{\"path\":" + quoted(file._path) +
           ",\"failing\":" + (file._isFailing ? "true," : "false,") +
           member("pending", file._pending) + "," + member("rotations", file._rotations) + "}";
}

template <class Part> std::string listOf(const std::vector<Part>& parts)
{
    std::string text;
    for (const Part& part : parts) text += (text.empty() ? "" : ",") + textOf(part);
    return "[" + text + "]";
}

} // namespace

std::string LgServiceHealth::toJson() const
{
    std::string events;
    for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
    {
        const char* const name = LgTypes::levelToString(static_cast<LgTypes::Level>(i));
        events += (i == 0 ? "" : ",") + member(name, _events[static_cast<std::size_t>(i)]);
    }
    return "{\"events\":{" + events + "}," + member("lost", _lost) + "," +
           member("unwritten", _unwritten) + "," + member("waiting", _waiting) + "," +
           member("behindMicroseconds", static_cast<std::uint64_t>(_behind.count())) + "," +
           member("recovered", _recovered) + ",\"queues\":" + listOf(_queues) +
           ",\"files\":" + listOf(_files) + "}";
}

} // namespace Zu

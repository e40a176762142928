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
    return json += '"';
}

// The members of an object, one after the other.
class Members
{
public:
    Members& add(std::string_view name, std::string_view json)
    {
        if (!_text.empty()) _text += ',';
        _text.append(quoted(name)).append(":").append(json);
        return *this;
    }

    Members& add(std::string_view name, std::uint64_t value)
    {
        return add(name, std::to_string(value));
    }

    std::string object() const
    {
        return std::string("{").append(_text).append("}");
    }

private:
    std::string _text;
};

std::string textOf(const LgServiceHealth::Queue& queue)
{
    return Members()
        .add("thread", queue._thread)
        .add("entries", queue._entries)
        .add("waiting", queue._waiting)
        .add("largest", queue._largest)
        .add("lost", queue._lost)
        .object();
}

std::string textOf(const LgServiceHealth::File& file)
{
    return Members()
        .add("path", quoted(file._path))
        .add("failing", file._isFailing ? "true" : "false")
        .add("pending", file._pending)
        .add("rotations", file._rotations)
        .object();
}

template <class Part> std::string listOf(const std::vector<Part>& parts)
{
    std::string text = "[";
    for (const Part& part : parts)
    {
        if (text.size() > 1) text += ',';
        text += textOf(part);
    }
    return text += ']';
}

} // namespace

std::string LgServiceHealth::toJson() const
{
    Members events;
    for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
        events.add(LgTypes::levelToString(static_cast<LgTypes::Level>(i)),
                   _events[static_cast<std::size_t>(i)]);
    return Members()
        .add("events", events.object())
        .add("lost", _lost)
        .add("unwritten", _unwritten)
        .add("waiting", _waiting)
        .add("behindMicroseconds", static_cast<std::uint64_t>(_behind.count()))
        .add("recovered", _recovered)
        .add("queues", listOf(_queues))
        .add("files", listOf(_files))
        .object();
}

} // namespace Zu

#include "zulog/zlSuffix.h"

#include <algorithm>
#include <cstddef>

namespace Zu
{

namespace
{

// How many places are looked at where fields might begin.
constexpr int MOST_BEGINNINGS = 100;

using Fields = std::vector<std::pair<std::string, std::string>>;

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool isPlain(char character)
{
    return isDigit(character) || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z') ||
           std::string_view("_.:/@+-").find(character) != std::string_view::npos;
}

bool takeCharacter(std::string_view& rest, char character)
{
    if (rest.empty() || rest.front() != character) return false;
    rest.remove_prefix(1);
    return true;
}

bool takeQuoted(std::string_view& rest, std::string& part)
{
    while (!rest.empty() && rest.front() != '"')
    {
        if (rest.front() == '\\') rest.remove_prefix(1);
        if (rest.empty()) return false;
        part += rest.front();
        rest.remove_prefix(1);
    }
    return takeCharacter(rest, '"');
}

bool takePart(std::string_view& rest, std::string& part)
{
    if (takeCharacter(rest, '"')) return takeQuoted(rest, part);
    const auto* const end = std::find_if_not(rest.begin(), rest.end(), isPlain);
    const auto length = static_cast<std::size_t>(end - rest.begin());
    part = rest.substr(0, length);
    rest.remove_prefix(length);
    return length > 0;
}

// "request=4711, user=ann}", which must be all that is left.
bool takeFields(std::string_view rest, Fields& fields)
{
    for (;;)
    {
        std::pair<std::string, std::string> field;
        const bool isField =
            takePart(rest, field.first) && takeCharacter(rest, '=') && takePart(rest, field.second);
        if (!isField) return false;
        fields.push_back(std::move(field));
        if (rest == "}") return true;
        if (!takeCharacter(rest, ',') || !takeCharacter(rest, ' ')) return false;
    }
}

// Removes the fields from the end of the text.
Fields takeFieldsOf(std::string_view& text)
{
    if (text.empty() || text.back() != '}') return {};
    constexpr std::string_view BEGIN = " {";
    // The last one that fits; those in quotation marks do not.
    std::size_t at = text.rfind(BEGIN);
    for (int i = 0; i < MOST_BEGINNINGS && at != std::string_view::npos; ++i)
    {
        Fields fields;
        if (takeFields(text.substr(at + BEGIN.size()), fields))
        {
            text = text.substr(0, at);
            return fields;
        }
        at = at > 0 ? text.rfind(BEGIN, at - 1) : std::string_view::npos;
    }
    return {};
}

// "orders.cpp:17" of a text that ends with " [orders.cpp:17]".
std::string sourceOf(std::string_view text)
{
    if (text.empty() || text.back() != ']') return {};
    text.remove_suffix(1);
    const std::size_t begin = text.rfind(" [");
    if (begin == std::string_view::npos) return {};
    text.remove_prefix(begin + 2);
    const std::size_t colon = text.rfind(':');
    const bool isPlace =
        colon != std::string_view::npos && colon > 0 && colon + 1 < text.size() &&
        std::all_of(text.begin() + static_cast<std::ptrdiff_t>(colon) + 1, text.end(), isDigit);
    return isPlace ? std::string(text) : std::string();
}

} // namespace

ZlSuffix zlSuffixOf(std::string_view text)
{
    // It may be all of the text.
    const std::string line = " " + std::string(text);
    std::string_view rest = line;
    ZlSuffix suffix;
    suffix._fields = takeFieldsOf(rest);
    suffix._source = sourceOf(rest);
    return suffix;
}

} // namespace Zu

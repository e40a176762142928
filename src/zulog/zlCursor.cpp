#include "zulog/zlCursor.h"

#include "zulog/zlFormat.h"

#include <charconv>
#include <system_error>
#include <utility>

namespace Zu
{

namespace
{

constexpr std::string_view TITLE = "zulog cursor ";
constexpr std::string_view VERSION = "2";
constexpr std::string_view EARLIER_VERSION = "1";
constexpr std::uint32_t VERSION_NUMBER = 2;
constexpr std::string_view UNKNOWN = "-";
constexpr std::string_view SUM = "sum ";
constexpr int HEX = 16;
constexpr std::size_t HEX_DIGITS = 16;

std::string hexOf(std::uint64_t value)
{
    char digits[HEX_DIGITS];
    const char* const end = std::to_chars(digits, digits + HEX_DIGITS, value, HEX).ptr;
    const std::string text(static_cast<const char*>(digits), end);
    return std::string(HEX_DIGITS - text.size(), '0') + text;
}

std::string escaped(std::string_view name)
{
    std::string text;
    for (const char c : name)
    {
        if (c == '\\') text += '\\';
        if (c == '\n')
            text += "\\n";
        else
            text += c;
    }
    return text;
}

// What refuses a text, with the name of the file in front.
class Reader
{
public:
    Reader(std::string_view text, const std::string& name) : _rest(text), _name(name) {}

    ZlCursor read()
    {
        const std::string_view whole = _rest;
        const std::string_view title = takeLine();
        if (title.substr(0, TITLE.size()) != TITLE) refuse("is no cursor of zulog");
        const std::string_view version = title.substr(TITLE.size());
        if (version != VERSION && version != EARLIER_VERSION) refuseVersion(version);
        _isEarlier = version == EARLIER_VERSION;
        ZlCursor cursor;
        cursor._destination = nameIn(takeWord(takeLine(), "to "));
        while (_rest.substr(0, SUM.size()) != SUM) addPlace(cursor, takeWord(takeLine(), "at "));
        const std::size_t size = whole.size() - _rest.size();
        if (takeLine() != std::string(SUM) + hexOf(zlHashOf(whole.substr(0, size)))) damaged();
        if (!_rest.empty()) damaged();
        // Numbers and the order of places have one form only.
        if (!_isEarlier && zlWriteCursor(cursor) != whole) damaged();
        return cursor;
    }

private:
    [[noreturn]] void refuse(const std::string& reason) const
    {
        std::string text = "\"";
        zlAppendPrintable(text, _name, false);
        throw ZlError(text + "\" " + reason);
    }

    [[noreturn]] void damaged() const
    {
        refuse("is damaged; without it, all of the logs is shipped again");
    }

    [[noreturn]] void refuseVersion(std::string_view version) const
    {
        std::uint32_t number = 0;
        const char* const end = version.data() + version.size();
        const auto [place, error] = std::from_chars(version.data(), end, number);
        if (error == std::errc() && place == end && number > VERSION_NUMBER)
            refuse("is the cursor of a newer zulog, of version " + std::to_string(number));
        damaged();
    }

    std::string_view takeLine()
    {
        const std::size_t end = _rest.find('\n');
        if (end == std::string_view::npos) damaged();
        const std::string_view line = _rest.substr(0, end);
        _rest.remove_prefix(end + 1);
        return line;
    }

    // What follows the word.
    std::string_view takeWord(std::string_view line, std::string_view word) const
    {
        if (line.substr(0, word.size()) != word) damaged();
        return line.substr(word.size());
    }

    std::uint64_t takeNumber(std::string_view& line, int base) const
    {
        std::uint64_t number = 0;
        const char* const end = line.data() + line.size();
        const auto [place, error] = std::from_chars(line.data(), end, number, base);
        if (error != std::errc() || place == end || *place != ' ') damaged();
        line.remove_prefix(static_cast<std::size_t>(place - line.data()) + 1);
        return number;
    }

    std::optional<std::uint64_t> takeHash(std::string_view& line) const
    {
        const bool isUnknown = line.substr(0, UNKNOWN.size()) == UNKNOWN;
        if (!isUnknown) return takeNumber(line, HEX);
        line = takeWord(line, "- ");
        return std::nullopt;
    }

    std::string nameIn(std::string_view text) const
    {
        std::string name;
        for (std::size_t i = 0; i < text.size(); ++i)
        {
            if (text[i] != '\\')
            {
                name += text[i];
                continue;
            }
            const char next = ++i < text.size() ? text[i] : '\0';
            if (next != 'n' && next != '\\') damaged();
            name += next == 'n' ? '\n' : '\\';
        }
        return name;
    }

    void addPlace(ZlCursor& cursor, std::string_view line) const
    {
        ZlPlace place;
        place._file._volume = takeNumber(line, 10);
        place._file._number = takeNumber(line, 10);
        place._headSize = takeNumber(line, 10);
        place._head = takeNumber(line, HEX);
        place._offset = takeNumber(line, 10);
        if (!_isEarlier) place._last = takeHash(line);
        const bool isHeadWhole = place._headSize <= ZlPlace::LARGEST_HEAD;
        if (!isHeadWhole || line.empty()) damaged();
        if (!cursor._places.emplace(nameIn(line), place).second) damaged();
    }

    std::string_view _rest;
    const std::string& _name;
    bool _isEarlier = false;
};

} // namespace

std::uint64_t zlHashOf(std::string_view bytes)
{
    std::uint64_t hash = 14695981039346656037U;
    for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
    return hash;
}

std::string zlWriteCursor(const ZlCursor& cursor)
{
    std::string text = std::string(TITLE).append(VERSION).append("\n");
    text += "to " + escaped(cursor._destination) + "\n";
    for (const auto& [name, place] : cursor._places)
    {
        text += "at ";
        text += std::to_string(place._file._volume) + " ";
        text += std::to_string(place._file._number) + " ";
        text += std::to_string(place._headSize) + " " + hexOf(place._head) + " ";
        text += std::to_string(place._offset) + " ";
        text += place._last ? hexOf(*place._last) : UNKNOWN;
        text += " " + escaped(name) + "\n";
    }
    return text + std::string(SUM) + hexOf(zlHashOf(text)) + "\n";
}

ZlCursor zlReadCursor(std::string_view text, const std::string& name)
{
    return Reader(text, name).read();
}

} // namespace Zu

#include "zulog/zlLine.h"

#include "zulog/zlTime.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <string>
#include <system_error>

namespace Zu
{

namespace
{

constexpr std::string_view OVERFLOW_BEGIN = "Event overflow [";
constexpr std::string_view NOT_WRITTEN_BEGIN = "===== Not Written: ";
constexpr std::string_view NOT_WRITTEN_SINCE = " events since ";
constexpr std::string_view MARK_END = " =====";
// The longest head ends with the level; this is where that begins at the latest.
constexpr std::size_t LAST_LEVEL = 64;
constexpr std::string_view ISO_PATTERN = "dddd-dd-ddTdd:dd:dd.dddddd";
constexpr std::size_t TICK_DIGITS = 10;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

// Takes a line apart from its beginning.
class HeadParser
{
public:
    explicit HeadParser(std::string_view line)
        : _begin(line.data()), _place(line.data()), _end(line.data() + line.size())
    {
    }

    bool take(char c)
    {
        if (_place == _end || *_place != c) return false;
        ++_place;
        return true;
    }

    bool take(std::string_view text)
    {
        if (left() < text.size() || std::memcmp(_place, text.data(), text.size()) != 0)
            return false;
        _place += text.size();
        return true;
    }

    // Exactly so many decimal digits.
    bool takeDigits(std::size_t count, std::uint64_t& value)
    {
        if (left() < count) return false;
        value = 0;
        for (const char* const end = _place + count; _place != end; ++_place)
        {
            if (!isDigit(*_place)) return false;
            value = value * 10 + static_cast<std::uint64_t>(*_place - '0');
        }
        return true;
    }

    // A number without leading zeros.
    bool takeNumber(std::uint32_t& value)
    {
        const auto [place, error] = std::from_chars(_place, _end, value);
        const bool isPadded = left() > 1 && *_place == '0' && place != _place + 1;
        if (error != std::errc() || isPadded) return false;
        _place = place;
        return true;
    }

    // Exactly eight lower-case hexadecimal digits.
    bool takeHex(std::uint32_t& value)
    {
        constexpr std::size_t COUNT = 8;
        if (left() < COUNT) return false;
        value = 0;
        for (const char* const end = _place + COUNT; _place != end; ++_place)
        {
            const char c = *_place;
            const bool isHexLetter = c >= 'a' && c <= 'f';
            if (!isDigit(c) && !isHexLetter) return false;
            const int digit = isHexLetter ? c - 'a' + 10 : c - '0';
            value = value << 4 | static_cast<std::uint32_t>(digit);
        }
        return true;
    }

    std::string_view rest() const
    {
        return {_place, left()};
    }

    void skip(std::size_t count)
    {
        _place += count;
    }

    std::size_t taken() const
    {
        return static_cast<std::size_t>(_place - _begin);
    }

private:
    std::size_t left() const
    {
        return static_cast<std::size_t>(_end - _place);
    }

    const char* const _begin;
    const char* _place;
    const char* const _end;
};

// "0000000001 0000000005", each half of 32 bits.
bool takeTicks(HeadParser& parser, std::uint64_t& ticks)
{
    std::uint64_t high = 0;
    std::uint64_t low = 0;
    if (!parser.takeDigits(TICK_DIGITS, high) || !parser.take(' ') ||
        !parser.takeDigits(TICK_DIGITS, low))
        return false;
    ticks = high << 32 | low;
    return high >> 32 == 0 && low >> 32 == 0;
}

// "2026-11-22T23:10:51.123456+01:00 4711"
bool takeIso(HeadParser& parser, ZlHead& head)
{
    const std::string_view text = parser.rest().substr(0, ISO_PATTERN.size());
    if (!zlParseInstant(text, head._wall)) return false;
    parser.skip(ISO_PATTERN.size());
    head._zone = 0;
    if (!parser.take('Z'))
    {
        const bool isWest = parser.take('-');
        std::uint64_t hours = 0;
        std::uint64_t minutes = 0;
        if ((!isWest && !parser.take('+')) || !parser.takeDigits(2, hours) || !parser.take(':') ||
            !parser.takeDigits(2, minutes) || minutes > 59)
            return false;
        const auto distance = static_cast<int>(hours * 60 + minutes);
        head._zone = isWest ? -distance : distance;
        head._wall -= head._zone * std::int64_t{60} * 1000000000;
    }
    return parser.take(' ') && parser.takeNumber(head._process);
}

struct LevelText
{
    LgTypes::Level _level;
    std::string_view _text;
};

constexpr std::array<LevelText, LgTypes::NUM_LEVELS> LEVEL_TEXTS = {
    {{LgTypes::Warning, "Warning: "},
     {LgTypes::Informational, "Informational: "},
     {LgTypes::Tracing, "Tracing: "},
     {LgTypes::Error, "Error: "},
     {LgTypes::Profiling, "Profiling: "},
     {LgTypes::FatalError, "Fatal Error: "},
     {LgTypes::InternalError, "Internal Error: "}}};

} // namespace

std::size_t zlParseLevel(std::string_view text, LgTypes::Level& level)
{
    for (const LevelText& known : LEVEL_TEXTS)
    {
        if (text.empty() || text.front() != known._text.front()) continue;
        if (text.substr(0, known._text.size()) != known._text) continue;
        level = known._level;
        return known._text.size();
    }
    return 0;
}

bool zlParseHead(std::string_view line, ZlHead& head)
{
    HeadParser parser(line);
    const bool isTicks = line.size() > TICK_DIGITS && line[TICK_DIGITS] == ' ';
    head._form = isTicks ? ZlHead::Form::Ticks : ZlHead::Form::Iso;
    if (isTicks ? !takeTicks(parser, head._ticks) : !takeIso(parser, head)) return false;
    if (!parser.take(" (0x") || !parser.takeHex(head._thread) || !parser.take(") ")) return false;
    const std::size_t length = zlParseLevel(parser.rest(), head._level);
    head._length = parser.taken() + length;
    return length > 0;
}

std::size_t zlFindLevel(std::string_view line)
{
    // Where it is in the most frequent form.
    constexpr std::size_t IN_TICKS = 35;
    if (line.size() > IN_TICKS && line[IN_TICKS - 1] == ' ' && line[IN_TICKS - 2] == ')')
        return IN_TICKS;
    const std::size_t place = line.substr(0, LAST_LEVEL).find(") ");
    return place == std::string_view::npos ? place : place + 2;
}

std::size_t zlGroupLength(std::string_view text)
{
    std::size_t length = 0;
    while (length < text.size() &&
           (isLetter(text[length]) || isDigit(text[length]) || text[length] == ':'))
        ++length;
    const bool isName = length > 0 && isLetter(text.front()) &&
                        (length == text.size() || text[length] == ' ' || text[length] == '\n');
    return isName ? length : 0;
}

bool zlParseOverflow(std::string_view text, std::uint64_t& count)
{
    if (text.substr(0, OVERFLOW_BEGIN.size()) != OVERFLOW_BEGIN) return false;
    const char* const begin = text.data() + OVERFLOW_BEGIN.size();
    const char* const end = text.data() + text.size();
    const auto [place, error] = std::from_chars(begin, end, count);
    return error == std::errc() && end - place == 1 && *place == ']';
}

bool zlParseNotWritten(std::string_view line, std::uint64_t& count, std::int64_t& since)
{
    if (line.substr(0, NOT_WRITTEN_BEGIN.size()) != NOT_WRITTEN_BEGIN) return false;
    const char* const end = line.data() + line.size();
    const auto [place, error] = std::from_chars(line.data() + NOT_WRITTEN_BEGIN.size(), end, count);
    if (error != std::errc()) return false;
    std::string_view rest(place, static_cast<std::size_t>(end - place));
    if (rest.substr(0, NOT_WRITTEN_SINCE.size()) != NOT_WRITTEN_SINCE) return false;
    rest.remove_prefix(NOT_WRITTEN_SINCE.size());
    return zlParseInstant(rest.substr(0, ISO_PATTERN.size()), since) &&
           rest.substr(ISO_PATTERN.size()) == std::string("Z").append(MARK_END);
}

} // namespace Zu

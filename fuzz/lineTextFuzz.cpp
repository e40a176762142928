// A byte for what the rest is: the text of an event, a line, or the parts of a line that dates
// others.

#include "app/lgServiceLine.h"
#include "base/lgTypes.h"

#include "fuzzTarget.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using Zu::LgLineOrigin;

std::string restOf(fuzz::Input& input)
{
    const std::vector<std::uint8_t> bytes = input.takeRest();
    return {bytes.begin(), bytes.end()};
}

std::string escaped(const std::string& text)
{
    std::string out;
    Zu::lgAppendEscaped(out, text);
    return out;
}

// The code points of valid UTF-8.
std::vector<std::uint32_t> decode(const std::string& text)
{
    std::vector<std::uint32_t> codes;
    for (std::size_t i = 0; i < text.size();)
    {
        const auto first = static_cast<std::uint8_t>(text[i++]);
        std::uint32_t code = first;
        int more = 0;
        if (first >= 0x80)
        {
            FUZZ_REQUIRE(first >= 0xc2 && first <= 0xf4);
            more = first >= 0xf0 ? 3 : first >= 0xe0 ? 2 : 1;
            code = first & (0x3fU >> more);
        }
        for (int j = 0; j < more; ++j)
        {
            FUZZ_REQUIRE(i < text.size());
            const auto next = static_cast<std::uint8_t>(text[i++]);
            FUZZ_REQUIRE(next >= 0x80 && next <= 0xbf);
            code = code << 6 | (next & 0x3fU);
        }
        FUZZ_REQUIRE(more < 2 || code >= (more == 2 ? 0x800U : 0x10000U));
        FUZZ_REQUIRE(code <= 0x10ffff && (code < 0xd800 || code > 0xdfff));
        codes.push_back(code);
    }
    return codes;
}

bool isBidirectional(std::uint32_t code)
{
    return code == 0x61c || code == 0x200e || code == 0x200f ||
           (code >= 0x202a && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
}

// No control but TAB, and the line feed before a TAB; nothing that turns or ends a line.
void requireHarmless(const std::string& line)
{
    const std::vector<std::uint32_t> codes = decode(line);
    for (std::size_t i = 0; i < codes.size(); ++i)
    {
        const std::uint32_t code = codes[i];
        if (code == '\n') FUZZ_REQUIRE(i + 1 < codes.size() && codes[i + 1] == '\t');
        FUZZ_REQUIRE(code >= 0x20 || code == '\t' || code == '\n');
        FUZZ_REQUIRE(code < 0x7f || code > 0x9f);
        FUZZ_REQUIRE(code != 0x2028 && code != 0x2029 && !isBidirectional(code));
    }
}

// Where nothing stands before the texts, they could look like another event's line, or like those
// of the log itself.
void requireNoLineForged(const std::string& line)
{
    FUZZ_REQUIRE(line.empty() || line[0] != '\t');
    FUZZ_REQUIRE(line.compare(0, 5, "=====") != 0);
    bool isFirst = true;
    for (const std::string& piece : fuzz::split(line, '\n'))
    {
        LgLineOrigin origin;
        FUZZ_REQUIRE(!Zu::lgParseOriginLine(piece, origin));
        FUZZ_REQUIRE(isFirst || piece.compare(0, 1, "\t") == 0);
        isFirst = false;
    }
}

// Text and line of an event are the escaped text behind what the form puts before it.
void checkWriter(const std::string& text, const std::string& line)
{
    for (const bool isRaw : {false, true})
    {
        std::string plain;
        std::string dated;
        const Zu::LgLineEvent event{1ULL << 32 | 7, 0xabc, Zu::LgTypes::Warning, text};
        Zu::LgLineWriter(Zu::LgLineForm::Plain, isRaw).append(plain, event);
        Zu::LgLineWriter(Zu::LgLineForm::Ticks, isRaw).append(dated, event);
        FUZZ_REQUIRE(plain == (isRaw ? text : line) + "\n");
        FUZZ_REQUIRE(dated == "0000000001 0000000007 (0x00000abc) Warning: " + plain);
    }
}

void checkText(const std::string& text)
{
    const std::string line = escaped(text);
    FUZZ_REQUIRE(line.size() <= 4 * text.size());
    FUZZ_REQUIRE(Zu::lgUnescaped(line) == text);
    requireHarmless(line);
    requireNoLineForged(line);
    checkWriter(text, line);
    // The same wherever it begins in memory.
    const std::string shifted = "12345" + text;
    std::string other = "x";
    Zu::lgAppendEscaped(other, std::string_view(shifted).substr(5));
    FUZZ_REQUIRE(other == "x" + line);
}

bool areSame(const LgLineOrigin& one, const LgLineOrigin& other)
{
    return one._start == other._start && one._tick == other._tick && one._wall == other._wall &&
           one._ticksPerSecond == other._ticksPerSecond && one._process == other._process &&
           one._processStart == other._processStart && one._host == other._host &&
           one._boot == other._boot;
}

void checkLine(const std::string& line)
{
    FUZZ_REQUIRE(Zu::lgUnescaped(line).size() <= line.size());
    LgLineOrigin before;
    before._start = 1;
    before._host = "before";
    LgLineOrigin origin = before;
    if (!Zu::lgParseOriginLine(line, origin))
    {
        FUZZ_REQUIRE(areSame(origin, before));
        return;
    }
    FUZZ_REQUIRE(origin._start == 0);
    const std::string written = Zu::lgOriginLine(origin);
    FUZZ_REQUIRE(written == line || written == line + "\n");
    requireHarmless(line.back() == '\n' ? line.substr(0, line.size() - 1) : line);
}

// The time of an event, whatever its origin is.
void checkTimes(const LgLineOrigin& origin, std::uint64_t time)
{
    const Zu::LgLineEvent event{time, 0xabc, Zu::LgTypes::Warning, "text"};
    const std::string rest =
        " " + std::to_string(origin._process) + " (0x00000abc) Warning: text\n";
    for (const Zu::LgLineForm form : {Zu::LgLineForm::Utc, Zu::LgLineForm::Local})
    {
        Zu::LgLineWriter writer(form, false);
        writer.setOrigin(origin);
        std::string once;
        std::string twice;
        writer.append(once, event);
        // The second time from what was kept of the first one.
        writer.append(twice, event);
        FUZZ_REQUIRE(once == twice);
        FUZZ_REQUIRE(once.size() > rest.size());
        FUZZ_REQUIRE(once.compare(once.size() - rest.size(), rest.size(), rest) == 0);
        const std::string utc = Zu::lgIsoTime(Zu::lgWallOf(origin, time), 6);
        FUZZ_REQUIRE(form == Zu::LgLineForm::Local || once == utc + rest);
    }
}

void checkOrigin(fuzz::Input& input)
{
    LgLineOrigin origin;
    origin._start = input.takeNumber();
    origin._tick = input.takeNumber();
    origin._wall = static_cast<std::int64_t>(input.takeNumber());
    origin._ticksPerSecond = input.takeNumber();
    origin._process = static_cast<std::uint32_t>(input.takeNumber());
    origin._processStart = static_cast<std::int64_t>(input.takeNumber());
    checkTimes(origin, input.takeNumber());
    const std::string names = restOf(input);
    const std::size_t middle = std::min(names.find('\0'), names.size());
    origin._host = names.substr(0, middle);
    origin._boot = names.substr(std::min(middle + 1, names.size()));
    const std::string line = Zu::lgOriginLine(origin);
    FUZZ_REQUIRE(!line.empty() && line.find('\n') == line.size() - 1);
    requireHarmless(line.substr(0, line.size() - 1));
    constexpr std::uint64_t MOST_RATE = 1000000000000000000;
    const bool isRate = origin._ticksPerSecond >= 1 && origin._ticksPerSecond <= MOST_RATE;
    LgLineOrigin found;
    FUZZ_REQUIRE(Zu::lgParseOriginLine(line, found) == isRate);
    if (!isRate) return;
    origin._tick -= origin._start;
    origin._start = 0;
    FUZZ_REQUIRE(areSame(found, origin));
    // A second later, where that fits.
    constexpr std::int64_t SECOND = 1000000000;
    origin._wall /= 2;
    FUZZ_REQUIRE(Zu::lgWallOf(origin, origin._tick + origin._ticksPerSecond) ==
                 origin._wall + SECOND);
}

void run(fuzz::Input input)
{
    constexpr std::uint8_t KINDS = 3;
    const std::uint8_t kind = input.takeByte() % KINDS;
    if (kind == 0)
        checkText(restOf(input));
    else if (kind == 1)
        checkLine(restOf(input));
    else
        checkOrigin(input);
}

} // namespace

FUZZ_TARGET(lineText, run);

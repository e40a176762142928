#include "app/lgServiceLine.h"

#include "base/compiler.h"
#include "base/osDateUtil.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>
#include <limits>
#include <system_error>

namespace Zu
{

namespace
{

constexpr std::int64_t NANOSECONDS = 1000000000;
constexpr std::int64_t NANOSECONDS_PER_MICROSECOND = 1000;
constexpr std::uint64_t MAX_RATE = 1000000000000000000;
constexpr std::int64_t SECONDS_PER_MINUTE = 60;

// Those of OsDateTypes::DateRep, which begin in 1601.
constexpr std::int64_t DATE_TICKS = 10000000;
constexpr std::int64_t SECONDS_TO_1970 = 11644473600;

constexpr std::size_t PREFIX_SIZE = 96;
constexpr std::string_view BANNER = "=====";
constexpr std::string_view DIGITS = "0123456789abcdef";

constexpr std::int64_t floorQuotient(std::int64_t a, std::int64_t b)
{
    return a / b - (a % b < 0 ? 1 : 0);
}

constexpr std::int64_t floorRemainder(std::int64_t a, std::int64_t b)
{
    return a % b + (a % b < 0 ? b : 0);
}

char* put(char* place, std::string_view text)
{
    std::memcpy(place, text.data(), text.size());
    return place + text.size();
}

// Puts all digits of a number, with leading zeros.
template <std::uint32_t BASE, int WIDTH> char* putFilled(char* place, std::uint32_t value)
{
    for (int i = WIDTH; i > 0; --i, value /= BASE) place[i - 1] = DIGITS[value % BASE];
    return place + WIDTH;
}

void appendNumber(std::string& out, std::uint64_t value)
{
    char digits[std::numeric_limits<std::uint64_t>::digits10 + 1];
    out.append(digits, std::to_chars(std::begin(digits), std::end(digits), value).ptr);
}

OsDateTypes::DateRep dateOf(std::int64_t second)
{
    const auto count = static_cast<std::uint64_t>((second + SECONDS_TO_1970) * DATE_TICKS);
    return {static_cast<std::uint32_t>(count >> 32), static_cast<std::uint32_t>(count)};
}

std::int64_t secondOf(const OsDateTypes::DateRep& date)
{
    const std::uint64_t count = std::uint64_t{date._high} << 32 | date._low;
    return static_cast<std::int64_t>(count) / DATE_TICKS - SECONDS_TO_1970;
}

// Puts "2026-11-22T22:10:51".
char* putSecond(char* place, std::int64_t second)
{
    const OsDateTypes::DateStruct date =
        OsDateUtil::convertToDateStruct(dateOf(second), OsDateTypes::TimeUniversal);
    place = putFilled<10, 4>(place, static_cast<std::uint32_t>(date.year));
    place = putFilled<10, 2>(put(place, "-"), static_cast<std::uint32_t>(date.month));
    place = putFilled<10, 2>(put(place, "-"), static_cast<std::uint32_t>(date.day));
    place = putFilled<10, 2>(put(place, "T"), static_cast<std::uint32_t>(date.hour));
    place = putFilled<10, 2>(put(place, ":"), static_cast<std::uint32_t>(date.minute));
    return putFilled<10, 2>(put(place, ":"), static_cast<std::uint32_t>(date.second));
}

char* putOffset(char* place, int minutes)
{
    const auto distance = static_cast<std::uint32_t>(minutes < 0 ? -minutes : minutes);
    place = put(place, minutes < 0 ? "-" : "+");
    place = putFilled<10, 2>(place, distance / 60);
    return putFilled<10, 2>(put(place, ":"), distance % 60);
}

bool isRate(std::uint64_t rate)
{
    return rate >= 1 && rate <= MAX_RATE;
}

// The nanoseconds in a number of ticks that is less than a second.
std::int64_t nanosecondsIn(std::uint64_t ticks, std::uint64_t rate)
{
    constexpr auto FACTOR = static_cast<std::uint64_t>(NANOSECONDS);
    if (rate <= std::numeric_limits<std::uint64_t>::max() / FACTOR)
        return static_cast<std::int64_t>(ticks * FACTOR / rate);
    // Digit by digit, since the product would not fit.
    std::uint64_t result = 0;
    for (std::uint64_t unit = 1; unit < FACTOR; unit *= 10)
    {
        ticks *= 10;
        result = result * 10 + ticks / rate;
        ticks %= rate;
    }
    return static_cast<std::int64_t>(result);
}

// The sum, or the nearest number that fits.
std::int64_t addWithinRange(std::int64_t a, std::int64_t b)
{
    using Limits = std::numeric_limits<std::int64_t>;
    if (b > 0 && a > Limits::max() - b) return Limits::max();
    if (b < 0 && a < Limits::min() - b) return Limits::min();
    return a + b;
}

std::uint8_t byteAt(std::string_view text, std::size_t at)
{
    return static_cast<std::uint8_t>(text[at]);
}

// Whether lgAppendEscaped() can't just copy this byte.
constexpr bool isSuspect(std::uint8_t byte)
{
    return byte < 0x20 || byte == '\\' || byte >= 0x7f;
}

constexpr std::uint64_t eightTimes(std::uint8_t byte)
{
    return byte * std::uint64_t{0x0101010101010101};
}

// Whether one of eight bytes is a suspect; which one, the borrows may hide.
bool hasSuspect(std::uint64_t bytes)
{
    const std::uint64_t backslashes = bytes ^ eightTimes('\\');
    const std::uint64_t deletes = bytes ^ eightTimes(0x7f);
    // The highest bit of a byte is set if the byte is at least 0x80, below 0x20, or one of the two.
    const std::uint64_t low = (bytes - eightTimes(0x20)) & ~bytes;
    const std::uint64_t isBackslash = (backslashes - eightTimes(1)) & ~backslashes;
    const std::uint64_t isDelete = (deletes - eightTimes(1)) & ~deletes;
    return ((bytes | low | isBackslash | isDelete) & eightTimes(0x80)) != 0;
}

// The place of the first suspect from `at` on; the size of the text if there is none.
std::size_t findSuspect(std::string_view text, std::size_t at)
{
    std::uint64_t bytes = 0;
    for (; at + sizeof bytes <= text.size(); at += sizeof bytes)
    {
        std::memcpy(&bytes, text.data() + at, sizeof bytes);
        if (hasSuspect(bytes)) break;
    }
    while (at < text.size() && !isSuspect(byteAt(text, at))) ++at;
    return at;
}

struct Sequence
{
    // 0 if it is not valid.
    std::size_t _length;
    std::uint32_t _code;
};

// The sequence of several bytes of UTF-8 that begins at `at`.
Sequence sequenceAt(std::string_view text, std::size_t at)
{
    constexpr Sequence INVALID = {0, 0};
    // The least code point of each length.
    constexpr std::uint32_t LEAST[] = {0, 0, 0x80, 0x800, 0x10000};
    const std::uint8_t first = byteAt(text, at);
    if (first < 0xc0 || first >= 0xf8) return INVALID;
    std::size_t length = 2;
    if (first >= 0xe0) length = first >= 0xf0 ? 4 : 3;
    if (text.size() - at < length) return INVALID;
    std::uint32_t code = first & (0x7fU >> length);
    for (std::size_t i = 1; i < length; ++i)
    {
        const std::uint8_t byte = byteAt(text, at + i);
        if ((byte & 0xc0) != 0x80) return INVALID;
        code = code << 6 | (byte & 0x3fU);
    }
    const bool isSurrogate = code >= 0xd800 && code <= 0xdfff;
    if (code < LEAST[length] || isSurrogate || code > 0x10ffff) return INVALID;
    return {length, code};
}

// Whether a code point from U+0080 on is escaped.
bool isEscapedCode(std::uint32_t code)
{
    if (code <= 0x9f || code == 0x61c) return true;
    if (code < 0x200e || code > 0x2069) return false;
    return code <= 0x200f || (code >= 0x2028 && code <= 0x202e) || code >= 0x2066;
}

void appendByteEscape(std::string& out, std::uint8_t byte)
{
    const char escape[] = {'\\', 'x', DIGITS[byte >> 4], DIGITS[byte & 15U]};
    out.append(escape, sizeof escape);
}

void appendCodeEscape(std::string& out, std::uint32_t code)
{
    char escape[6] = {'\\', 'u'};
    putFilled<16, 4>(escape + 2, code);
    out.append(escape, sizeof escape);
}

// Appends one text. What may stay is appended in runs that are as long as possible.
class Escaper
{
public:
    enum class Form
    {
        Text,
        // Of a line that dates others.
        Field,
        // What was escaped before.
        Printable
    };

    Escaper(std::string& out, std::string_view text, Form form)
        : _out(out), _text(text), _isField(form == Form::Field),
          _isPrintable(form == Form::Printable)
    {
    }

    void run()
    {
        if (isFirstEscaped()) escapeByte(0);
        std::size_t at = _from;
        while ((at = find(at)) < _text.size()) at = handle(at);
        copyTo(_text.size());
    }

private:
    bool isFirstEscaped() const
    {
        if (_isField) return _text == "-";
        if (_isPrintable) return false;
        return !_text.empty() && (_text[0] == '\t' || _text.substr(0, BANNER.size()) == BANNER);
    }

    // In a field, which is short, each byte is looked at.
    std::size_t find(std::size_t at) const
    {
        return _isField ? at : findSuspect(_text, at);
    }

    bool isEscapedByte(std::uint8_t byte) const
    {
        if (byte == '\t' || byte == '\n' || byte == ',') return _isField;
        return byte < 0x20 || byte == 0x7f;
    }

    // Deals with what is at `at`, and returns where it ends.
    std::size_t handle(std::size_t at)
    {
        const std::uint8_t byte = byteAt(_text, at);
        if (byte >= 0x80) return handleSequence(at);
        if (isEscapedByte(byte)) return escapeByte(at);
        if (_isPrintable) return at + 1;
        if (byte == '\n') insertBehind(at, '\t');
        if (byte == '\\' && isBackslashDoubledBefore(at + 1)) insertBehind(at, '\\');
        return at + 1;
    }

    std::size_t handleSequence(std::size_t at)
    {
        const Sequence sequence = sequenceAt(_text, at);
        if (sequence._length == 0) return escapeByte(at);
        const std::size_t end = at + sequence._length;
        if (!isEscapedCode(sequence._code)) return end;
        copyTo(at);
        appendCodeEscape(_out, sequence._code);
        _from = end;
        return end;
    }

    // Whether the output of what is at `at` begins with a backslash, an "x" or a "u".
    bool isBackslashDoubledBefore(std::size_t at) const
    {
        if (at == _text.size()) return false;
        const std::uint8_t byte = byteAt(_text, at);
        if (byte == '\\' || byte == 'x' || byte == 'u' || isEscapedByte(byte)) return true;
        if (byte < 0x80) return false;
        const Sequence sequence = sequenceAt(_text, at);
        return sequence._length == 0 || isEscapedCode(sequence._code);
    }

    std::size_t escapeByte(std::size_t at)
    {
        copyTo(at);
        appendByteEscape(_out, byteAt(_text, at));
        return _from = at + 1;
    }

    void insertBehind(std::size_t at, char byte)
    {
        copyTo(at + 1);
        _out += byte;
    }

    void copyTo(std::size_t end)
    {
        _out.append(_text, _from, end - _from);
        _from = end;
    }

    std::string& _out;
    const std::string_view _text;
    const bool _isField;
    const bool _isPrintable;
    // Where the part begins that has not been appended yet.
    std::size_t _from = 0;
};

// The value of so many lower-case hexadecimal digits at the beginning; -1 if they are not there.
std::int32_t hexOf(std::string_view text, std::size_t count)
{
    if (text.size() < count) return -1;
    std::int32_t value = 0;
    for (const char digit : text.substr(0, count))
    {
        const std::size_t place = DIGITS.find(digit);
        if (place == std::string_view::npos) return -1;
        value = value * 16 + static_cast<std::int32_t>(place);
    }
    return value;
}

void appendUtf8(std::string& out, std::int32_t code)
{
    const auto byte = [&out](std::int32_t value) { out += static_cast<char>(value); };
    if (code < 0x80) return byte(code);
    if (code < 0x800)
        byte(0xc0 | code >> 6);
    else
    {
        byte(0xe0 | code >> 12);
        byte(0x80 | (code >> 6 & 0x3f));
    }
    byte(0x80 | (code & 0x3f));
}

// Appends what the escape at the beginning stands for, and returns its length. A backslash that
// begins no escape stands for itself.
std::size_t unescape(std::string& out, std::string_view escape)
{
    const char kind = escape.size() > 1 ? escape[1] : '\0';
    const std::string_view digits = escape.substr(kind == '\0' ? 1 : 2);
    const std::int32_t byte = kind == 'x' ? hexOf(digits, 2) : -1;
    const std::int32_t code = kind == 'u' ? hexOf(digits, 4) : -1;
    if (byte >= 0)
    {
        out += static_cast<char>(byte);
        return 4;
    }
    if (code >= 0 && (code < 0xd800 || code > 0xdfff))
    {
        appendUtf8(out, code);
        return 6;
    }
    out += '\\';
    return kind == '\\' ? 2 : 1;
}

constexpr std::string_view ORIGIN_BEGIN = "===== Clock Origin: ";
constexpr std::string_view ORIGIN_IS = " is ";
constexpr std::string_view ORIGIN_RATE = " ticks per second, process ";
constexpr std::string_view ORIGIN_STARTED = " started ";
constexpr std::string_view ORIGIN_HOST = ", host ";
constexpr std::string_view ORIGIN_BOOT = ", boot ";
constexpr std::string_view ORIGIN_END = " =====";

void appendField(std::string& out, std::string_view text)
{
    if (text.empty()) out += '-';
    Escaper(out, text, Escaper::Form::Field).run();
}

std::string fieldOf(std::string_view text)
{
    return text == "-" ? std::string() : lgUnescaped(text);
}

char* putTick(char* place, std::uint64_t tick)
{
    place = putFilled<10, 10>(place, static_cast<std::uint32_t>(tick >> 32));
    return putFilled<10, 10>(put(place, " "), static_cast<std::uint32_t>(tick));
}

// Takes a line apart from its beginning. What is taken leniently here is found out when the line
// is compared with what the origin is written as.
class OriginParser
{
public:
    explicit OriginParser(std::string_view line) : _rest(line) {}

    bool take(std::string_view expected)
    {
        if (_rest.substr(0, expected.size()) != expected) return false;
        _rest.remove_prefix(expected.size());
        return true;
    }

    template <class Number> bool takeNumber(Number& value)
    {
        const char* const end = _rest.data() + _rest.size();
        const auto [place, error] = std::from_chars(_rest.data(), end, value);
        if (error != std::errc()) return false;
        _rest.remove_prefix(static_cast<std::size_t>(place - _rest.data()));
        return true;
    }

    bool takeTick(std::uint64_t& tick)
    {
        std::uint32_t high = 0;
        std::uint32_t low = 0;
        if (!takeNumber(high) || !take(" ") || !takeNumber(low)) return false;
        tick = std::uint64_t{high} << 32 | low;
        return true;
    }

    // A time with nine decimals.
    bool takeTime(std::int64_t& wall)
    {
        int year = 0;
        int month = 0;
        int day = 0;
        int hour = 0;
        int minute = 0;
        int second = 0;
        std::int64_t fraction = 0;
        const bool isDate = takeNumber(year) && take("-") && takeNumber(month) && take("-") &&
                            takeNumber(day) && take("T");
        const bool isTime = isDate && takeNumber(hour) && take(":") && takeNumber(minute) &&
                            take(":") && takeNumber(second) && take(".") && takeNumber(fraction) &&
                            take("Z");
        OsDateTypes::DateRep date = {};
        if (!isTime || !OsDateUtil::makeTime(year, month, day, hour, minute, second,
                                             OsDateTypes::TimeUniversal, date))
            return false;
        return setWall(secondOf(date), fraction, wall);
    }

    // What stands before `end`; that must be the last thing of the line if `isLast`.
    bool takeField(std::string_view end, bool isLast, std::string& text)
    {
        const std::size_t place = isLast ? _rest.rfind(end) : _rest.find(end);
        if (place == std::string_view::npos) return false;
        text = fieldOf(_rest.substr(0, place));
        _rest.remove_prefix(place + end.size());
        return !isLast || _rest.empty();
    }

private:
    // False for a time that does not fit.
    static bool setWall(std::int64_t second, std::int64_t fraction, std::int64_t& wall)
    {
        if (fraction < 0 || fraction >= NANOSECONDS) return false;
        // From the end of a second before 1970, since the earliest second begins too early to fit.
        const std::int64_t borrowed = second < 0 ? 1 : 0;
        std::int64_t whole = 0;
        if (Compiler::multiplyOverflows(second + borrowed, NANOSECONDS, whole)) return false;
        const std::int64_t rest = fraction - borrowed * NANOSECONDS;
        wall = addWithinRange(whole, rest);
        return wall - rest == whole;
    }

    std::string_view _rest;
};

bool parseOrigin(std::string_view line, LgLineOrigin& origin)
{
    OriginParser parser(line);
    const bool isClock = parser.take(ORIGIN_BEGIN) && parser.takeTick(origin._tick) &&
                         parser.take(ORIGIN_IS) && parser.takeTime(origin._wall) &&
                         parser.take(", ") && parser.takeNumber(origin._ticksPerSecond);
    return isClock && isRate(origin._ticksPerSecond) && parser.take(ORIGIN_RATE) &&
           parser.takeNumber(origin._process) && parser.take(ORIGIN_STARTED) &&
           parser.takeTime(origin._processStart) && parser.take(ORIGIN_HOST) &&
           parser.takeField(ORIGIN_BOOT, false, origin._host) &&
           parser.takeField(ORIGIN_END, true, origin._boot);
}

} // namespace

LgLineWriter::LgLineWriter(LgLineForm form, bool isRaw) : _form(form), _isRaw(isRaw) {}

void LgLineWriter::setOrigin(const LgLineOrigin& origin)
{
    _origin = origin;
    _isCached = false;
}

void LgLineWriter::append(std::string& out, const LgLineEvent& event)
{
    if (_form != LgLineForm::Plain)
    {
        char prefix[PREFIX_SIZE];
        char* end = _form == LgLineForm::Ticks ? putTicks(prefix, event) : putTime(prefix, event);
        end = putFilled<16, 8>(put(end, " (0x"), event._thread);
        end = put(put(end, ") "), LgTypes::levelToString(event._level));
        out.append(prefix, put(end, ": "));
    }
    if (_isRaw)
        out.append(event._text);
    else
        lgAppendEscaped(out, event._text);
    out += '\n';
}

char* LgLineWriter::putTicks(char* place, const LgLineEvent& event) const
{
    return putTick(place, event._time - _origin._start);
}

char* LgLineWriter::putTime(char* place, const LgLineEvent& event)
{
    const std::int64_t wall = lgWallOf(_origin, event._time);
    const std::int64_t second = floorQuotient(wall, NANOSECONDS);
    if (!_isCached || second != _second) beginSecond(second);
    const std::int64_t fraction = floorRemainder(wall, NANOSECONDS) / NANOSECONDS_PER_MICROSECOND;
    place = put(place, {_secondText, SECOND_LENGTH});
    place = putFilled<10, 6>(place, static_cast<std::uint32_t>(fraction));
    return put(place, {_owner, _ownerLength});
}

void LgLineWriter::beginSecond(std::int64_t second)
{
    const bool isLocal = _form == LgLineForm::Local;
    const std::int64_t minute = floorQuotient(second, SECONDS_PER_MINUTE);
    if (isLocal && (!_isCached || minute != _minute)) _offsetMinutes = lgLocalOffset(second);
    _minute = minute;
    _second = second;
    _isCached = true;
    put(putSecond(_secondText, second + _offsetMinutes * SECONDS_PER_MINUTE), ".");
    char* end = isLocal ? putOffset(_owner, _offsetMinutes) : put(_owner, "Z");
    end = std::to_chars(put(end, " "), std::end(_owner), _origin._process).ptr;
    _ownerLength = static_cast<std::size_t>(end - _owner);
}

void lgAppendEscaped(std::string& out, std::string_view text)
{
    Escaper(out, text, Escaper::Form::Text).run();
}

void lgAppendPrintable(std::string& out, std::string_view text)
{
    Escaper(out, text, Escaper::Form::Printable).run();
}

std::string lgUnescaped(std::string_view line)
{
    std::string text;
    text.reserve(line.size());
    std::size_t at = 0;
    while (at < line.size())
    {
        const std::size_t end = std::min(line.find_first_of("\\\n", at), line.size());
        text.append(line, at, end - at);
        at = end;
        if (at == line.size()) break;
        if (line[at] == '\\')
        {
            at += unescape(text, line.substr(at));
            continue;
        }
        text += '\n';
        at += std::size_t{line.substr(at, 2) == "\n\t" ? 2U : 1U};
    }
    return text;
}

std::string lgOriginLine(const LgLineOrigin& origin)
{
    char tick[PREFIX_SIZE];
    std::string line(ORIGIN_BEGIN);
    line.append(tick, putTick(tick, origin._tick - origin._start));
    line.append(ORIGIN_IS).append(lgIsoTime(origin._wall, 9)).append(", ");
    appendNumber(line, origin._ticksPerSecond);
    line.append(ORIGIN_RATE);
    appendNumber(line, origin._process);
    line.append(ORIGIN_STARTED).append(lgIsoTime(origin._processStart, 9)).append(ORIGIN_HOST);
    appendField(line, origin._host);
    line.append(ORIGIN_BOOT);
    appendField(line, origin._boot);
    return line.append(ORIGIN_END).append("\n");
}

bool lgParseOriginLine(std::string_view line, LgLineOrigin& origin)
{
    if (!line.empty() && line.back() == '\n') line.remove_suffix(1);
    LgLineOrigin found;
    if (!parseOrigin(line, found)) return false;
    // Numbers and escapes can be written in other ways, too: there is one way only here.
    std::string written = lgOriginLine(found);
    written.pop_back();
    if (line != written) return false;
    origin = found;
    return true;
}

std::string lgIsoTime(std::int64_t wall, int decimals)
{
    char text[PREFIX_SIZE];
    char* end = putSecond(text, floorQuotient(wall, NANOSECONDS));
    if (decimals > 0)
    {
        char* const digits = put(end, ".");
        const std::int64_t fraction = floorRemainder(wall, NANOSECONDS);
        putFilled<10, 9>(digits, static_cast<std::uint32_t>(fraction));
        end = digits + decimals;
    }
    return {text, put(end, "Z")};
}

int lgLocalOffset(std::int64_t second)
{
    const OsDateTypes::DateStruct local =
        OsDateUtil::convertToDateStruct(dateOf(second), OsDateTypes::TimeLocal);
    OsDateTypes::DateRep date = dateOf(second);
    OsDateUtil::makeTime(local.year, local.month, local.day, local.hour, local.minute, local.second,
                         OsDateTypes::TimeUniversal, date);
    return static_cast<int>((secondOf(date) - second) / SECONDS_PER_MINUTE);
}

std::int64_t lgWallOf(const LgLineOrigin& origin, std::uint64_t tick)
{
    const std::uint64_t rate = origin._ticksPerSecond;
    if (!isRate(rate)) return origin._wall;
    const auto ticks = static_cast<std::int64_t>(tick - origin._tick);
    const std::int64_t seconds = floorQuotient(ticks, static_cast<std::int64_t>(rate));
    const auto rest =
        static_cast<std::uint64_t>(ticks) - static_cast<std::uint64_t>(seconds) * rate;
    std::int64_t whole = 0;
    if (Compiler::multiplyOverflows(seconds, NANOSECONDS, whole))
    {
        using Limits = std::numeric_limits<std::int64_t>;
        return ticks < 0 ? Limits::min() : Limits::max();
    }
    return addWithinRange(origin._wall, addWithinRange(whole, nanosecondsIn(rest, rate)));
}

} // namespace Zu

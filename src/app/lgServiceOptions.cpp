#include "app/lgServiceOptions.h"

#include "base/lgTypes.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <iostream>
#include <iterator>
#include <numeric>
#include <utility>
#include <vector>

namespace Zu
{

namespace
{

using Text = std::string_view;

constexpr Text PREFIX = "ZU_LOG_SERVICE_";

// What became of a text that was to be a value.
enum class Verdict
{
    Taken,
    Malformed,
    OutOfRange
};

// Without the locale, on which tolower() depends.
char lower(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

bool isSame(Text a, Text b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

// Removes the end from the text if it is there, whatever the case of its letters.
bool takeEnd(Text& text, Text end)
{
    if (text.size() < end.size() || !isSame(text.substr(text.size() - end.size()), end))
        return false;
    text.remove_suffix(end.size());
    return true;
}

// A whole number of units; the product is in the range.
template <class Value>
Verdict readNumber(Text text, std::int64_t unit, std::int64_t min, std::int64_t max, Value& value)
{
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [next, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc::invalid_argument || next != end) return Verdict::Malformed;
    if (error != std::errc()) return Verdict::OutOfRange;
    if (number < 0 || number > max / unit || number * unit < min) return Verdict::OutOfRange;
    value = static_cast<Value>(number * unit);
    return Verdict::Taken;
}

template <std::int64_t MIN, std::int64_t MAX> struct Number
{
    static constexpr Text WHAT = "a whole number";
    static constexpr bool IS_TEXT = false;

    template <class Value> static Verdict read(Text text, Value& value)
    {
        return readNumber(text, 1, MIN, MAX, value);
    }

    template <class Value> static std::string write(Value value)
    {
        return std::to_string(value);
    }

    static std::string expected()
    {
        return "a whole number from " + std::to_string(MIN) + " to " + std::to_string(MAX);
    }
};

struct Unit
{
    Text _name;
    std::int64_t _size;
};

constexpr Unit SIZE_UNITS[] = {{"G", 1 << 30}, {"M", 1 << 20}, {"K", 1 << 10}};
constexpr Unit TIME_UNITS[] = {{"ms", 1}, {"s", 1000}};

template <std::size_t COUNT> std::int64_t takeUnit(Text& text, const Unit (&units)[COUNT])
{
    for (const auto& [name, size] : units)
        if (takeEnd(text, name)) return size;
    return 1;
}

std::string shortSize(std::int64_t size)
{
    for (const auto& [name, unit] : SIZE_UNITS)
        if (size > 0 && size % unit == 0) return std::to_string(size / unit) + std::string(name);
    return std::to_string(size);
}

template <std::int64_t MIN, std::int64_t MAX> struct Size
{
    static constexpr Text WHAT = "a size";
    static constexpr bool IS_TEXT = false;

    template <class Value> static Verdict read(Text text, Value& value)
    {
        const std::int64_t unit = takeUnit(text, SIZE_UNITS);
        return readNumber(text, unit, MIN, MAX, value);
    }

    template <class Value> static std::string write(Value value)
    {
        return std::to_string(value);
    }

    static std::string expected()
    {
        return "a number of bytes from " + shortSize(MIN) + " to " + shortSize(MAX) +
               ", with K, M or G behind it if wanted, e.g. 64M";
    }
};

// Rounds up what another kind reads; the ends of its range are powers of two.
template <class Kind> struct PowerOf2 : Kind
{
    template <class Value> static Verdict read(Text text, Value& value)
    {
        const Verdict verdict = Kind::read(text, value);
        if (verdict == Verdict::Taken) value = std::bit_ceil(value);
        return verdict;
    }

    static std::string expected()
    {
        return Kind::expected() + "; rounded up to a power of two";
    }
};

template <std::int64_t MAX> struct TimeSpan
{
    static constexpr Text WHAT = "a time span";
    static constexpr bool IS_TEXT = false;

    static Verdict read(Text text, std::chrono::milliseconds& value)
    {
        const std::int64_t unit = takeUnit(text, TIME_UNITS);
        return readNumber(text, unit, 0, MAX, value);
    }

    static std::string write(std::chrono::milliseconds value)
    {
        return std::to_string(value.count()) + "ms";
    }

    static std::string expected()
    {
        return "a number of milliseconds from 0 to " + std::to_string(MAX) +
               ", with ms behind it if wanted, or of seconds with s, e.g. 5s";
    }
};

struct Flag
{
    static constexpr Text WHAT = "a truth value";
    static constexpr bool IS_TEXT = false;

    static Verdict read(Text text, bool& value)
    {
        constexpr Text TRUE_TEXTS[] = {"true", "yes", "on", "1"};
        constexpr Text FALSE_TEXTS[] = {"false", "no", "off", "0"};
        const auto isText = [text](Text known) { return isSame(text, known); };
        const bool isTrue = std::any_of(std::begin(TRUE_TEXTS), std::end(TRUE_TEXTS), isText);
        if (!isTrue && std::none_of(std::begin(FALSE_TEXTS), std::end(FALSE_TEXTS), isText))
            return Verdict::Malformed;
        value = isTrue;
        return Verdict::Taken;
    }

    static std::string write(bool value)
    {
        return value ? "true" : "false";
    }

    static std::string expected()
    {
        return "true or false, yes or no, on or off, 1 or 0";
    }
};

struct LineForms
{
    static constexpr Text WHAT = "a form of lines";
    static constexpr bool IS_TEXT = false;
    static constexpr Text TEXTS[] = {"ticks", "local", "utc"};

    static Verdict read(Text text, LgServiceOptions::LineForm& value)
    {
        for (std::size_t i = 0; i < std::size(TEXTS); ++i)
        {
            if (!isSame(text, TEXTS[i])) continue;
            value = static_cast<LgServiceOptions::LineForm>(i);
            return Verdict::Taken;
        }
        return Verdict::Malformed;
    }

    static std::string write(LgServiceOptions::LineForm value)
    {
        const auto i = static_cast<std::size_t>(value);
        if (i < std::size(TEXTS)) return std::string(TEXTS[i]);
        return std::to_string(static_cast<int>(value));
    }

    static std::string expected()
    {
        return "ticks, local or utc";
    }
};

constexpr Text NONE = "none";

// Minutes of the day; -1 is none.
struct TimeOfDay
{
    static constexpr Text WHAT = "a time of day";
    static constexpr bool IS_TEXT = false;

    static Verdict read(Text text, int& value)
    {
        if (isSame(text, NONE))
        {
            value = -1;
            return Verdict::Taken;
        }
        if (text.size() != 5 || text[2] != ':') return Verdict::Malformed;
        const int hour = twoDigits(text.substr(0, 2));
        const int minute = twoDigits(text.substr(3));
        if (hour < 0 || minute < 0) return Verdict::Malformed;
        if (hour > 23 || minute > 59) return Verdict::OutOfRange;
        value = hour * 60 + minute;
        return Verdict::Taken;
    }

    static std::string write(int value)
    {
        if (value == -1) return std::string(NONE);
        if (value < 0 || value >= 24 * 60) return std::to_string(value);
        return digitsOf(value / 60) + ":" + digitsOf(value % 60);
    }

    static std::string expected()
    {
        return "HH:MM from 00:00 to 23:59, or none";
    }

private:
    // -1 for other characters.
    static int twoDigits(Text text)
    {
        const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
        if (!std::all_of(text.begin(), text.end(), isDigit)) return -1;
        return (text[0] - '0') * 10 + (text[1] - '0');
    }

    static std::string digitsOf(int number)
    {
        return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
    }
};

std::string withoutBlanks(Text text)
{
    std::string result(text);
    result.erase(std::remove(result.begin(), result.end(), ' '), result.end());
    return result;
}

// The number of the level with this name, with or without its blank; -1 if there is none.
int levelOf(Text text)
{
    const std::string name = withoutBlanks(text);
    for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
    {
        const auto level = static_cast<LgTypes::Level>(i);
        if (isSame(name, withoutBlanks(LgTypes::levelToString(level)))) return i;
    }
    return -1;
}

std::string levelName(int level)
{
    return LgTypes::levelToString(static_cast<LgTypes::Level>(level));
}

std::string levelNames()
{
    std::string text = levelName(0);
    for (int i = 1; i < LgTypes::NUM_LEVELS; ++i) text.append(", ").append(levelName(i));
    return text;
}

// One level; -1 is none.
struct Threshold
{
    static constexpr Text WHAT = "a level";
    static constexpr bool IS_TEXT = false;

    static Verdict read(Text text, int& value)
    {
        const int level = levelOf(text);
        if (level < 0 && !isSame(text, NONE)) return Verdict::Malformed;
        value = level;
        return Verdict::Taken;
    }

    static std::string write(int value)
    {
        if (value == -1) return std::string(NONE);
        return value >= 0 && value < LgTypes::NUM_LEVELS ? levelName(value) : std::to_string(value);
    }

    static std::string expected()
    {
        return "one of " + levelNames() + ", or none";
    }
};

// Several levels, a bit each.
struct Levels
{
    static constexpr Text WHAT = "a list of levels";
    static constexpr bool IS_TEXT = false;

    static Verdict read(Text text, std::uint32_t& value)
    {
        std::uint32_t levels = 0;
        while (!isSame(text, NONE))
        {
            const std::size_t end = std::min(text.find(','), text.size());
            const int level = levelOf(text.substr(0, end));
            if (level < 0) return Verdict::Malformed;
            levels |= 1U << level;
            if (end == text.size()) break;
            text.remove_prefix(end + 1);
            // "none" is no part of a list.
            if (isSame(text, NONE)) return Verdict::Malformed;
        }
        value = levels;
        return Verdict::Taken;
    }

    static std::string write(std::uint32_t value)
    {
        if (value == 0) return std::string(NONE);
        if (value >> LgTypes::NUM_LEVELS != 0) return std::to_string(value);
        std::string text;
        for (int i = 0; i < LgTypes::NUM_LEVELS; ++i)
            if ((value >> i & 1) != 0) text.append(text.empty() ? "" : ",").append(levelName(i));
        return text;
    }

    static std::string expected()
    {
        return "names of levels with commas between them, of " + levelNames() + ", or none";
    }
};

// For the system's functions, a null character would end it.
struct AnyText
{
    static constexpr Text WHAT = "a text";
    static constexpr bool IS_TEXT = true;

    static Verdict read(Text text, std::string& value)
    {
        if (text.find('\0') != Text::npos) return Verdict::Malformed;
        value = text;
        return Verdict::Taken;
    }

    static std::string write(const std::string& value)
    {
        return value;
    }

    static std::string expected()
    {
        return "any text, without null characters";
    }
};

// The same names are refused on both platforms.
struct FileName : AnyText
{
    static constexpr Text WHAT = "the name of a file";

    static Verdict read(Text text, std::string& value)
    {
        if (text.empty() || text == "." || text == "..") return Verdict::Malformed;
        if (text.find_first_of("/\\:") != Text::npos) return Verdict::Malformed;
        return AnyText::read(text, value);
    }

    static std::string expected()
    {
        return "the name of a file in the log directory, without slashes, backslashes and colons";
    }
};

// All that is known of an option besides its place in the struct and its default there.
struct Option
{
    Text _name;
    Text _what;
    bool _isText;
    Verdict (*_read)(Text, LgServiceOptions&);
    std::string (*_write)(const LgServiceOptions&);
    std::string (*_expected)();
};

template <class Kind, auto FIELD> constexpr Option option(Text name)
{
    return {name,
            Kind::WHAT,
            Kind::IS_TEXT,
            [](Text text, LgServiceOptions& options) { return Kind::read(text, options.*FIELD); },
            [](const LgServiceOptions& options) { return Kind::write(options.*FIELD); },
            &Kind::expected};
}

constexpr std::int64_t KI = 1 << 10;
constexpr std::int64_t MI = 1 << 20;
constexpr std::int64_t GI = 1 << 30;
constexpr std::int64_t HOUR = 3'600'000;

// In the order of the struct, of the page and of what is displayed.
constexpr Option OPTIONS[] = {
    option<AnyText, &LgServiceOptions::_directory>("directory"),
    option<FileName, &LgServiceOptions::_eventsName>("events-name"),
    option<FileName, &LgServiceOptions::_profilesName>("profiles-name"),
    option<Flag, &LgServiceOptions::_processInNames>("process-in-names"),
    option<LineForms, &LgServiceOptions::_lineForm>("line-form"),
    option<Flag, &LgServiceOptions::_rawText>("raw-text"),
    option<Flag, &LgServiceOptions::_sourceLocation>("source-location"),
    option<Size<0, 1024 * GI>, &LgServiceOptions::_rotateSize>("rotate-size"),
    option<TimeOfDay, &LgServiceOptions::_rotateMinute>("rotate-time"),
    option<Number<1, 1000>, &LgServiceOptions::_keptFiles>("kept-files"),
    option<Flag, &LgServiceOptions::_compress>("compress"),
    option<Flag, &LgServiceOptions::_reopenOnHangup>("reopen-on-hangup"),
    option<PowerOf2<Number<64, MI>>, &LgServiceOptions::_entries>("entries"),
    option<PowerOf2<Size<64 * KI, 64 * MI>>, &LgServiceOptions::_characters>("characters"),
    option<Size<MI, 1024 * GI>, &LgServiceOptions::_memoryLimit>("memory-limit"),
    option<Levels, &LgServiceOptions::_waitLevels>("wait-levels"),
    option<Threshold, &LgServiceOptions::_flushLevel>("flush-level"),
    option<TimeSpan<HOUR>, &LgServiceOptions::_waitLimit>("wait-limit"),
    option<TimeSpan<HOUR>, &LgServiceOptions::_endLimit>("end-limit"),
    option<Flag, &LgServiceOptions::_drainOnFatalSignals>("drain-on-fatal-signals"),
    option<Flag, &LgServiceOptions::_sync>("sync"),
    option<AnyText, &LgServiceOptions::_mappingDirectory>("mapping-directory"),
    option<Number<1, 10000>, &LgServiceOptions::_keptMappings>("kept-mappings"),
    option<Number<1, 3650>, &LgServiceOptions::_keptMappingDays>("kept-mapping-days"),
    option<Size<64 * KI, GI>, &LgServiceOptions::_pendingLimit>("pending-limit"),
    option<Flag, &LgServiceOptions::_control>("control"),
};

std::string variableOf(const Option& option)
{
    std::string name(PREFIX);
    for (const char character : option._name)
        name += character == '-' ? '_' : static_cast<char>(character - 'a' + 'A');
    return name;
}

// The text without characters that could make it look like something else on a terminal.
std::string shown(Text text)
{
    constexpr Text DIGITS = "0123456789abcdef";
    std::string result;
    for (const char character : text)
    {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= 0x20 && byte != 0x7f)
            result += character;
        else
            (result += "\\x") += {DIGITS[byte >> 4], DIGITS[byte & 15]};
    }
    return result;
}

std::string quoted(Text text)
{
    return std::string("\"").append(shown(text)).append("\"");
}

// Whatever the format of the stream, and in one piece.
void writeLine(std::ostream& os, std::string line)
{
    line += '\n';
    os.write(line.data(), static_cast<std::streamsize>(line.size()));
}

// The line about a text that can't be used.
std::string refusal(Text name, Text value, const Option& option, Verdict verdict)
{
    std::string line = std::string(name) + ": " + quoted(value);
    if (verdict == Verdict::OutOfRange)
        line += " is out of range";
    else
        (line += " is not ") += option._what;
    return line + ": expected " + option._expected();
}

// How many characters one has to insert, remove or replace to make one text of the other.
std::size_t distance(Text a, Text b)
{
    // Of the part of `a` so far, to each beginning of `b`.
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i)
    {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j)
        {
            const std::size_t replaced = diagonal + (a[i] != b[j]);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

// The option whose name is most likely meant; null if none is similar.
const Option* nearest(Text name)
{
    constexpr std::size_t MOST_CHANGES = 3;
    constexpr std::size_t LONGEST = 64;
    if (name.size() > LONGEST) return nullptr;
    std::string plain;
    for (const char character : name) plain += character == '_' ? '-' : lower(character);
    const Option* best = nullptr;
    std::size_t least = MOST_CHANGES + 1;
    for (const Option& option : OPTIONS)
    {
        const std::size_t changes = distance(plain, option._name);
        if (changes >= least) continue;
        least = changes;
        best = &option;
    }
    return best;
}

// A variable of the environment, and whether an option is read from it.
struct Variable
{
    Text _name;
    Text _value;
    bool _isKnown = false;
};

// Those whose names begin as ours do.
std::vector<Variable> variablesIn(const char* const* entries)
{
    std::vector<Variable> variables;
    for (; entries && *entries; ++entries)
    {
        const Text entry = *entries;
        const std::size_t separator = entry.find('=');
        if (separator == Text::npos || !isSame(entry.substr(0, PREFIX.size()), PREFIX)) continue;
        variables.push_back({entry.substr(0, separator), entry.substr(separator + 1)});
    }
    return variables;
}

// The first of this name, where getenv() finds it, too; null if there is none.
const Variable* findAndMark(std::vector<Variable>& variables, Text name)
{
    const Variable* first = nullptr;
    for (Variable& variable : variables)
    {
        if (variable._name != name) continue;
        variable._isKnown = true;
        if (!first) first = &variable;
    }
    return first;
}

void reportUnknown(const std::vector<Variable>& variables, std::ostream& messages)
{
    for (const auto& [name, value, isKnown] : variables)
    {
        if (isKnown) continue;
        std::string line = shown(name) + ": there is no such variable";
        if (const Option* const meant = nearest(name.substr(PREFIX.size())))
            line += "; the nearest is " + variableOf(*meant);
        writeLine(messages, line);
    }
}

} // namespace

LgServiceOptions LgServiceOptions::fromEnvironment()
{
    LgServiceOptions options;
    options.readEnvironment();
    return options;
}

void LgServiceOptions::readEnvironment()
{
    readEnvironment(processEntries(), std::cerr);
}

void LgServiceOptions::readEnvironment(const char* const* entries, std::ostream& messages)
{
    std::vector<Variable> variables = variablesIn(entries);
    if (variables.empty()) return;
    for (const Option& option : OPTIONS)
    {
        const std::string name = variableOf(option);
        const Variable* const variable = findAndMark(variables, name);
        if (!variable) continue;
        const Verdict verdict = option._read(variable->_value, *this);
        if (verdict != Verdict::Taken)
            writeLine(messages, refusal(name, variable->_value, option, verdict));
    }
    reportUnknown(variables, messages);
}

bool LgServiceOptions::set(std::string_view name, std::string_view value, std::string& error)
{
    const auto* const found = std::find_if(std::begin(OPTIONS), std::end(OPTIONS),
                                           [name](const Option& o) { return o._name == name; });
    if (found == std::end(OPTIONS))
    {
        std::string line = shown(name) + ": there is no such option";
        if (const Option* const meant = nearest(name))
            (line += "; the nearest is ") += meant->_name;
        error = line;
        return false;
    }
    const Verdict verdict = found->_read(value, *this);
    if (verdict == Verdict::Taken) return true;
    error = refusal(name, value, *found, verdict);
    return false;
}

void LgServiceOptions::check(std::ostream& messages)
{
    const LgServiceOptions defaults;
    for (const Option& option : OPTIONS)
    {
        const std::string value = option._write(*this);
        const Verdict verdict = option._read(value, *this);
        if (verdict == Verdict::Taken) continue;
        writeLine(messages, refusal(option._name, value, option, verdict));
        option._read(option._write(defaults), *this);
    }
    if (!isSame(_eventsName, _profilesName)) return;
    writeLine(messages, "profiles-name: " + quoted(_profilesName) +
                            " is the events-name, too: expected another name");
    _eventsName = defaults._eventsName;
    _profilesName = defaults._profilesName;
}

void LgServiceOptions::display(std::ostream& os) const
{
    for (const Option& option : OPTIONS)
    {
        const std::string value = option._write(*this);
        writeLine(os, std::string(option._name) + ": " + (option._isText ? quoted(value) : value) +
                          " (" + variableOf(option) + ")");
    }
}

} // namespace Zu

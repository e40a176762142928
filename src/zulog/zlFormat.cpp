#include "zulog/zlFormat.h"

#include "app/lgServiceLine.h"
#include "zulog/zlJson.h"
#include "zulog/zlText.h"
#include "zulog/zlTime.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>

namespace Zu
{

namespace
{

// Times may be farther apart than the number reaches, which is then the last one.
std::int64_t distanceOf(std::int64_t from, std::int64_t to)
{
    using Limits = std::numeric_limits<std::int64_t>;
    if (from < 0 && to > Limits::max() + from) return Limits::max();
    if (from > 0 && to < Limits::min() + from) return Limits::min();
    return to - from;
}

using Times = ZlFormatOptions::Times;

constexpr std::string_view UNKNOWN = "-";
constexpr std::size_t PROCESS_WIDTH = 7;
constexpr std::size_t LEVEL_WIDTH = 14;
constexpr std::size_t SECONDS_WIDTH = 14;
constexpr std::string_view COLOURS_END = "\x1b[0m";
constexpr std::string_view MARK_COLOUR = "\x1b[2m";

// Bold red, bold red, red, yellow, green, cyan, blue.
constexpr std::string_view LEVEL_COLOURS[] = {"\x1b[1;31m", "\x1b[1;31m", "\x1b[31m", "\x1b[33m",
                                              "\x1b[32m",   "\x1b[36m",   "\x1b[34m"};

void appendPadded(std::string& out, std::string_view text, std::size_t width)
{
    out += text;
    if (text.size() < width) out.append(width - text.size(), ' ');
}

template <class Number> void appendNumber(std::string& out, Number number)
{
    char digits[24];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

// With leading zeros.
void appendDigits(std::string& out, std::uint32_t number)
{
    char digits[10];
    for (std::size_t i = sizeof digits; i > 0; --i, number /= 10)
        digits[i - 1] = static_cast<char>('0' + number % 10);
    out.append(digits, sizeof digits);
}

void appendThread(std::string& out, std::uint32_t thread)
{
    char digits[] = "0x00000000";
    for (std::size_t i = sizeof digits - 2; i > 1; --i, thread >>= 4)
        digits[i] = "0123456789abcdef"[thread & 15U];
    out += digits;
}

// The group and the text are neighbours in the file.
std::string_view wholeText(const ZlRecord& record)
{
    if (record._group.empty()) return record._text;
    const char* const end = record._text.data() + record._text.size();
    return {record._group.data(), static_cast<std::size_t>(end - record._group.data())};
}

ZlTimeWriter::Form isoForm(const ZlFormatOptions& options)
{
    return options._times == Times::Utc ? ZlTimeWriter::Form::UtcIso : ZlTimeWriter::Form::LocalIso;
}

std::string timeOf(ZlTimeWriter& times, const ZlRecord& record)
{
    std::string time;
    if (record._wall) times.append(time, *record._wall);
    return time;
}

std::string_view levelOf(const ZlRecord& record)
{
    return record._level ? std::string_view(LgTypes::levelToString(*record._level)) : UNKNOWN;
}

class TextFormat : public ZlFormat
{
public:
    explicit TextFormat(const ZlFormatOptions& options)
        : _options(options),
          _times(options._times == Times::Utc ? ZlTimeWriter::Form::Utc : ZlTimeWriter::Form::Local)
    {
    }

    void append(std::string& out, const ZlRecord& record) override
    {
        if (_options._hasFiles) appendFile(out, record);
        if (record._kind != ZlRecord::Kind::Unreadable)
        {
            appendTime(out, record);
            appendOwner(out, record);
            appendLevel(out, record);
        }
        appendText(out, record);
        out += '\n';
    }

private:
    static void appendFile(std::string& out, const ZlRecord& record)
    {
        zlAppendPrintable(out, *record._file, false);
        out += ':';
        appendNumber(out, record._line);
        out += ": ";
    }

    void appendTime(std::string& out, const ZlRecord& record)
    {
        if (_options._times == Times::Ticks)
            appendTicks(out, record);
        else if (_options._times == Times::Relative)
            appendSeconds(out, record);
        else if (record._wall)
            _times.append(out, *record._wall);
        else
            appendPadded(out, UNKNOWN, _times.getLength());
        out += ' ';
    }

    static void appendTicks(std::string& out, const ZlRecord& record)
    {
        constexpr std::size_t LENGTH = 21;
        if (!record._ticks) return appendPadded(out, UNKNOWN, LENGTH);
        appendDigits(out, static_cast<std::uint32_t>(*record._ticks >> 32));
        out += ' ';
        appendDigits(out, static_cast<std::uint32_t>(*record._ticks));
    }

    void appendSeconds(std::string& out, const ZlRecord& record)
    {
        if (!record._wall) return appendPadded(out, UNKNOWN, SECONDS_WIDTH);
        if (!_first) _first = record._wall;
        std::string seconds;
        zlAppendSeconds(seconds, distanceOf(*_first, *record._wall));
        if (seconds.size() < SECONDS_WIDTH) out.append(SECONDS_WIDTH - seconds.size(), ' ');
        out += seconds;
    }

    void appendOwner(std::string& out, const ZlRecord& record) const
    {
        if (_options._hasHosts)
        {
            zlAppendPrintable(out, record._owner->_host.empty() ? UNKNOWN : record._owner->_host,
                              false);
            out += ' ';
        }
        char digits[16];
        char* end = digits;
        if (record._process)
            end = std::to_chars(digits, digits + sizeof digits, *record._process).ptr;
        else
            *end++ = '-';
        const auto length = static_cast<std::size_t>(end - digits);
        if (length < PROCESS_WIDTH) out.append(PROCESS_WIDTH - length, ' ');
        out.append(digits, length);
        out += ' ';
        if (record._thread)
            appendThread(out, *record._thread);
        else
            appendPadded(out, UNKNOWN, 10);
        out += ' ';
    }

    void appendLevel(std::string& out, const ZlRecord& record) const
    {
        const bool isColoured = _options._isColoured && record._level;
        if (isColoured) out += LEVEL_COLOURS[*record._level];
        appendPadded(out, levelOf(record), LEVEL_WIDTH);
        if (isColoured) out += COLOURS_END;
        out += ' ';
    }

    void appendText(std::string& out, const ZlRecord& record) const
    {
        const bool isDimmed = _options._isColoured && !zlIsEvent(record._kind);
        if (isDimmed) out += MARK_COLOUR;
        const std::string_view text = wholeText(record);
        if (!_options._isRaw || !zlIsEvent(record._kind))
            zlAppendPrintable(out, text, true);
        else if (_options._isTerminal)
            zlAppendPrintable(out, lgUnescaped(text), true);
        else
            out += lgUnescaped(text);
        if (isDimmed) out += COLOURS_END;
    }

    const ZlFormatOptions _options;
    ZlTimeWriter _times;
    std::optional<std::int64_t> _first;
};

class IsoFormat : public ZlFormat
{
public:
    explicit IsoFormat(const ZlFormatOptions& options)
        : _isTerminal(options._isTerminal), _times(isoForm(options))
    {
    }

    void append(std::string& out, const ZlRecord& record) override
    {
        const bool isWhole =
            record._wall && record._process && record._thread && record._level.has_value();
        if (!isWhole)
            appendBytes(out, record._raw);
        else
        {
            _times.append(out, *record._wall);
            out += ' ';
            appendNumber(out, *record._process);
            out += " (";
            appendThread(out, *record._thread);
            out += ") ";
            out += levelOf(record);
            out += ": ";
            appendBytes(out, wholeText(record));
        }
        out += '\n';
    }

private:
    void appendBytes(std::string& out, std::string_view bytes) const
    {
        if (_isTerminal)
            zlAppendPrintable(out, bytes, true);
        else
            out += bytes;
    }

    const bool _isTerminal;
    ZlTimeWriter _times;
};

// What the formats for programs have in common: the fields, empty if they are not known.
class FieldFormat : public ZlFormat
{
public:
    explicit FieldFormat(const ZlFormatOptions& options)
        : _isRaw(options._isRaw), _times(isoForm(options))
    {
    }

    void append(std::string& out, const ZlRecord& record) override
    {
        const bool isCounted =
            record._kind == ZlRecord::Kind::Overflow || record._kind == ZlRecord::Kind::NotWritten;
        std::string thread;
        if (record._thread) appendThread(thread, *record._thread);
        beginLine();
        add(out, "time", timeOf(_times, record));
        add(out, "kind", zlKindName(record._kind));
        add(out, "host", lgUnescaped(record._owner->_host));
        add(out, "process", record._process ? std::to_string(*record._process) : "");
        add(out, "thread", thread);
        add(out, "level", record._level ? levelOf(record) : "");
        add(out, "group", record._group);
        add(out, "count", isCounted ? std::to_string(record._count) : "");
        add(out, "text", zlTextOf(record, _isRaw));
        add(out, "file", *record._file);
        add(out, "line", std::to_string(record._line));
        endLine(out);
    }

private:
    virtual void beginLine() = 0;
    virtual void add(std::string& out, std::string_view name, std::string_view value) = 0;
    virtual void endLine(std::string& out) = 0;

    const bool _isRaw;
    ZlTimeWriter _times;
};

class CsvFormat : public FieldFormat
{
public:
    explicit CsvFormat(const ZlFormatOptions& options)
        : FieldFormat(options), _isTerminal(options._isTerminal)
    {
    }

    void begin(std::string& out) override
    {
        out += "time,kind,host,process,thread,level,group,count,text,file,line\r\n";
    }

private:
    void beginLine() override
    {
        _isFirst = true;
    }

    void add(std::string& out, std::string_view, std::string_view value) override
    {
        if (!_isFirst) out += ',';
        _isFirst = false;
        if (!_isTerminal) return addQuoted(out, value);
        std::string printable;
        zlAppendPrintable(printable, value, true);
        addQuoted(out, printable);
    }

    static void addQuoted(std::string& out, std::string_view value)
    {
        if (value.find_first_of(",\"\r\n") == std::string_view::npos)
        {
            out += value;
            return;
        }
        out += '"';
        for (const char c : value) out.append(c == '"' ? 2 : 1, c);
        out += '"';
    }

    void endLine(std::string& out) override
    {
        out += "\r\n";
    }

    const bool _isTerminal;
    bool _isFirst = true;
};

class LogfmtFormat : public FieldFormat
{
public:
    using FieldFormat::FieldFormat;

private:
    void beginLine() override
    {
        _isFirst = true;
    }

    // Fields that are not known are missing.
    void add(std::string& out, std::string_view name, std::string_view value) override
    {
        if (value.empty() && name != "text") return;
        if (!_isFirst) out += ' ';
        _isFirst = false;
        out.append(name).append("=");
        std::string printable;
        zlAppendPrintable(printable, value, true);
        const bool isPlain =
            !printable.empty() && printable.find_first_of(" =\"\\\n\t") == std::string::npos;
        if (isPlain)
            out += printable;
        else
            appendQuoted(out, printable);
    }

    static void appendQuoted(std::string& out, std::string_view text)
    {
        out += '"';
        for (const char c : text)
        {
            if (c == '"' || c == '\\') out += '\\';
            if (c == '\n')
                out += "\\n";
            else if (c == '\t')
                out += "\\t";
            else
                out += c;
        }
        out += '"';
    }

    void endLine(std::string& out) override
    {
        out += '\n';
    }

    bool _isFirst = true;
};

} // namespace

void ZlFormat::begin(std::string&) {}

std::unique_ptr<ZlFormat> zlMakeFormat(std::string_view name, const ZlFormatOptions& options)
{
    if (name == "text") return std::make_unique<TextFormat>(options);
    if (name == "iso") return std::make_unique<IsoFormat>(options);
    if (name == "json") return zlMakeJsonFormat(options);
    if (name == "csv") return std::make_unique<CsvFormat>(options);
    if (name == "logfmt") return std::make_unique<LogfmtFormat>(options);
    return nullptr;
}

void zlAppendPrintable(std::string& out, std::string_view text, bool hasLines)
{
    if (hasLines) return lgAppendPrintable(out, text);
    std::size_t feed = 0;
    while ((feed = text.find('\n')) != std::string_view::npos)
    {
        lgAppendPrintable(out, text.substr(0, feed));
        out += "\\x0a";
        text.remove_prefix(feed + 1);
    }
    lgAppendPrintable(out, text);
}

} // namespace Zu

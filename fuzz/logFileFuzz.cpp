// A log file, which is read whole, in pieces, as it grows, and rotated; its records in all forms.

#include "zulog/zlFormat.h"
#include "zulog/zlPage.h"
#include "zulog/zlReader.h"
#include "zulog/zlRecord.h"
#include "zulog/zlReports.h"
#include "zulog/zlSource.h"
#include "zulog/zlStats.h"

#include "fuzzTarget.h"
#include "logAccount.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

using Zu::ZlRecord;
using Times = Zu::ZlFormatOptions::Times;
using Sizes = std::vector<std::size_t>;

// What is done with the log.
struct Choice
{
    bool _isRaw;
    bool _isColoured;
    bool _isTerminal;
    Times _times;
    // Whether some characters stand for long lines.
    bool _isStretched;
    // The levels that are not skipped; the place where the log is cut into two files.
    std::uint8_t _levels;
    // Of the pieces in which the log comes, again and again.
    Sizes _sizes;
};

// Delivers a text in pieces. With pauses, each of them is the present end for a while.
class Pieces : public Zu::ZlSource
{
public:
    Pieces(const std::string& text, Sizes sizes, bool hasPauses, std::size_t& left)
        : _text(fuzz::exactCopy(text)), _rest(_text.get(), text.size()), _sizes(std::move(sizes)),
          _hasPauses(hasPauses), _left(left)
    {
        _left = _rest.size();
    }

    std::size_t read(char* place, std::size_t size) override
    {
        _isPaused = _hasPauses && !_isPaused;
        if (_isPaused) return 0;
        const std::size_t most = _sizes[_count++ % _sizes.size()];
        const std::string_view piece = _rest.substr(0, std::min(size, most));
        std::copy(piece.begin(), piece.end(), place);
        _rest.remove_prefix(piece.size());
        _left = _rest.size();
        return piece.size();
    }

private:
    const std::unique_ptr<char[]> _text;
    std::string_view _rest;
    const Sizes _sizes;
    const bool _hasPauses;
    std::size_t& _left;
    std::size_t _count = 0;
    bool _isPaused = false;
};

// A record that outlives its reader; all that makes it, in one text.
struct Copy
{
    ZlRecord::Kind _kind;
    std::int32_t _level;
    std::uint64_t _line;
    std::string _raw;
    std::string _all;
};

using Copies = std::vector<Copy>;

Copy copyOf(const ZlRecord& record)
{
    std::ostringstream out;
    out << record._line << ' ' << record._wall.value_or(-1) << ' ' << record._zone.value_or(-1)
        << ' ' << record._ticks.value_or(0) << ' ' << record._process.value_or(0) << ' '
        << record._thread.value_or(0) << ' ' << record._count << ' ' << record._owner->_host << '\n'
        << record._group << '\n'
        << record._text;
    return {record._kind, record._level ? static_cast<std::int32_t>(*record._level) : -1,
            record._line, std::string(record._raw), out.str()};
}

bool operator==(const Copy& one, const Copy& other)
{
    return one._kind == other._kind && one._level == other._level && one._raw == other._raw &&
           one._all == other._all;
}

// A reader with all that it takes.
class Log
{
public:
    Log(const std::string& text, const Sizes& sizes, bool isLive,
        const Zu::ZlReader::Options& options = smallBuffer())
        : _reader("log", std::make_unique<Pieces>(text, sizes, isLive, _left), _reports, options)
    {
        if (isLive) _reader.setLive();
    }

    // The smallest, so that there are many pieces.
    static Zu::ZlReader::Options smallBuffer()
    {
        Zu::ZlReader::Options options;
        options._bufferSize = 0;
        return options;
    }

    // All records up to the present end.
    void takeAll(Copies& records)
    {
        while (_reader.next()) records.push_back(copyOf(_reader.getRecord()));
        FUZZ_REQUIRE(!_reports.hasFailed());
    }

    std::size_t getLeft() const
    {
        return _left;
    }

    Zu::ZlReader& getReader()
    {
        return _reader;
    }

private:
    std::ostringstream _errors;
    Zu::ZlReports _reports{_errors};
    std::size_t _left = 0;
    Zu::ZlReader _reader;
};

void checkAccount(const std::string& text, const Copies& records, std::uint64_t lines)
{
    FUZZ_REQUIRE(lines == fuzz::linesOf(text));
    fuzz::LogAccount account(text);
    for (const Copy& record : records)
        account.add(record._raw, record._line, record._kind == ZlRecord::Kind::Start);
    account.finish();
}

Copies readWhole(const std::string& text)
{
    Log log(text, {text.size() + 1}, false);
    Copies records;
    log.takeAll(records);
    checkAccount(text, records, log.getReader().getLineCount());
    return records;
}

void checkPieces(const std::string& text, const Copies& whole, const Sizes& sizes)
{
    Log log(text, sizes, false);
    Copies records;
    log.takeAll(records);
    FUZZ_REQUIRE(records == whole);
}

// As a file that grows. What is kept comes at the end alone, so the records are the same; if it
// comes at each pause, they are others, but nothing is missing.
void checkGrowing(const std::string& text, const Copies& whole, const Sizes& sizes, bool isReleased)
{
    Log log(text, sizes, true);
    Copies records;
    while (log.getLeft() > 0)
    {
        log.takeAll(records);
        if (isReleased) log.getReader().release(false);
    }
    log.takeAll(records);
    log.getReader().release(true);
    log.takeAll(records);
    if (isReleased)
        checkAccount(text, records, log.getReader().getLineCount());
    else
        FUZZ_REQUIRE(records == whole);
}

// As a file and the one that takes its place while it is followed.
void checkRotated(const std::string& text, const Choice& choice)
{
    const std::size_t place = text.size() * choice._levels / 256;
    const std::string first = text.substr(0, place);
    const std::string second = text.substr(place);
    Copies expected = readWhole(first);
    const Copies others = readWhole(second);
    expected.insert(expected.end(), others.begin(), others.end());

    Log log(first, choice._sizes, true);
    Copies records;
    while (log.getLeft() > 0) log.takeAll(records);
    log.takeAll(records);
    std::size_t left = 0;
    log.getReader().append(std::make_unique<Pieces>(second, choice._sizes, true, left));
    while (left > 0) log.takeAll(records);
    log.getReader().release(true);
    log.takeAll(records);
    FUZZ_REQUIRE(records == expected);
    FUZZ_REQUIRE(log.getReader().getLineCount() == fuzz::linesOf(first) + fuzz::linesOf(second));
}

// Those of known levels that are asked for.
Copies selected(const Copies& records, std::uint8_t levels)
{
    Copies result;
    for (const Copy& record : records)
        if (record._level >= 0 && (levels >> record._level & 1U) != 0) result.push_back(record);
    return result;
}

// Of what is asked for nothing is skipped, and all lines are counted.
void checkSkipping(const std::string& text, const Copies& whole, const Choice& choice)
{
    Zu::ZlReader::Options options = Log::smallBuffer();
    options._levels = choice._levels;
    options._areMarksSkipped = true;
    Log log(text, choice._sizes, false, options);
    Copies records;
    log.takeAll(records);
    FUZZ_REQUIRE(selected(records, choice._levels) == selected(whole, choice._levels));
    FUZZ_REQUIRE(log.getReader().getLineCount() == fuzz::linesOf(text));
}

// The character at the beginning of a text, which is taken off; a property fails if it is no UTF-8.
char32_t takeCharacter(std::string_view& text)
{
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = first < 0x80 ? 1 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    FUZZ_REQUIRE(first < 0x80 || (first >= 0xc2 && first < 0xf5));
    FUZZ_REQUIRE(text.size() >= length);
    char32_t character = length == 1 ? first : first & 0x7fU >> length;
    for (std::size_t i = 1; i < length; ++i)
    {
        const auto byte = static_cast<unsigned char>(text[i]);
        FUZZ_REQUIRE((byte & 0xc0U) == 0x80);
        character = character << 6 | (byte & 0x3fU);
    }
    FUZZ_REQUIRE(length < 3 || character >= (length == 3 ? 0x800U : 0x10000U));
    FUZZ_REQUIRE(character < 0xd800 || (character > 0xdfff && character < 0x110000));
    text.remove_prefix(length);
    return character;
}

// Nothing that a terminal takes for a command, or by which it shows characters in another order.
void checkPrintable(std::string_view text)
{
    constexpr std::u32string_view CONTROLS =
        U"\u061c\u200e\u200f\u202a\u202b\u202c\u202d\u202e\u2066\u2067\u2068\u2069\u2028\u2029";
    while (!text.empty())
    {
        const char32_t character = takeCharacter(text);
        FUZZ_REQUIRE(character >= 0x20 || character == '\n' || character == '\t');
        FUZZ_REQUIRE(character < 0x7f || character > 0x9f);
        FUZZ_REQUIRE(CONTROLS.find(character) == std::u32string_view::npos);
    }
}

std::string formatted(const std::string& text, const char* form, const Zu::ZlFormatOptions& options)
{
    Log log(text, {text.size() + 1}, false);
    const std::unique_ptr<Zu::ZlFormat> format = Zu::zlMakeFormat(form, options);
    std::string out;
    format->begin(out);
    while (log.getReader().next()) format->append(out, log.getReader().getRecord());
    return out;
}

// Without the sequences that set colours.
std::string withoutColours(const std::string& text)
{
    std::string out;
    for (std::size_t place = 0; place < text.size(); ++place)
        if (text[place] == '\x1b')
            place = text.find('m', place);
        else
            out += text[place];
    return out;
}

void checkText(const std::string& text, Zu::ZlFormatOptions options)
{
    options._isTerminal = true;
    const std::string coloured = formatted(text, "text", options);
    options._isColoured = false;
    const std::string plain = formatted(text, "text", options);
    checkPrintable(plain);
    FUZZ_REQUIRE(withoutColours(coloured) == plain);
}

// Each record is an object in a line of its own, which says where the record is.
void checkJson(const std::string& json, const Copies& records)
{
    const std::vector<std::string> lines = fuzz::split(json, '\n');
    FUZZ_REQUIRE(lines.size() == records.size() + 1 && lines.back().empty());
    checkPrintable(json);
    for (std::size_t i = 0; i < records.size(); ++i)
    {
        FUZZ_REQUIRE(nlohmann::json::accept(lines[i]));
        const auto object = nlohmann::json::parse(lines[i]);
        FUZZ_REQUIRE(object.at("kind") == Zu::zlKindName(records[i]._kind));
        FUZZ_REQUIRE(object.at("line") == records[i]._line);
    }
}

// A header, and a row of as many fields for each record, by what RFC 4180 says of quotation marks.
void checkCsv(const std::string& text, const Copies& records)
{
    std::size_t fields = 1;
    std::size_t expected = 0;
    std::size_t rows = 0;
    bool isQuoted = false;
    for (const char character : text)
    {
        if (character == '"') isQuoted = !isQuoted;
        if (isQuoted) continue;
        if (character == ',') ++fields;
        if (character != '\n') continue;
        if (rows++ == 0) expected = fields;
        FUZZ_REQUIRE(fields == expected);
        fields = 1;
    }
    FUZZ_REQUIRE(!isQuoted && fields == 1);
    FUZZ_REQUIRE(rows == records.size() + 1);
}

void checkFormats(const std::string& text, const Copies& records, const Choice& choice)
{
    Zu::ZlFormatOptions options;
    options._times = choice._times;
    options._isRaw = choice._isRaw;
    options._isColoured = choice._isColoured;
    options._isTerminal = choice._isTerminal;
    options._hasHosts = true;
    options._hasFiles = true;
    checkText(text, options);
    const std::string iso = formatted(text, "iso", options);
    if (choice._isTerminal) checkPrintable(iso);
    const std::string logfmt = formatted(text, "logfmt", options);
    checkPrintable(logfmt);
    FUZZ_REQUIRE(fuzz::linesOf(logfmt) == records.size());
    checkJson(formatted(text, "json", options), records);
    const std::string csv = formatted(text, "csv", options);
    checkCsv(csv, records);
    if (!choice._isTerminal) return;
    // Its line ends are those of the form.
    std::string lines = csv;
    for (std::size_t end = 0; (end = lines.find("\r\n", end)) != std::string::npos;)
        lines.erase(end, 1);
    checkPrintable(lines);
}

void checkFigures(const std::string& text, const Copies& records)
{
    Log log(text, {text.size() + 1}, false);
    Zu::ZlStats stats;
    while (log.getReader().next()) stats.add(log.getReader().getRecord());
    stats.setLineCount(log.getReader().getLineCount());
    std::string json;
    stats.appendJson(json);
    FUZZ_REQUIRE(nlohmann::json::accept(json));
    const auto figures = nlohmann::json::parse(json);
    const auto countOf = [&](ZlRecord::Kind kind)
    {
        return std::count_if(records.begin(), records.end(),
                             [kind](const Copy& record) { return record._kind == kind; });
    };
    FUZZ_REQUIRE(figures.at("lines") == fuzz::linesOf(text));
    FUZZ_REQUIRE(figures.at("unreadable") == countOf(ZlRecord::Kind::Unreadable));
    FUZZ_REQUIRE(figures.at("events") == countOf(ZlRecord::Kind::Event));
    std::string shown;
    stats.appendText(shown, Zu::ZlStatsOptions());
    checkPrintable(shown);
}

// Between the page's own tags there is no other, and each record is a line that begins with no TAB.
void checkPage(const std::string& text, const Copies& records)
{
    Log log(text, {text.size() + 1}, false);
    Zu::ZlPage page("log");
    std::string html;
    page.begin(html);
    const std::size_t begin = html.size();
    while (log.getReader().next()) page.append(html, log.getReader().getRecord());
    const std::string body = html.substr(begin);
    checkPrintable(body);
    std::size_t lines = 0;
    for (const std::string& line : fuzz::split(body, '\n'))
    {
        const bool isSource = line.substr(0, 10) == "<p>Source ";
        const bool isTag = isSource || line == "<pre>" || line == "</pre>";
        FUZZ_REQUIRE(isTag || line.find_first_of("<>") == std::string::npos);
        lines += !isTag && !line.empty() && line.front() != '\t';
    }
    FUZZ_REQUIRE(lines == records.size());
    page.end(html);
    const std::string total = ">records</th><td>" + std::to_string(records.size()) + "</td>";
    FUZZ_REQUIRE(html.find(total, begin + body.size()) != std::string::npos);
}

Choice takeChoice(fuzz::Input& input)
{
    const std::uint8_t flags = input.takeByte();
    const std::uint8_t levels = input.takeByte();
    Sizes sizes(1 + input.takeByte() % 8);
    // Three bits, because that takes much longer.
    const bool isStretched = (flags & 0xe0U) == 0xe0U;
    for (std::size_t& size : sizes)
        size = (std::size_t{1} + input.takeByte()) << (isStretched ? 12U : 0U);
    const Times times = (flags & 8U) != 0    ? Times::Ticks
                        : (flags & 16U) != 0 ? Times::Relative
                                             : Times::Utc;
    return {
        (flags & 1U) != 0, (flags & 2U) != 0, (flags & 4U) != 0, times, isStretched, levels, sizes};
}

// A byte that is in no text of UTF-8 stands for a good third of the longest line; of the first few.
std::string stretched(const std::string& text)
{
    std::string out;
    for (const char character : text)
        if (character == '\xff' && out.size() < 2 * Zu::ZlReader::LONGEST)
            out.append(Zu::ZlReader::LONGEST / 3 + 1, 'x');
        else
            out += character;
    return out;
}

void run(fuzz::Input input)
{
    const Choice choice = takeChoice(input);
    const std::vector<std::uint8_t> bytes = input.takeRest();
    std::string text(bytes.begin(), bytes.end());
    if (choice._isStretched) text = stretched(text);

    const Copies whole = readWhole(text);
    checkPieces(text, whole, choice._sizes);
    checkGrowing(text, whole, choice._sizes, false);
    checkGrowing(text, whole, choice._sizes, true);
    checkRotated(text, choice);
    checkSkipping(text, whole, choice);
    // The forms know nothing of the lengths of lines, and take time.
    if (choice._isStretched) return;
    checkFormats(text, whole, choice);
    checkFigures(text, whole);
    checkPage(text, whole);
}

} // namespace

FUZZ_TARGET(logFile, run);

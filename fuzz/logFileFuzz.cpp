// A log file, which is read whole, in pieces, and as it grows; its records in all forms.

#include "zulog/zlFormat.h"
#include "zulog/zlPage.h"
#include "zulog/zlReader.h"
#include "zulog/zlRecord.h"
#include "zulog/zlReports.h"
#include "zulog/zlSource.h"
#include "zulog/zlStats.h"

#include "fuzzTarget.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using Zu::ZlRecord;

// Delivers a text in pieces of up to so many bytes. With pauses, each piece is the present end for
// a while.
class Pieces : public Zu::ZlSource
{
public:
    Pieces(const std::string& text, std::size_t size, bool hasPauses)
        : _text(fuzz::exactCopy(text)), _rest(_text.get(), text.size()), _size(size),
          _hasPauses(hasPauses)
    {
    }

    std::size_t read(char* place, std::size_t size) override
    {
        _isPaused = _hasPauses && !_isPaused;
        if (_isPaused) return 0;
        const std::string_view piece = _rest.substr(0, std::min(size, _size));
        std::copy(piece.begin(), piece.end(), place);
        _rest.remove_prefix(piece.size());
        return piece.size();
    }

private:
    const std::unique_ptr<char[]> _text;
    std::string_view _rest;
    const std::size_t _size;
    const bool _hasPauses;
    bool _isPaused = false;
};

// All that makes a record, in one text.
std::string describe(const ZlRecord& record)
{
    std::ostringstream out;
    out << Zu::zlKindName(record._kind) << ' ' << record._line << ' ' << record._wall.value_or(-1)
        << ' ' << record._ticks.value_or(0) << ' ' << record._process.value_or(0) << ' '
        << record._thread.value_or(0) << ' ' << record._count << ' '
        << (record._level ? *record._level : -1) << '\n'
        << record._group << '\n'
        << record._text << '\n'
        << record._raw;
    return out.str();
}

struct Reading
{
    std::vector<std::string> _records;
    std::uint64_t _lines = 0;
    std::uint64_t _lastLine = 0;
};

Zu::ZlReader readerOf(const std::string& text, std::size_t size, bool isLive,
                      Zu::ZlReports& reports)
{
    Zu::ZlReader::Options options;
    options._bufferSize = 64;
    return {"log", std::make_unique<Pieces>(text, size, isLive), reports, options};
}

Reading readIn(const std::string& text, std::size_t size)
{
    std::ostringstream errors;
    Zu::ZlReports reports(errors);
    Zu::ZlReader reader = readerOf(text, size, false, reports);
    Reading reading;
    while (reader.next())
    {
        reading._records.push_back(describe(reader.getRecord()));
        FUZZ_REQUIRE(reader.getRecord()._line > reading._lastLine);
        reading._lastLine = reader.getRecord()._line;
    }
    reading._lines = reader.getLineCount();
    FUZZ_REQUIRE(!reports.hasFailed());
    return reading;
}

// As a file that grows by these pieces. What is kept is released at the end alone, so the records
// are the same.
std::vector<std::string> follow(const std::string& text, std::size_t size)
{
    std::ostringstream errors;
    Zu::ZlReports reports(errors);
    Zu::ZlReader reader = readerOf(text, size, true, reports);
    reader.setLive();
    std::vector<std::string> records;
    const auto takeAll = [&]
    {
        while (reader.next()) records.push_back(describe(reader.getRecord()));
    };
    for (std::size_t i = 0; i <= 2 * (text.size() / size + 2); ++i) takeAll();
    reader.release(true);
    takeAll();
    return records;
}

std::uint64_t linesOf(const std::string& text)
{
    const auto feeds = std::count(text.begin(), text.end(), '\n');
    return static_cast<std::uint64_t>(feeds) + (!text.empty() && text.back() != '\n');
}

// What a terminal could take for a command. Bytes above are part of UTF-8, of which the formats
// have tests of their own.
void checkPrintable(const std::string& text)
{
    for (const char character : text)
    {
        const auto byte = static_cast<unsigned char>(character);
        FUZZ_REQUIRE(byte >= 0x20 || byte == '\n' || byte == '\t');
        FUZZ_REQUIRE(byte != 0x7f);
    }
}

void checkJson(const std::string& text)
{
    for (const std::string& line : fuzz::split(text, '\n'))
        if (!line.empty()) FUZZ_REQUIRE(nlohmann::json::accept(line));
}

// The fields of each row, by what RFC 4180 says of quotation marks.
void checkCsv(const std::string& text)
{
    std::size_t fields = 1;
    std::size_t expected = 0;
    bool isQuoted = false;
    for (const char character : text)
    {
        if (character == '"') isQuoted = !isQuoted;
        if (isQuoted) continue;
        if (character == ',') ++fields;
        if (character != '\n') continue;
        if (expected == 0) expected = fields;
        FUZZ_REQUIRE(fields == expected);
        fields = 1;
    }
    FUZZ_REQUIRE(!isQuoted);
}

std::string formatted(const std::string& text, const char* form, const Zu::ZlFormatOptions& options)
{
    std::ostringstream errors;
    Zu::ZlReports reports(errors);
    Zu::ZlReader reader = readerOf(text, text.size() + 1, false, reports);
    const std::unique_ptr<Zu::ZlFormat> format = Zu::zlMakeFormat(form, options);
    std::string out;
    format->begin(out);
    while (reader.next()) format->append(out, reader.getRecord());
    return out;
}

void checkFormats(const std::string& text, bool isRaw)
{
    Zu::ZlFormatOptions options;
    options._times = Zu::ZlFormatOptions::Times::Utc;
    options._isRaw = isRaw;
    options._isTerminal = true;
    options._hasHosts = true;
    options._hasFiles = true;
    checkPrintable(formatted(text, "text", options));
    checkPrintable(formatted(text, "iso", options));
    checkPrintable(formatted(text, "logfmt", options));
    options._times = Zu::ZlFormatOptions::Times::Relative;
    checkPrintable(formatted(text, "text", options));
    options._times = Zu::ZlFormatOptions::Times::Utc;
    checkJson(formatted(text, "json", options));
    checkCsv(formatted(text, "csv", options));
}

void checkSums(const std::string& text)
{
    std::ostringstream errors;
    Zu::ZlReports reports(errors);
    Zu::ZlReader reader = readerOf(text, text.size() + 1, false, reports);
    Zu::ZlStats stats;
    Zu::ZlPage page("log");
    std::string html;
    page.begin(html);
    while (reader.next())
    {
        stats.add(reader.getRecord());
        page.append(html, reader.getRecord());
    }
    page.end(html);
    stats.setLineCount(reader.getLineCount());
    std::string json;
    stats.appendJson(json);
    FUZZ_REQUIRE(nlohmann::json::accept(json));
    std::string figures;
    stats.appendText(figures, Zu::ZlStatsOptions());
    checkPrintable(figures);
}

// One byte for the size of the pieces and for raw texts; the rest is the log.
void run(fuzz::Input input)
{
    const std::uint8_t choice = input.takeByte();
    const std::vector<std::uint8_t> bytes = input.takeRest();
    const std::string text(bytes.begin(), bytes.end());
    const std::size_t size = 1 + choice % 64;

    const Reading whole = readIn(text, text.size() + 1);
    FUZZ_REQUIRE(whole._lines == linesOf(text));
    FUZZ_REQUIRE(whole._lastLine <= whole._lines);
    FUZZ_REQUIRE(readIn(text, size)._records == whole._records);
    FUZZ_REQUIRE(follow(text, size) == whole._records);
    checkFormats(text, (choice & 64) != 0);
    checkSums(text);
}

} // namespace

FUZZ_TARGET(logFile, run);

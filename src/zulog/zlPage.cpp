#include "zulog/zlPage.h"

#include "zulog/zlFormat.h"
#include "zulog/zlPageParts.h"

#include <charconv>
#include <limits>

namespace Zu
{

namespace
{

// Browsers keep longer texts in several parts, which costs memory and time.
constexpr std::size_t BLOCK_SIZE = std::size_t{48} * 1024;
constexpr char UNKNOWN = '-';

void appendNumber(std::string& out, std::uint64_t number)
{
    char digits[20];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, number);
    out.append(digits, end);
}

void appendThread(std::string& out, std::uint32_t thread)
{
    constexpr std::string_view DIGITS = "0123456789abcdef";
    out += "0x";
    for (int shift = 28; shift >= 0; shift -= 4) out += DIGITS[thread >> shift & 0xf];
}

// Text as content of an element.
void appendMarkup(std::string& out, std::string_view text)
{
    for (;;)
    {
        const std::size_t place = text.find_first_of("&<>");
        out += text.substr(0, place);
        if (place == std::string_view::npos) return;
        out += text[place] == '&' ? "&amp;" : text[place] == '<' ? "&lt;" : "&gt;";
        text.remove_prefix(place + 1);
    }
}

// Text of any bytes, likewise.
void appendText(std::string& out, std::string_view text)
{
    std::string printable;
    zlAppendPrintable(printable, text, false);
    appendMarkup(out, printable.empty() ? std::string_view(&UNKNOWN, 1) : printable);
}

// Each further line begins with one TAB, whether it does so in the file or not.
void appendLines(std::string& out, std::string_view text)
{
    for (;;)
    {
        const std::size_t end = text.find('\n');
        out += text.substr(0, end);
        if (end == std::string_view::npos) return;
        out += "\n\t";
        text.remove_prefix(end + 1);
        if (text.substr(0, 1) == "\t") text.remove_prefix(1);
    }
}

void appendTotal(std::string& out, std::string_view name, std::uint64_t number)
{
    if (number == 0) return;
    out += "<tr><th scope=\"row\">";
    out += name;
    out += "</th><td>";
    appendNumber(out, number);
    out += "</td></tr>\n";
}

bool hasCount(ZlRecord::Kind kind)
{
    return kind == ZlRecord::Kind::Overflow || kind == ZlRecord::Kind::NotWritten;
}

} // namespace

void ZlPage::begin(std::string& out) const
{
    out += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
           "style-src 'sha256-";
    out += zlPageStyleHash();
    out += "'; script-src 'sha256-";
    out += zlPageScriptHash();
    out += "'; base-uri 'none'; form-action 'none'\">\n"
           "<meta name=\"viewport\" content=\"width=device-width\">\n<title>";
    appendText(out, _title);
    out += "</title>\n<style>";
    out += zlPageStyle();
    out += "</style>\n</head>\n<body>\n<h1>";
    appendText(out, _title);
    out += "</h1>\n";
    out += zlPageViewer();
    out += "<script>";
    out += zlPageScript();
    out += "</script>\n<div id=\"log\">\n";
}

void ZlPage::append(std::string& out, const ZlRecord& record)
{
    const std::uint32_t source = beginSource(out, record);
    beginBlock(out);
    _line.clear();
    appendHead(record, source);
    _text.clear();
    zlAppendPrintable(_text, record._text, true);
    appendLines(_line, _text);
    _line += '\n';
    const std::size_t before = out.size();
    appendMarkup(out, _line);
    _blockSize += out.size() - before;
    if (_blockSize >= BLOCK_SIZE) endBlock(out);
    count(record);
}

void ZlPage::end(std::string& out)
{
    endBlock(out);
    std::uint64_t records = 0;
    for (const std::uint64_t number : _recordsByKind) records += number;
    out += "</div>\n<table id=\"totals\">\n<caption>Totals</caption>\n"
           "<tr><th scope=\"row\">records</th><td>";
    appendNumber(out, records);
    out += "</td></tr>\n";
    for (std::int32_t level = 0; level < LgTypes::NUM_LEVELS; ++level)
        appendTotal(out, LgTypes::levelToString(static_cast<LgTypes::Level>(level)),
                    _eventsByLevel[static_cast<std::size_t>(level)]);
    appendTotal(out, "unknown level", _eventsByLevel.back());
    for (std::size_t kind = 1; kind < KINDS; ++kind)
        appendTotal(out, zlKindName(static_cast<ZlRecord::Kind>(kind)), _recordsByKind[kind]);
    appendTotal(out, "lost events", _lost);
    appendTotal(out, "processes that started", _runs.getStarted());
    appendTotal(out, "processes that stopped", _runs.getStopped());
    appendTotal(out, "processes that ended without a stop mark", _runs.getUnordered());
    out += "</table>\n</body>\n</html>\n";
}

// The number of the record's source; its paragraph, if it is a new one.
std::uint32_t ZlPage::beginSource(std::string& out, const ZlRecord& record)
{
    using Key = std::pair<std::string_view, std::string_view>;
    const Key key(record._file == nullptr ? std::string_view() : *record._file,
                  record._owner == nullptr ? std::string_view() : record._owner->_host);
    if (const auto known = _sources.find(key); known != _sources.end()) return known->second;
    const auto number = static_cast<std::uint32_t>(_sources.size() + 1);
    _sources.emplace(Source(key), number);
    endBlock(out);
    out += "<p>Source <b>";
    appendNumber(out, number);
    out += "</b>: file <b>";
    appendText(out, key.first);
    out += "</b>, host <b>";
    appendText(out, key.second);
    out += "</b></p>\n";
    return number;
}

void ZlPage::beginBlock(std::string& out)
{
    if (_isInBlock) return;
    _isInBlock = true;
    _blockSize = 0;
    // The line feed is not part of the content.
    out += "<pre>\n";
}

void ZlPage::endBlock(std::string& out)
{
    if (_isInBlock) out += "</pre>\n";
    _isInBlock = false;
}

void ZlPage::appendHead(const ZlRecord& record, std::uint32_t source)
{
    if (record._wall)
        _times.append(_line, *record._wall);
    else if (record._ticks)
        appendNumber(_line, *record._ticks);
    else
        _line += UNKNOWN;
    _line += '\t';
    appendNumber(_line, source);
    _line += ':';
    appendNumber(_line, record._line);
    _line += '\t';
    if (record._process)
        appendNumber(_line, *record._process);
    else
        _line += UNKNOWN;
    _line += '\t';
    if (record._thread)
        appendThread(_line, *record._thread);
    else
        _line += UNKNOWN;
    _line += '\t';
    if (record._level)
        _line += LgTypes::levelToString(*record._level);
    else
        _line += UNKNOWN;
    if (record._kind != ZlRecord::Kind::Event)
    {
        _line += ' ';
        _line += zlKindName(record._kind);
    }
    if (hasCount(record._kind))
    {
        _line += ' ';
        appendNumber(_line, record._count);
    }
    _line += '\t';
    if (record._group.empty())
        _line += UNKNOWN;
    else
        _line += record._group;
    _line += '\t';
}

void ZlPage::count(const ZlRecord& record)
{
    ++_recordsByKind[static_cast<std::size_t>(record._kind)];
    _runs.add(record);
    if (record._kind == ZlRecord::Kind::Event)
        ++_eventsByLevel[static_cast<std::size_t>(record._level.value_or(LgTypes::NUM_LEVELS))];
    if (!hasCount(record._kind)) return;
    // Files may claim any number.
    constexpr std::uint64_t MOST = std::numeric_limits<std::uint64_t>::max();
    _lost = record._count > MOST - _lost ? MOST : _lost + record._count;
}

} // namespace Zu

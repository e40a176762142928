#include "logAccount.h"

#include "fuzzTarget.h"

#include <algorithm>

namespace fuzz
{

namespace
{

bool beginsWith(std::string_view text, std::string_view beginning)
{
    return text.substr(0, beginning.size()) == beginning;
}

std::uint64_t feedsIn(std::string_view text)
{
    return static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n'));
}

} // namespace

void LogAccount::add(std::string_view raw, std::uint64_t line, bool isStart)
{
    while (_line < line && _at < _text.size()) skipMark();
    FUZZ_REQUIRE(_line == line);
    FUZZ_REQUIRE(_text.substr(_at, raw.size()) == raw);
    _at += raw.size();
    _line += feedsIn(raw);
    _isInBanner = isStart;
    _isEmptyLineDue = false;
    takeLineEnd();
}

void LogAccount::finish()
{
    while (_at < _text.size()) skipMark();
}

// A line that is no record.
void LogAccount::skipMark()
{
    FUZZ_REQUIRE(_at == 0 || _text[_at - 1] == '\n');
    std::string_view line = _text.substr(_at, _text.substr(_at).find('\n'));
    _at += line.size();
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    const bool isOrigin =
        beginsWith(line, "===== Clock Origin: ") && line.substr(line.size() - 6) == " =====";
    const bool isDate = _isInBanner && beginsWith(line, "===== Started on ");
    const bool isRate = _isInBanner && beginsWith(line, "===== Clock Frequency: ");
    FUZZ_REQUIRE(isOrigin || isDate || isRate || (_isEmptyLineDue && line.empty()));
    _isEmptyLineDue = isDate;
    takeLineEnd();
}

// A carriage return belongs to the line end. Within a line that is taken in parts there is none.
void LogAccount::takeLineEnd()
{
    const std::string_view rest = _text.substr(_at);
    if (rest == "\r" || beginsWith(rest, "\r\n")) ++_at;
    if (_at == _text.size() || _text[_at] != '\n') return;
    ++_at;
    ++_line;
}

std::uint64_t linesOf(std::string_view text)
{
    return feedsIn(text) + (!text.empty() && text.back() != '\n');
}

} // namespace fuzz

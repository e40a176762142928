#include "zulog/zlSyslog.h"

#include "app/lgServiceLine.h"
#include "zulog/zlText.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace Zu
{

namespace
{

using Kind = ZlRecord::Kind;

constexpr int FACILITY_USER = 1;
constexpr int NOTICE = 5;
constexpr std::array<int, LgTypes::NUM_LEVELS> SEVERITIES = {2, 2, 3, 4, 6, 7, 7};
// The longest values of the fields that RFC 5424 names.
constexpr std::size_t LONGEST_HOST = 255;
constexpr std::size_t LONGEST_APP = 48;
constexpr std::size_t LONGEST_ID = 32;
// What a head may take of a message beside names.
constexpr std::size_t LEAST_TEXT = 256;
constexpr std::size_t LONGEST_VALUE = 128;

// A field consists of printable ASCII without blanks.
std::string fieldOf(std::string_view text, std::size_t longest)
{
    std::string field(text.substr(0, longest));
    for (char& c : field)
        if (c <= ' ' || c > '~') c = '_';
    return field.empty() ? "-" : field;
}

// How long the character at the beginning of a text is; 0 if there is none in UTF-8.
std::size_t characterLength(std::string_view text)
{
    const auto byte = [&](std::size_t i)
    { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    const auto isNext = [&](std::size_t i) { return (byte(i) & 0xc0U) == 0x80; };
    const unsigned first = byte(0);
    if (first < 0x80) return 1;
    if (first >= 0xc2 && first < 0xe0) return isNext(1) ? 2 : 0;
    if (first >= 0xe0 && first < 0xf0)
    {
        const bool isShorter = first == 0xe0 && byte(1) < 0xa0;
        const bool isSurrogate = first == 0xed && byte(1) >= 0xa0;
        return isNext(1) && isNext(2) && !isShorter && !isSurrogate ? 3 : 0;
    }
    if (first >= 0xf0 && first < 0xf5)
    {
        const bool isShorter = first == 0xf0 && byte(1) < 0x90;
        const bool isBeyond = first == 0xf4 && byte(1) >= 0x90;
        return isNext(1) && isNext(2) && isNext(3) && !isShorter && !isBeyond ? 4 : 0;
    }
    return 0;
}

void addParameter(std::string& out, const char* name, std::string_view value)
{
    std::string text;
    zlAppendUtf8(text, value.substr(0, zlPartLength(value, LONGEST_VALUE)));
    out.append(" ").append(name).append("=\"");
    for (const char c : text)
    {
        if (c == '"' || c == '\\' || c == ']') out += '\\';
        out += c;
    }
    out += '"';
}

std::string threadOf(std::uint32_t thread)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", static_cast<unsigned>(thread));
    return text;
}

// What the fields of the head have no room for.
void addData(std::string& out, const ZlRecord& record, const std::string& part)
{
    out += "[zulog@32473";
    addParameter(out, "kind", zlKindName(record._kind));
    if (!record._owner->_host.empty()) addParameter(out, "host", lgUnescaped(record._owner->_host));
    if (record._process) addParameter(out, "process", std::to_string(*record._process));
    if (record._thread) addParameter(out, "thread", threadOf(*record._thread));
    if (record._level) addParameter(out, "level", LgTypes::levelToString(*record._level));
    if (!record._group.empty()) addParameter(out, "group", record._group);
    if (record._ticks) addParameter(out, "ticks", std::to_string(*record._ticks));
    if (record._kind == Kind::Overflow || record._kind == Kind::NotWritten)
        addParameter(out, "count", std::to_string(record._count));
    const std::string_view file = *record._file;
    addParameter(out, "file", file.substr(file.size() - std::min(file.size(), LONGEST_VALUE)));
    addParameter(out, "line", std::to_string(record._line));
    out += part;
    out += ']';
}

} // namespace

int zlSeverityOf(const ZlRecord& record)
{
    if (record._kind == Kind::NotWritten) return SEVERITIES[LgTypes::Error];
    if (record._kind == Kind::Overflow) return SEVERITIES[LgTypes::Warning];
    if (record._kind != Kind::Event || !record._level) return NOTICE;
    return SEVERITIES[static_cast<std::size_t>(*record._level)];
}

std::string zlAppOf(std::string_view log)
{
    const std::size_t slash = log.find_last_of("/\\");
    if (slash != std::string_view::npos) log.remove_prefix(slash + 1);
    return std::string(log.substr(0, log.find('.', 1)));
}

void zlAppendUtf8(std::string& out, std::string_view text)
{
    while (!text.empty())
    {
        const std::size_t length = characterLength(text);
        if (length == 0)
            out += "\xef\xbf\xbd";
        else
            out += text.substr(0, length);
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
}

std::size_t zlPartLength(std::string_view text, std::size_t most)
{
    if (text.size() <= most) return text.size();
    std::size_t length = most;
    const auto isInside = [&]
    { return (static_cast<unsigned char>(text[length]) & 0xc0U) == 0x80; };
    while (length > 0 && most - length < 4 && isInside()) --length;
    return length > 0 && !isInside() ? length : most;
}

std::string ZlSyslog::headOf(const ZlRecord& record, const std::string& log,
                             const std::string& part)
{
    std::string head = "<" + std::to_string(FACILITY_USER * 8 + zlSeverityOf(record)) + ">1 ";
    if (record._wall)
        _times.append(head, *record._wall);
    else
        head += '-';
    head += ' ';
    head += fieldOf(lgUnescaped(record._owner->_host), LONGEST_HOST) + " ";
    head += fieldOf(_options._app.empty() ? zlAppOf(log) : _options._app, LONGEST_APP) + " ";
    head += (record._process ? std::to_string(*record._process) : "-") + " ";
    head += fieldOf(record._group, LONGEST_ID) + " ";
    addData(head, record, part);
    return head;
}

void ZlSyslog::append(std::vector<std::string>& messages, const ZlRecord& record,
                      const std::string& log)
{
    std::string text;
    zlAppendUtf8(text, zlTextOf(record, _options._isRaw));
    std::string message = headOf(record, log, "");
    if (!text.empty()) message.append(" ").append(text);
    if (message.size() <= _options._longest)
    {
        messages.push_back(std::move(message));
        return;
    }
    // All heads are as long as the longest one that can be.
    const std::string longest = R"( part="9999999" parts="9999999")";
    const std::size_t head = headOf(record, log, longest).size() + 1;
    const std::size_t room =
        std::max(_options._longest - std::min(head, _options._longest), LEAST_TEXT);
    std::vector<std::string_view> parts;
    for (std::string_view rest = text; !rest.empty(); rest.remove_prefix(parts.back().size()))
        parts.push_back(rest.substr(0, zlPartLength(rest, room)));
    for (std::size_t i = 0; i < parts.size(); ++i)
    {
        const std::string part = " part=\"" + std::to_string(i + 1) + "\" parts=\"" +
                                 std::to_string(parts.size()) + "\"";
        messages.push_back(headOf(record, log, part).append(" ").append(parts[i]));
    }
}

} // namespace Zu

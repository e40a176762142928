#include "zulog/zlJson.h"

#include "app/lgServiceLine.h"
#include "zulog/zlSuffix.h"
#include "zulog/zlText.h"
#include "zulog/zlTime.h"

#include <nlohmann/json.hpp>

namespace Zu
{

namespace
{

// Bytes that are no UTF-8 become U+FFFD.
constexpr auto REPLACED = nlohmann::ordered_json::error_handler_t::replace;

class JsonFormat : public ZlFormat
{
public:
    explicit JsonFormat(const ZlFormatOptions& options)
        : _isRaw(options._isRaw),
          _times(options._times == ZlFormatOptions::Times::Utc ? ZlTimeWriter::Form::UtcIso
                                                               : ZlTimeWriter::Form::LocalIso)
    {
    }

    // The keys of what is not known are missing.
    void append(std::string& out, const ZlRecord& record) override
    {
        nlohmann::ordered_json line;
        if (record._wall)
        {
            std::string time;
            _times.append(time, *record._wall);
            line["time"] = std::move(time);
        }
        line["kind"] = zlKindName(record._kind);
        if (record._ticks) line["ticks"] = *record._ticks;
        if (!record._owner->_host.empty()) line["host"] = lgUnescaped(record._owner->_host);
        if (record._process) line["process"] = *record._process;
        if (record._thread) line["thread"] = *record._thread;
        if (record._level) line["level"] = LgTypes::levelToString(*record._level);
        if (!record._group.empty()) line["group"] = record._group;
        if (record._kind == ZlRecord::Kind::Overflow || record._kind == ZlRecord::Kind::NotWritten)
            line["count"] = record._count;
        line["text"] = zlTextOf(record, _isRaw);
        if (record._kind == ZlRecord::Kind::Event) addSuffix(line, record._text);
        line["file"] = *record._file;
        line["line"] = record._line;
        zlAppendJson(out, line.dump(-1, ' ', false, REPLACED));
        out += '\n';
    }

private:
    static void addSuffix(nlohmann::ordered_json& line, std::string_view text)
    {
        // Neither is ever escaped.
        if (!text.ends_with('}') && !text.ends_with(']')) return;
        const ZlSuffix suffix = zlSuffixOf(lgUnescaped(text));
        if (!suffix._source.empty()) line["source"] = suffix._source;
        // Of fields with the same name, the innermost.
        for (const auto& [name, value] : suffix._fields) line["context"][name] = value;
    }

    const bool _isRaw;
    ZlTimeWriter _times;
};

} // namespace

std::unique_ptr<ZlFormat> zlMakeJsonFormat(const ZlFormatOptions& options)
{
    return std::make_unique<JsonFormat>(options);
}

void zlAppendJson(std::string& out, std::string_view json)
{
    // The one character that the other escapes of the program give a form that JSON does not have.
    constexpr char DELETE = '\x7f';
    std::size_t place = 0;
    while ((place = json.find(DELETE)) != std::string_view::npos)
    {
        zlAppendPrintable(out, json.substr(0, place), true);
        out += "\\u007f";
        json.remove_prefix(place + 1);
    }
    zlAppendPrintable(out, json, true);
}

} // namespace Zu

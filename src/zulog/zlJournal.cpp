#include "zulog/zlJournal.h"

#include "app/lgServiceLine.h"
#include "zulog/zlSyslog.h"
#include "zulog/zlText.h"

#include <cstdint>
#include <utility>

namespace Zu
{

ZlJournalForm::ZlJournalForm(std::string app, bool isRaw) : _app(std::move(app)), _isRaw(isRaw) {}

void zlAppendJournalField(std::string& out, std::string_view name, std::string_view value)
{
    constexpr int LENGTH_BYTES = 8;
    out += name;
    if (value.find('\n') == std::string_view::npos)
    {
        out.append("=").append(value).append("\n");
        return;
    }
    out += '\n';
    const std::uint64_t length = value.size();
    for (int i = 0; i < LENGTH_BYTES; ++i) out += static_cast<char>(length >> (8 * i) & 0xffU);
    out.append(value).append("\n");
}

void ZlJournalForm::append(std::vector<std::string>& messages, const ZlRecord& record,
                           const std::string& log)
{
    std::string entry;
    const auto add = [&entry](std::string_view name, std::string_view value)
    { zlAppendJournalField(entry, name, value); };
    add("MESSAGE", zlTextOf(record, _isRaw));
    add("PRIORITY", std::to_string(zlSeverityOf(record)));
    add("SYSLOG_IDENTIFIER", _app.empty() ? zlAppOf(log) : _app);
    if (record._wall)
    {
        std::string time;
        _times.append(time, *record._wall);
        add("ZULOG_TIME", time);
    }
    if (!record._owner->_host.empty()) add("ZULOG_HOST", lgUnescaped(record._owner->_host));
    if (record._process) add("ZULOG_PROCESS", std::to_string(*record._process));
    if (record._thread) add("ZULOG_THREAD", std::to_string(*record._thread));
    if (record._level) add("ZULOG_LEVEL", LgTypes::levelToString(*record._level));
    if (!record._group.empty()) add("ZULOG_GROUP", record._group);
    add("ZULOG_KIND", zlKindName(record._kind));
    if (record._count > 0) add("ZULOG_COUNT", std::to_string(record._count));
    add("ZULOG_FILE", *record._file);
    add("ZULOG_LINE", std::to_string(record._line));
    messages.push_back(std::move(entry));
}

} // namespace Zu

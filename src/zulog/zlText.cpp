#include "zulog/zlText.h"

#include "app/lgServiceLine.h"

namespace Zu
{

std::string zlTextOf(const ZlRecord& record, bool isRaw)
{
    if (isRaw && zlIsEvent(record._kind)) return lgUnescaped(record._text);
    std::string text;
    text.reserve(record._text.size());
    char last = '\0';
    for (const char c : record._text)
    {
        if (c != '\t' || last != '\n') text += c;
        last = c;
    }
    return text;
}

} // namespace Zu

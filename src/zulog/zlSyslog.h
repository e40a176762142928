/// @file
/// Records as syslog messages.

#ifndef ZU_ZULOG_ZLSYSLOG_H
#define ZU_ZULOG_ZLSYSLOG_H

#include "zlTime.h"
#include "zlTransport.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Zu
{

/// Makes messages after RFC 5424, without a frame around them:
///
/// `<12>1 2026-11-22T22:10:51.123456Z alpha events 4711 Orders [zulog@32473 kind="event"
/// host="alpha" process="4711" thread="0x00000abc" level="Warning" group="Orders"
/// file="/var/log/events.log" line="12"] text`
///
/// The facility is "user". What is not known is "-", or missing. Texts are UTF-8: what is none
/// becomes U+FFFD. 32473 is the number that is free
/// for all. Not thread-safe.
class ZlSyslog : public ZlMessageForm
{
public:
    struct Options
    {
        /// The program's name in the messages; if empty, that of the log without its ending.
        std::string _app;
        /// The longest message, in bytes. A longer one is sent in parts, which differ by
        /// `part="1" parts="3"`. At least LEAST_LONGEST.
        std::size_t _longest = 8192;
        /// Whether the log service's escapes are undone in texts.
        bool _isRaw = false;
    };

    static constexpr std::size_t LEAST_LONGEST = 2048;

    explicit ZlSyslog(const Options& options) : _options(options) {}

    void append(std::vector<std::string>& messages, const ZlRecord& record,
                const std::string& log) override;

private:
    std::string headOf(const ZlRecord& record, const std::string& log, const std::string& part);

    const Options _options;
    ZlTimeWriter _times{ZlTimeWriter::Form::UtcIso};
};

/// Syslog's severity of a record, 0 to 7. That of an internal or fatal error is 2, "critical"; of
/// lost events, at least 4, "warning"; of marks, 5, "notice".
int zlSeverityOf(const ZlRecord& record);

/// The name of a log as that of a program: "events" for "/var/log/events.log".
std::string zlAppOf(std::string_view log);

/// Appends a text as UTF-8: what is none becomes U+FFFD.
void zlAppendUtf8(std::string& out, std::string_view text);

/// Where a text of more than `most` bytes can be parted without parting a character.
std::size_t zlPartLength(std::string_view text, std::size_t most);

} // namespace Zu

#endif

/// @file
/// Hands records to the system's journal.

#ifndef ZU_ZULOG_ZLJOURNAL_H
#define ZU_ZULOG_ZLJOURNAL_H

#include "zlTime.h"
#include "zlTransport.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Zu
{

/// Makes entries of the journal's native protocol: MESSAGE, PRIORITY, SYSLOG_IDENTIFIER, and
/// ZULOG_TIME, _HOST, _PROCESS, _THREAD, _LEVEL, _GROUP, _KIND, _COUNT, _FILE and _LINE, as far as
/// they are known. The journal's own time is that of the arrival. Not thread-safe.
class ZlJournalForm : public ZlMessageForm
{
public:
    /// With `app`, that is the identifier; otherwise the log's name without its ending is.
    ZlJournalForm(std::string app, bool isRaw);

    void append(std::vector<std::string>& messages, const ZlRecord& record,
                const std::string& log) override;

private:
    const std::string _app;
    const bool _isRaw;
    ZlTimeWriter _times{ZlTimeWriter::Form::UtcIso};
};

/// Appends a field: "NAME=value" for a value of one line, otherwise the name, the length as 8
/// bytes, the lowest first, and the value. A line feed ends both.
void zlAppendJournalField(std::string& out, std::string_view name, std::string_view value);

/// Sends each message as a datagram to the socket of this path, or to the system's own one.
/// Messages count as taken when the system has them. Raises ZlError where there is no journal.
std::unique_ptr<ZlTransport> zlMakeJournal(const std::string& path);

} // namespace Zu

#endif

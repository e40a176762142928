/// @file
/// The forms in which records are shown.

#ifndef ZU_ZULOG_ZLFORMAT_H
#define ZU_ZULOG_ZLFORMAT_H

#include "zlRecord.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace Zu
{

struct ZlFormatOptions
{
    enum class Times
    {
        Local,
        Utc,
        /// Seconds since the first record with a time.
        Relative,
        /// Ticks, as they stand in the file.
        Ticks
    };
    Times _times = Times::Local;
    bool _isColoured = false;
    /// Whether escapes are undone in texts.
    bool _isRaw = false;
    /// Whether the output goes to a terminal: control characters are then escaped even in raw
    /// texts.
    bool _isTerminal = false;
    /// Whether the name of the host, or of the file, stands in each line.
    bool _hasHosts = false;
    bool _hasFiles = false;
};

/// Turns records into text. Not thread-safe.
class ZlFormat
{
public:
    virtual ~ZlFormat() = default;

    /// What precedes the first record, as the header of CSV.
    virtual void begin(std::string& out);

    virtual void append(std::string& out, const ZlRecord& record) = 0;
};

/// "text", "iso", "json", "csv" or "logfmt"; null for any other name.
///
/// text    `2026-11-22 23:10:51.123456 4711 0x00000abc Warning        Orders text`: "-" stands for
///         what is not known. A line that is not readable is shown as it is.
/// iso     the lines that the log service writes by line-form=local, or utc. Lines that lack what
///         these need are written as they are.
/// json    an object in each line, see docs/reading-logs.md. Control characters and bidirectional
///         controls are always escaped.
/// csv     after RFC 4180, with a header. On a terminal, control characters are escaped as in text.
/// logfmt  `time=... level=... group=... text="..."`
std::unique_ptr<ZlFormat> zlMakeFormat(std::string_view name, const ZlFormatOptions& options);

/// Appends bytes of a file so that a terminal takes nothing in them for a command, and none of them
/// for a line end: control characters, the bidirectional controls and bytes that are no UTF-8 are
/// escaped as the log service does it. Backslashes stay as they are. A TAB stays, and
/// so does a line feed if `hasLines`.
void zlAppendPrintable(std::string& out, std::string_view text, bool hasLines);

} // namespace Zu

#endif

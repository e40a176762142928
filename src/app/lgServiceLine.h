/// @file
/// The form of a log file's lines: times, escapes, and the line that dates them. Internal to the
/// application kit.

#ifndef ZU_APP_LGSERVICELINE_H
#define ZU_APP_LGSERVICELINE_H

#include "../base/lgTypes.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Zu
{

/// What stands before the text of a line. In all forms but Plain it ends with thread and level, as
/// in "(0x00000abc) Warning: ".
enum class LgLineForm
{
    /// The ticks since the start of the logger: "0000000001 0000000005 (0x00000abc) Warning: text".
    /// These are the bytes that LgReader writes.
    Ticks,
    /// Nothing: the line is the text.
    Plain,
    /// Local time and process: "2026-11-22T23:10:51.123456+01:00 4711 (0x00000abc) Warning: text".
    Local,
    /// UTC and process: "2026-11-22T22:10:51.123456Z 4711 (0x00000abc) Warning: text".
    Utc
};

/// What relates the counter of a process to the wall clock, and says whose lines these are.
struct LgLineOrigin
{
    /// The reading of HwCounter::timeStamp() from which lines count: LgLog::getStart().
    std::uint64_t _start = 0;
    /// A later reading of the counter.
    std::uint64_t _tick = 0;
    /// UTC at that reading, in nanoseconds since 1970.
    std::int64_t _wall = 0;
    /// The rate of the counter: from 1 to 10^18. Any other one means that it is not known.
    std::uint64_t _ticksPerSecond = 0;
    /// The id of the process.
    std::uint32_t _process = 0;
    /// When the process started: UTC, in nanoseconds since 1970.
    std::int64_t _processStart = 0;
    /// The name of the host, any bytes.
    std::string _host;
    /// What identifies the host's start, any bytes.
    std::string _boot;
};

/// One event.
struct LgLineEvent
{
    /// A reading of the counter.
    std::uint64_t _time;
    /// The id of the thread.
    std::uint32_t _thread;
    /// How severe it is.
    LgTypes::Level _level;
    /// Any bytes.
    std::string_view _text;
};

/// Turns events into lines. The times of Local and Utc are truncated to microseconds. Local time
/// follows the rules of OsDateUtil; a zone's offset is asked for once a minute, and seconds that it
/// may have are left out of the time, too, so that the line still denotes the event's instant.
///
/// Not thread-safe. Local time must not be asked for while another thread changes the environment.
///
/// Cost: some tens of nanoseconds for a text of 80 characters without escapes, and no allocation
/// but for the growth of the output.
class LgLineWriter
{
public:
    /// Without `isRaw`, texts are written by lgAppendEscaped(). Raw texts are written as they are:
    /// their line feeds can forge lines.
    LgLineWriter(LgLineForm form, bool isRaw);

    /// Sets what the times of the following events are relative to.
    void setOrigin(const LgLineOrigin& origin);

    /// Appends the line of an event, with its line feed. For a level that is none, raises what
    /// LgTypes::levelToString() raises and appends nothing; Plain does not look at it.
    void append(std::string& out, const LgLineEvent& event);

private:
    char* putTicks(char* place, const LgLineEvent& event) const;
    char* putTime(char* place, const LgLineEvent& event);
    void beginSecond(std::int64_t second);

    static constexpr std::size_t SECOND_LENGTH = 20;
    static constexpr std::size_t MAX_OWNER_LENGTH = 32;

    const LgLineForm _form;
    const bool _isRaw;
    LgLineOrigin _origin;

    // The second whose text is cached, since 1970, and that text: "2026-11-22T22:10:51.".
    bool _isCached = false;
    std::int64_t _second = 0;
    char _secondText[SECOND_LENGTH] = {};
    // What follows the fraction: zone and process, as in "+01:00 4711".
    char _owner[MAX_OWNER_LENGTH] = {};
    std::size_t _ownerLength = 0;
    // The minute whose offset is cached, since 1970, and that offset.
    std::int64_t _minute = 0;
    int _offsetMinutes = 0;
};

/// Appends a text so that it can't pass for more than one event's, or do anything to a terminal:
///
/// - A line feed is followed by a TAB. No line but such a continuation begins with a TAB: a TAB at
///   the beginning of the text becomes "\x09". Any other TAB stays.
/// - Every other character below U+0020, U+007F, and each byte that is not part of valid UTF-8
///   becomes "\x" and two hexadecimal digits, as in "\x1b".
/// - U+0080 to U+009F, the bidirectional controls U+061C, U+200E, U+200F, U+202A to U+202E and
///   U+2066 to U+2069, and the separators U+2028 and U+2029 become "\u" and four digits: "\u202e".
/// - The first character of a text that begins with "=====", as banners do, becomes "\x3d".
/// - A backslash is doubled exactly if what follows it in the output begins with a backslash, an
///   "x" or a "u". So "C:\temp" stays as it is, and so does a backslash at the end of a line.
///
/// Digits are lower-case. Everything else stays as it is. The output has at most four times the
/// length of the text.
void lgAppendEscaped(std::string& out, std::string_view text);

/// Appends a text whose backslashes, TABs and line feeds stay; everything else that
/// lgAppendEscaped() escapes is escaped in the same way. For bytes of a log file that are shown:
/// what was escaped stays as it is.
void lgAppendPrintable(std::string& out, std::string_view text);

/// The text of which lgAppendEscaped() made `line`: its exact inverse, for all bytes. `line` may
/// contain continuations, but not the line feed that ends the event. A backslash that begins none
/// of the escapes stays.
std::string lgUnescaped(std::string_view line);

/// The line that dates the lines of a file, with its line feed:
///
/// `===== Clock Origin: 0000000000 0000012345 is 2026-11-22T22:00:00.000000000Z, 1000000000 ticks
/// per second, process 4711 started 2026-11-22T21:59:59.000000000Z, host name, boot 3f2b =====`
///
/// Its ticks count from `_start`, as those of the lines do. Host and boot are escaped as texts are;
/// in addition commas, TABs and line feeds become "\x2c", "\x09" and "\x0a". "-" stands for an
/// empty one, and "\x2d" for the text "-". No escaped event can look like this line.
std::string lgOriginLine(const LgLineOrigin& origin);

/// Reads a line made by lgOriginLine(), with or without its line feed: `_start` is 0, and `_tick`
/// relative to it. Returns false, and leaves `origin` unchanged, for anything else: each byte must
/// be what lgOriginLine() writes, and the rate must be one.
bool lgParseOriginLine(std::string_view line, LgLineOrigin& origin);

/// UTC as ISO 8601, as in "2026-11-22T22:10:51.123456Z". `wall` is in nanoseconds since 1970;
/// `decimals` is from 0 to 9, and further digits are truncated.
std::string lgIsoTime(std::int64_t wall, int decimals);

/// By how many minutes local time is ahead of UTC at a second since 1970.
int lgLocalOffset(std::int64_t second);

/// UTC at a reading of the counter, in nanoseconds since 1970, rounded down. It is exact up to 292
/// years and 2^63 ticks from the origin, before or after; a time that does not fit is replaced by
/// the nearest one that does. Without a known rate it is that of the origin.
std::int64_t lgWallOf(const LgLineOrigin& origin, std::uint64_t tick);

} // namespace Zu

#endif

/// @file
/// Times, as people and programs write and read them.

#ifndef ZU_ZULOG_ZLTIME_H
#define ZU_ZULOG_ZLTIME_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Zu
{

/// Reads a time. Local time, unless a zone is given:
///
/// - "2026-11-22 23:10:51.5", with "T" in place of the blank, without the fraction, without the
///   seconds, or the day alone, which is its beginning; "Z" or "+01:00" may follow
/// - "today" and "yesterday", which are their beginnings, or with a time: "yesterday 23:10"
/// - "23:10:51.5", "23:10": today
/// - "90s ago", "5m ago", "2h ago", "3d ago", "2w ago", with any whole number, blanks in between
///   and sums, such as "1h30m ago"; "min", "day" and "days" are units, too
/// - "now"
///
/// Returns UTC in nanoseconds since 1970, or nothing for anything else. `now` is the present time.
std::optional<std::int64_t> zlParseTime(std::string_view text, std::int64_t now);

/// Reads "2026-11-22T22:10:51.123456", with exactly six decimals, as UTC: nanoseconds since 1970.
/// False, with `wall` in any state, for anything else, and for years before 1678 and after 2261.
bool zlParseInstant(std::string_view text, std::int64_t& wall);

/// Writes times. A second's text is kept for the next time in it. Not thread-safe.
class ZlTimeWriter
{
public:
    enum class Form
    {
        /// "2026-11-22 23:10:51.123456"
        Local,
        /// "2026-11-22 22:10:51.123456Z"
        Utc,
        /// "2026-11-22T23:10:51.123456+01:00"
        LocalIso,
        /// "2026-11-22T22:10:51.123456Z"
        UtcIso
    };

    explicit ZlTimeWriter(Form form) : _form(form) {}

    /// Appends a time, in nanoseconds since 1970, truncated to microseconds.
    void append(std::string& out, std::int64_t wall);

    /// The length of what append() appends.
    std::size_t getLength() const;

private:
    void beginSecond(std::int64_t second);

    const Form _form;
    bool _isCached = false;
    std::int64_t _second = 0;
    std::int64_t _minute = 0;
    int _offsetMinutes = 0;
    std::string _before;
    std::string _behind;
};

/// A length of time as "+0.000123", in seconds with six decimals.
void zlAppendSeconds(std::string& out, std::int64_t nanoseconds);

} // namespace Zu

#endif

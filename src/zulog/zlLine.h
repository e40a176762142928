/// @file
/// The heads of lines in log files.

#ifndef ZU_ZULOG_ZLLINE_H
#define ZU_ZULOG_ZLLINE_H

#include "../base/lgTypes.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Zu
{

/// What stands before the text of a line with a time.
struct ZlHead
{
    enum class Form
    {
        /// "0000000001 0000000005 (0x00000abc) Warning: "
        Ticks,
        /// "2026-11-22T23:10:51.123456+01:00 4711 (0x00000abc) Warning: ", or with "Z"
        Iso
    };

    Form _form = Form::Ticks;
    /// The ticks, or UTC in nanoseconds since 1970.
    std::uint64_t _ticks = 0;
    std::int64_t _wall = 0;
    /// By how many minutes the time is ahead of UTC, and the process; of the second form.
    int _zone = 0;
    std::uint32_t _process = 0;
    std::uint32_t _thread = 0;
    LgTypes::Level _level = LgTypes::InternalError;
    /// Where the text begins.
    std::size_t _length = 0;
};

/// Reads the head of a line. Each byte must be as the logger writes it; otherwise returns false and
/// leaves `head` in any state. Any years from 1601 to 2261 are read.
bool zlParseHead(std::string_view line, ZlHead& head);

/// Where the level of a line may stand, without a look at what precedes it: behind the first ") "
/// of its first bytes. npos if there is none.
std::size_t zlFindLevel(std::string_view line);

/// The level at the beginning of a text, with its colon and blank: "Warning: ". Returns its length,
/// or 0 if there is none.
std::size_t zlParseLevel(std::string_view text, LgTypes::Level& level);

/// The length of the group's name at the beginning of an event's text: a letter or "_", further
/// ones, digits and ":", up to a blank or the end. 0 if there is no such name.
std::size_t zlGroupLength(std::string_view text);

/// The number in "Event overflow [17]"; false for any other text.
bool zlParseOverflow(std::string_view text, std::uint64_t& count);

/// The number in "===== Not Written: 17 events since ...", likewise.
bool zlParseNotWritten(std::string_view line, std::uint64_t& count, std::int64_t& since);

} // namespace Zu

#endif

/// @file
/// What a log consists of, as zulog reads it.

#ifndef ZU_ZULOG_ZLRECORD_H
#define ZU_ZULOG_ZLRECORD_H

#include "../base/lgTypes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Zu
{

/// Whose lines follow, as the file says it.
struct ZlOwner
{
    /// The name of the host, as it stands in the file (escaped); empty if it is not known.
    std::string _host;
    /// What identifies the host's start, in the same way.
    std::string _boot;
    /// The id of the process.
    std::optional<std::uint32_t> _process;
    /// When the process started: UTC, in nanoseconds since 1970.
    std::optional<std::int64_t> _processStart;
    /// The rate of the counter, in ticks per second; 0 if it is not known.
    std::uint64_t _ticksPerSecond = 0;
};

/// One event, or one mark that the logger leaves. What the file does not say has no value here: it
/// is never guessed.
///
/// The views lead into the reader that made the record, and are valid until it makes the next one.
struct ZlRecord
{
    enum class Kind
    {
        /// A log statement's event. Its continuation lines belong to it.
        Event,
        /// An "Event overflow": `_count` events were lost here.
        Overflow,
        /// A logger has started here: its banner, and the origin of its clock if that follows.
        Start,
        /// A logger has ended here.
        Stop,
        /// The events of an ended process begin here, which another one has recovered.
        RecoveryBegin,
        /// They end here.
        RecoveryEnd,
        /// `_count` events were not written, because the file could not be.
        NotWritten,
        /// Bytes that are no line of a log, shown as they are.
        Unreadable
    };

    Kind _kind = Kind::Unreadable;
    /// UTC, in nanoseconds since 1970.
    std::optional<std::int64_t> _wall;
    /// By how many minutes the time in the line is ahead of UTC, if the line says so.
    std::optional<int> _zone;
    /// Since the start of the logger.
    std::optional<std::uint64_t> _ticks;
    std::optional<std::uint32_t> _process;
    std::optional<std::uint32_t> _thread;
    std::optional<LgTypes::Level> _level;
    /// The first word of an event's text, if it can be the name of a group; otherwise empty.
    std::string_view _group;
    /// What follows the group and its blank. A continuation begins with a line feed and a TAB. For
    /// a mark, the whole line.
    std::string_view _text;
    /// The record as it stands in the file, without its last line end.
    std::string_view _raw;
    /// Of events, where the kind has such a number.
    std::uint64_t _count = 0;
    /// Never null.
    const ZlOwner* _owner = nullptr;
    /// The file, and the number of the record's first line in it, from 1 on.
    const std::string* _file = nullptr;
    std::uint64_t _line = 0;
};

/// Whether this is an event or what stands for lost ones: what filters select.
constexpr bool zlIsEvent(ZlRecord::Kind kind)
{
    return kind == ZlRecord::Kind::Event || kind == ZlRecord::Kind::Overflow;
}

/// The name of a kind in output for programs: "event", "overflow", "start", "stop",
/// "recovery-begin", "recovery-end", "not-written", "unreadable".
const char* zlKindName(ZlRecord::Kind kind);

} // namespace Zu

#endif

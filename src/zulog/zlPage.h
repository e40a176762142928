/// @file
/// A log as one page for a browser.

#ifndef ZU_ZULOG_ZLPAGE_H
#define ZU_ZULOG_ZLPAGE_H

#include "zlRecord.h"
#include "zlRuns.h"
#include "zlTime.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace Zu
{

/// Turns records into one self-contained HTML page: its style and its script are in it, and a
/// policy in the page forbids everything else, above all the network.
///
/// The records are in the page as text, once, which is readable without scripts; the script makes
/// its index from it. Each record is a line of fields with TABs between them; "-" stands for what
/// is not known:
///
/// 1. The time, as in "2026-11-22 22:10:51.123456Z". A whole number is the ticks of a record whose
///    time is not known.
/// 2. The number of its source, ":", and the number of its first line there. A source is a file and
///    a host; a paragraph in front of its first record says which.
/// 3. The process, as in "4711".
/// 4. The thread, as in "0x00000abc".
/// 5. The level, as in "Warning". For a mark a blank, the name of its kind and, if it has one, a
///    blank and its count follow: "Informational overflow 17", "- start".
/// 6. The group.
/// 7. The text. Each further line of it begins with a TAB.
///
/// Control characters and bytes that are no UTF-8 are escaped as the log service does it.
///
/// The text is appended in pieces, which the caller may write and remove from time to time. Memory
/// grows with the number of sources only. Not thread-safe.
class ZlPage
{
public:
    /// The title is any text, in UTF-8.
    explicit ZlPage(std::string_view title) : _title(title) {}

    /// What precedes the first record. Call this first, and once.
    void begin(std::string& out) const;

    void append(std::string& out, const ZlRecord& record);

    /// What follows the last record: the totals. Call this last, and once.
    void end(std::string& out);

private:
    // The file, and the host as it stands in it.
    using Source = std::pair<std::string, std::string>;
    // Compares without making strings.
    struct SourceLess
    {
        using is_transparent = void;
        template <class One, class Other> bool operator()(const One& one, const Other& other) const
        {
            const int order = std::string_view(one.first).compare(other.first);
            return order < 0 || (order == 0 && std::string_view(one.second) < other.second);
        }
    };
    static constexpr std::size_t KINDS = static_cast<std::size_t>(ZlRecord::Kind::Unreadable) + 1;

    std::uint32_t beginSource(std::string& out, const ZlRecord& record);
    void beginBlock(std::string& out);
    void endBlock(std::string& out);
    void appendHead(const ZlRecord& record, std::uint32_t source);
    void count(const ZlRecord& record);

    const std::string _title;
    ZlTimeWriter _times{ZlTimeWriter::Form::Utc};
    std::map<Source, std::uint32_t, SourceLess> _sources;
    bool _isInBlock = false;
    std::size_t _blockSize = 0;
    // The present record; kept for its memory.
    std::string _line;
    std::string _text;
    // One more for events whose level is not known.
    std::array<std::uint64_t, LgTypes::NUM_LEVELS + 1> _eventsByLevel{};
    std::array<std::uint64_t, KINDS> _recordsByKind{};
    std::uint64_t _lost = 0;
    ZlRuns _runs;
};

} // namespace Zu

#endif

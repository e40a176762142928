/// @file
/// How far logs were shipped, in a file that survives.

#ifndef ZU_ZULOG_ZLCURSOR_H
#define ZU_ZULOG_ZLCURSOR_H

#include "zlFile.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Zu
{

/// A place in a file that may be renamed and compressed later.
struct ZlPlace
{
    /// Which file it was; a compressed one is another file.
    ZlFile::Identity _file;
    /// So many bytes at the beginning of the file, uncompressed, have this hash.
    std::uint64_t _headSize = 0;
    std::uint64_t _head = 0;
    /// Behind the last record that was shipped, uncompressed.
    std::uint64_t _offset = 0;
    /// The hash of the bytes in front of it, LARGEST_LAST of them, or all if there are fewer: what
    /// was written anew may have the same head. Nothing if it is not known.
    std::optional<std::uint64_t> _last;

    /// The heads of files that are compared, and what is in front of places.
    static constexpr std::uint64_t LARGEST_HEAD = 4096;
    static constexpr std::uint64_t LARGEST_LAST = 4096;

    bool operator==(const ZlPlace& other) const = default;
};

/// How far each log was shipped to one destination.
struct ZlCursor
{
    std::string _destination;
    /// By the absolute name of the log.
    std::map<std::string, ZlPlace> _places;

    bool operator==(const ZlCursor& other) const = default;
};

/// The cursor as text, which ends with a checksum of the rest:
///
///     zulog cursor 2
///     to relp://host:20514
///     at 2049 131 4096 00c0ffee00c0ffee 81920 0ddba11fadedcafe /var/log/events.log
///     sum 0123456789abcdef
///
/// The numbers of a place are those of ZlPlace in their order; a hash that is not known is "-".
/// Line feeds and backslashes in names are "\n" and "\\".
std::string zlWriteCursor(const ZlCursor& cursor);

/// Reads the text, also of version 1, which has no hash of what is in front of a place. Raises
/// ZlError, with the name of the file, for a text of another program, of a newer version, and for
/// one that was changed or cut off. What is taken of version 2 is written as the same bytes.
ZlCursor zlReadCursor(std::string_view text, const std::string& name);

/// FNV-1a with 64 bits (Fowler, Noll, Vo 1991): tells accidents, not attackers.
std::uint64_t zlHashOf(std::string_view bytes);

/// The file of a cursor, which this process alone uses as long as the object lives: a file with
/// ".lock" behind its name is locked, and stays. Not thread-safe.
class ZlCursorFile
{
public:
    /// Raises ZlError if it can't be locked, also because another process has it.
    explicit ZlCursorFile(const std::string& name);
    ~ZlCursorFile();
    ZlCursorFile(const ZlCursorFile&) = delete;
    ZlCursorFile& operator=(const ZlCursorFile&) = delete;

    /// What is in the file; nothing if there is none. Raises ZlError for a file that can't be read,
    /// or is larger than 1 MiB, which no cursor is.
    std::optional<std::string> read() const;

    /// Replaces it so that after a crash, also of the machine, either text is there as a whole.
    /// Takes the name with ".new" behind it in between. Raises ZlError.
    void replace(std::string_view text);

private:
    static constexpr std::size_t LARGEST = std::size_t{1} << 20;

    const std::string _name;
    std::intptr_t _lock = -1;
};

} // namespace Zu

#endif

/// @file
/// Reads one log from a place on, across its rotations.

#ifndef ZU_ZULOG_ZLTAIL_H
#define ZU_ZULOG_ZLTAIL_H

#include "zlCursor.h"
#include "zlFile.h"
#include "zlReader.h"
#include "zlReports.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Zu
{

/// The records of one log with their places, through the files that it was rotated to, up to the
/// present file and along with it. A file is known again by its identity, its first bytes, and
/// those in front of the place; when it was compressed, by the bytes alone. Not thread-safe.
class ZlTail
{
public:
    struct Start
    {
        /// Behind this place; what was in front of it is not delivered again. If its file is not
        /// there any more, that is reported, and all that is there follows.
        std::optional<ZlPlace> _place;
        /// Without a place: whether the rotated files come first.
        bool _areRotatedAdded = false;
    };

    ZlTail(std::string name, const Start& start, ZlReports& reports, ZlReader::Options options);
    ~ZlTail();

    const std::string& getName() const
    {
        return _name;
    }

    /// Looks whether the file was rotated or emptied, be it that it is longer again than it was,
    /// which its last bytes show. Places from before are not completed any
    /// more.
    void look();

    /// Makes the next record, unless the last one was not taken. False at the present end.
    bool next();

    /// Valid until the call of next() after take().
    const ZlRecord& getRecord() const;

    /// Of the record: what has none follows the one in front of it.
    std::int64_t getTime();

    /// The place behind the record, without its last hash, which takes longer than a record.
    ZlPlace getPlace();

    /// Adds the last hash to a place of this log, for a cursor that is written. Of a file that is
    /// not read any more, only for its end.
    void complete(ZlPlace& place) const;

    void take()
    {
        _hasRecord = false;
    }

    /// An event that may be continued comes with the next call of next(); with `isAll` also a line
    /// without its end.
    void release(bool isAll);

private:
    class Kept;
    class KeepingSource;
    using Files = std::vector<std::pair<std::string, ZlFile::Identity>>;

    Files findFiles() const;
    bool openNext();
    bool choose(const Files& files, std::size_t& index, std::uint64_t& offset);
    bool wasEmptied() const;
    void reportMissing();
    bool hasPlace(const std::string& file) const;
    std::size_t locate(const Files& files) const;
    bool open(const std::string& file, const ZlFile::Identity& identity, std::uint64_t offset);
    void leave();

    const std::string _name;
    ZlReports& _reports;
    const ZlReader::Options _options;
    const bool _areRotatedAdded;
    // Behind which the next file is searched for; and whether more of that file itself is.
    std::optional<ZlPlace> _place;
    bool _isResumed;
    // The end of the last file that was left.
    std::optional<ZlPlace> _left;
    bool _isMissingReported = false;
    bool _isFailureReported = false;

    // What the reader's source adds to.
    std::unique_ptr<Kept> _kept;
    std::unique_ptr<ZlReader> _reader;
    // The same file, to look at; none for what grows no more.
    std::unique_ptr<ZlFile> _file;
    ZlFile::Identity _identity;
    std::string _head;
    // Of the head of the last place.
    std::size_t _hashedSize = 0;
    std::uint64_t _hash = 0;
    // Records up to here were delivered before.
    std::uint64_t _known = 0;
    bool _isPresent = false;
    bool _isSuperseded = false;
    bool _isDrained = false;
    bool _hasRecord = false;
    std::int64_t _time = std::numeric_limits<std::int64_t>::min();
};

} // namespace Zu

#endif

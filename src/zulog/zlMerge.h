/// @file
/// Several logs as one.

#ifndef ZU_ZULOG_ZLMERGE_H
#define ZU_ZULOG_ZLMERGE_H

#include "zlReader.h"
#include "zlRecord.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace Zu
{

/// Merges the records of several logs by time. The records of one log stay in their order: one
/// whose time is not known, or goes back, follows the one in front of it. Of records of the same
/// time, those of the log that was named first come first.
///
/// Cost: the logarithm of the number of logs for each record. Not thread-safe.
class ZlMerge
{
public:
    explicit ZlMerge(std::vector<std::unique_ptr<ZlReader>> readers);

    /// The next record, valid until the next call; null at the end.
    const ZlRecord* next();

    /// All lines so far, skipped and unreadable ones among them.
    std::uint64_t getLineCount() const;

private:
    struct Head
    {
        std::int64_t _time;
        std::size_t _reader;
    };
    static bool isLater(const Head& one, const Head& other);
    void advance(std::size_t reader, std::int64_t after);

    std::vector<std::unique_ptr<ZlReader>> _readers;
    std::vector<Head> _heads;
    // Which reader the last record is of, and its time; none before the first one.
    bool _isStarted = false;
    bool _hasLast = false;
    Head _last{};
};

} // namespace Zu

#endif

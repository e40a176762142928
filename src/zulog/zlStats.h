/// @file
/// What is in a log, in numbers.

#ifndef ZU_ZULOG_ZLSTATS_H
#define ZU_ZULOG_ZLSTATS_H

#include "../base/lgTypes.h"
#include "zlRecord.h"
#include "zlRuns.h"
#include "zlSlices.h"
#include "zlTime.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Zu
{

/// How the figures are shown as text.
struct ZlStatsOptions
{
    ZlTimeWriter::Form _times = ZlTimeWriter::Form::Local;
    /// The most rows of each list; the rest is summed up in one row.
    std::size_t _most = 10;
    /// The columns of the terminal.
    std::size_t _width = 80;
    /// Whether bars consist of block characters, in UTF-8, instead of "#".
    bool _hasBlocks = false;
};

/// Counts the records of one or more logs. What a record does not say counts as unknown.
///
/// Records come as ZlMerge delivers them, in the order of time; those of a log in the order in
/// which they stand there. If times are out of order, only gaps and the busiest second may be
/// wrong.
///
/// Memory is bounded, whatever the size of the log: beyond MOST_GROUPS and MOST_THREADS, events
/// count among others; beyond 100,000 minutes of events, slices of time get longer; of losses,
/// starts and recoveries the first MOST_ENTRIES are listed, and all are counted. Not thread-safe.
class ZlStats
{
public:
    static constexpr std::size_t MOST_GROUPS = 65536;
    /// The longest name of a group that is counted by itself, in bytes.
    static constexpr std::size_t LONGEST_GROUP = 256;
    static constexpr std::size_t MOST_THREADS = 10000;
    static constexpr std::size_t MOST_ENTRIES = 1000;
    static constexpr std::size_t MOST_GAPS = 100;
    /// The most rows of a histogram.
    static constexpr std::int64_t MOST_ROWS = 20;

    ZlStats();

    void add(const ZlRecord& record);

    /// How many lines were read.
    void setLineCount(std::uint64_t lines)
    {
        _lines = lines;
    }

    /// Appends the figures for people.
    void appendText(std::string& out, const ZlStatsOptions& options) const;

    /// Appends one JSON object, in one line; times are in UTC.
    void appendJson(std::string& out) const;

private:
    class Text;
    class Json;

    struct Thread
    {
        std::string _host;
        std::optional<std::uint32_t> _process;
        std::optional<std::uint32_t> _thread;
        std::uint64_t _events = 0;
    };

    // A silence between two events.
    struct Gap
    {
        std::int64_t _begin;
        std::int64_t _length;
    };

    struct Loss
    {
        std::optional<std::int64_t> _wall;
        bool _isOverflow;
        std::uint64_t _count;
        std::string _host;
        std::optional<std::uint32_t> _process;
    };

    struct Start
    {
        std::optional<std::int64_t> _wall;
        std::string _host;
        std::optional<std::uint32_t> _process;
        std::string _file;
        std::uint64_t _line;
    };

    struct Recovery
    {
        std::optional<std::int64_t> _wall;
        std::string _host;
        std::optional<std::uint32_t> _process;
        std::optional<std::int64_t> _processStart;
        std::uint64_t _events = 0;
        bool _isComplete = false;
    };

    struct Rate
    {
        std::uint64_t _events;
        std::int64_t _second;
    };

    void addEvent(const ZlRecord& record);
    void addGroup(std::string_view group);
    void addThread(const ZlRecord& record);
    void addTime(std::int64_t wall);
    void addGap(std::int64_t begin, std::int64_t length);
    void addSecond(std::int64_t wall);
    void addLoss(const ZlRecord& record);
    void addStart(const ZlRecord& record);
    void beginRecovery(const ZlRecord& record);
    void endRecovery(const ZlRecord& record);
    std::optional<Rate> getBusiest() const;
    std::vector<const Thread*> getThreads() const;
    std::vector<std::pair<std::string, std::uint64_t>> getGroups() const;

    // Finds by views, too.
    struct Hash
    {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const
        {
            return std::hash<std::string_view>()(text);
        }
    };

    std::uint64_t _lines = 0;
    std::uint64_t _unreadable = 0;
    std::uint64_t _events = 0;
    std::uint64_t _undated = 0;
    // The last one is unknown.
    std::array<std::uint64_t, LgTypes::NUM_LEVELS + 1> _levels = {};
    std::unordered_map<std::string, std::uint64_t, Hash, std::equal_to<>> _groups;
    std::uint64_t _unknownGroups = 0;
    std::uint64_t _otherGroups = 0;
    std::unordered_map<std::string, Thread> _threads;
    Thread* _lastThread = nullptr;
    std::uint64_t _otherThreads = 0;

    std::optional<std::int64_t> _first;
    std::int64_t _last = 0;
    ZlSlices _slices;
    ZlSlices _minutes;
    // The latest seconds, and the busiest of those before.
    std::map<std::int64_t, std::uint64_t> _seconds;
    std::int64_t _second = 0;
    std::uint64_t* _secondCount = nullptr;
    std::optional<Rate> _busiest;
    // The shortest first.
    std::vector<Gap> _gaps;

    std::uint64_t _lost = 0;
    std::uint64_t _notWritten = 0;
    std::uint64_t _lossCount = 0;
    std::vector<Loss> _losses;

    ZlRuns _runs;
    std::vector<Start> _starts;

    std::uint64_t _recoveryCount = 0;
    std::uint64_t _recovered = 0;
    std::vector<Recovery> _recoveries;
    // Those that have begun, by their log, as indices; beyond the bound, there is none.
    std::map<std::string, std::size_t, std::less<>> _recovering;
};

} // namespace Zu

#endif

/// @file
/// Which processes have started and ended in a log.

#ifndef ZU_ZULOG_ZLRUNS_H
#define ZU_ZULOG_ZLRUNS_H

#include "zlRecord.h"

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Zu
{

/// Pairs the marks of starts, ends and recoveries. A process counts once, although it has a mark in
/// each of its files, and in each that was begun by a rotation.
///
/// Marks come as ZlMerge delivers them. Of the processes that were seen, the latest 10,000 are
/// known; one that is forgotten keeps the life that it has. Not thread-safe.
class ZlRuns
{
public:
    /// Ignores records that are no such marks. Returns whether it is the first mark of a start.
    bool add(const ZlRecord& record);

    std::uint64_t getStarted() const
    {
        return _started;
    }

    /// Those that have a mark of their end.
    std::uint64_t getStopped() const
    {
        return _stopped;
    }

    /// Those that have none, but after whom another process has started in the same log, or whose
    /// events had to be recovered.
    std::uint64_t getUnordered() const
    {
        return _unordered;
    }

    /// Those of which nothing says that they have ended.
    std::uint64_t getOpen() const
    {
        return _open;
    }

private:
    // The life of a process, as its marks show it.
    enum class Life
    {
        Open,
        // Another one has started in the same log.
        Overtaken,
        Recovered,
        Stopped
    };

    struct Run
    {
        Life _life;
        std::string _log;
    };

    bool addStart(const ZlRecord& record);
    void addStop(const ZlRecord& record);
    void addRecovery(const ZlRecord& record);
    bool takeUnended(const std::string& log);
    Run* find(const std::string& id);
    void keep(const std::string& id, Life life, const std::string& log);
    void open(const std::string& id, Run& run, const std::string& log);
    void end(const std::string& id, Run& run, Life life);
    void overtake(const std::string& log);

    std::uint64_t _started = 0;
    std::uint64_t _stopped = 0;
    std::uint64_t _unordered = 0;
    std::uint64_t _open = 0;
    // By what identifies a process, and, without that, by the log.
    std::unordered_map<std::string, Run> _runs;
    std::deque<std::string> _order;
    // Those that are open, by their log.
    std::map<std::string, std::vector<std::string>> _openOf;
    // How many marks of known processes in a log have no mark of an end behind them.
    std::map<std::string, std::uint64_t> _unendedOf;
};

/// The log that a file is of, whether or not it was rotated: without ".1" or ".1.gz".
std::string_view zlLogOf(std::string_view file);

} // namespace Zu

#endif

/// @file
/// The command follow: shows lines as they are written.

#ifndef ZU_ZULOG_ZLFOLLOW_H
#define ZU_ZULOG_ZLFOLLOW_H

#include "zlFile.h"
#include "zlInputs.h"
#include "zlReader.h"
#include "zlShow.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace Zu
{

/// Follows log files while they grow, across truncation and rotation, and files that appear later.
/// Does not wait itself: the caller calls look() when something may have changed.
///
/// Not thread-safe.
class ZlFollower
{
public:
    /// Of what is in the files already, shows the last `lines` records that are selected.
    ZlFollower(const ZlShowOptions& options, std::size_t lines, ZlOutput& output,
               ZlReports& reports);
    ~ZlFollower();

    /// Shows what was written since the last call, merged by time. True if there was something,
    /// also if it is not selected, or may still be continued.
    bool look();

    /// Shows events that may still be continued, because no more has come for a while.
    void release();

    /// The directories in which something may happen.
    std::vector<std::string> getDirectories() const;

private:
    class Log;
    void findLogs(ZlListing& listing);
    bool show();
    std::uint64_t countBytes() const;

    const ZlShowOptions _options;
    ZlReports& _reports;
    ZlPrinter _printer;
    const std::shared_ptr<ZlOpenFiles> _openFiles = zlMakeOpenFiles();
    ZlLogWords _words;
    std::set<std::string> _names;
    std::vector<std::unique_ptr<Log>> _logs;
};

/// Reports changes in directories. Not thread-safe.
class ZlWatch
{
public:
    ZlWatch();
    ~ZlWatch();
    ZlWatch(const ZlWatch&) = delete;
    ZlWatch& operator=(const ZlWatch&) = delete;

    /// From now on these are watched as well, also when they are removed or renamed and made again.
    /// False if one can't be watched, and has to be looked at from time to time.
    bool add(const std::vector<std::string>& directories);

    /// Waits until something may have changed, or the time is over; without a limit if that is
    /// negative. False if nothing has changed.
    bool wait(int milliseconds);

private:
    class Impl;
    std::unique_ptr<Impl> _impl;
};

/// Follows the files that the options name until `isStopped` is set.
void zlFollow(const ZlShowOptions& options, std::size_t lines, ZlOutput& output, ZlReports& reports,
              const std::atomic<bool>& isStopped);

} // namespace Zu

#endif

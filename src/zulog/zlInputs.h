/// @file
/// Which files belong to a log.

#ifndef ZU_ZULOG_ZLINPUTS_H
#define ZU_ZULOG_ZLINPUTS_H

#include "zlReports.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace Zu
{

/// The files of one log, in the order in which they were written.
using ZlLog = std::vector<std::string>;

/// The logs that words of the command line name; all names are in UTF-8.
///
/// - A file is a log of its own. With `areRotatedAdded`, the files that it was rotated to precede
///   it: "events.log.2.gz", "events.log.1", "events.log". If a file is there compressed and not,
///   only the latter counts.
/// - A directory has the logs of all its files "*.log", with the files that they were rotated to,
///   be it by numbers or by dates, as "events.log-20261123.gz"; the latter are logs of their own.
///   Directories in it are not looked into. One without a log is reported.
/// - "-" is standard input.
///
/// Logs come in the order of the words, those of a directory sorted by name. A file that is named
/// several times, whatever its names, is one of the first log alone. A directory that can't be read
/// is reported, and omitted.
std::vector<ZlLog> zlFindLogs(const std::vector<std::string>& words, bool areRotatedAdded,
                              ZlReports& reports);

/// What is in directories, each of which is read once, at the first question about it: for a look
/// at many logs. Not thread-safe.
class ZlListing
{
public:
    /// The files "*.log" of a directory, without those that they were rotated to. None if it can't
    /// be read.
    std::vector<std::string> findPresentLogs(const std::string& directory);

    /// The files that a log was rotated to, the one with the highest number first, without the file
    /// itself.
    ZlLog findRotated(const std::string& file);

private:
    const std::set<std::string>& namesIn(const std::string& directory);
    std::map<std::string, std::set<std::string>> _names;
};

/// Words of the command line as logs that come and go: files, which need not be there yet, and
/// directories, which have the logs of their files "*.log" at the moment. What was a directory once
/// stays one, since it may be removed and made again. Not thread-safe.
class ZlLogWords
{
public:
    explicit ZlLogWords(std::vector<std::string> words);

    /// The names of the present files of all logs, in the order of the words; those of a directory
    /// sorted. A name may come several times.
    std::vector<std::string> findLogs(ZlListing& listing);

    /// The directories in which something may happen, sorted, each once.
    std::vector<std::string> getDirectories() const;

private:
    const std::vector<std::string> _words;
    std::set<std::string> _directories;
};

/// Whether a file is compressed, by its name.
bool zlIsNamedCompressed(const std::string& file);

} // namespace Zu

#endif

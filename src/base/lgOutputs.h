/// @file
/// The open files of the logger. Internal to the library.

#ifndef ZU_BASE_LGOUTPUTS_H
#define ZU_BASE_LGOUTPUTS_H

#include "lgSetup.h"
#include "lgTypes.h"

#include <functional>
#include <iosfwd>
#include <memory>

namespace Zu
{

/// The files that the levels write to. Levels that name the same file share one stream.
///
/// Thread-safety: opening and closing belong to single-threaded phases.
class LgOutputs
{
public:
    /// Opens a file by its name and returns its stream, or null.
    using Opener = std::function<std::unique_ptr<std::ostream>(const char* name, bool appends)>;

    /// Opens the files that the set-up names, in the order of the levels. Of the levels that share
    /// a file, the first one decides whether it is appended to. `opener` is asked first if it is
    /// set; what it returns null for is opened here. A file that can't be opened still has a
    /// stream, in a failed state. `opened` is called once for each stream. If it raises, the files
    /// opened so far stay open.
    void open(const LgSetup& setup, const Opener& opener,
              const std::function<void(std::ostream&)>& opened);

    /// The stream of a level; null if it has none.
    std::ostream* get(LgTypes::Level level) const
    {
        return _streams[level].get();
    }

    /// Whether two levels write to one stream.
    bool areShared(LgTypes::Level one, LgTypes::Level other) const
    {
        return _streams[one] && _streams[one] == _streams[other];
    }

    /// Closes the stream of a level, for all levels that share it.
    void close(LgTypes::Level level);

    /// Closes all streams.
    void closeAll();

private:
    std::shared_ptr<std::ostream> openedBefore(const LgSetup& setup, LgTypes::Level level) const;

    std::shared_ptr<std::ostream> _streams[LgTypes::NUM_LEVELS];
};

} // namespace Zu

#endif

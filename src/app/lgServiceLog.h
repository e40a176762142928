/// @file
/// A log file of a program with a log service. Internal to the application kit.

#ifndef ZU_APP_LGSERVICELOG_H
#define ZU_APP_LGSERVICELOG_H

#include "appApi.h"
#include "lgServiceFile.h"
#include "lgServiceLine.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Zu
{

/// A file that the logger writes to: never emptied, opened when the first line or the service
/// comes, dated by a banner and by the origin of its clock, rotated, and tried again while it
/// fails. The logger owns it as the stream of a level. Text that is inserted into the stream is
/// written at once; the service's own thread hands over batches.
///
/// What waits while the file fails is bounded; beyond that, lines are dropped and counted.
///
/// Thread-safety: one thread at a time.
class LgServiceLog : public std::ostream
{
public:
    using Clock = std::chrono::steady_clock;

    /// What the pauses between tries are measured with; a test has a clock of its own.
    static Clock::time_point (*_now)();

    /// What all logs of a process have in common.
    struct Settings
    {
        LgServiceFile::Rotation _rotation;
        std::uint64_t _pendingLimit = 1ULL << 20;
        /// Whether a file is forced to the disk before it is closed.
        bool _isStored = false;
        /// Whether the logger's banner is written to a file that was opened. Not by a program that
        /// writes for others, and whose logger is not started.
        bool _hasBanner = true;
        /// Whether lines are dated again when another process has written to the file. For lines
        /// that do not say themselves whose they are.
        bool _isDatedAgain = false;
    };

    /// What is known of a line that is handed over.
    struct Line
    {
        std::uint32_t _length;
        /// Whether it counts if it is never written.
        bool _isEvent;
    };

    /// What waits because the file fails.
    struct Waiting
    {
        std::string _text;
        std::vector<Line> _lines;
        /// How many events were dropped, and since when: UTC, in nanoseconds since 1970.
        std::uint64_t _dropped;
        std::int64_t _since;
    };

    /// A part of a file that a batch is about to be written to.
    struct Part
    {
        LgServiceFile::Identity _identity;
        std::uint64_t _offset;
    };

    explicit LgServiceLog(std::string path);
    ~LgServiceLog() override;

    /// For the logger: makes the log of a level. Never null.
    static std::unique_ptr<std::ostream> open(const char* name, bool appends);

    /// The settings of all logs; for phases with a single thread.
    static void setSettings(const Settings& settings);

    /// Whether a file was rotated since the last call. Any thread may ask.
    static bool takeRotated()
    {
        return _hasRotated.exchange(false);
    }

    /// Whether it is what the stream writes to: an application can put a buffer of its own between,
    /// which then gets the lines one by one.
    bool isDirect() const;

    /// Sets what the file is dated with; null: by the banner alone.
    void setOrigin(const LgLineOrigin* origin);

    /// Has the origin written again with the next line.
    void dateAgain()
    {
        _isOriginDue = true;
    }

    /// Opens the file, or opens it anew if its name leads elsewhere, rotates it if that is due, and
    /// collects in getPrefix() what has to stand before the next lines. A failure is reported once
    /// on standard error. `size` is how much is about to be written, in so many lines; from here on
    /// write() or wait() allocates nothing. Returns whether the file can be written to; not while
    /// it fails and its pause is not over.
    bool prepare(std::size_t size, std::size_t lines = 0);

    /// The text that begins the next write(): dates, what waited.
    const std::string& getPrefix() const
    {
        return _prefix;
    }

    /// Where the next write() begins; none for what is not a plain file.
    std::optional<Part> getPart() const;

    /// Writes the prefix and the lines, after prepare() has returned true. What the file does not
    /// take waits.
    void write(std::string_view text, const std::vector<Line>& lines);

    /// Keeps lines for later, after prepare() has returned false.
    void wait(std::string_view text, const std::vector<Line>& lines);

    /// Whether something waits whose next try is due.
    bool isTryDue() const;

    /// Makes a try due if it fails. For the end of the service.
    void tryNow()
    {
        _nextTry = Clock::time_point::min();
    }

    /// The lines that wait because the file fails; the next write begins with them, behind the
    /// dates.
    std::string_view getWaiting() const
    {
        return _waiting;
    }

    /// How many events were dropped because more than these would have waited, and since when the
    /// file fails: UTC, in nanoseconds since 1970.
    std::uint64_t getDropped() const
    {
        return _dropped;
    }

    std::int64_t getFailingSince() const
    {
        return _failingSince.value_or(0);
    }

    /// Changes when the lines that wait do otherwise than by further ones at the end.
    std::uint64_t getChanges() const
    {
        return _changes;
    }

    /// How many bytes of getPrefix() are the dates.
    std::size_t getDatesSize() const
    {
        return _datesSize;
    }

    /// Takes what waits out of the log: it is kept elsewhere.
    Waiting takeWaiting();

    /// Has it back; it is tried with the next batch.
    void setWaiting(Waiting waiting);

    /// Drops what waits and counts it; for the end of the service.
    void giveUp();

    /// Closes the file; the next line opens it by its name.
    void reopen();

    /// Remembers whether the file could be forced to the disk, and reports the platform's error on
    /// standard error if it is the first of several.
    void noteStoring(bool isStored, int error);

    /// Whether a file was closed that could not be forced to the disk; true once each time.
    bool takeStoringLost()
    {
        return std::exchange(_isStoringLost, false);
    }

    bool isFailing() const
    {
        return _failingSince.has_value();
    }

    /// The bytes that wait because the file fails.
    std::size_t getPending() const
    {
        return _waiting.size();
    }

    /// How often the file was rotated.
    std::uint64_t getRotations() const
    {
        return _rotations;
    }

    /// The line that says how many events are not in a file, since when it failed.
    static std::string notWrittenLine(std::uint64_t count, std::int64_t since);

    LgServiceFile& file()
    {
        return *_file;
    }

    const LgServiceFile& getFile() const
    {
        return *_file;
    }

    /// Where its next line goes.
    const std::string& getPath() const
    {
        return _file->getPath();
    }

    /// The name that the logger gave it.
    const std::string& getGivenPath() const
    {
        return _givenPath;
    }

    /// Gives it another file, and the present settings. What waits goes there, too.
    void setPath(const std::string& path);

private:
    class Buffer;

    bool isLookDue();
    bool isUsable(std::size_t size);
    void lookAtEnd();
    bool open();
    void insert(std::string_view text);
    void openAnew();
    void storeBeforeClose();
    void collectPrefix();
    std::string dates() const;
    void keepFrom(std::size_t written, std::string_view text);
    void enforceLimit(std::size_t before);
    void fail(int error);
    void work();

    static std::atomic<bool> _hasRotated;

    const std::string _givenPath;
    std::unique_ptr<LgServiceFile> _file;
    std::unique_ptr<Buffer> _buffer;
    std::optional<LgLineOrigin> _origin;
    // What begins the next write: dates, of this size, and what waits, whose lines these are.
    std::string _prefix;
    std::size_t _datesSize = 0;
    std::string _waiting;
    std::vector<Line> _waitingLines;
    std::uint64_t _changes = 0;
    // Whether the file must begin, or go on, with the banner or the origin.
    bool _isBannerDue = true;
    bool _isOriginDue = true;
    bool _isLineCut = false;
    bool _isRemovalReported = false;
    bool _isStoringReported = false;
    bool _isStoringLost = false;
    bool _isInserting = false;
    Clock::time_point _nextLook;
    std::optional<std::int64_t> _failingSince;
    std::uint64_t _dropped = 0;
    std::uint64_t _rotations = 0;
    Clock::time_point _nextTry;
    Clock::duration _pause{};
    // After a rotation that failed.
    Clock::time_point _nextRotation;
};

} // namespace Zu

#endif

/// @file
/// The set-up of the log service.

#ifndef ZU_APP_LGSERVICEOPTIONS_H
#define ZU_APP_LGSERVICEOPTIONS_H

#include "appApi.h"

#include <chrono>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Zu
{

/// What can be set for the log service: plain values with their defaults. Each has a name, such as
/// "rotate-size", and a variable of the environment, such as `ZU_LOG_SERVICE_ROTATE_SIZE`.
/// docs/log-service.md lists all with the texts that they take.
///
/// Three parties have a say, and the later one prevails: the program, by assigning to the fields;
/// the operator, by the environment, which readEnvironment() reads; and the command line, by what
/// the program sets after that.
///
/// No text that is read or written depends on a locale. An object belongs to one thread at a time.
struct LgServiceOptions
{
    /// How the time at the beginning of a line is written.
    enum class LineForm : std::int32_t
    {
        /// In ticks of the counter since the start of the logger.
        Ticks,
        /// The wall clock with its distance from UTC.
        Local,
        /// The wall clock in UTC.
        Utc
    };

    /// Of the log files; made if it is missing, but not the directory that it is in. A relative one
    /// counts from the current directory at the start of the service. Empty for the logger's own:
    /// `B7Q_TEST_DIR`, or the directory for temporary files. Files that the environment names for a
    /// level stay where they are.
    std::string _directory;
    /// The file of all levels but Tracing and Profiling, in the log directory.
    std::string _eventsName = "events.log";
    /// The file of the level Profiling, in the log directory.
    std::string _profilesName = "prof.log";
    /// Whether file names contain the process id: "events.4711.log".
    bool _processInNames = false;

    /// How lines begin.
    LineForm _lineForm = LineForm::Ticks;
    /// Whether texts are written as they are, so that a line feed in a text begins a new line.
    bool _rawText = false;
    /// Whether the text of each statement is followed by the file and the line of the statement, as
    /// in " [orders.cpp:17]".
    bool _sourceLocation = false;

    /// The bytes at which a file is rotated; 0 for never.
    std::uint64_t _rotateSize = 0;
    /// The minute of the local day at which files are rotated, 0 to 1439; -1 for none.
    int _rotateMinute = -1;
    /// How many rotated files are kept of each file, 1 to 1000.
    int _keptFiles = 10;
    /// Whether rotated files are compressed. Takes a compressor, see lgServiceCompressor.h.
    bool _compress = false;
    /// Whether SIGHUP has the files opened again. There is no such signal on Windows.
    bool _reopenOnHangup = false;

    /// The entries of each queue, 64 to 1,048,576; rounded up to a power of two.
    std::uint32_t _entries = 4096;
    /// The characters of each queue, 65,536 to 67,108,864; rounded up to a power of two. The
    /// smallest queue has room for the longest event.
    std::uint32_t _characters = 262144;
    /// The bytes of all queues of the process; those beyond it have 1,024 entries and 32,768
    /// characters.
    std::uint64_t _memoryLimit = std::uint64_t{256} << 20;

    /// The levels whose events wait for room while their queue is full, instead of being lost and
    /// counted: a bit for each, such as `1U << LgTypes::Warning`. Nobody waits while a file fails,
    /// in the thread that writes, or after a fork.
    std::uint32_t _waitLevels = 0;
    /// Statements of this level, as a number of LgTypes::Level, and of the more severe ones return
    /// when their event is handed to the system; -1 for none.
    int _flushLevel = -1;
    /// How long a statement waits at most for either, 0 to one hour. After a wait in vain no
    /// statement waits until something was written.
    std::chrono::milliseconds _waitLimit{1000};

    /// How long the end of the process waits at most until all is written, 0 to one hour.
    std::chrono::milliseconds _endLimit{5000};
    /// Whether a crash waits until what was logged is written, at most a second.
    bool _drainOnFatalSignals = false;
    /// Whether LgService::flush() also forces the files to the disk.
    bool _sync = false;

    /// Where the queues are kept that outlive the process; empty for shared memory (Linux), or the
    /// directory for temporary files (Windows).
    std::string _mappingDirectory;
    /// How many such sets of queues nobody may have recovered before the oldest is discarded, 1 to
    /// 10,000.
    int _keptMappings = 100;
    /// After how many days such a set is discarded, 1 to 3650.
    int _keptMappingDays = 30;
    /// The bytes of lines that wait for a file which fails; the lines beyond are only counted.
    std::uint64_t _pendingLimit = std::uint64_t{1} << 20;

    /// Whether processes of the same user may ask how the service is doing, and change the levels
    /// of groups, as `zulog ps` and `zulog level` do.
    bool _control = true;

    /// The defaults, replaced by what the environment has.
    ZU_APP_API static LgServiceOptions fromEnvironment();

    /// Replaces each value whose variable is set and can be used. A variable that can't be used
    /// leaves its value, and is one line on standard error, which names it, its text and what is
    /// expected:
    ///
    ///     ZU_LOG_SERVICE_KEPT_FILES: "0" is out of range: expected a whole number from 1 to 1000
    ///
    /// So is a variable that begins with `ZU_LOG_SERVICE_`, in any letter case, and is none of
    /// those that are known, which have capital letters on Windows, too:
    ///
    ///     ZU_LOG_SERVICE_ROTATESIZE: there is no such variable; the nearest is
    ///     ZU_LOG_SERVICE_ROTATE_SIZE
    ///
    /// (in one line). The environment must not change meanwhile.
    ZU_APP_API void readEnvironment();

    /// The same with the entries of another environment, "NAME=value", of which the first of a name
    /// counts; null is behind the last, and stands for none at all. The lines go to `messages`.
    ZU_APP_API void readEnvironment(const char* const* entries, std::ostream& messages);

    /// Sets the option of this name, for example "rotate-size", from a text as the variables have
    /// it, for example "64M". Returns false if there is no such option or the text can't be used:
    /// then `error` is the line above, with the option's name at its beginning and without a line
    /// end, and no value has changed. Otherwise `error` stays as it is.
    ZU_APP_API bool set(std::string_view name, std::string_view value, std::string& error);

    /// Brings what the program assigned into the ranges above: rounds up what has to be a power of
    /// two, and puts the default in the place of each value that can't be used, with a line as
    /// above to `messages` for each. So are the two names of files if they are the same one, in any
    /// letter case.
    ZU_APP_API void check(std::ostream& messages);

    /// Writes one line for each option, with texts in quotation marks, and control characters in
    /// texts as in "\x0a":
    ///
    ///     rotate-size: 67108864 (ZU_LOG_SERVICE_ROTATE_SIZE)
    ///
    /// A value without its quotation marks is a text that set() takes.
    ZU_APP_API void display(std::ostream& os) const;

private:
    // The entries of this process's environment; null if there are none.
    static const char* const* processEntries();
};

} // namespace Zu

#endif

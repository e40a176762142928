/// @file
/// A log file that is kept for long: appended to, rotated, opened again. Internal to the
/// application kit.

#ifndef ZU_APP_LGSERVICEFILE_H
#define ZU_APP_LGSERVICEFILE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Zu
{

/// Writes behind whatever is in the file, and never empties or shortens it. One thread uses an
/// object. Nothing here waits for other processes: where several share a file, each of them holds
/// their common lock around isReplaced(), isTruncated(), isRotationDue(), rotate(), open() and
/// write().
///
/// The name may also lead to a pipe, a terminal or a device such as /dev/null: these are written
/// to, have the size 0, can't be read back, and are never rotated. The thread blocks the signals of
/// a pipe without a reader and of a file that is too large, so that they are errors like any other.
///
/// Errors are the platform's codes, with 0 for none.
class LgServiceFile
{
public:
    /// What a file is known by, whatever its name: device and inode, on Windows the serial number
    /// of the volume and the index of the file.
    struct Identity
    {
        std::uint64_t _volume = 0;
        std::uint64_t _number = 0;
        bool operator==(const Identity& other) const = default;
    };

    /// When files are put away, and how many of them are kept.
    struct Rotation
    {
        /// In bytes; 0 is not by size.
        std::uint64_t _size = 0;
        /// In local time, 0 to 1439; any other value is not by time.
        int _minuteOfDay = -1;
        /// Without the file itself. With 0 or less, a file that is put away is removed.
        int _kept = 10;
    };

    /// How much the system took, and the error that stopped it.
    struct Written
    {
        std::size_t _size = 0;
        int _error = 0;
    };

    /// Opens nothing yet.
    LgServiceFile(std::string path, const Rotation& rotation);
    LgServiceFile(const LgServiceFile&) = delete;
    LgServiceFile& operator=(const LgServiceFile&) = delete;
    ~LgServiceFile();

    const std::string& getPath() const
    {
        return _path;
    }

    bool isOpen() const;

    /// Opens the file for appending if it is not open, and makes it if it is missing. Returns the
    /// error. In places that others can write to, only a file of the user's own is opened, see
    /// osOutputFile.h. It may turn out to be one that can only be written. A pipe without a reader
    /// is an error.
    int open();

    void close();

    /// Of the open file; nothing if it is closed, or if the platform knows it by its name alone.
    std::optional<Identity> getIdentity() const;

    /// Of the open file, asked of the system; 0 if it is closed or no plain file.
    std::uint64_t getSize() const;

    /// Appends the text. Goes on where the system took only a part, and stops at the first error.
    Written write(std::string_view text);

    /// Whether the name leads to another file than the open one, or to none: somebody has renamed,
    /// removed or replaced it. False if that can't be told, so that the open file stays in use, and
    /// if it is closed. The caller then closes it and opens it again.
    bool isReplaced() const;

    /// Whether the open file is shorter than this object has seen it: somebody has copied and
    /// emptied it. True once each time; from then on the smaller size is what counts.
    bool isTruncated();

    /// Whether the open file was longer than this object has seen it, at the last isTruncated():
    /// somebody else has written to it.
    bool hasOthersText() const
    {
        return _hasOthersText;
    }

    /// Whether the open file is to be put away before another `size` bytes are written, at a time
    /// in seconds since 1970. Never if it is empty. By time, that is so if what counts as the
    /// beginning of its period lies before the most recent occurrence of the time of day: the time
    /// of the first text that was written here, or of the last change when it was opened with
    /// content. It is also so if that lies more than a day ahead: the clock was wrong then.
    bool isRotationDue(std::size_t size, std::int64_t now) const;

    /// Puts the file away, whether or not that is due: renames "path" to "path.1", that to "path.2"
    /// and so on up to the first number that is free, from the oldest to the youngest, then closes
    /// the file and removes what is beyond the number kept. A compressed file, "path.N.gz", counts
    /// as number N and keeps its ending. No file is ever replaced. The caller then opens the new
    /// file. Does nothing if the name leads to a directory, a pipe, a terminal or another device,
    /// and only closes the file if it leads nowhere. A link is itself renamed.
    ///
    /// Returns the error of a rename, in which case the open file stays open and in use. A process
    /// that ends at any point in between leaves nothing worse than a free number, which the next
    /// rotation fills. What can't be removed is left for the next rotation.
    int rotate();

    /// Has the system store on the medium what it took; true for what is no plain file. False if it
    /// fails, or if the file is closed.
    bool sync();

    /// Whether something was written here since the last sync() or copyToStore().
    bool isUnstored() const
    {
        return _isUnstored;
    }

    /// Makes another object of the open file, for a thread that calls sync() on it while this one
    /// goes on, be it with another file. Null if the file is closed or no plain one. Returns the
    /// error; then there is no copy.
    int copyToStore(std::unique_ptr<LgServiceFile>& copy);

    /// Reads back what stands in the open file, up to so many bytes from this offset. Returns how
    /// many it read, fewer only at the end of the file; -1 if it fails, as it does if the file can
    /// only be written.
    std::ptrdiff_t readAt(std::uint64_t offset, char* buffer, std::size_t size) const;

    /// The system's words for an error, in English whatever the locale, without an end of line.
    static std::string errorText(int code);

    /// @{
    /// The steps of a rotation, in their order.
    using Renames = std::vector<std::pair<std::string, std::string>>;
    using IsThere = std::function<bool(const std::string& name)>;
    static Renames getRenames(const std::string& path, const IsThere& isThere);
    static std::vector<std::string> getSurplus(const std::string& path, int kept,
                                               const IsThere& isThere);
    /// @}

    /// Returns by how many seconds local time is ahead of UTC at an instant of UTC, which is given
    /// in seconds since 1970.
    using OffsetAt = std::function<std::int64_t(std::int64_t universal)>;

    /// The last instant, not after `now`, at which clocks came to this minute of the day. If they
    /// show it twice in a day, that is the first of the two; if they skip it, it is as long after
    /// the skip began as the minute is after the beginning of what they skip.
    static std::int64_t getLatest(int minuteOfDay, std::int64_t now, const OffsetAt& offsetAt);

    /// The platform's answer to OffsetAt.
    static std::int64_t getLocalOffset(std::int64_t universal);

private:
    const std::string _path;
    const Rotation _rotation;
    std::intptr_t _file;
    bool _isPlain = false;
    bool _isUnstored = false;
    std::optional<Identity> _identity;
    // The largest size that is known of the file, since it was last found to be shorter.
    std::uint64_t _known = 0;
    bool _hasOthersText = false;
    // The time, in seconds since 1970, that counts for the rotation by time.
    std::int64_t _since = 0;
};

/// The platform's calls under a log file. They set the platform's last error if they fail.
namespace LgServiceFilePlatform
{

/// A descriptor, on Windows a handle.
using File = std::intptr_t;

constexpr File NO_FILE = -1;

/// What the system says of a file.
struct Status
{
    /// Nothing if the platform knows it by its name alone, as Windows knows devices.
    std::optional<LgServiceFile::Identity> _identity;
    std::uint64_t _size;
    /// The last modification, in seconds since 1970.
    std::int64_t _modified;
    /// Whether it is neither a directory nor a pipe, a terminal, or another device.
    bool _isPlain;
};

/// What a name leads to.
enum class Target
{
    SAME,
    OTHER,
    UNKNOWN
};

/// The last error of the calling thread, and the one of a file that is not open.
int lastError();
int notOpen();

/// Nothing if the system does not say.
std::optional<Status> statusOf(File file);
std::optional<Status> statusOf(const std::string& path);

/// What a name leads to, compared with the open file.
Target targetOf(const std::string& path, File file, const LgServiceFile::Identity& identity);

/// Whether there is anything of this name, be it a link to nothing.
bool isThere(const std::string& name);

/// Make one call each, repeated only if a signal interrupted it. They return how many bytes it
/// took or gave, or -1. Nothing taken of something is an error; nothing given is the file's end.
std::ptrdiff_t write(File file, const char* text, std::size_t size);
std::ptrdiff_t readAt(File file, std::uint64_t offset, char* buffer, std::size_t size);

/// Fails if the target is there.
bool rename(const std::string& from, const std::string& to);

void remove(const std::string& name);

/// Opens a plain file for reading; not one that a link leads to. NO_FILE if that fails.
File openToRead(const std::string& path);

/// Makes an empty file that only this open file can write to, with the access rights of another
/// one, or takes one of its own user that a process has left. NO_FILE if that fails: isInUse() of
/// the last error if another process writes to it. It can be renamed and removed while it is open.
File createAlone(const std::string& path, File like);
bool isInUse(int error);

/// Whether a file that somebody removes has its name until everybody has closed it. Where that is
/// so, the identity of a file is not given to another one.
bool keepsNamesOfOpenFiles();

/// Another descriptor or handle of the same open file; NO_FILE if the system refuses.
File duplicate(File file);

bool sync(File file);
void close(File file);

/// The system's words, with its end of line; empty if it has none.
std::string textOf(int code);

} // namespace LgServiceFilePlatform

} // namespace Zu

#endif

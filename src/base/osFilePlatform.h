/// @file
/// The platform calls under files and directories. Internal to the library.

#ifndef ZU_BASE_OSFILEPLATFORM_H
#define ZU_BASE_OSFILEPLATFORM_H

#include "osDateTypes.h"
#include "osFileTypes.h"

#include <cstdint>
#include <memory>
#include <string>

/// A function that reports failure has set the system's last error. Interrupted calls are resumed.
namespace Zu::OsFilePlatform
{

/// An open file.
using Handle = std::int64_t;

constexpr Handle NONE = -1;

/// Opens an existing file with the bits of OsFileTypes::Access; others may open it too. Returns
/// NONE if it fails.
Handle openExisting(const char* path, int access);

/// Makes or empties a file and opens it for writing; `exclusive` refuses an existing one.
Handle openNew(const char* path, const OsFileTypes::Permissions& permissions, bool exclusive);

/// The result of closing.
enum class Closed
{
    Done,
    /// It failed, and the handle is still open.
    Failed,
    /// It failed, but the handle is gone all the same.
    Gone
};

Closed close(Handle handle);

/// Moves the position and reports it, counted from the beginning.
bool seek(Handle handle, std::int64_t offset, OsFileTypes::SeekMode mode, std::int64_t& position);

/// One system call, which may read less than there is. The end of the file is not a failure: it
/// gives 0.
bool read(Handle handle, void* buffer, std::uint32_t size, std::uint32_t& count);

/// A full disk is not a failure: `count` is then less than `size`. `count` is the number of bytes
/// written even if the call fails.
bool write(Handle handle, const void* buffer, std::uint32_t size, std::uint32_t& count);

/// Whether it is a file on a disk: an empty read marks its end, and reading it never blocks.
bool isPlain(Handle handle);

/// Sets the size of the file and moves the position to its end.
bool resize(Handle handle, std::int64_t size);

/// Flushes what was written to the disk.
bool flush(Handle handle);

/// Fails for a directory, which has no size.
bool sizeOf(const char* path, std::uint64_t& size);

/// The bits of `mask`, of those for reading and writing, for which a trial succeeds.
int accessTo(const char* path, int mask);

bool typeOf(const char* path, OsFileTypes::ElementType& type);

/// The name of the owner; empty where the platform has none.
bool ownerOf(const char* path, std::string& owner);

/// A point in time, in the calendar of the mode.
struct Moment
{
    OsDateTypes::TimeMode _mode;
    int _year;
    int _month;
    int _day;
    int _hour;
    int _minute;
    int _second;
};

bool lastModificationOf(const char* path, Moment& moment);
bool lastAccessOf(const char* path, Moment& moment);

/// The constraints of unbuffered transfers on a volume.
struct Volume
{
    std::uint32_t _sectorSize;
    bool _isRemote;
    /// The name by which a remote volume is reported.
    std::string _name;
};

/// A failure is fatal on Windows, as is a path without a drive.
bool volumeOf(const char* path, Volume& volume);

bool remove(const char* path);

/// Whether the path is a link: symbolic, or on Windows also a junction.
bool isLink(const char* path);

/// Removes a link, whatever it leads to.
bool removeLink(const char* path);

/// The target of a symbolic link that a replacement has to follow, as written in the link. Fails
/// for everything else, and always on Windows.
bool linkTarget(const char* path, std::string& target);

/// Whether the path leads to a device, a FIFO or a socket, which no file can replace, and whose
/// content has no end; never on Windows.
bool isSpecial(const char* path);

/// Renames; never replaces what has the new name.
bool rename(const char* path, const char* target);

/// Renames in one step, and replaces what has the new name.
bool replace(const char* path, const char* target);

/// Gives an open file the owner and the modes of a plain file, as far as the system has them and
/// permits it.
void keepOwnerAndModes(const char* from, Handle to);

/// The permission bits of a file or directory, where there are any, and its times, in the
/// platform's own terms.
struct Attributes
{
    std::uint32_t _mode;
    std::int64_t _accessed[2];
    std::int64_t _modified[2];
};

bool attributesOf(Handle handle, Attributes& attributes);
bool setAttributes(Handle handle, const Attributes& attributes);

/// Opens a directory to read its attributes, or with OsFileTypes::AccessWrite also to set them.
/// Returns NONE if it fails.
Handle openDirectory(const char* path, int access);

/// Flushes the names in the directory of a path to the disk, where that takes an extra step.
void flushDirectoryOf(const char* path);

/// Whether both paths lead to the same file or directory.
bool isSame(const char* a, const char* b);

/// The full path with ".", ".." and links resolved; empty if nothing is there.
std::string resolved(const char* path);

bool createDirectory(const char* path, const OsFileTypes::Permissions& permissions);
bool removeDirectory(const char* path);

/// The errors that no call of the platform reports; codeOf() returns their codes on the platform.
enum class Error
{
    DiskFull,
    TooLarge,
    TooManyLinks
};

int codeOf(Error error);

/// The names in a directory, in the platform's order, without "." and "..".
class Scan
{
public:
    explicit Scan(const char* path);
    Scan(const Scan&) = delete;
    Scan& operator=(const Scan&) = delete;
    ~Scan();

    enum class Result
    {
        Name,
        End,
        Failed
    };

    /// The next name, valid until the next call.
    Result next(const char*& name);

private:
    struct State;
    std::unique_ptr<State> _state;
};

} // namespace Zu::OsFilePlatform

#endif

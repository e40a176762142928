/// @file
/// The platform calls under files and directories. Internal to the library.

#ifndef ZU_BASE_OSFILEPLATFORM_H
#define ZU_BASE_OSFILEPLATFORM_H

#include "osDateTypes.h"
#include "osFileTypes.h"

#include <cstdint>
#include <memory>
#include <string>

/// What says that it failed has set the system's last error. Interrupted calls are resumed.
namespace Zu::OsFilePlatform
{

/// An open file.
using Handle = std::int64_t;

constexpr Handle NONE = -1;

/// Opens what is there, with the bits of OsFileTypes::Access; others may open it too. NONE if it
/// fails.
Handle openExisting(const char* path, int access);

/// Opens for writing, and makes an empty file before; `exclusive` refuses one that is there.
Handle openNew(const char* path, const OsFileTypes::Permissions& permissions, bool exclusive);

/// How closing went.
enum class Closed
{
    Done,
    /// It failed, and the handle is as it was.
    Failed,
    /// It failed, and the handle is gone all the same.
    Gone
};

Closed close(Handle handle);

/// Moves the position, and tells where it is then, from the beginning.
bool seek(Handle handle, std::int64_t offset, OsFileTypes::SeekMode mode, std::int64_t& position);

/// One call of the system, which may give less than there is; the end of the file is no failure and
/// gives 0.
bool read(Handle handle, void* buffer, std::uint32_t size, std::uint32_t& count);

/// A full disk is no failure: `count` is then less than `size`. It says what was written also if
/// the call fails.
bool write(Handle handle, const void* buffer, std::uint32_t size, std::uint32_t& count);

/// Whether it is a file on a disk, which ends where a read gives nothing, and is never waited for.
bool isPlain(Handle handle);

/// Gives the file this size, and moves the position there.
bool resize(Handle handle, std::int64_t size);

/// Brings what was written to the disk.
bool flush(Handle handle);

/// A directory has none: it fails.
bool sizeOf(const char* path, std::uint64_t& size);

/// Of the bits of `mask`, reading and writing, those that a trial shows.
int accessTo(const char* path, int mask);

bool typeOf(const char* path, OsFileTypes::ElementType& type);

/// The name of the owner; empty where the platform has none.
bool ownerOf(const char* path, std::string& owner);

/// A moment, in the calendar of the mode.
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

/// What unbuffered transfers on a volume have to keep to.
struct Volume
{
    std::uint32_t _sectorSize;
    bool _isRemote;
    /// By which a remote one is reported.
    std::string _name;
};

/// A failure is fatal on Windows, as is a path without a drive.
bool volumeOf(const char* path, Volume& volume);

bool remove(const char* path);

/// Whether the path is a link: symbolic, or on Windows also a junction.
bool isLink(const char* path);

/// Removes a link, whatever it leads to.
bool removeLink(const char* path);

/// What a symbolic link that a replacement has to follow leads to, as it is written in the link. It
/// fails for all else, and on Windows always.
bool linkTarget(const char* path, std::string& target);

/// Whether the path leads to a device, a FIFO or a socket, which no file can stand for, and whose
/// content has no end; never on Windows.
bool isSpecial(const char* path);

/// Gives another name; never replaces what has it.
bool rename(const char* path, const char* target);

/// Gives another name in one step, in the place of what has it.
bool replace(const char* path, const char* target);

/// Gives an open file the owner and the modes of a plain file, as far as the system allows it and
/// has them.
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

/// Opens a directory for its attributes: to read them, or with OsFileTypes::AccessWrite also to set
/// them. NONE if it fails.
Handle openDirectory(const char* path, int access);

/// Brings the names in the directory of a path to the disk, where that takes an extra step.
void flushDirectoryOf(const char* path);

/// Whether both lead to the same file or directory.
bool isSame(const char* a, const char* b);

/// The full path without steps and links; empty if nothing is there.
std::string resolved(const char* path);

bool createDirectory(const char* path, const OsFileTypes::Permissions& permissions);
bool removeDirectory(const char* path);

/// Sets the last error.
enum class Error
{
    DiskFull,
    TooLarge,
    TooManyLinks
};

void setLastError(Error error);

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

    /// The next name; it is good until the next call.
    Result next(const char*& name);

private:
    struct State;
    std::unique_ptr<State> _state;
};

} // namespace Zu::OsFilePlatform

#endif

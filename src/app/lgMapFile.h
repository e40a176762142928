/// @file
/// Files that are mapped into memory and outlive their process. Internal to the application kit.

#ifndef ZU_APP_LGMAPFILE_H
#define ZU_APP_LGMAPFILE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Zu
{

/// A file of this process: only its user can read it, and other processes can see that it is in
/// use, as long as the process lives. Operations return false, or null, if the system refuses;
/// getError() then has the system's words.
class LgMapFile
{
public:
    LgMapFile() = default;
    LgMapFile(const LgMapFile&) = delete;
    LgMapFile& operator=(const LgMapFile&) = delete;

    /// Closes the file, which stays, as does what is mapped.
    ~LgMapFile();

    /// Makes the file, which must not exist.
    bool create(const std::string& path);

    /// Makes the file at least this long. New parts read as zeros.
    bool extend(std::uint64_t size);

    /// Takes room for a part of the file from the system, so that using it can't fail later.
    bool reserve(std::uint64_t offset, std::uint64_t size);

    /// Maps a part. Offset and size are multiples of 64 KiB, and the file is long enough.
    void* map(std::uint64_t offset, std::uint64_t size);

    /// Gives the room of a mapped part back to the system; the part reads as zeros then.
    void clear(void* place, std::uint64_t offset, std::uint64_t size);

    /// Gives it another name, or leaves it as it is.
    void rename(const std::string& path);

    /// Removes the name; the file lives on in this process.
    void remove();

    const std::string& getPath() const
    {
        return _path;
    }

    const std::string& getError() const
    {
        return _error;
    }

    /// Whether room is taken by reserve(), or otherwise at once by extend().
    static bool reservesInSteps();

    /// Puts zeroed memory of this process alone in the place of a mapped part, whole pages.
    static bool replaceByPrivate(void* place, std::uint64_t size);

    static void unmap(void* place, std::uint64_t size);

private:
    bool fail();

    std::string _path;
    std::string _error;
    // The descriptor or the handle; -1 if there is none.
    std::intptr_t _file = -1;
    std::uint64_t _size = 0;
};

/// A file that a process has left. While one is open, no other process can open it as one.
class LgLeftFile
{
public:
    enum class Outcome
    {
        Opened,
        /// Its process lives, or another process is reading it.
        InUse,
        /// There is no such file any more.
        Gone,
        /// It is not a plain file of this user that nobody else can change; or the system refuses.
        Refused
    };

    LgLeftFile() = default;
    LgLeftFile(const LgLeftFile&) = delete;
    LgLeftFile& operator=(const LgLeftFile&) = delete;
    ~LgLeftFile();

    /// Opens a file that another process has made. One that this process has made is in use, and is
    /// not for this class.
    Outcome open(const std::string& path);

    std::uint64_t getSize() const;

    /// Reads exactly this part; false if the file is shorter, or the system refuses.
    bool read(std::uint64_t offset, void* to, std::size_t size) const;

    /// Writes exactly this part, which the file must have.
    bool write(std::uint64_t offset, const void* from, std::size_t size);

    /// Removes it.
    void remove();

private:
    std::string _path;
    std::intptr_t _file = -1;
};

/// Facts about this process and this machine, for the header of a map.
struct LgProcessFacts
{
    std::uint32_t _process;
    /// UTC, in nanoseconds since 1970.
    std::int64_t _processStart;
    std::string _host;
    /// Identifies the start of the machine; empty where the system has no name for it.
    std::string _boot;
};
LgProcessFacts lgProcessFacts();

/// UTC, in nanoseconds since 1970.
std::int64_t lgWallClock();

/// Where maps are made unless an option names a directory; ends with a separator.
std::string lgMapDirectory();

/// What names of this user's maps begin with, so that users do not try each other's.
std::string lgMapPrefix();

/// The names of the files in a directory that begin so, without the directory.
std::vector<std::string> lgNamesIn(const std::string& directory, const std::string& prefix);

} // namespace Zu

#endif

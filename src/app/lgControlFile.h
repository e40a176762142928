/// @file
/// The file by which a running process is asked. Internal to the application kit.

#ifndef ZU_APP_LGCONTROLFILE_H
#define ZU_APP_LGCONTROLFILE_H

#include "lgControlLayout.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace Zu
{

/// The control file of this process, as long as the object lives. Operations return false if the
/// system refuses; getError() then has the system's words.
///
/// Not thread-safe. In the child of a fork, an object of the parent must not be destroyed.
class LgControlFile
{
public:
    LgControlFile() = default;
    LgControlFile(const LgControlFile&) = delete;
    LgControlFile& operator=(const LgControlFile&) = delete;

    /// Removes the file.
    ~LgControlFile();

    /// Makes the file, which must not exist, for its user alone, and maps it.
    bool create(const std::string& path);

    /// The beginning of the file; null unless it was made.
    LgControl::Header* header()
    {
        return static_cast<LgControl::Header*>(_place);
    }

    /// The text of the request; as long as the header says, it may be read.
    const char* request() const
    {
        return static_cast<const char*>(_place) + LgControl::REQUEST_AT;
    }

    /// Room for an answer of this length, which is at most MOST_ANSWER; null if the system refuses.
    char* roomForAnswer(std::size_t length);

    const std::string& getError() const
    {
        return _error;
    }

    /// What names of control files of this user begin with.
    static std::string prefix();

private:
    bool fail();

    std::string _path;
    std::string _error;
    std::intptr_t _file = -1;
    void* _place = nullptr;
};

/// The control file of another process.
class LgControlPeer
{
public:
    enum class Outcome
    {
        Opened,
        /// Its process has ended.
        Left,
        Gone,
        /// It is not a plain file of this user that nobody else can change; or the system refuses.
        Refused
    };

    LgControlPeer() = default;
    LgControlPeer(const LgControlPeer&) = delete;
    LgControlPeer& operator=(const LgControlPeer&) = delete;
    ~LgControlPeer();

    /// Opens a file that another process has made; never one of this process, whose lock would end.
    Outcome open(const std::string& path);

    /// Whether its process lives.
    bool isAlive() const;

    /// Tries to become the one that asks, until release() or the end of the object; false while
    /// another one is.
    bool claim();

    /// Lets others ask. After claim().
    void release();

    /// Reads exactly this part; false if the file is shorter, or the system refuses.
    bool read(std::uint64_t offset, void* to, std::size_t size) const;

    /// Writes exactly this part.
    bool write(std::uint64_t offset, const void* from, std::size_t size);

    /// Removes the file of a process that has ended.
    static void remove(const std::string& path);

    /// What names of control files that this user may open begin with.
    static std::string prefix();

private:
    std::intptr_t _file = -1;
};

/// The file of the program that runs, in UTF-8; empty if the system has no name for it.
std::string lgProgramPath();

} // namespace Zu

#endif

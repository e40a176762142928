/// @file
/// Small types of the file classes.

#ifndef ZU_BASE_OSFILETYPES_H
#define ZU_BASE_OSFILETYPES_H

#include "baseApi.h"

#include <cstdint>

namespace Zu
{

/// The scope of small types that the file classes share.
class ZU_BASE_API OsFileTypes
{
public:
    OsFileTypes() = delete;

    /// What a path leads to; 2 is not used.
    enum ElementType
    {
        /// A plain file.
        ElementRegular = 0,
        /// A directory.
        ElementDirectory = 1,
        /// On Windows a file with attributes other than the plain ones; on Linux what is neither a
        /// file nor a directory: a FIFO, a socket, a device.
        ElementSpecial = 3
    };

    /// Where a position in a file is counted from.
    enum SeekMode
    {
        /// From the current position.
        SeekCurrent = 0,
        /// From the beginning of the file.
        SeekBegin = 1,
        /// From the end of the file.
        SeekEnd = 2
    };

    /// The form of the paths that a directory lists.
    enum PathTypes
    {
        /// The directory's path and the child's name.
        PathFull = 0,
        /// The child's name alone.
        PathRelative = 1
    };

    /// The constraints of unbuffered transfers on the volume of a file. The library's own transfers
    /// are buffered.
    class UnbufferedInfo
    {
    public:
        UnbufferedInfo() = default;

        /// All in bytes.
        UnbufferedInfo(std::uint32_t alignment, std::uint32_t blockSize, std::uint32_t maxSize)
            : _alignment(alignment), _blockSize(blockSize), _maxSize(maxSize)
        {
        }

        /// The alignment of memory and of positions in the file, in bytes.
        std::uint32_t getAlignment() const
        {
            return _alignment;
        }

        /// Transfers are multiples of this size, in bytes.
        std::uint32_t getBlockSize() const
        {
            return _blockSize;
        }

        /// The largest single transfer, in bytes.
        std::uint32_t getMaxSize() const
        {
            return _maxSize;
        }

    private:
        std::uint32_t _alignment = 0;
        std::uint32_t _blockSize = 0;
        std::uint32_t _maxSize = 0;
    };

    /// Access to a file; the values combine as bits.
    enum Access
    {
        /// The content can be read.
        AccessRead = 1,
        /// The content can be written.
        AccessWrite = 2,
        /// The file can be executed.
        AccessExecute = 4
    };

    /// Who may do what with a new file, as bits of Access. Windows has no such modes and ignores
    /// them; Linux applies them, less the process's umask.
    ///
    /// The bits have other values than in POSIX modes, where reading is 4 and executing 1:
    /// Permissions(7, 5, 4) is the mode 0751, and the default (3, 1, 1) is 0644.
    class Permissions
    {
    public:
        /// Bits of Access for the owner, the owner's group and everybody else.
        Permissions(int user = AccessRead | AccessWrite, int group = AccessRead,
                    int other = AccessRead)
            : _userMode(user), _groupMode(group), _otherMode(other)
        {
        }

        /// What the owner may do.
        int getUserMode() const
        {
            return _userMode;
        }

        /// What the owner's group may do.
        int getGroupMode() const
        {
            return _groupMode;
        }

        /// What everybody else may do.
        int getOtherMode() const
        {
            return _otherMode;
        }

    private:
        int _userMode;
        int _groupMode;
        int _otherMode;
    };
};

} // namespace Zu

#endif

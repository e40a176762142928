/// @file
/// Reads bytes from a file.

#ifndef ZU_BASE_OSFILEREADER_H
#define ZU_BASE_OSFILEREADER_H

#include "baseApi.h"
#include "osFile.h"
#include "osFilePath.h"
#include "osFileTypes.h"
#include "ownedPtr.h"

#include <cstdint>

namespace Zu
{

/// A file that is open for reading. It has no buffer of its own; others may have the file open,
/// too.
///
/// Every operation on a closed reader raises ExSysErrorANSI, with EBADF. A failed system call
/// raises ExSysErrorWindows.
///
/// Thread-safety: an object belongs to one thread at a time; two objects on one file are
/// independent.
class ZU_BASE_API OsFileReader
{
    friend class OsFile;
    friend class OsFileTools;

public:
    /// @{
    /// Opens an existing file. Raise OsFileEx::ExNullFilePath for the empty path.
    explicit OsFileReader(const OsFilePath& path);
    explicit OsFileReader(const OsFile& file);
    /// @}

    OsFileReader(const OsFileReader&) = delete;
    OsFileReader& operator=(const OsFileReader&) = delete;

    /// Closes the file if it is open. A failure raises, unless another exception is under way; an
    /// earlier call of close() reports it in any case.
    ~OsFileReader() noexcept(false);

    /// Moves the position and returns it, in bytes from the beginning. A position before the
    /// beginning, or beyond 2147483647, raises and leaves the old one unchanged;
    /// OsFileTools::seek64() goes further.
    std::int32_t seek(std::int32_t offset, OsFileTypes::SeekMode mode);

    /// Reads up to `size` bytes and returns how many; 0 at the end of the file. Fewer than
    /// requested mean that the file ends there, or that the system failed after them, which the
    /// next read raises. From something other than a file, such as a pipe, they are those that have
    /// arrived.
    std::uint32_t read(void* buffer, std::uint32_t size);

    /// When it raises, the reader is still open and may be closed again, unless the system has
    /// released the file all the same, as Linux does.
    void close();

private:
    void performOpen();

    OsFilePath _path;
    std::int64_t _handle;
};

/// The destructor may throw.
template <> inline constexpr bool ownedMayThrow<OsFileReader> = true;

} // namespace Zu

#endif

/// @file
/// Writes bytes to a file.

#ifndef ZU_BASE_OSFILEWRITER_H
#define ZU_BASE_OSFILEWRITER_H

#include "baseApi.h"
#include "osFile.h"
#include "osFilePath.h"
#include "osFileTypes.h"
#include "ownedPtr.h"

#include <cstdint>

namespace Zu
{

/// A file that is open for writing. It has no buffer of its own; others may have the file open,
/// too. What OsFileReader documents about closed objects, failures and threads applies here.
class ZU_BASE_API OsFileWriter
{
    friend class OsFile;
    friend class OsFileTools;

public:
    /// @{
    /// Makes the file, or empties an existing one; `exclusive` raises ExSysErrorWindows instead.
    /// The permissions, less the umask, are those of a new file; Windows ignores them. Raise
    /// OsFileEx::ExNullFilePath for the empty path.
    OsFileWriter(const OsFilePath& path, const OsFileTypes::Permissions& permissions,
                 bool exclusive);
    OsFileWriter(const OsFile& file, const OsFileTypes::Permissions& permissions, bool exclusive);
    /// @}

    OsFileWriter(const OsFileWriter&) = delete;
    OsFileWriter& operator=(const OsFileWriter&) = delete;

    /// Closes the file if it is open. A failure raises, unless another exception is under way; an
    /// earlier call of close() reports it in any case.
    ~OsFileWriter() noexcept(false);

    /// As OsFileReader::seek().
    std::int32_t seek(std::int32_t offset, OsFileTypes::SeekMode mode);

    /// Writes `size` bytes and returns how many were written. A full disk deliberately does not
    /// raise: fewer bytes than requested mean that it is full. When it raises, some bytes may have
    /// been written, and the position is after them; OsFileTools::writeAll() reports how many.
    std::uint32_t write(const void* buffer, std::uint32_t size);

    /// Sets the file to exactly this size, whether it grows or shrinks, and moves the position to
    /// its end.
    void reserve(std::uint32_t size);

    /// As OsFileReader::close().
    void close();

private:
    void performOpen(const OsFileTypes::Permissions& permissions, bool exclusive);

    OsFilePath _path;
    std::int64_t _handle;
};

/// The destructor may throw.
template <> inline constexpr bool ownedMayThrow<OsFileWriter> = true;

} // namespace Zu

#endif

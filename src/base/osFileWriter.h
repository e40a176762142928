/// @file
/// Bytes into a file.

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

/// An open file that is written to. It has no buffer of its own; others may have the file open,
/// too. What holds of OsFileReader about closed objects, failures and threads holds here.
class ZU_BASE_API OsFileWriter
{
    friend class OsFile;
    friend class OsFileTools;

public:
    /// @{
    /// Makes the file, or empties the one that is there; `exclusive` raises ExSysErrorWindows
    /// instead. The permissions, less the umask, are those of a new file; Windows ignores them.
    /// Raise OsFileEx::ExNullFilePath for the empty path.
    OsFileWriter(const OsFilePath& path, const OsFileTypes::Permissions& permissions,
                 bool exclusive);
    OsFileWriter(const OsFile& file, const OsFileTypes::Permissions& permissions, bool exclusive);
    /// @}

    OsFileWriter(const OsFileWriter&) = delete;
    OsFileWriter& operator=(const OsFileWriter&) = delete;

    /// Closes the file if it is open. A failure raises, unless another exception is under way;
    /// close() before tells it in any case.
    ~OsFileWriter() noexcept(false);

    /// As OsFileReader::seek().
    std::int32_t seek(std::int32_t offset, OsFileTypes::SeekMode mode);

    /// Writes `size` bytes, and returns how many were written. Deliberately a full disk does not
    /// raise: fewer bytes than asked for mean that it is full. When it raises, a part may have been
    /// written, and the position is behind it; OsFileTools::writeAll() says how much.
    std::uint32_t write(const void* buffer, std::uint32_t size);

    /// Gives the file exactly this size, whether it grows or shrinks, and moves the position to its
    /// end.
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

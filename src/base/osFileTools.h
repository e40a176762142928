/// @file
/// File operations beyond 32 bits and single calls.

#ifndef ZU_BASE_OSFILETOOLS_H
#define ZU_BASE_OSFILETOOLS_H

#include "baseApi.h"
#include "containers.h"
#include "objPtr.h"
#include "osDirectory.h"
#include "osFileReader.h"
#include "osFileWriter.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Zu
{

/// Works on sizes and positions of 64 bits, whole files, and whole directories. As in the classes
/// underneath, failed system calls raise ExSysErrorWindows, closed objects ExSysErrorANSI, and the
/// empty path OsFileEx::ExNullFilePath.
class ZU_BASE_API OsFileTools
{
public:
    OsFileTools() = delete;

    /// The size of a file, in bytes. Raises OsFileEx::ExInvalidPath if it is missing.
    static std::uint64_t getSize64(const OsFilePath& path);

    /// @{
    /// Move the position and return it, in bytes from the beginning.
    static std::int64_t seek64(OsFileReader& reader, std::int64_t offset,
                               OsFileTypes::SeekMode mode);
    static std::int64_t seek64(OsFileWriter& writer, std::int64_t offset,
                               OsFileTypes::SeekMode mode);
    /// @}

    /// As OsFileWriter::reserve().
    static void reserve64(OsFileWriter& writer, std::int64_t size);

    /// As OsFileWriter::write(), but for any size, and a full disk raises ExSysErrorWindows.
    /// `written` receives the number of bytes written, even when it raises.
    static void writeAll(OsFileWriter& writer, std::string_view content, std::uint64_t& written);

    /// The whole content of a file.
    static std::string readAll(const OsFilePath& path);

    /// Makes this the whole content of a file, new or existing. A program that opens the file sees
    /// the old content or the new one, never a part, even after a crash of the system: the content
    /// is written to another file beside it, flushed to the disk, and takes the name in one step.
    /// When it raises, the file is unchanged, and nothing is left beside it.
    ///
    /// An existing file keeps its modes and, as far as the system permits, its owner and group. If
    /// the group can't be kept, the new group gets the permissions of everybody else. A new file
    /// gets the permissions, less the umask. On Linux the target of a symbolic link is replaced, or
    /// made if it is missing, and a device, a FIFO or a socket raises OsFileEx::ExInvalidPath.
    static void replaceAll(const OsFilePath& path, std::string_view content,
                           const OsFileTypes::Permissions& permissions = {});

    /// Copies a file as OsFile::copyTo() does, or a directory as OsDirectory::copyTo() does. Each
    /// copy gets the permission bits and the times of modification and access of its source, even
    /// if it replaces a file or is copied into an existing directory. Until it is complete, only
    /// its owner can access a new copy. Owners, links and the set-ID and sticky bits are not kept.
    /// Windows has no modes and keeps the times. Listing the source may change its directories'
    /// times of access before they are read. A FIFO, a socket or a device raises
    /// OsFileEx::ExInvalidPath.
    static void copyWithModesAndTimes(const OsFilePath& source, const OsFilePath& target);

    /// As OsDirectory::getChildrenPath(), in the order of OsFilePath::compare().
    static ObjPtrRet<Vector<OsFilePath>> getSortedChildrenPath(const OsDirectory& directory,
                                                               OsFileTypes::PathTypes type,
                                                               const OsFileFilter& filter);

    /// Removes a file, or a directory with its contents. Symbolic links are removed, never
    /// followed. A missing path raises OsFileEx::ExInvalidPath before anything is removed; so do a
    /// root, and a path that ends in "." or "..". A failure ends the operation; what was removed so
    /// far stays removed.
    static void removeWithAllContents(const OsFilePath& path);

    /// Whether two files have the same content.
    static bool haveSameContent(const OsFilePath& a, const OsFilePath& b);

private:
    class KeepingCopier;
};

} // namespace Zu

#endif

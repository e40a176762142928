/// @file
/// What files need beyond 32 bits and single calls.

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

/// Sizes and positions of 64 bits, whole files, and whole directories. Failed calls of the system
/// raise ExSysErrorWindows, closed objects ExSysErrorANSI, the empty path OsFileEx::ExNullFilePath,
/// as the classes do that they work on.
class ZU_BASE_API OsFileTools
{
public:
    OsFileTools() = delete;

    /// The size of a file, in bytes. Raises OsFileEx::ExInvalidPath if it isn't there.
    static std::uint64_t getSize64(const OsFilePath& path);

    /// @{
    /// Move the position, and return where it is then, in bytes from the beginning.
    static std::int64_t seek64(OsFileReader& reader, std::int64_t offset,
                               OsFileTypes::SeekMode mode);
    static std::int64_t seek64(OsFileWriter& writer, std::int64_t offset,
                               OsFileTypes::SeekMode mode);
    /// @}

    /// As OsFileWriter::reserve().
    static void reserve64(OsFileWriter& writer, std::int64_t size);

    /// As OsFileWriter::write(), for any size, and a full disk raises ExSysErrorWindows, too.
    /// `written` says how many bytes were written, also when it raises.
    static void writeAll(OsFileWriter& writer, std::string_view content, std::uint64_t& written);

    /// The whole content of a file.
    static std::string readAll(const OsFilePath& path);

    /// Makes this the whole content of a file, new or not. Whoever opens the file sees the old
    /// content or the new one, never a part, also after a crash of the system: it is written to a
    /// file beside, brought to the disk, and takes the name in one step. When it raises, the file
    /// is as it was, and nothing is left beside it. A file that is there keeps its modes and, as
    /// far as the system lets this process, its owner and group; where the group can't be kept, the
    /// one that it has then may do what everybody may. A new file gets the permissions, less the
    /// umask. On Linux what a symbolic link leads to is replaced, or made if it isn't there, and a
    /// device, a FIFO or a socket raises OsFileEx::ExInvalidPath.
    static void replaceAll(const OsFilePath& path, std::string_view content,
                           const OsFileTypes::Permissions& permissions = {});

    /// Copies a file as OsFile::copyTo() does, or a directory as OsDirectory::copyTo() does, and
    /// gives each copy the permission bits and the times of modification and access of what it is
    /// a copy of, also where it replaces a file or is copied into a directory that is there. Until
    /// it is done a new copy is its owner's alone. Owners, links and lent rights are not kept.
    /// Windows has no modes and keeps the times. A FIFO, a socket or a device raises
    /// OsFileEx::ExInvalidPath.
    static void copyWithModesAndTimes(const OsFilePath& source, const OsFilePath& target);

    /// As OsDirectory::getChildrenPath(), in the order of OsFilePath::compare().
    static ObjPtrRet<Vector<OsFilePath>> getSortedChildrenPath(const OsDirectory& directory,
                                                               OsFileTypes::PathTypes type,
                                                               const OsFileFilter& filter);

    /// Removes a file, or a directory with all that is in it. Symbolic links are removed, never
    /// followed. What is not there raises OsFileEx::ExInvalidPath, before anything is removed; so
    /// do a root, and a path that ends in "." or "..". A failure ends it, and what was removed so
    /// far stays removed.
    static void removeWithAllContents(const OsFilePath& path);

    /// Whether two files have the same content.
    static bool haveSameContent(const OsFilePath& a, const OsFilePath& b);

private:
    class KeepingCopier;
};

} // namespace Zu

#endif

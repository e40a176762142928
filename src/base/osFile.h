/// @file
/// A named file and its operations.

#ifndef ZU_BASE_OSFILE_H
#define ZU_BASE_OSFILE_H

#include "arrayPtr.h"
#include "baseApi.h"
#include "objPtr.h"
#include "osDateTypes.h"
#include "osFilePath.h"
#include "osFileTypes.h"

#include <cstdint>

namespace Zu
{

/// Queries a named file, and moves, copies and removes it. Nothing is kept open and nothing is
/// cached: each query asks the system anew, and its result can be out of date when it returns.
/// Symbolic links are followed, except by isSymLink(), remove() and renameTo().
///
/// The empty path raises OsFileEx::ExNullFilePath. A missing file raises OsFileEx::ExInvalidPath
/// with the path, where documented. A failed system call raises ExSysErrorWindows.
///
/// Thread-safety: an object belongs to one thread at a time.
class ZU_BASE_API OsFile
{
public:
    /// The file need not exist.
    explicit OsFile(const OsFilePath& path);
    OsFile(const OsFile&) = default;
    OsFile& operator=(const OsFile&) = default;
    virtual ~OsFile();

    /// The name of the owner, or the owner's number if there is no name; empty on Windows. Raises
    /// OsFileEx::ExInvalidPath.
    virtual ArrayPtrRet<char> getOwner() const;

    /// In bytes. Raises OsFileEx::ExInvalidPath, and ExSysErrorWindows for a directory. A size of
    /// 4294967295 or more can't be reported in 32 bits and raises ExSysErrorWindows;
    /// OsFileTools::getSize64() has 64.
    virtual std::uint32_t getSize() const;

    /// @{
    /// In whole seconds. A date outside the years 1601 to 30827, which some Linux file systems can
    /// store, is reported as the count of all ones. Raise OsFileEx::ExInvalidPath.
    virtual ObjPtrRet<OsDateTypes::DateRep> getLastModificationTime() const;
    virtual ObjPtrRet<OsDateTypes::DateRep> getLastAccessTime() const;
    /// @}

    /// The constraints of unbuffered transfers: on Windows the sector size of the drive, on Linux
    /// the block size of the file system. On Windows the path must begin with the drive; otherwise
    /// a failed assertion ends the process. Raises OsFileEx::ExInvalidPath, and
    /// OsFileEx::ExNoRemoteUnbuffered for a volume of another machine.
    virtual ObjPtrRet<OsFileTypes::UnbufferedInfo> getUnbufferedInfo() const;

    /// @{
    /// The bits AccessRead and AccessWrite for which a trial succeeds; AccessExecute is not
    /// examined. A missing file, a directory and whatever can't be determined count as no access.
    /// So does, on Windows, a file that is open elsewhere. Raise only OsFileEx::ExNullFilePath.
    virtual int getAccess() const;
    virtual bool isReadable() const;
    virtual bool isWritable() const;
    /// @}

    /// @{
    /// The kind of file. Raise OsFileEx::ExInvalidPath.
    virtual bool isFile() const;
    virtual bool isDirectory() const;
    /// @}

    /// Always false on Windows. A dangling link counts as missing.
    virtual bool isSymLink() const;

    /// The kind of file. Raises OsFileEx::ExInvalidPath.
    virtual OsFileTypes::ElementType getType() const;

    /// Whether the path leads to anything. Raises OsFileEx::ExNullFilePath.
    virtual bool exists() const;

    /// Does nothing, since nothing is cached.
    virtual void refreshInfo();

    /// Removes the file; a symbolic link is itself removed. Unlike OsFsUtils::deleteFile() it also
    /// raises for a missing file.
    virtual void remove();

    /// Moves the file, and makes the object refer to the new path. Anything that exists there is
    /// never replaced: that raises ExSysErrorWindows. When it raises, the object keeps its path.
    virtual void renameTo(const OsFilePath& path);

    /// Copies the content to another file, which is replaced, or into a directory under the base
    /// name. Raises OsFileEx::ExPathNotWritable for a file that may not be written. Raises
    /// OsFileEx::ExInvalidPath, before anything is opened, for a copy onto itself and for a
    /// directory, which OsDirectory copies. A disk that becomes full raises ExSysErrorWindows; what
    /// was copied stays. A FIFO is read to its end, which can block. On Linux a new file has the
    /// mode 0660, less the umask, regardless of the source, and an existing one keeps its own;
    /// OsFileTools::copyWithModesAndTimes() gives it that of the source.
    virtual void copyTo(const OsFilePath& target);

    /// The path as it was given; owned by the object.
    const OsFilePath& getPath() const;

    /// Makes an empty file; see OsFsUtils::createFile().
    void create(const OsFileTypes::Permissions& permissions, bool exclusive);

protected:
    /// Makes the object refer to another path; touches no file.
    void setPath(const OsFilePath& path);

    /// Opens the file, which must exist, with the bits of OsFileTypes::Access; returns a system
    /// handle.
    std::int64_t open(int access) const;

    /// Closes such a handle.
    void close(std::int64_t handle) const;

private:
    void checkPath() const;
    void checkExists() const;

    OsFilePath _path;
};

} // namespace Zu

#endif

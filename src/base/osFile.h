/// @file
/// A place in the file system.

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

/// Answers what is known about a named file, and moves, copies and removes it. Nothing is held open
/// and nothing is remembered: each question asks the system anew, and what it answered can be out
/// of date when it returns. Symbolic links are followed, except by isSymLink(), remove() and
/// renameTo().
///
/// The empty path raises OsFileEx::ExNullFilePath. A file that isn't there raises, where it is
/// said, OsFileEx::ExInvalidPath with the path. A failed call of the system raises
/// ExSysErrorWindows.
///
/// Thread-safety: an object is of one thread at a time.
class ZU_BASE_API OsFile
{
public:
    /// The file need not be there.
    explicit OsFile(const OsFilePath& path);
    OsFile(const OsFile&) = default;
    OsFile& operator=(const OsFile&) = default;
    virtual ~OsFile();

    /// The name of the owner, or the number of one that has no name; empty on Windows. Raises
    /// OsFileEx::ExInvalidPath.
    virtual ArrayPtrRet<char> getOwner() const;

    /// In bytes. Raises OsFileEx::ExInvalidPath, and ExSysErrorWindows for a directory. A size of
    /// 4294967295 or more, which is not told in 32 bits, raises ExSysErrorWindows; OsFileTools has
    /// 64.
    virtual std::uint32_t getSize() const;

    /// @{
    /// In whole seconds. A date outside the years 1601 to 30827, which some file systems of Linux
    /// can hold, is the count of all ones. Raise OsFileEx::ExInvalidPath.
    virtual ObjPtrRet<OsDateTypes::DateRep> getLastModificationTime() const;
    virtual ObjPtrRet<OsDateTypes::DateRep> getLastAccessTime() const;
    /// @}

    /// What unbuffered transfers have to keep to: on Windows the sector size of the drive, which
    /// the path must begin with, or a failed assertion ends the process; on Linux the block size of
    /// the file system. Raises OsFileEx::ExInvalidPath, and OsFileEx::ExNoRemoteUnbuffered for a
    /// volume of another machine.
    virtual ObjPtrRet<OsFileTypes::UnbufferedInfo> getUnbufferedInfo() const;

    /// @{
    /// The bits AccessRead and AccessWrite as far as a trial succeeds; AccessExecute is not looked
    /// at. What can't be found out is no access, as are a missing file and a directory. On Windows
    /// so is a file that is open elsewhere. Raise OsFileEx::ExNullFilePath alone.
    virtual int getAccess() const;
    virtual bool isReadable() const;
    virtual bool isWritable() const;
    /// @}

    /// @{
    /// What it is. Raise OsFileEx::ExInvalidPath.
    virtual bool isFile() const;
    virtual bool isDirectory() const;
    /// @}

    /// Always false on Windows. A link that leads nowhere counts as missing.
    virtual bool isSymLink() const;

    /// What it is. Raises OsFileEx::ExInvalidPath.
    virtual OsFileTypes::ElementType getType() const;

    /// Whether the path leads to anything. Raises OsFileEx::ExNullFilePath.
    virtual bool exists() const;

    /// Does nothing: nothing is remembered.
    virtual void refreshInfo();

    /// Removes the file; of a symbolic link, the link. Unlike OsFsUtils::deleteFile() it raises for
    /// a missing one, too.
    virtual void remove();

    /// Moves the file, and the object with it. What is at the new place already is never replaced:
    /// ExSysErrorWindows. When it raises, the object keeps its path.
    virtual void renameTo(const OsFilePath& path);

    /// Copies the content to another file, which is replaced, or into a directory under the base
    /// name. Raises OsFileEx::ExPathNotWritable for a file that may not be written, and
    /// OsFileEx::ExInvalidPath, before anything is opened, for a copy onto itself and for a
    /// directory, which OsDirectory copies. A disk that gets full raises ExSysErrorWindows; what
    /// was copied stays. A FIFO is read to its end, so it is waited for. On Linux a new file has
    /// the modes 0660, less the umask, whatever the modes of the source, and one that is there
    /// keeps its own; OsFileTools::copyWithModesAndTimes() gives it those of the source.
    virtual void copyTo(const OsFilePath& target);

    /// The path as it was given; owned by the object.
    const OsFilePath& getPath() const;

    /// Makes an empty file; see OsFsUtils::createFile().
    void create(const OsFileTypes::Permissions& permissions, bool exclusive);

protected:
    /// Lets the object stand for another path; touches no file.
    void setPath(const OsFilePath& path);

    /// A handle of the system for the bits of OsFileTypes::Access; the file must be there.
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

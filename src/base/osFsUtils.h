/// @file
/// The file-system utilities under the file classes.

#ifndef ZU_BASE_OSFSUTILS_H
#define ZU_BASE_OSFSUTILS_H

#include "baseApi.h"
#include "osFileTypes.h"

namespace Zu
{

/// Makes, removes and asks about files and directories by name.
///
/// Where failures are documented, a failed platform call raises ExSysErrorWindows. A null name is
/// treated as the empty one, which leads nowhere. Queries never raise; they follow symbolic links,
/// except isSymLink(). Any thread may call any operation; what it found can be out of date when it
/// returns.
class ZU_BASE_API OsFsUtils
{
public:
    OsFsUtils() = delete;

    /// Makes the last element of the path. An existing directory is not a failure; a file in its
    /// place raises ExInternalError "A regular file with the same path name exists." The flag has
    /// no effect on any platform: missing parents are never made. On Linux the mode is 0777 less
    /// the umask.
    static void createDir(const char* path, bool flag);

    /// Removes an empty directory. Failures raise.
    static void removeDir(const char* path);

    /// Whether the path leads to anything.
    static bool fileExists(const char* path);

    /// Makes an empty file, or empties an existing one; `exclusive` raises OsFileEx::ExFileExists
    /// instead. A null or empty name raises OsFileEx::ExNullFilePath.
    static void createFile(const char* path, const OsFileTypes::Permissions& permissions,
                           bool exclusive);

    /// Removes a file; a symbolic link is itself removed. A missing file is not a failure; other
    /// failures raise, including a null or empty name.
    static void deleteFile(const char* path);

    /// Whether the path leads to a directory; a missing one does not.
    static bool isDirectory(const char* path);

    /// Whether the path does not lead to a directory: deliberately true of a missing one, since
    /// this only excludes directories.
    static bool isFile(const char* path);

    /// Whether the path is a symbolic link. Always false on Windows.
    static bool isSymLink(const char* path);
};

} // namespace Zu

#endif

/// @file
/// Where tests put their files.

#ifndef ZU_BASE_TESTDIR_H
#define ZU_BASE_TESTDIR_H

#include "baseApi.h"
#include "osFilePath.h"

namespace Zu
{

/// The directory that tests may write to.
///
/// Thread-safety: the first call of getDefaultPath() belongs to one thread.
class ZU_BASE_API TestDir
{
public:
    TestDir() = delete;

    /// The variable ZU_TEST_DIR, or OsFilePath::getTempDir() if it is not set, as read at the first
    /// call. The directory is not made.
    static const OsFilePath& getDefaultPath();

    /// Makes a directory unless it exists, and returns its path. Raises what OsFsUtils::createDir()
    /// raises.
    static OsFilePath create(const OsFilePath& path);
};

} // namespace Zu

#endif

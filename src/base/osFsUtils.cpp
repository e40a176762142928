#include "base/osFsUtils.h"

#include "base/exInternalError.h"
#include "base/exRaise.h"
#include "base/osFileEx.h"
#include "base/osFsPlatform.h"

namespace Zu
{

namespace
{

// The three bits of one class of users, which POSIX has in the opposite order.
unsigned int modeBits(int access)
{
    unsigned int bits = 0;
    if (access & OsFileTypes::AccessRead) bits |= 4;
    if (access & OsFileTypes::AccessWrite) bits |= 2;
    if (access & OsFileTypes::AccessExecute) bits |= 1;
    return bits;
}

// A null name is treated as the empty one, which no platform accepts.
const char* nameOf(const char* path)
{
    return path ? path : "";
}

} // namespace

unsigned int osFsMode(const OsFileTypes::Permissions& permissions)
{
    return modeBits(permissions.getUserMode()) << 6 | modeBits(permissions.getGroupMode()) << 3 |
           modeBits(permissions.getOtherMode());
}

unsigned int osFsKeptMode(unsigned int mode, bool isOwnerKept, bool isGroupKept)
{
    if (!isOwnerKept || !isGroupKept) mode &= 0777;
    if (!isGroupKept) mode = (mode & ~070U) | (mode & 07) << 3;
    return mode;
}

void OsFsUtils::createDir(const char* path, bool)
{
    const OsFsResult result = osFsCreateDir(nameOf(path));
    if (result == OsFsResult::Done || result == OsFsResult::NoError) return;
    if (result == OsFsResult::Exists)
    {
        const OsFsKind kind = osFsKindOf(nameOf(path));
        if (kind == OsFsKind::Directory) return;
        if (kind == OsFsKind::Other)
            throw ExInternalError(__FILE__, __LINE__,
                                  "A regular file with the same path name exists.");
    }
    ZU_RAISE_LAST_ERROR();
}

void OsFsUtils::removeDir(const char* path)
{
    if (osFsRemoveDir(nameOf(path)) != OsFsResult::Done) ZU_RAISE_LAST_ERROR();
}

bool OsFsUtils::fileExists(const char* path)
{
    return osFsKindOf(nameOf(path)) != OsFsKind::Missing;
}

void OsFsUtils::createFile(const char* path, const OsFileTypes::Permissions& permissions,
                           bool exclusive)
{
    if (*nameOf(path) == '\0') throw OsFileEx::ExNullFilePath(__FILE__, __LINE__);
    const OsFsResult result = osFsCreateFile(path, permissions, exclusive);
    if (result == OsFsResult::Done) return;
    if (result == OsFsResult::Exists && exclusive) throw OsFileEx::ExFileExists(__FILE__, __LINE__);
    ZU_RAISE_LAST_ERROR();
}

void OsFsUtils::deleteFile(const char* path)
{
    const OsFsResult result = osFsDeleteFile(nameOf(path));
    if (result == OsFsResult::Done || result == OsFsResult::NoError) return;
    // An empty name does not count as a missing file.
    if (result == OsFsResult::Missing && *nameOf(path) != '\0') return;
    ZU_RAISE_LAST_ERROR();
}

bool OsFsUtils::isDirectory(const char* path)
{
    return osFsKindOf(nameOf(path)) == OsFsKind::Directory;
}

bool OsFsUtils::isFile(const char* path)
{
    return !isDirectory(path);
}

bool OsFsUtils::isSymLink(const char* path)
{
    return osFsIsSymLink(nameOf(path));
}

} // namespace Zu

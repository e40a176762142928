#include "base/osFsUtils.h"

#include "base/osDescriptor.h"
#include "base/osFsPlatform.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zu
{

namespace
{

OsFsResult resultOf(int status)
{
    if (status >= 0) return OsFsResult::Done;
    switch (errno)
    {
    case 0:
        return OsFsResult::NoError;
    case EEXIST:
        return OsFsResult::Exists;
    case ENOENT:
        return OsFsResult::Missing;
    default:
        return OsFsResult::Failed;
    }
}

} // namespace

OsFsResult osFsCreateDir(const char* path)
{
    return resultOf(mkdir(path, 0777));
}

OsFsResult osFsRemoveDir(const char* path)
{
    return resultOf(rmdir(path));
}

OsFsResult osFsCreateFile(const char* path, const OsFileTypes::Permissions& permissions,
                          bool exclusive)
{
    const int flags = O_RDWR | O_CREAT | O_CLOEXEC | (exclusive ? O_EXCL : O_TRUNC);
    int number = -1;
    do
    {
        number = open(path, flags, static_cast<mode_t>(osFsMode(permissions)));
    } while (number < 0 && errno == EINTR);
    const OsDescriptor file(number);
    return resultOf(file.get());
}

OsFsResult osFsDeleteFile(const char* path)
{
    return resultOf(unlink(path));
}

OsFsKind osFsKindOf(const char* path)
{
    struct stat status;
    if (stat(path, &status) != 0) return OsFsKind::Missing;
    return S_ISDIR(status.st_mode) ? OsFsKind::Directory : OsFsKind::Other;
}

bool osFsIsSymLink(const char* path)
{
    struct stat status;
    return lstat(path, &status) == 0 && S_ISLNK(status.st_mode);
}

} // namespace Zu

/// @file
/// The platform calls under OsFsUtils. Internal to the library.

#ifndef ZU_BASE_OSFSPLATFORM_H
#define ZU_BASE_OSFSPLATFORM_H

#include "osFileTypes.h"

namespace Zu
{

/// How a platform call went. After everything but Done the system's last error is set.
enum class OsFsResult
{
    Done,
    /// Something of that name is there already.
    Exists,
    /// Nothing of that name is there.
    Missing,
    /// It failed and the platform gives no error.
    NoError,
    /// It failed with the system's last error.
    Failed
};

/// What a path leads to.
enum class OsFsKind
{
    Missing,
    Directory,
    Other
};

OsFsResult osFsCreateDir(const char* path);
OsFsResult osFsRemoveDir(const char* path);
OsFsResult osFsCreateFile(const char* path, const OsFileTypes::Permissions& permissions,
                          bool exclusive);
OsFsResult osFsDeleteFile(const char* path);
OsFsKind osFsKindOf(const char* path);
bool osFsIsSymLink(const char* path);

/// The mode bits of POSIX for `permissions`.
unsigned int osFsMode(const OsFileTypes::Permissions& permissions);

/// The mode bits for a file that stands for one with these. The bits that lend rights go unless
/// owner and group are the same, and another group may do what everybody may.
unsigned int osFsKeptMode(unsigned int mode, bool isOwnerKept, bool isGroupKept);

} // namespace Zu

#endif

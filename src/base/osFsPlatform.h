/// @file
/// The platform calls under OsFsUtils. Internal to the library.

#ifndef ZU_BASE_OSFSPLATFORM_H
#define ZU_BASE_OSFSPLATFORM_H

#include "osFileTypes.h"

namespace Zu
{

/// The result of a platform call. Unless it is Done or NoError, the system's last error is set.
enum class OsFsResult
{
    Done,
    /// Something of that name exists already.
    Exists,
    /// Nothing of that name exists.
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

/// The mode bits for a file that replaces one with these. The set-ID and sticky bits are dropped
/// unless owner and group are kept, and a different group gets the permissions of everybody else.
unsigned int osFsKeptMode(unsigned int mode, bool isOwnerKept, bool isGroupKept);

} // namespace Zu

#endif

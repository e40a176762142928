#include "base/osFsPlatform.h"
#include "base/osFsUtils.h"

#include <windows.h>

namespace Zu
{

namespace
{

OsFsResult resultOf(BOOL succeeded)
{
    if (succeeded) return OsFsResult::Done;
    switch (GetLastError())
    {
    case ERROR_SUCCESS:
        return OsFsResult::NoError;
    case ERROR_FILE_NOT_FOUND:
        return OsFsResult::Missing;
    default:
        return OsFsResult::Failed;
    }
}

// The code for something that exists already differs from call to call.
OsFsResult resultOf(BOOL succeeded, DWORD existsCode)
{
    if (!succeeded && GetLastError() == existsCode) return OsFsResult::Exists;
    return resultOf(succeeded);
}

} // namespace

OsFsResult osFsCreateDir(const char* path)
{
    return resultOf(CreateDirectoryA(path, nullptr), ERROR_ALREADY_EXISTS);
}

OsFsResult osFsRemoveDir(const char* path)
{
    return resultOf(RemoveDirectoryA(path));
}

// This platform has no modes.
OsFsResult osFsCreateFile(const char* path, const OsFileTypes::Permissions&, bool exclusive)
{
    const HANDLE file =
        CreateFileA(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    exclusive ? CREATE_NEW : CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return resultOf(FALSE, ERROR_FILE_EXISTS);
    CloseHandle(file);
    return OsFsResult::Done;
}

OsFsResult osFsDeleteFile(const char* path)
{
    return resultOf(DeleteFileA(path));
}

OsFsKind osFsKindOf(const char* path)
{
    const DWORD attributes = GetFileAttributesA(path);
    if (attributes == INVALID_FILE_ATTRIBUTES) return OsFsKind::Missing;
    return attributes & FILE_ATTRIBUTE_DIRECTORY ? OsFsKind::Directory : OsFsKind::Other;
}

bool osFsIsSymLink(const char*)
{
    return false;
}

} // namespace Zu

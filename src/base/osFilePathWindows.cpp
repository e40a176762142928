#include "base/osFilePath.h"

#include "base/exRaise.h"
#include "base/osPathText.h"
#include "base/osPlatformPath.h"

#include <cstdio>
#include <direct.h>
#include <windows.h>

namespace Zu
{

namespace
{

// A length beyond the buffer means that the buffer contains no path; the call sets no error then.
void checkLength(DWORD length, std::size_t size)
{
    if (length > 0 && length < size) return;
    if (length >= size) ZU_RAISE_SYSTEM_ERROR(ERROR_FILENAME_EXCED_RANGE);
    ZU_RAISE_LAST_ERROR();
}

} // namespace

const char* OsPlatformPath::separator()
{
    return "\\";
}

bool OsPlatformPath::isAbsolute(const char* path)
{
    return osIsAbsoluteWithDrive(path);
}

// In no resolved path is the first character the only separator.
const char* OsPlatformPath::rootName()
{
    return "";
}

int OsPlatformPath::nameTooLong()
{
    return ERROR_FILENAME_EXCED_RANGE;
}

char* OsFilePath::getRootDir(char* buffer)
{
    std::snprintf(buffer, BUFFER_SIZE, "%c:\\", _getdrive() + 64);
    return buffer;
}

char* OsFilePath::getTempDir(char* buffer)
{
    checkLength(GetTempPathA(BUFFER_SIZE, buffer), BUFFER_SIZE);
    return buffer;
}

const char* OsFilePath::performGetFullPath(const char* path, char* buffer)
{
    char* lastElement = nullptr;
    // For an empty path the call reports only that it failed.
    SetLastError(ERROR_INVALID_NAME);
    checkLength(GetFullPathNameA(path, BUFFER_SIZE, buffer, &lastElement), BUFFER_SIZE);
    return lastElement;
}

} // namespace Zu

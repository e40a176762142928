#include "base/osFilePath.h"

#include "base/exRaise.h"
#include "base/osPathText.h"
#include "base/osPlatformPath.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

namespace Zu
{

namespace
{

// Copies a path to a buffer, which has the same size for every caller.
char* copyToBuffer(const std::string& path, char* buffer, std::size_t size)
{
    if (path.size() >= size) ZU_RAISE_SYSTEM_ERROR(ENAMETOOLONG);
    std::memcpy(buffer, path.c_str(), path.size() + 1);
    return buffer;
}

} // namespace

const char* OsPlatformPath::separator()
{
    return "/";
}

bool OsPlatformPath::isAbsolute(const char* path)
{
    return osIsAbsoluteWithoutDrive(path);
}

const char* OsPlatformPath::rootName()
{
    return "/";
}

int OsPlatformPath::nameTooLong()
{
    return ENAMETOOLONG;
}

char* OsFilePath::getRootDir(char* buffer)
{
    return copyToBuffer("/", buffer, BUFFER_SIZE);
}

char* OsFilePath::getTempDir(char* buffer)
{
    const char* const variable = std::getenv("TMPDIR");
    const char* const directory = variable && *variable ? variable : "/tmp";
    return copyToBuffer(osConcatenate(directory, "", '/'), buffer, BUFFER_SIZE);
}

const char* OsFilePath::performGetFullPath(const char* path, char* buffer)
{
    if (*path == '\0') ZU_RAISE_SYSTEM_ERROR(ENOENT);
    char currentDir[4096] = "";
    if (!osIsAbsoluteWithoutDrive(path) && !getcwd(currentDir, sizeof currentDir))
        ZU_RAISE_LAST_ERROR();
    copyToBuffer(osLexicalFullPath(currentDir, path), buffer, BUFFER_SIZE);
    const char* const lastElement = std::strrchr(buffer, '/') + 1;
    return *lastElement ? lastElement : nullptr;
}

} // namespace Zu

#include "base/osOutputFile.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace Zu
{

namespace
{

OsOwnership ownershipOf(const struct stat& status)
{
    return {status.st_uid, status.st_mode & 07777u, S_ISREG(status.st_mode), status.st_nlink};
}

bool isInSharedPlace(std::string_view name)
{
    const auto slash = name.rfind('/');
    std::string directory = ".";
    if (slash != std::string_view::npos) directory = name.substr(0, slash + 1);
    struct stat status = {};
    return stat(directory.c_str(), &status) == 0 && osIsSharedPlace(ownershipOf(status), geteuid());
}

// A descriptor of the file itself, or of the link that stands in its place; it can't be exchanged.
int fixed(const char* name)
{
    const int made = open(name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (made >= 0 || errno != EEXIST) return made;
    return open(name, O_PATH | O_NOFOLLOW | O_CLOEXEC);
}

} // namespace

void osOpenOutput(std::ofstream& file, const char* name, bool appends)
{
    const auto mode =
        std::ios::out | std::ios::binary | (appends ? std::ios::app : std::ios::trunc);
    if (!isInSharedPlace(name))
    {
        file.open(name, mode);
        return;
    }
    const int descriptor = fixed(name);
    struct stat status = {};
    if (descriptor >= 0 && fstat(descriptor, &status) == 0 &&
        osIsOwnOutput(ownershipOf(status), geteuid()))
        file.open(S_ISREG(status.st_mode) ? "/proc/self/fd/" + std::to_string(descriptor) : name,
                  mode);
    else
        file.setstate(std::ios::failbit);
    if (descriptor >= 0) close(descriptor);
}

} // namespace Zu

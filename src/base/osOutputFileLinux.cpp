#include "base/osOutputFile.h"

#include "base/osDescriptor.h"

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
    return {status.st_uid, status.st_mode & 07777U, status.st_nlink};
}

// Opens the directory of a name, so that nobody can exchange it. A link of another user may lead
// anywhere.
int openDirectory(std::string_view name)
{
    const auto slash = name.rfind('/');
    std::string directory = ".";
    if (slash != std::string_view::npos)
    {
        // A link with a slash after it would be followed.
        const auto last = name.find_last_not_of('/', slash);
        directory = last == std::string_view::npos ? "/" : name.substr(0, last + 1);
    }
    OsDescriptor place(open(directory.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat status = {};
    if (place.get() < 0 || fstat(place.get(), &status) != 0) return -1;
    if (!S_ISLNK(status.st_mode)) return place.release();
    if (!osIsTrustedLink(ownershipOf(status), geteuid())) return -1;
    return open(directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
}

bool isOwn(const struct stat& status)
{
    return osIsOwnOutput(ownershipOf(status), geteuid());
}

// Opens a file in a shared place. It is neither emptied nor waited for until its owner is known.
int openChecked(int place, const char* name, bool appends)
{
    const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | (appends ? O_APPEND : 0);
    OsDescriptor file(openat(place, name, flags | O_NOFOLLOW | O_NONBLOCK, 0600));
    struct stat status = {};
    if (file.get() >= 0)
    {
        if (fstat(file.get(), &status) != 0 || !isOwn(status)) return -1;
        if (fcntl(file.get(), F_SETFL, flags & O_APPEND) != 0) return -1;
        if (!appends && S_ISREG(status.st_mode) && ftruncate(file.get(), 0) != 0) return -1;
        return file.release();
    }
    // A link, or a pipe that has no reader yet.
    if (errno != ELOOP && errno != ENXIO) return -1;
    if (fstatat(place, name, &status, AT_SYMLINK_NOFOLLOW) != 0 || !isOwn(status)) return -1;
    return openat(place, name, flags | (appends ? 0 : O_TRUNC), 0600);
}

int openIn(int place, const char* name, bool appends)
{
    struct stat status = {};
    if (fstat(place, &status) != 0) return -1;
    if (osIsSharedPlace(ownershipOf(status), geteuid())) return openChecked(place, name, appends);
    const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | (appends ? O_APPEND : O_TRUNC);
    return openat(place, name, flags, 0666);
}

} // namespace

void osOpenOutput(std::ofstream& file, const char* name, bool appends)
{
    const OsDescriptor place(openDirectory(name));
    const std::string_view path = name;
    const std::string leaf(path.substr(path.rfind('/') + 1));
    OsDescriptor descriptor(
        place.get() < 0 ? -1 : osAboveStandard(openIn(place.get(), leaf.c_str(), appends)));
    if (descriptor.get() >= 0 && osAdoptOutput(file, descriptor.get(), appends))
        descriptor.release();
    else
        file.setstate(std::ios::failbit);
}

} // namespace Zu

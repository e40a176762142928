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

// Fails with the error of an operation that is not permitted.
int refused()
{
    errno = EPERM;
    return -1;
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
    if (!osIsTrustedLink(ownershipOf(status), geteuid())) return refused();
    return open(directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
}

bool isOwn(const struct stat& status)
{
    return osIsOwnOutput(ownershipOf(status), geteuid());
}

int flagsOf(OsOutputMode mode)
{
    constexpr int ALWAYS = O_WRONLY | O_CREAT | O_CLOEXEC;
    switch (mode)
    {
    case OsOutputMode::Emptied:
        return ALWAYS | O_TRUNC;
    case OsOutputMode::Appended:
        return ALWAYS | O_APPEND;
    case OsOutputMode::Kept:
        break;
    }
    return ALWAYS | O_APPEND | O_NOCTTY | O_NONBLOCK;
}

// Opens a file in a shared place. It is neither emptied nor waited for until its owner is known.
int openChecked(int place, const char* name, int flags)
{
    const bool isEmptied = (flags & O_TRUNC) != 0;
    const int careful = (flags & ~O_TRUNC) | O_NOFOLLOW | O_NONBLOCK;
    OsDescriptor file(openat(place, name, careful, 0600));
    struct stat status = {};
    if (file.get() >= 0)
    {
        if (fstat(file.get(), &status) != 0) return -1;
        if (!isOwn(status)) return refused();
        if (fcntl(file.get(), F_SETFL, flags & (O_APPEND | O_NONBLOCK)) != 0) return -1;
        if (isEmptied && S_ISREG(status.st_mode) && ftruncate(file.get(), 0) != 0) return -1;
        return file.release();
    }
    // A link, or a pipe that has no reader yet.
    if (errno != ELOOP && errno != ENXIO) return -1;
    if (fstatat(place, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return -1;
    return isOwn(status) ? openat(place, name, flags, 0600) : refused();
}

int openIn(int place, const char* name, int flags)
{
    struct stat status = {};
    if (fstat(place, &status) != 0) return -1;
    const bool isShared = osIsSharedPlace(ownershipOf(status), geteuid());
    return isShared ? openChecked(place, name, flags) : openat(place, name, flags, 0666);
}

// Opens the file of a descriptor once more, for reading as well. Returns a negative number if the
// system does not permit that. The file has passed its checks, so it is enough that the name leads
// to the same one. A pipe is left alone: a process that could read it would be its own reader.
int openReadable(int place, const char* name, int descriptor)
{
    struct stat checked = {};
    struct stat status = {};
    if (fstat(descriptor, &checked) != 0 || !S_ISREG(checked.st_mode)) return -1;
    constexpr int FLAGS = O_RDWR | O_APPEND | O_NOCTTY | O_NONBLOCK | O_CLOEXEC;
    OsDescriptor twin(openat(place, name, FLAGS));
    if (twin.get() < 0 || fstat(twin.get(), &status) != 0) return -1;
    const bool isSame = status.st_dev == checked.st_dev && status.st_ino == checked.st_ino;
    return isSame ? twin.release() : -1;
}

// The same file as one that others may rename, which writes wait for. Returns a negative number if
// that fails.
int keep(int place, const char* name, int descriptor)
{
    OsDescriptor file(descriptor);
    if (file.get() < 0) return -1;
    const int readable = openReadable(place, name, file.get());
    if (readable >= 0) file.reset(readable);
    return fcntl(file.get(), F_SETFL, O_APPEND) == 0 ? file.release() : -1;
}

} // namespace

std::intptr_t osOpenOutputFile(const char* name, OsOutputMode mode)
{
    const OsDescriptor place(openDirectory(name));
    if (place.get() < 0) return -1;
    const std::string_view path = name;
    const std::string leaf(path.substr(path.rfind('/') + 1));
    int descriptor = openIn(place.get(), leaf.c_str(), flagsOf(mode));
    if (mode == OsOutputMode::Kept) descriptor = keep(place.get(), leaf.c_str(), descriptor);
    return osAboveStandard(descriptor);
}

void osOpenOutput(std::ofstream& file, const char* name, bool appends)
{
    const auto mode = appends ? OsOutputMode::Appended : OsOutputMode::Emptied;
    OsDescriptor descriptor(static_cast<int>(osOpenOutputFile(name, mode)));
    if (descriptor.get() >= 0 && osAdoptOutput(file, descriptor.get(), appends))
        descriptor.release();
    else
        file.setstate(std::ios::failbit);
}

} // namespace Zu

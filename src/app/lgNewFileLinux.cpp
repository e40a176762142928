#include "app/lgNewFile.h"

#include "base/osDescriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace Zu
{

namespace
{

constexpr mode_t OWN = 0600;

std::string directoryOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

// What a file has no name for is known here by its descriptor.
std::string ownPathOf(int file)
{
    return "/proc/self/fd/" + std::to_string(file);
}

} // namespace

int lgNewNamedFile(const std::string& path, const LgPrepare& prepare)
{
    const int flags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
    OsDescriptor file(osAboveStandard(::open(path.c_str(), flags, OWN)));
    if (file.get() < 0 || prepare(file.get())) return file.release();
    const int error = errno;
    unlink(path.c_str());
    errno = error;
    return -1;
}

int lgNewFile(const std::string& path, const LgPrepare& prepare)
{
    const int flags = O_RDWR | O_TMPFILE | O_CLOEXEC;
    OsDescriptor file(osAboveStandard(::open(directoryOf(path).c_str(), flags, OWN)));
    if (file.get() < 0) return lgNewNamedFile(path, prepare);
    if (!prepare(file.get())) return -1;
    const int linked =
        linkat(AT_FDCWD, ownPathOf(file.get()).c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW);
    if (linked == 0) return file.release();
    // Without /proc there is no way to the file.
    if (errno == ENOENT) return lgNewNamedFile(path, prepare);
    return -1;
}

} // namespace Zu

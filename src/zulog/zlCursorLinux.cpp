#include "app/lgServiceFile.h"
#include "zulog/zlCursor.h"
#include "zulog/zlFormat.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zu
{

namespace
{

[[noreturn]] void fail(const std::string& name, const std::string& what)
{
    std::string text = "\"";
    zlAppendPrintable(text, name, false);
    throw ZlError(text + "\" " + what);
}

[[noreturn]] void failWith(const std::string& name, const char* what, int error)
{
    fail(name, std::string("can't be ") + what + ": " + LgServiceFile::errorText(error));
}

// Never through a link that somebody else has left there.
int openOwn(const std::string& name, int flags)
{
    constexpr mode_t OWN = 0600;
    const int handle = open(name.c_str(), flags | O_CREAT | O_NOFOLLOW | O_CLOEXEC, OWN);
    if (handle < 0) failWith(name, "written", errno);
    return handle;
}

// The error.
int writeAll(int handle, std::string_view text)
{
    while (!text.empty())
    {
        const ssize_t count = write(handle, text.data(), text.size());
        if (count < 0 && errno != EINTR) return errno;
        if (count > 0) text.remove_prefix(static_cast<std::size_t>(count));
    }
    return fsync(handle) == 0 ? 0 : errno;
}

// So that the new name is kept.
void syncDirectory(const std::string& name)
{
    const std::string directory = std::filesystem::path(name).parent_path().string();
    const int handle =
        open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) failWith(name, "written", errno);
    const int error = fsync(handle) == 0 ? 0 : errno;
    close(handle);
    // Some file systems have nothing to synchronise there.
    if (error != 0 && error != EINVAL) failWith(name, "written", error);
}

} // namespace

ZlCursorFile::ZlCursorFile(const std::string& name) : _name(name)
{
    const int handle = openOwn(name + ".lock", O_RDWR);
    if (flock(handle, LOCK_EX | LOCK_NB) != 0)
    {
        const int error = errno;
        close(handle);
        if (error == EWOULDBLOCK) fail(name, "is the cursor of another zulog that runs");
        failWith(name, "locked", error);
    }
    _lock = handle;
}

ZlCursorFile::~ZlCursorFile()
{
    close(static_cast<int>(_lock));
}

std::optional<std::string> ZlCursorFile::read() const
{
    const int handle = open(_name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (handle < 0 && errno == ENOENT) return std::nullopt;
    if (handle < 0) failWith(_name, "opened", errno);
    std::string text(LARGEST + 1, '\0');
    std::size_t size = 0;
    ssize_t count = 1;
    while (count > 0 && size < text.size())
    {
        count = ::read(handle, text.data() + size, text.size() - size);
        if (count > 0) size += static_cast<std::size_t>(count);
    }
    const int error = errno;
    close(handle);
    if (count < 0) failWith(_name, "read", error);
    if (size > LARGEST) fail(_name, "is no cursor of zulog");
    text.resize(size);
    return text;
}

void ZlCursorFile::replace(std::string_view text)
{
    const std::string temporary = _name + ".new";
    const int handle = openOwn(temporary, O_WRONLY | O_TRUNC);
    const int error = writeAll(handle, text);
    close(handle);
    if (error != 0) failWith(temporary, "written", error);
    if (std::rename(temporary.c_str(), _name.c_str()) != 0) failWith(_name, "written", errno);
    syncDirectory(_name);
}

} // namespace Zu

#include "zulog/zlFile.h"

#include "app/lgServiceFile.h"
#include "zulog/zlFormat.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zu
{

namespace
{

[[noreturn]] void fail(const std::string& name, const char* what, int error)
{
    std::string text = "\"";
    zlAppendPrintable(text, name, false);
    throw ZlError(text + "\" can't be " + what + ": " + LgServiceFile::errorText(error));
}

ZlFile::Facts factsOf(const struct stat& status)
{
    constexpr std::int64_t SECOND = 1000000000;
    return {{status.st_dev, status.st_ino},
            static_cast<std::uint64_t>(status.st_size),
            status.st_mtim.tv_sec * SECOND + status.st_mtim.tv_nsec};
}

} // namespace

ZlFile::ZlFile(const std::string& name) : _name(name)
{
    if (name == "-")
    {
        _handle = dup(STDIN_FILENO);
        if (_handle < 0) fail(name, "opened", errno);
        return;
    }
    _handle = open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    if (_handle < 0) fail(name, "opened", errno);
    struct stat status = {};
    fstat(static_cast<int>(_handle), &status);
    _isPlain = S_ISREG(status.st_mode);
    if (!S_ISDIR(status.st_mode)) return;
    close(static_cast<int>(_handle));
    fail(name, "opened", EISDIR);
}

ZlFile::~ZlFile()
{
    close(static_cast<int>(_handle));
}

std::size_t ZlFile::read(char* place, std::size_t size)
{
    ssize_t count = 0;
    do count = ::read(static_cast<int>(_handle), place, size);
    while (count < 0 && errno == EINTR);
    if (count < 0) fail(_name, "read", errno);
    _offset += static_cast<std::uint64_t>(count);
    return static_cast<std::size_t>(count);
}

void ZlFile::seek(std::uint64_t offset)
{
    if (lseek(static_cast<int>(_handle), static_cast<off_t>(offset), SEEK_SET) < 0)
        fail(_name, "read", errno);
    _offset = offset;
}

std::uint64_t ZlFile::getSize() const
{
    struct stat status = {};
    if (!_isPlain || fstat(static_cast<int>(_handle), &status) != 0) return 0;
    return static_cast<std::uint64_t>(status.st_size);
}

ZlFile::Facts ZlFile::getFacts() const
{
    struct stat status = {};
    fstat(static_cast<int>(_handle), &status);
    return factsOf(status);
}

bool ZlFile::find(const std::string& name, Facts& facts)
{
    struct stat status = {};
    if (stat(name.c_str(), &status) != 0 || S_ISDIR(status.st_mode)) return false;
    facts = factsOf(status);
    return true;
}

} // namespace Zu

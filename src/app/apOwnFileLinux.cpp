#include "app/apOwnFile.h"

#include "base/osDescriptor.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Zu
{

namespace
{

std::string systemText()
{
    return std::generic_category().message(errno);
}

// Why the file is not to be trusted; empty if it is.
std::string refusalOf(int file)
{
    struct stat status = {};
    if (fstat(file, &status) != 0) return systemText();
    if (!S_ISREG(status.st_mode)) return "it is not a plain file";
    if (status.st_uid != geteuid() && status.st_uid != 0) return "it belongs to another user";
    if ((status.st_mode & (S_IWGRP | S_IWOTH)) == 0) return {};
    std::array<char, 8> mode{};
    std::snprintf(mode.data(), mode.size(), "%04o", status.st_mode & 07777U);
    return std::string("others can change it: its mode is ") + mode.data();
}

} // namespace

std::string apReadOwnFile(const std::string& path, std::string& content)
{
    // Without waiting for the other end of a pipe.
    const OsDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (file.get() < 0) return systemText();
    if (std::string refusal = refusalOf(file.get()); !refusal.empty()) return refusal;
    content.resize(AP_LONGEST_FILE + 1);
    std::size_t size = 0;
    while (size < content.size())
    {
        const ssize_t count = read(file.get(), content.data() + size, content.size() - size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return systemText();
        if (count == 0) break;
        size += static_cast<std::size_t>(count);
    }
    if (size > AP_LONGEST_FILE) return "it is longer than 1 MiB";
    content.resize(size);
    return {};
}

} // namespace Zu

#include "base/osFileHandle.h"

#include "base/exRaise.h"
#include "base/osFileEx.h"
#include "base/osFilePlatform.h"
#include "base/osFsUtils.h"

#include <cerrno>
#include <cstddef>
#include <exception>
#include <limits>

namespace Zu::OsFileHandle
{

namespace
{

// Larger writes are split, so that the count of each call fits.
constexpr std::size_t LARGEST_PIECE = std::size_t{1} << 30;

// Whether an existing file may not be replaced; a directory is copied into instead.
bool isBarred(const char* target)
{
    return OsFsUtils::fileExists(target) &&
           OsFilePlatform::accessTo(target, OsFileTypes::AccessWrite) == 0;
}

} // namespace

void check(std::int64_t handle)
{
    if (handle != OsFilePlatform::NONE) return;
    ZU_RAISE_ERRNO(EBADF);
}

void checkNotEmpty(const OsFilePath& path)
{
    if (path.isEmpty()) throw OsFileEx::ExNullFilePath(__FILE__, __LINE__);
}

std::int64_t seek(std::int64_t handle, std::int64_t offset, OsFileTypes::SeekMode mode)
{
    check(handle);
    std::int64_t position = 0;
    if (!OsFilePlatform::seek(handle, offset, mode, position)) ZU_RAISE_LAST_ERROR();
    return position;
}

std::int32_t seek32(std::int64_t handle, std::int32_t offset, OsFileTypes::SeekMode mode)
{
    const std::int64_t before = seek(handle, 0, OsFileTypes::SeekCurrent);
    const std::int64_t position = seek(handle, offset, mode);
    if (position <= std::numeric_limits<std::int32_t>::max())
        return static_cast<std::int32_t>(position);
    seek(handle, before, OsFileTypes::SeekBegin);
    ZU_RAISE_SYSTEM_ERROR(OsFilePlatform::codeOf(OsFilePlatform::Error::TooLarge));
}

std::uint32_t read(std::int64_t handle, void* buffer, std::uint32_t size)
{
    check(handle);
    char* const bytes = static_cast<char*>(buffer);
    for (std::uint32_t total = 0;;)
    {
        std::uint32_t count = 0;
        const bool isRead = OsFilePlatform::read(handle, bytes + total, size - total, count);
        if (!isRead && total == 0) ZU_RAISE_LAST_ERROR();
        total += count;
        // No call reads more than 2 GiB, and on something other than a file another call might
        // block forever.
        if (count == 0 || total == size || !OsFilePlatform::isPlain(handle)) return total;
    }
}

void writeAll(std::int64_t handle, std::string_view content, std::uint64_t& written)
{
    written = 0;
    check(handle);
    while (written < content.size())
    {
        const std::string_view piece = content.substr(written, LARGEST_PIECE);
        const auto size = static_cast<std::uint32_t>(piece.size());
        std::uint32_t count = 0;
        const bool isDone = OsFilePlatform::write(handle, piece.data(), size, count);
        written += count;
        if (isDone && count == size) continue;
        if (isDone) ZU_RAISE_SYSTEM_ERROR(OsFilePlatform::codeOf(OsFilePlatform::Error::DiskFull));
        ZU_RAISE_LAST_ERROR();
    }
}

void copyAll(std::int64_t from, std::int64_t to)
{
    char buffer[65536];
    std::uint64_t written = 0;
    while (const std::uint32_t count = read(from, buffer, sizeof buffer))
        writeAll(to, {buffer, count}, written);
}

OsFilePath destinationOfCopy(const OsFilePath& source, const OsFilePath& target)
{
    checkNotEmpty(source);
    checkNotEmpty(target);
    if (OsFsUtils::isDirectory(source.getChars()))
        throw OsFileEx::ExInvalidPath(__FILE__, __LINE__, source.getChars());
    OsFilePath destination = target;
    if (OsFsUtils::isDirectory(target.getChars()))
        destination += source.getBaseName();
    else if (isBarred(target.getChars()))
        throw OsFileEx::ExPathNotWritable(__FILE__, __LINE__, target.getChars());
    if (OsFilePlatform::isSame(source.getChars(), destination.getChars()))
        throw OsFileEx::ExInvalidPath(__FILE__, __LINE__, destination.getChars());
    return destination;
}

void close(std::int64_t& handle)
{
    check(handle);
    const OsFilePlatform::Closed result = OsFilePlatform::close(handle);
    if (result != OsFilePlatform::Closed::Failed) handle = OsFilePlatform::NONE;
    if (result != OsFilePlatform::Closed::Done) ZU_RAISE_LAST_ERROR();
}

void closeAtEnd(std::int64_t handle)
{
    if (handle == OsFilePlatform::NONE) return;
    const bool isClosed = OsFilePlatform::close(handle) == OsFilePlatform::Closed::Done;
    if (!isClosed && std::uncaught_exceptions() == 0) ZU_RAISE_LAST_ERROR();
}

} // namespace Zu::OsFileHandle

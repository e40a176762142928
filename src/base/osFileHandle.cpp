#include "base/osFileHandle.h"

#include "base/exSysError.h"
#include "base/osFileEx.h"
#include "base/osFilePlatform.h"

#include <cerrno>
#include <exception>
#include <limits>

namespace Zu::OsFileHandle
{

void check(std::int64_t handle)
{
    if (handle != OsFilePlatform::NONE) return;
    errno = EBADF;
    throw ExSysErrorANSI(__FILE__, __LINE__);
}

void checkNotEmpty(const OsFilePath& path)
{
    if (path.isEmpty()) throw OsFileEx::ExNullFilePath(__FILE__, __LINE__);
}

std::int64_t seek(std::int64_t handle, std::int64_t offset, OsFileTypes::SeekMode mode)
{
    check(handle);
    std::int64_t position = 0;
    if (!OsFilePlatform::seek(handle, offset, mode, position))
        throw ExSysErrorWindows(__FILE__, __LINE__);
    return position;
}

std::int32_t seek32(std::int64_t handle, std::int32_t offset, OsFileTypes::SeekMode mode)
{
    const std::int64_t before = seek(handle, 0, OsFileTypes::SeekCurrent);
    const std::int64_t position = seek(handle, offset, mode);
    if (position <= std::numeric_limits<std::int32_t>::max())
        return static_cast<std::int32_t>(position);
    seek(handle, before, OsFileTypes::SeekBegin);
    OsFilePlatform::setLastError(OsFilePlatform::Error::TooLarge);
    throw ExSysErrorWindows(__FILE__, __LINE__);
}

void close(std::int64_t& handle)
{
    check(handle);
    const OsFilePlatform::Closed result = OsFilePlatform::close(handle);
    if (result != OsFilePlatform::Closed::Failed) handle = OsFilePlatform::NONE;
    if (result != OsFilePlatform::Closed::Done) throw ExSysErrorWindows(__FILE__, __LINE__);
}

void closeAtEnd(std::int64_t handle)
{
    if (handle == OsFilePlatform::NONE) return;
    const bool isClosed = OsFilePlatform::close(handle) == OsFilePlatform::Closed::Done;
    if (!isClosed && std::uncaught_exceptions() == 0) throw ExSysErrorWindows(__FILE__, __LINE__);
}

} // namespace Zu::OsFileHandle

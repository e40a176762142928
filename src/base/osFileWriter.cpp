#include "base/osFileWriter.h"

#include "base/exRaise.h"
#include "base/osFileHandle.h"
#include "base/osFilePlatform.h"

namespace Zu
{

OsFileWriter::OsFileWriter(const OsFilePath& path, const OsFileTypes::Permissions& permissions,
                           bool exclusive)
    : _path(path), _handle(OsFilePlatform::NONE)
{
    performOpen(permissions, exclusive);
}

OsFileWriter::OsFileWriter(const OsFile& file, const OsFileTypes::Permissions& permissions,
                           bool exclusive)
    : OsFileWriter(file.getPath(), permissions, exclusive)
{
}

OsFileWriter::~OsFileWriter() noexcept(false)
{
    OsFileHandle::closeAtEnd(_handle);
}

void OsFileWriter::performOpen(const OsFileTypes::Permissions& permissions, bool exclusive)
{
    OsFileHandle::checkNotEmpty(_path);
    _handle = OsFilePlatform::openNew(_path.getChars(), permissions, exclusive);
    if (_handle == OsFilePlatform::NONE) ZU_RAISE_LAST_ERROR();
}

std::int32_t OsFileWriter::seek(std::int32_t offset, OsFileTypes::SeekMode mode)
{
    return OsFileHandle::seek32(_handle, offset, mode);
}

std::uint32_t OsFileWriter::write(const void* buffer, std::uint32_t size)
{
    OsFileHandle::check(_handle);
    std::uint32_t count = 0;
    if (!OsFilePlatform::write(_handle, buffer, size, count)) ZU_RAISE_LAST_ERROR();
    return count;
}

void OsFileWriter::reserve(std::uint32_t size)
{
    OsFileHandle::check(_handle);
    if (!OsFilePlatform::resize(_handle, size)) ZU_RAISE_LAST_ERROR();
}

void OsFileWriter::close()
{
    OsFileHandle::close(_handle);
}

} // namespace Zu

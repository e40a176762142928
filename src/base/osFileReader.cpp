#include "base/osFileReader.h"

#include "base/exRaise.h"
#include "base/osFileHandle.h"
#include "base/osFilePlatform.h"

namespace Zu
{

OsFileReader::OsFileReader(const OsFilePath& path) : _path(path), _handle(OsFilePlatform::NONE)
{
    performOpen();
}

OsFileReader::OsFileReader(const OsFile& file) : OsFileReader(file.getPath()) {}

OsFileReader::~OsFileReader() noexcept(false)
{
    OsFileHandle::closeAtEnd(_handle);
}

void OsFileReader::performOpen()
{
    OsFileHandle::checkNotEmpty(_path);
    _handle = OsFilePlatform::openExisting(_path.getChars(), OsFileTypes::AccessRead);
    if (_handle == OsFilePlatform::NONE) ZU_RAISE_LAST_ERROR();
}

std::int32_t OsFileReader::seek(std::int32_t offset, OsFileTypes::SeekMode mode)
{
    return OsFileHandle::seek32(_handle, offset, mode);
}

std::uint32_t OsFileReader::read(void* buffer, std::uint32_t size)
{
    return OsFileHandle::read(_handle, buffer, size);
}

void OsFileReader::close()
{
    OsFileHandle::close(_handle);
}

} // namespace Zu

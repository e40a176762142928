#include "base/osFile.h"

#include "base/duplicateString.h"
#include "base/exRaise.h"
#include "base/osDateUtil.h"
#include "base/osFileEx.h"
#include "base/osFileHandle.h"
#include "base/osFilePlatform.h"
#include "base/osFileReader.h"
#include "base/osFileWriter.h"
#include "base/osFsUtils.h"

#include <limits>

namespace Zu
{

namespace
{

using OsFileHandle::checkNotEmpty;
using OsFilePlatform::Closed;
using OsFilePlatform::Moment;

// makeTime() uses only so many bits of a year.
constexpr int END_OF_YEARS = 1 << 16;

ObjPtrRet<OsDateTypes::DateRep> dateOf(const Moment& moment)
{
    ObjPtrRet<OsDateTypes::DateRep> date(new OsDateTypes::DateRep{~0U, ~0U});
    if (moment._year >= 0 && moment._year < END_OF_YEARS)
        OsDateUtil::makeTime(moment._year, moment._month, moment._day, moment._hour, moment._minute,
                             moment._second, moment._mode, *date);
    return date;
}

} // namespace

OsFile::OsFile(const OsFilePath& path) : _path(path) {}

OsFile::~OsFile() = default;

void OsFile::checkPath() const
{
    checkNotEmpty(_path);
}

void OsFile::checkExists() const
{
    if (!exists()) throw OsFileEx::ExInvalidPath(__FILE__, __LINE__, _path.getChars());
}

const OsFilePath& OsFile::getPath() const
{
    return _path;
}

void OsFile::setPath(const OsFilePath& path)
{
    _path = path;
}

bool OsFile::exists() const
{
    checkPath();
    return OsFsUtils::fileExists(_path.getChars());
}

void OsFile::refreshInfo() {}

ArrayPtrRet<char> OsFile::getOwner() const
{
    checkExists();
    std::string owner;
    if (!OsFilePlatform::ownerOf(_path.getChars(), owner)) ZU_RAISE_LAST_ERROR();
    return duplicateString(owner.c_str());
}

std::uint32_t OsFile::getSize() const
{
    checkExists();
    std::uint64_t size = 0;
    if (!OsFilePlatform::sizeOf(_path.getChars(), size)) ZU_RAISE_LAST_ERROR();
    if (size >= std::numeric_limits<std::uint32_t>::max())
        ZU_RAISE_SYSTEM_ERROR(OsFilePlatform::codeOf(OsFilePlatform::Error::TooLarge));
    return static_cast<std::uint32_t>(size);
}

int OsFile::getAccess() const
{
    checkPath();
    return OsFilePlatform::accessTo(_path.getChars(),
                                    OsFileTypes::AccessRead | OsFileTypes::AccessWrite);
}

bool OsFile::isReadable() const
{
    checkPath();
    return OsFilePlatform::accessTo(_path.getChars(), OsFileTypes::AccessRead) != 0;
}

bool OsFile::isWritable() const
{
    checkPath();
    return OsFilePlatform::accessTo(_path.getChars(), OsFileTypes::AccessWrite) != 0;
}

OsFileTypes::ElementType OsFile::getType() const
{
    checkExists();
    OsFileTypes::ElementType type;
    if (!OsFilePlatform::typeOf(_path.getChars(), type)) ZU_RAISE_LAST_ERROR();
    return type;
}

bool OsFile::isFile() const
{
    return getType() == OsFileTypes::ElementRegular;
}

bool OsFile::isDirectory() const
{
    return getType() == OsFileTypes::ElementDirectory;
}

bool OsFile::isSymLink() const
{
    checkExists();
    return OsFsUtils::isSymLink(_path.getChars());
}

ObjPtrRet<OsDateTypes::DateRep> OsFile::getLastModificationTime() const
{
    checkExists();
    Moment moment;
    if (!OsFilePlatform::lastModificationOf(_path.getChars(), moment)) ZU_RAISE_LAST_ERROR();
    return dateOf(moment);
}

ObjPtrRet<OsDateTypes::DateRep> OsFile::getLastAccessTime() const
{
    checkExists();
    Moment moment;
    if (!OsFilePlatform::lastAccessOf(_path.getChars(), moment)) ZU_RAISE_LAST_ERROR();
    return dateOf(moment);
}

ObjPtrRet<OsFileTypes::UnbufferedInfo> OsFile::getUnbufferedInfo() const
{
    constexpr std::uint32_t LARGEST_TRANSFER = 0x7fffffff;
    checkExists();
    OsFilePlatform::Volume volume;
    if (!OsFilePlatform::volumeOf(_path.getChars(), volume)) ZU_RAISE_LAST_ERROR();
    if (volume._isRemote)
        throw OsFileEx::ExNoRemoteUnbuffered(__FILE__, __LINE__, volume._name.c_str());
    return ObjPtrRet<OsFileTypes::UnbufferedInfo>(
        new OsFileTypes::UnbufferedInfo(volume._sectorSize, volume._sectorSize, LARGEST_TRANSFER));
}

void OsFile::create(const OsFileTypes::Permissions& permissions, bool exclusive)
{
    checkPath();
    OsFsUtils::createFile(_path.getChars(), permissions, exclusive);
}

void OsFile::remove()
{
    checkPath();
    if (!OsFilePlatform::remove(_path.getChars())) ZU_RAISE_LAST_ERROR();
}

void OsFile::renameTo(const OsFilePath& path)
{
    checkPath();
    checkNotEmpty(path);
    if (!OsFilePlatform::rename(_path.getChars(), path.getChars())) ZU_RAISE_LAST_ERROR();
    setPath(path);
}

void OsFile::copyTo(const OsFilePath& target)
{
    const OsFilePath destination = OsFileHandle::destinationOfCopy(_path, target);
    OsFileReader reader(_path);
    OsFileWriter writer(destination,
                        OsFileTypes::Permissions(OsFileTypes::AccessRead | OsFileTypes::AccessWrite,
                                                 OsFileTypes::AccessRead | OsFileTypes::AccessWrite,
                                                 0),
                        false);
    OsFileHandle::copyAll(reader._handle, writer._handle);
    writer.close();
    reader.close();
}

std::int64_t OsFile::open(int access) const
{
    checkPath();
    const std::int64_t handle = OsFilePlatform::openExisting(_path.getChars(), access);
    if (handle == OsFilePlatform::NONE) ZU_RAISE_LAST_ERROR();
    return handle;
}

void OsFile::close(std::int64_t handle) const
{
    if (OsFilePlatform::close(handle) != Closed::Done) ZU_RAISE_LAST_ERROR();
}

} // namespace Zu

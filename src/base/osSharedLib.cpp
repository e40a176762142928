#include "base/osSharedLib.h"

namespace Zu
{

OsSharedLib::OsSharedLib(const OsFilePath& path) : _path(path) {}

OsSharedLib::~OsSharedLib() = default;

const OsFilePath& OsSharedLib::getPath() const
{
    return _path;
}

} // namespace Zu

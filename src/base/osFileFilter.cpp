#include "base/osFileFilter.h"

#include "base/duplicateString.h"
#include "base/osFsUtils.h"

#include <cstring>

namespace Zu
{

OsFileFilter::~OsFileFilter() = default;

OsPassThroughFilter::~OsPassThroughFilter() = default;

bool OsPassThroughFilter::filter(const OsFilePath&) const
{
    return true;
}

OsDirectoryFilter::~OsDirectoryFilter() = default;

bool OsDirectoryFilter::filter(const OsFilePath& path) const
{
    return OsFsUtils::isDirectory(path.getChars());
}

OsLeafFileFilter::OsLeafFileFilter() : _suffixLength(0) {}

OsLeafFileFilter::OsLeafFileFilter(const char* suffix) : _suffixLength(0)
{
    if (!suffix) return;
    _suffix = duplicateString(suffix);
    _suffixLength = static_cast<int>(std::strlen(suffix));
}

OsLeafFileFilter::~OsLeafFileFilter() = default;

bool OsLeafFileFilter::filter(const OsFilePath& path) const
{
    if (OsFsUtils::isDirectory(path.getChars())) return false;
    if (!_suffix.get()) return true;
    const OsFilePath name = path.getBaseName();
    const std::size_t length = std::strlen(name.getChars());
    const auto suffixLength = static_cast<std::size_t>(_suffixLength);
    return length >= suffixLength &&
           std::memcmp(name.getChars() + length - suffixLength, _suffix.get(), suffixLength) == 0;
}

} // namespace Zu

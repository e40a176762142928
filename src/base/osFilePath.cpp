#include "base/osFilePath.h"

#include "base/duplicateString.h"
#include "base/exRaise.h"
#include "base/exSystemCode.h"
#include "base/osFileEx.h"
#include "base/osPathText.h"
#include "base/osPlatformPath.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <string>

namespace Zu
{

OsFilePath::OsFilePath() : OsFilePath(nullptr) {}

OsFilePath::OsFilePath(const char* path) : _path(duplicateString(path)) {}

OsFilePath::OsFilePath(const OsFilePath& other) : _path(duplicateString(other.getChars())) {}

OsFilePath& OsFilePath::operator=(const OsFilePath& other)
{
    if (this != &other) set(other.getChars());
    return *this;
}

OsFilePath& OsFilePath::operator=(const char* path)
{
    set(path);
    return *this;
}

OsFilePath::~OsFilePath() = default;

void OsFilePath::set(const char* path)
{
    _path = duplicateString(path);
}

const char* OsFilePath::getChars() const
{
    return _path.get();
}

bool OsFilePath::isEmpty() const
{
    return _path[0] == '\0';
}

bool OsFilePath::isAbsolute() const
{
    return isAbsolute(getChars());
}

bool OsFilePath::isAbsolute(const char* path)
{
    return OsPlatformPath::isAbsolute(path);
}

bool OsFilePath::isRelative() const
{
    return !isAbsolute();
}

ArrayPtrRet<char> OsFilePath::getExtension() const
{
    const OsFilePath baseName = getBaseName();
    return duplicateString(std::string(osExtension(baseName.getChars())).c_str());
}

OsFilePath OsFilePath::getBaseName() const
{
    char fullPath[BUFFER_SIZE];
    return OsFilePath(performGetFullPath(getChars(), fullPath));
}

OsFilePath OsFilePath::getDirectoryName() const
{
    char fullPath[BUFFER_SIZE];
    performGetFullPath(getChars(), fullPath);
    const std::string directory =
        osDirectoryName(fullPath, getChars(), *getSeparator(), OsPlatformPath::rootName());
    return OsFilePath(directory.c_str());
}

OsFilePath& OsFilePath::operator+=(const OsFilePath& path)
{
    if (path.isAbsolute()) throw OsFileEx::ExIllegalPathConcat(__FILE__, __LINE__);
    concatenate(path.getChars());
    return *this;
}

OsFilePath OsFilePath::operator+(const OsFilePath& path) const
{
    OsFilePath sum(*this);
    sum += path;
    return sum;
}

OsFilePath& OsFilePath::operator+=(const char* element)
{
    if (std::strchr(element, *getSeparator()))
        throw OsFileEx::ExSeparatorNotAllowed(__FILE__, __LINE__);
    concatenate(element);
    return *this;
}

OsFilePath OsFilePath::operator+(const char* element) const
{
    OsFilePath sum(*this);
    sum += element;
    return sum;
}

int OsFilePath::compare(const char* a, const char* b)
{
    // strcmp() compares bytes as unsigned ones, but may return any number of the right sign.
    const int order = std::strcmp(a, b);
    return (order > 0) - (order < 0);
}

const char* OsFilePath::getSeparator()
{
    return OsPlatformPath::separator();
}

OsFilePath OsFilePath::getRootDir()
{
    char path[BUFFER_SIZE];
    return OsFilePath(getRootDir(path));
}

OsFilePath OsFilePath::getTempDir()
{
    char path[BUFFER_SIZE];
    return OsFilePath(getTempDir(path));
}

OsFilePath OsFilePath::getHomeDir()
{
    char path[BUFFER_SIZE];
    return OsFilePath(getHomeDir(path));
}

char* OsFilePath::getHomeDir(char* buffer)
{
    const char* const home = std::getenv("HOME");
    if (!home) throw OsFileEx::ExHomeNotDefined(__FILE__, __LINE__);
    if (std::strlen(home) >= BUFFER_SIZE) ZU_RAISE_SYSTEM_ERROR(OsPlatformPath::nameTooLong());
    std::strcpy(buffer, home);
    std::replace(buffer, buffer + std::strlen(buffer), '/', *getSeparator());
    return buffer;
}

std::ostream& OsFilePath::dump(std::ostream& os) const
{
    return os << getChars();
}

void OsFilePath::concatenate(const char* element)
{
    set(osConcatenate(getChars(), element, *getSeparator()).c_str());
}

} // namespace Zu

#include "app/apTestFile.h"

#include "base/osFile.h"
#include "base/osFilePath.h"
#include "base/osFsUtils.h"
#include "base/osOutputFile.h"

#include <cstdio>
#include <utility>

namespace Zu
{

namespace
{

// Whether a new file takes the place of what the path leads to.
bool isReplaced(const std::string& path)
{
    const char* const name = path.c_str();
    if (OsFsUtils::isSymLink(name)) return false;
    return !OsFsUtils::fileExists(name) || OsFile(OsFilePath(name)).isFile();
}

} // namespace

ApTestFile::ApTestFile(std::string path) : _path(std::move(path)), _beside(_path)
{
    if (isReplaced(_path)) _beside += ".new";
    osOpenOutput(_stream, _beside.c_str(), false);
}

ApTestFile::~ApTestFile()
{
    if (!_stream.is_open()) return;
    _stream.close();
    if (_beside != _path) std::remove(_beside.c_str());
}

bool ApTestFile::isOpen() const
{
    return _stream.is_open();
}

bool ApTestFile::write(const std::string& text)
{
    _stream << text;
    const bool isWritten = _stream.good();
    _stream.close();
    if (_beside == _path) return isWritten && !_stream.fail();
    if (isWritten && !_stream.fail() && apRenameOver(_beside, _path)) return true;
    std::remove(_beside.c_str());
    return false;
}

} // namespace Zu

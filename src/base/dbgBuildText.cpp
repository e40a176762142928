#include "base/dbgBuildText.h"

namespace Zu
{

DbgTextBuildInfo::DbgTextBuildInfo(const DbgBuildText& text) : _text(text) {}

DbgTextBuildInfo::~DbgTextBuildInfo() = default;

const char* DbgTextBuildInfo::getApiName() const
{
    return _text._apiName;
}

int DbgTextBuildInfo::getMajorVersion() const
{
    return _text._majorVersion;
}

int DbgTextBuildInfo::getMinorVersion() const
{
    return _text._minorVersion;
}

const char* DbgTextBuildInfo::getVersionLabel() const
{
    return _text._versionLabel;
}

const char* DbgTextBuildInfo::getLibraryName(bool) const
{
    return _text._libraryName;
}

const char* DbgTextBuildInfo::getBuildStamp(bool verbose) const
{
    return verbose ? _text._longStamp : _text._shortStamp;
}

const char* DbgTextBuildInfo::getBuildDate(bool) const
{
    return _text._date;
}

const char* DbgTextBuildInfo::getBuildConfiguration(bool) const
{
    return _text._configuration;
}

const char* DbgTextBuildInfo::getBuiltBy(bool) const
{
    return _text._builtBy;
}

const char* DbgTextBuildInfo::getBuildNotes(bool) const
{
    return _text._notes;
}

} // namespace Zu

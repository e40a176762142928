#include "base/dbgBuildInfoUtil.h"

#include "base/dbgBuildInfoMgr.h"
#include "base/exDefine.h"
#include "base/osSharedLib.h"

#include <string>

namespace Zu
{

bool DbgBuildInfoUtil::_validateVersions = true;
bool DbgBuildInfoUtil::_checkStamps = false;

void DbgBuildInfoUtil::setValidateVersions(bool validateVersions)
{
    _validateVersions = validateVersions;
}

void DbgBuildInfoUtil::setCheckStamps(bool checkStamps)
{
    _checkStamps = checkStamps;
}

void DbgBuildInfoUtil::registerInfo(ObjPtr<DbgBuildInfo> info)
{
    DbgBuildInfoMgr::registerInfo(info, _validateVersions, _checkStamps);
}

void DbgBuildInfoUtil::registerModule(const char* name)
{
    using GetBuildInfo = DbgBuildInfo* (*)();
    const std::string file =
        std::string("libZU") + ExText::orEmpty(name) + OsSharedLib::getSuffix();
    const ObjPtr<OsSharedLib> module = OsSharedLib::open(OsFilePath(file.c_str()));
    const auto getBuildInfo = reinterpret_cast<GetBuildInfo>(module->getFunction("getBuildInfo"));
    registerInfo(ObjPtr<DbgBuildInfo>(getBuildInfo()));
}

} // namespace Zu

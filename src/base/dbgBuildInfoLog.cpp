#include "base/dbgBuildInfoLog.h"

#include "base/internalAssert.h"
#include "base/lgEvent.h"

namespace Zu::DbgBuildInfoLog
{

ZU_DEFINE_LOG_GROUP(BuildInfo);

void start()
{
    ZU_START_LOG_GROUP("Base", BuildInfo);
}

void stop()
{
    ZU_STOP_LOG_GROUP(BuildInfo);
}

bool isStarted()
{
    return LgGroups::MinorLevelBuildInfo != nullptr;
}

void log(LgTypes::Level level, const std::string& text)
{
    ZU_INTERNAL_ASSERT_TEXT(LgGroups::MinorLevelBuildInfo, "minor");
    ZU_LOG(BuildInfo, level, text);
}

} // namespace Zu::DbgBuildInfoLog

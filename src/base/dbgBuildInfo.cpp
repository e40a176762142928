#include "base/dbgBuildInfo.h"

namespace Zu
{

DbgBuildInfo::~DbgBuildInfo() = default;

} // namespace Zu

#include "base/inDebug.h"

#include <cstdlib>

namespace Zu
{

bool inDebugInitialize()
{
    return std::getenv("ZU_DEBUG_INITIALIZE") != nullptr;
}

} // namespace Zu

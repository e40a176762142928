#include "base/inDebug.h"

#include <cstdlib>
#include <iostream>

namespace Zu
{

bool inDebugInitialize()
{
    return std::getenv("ZU_DEBUG_INITIALIZE") != nullptr;
}

std::ostream& inDebugStream()
{
    static const std::ios_base::Init streams;
    return std::cerr;
}

} // namespace Zu

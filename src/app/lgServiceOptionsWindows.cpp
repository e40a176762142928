#include "app/lgServiceOptions.h"

#include <stdlib.h>

namespace Zu
{

const char* const* LgServiceOptions::processEntries()
{
    return _environ;
}

} // namespace Zu

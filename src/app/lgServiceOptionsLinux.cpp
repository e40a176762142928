#include "app/lgServiceOptions.h"

#include <unistd.h>

namespace Zu
{

const char* const* LgServiceOptions::processEntries()
{
    return environ;
}

} // namespace Zu

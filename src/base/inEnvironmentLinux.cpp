#include "base/inEnvironment.h"

#include <unistd.h>

namespace Zu
{

const char* const* inProcessEnvironment()
{
    return environ;
}

} // namespace Zu

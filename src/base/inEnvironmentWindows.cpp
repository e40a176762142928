#include "base/inEnvironment.h"

#include <stdlib.h>

namespace Zu
{

const char* const* inProcessEnvironment()
{
    return _environ;
}

} // namespace Zu

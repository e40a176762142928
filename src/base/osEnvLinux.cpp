#include "base/osEnv.h"

#include <cstdlib>

namespace Zu
{

bool OsEnv::performPut(const char* name, const char* value)
{
    return setenv(name, value, 1) == 0;
}

bool OsEnv::performRemove(const char* name)
{
    return unsetenv(name) == 0;
}

} // namespace Zu

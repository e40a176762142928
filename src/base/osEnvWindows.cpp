#include "base/osEnv.h"

#include <cstdlib>
#include <string>

namespace Zu
{

bool OsEnv::performPut(const char* name, const char* value)
{
    return _putenv((std::string(name) + "=" + value).c_str()) == 0;
}

bool OsEnv::performRemove(const char* name)
{
    return _putenv((std::string(name) + "=").c_str()) == 0;
}

} // namespace Zu

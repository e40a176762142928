#include "base/osEnv.h"

#include "base/exInternalError.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace Zu
{

const char* OsEnv::getVariable(const char* name)
{
    return name ? std::getenv(name) : nullptr;
}

void OsEnv::putVariable(const char* assignment)
{
    const char* const separator = assignment ? std::strchr(assignment, '=') : nullptr;
    if (separator && separator != assignment)
    {
        const std::string name(assignment, separator);
        const char* const value = separator + 1;
        if (*value ? performPut(name.c_str(), value) : performRemove(name.c_str())) return;
    }
    throw ExInternalError(__FILE__, __LINE__, "Could not set environment variable");
}

} // namespace Zu

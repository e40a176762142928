#include "app/apTestFile.h"

#include <cstdio>

namespace Zu
{

bool apRenameOver(const std::string& from, const std::string& to)
{
    return std::rename(from.c_str(), to.c_str()) == 0;
}

} // namespace Zu

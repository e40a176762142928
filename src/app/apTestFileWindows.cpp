#include "app/apTestFile.h"

#include <windows.h>

namespace Zu
{

bool apRenameOver(const std::string& from, const std::string& to)
{
    return MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
}

} // namespace Zu

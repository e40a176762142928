#include "app/apText.h"

namespace Zu
{

std::string apJoined(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
    {
        if (&name != &names.front()) text += ", ";
        text += name;
    }
    return text;
}

std::string_view apLastPart(std::string_view path)
{
    return path.substr(path.find_last_of("/\\") + 1);
}

} // namespace Zu

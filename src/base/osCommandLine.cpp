#include "base/osCommandLine.h"

namespace Zu
{

std::string osCommandLine(const char* const* argv)
{
    std::string line;
    for (; *argv; ++argv)
    {
        line += *argv;
        line += ' ';
    }
    return line;
}

} // namespace Zu

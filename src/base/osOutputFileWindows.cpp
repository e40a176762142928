#include "base/osOutputFile.h"

#include <fstream>

namespace Zu
{

void osOpenOutput(std::ofstream& file, const char* name, bool appends)
{
    file.open(name, std::ios::out | std::ios::binary | (appends ? std::ios::app : std::ios::trunc));
}

} // namespace Zu

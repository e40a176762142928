#include "base/lmLibraries.h"

#include "base/lmRegion.h"
#include "base/osDescriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace Zu
{

namespace
{

// The whole map, or as much as could be read.
std::string readMap()
{
    std::string map;
    const OsDescriptor file(open("/proc/self/maps", O_RDONLY | O_CLOEXEC));
    if (file.get() < 0) return map;
    // Each read returns as many whole lines as fit.
    char buffer[65536];
    for (;;)
    {
        const ssize_t count = read(file.get(), buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return map;
        map.append(buffer, static_cast<std::size_t>(count));
    }
}

} // namespace

void LmLibraries::performGetList(std::vector<LmLibrary>& libraries)
{
    LmRegion::librariesOfMap(readMap(), libraries);
}

} // namespace Zu

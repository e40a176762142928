#include "base/osOutputFile.h"

namespace Zu
{

bool osIsSharedPlace(const OsOwnership& directory, std::uint32_t user)
{
    constexpr std::uint32_t WRITABLE_BY_OTHERS = 0002;
    constexpr std::uint32_t SYSTEM = 0;
    if ((directory._mode & WRITABLE_BY_OTHERS) != 0) return true;
    return directory._owner != user && directory._owner != SYSTEM;
}

bool osIsOwnOutput(const OsOwnership& file, std::uint32_t user)
{
    return file._owner == user && (!file._isRegular || file._links == 1);
}

} // namespace Zu

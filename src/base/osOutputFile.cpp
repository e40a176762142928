#include "base/osOutputFile.h"

#include "base/compilerSupport.h"

#include <fstream>

namespace Zu
{

namespace
{

constexpr std::uint32_t SYSTEM = 0;

} // namespace

bool osIsSharedPlace(const OsOwnership& directory, std::uint32_t user)
{
    constexpr std::uint32_t WRITABLE_BY_OTHERS = 0002;
    constexpr std::uint32_t WRITABLE_BY_GROUP = 0020;
    if ((directory._mode & WRITABLE_BY_OTHERS) != 0) return true;
    if (directory._owner == SYSTEM) return (directory._mode & WRITABLE_BY_GROUP) != 0;
    return directory._owner != user;
}

bool osIsTrustedLink(const OsOwnership& link, std::uint32_t user)
{
    return link._owner == user || link._owner == SYSTEM;
}

bool osIsOwnOutput(const OsOwnership& file, std::uint32_t user)
{
    return file._owner == user && file._links == 1;
}

bool osAdoptOutput(std::ofstream& file, int descriptor, bool appends)
{
    return Compiler::adoptDescriptor(
        file, descriptor, std::ios::binary | (appends ? std::ios::app : std::ios::trunc));
}

} // namespace Zu

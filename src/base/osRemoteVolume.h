/// @file
/// Which file systems are on another machine. Internal to the library.

#ifndef ZU_BASE_OSREMOTEVOLUME_H
#define ZU_BASE_OSREMOTEVOLUME_H

#include <cstdint>

namespace Zu
{

/// Whether a file system of this type, by its number on Linux, is reached over a network. The
/// common ones are known; any other one counts as local.
constexpr bool osIsRemoteVolume(std::uint32_t type)
{
    switch (type)
    {
    case 0x6969:     // NFS
    case 0x517b:     // SMB
    case 0xff534d42: // CIFS
    case 0xfe534d42: // SMB2
    case 0x564c:     // NCP
    case 0x73757245: // Coda
    case 0x5346414f: // AFS
    case 0x6b414653: // AFS of the kernel
    case 0x00c36400: // Ceph
    case 0x01021997: // 9P
        return true;
    default:
        return false;
    }
}

} // namespace Zu

#endif

#include "base/osRemoteVolume.h"

#include <cstdint>
#include <gtest/gtest.h>

namespace
{

using Zu::osIsRemoteVolume;

// As the manual of statfs lists them.
TEST(OsRemoteVolume, FileSystemsOfOtherMachinesAreRemote)
{
    static_assert(osIsRemoteVolume(0x6969));
    for (const std::uint32_t type :
         {0x6969U, 0x517bU, 0xff534d42U, 0xfe534d42U, 0x564cU, 0x73757245U, 0x5346414fU,
          0x6b414653U, 0x00c36400U, 0x01021997U})
        EXPECT_TRUE(osIsRemoteVolume(type)) << std::hex << type;
}

TEST(OsRemoteVolume, FileSystemsOfTheMachineItselfAreNot)
{
    // ext, tmpfs, xfs, btrfs, overlay, squashfs, proc, sysfs, FAT, ISO 9660, ramfs, FUSE.
    for (const std::uint32_t type :
         {0xef53U, 0x01021994U, 0x58465342U, 0x9123683eU, 0x794c7630U, 0x73717368U, 0x9fa0U,
          0x62656572U, 0x4d44U, 0x9660U, 0x858458f6U, 0x65735546U, 0U, 0xffffffffU})
        EXPECT_FALSE(osIsRemoteVolume(type)) << std::hex << type;
}

TEST(OsRemoteVolume, NeighboursOfARemoteNumberAreNot)
{
    for (const std::uint32_t type :
         {0x6968U, 0x696aU, 0x517aU, 0x517cU, 0xff534d41U, 0x01021998U, 0x00016969U, 0x53464140U})
        EXPECT_FALSE(osIsRemoteVolume(type)) << std::hex << type;
}

} // namespace

#include "base/osMemoryArch.h"

#include "base/osMemoryArchImp.h"

#include <gtest/gtest.h>

namespace
{

using namespace Zu;

TEST(OsMemoryArch, FiguresFollowFromTheCaches)
{
    const OsMemoryArchImp arch({49152, 12, 64}, {1310720, 20, 128}, 4096);
    EXPECT_EQ(arch.getLargeBlockSize(), 0x10000000);
    EXPECT_EQ(arch.getL1DataSize(), 49152);
    EXPECT_EQ(arch.getL2Size(), 1310720);
    EXPECT_EQ(arch.getL1DataWaySize(), 4096);
    EXPECT_EQ(arch.getL2WaySize(), 65536);
    EXPECT_EQ(arch.getL1DataLineSize(), 64);
    EXPECT_EQ(arch.getL2LineSize(), 128);
    EXPECT_EQ(arch.getPageSize(), 4096);
    EXPECT_EQ(arch.getAlignment(), 8);
}

TEST(OsMemoryArch, AbsentCachesHaveNoSizes)
{
    const OsMemoryArchImp arch({0, 1, 0}, {0, 1, 0}, 0);
    EXPECT_EQ(arch.getLargeBlockSize(), 0x10000000);
    EXPECT_EQ(arch.getL1DataSize(), 0);
    EXPECT_EQ(arch.getL2Size(), 0);
    EXPECT_EQ(arch.getL1DataWaySize(), 0);
    EXPECT_EQ(arch.getL2WaySize(), 0);
    EXPECT_EQ(arch.getPageSize(), 0);
    EXPECT_EQ(arch.getAlignment(), 8);
}

TEST(OsMemoryArch, ThereIsOneInstance)
{
    const OsMemoryArch& instance = OsMemoryArch::getInstance();
    EXPECT_EQ(&instance, &OsMemoryArch::getInstance());
    EXPECT_NE(dynamic_cast<const OsMemoryArchImp*>(&instance), nullptr);
}

TEST(OsMemoryArch, TheInstanceHasTheFiguresOfThisMachine)
{
    const OsMemoryArch& instance = OsMemoryArch::getInstance();
    const OsMemoryArchImp again;
    EXPECT_EQ(instance.getLargeBlockSize(), 0x10000000);
    EXPECT_EQ(instance.getAlignment(), 8);
    EXPECT_EQ(instance.getL1DataSize(), again.getL1DataSize());
    EXPECT_EQ(instance.getL2Size(), again.getL2Size());
    EXPECT_EQ(instance.getPageSize(), again.getPageSize());
    EXPECT_GE(instance.getL1DataSize(), instance.getL1DataWaySize());
    EXPECT_GE(instance.getL2Size(), instance.getL2WaySize());
    EXPECT_TRUE(instance.getPageSize() == 0 || instance.getPageSize() == 4096);
}

} // namespace

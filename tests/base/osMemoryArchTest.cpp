#include "base/osMemoryArch.h"

#include "base/osMemoryArchImp.h"
#include "support/platform.h"

#include <cpuid.h>
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

// What this processor reports about one cache in a leaf with the form of leaf 4.
struct Cache
{
    int _size = 0;
    int _waySize = 0;
    int _lineSize = 0;
};

Cache cacheOf(unsigned int leaf, unsigned int level, unsigned int type)
{
    for (unsigned int i = 0; i < 16; ++i)
    {
        unsigned int eax = 0;
        unsigned int ebx = 0;
        unsigned int ecx = 0;
        unsigned int edx = 0;
        __cpuid_count(leaf, i, eax, ebx, ecx, edx);
        if (eax % 32 == 0) break;
        if (eax % 32 != type || eax / 32 % 8 != level) continue;
        const unsigned int line = ebx % 4096 + 1;
        const unsigned int waySize = (ebx / 4096 % 1024 + 1) * line * (ecx + 1);
        const unsigned int ways = ebx / 4194304 + 1;
        return {static_cast<int>(ways * waySize), static_cast<int>(waySize),
                static_cast<int>(line)};
    }
    return {};
}

TEST(OsMemoryArch, TheInstanceHasTheFiguresOfThisMachine)
{
    const unsigned int leaf =
        static_cast<unsigned int>(__get_cpuid_max(0, nullptr)) >= 4 && cacheOf(4, 1, 1)._size != 0
            ? 4U
            : 0x8000001DU;
    if (leaf != 4 && static_cast<unsigned int>(__get_cpuid_max(0x80000000, nullptr)) < leaf)
        GTEST_SKIP() << "This processor tells its caches in another form.";
    const Cache l1Data = cacheOf(leaf, 1, 1);
    const Cache l2 = cacheOf(leaf, 2, 3);
    if (l1Data._size == 0) GTEST_SKIP() << "This processor does not tell its caches.";
    const OsMemoryArch& instance = OsMemoryArch::getInstance();
    EXPECT_EQ(instance.getLargeBlockSize(), 0x10000000);
    EXPECT_EQ(instance.getAlignment(), 8);
    EXPECT_EQ(instance.getL1DataSize(), l1Data._size);
    EXPECT_EQ(instance.getL1DataWaySize(), l1Data._waySize);
    EXPECT_EQ(instance.getL1DataLineSize(), l1Data._lineSize);
    EXPECT_EQ(instance.getL2Size(), l2._size);
    EXPECT_EQ(instance.getL2WaySize(), l2._waySize);
    EXPECT_EQ(instance.getL2LineSize(), l2._lineSize);
    EXPECT_EQ(instance.getPageSize(), support::pageSize());
}

} // namespace

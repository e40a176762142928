#include "base/osCpuid.h"

#include "base/compilerSupport.h"
#include "base/internalAssert.h"

#include <vector>

namespace Zu
{

namespace
{

constexpr unsigned int ARCHITECTURE_IA64 = 6;
constexpr unsigned int ARCHITECTURE_AMD64 = 9;

constexpr unsigned int SEE_DETERMINISTIC_LEAF = 0xFF;
constexpr std::uint32_t DETERMINISTIC_LEAF = 4;
constexpr std::uint32_t HIGHEST_EXTENDED_LEAF = 0x80000000;
// Has the form of the deterministic-cache leaf.
constexpr std::uint32_t EXTENDED_DETERMINISTIC_LEAF = 0x8000001D;
// No processor has nearly as many caches; one that never reports "no more" must not hang us.
constexpr std::uint32_t MAX_CACHES = 64;

enum class CacheTarget
{
    L1Data,
    L1Instruction,
    L2Unified
};

struct CacheDescriptor
{
    unsigned int _byte;
    CacheTarget _target;
    OsCpuInfo::CacheInfo _info;
};

constexpr CacheDescriptor CACHE_DESCRIPTORS[] = {
    {6, CacheTarget::L1Instruction, {8192, 4, 32}}, {8, CacheTarget::L1Instruction, {16384, 4, 32}},
    {10, CacheTarget::L1Data, {8192, 2, 32}},       {12, CacheTarget::L1Data, {16384, 2, 32}},
    {64, CacheTarget::L2Unified, {0, 1, 0}},        {65, CacheTarget::L2Unified, {131072, 4, 32}},
    {66, CacheTarget::L2Unified, {262144, 4, 32}},  {67, CacheTarget::L2Unified, {524288, 4, 32}},
    {68, CacheTarget::L2Unified, {1048576, 4, 32}}, {69, CacheTarget::L2Unified, {2097152, 4, 32}},
    {130, CacheTarget::L2Unified, {262144, 8, 32}},
};

constexpr unsigned int PAGE_DESCRIPTORS[] = {3, 4};
constexpr int PAGE_SIZE = 4096;

void appendBytes(std::vector<unsigned int>& bytes, std::uint32_t word, int firstByte)
{
    for (int i = firstByte; i < 4; ++i) bytes.push_back(word >> (8 * i) & 0xFF);
}

// The descriptor bytes of all rounds, in the order in which they are decoded. After the first round
// `edx` is deliberately not read, and `ecx` is read twice.
std::vector<unsigned int> cacheDescriptors(const OsCpuid& cpuid)
{
    std::vector<unsigned int> bytes;
    OsCpuidRegisters registers = cpuid(2, 0);
    if (registers._eax >> 31) return bytes;
    const std::uint32_t rounds = registers._eax & 0xFF;
    appendBytes(bytes, registers._eax, 1);
    appendBytes(bytes, registers._ebx, 0);
    appendBytes(bytes, registers._ecx, 0);
    appendBytes(bytes, registers._edx, 0);
    for (std::uint32_t round = 1; round < rounds; ++round)
    {
        registers = cpuid(2, 0);
        appendBytes(bytes, registers._eax, 1);
        appendBytes(bytes, registers._ebx, 0);
        appendBytes(bytes, registers._ecx, 0);
        appendBytes(bytes, registers._ecx, 0);
    }
    return bytes;
}

OsCpuInfo::CacheInfo deterministicCache(const OsCpuidRegisters& registers)
{
    const std::uint32_t ways = (registers._ebx >> 22) + 1;
    const std::uint32_t partitions = (registers._ebx >> 12 & 0x3FF) + 1;
    const std::uint32_t lineSize = (registers._ebx & 0xFFF) + 1;
    const std::uint32_t sets = registers._ecx + 1;
    return {static_cast<int>(ways * partitions * lineSize * sets), static_cast<int>(ways),
            static_cast<int>(lineSize)};
}

void readDeterministicCaches(const OsCpuid& cpuid, std::uint32_t leaf, OsCpuInfo::CacheInfo* l1Data,
                             OsCpuInfo::CacheInfo* l1Instruction, OsCpuInfo::CacheInfo* l2Unified)
{
    enum CacheType
    {
        NoMore,
        Data,
        Instruction,
        Unified
    };
    for (std::uint32_t i = 0; i < MAX_CACHES; ++i)
    {
        const OsCpuidRegisters registers = cpuid(leaf, i);
        const std::uint32_t type = registers._eax & 0x1F;
        const std::uint32_t level = registers._eax >> 5 & 0x7;
        if (type == NoMore) return;
        if (level == 1 && type == Data) *l1Data = deterministicCache(registers);
        if (level == 1 && type == Instruction) *l1Instruction = deterministicCache(registers);
        if (level == 2 && type == Unified) *l2Unified = deterministicCache(registers);
    }
}

} // namespace

OsCpuidRegisters osCpuid(std::uint32_t leaf, std::uint32_t subLeaf)
{
    const Compiler::CpuidRegisters registers = Compiler::cpuid(leaf, subLeaf);
    return {registers._eax, registers._ebx, registers._ecx, registers._edx};
}

OsCpuInfo::Type osCpuTypeOf(unsigned int architecture)
{
    if (architecture == ARCHITECTURE_IA64) return OsCpuInfo::IA64;
    if (architecture == ARCHITECTURE_AMD64) return OsCpuInfo::X64;
    return OsCpuInfo::UNKNOWN;
}

void osCpuSignature(const OsCpuid& cpuid, int* family, int* model, int* stepping)
{
    if (!family && !model && !stepping) return;
    if (cpuid(0, 0)._eax < 1) return;
    const std::uint32_t signature = cpuid(1, 0)._eax;
    if (family) *family = static_cast<int>(signature >> 8 & 0xF);
    if (model) *model = static_cast<int>(signature >> 4 & 0xF);
    if (stepping) *stepping = static_cast<int>(signature & 0xF);
}

void osDecodeCacheDescriptor(unsigned int descriptor, OsCpuInfo::CacheInfo* l1Data,
                             OsCpuInfo::CacheInfo* l1Instruction, OsCpuInfo::CacheInfo* l2Unified,
                             int* pageSize)
{
    for (const unsigned int known : PAGE_DESCRIPTORS)
    {
        if (descriptor != known) continue;
        ZU_INTERNAL_ASSERT_TEXT(*pageSize == 0 || *pageSize == PAGE_SIZE,
                                "*pageSize == 0 || *pageSize == 4096");
        *pageSize = PAGE_SIZE;
    }
    for (const CacheDescriptor& known : CACHE_DESCRIPTORS)
    {
        if (descriptor != known._byte) continue;
        switch (known._target)
        {
        case CacheTarget::L1Data:
            ZU_INTERNAL_ASSERT(l1Data->_size == 0);
            *l1Data = known._info;
            break;
        case CacheTarget::L1Instruction:
            ZU_INTERNAL_ASSERT(l1Instruction->_size == 0);
            *l1Instruction = known._info;
            break;
        case CacheTarget::L2Unified:
            ZU_INTERNAL_ASSERT(l2Unified->_size == 0);
            *l2Unified = known._info;
            break;
        }
    }
}

void osMemoryInfo(const OsCpuid& cpuid, int systemPageSize, OsCpuInfo::CacheInfo* l1Data,
                  OsCpuInfo::CacheInfo* l1Instruction, OsCpuInfo::CacheInfo* l2Unified,
                  int* pageSize)
{
    for (OsCpuInfo::CacheInfo* cache : {l1Data, l1Instruction, l2Unified})
    {
        cache->_size = 0;
        cache->_associativity = 1;
    }
    *pageSize = 0;

    const std::uint32_t highestLeaf = cpuid(0, 0)._eax;
    if (highestLeaf < 2) return;
    bool seeDeterministicLeaf = false;
    for (const unsigned int descriptor : cacheDescriptors(cpuid))
    {
        osDecodeCacheDescriptor(descriptor, l1Data, l1Instruction, l2Unified, pageSize);
        if (descriptor == SEE_DETERMINISTIC_LEAF) seeDeterministicLeaf = true;
    }
    const auto isAnyKnown = [&]
    { return l1Data->_size != 0 || l1Instruction->_size != 0 || l2Unified->_size != 0; };
    if (seeDeterministicLeaf && highestLeaf >= DETERMINISTIC_LEAF)
    {
        readDeterministicCaches(cpuid, DETERMINISTIC_LEAF, l1Data, l1Instruction, l2Unified);
        *pageSize = systemPageSize;
    }
    if (isAnyKnown() || cpuid(HIGHEST_EXTENDED_LEAF, 0)._eax < EXTENDED_DETERMINISTIC_LEAF) return;
    readDeterministicCaches(cpuid, EXTENDED_DETERMINISTIC_LEAF, l1Data, l1Instruction, l2Unified);
    if (isAnyKnown()) *pageSize = systemPageSize;
}

} // namespace Zu

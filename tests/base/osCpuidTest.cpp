#include "base/osCpuid.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <map>
#include <utility>
#include <vector>

namespace
{

using namespace Zu;

// The figures of a cache that was never decoded; the line size shows whether it was touched.
constexpr OsCpuInfo::CacheInfo untouched{-1, -2, -3};
constexpr int systemPage = 16384;

// The four results of decoding.
struct Caches
{
    OsCpuInfo::CacheInfo _l1Data = untouched;
    OsCpuInfo::CacheInfo _l1Instruction = untouched;
    OsCpuInfo::CacheInfo _l2Unified = untouched;
    int _pageSize = -4;
};

// A processor that answers leaf 2 with the given rounds in turn. The low byte of the first
// round's eax says how many there are.
struct Processor
{
    std::uint32_t _highestLeaf = 2;
    std::vector<OsCpuidRegisters> _rounds;
    std::vector<OsCpuidRegisters> _deterministic;
    std::uint32_t _highestExtendedLeaf = 0;
    std::vector<OsCpuidRegisters> _extended;
    std::size_t _asked = 0;

    OsCpuidRegisters answer(std::uint32_t leaf, std::uint32_t subLeaf)
    {
        if (leaf == 0) return {_highestLeaf, 0, 0, 0};
        if (leaf == 2)
        {
            const std::size_t round = _asked++;
            return round < _rounds.size() ? _rounds[round] : OsCpuidRegisters{};
        }
        if (leaf == 4 && subLeaf < _deterministic.size()) return _deterministic[subLeaf];
        if (leaf == 0x80000000) return {_highestExtendedLeaf, 0, 0, 0};
        if (leaf == 0x8000001D && subLeaf < _extended.size()) return _extended[subLeaf];
        return {};
    }

    Caches decode()
    {
        Caches caches;
        osMemoryInfo([this](std::uint32_t leaf, std::uint32_t subLeaf)
                     { return answer(leaf, subLeaf); },
                     systemPage, &caches._l1Data, &caches._l1Instruction, &caches._l2Unified,
                     &caches._pageSize);
        return caches;
    }
};

Caches decodeRounds(const std::vector<OsCpuidRegisters>& rounds)
{
    Processor processor;
    processor._rounds = rounds;
    return processor.decode();
}

void expectCache(const OsCpuInfo::CacheInfo& cache, int size, int associativity, int lineSize)
{
    EXPECT_EQ(cache._size, size);
    EXPECT_EQ(cache._associativity, associativity);
    EXPECT_EQ(cache._lineSize, lineSize);
}

void expectAbsent(const OsCpuInfo::CacheInfo& cache)
{
    expectCache(cache, 0, 1, untouched._lineSize);
}

void expectNothing(const Caches& caches)
{
    expectAbsent(caches._l1Data);
    expectAbsent(caches._l1Instruction);
    expectAbsent(caches._l2Unified);
    EXPECT_EQ(caches._pageSize, 0);
}

enum class Target
{
    Page,
    L1Data,
    L1Instruction,
    L2Unified
};

struct Descriptor
{
    std::uint32_t _byte;
    Target _target;
    int _size;
    int _associativity;
    int _lineSize;
};

const Descriptor descriptors[] = {
    {3, Target::Page, 4096, 0, 0},           {4, Target::Page, 4096, 0, 0},
    {6, Target::L1Instruction, 8192, 4, 32}, {8, Target::L1Instruction, 16384, 4, 32},
    {10, Target::L1Data, 8192, 2, 32},       {12, Target::L1Data, 16384, 2, 32},
    {64, Target::L2Unified, 0, 1, 0},        {65, Target::L2Unified, 131072, 4, 32},
    {66, Target::L2Unified, 262144, 4, 32},  {67, Target::L2Unified, 524288, 4, 32},
    {68, Target::L2Unified, 1048576, 4, 32}, {69, Target::L2Unified, 2097152, 4, 32},
    {130, Target::L2Unified, 262144, 8, 32},
};

void expectOnly(const Caches& caches, const Descriptor& descriptor)
{
    SCOPED_TRACE(descriptor._byte);
    const std::pair<const OsCpuInfo::CacheInfo*, Target> all[] = {
        {&caches._l1Data, Target::L1Data},
        {&caches._l1Instruction, Target::L1Instruction},
        {&caches._l2Unified, Target::L2Unified}};
    for (const auto& [cache, target] : all)
    {
        if (descriptor._target == target)
            expectCache(*cache, descriptor._size, descriptor._associativity, descriptor._lineSize);
        else
            expectAbsent(*cache);
    }
    EXPECT_EQ(caches._pageSize, descriptor._target == Target::Page ? descriptor._size : 0);
}

TEST(OsCpuid, EveryKnownDescriptorFillsItsTarget)
{
    for (const Descriptor& descriptor : descriptors)
        expectOnly(decodeRounds({{1, descriptor._byte, 0, 0}}), descriptor);
}

TEST(OsCpuid, ADescriptorIsFoundInEveryByteOfTheFirstRound)
{
    for (const Descriptor& descriptor : descriptors)
    {
        // The low byte of eax is the number of rounds, the other fifteen are descriptors.
        for (unsigned int position = 1; position < 16; ++position)
        {
            std::uint32_t registers[4] = {1, 0, 0, 0};
            registers[position / 4] |= descriptor._byte << (8 * (position % 4));
            // The highest bit of eax means that there are no descriptors.
            if (registers[0] & 0x80000000U) continue;
            expectOnly(decodeRounds({{registers[0], registers[1], registers[2], registers[3]}}),
                       descriptor);
        }
    }
}

TEST(OsCpuid, UnknownDescriptorsAreIgnored)
{
    for (std::uint32_t byte = 0; byte < 255; ++byte)
    {
        bool known = false;
        for (const Descriptor& descriptor : descriptors) known |= descriptor._byte == byte;
        if (known) continue;
        SCOPED_TRACE(byte);
        expectNothing(decodeRounds({{1, byte, byte << 8, byte << 16}}));
    }
}

TEST(OsCpuid, TheNumberOfRoundsIsNoDescriptor)
{
    expectNothing(decodeRounds({{12, 0, 0, 0}}));
}

TEST(OsCpuid, OneAnswerDescribesAllCaches)
{
    const Caches caches = decodeRounds({{0x0C080301, 0x44, 0, 0}});
    expectCache(caches._l1Data, 16384, 2, 32);
    expectCache(caches._l1Instruction, 16384, 4, 32);
    expectCache(caches._l2Unified, 1048576, 4, 32);
    EXPECT_EQ(caches._pageSize, 4096);
}

TEST(OsCpuid, AProcessorWithoutTheCacheLeafHasNoFigures)
{
    for (const std::uint32_t highest : {0U, 1U})
    {
        Processor processor;
        processor._highestLeaf = highest;
        processor._rounds = {{0x0C080301, 0x44, 0, 0}};
        expectNothing(processor.decode());
        EXPECT_EQ(processor._asked, 0U);
    }
}

TEST(OsCpuid, AHigherHighestLeafHasTheCacheLeafToo)
{
    for (const std::uint32_t highest : {3U, 0x20U, 0x80000000U, 0xFFFFFFFFU})
    {
        Processor processor;
        processor._highestLeaf = highest;
        processor._rounds = {{1, 0x0C, 0, 0}};
        expectCache(processor.decode()._l1Data, 16384, 2, 32);
    }
}

TEST(OsCpuid, TheHighestBitOfTheFirstAnswerSaysThatThereAreNoDescriptors)
{
    expectNothing(decodeRounds({{0x80000001, 0x0C, 0x44, 3}}));
    Processor processor;
    processor._rounds = {{0x80000003, 0x0C, 0, 0}, {3, 0x0C, 0, 0}, {3, 0x0C, 0, 0}};
    expectNothing(processor.decode());
    EXPECT_EQ(processor._asked, 1U);
}

TEST(OsCpuid, TheHighestBitOfTheOtherRegistersChangesNothing)
{
    const Caches caches = decodeRounds({{1, 0x8000000C, 0x80000008, 0x80000044}});
    expectCache(caches._l1Data, 16384, 2, 32);
    expectCache(caches._l1Instruction, 16384, 4, 32);
    expectCache(caches._l2Unified, 1048576, 4, 32);
}

TEST(OsCpuid, TheLeafIsAskedOncePerRound)
{
    for (const std::uint32_t rounds : {1U, 2U, 5U, 255U})
    {
        Processor processor;
        processor._rounds = {{rounds, 0, 0, 0}};
        expectNothing(processor.decode());
        EXPECT_EQ(processor._asked, rounds);
    }
}

TEST(OsCpuid, LaterRoundsAddWhatTheyTell)
{
    const Caches caches =
        decodeRounds({{3, 0x0C, 0, 0}, {0x08000003, 0, 0, 0}, {3, 0x44000000, 0, 0}});
    expectCache(caches._l1Data, 16384, 2, 32);
    expectCache(caches._l1Instruction, 16384, 4, 32);
    expectCache(caches._l2Unified, 1048576, 4, 32);
}

TEST(OsCpuid, TheNumberOfRoundsInALaterRoundIsNoDescriptor)
{
    expectNothing(decodeRounds({{2, 0, 0, 0}, {12, 0, 0, 0}}));
}

TEST(OsCpuid, LaterRoundsDoNotReadEdx)
{
    expectNothing(decodeRounds({{2, 0, 0, 0}, {2, 0, 0, 0x0C084403}}));
}

TEST(OsCpuid, LaterRoundsDecodeEcxTwiceSoThatOnlyAPageMayStandThere)
{
    const Caches caches = decodeRounds({{3, 3, 0, 0}, {3, 0, 0x04, 0}, {3, 0, 0x03000000, 0}});
    EXPECT_EQ(caches._pageSize, 4096);
    expectAbsent(caches._l1Data);
}

TEST(OsCpuid, NoSecondLevelCacheMayBeToldTwice)
{
    expectCache(decodeRounds({{1, 0x4040, 0, 0x40}})._l2Unified, 0, 1, 0);
    expectCache(decodeRounds({{2, 0, 0, 0}, {2, 0, 0x40, 0}})._l2Unified, 0, 1, 0);
}

TEST(OsCpuid, TheRegistersAreReadInTheirOrder)
{
    // The descriptor for no cache may precede a cache, but not follow it.
    expectCache(decodeRounds({{0x4001, 0x44, 0, 0}})._l2Unified, 1048576, 4, 32);
    expectCache(decodeRounds({{1, 0x4440, 0, 0}})._l2Unified, 1048576, 4, 32);
    expectCache(decodeRounds({{1, 0x40, 0x44, 0}})._l2Unified, 1048576, 4, 32);
    expectCache(decodeRounds({{1, 0, 0x40, 0x44}})._l2Unified, 1048576, 4, 32);
}

class OsCpuidDeathTest : public testing::Test
{
protected:
    void SetUp() override
    {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
    }
};

TEST_F(OsCpuidDeathTest, ASecondDescriptorOfACacheIsFatal)
{
    EXPECT_DEATH(decodeRounds({{1, 0x0C0A, 0, 0}}), "Assertion failed: l1Data->_size == 0, file ");
    EXPECT_DEATH(decodeRounds({{1, 0x06, 0x06, 0}}),
                 "Assertion failed: l1Instruction->_size == 0, file ");
    EXPECT_DEATH(decodeRounds({{1, 0x41, 0, 0x82}}),
                 "Assertion failed: l2Unified->_size == 0, file ");
    EXPECT_DEATH(decodeRounds({{1, 0x4044, 0, 0}}),
                 "Assertion failed: l2Unified->_size == 0, file ");
    EXPECT_DEATH(decodeRounds({{2, 0x0C, 0, 0}, {2, 0x0C, 0, 0}}),
                 "Assertion failed: l1Data->_size == 0, file ");
}

TEST_F(OsCpuidDeathTest, ACacheInEcxOfALaterRoundIsFatal)
{
    EXPECT_DEATH(decodeRounds({{2, 0, 0, 0}, {2, 0, 0x0C, 0}}),
                 "Assertion failed: l1Data->_size == 0, file ");
    EXPECT_DEATH(decodeRounds({{2, 0, 0, 0}, {2, 0, 0x08000000, 0}}),
                 "Assertion failed: l1Instruction->_size == 0, file ");
    EXPECT_DEATH(decodeRounds({{2, 0, 0, 0}, {2, 0, 0x4400, 0}}),
                 "Assertion failed: l2Unified->_size == 0, file ");
}

TEST_F(OsCpuidDeathTest, ASecondPageSizeMustBeTheSame)
{
    Caches caches;
    caches._pageSize = 8192;
    EXPECT_DEATH(osDecodeCacheDescriptor(3, &caches._l1Data, &caches._l1Instruction,
                                         &caches._l2Unified, &caches._pageSize),
                 "Assertion failed: \\*pageSize == 0 \\|\\| \\*pageSize == 4096, file ");
    EXPECT_DEATH(osDecodeCacheDescriptor(4, &caches._l1Data, &caches._l1Instruction,
                                         &caches._l2Unified, &caches._pageSize),
                 "Assertion failed: \\*pageSize == 0 \\|\\| \\*pageSize == 4096, file ");
}

TEST(OsCpuid, ADescriptorTouchesNothingButItsTarget)
{
    Caches caches;
    caches._l1Data = {0, 1, 5};
    osDecodeCacheDescriptor(10, &caches._l1Data, &caches._l1Instruction, &caches._l2Unified,
                            &caches._pageSize);
    expectCache(caches._l1Data, 8192, 2, 32);
    expectCache(caches._l1Instruction, -1, -2, -3);
    expectCache(caches._l2Unified, -1, -2, -3);
    EXPECT_EQ(caches._pageSize, -4);
}

// A result of the deterministic-cache leaf: each count is reported minus one.
OsCpuidRegisters deterministicCache(std::uint32_t type, std::uint32_t level, std::uint32_t ways,
                                    std::uint32_t partitions, std::uint32_t line,
                                    std::uint32_t sets)
{
    return {type | level << 5, (ways - 1) << 22 | (partitions - 1) << 12 | (line - 1), sets - 1, 0};
}

constexpr std::uint32_t dataCache = 1;
constexpr std::uint32_t instructionCache = 2;
constexpr std::uint32_t unifiedCache = 3;

Processor modernProcessor()
{
    Processor processor;
    processor._highestLeaf = 0x16;
    processor._rounds = {{0x00FEFF01, 0xF0, 0, 0}};
    processor._deterministic = {deterministicCache(dataCache, 1, 12, 1, 64, 64),
                                deterministicCache(instructionCache, 1, 8, 1, 64, 128),
                                deterministicCache(unifiedCache, 2, 20, 1, 64, 1024),
                                deterministicCache(unifiedCache, 3, 12, 1, 64, 32768)};
    return processor;
}

TEST(OsCpuid, TheByte255LeadsToTheDeterministicCacheLeaf)
{
    const Caches caches = modernProcessor().decode();
    expectCache(caches._l1Data, 49152, 12, 64);
    expectCache(caches._l1Instruction, 65536, 8, 64);
    expectCache(caches._l2Unified, 1310720, 20, 64);
    EXPECT_EQ(caches._pageSize, systemPage);
}

TEST(OsCpuid, TheByte255IsFoundInEveryByteOfTheFirstRound)
{
    for (unsigned int position = 1; position < 16; ++position)
    {
        // The highest bit of eax means that there are no descriptors.
        if (position == 3) continue;
        std::uint32_t registers[4] = {1, 0, 0, 0};
        registers[position / 4] |= 255U << (8 * (position % 4));
        Processor processor = modernProcessor();
        processor._rounds = {{registers[0], registers[1], registers[2], registers[3]}};
        const Caches caches = processor.decode();
        expectCache(caches._l1Data, 49152, 12, 64);
        EXPECT_EQ(caches._pageSize, systemPage);
    }
}

TEST(OsCpuid, WithoutTheByte255TheDeterministicCacheLeafIsNotRead)
{
    Processor processor = modernProcessor();
    processor._rounds = {{1, 0x0C, 0, 0}};
    const Caches caches = processor.decode();
    expectCache(caches._l1Data, 16384, 2, 32);
    expectAbsent(caches._l2Unified);
    EXPECT_EQ(caches._pageSize, 0);
}

TEST(OsCpuid, AMissingDeterministicCacheLeafIsNotRead)
{
    // Beyond its highest leaf a processor answers with anything.
    for (const std::uint32_t highest : {2U, 3U})
    {
        Processor processor = modernProcessor();
        processor._highestLeaf = highest;
        const Caches caches = processor.decode();
        expectAbsent(caches._l1Data);
        expectAbsent(caches._l1Instruction);
        expectAbsent(caches._l2Unified);
    }
}

TEST(OsCpuid, TheDeterministicCacheLeafIsReadWhereItIsTheHighest)
{
    Processor processor = modernProcessor();
    processor._highestLeaf = 4;
    const Caches caches = processor.decode();
    expectCache(caches._l1Data, 49152, 12, 64);
    expectCache(caches._l1Instruction, 65536, 8, 64);
    expectCache(caches._l2Unified, 1310720, 20, 64);
    EXPECT_EQ(caches._pageSize, systemPage);
}

TEST(OsCpuid, PartitionsCountIntoTheSize)
{
    Processor processor = modernProcessor();
    processor._deterministic = {deterministicCache(dataCache, 1, 4, 2, 32, 64),
                                deterministicCache(unifiedCache, 2, 8, 4, 128, 512)};
    const Caches caches = processor.decode();
    expectCache(caches._l1Data, 16384, 4, 32);
    expectAbsent(caches._l1Instruction);
    expectCache(caches._l2Unified, 2097152, 8, 128);
}

TEST(OsCpuid, TheDeterministicCacheLeafEndsAtTheFirstEmptyAnswer)
{
    Processor processor = modernProcessor();
    processor._deterministic.insert(processor._deterministic.begin() + 1, OsCpuidRegisters{});
    const Caches caches = processor.decode();
    expectCache(caches._l1Data, 49152, 12, 64);
    expectAbsent(caches._l1Instruction);
    expectAbsent(caches._l2Unified);
}

TEST(OsCpuid, OtherLevelsOfTheDeterministicCacheLeafAreLeftOut)
{
    Processor processor = modernProcessor();
    processor._deterministic = {deterministicCache(unifiedCache, 3, 12, 1, 64, 32768),
                                deterministicCache(unifiedCache, 4, 16, 1, 64, 32768)};
    const Caches caches = processor.decode();
    expectAbsent(caches._l1Data);
    expectAbsent(caches._l1Instruction);
    expectAbsent(caches._l2Unified);
}

TEST(OsCpuid, ADeterministicCacheLeafWithoutEndIsLeftAgain)
{
    Caches caches;
    osMemoryInfo(
        [](std::uint32_t leaf, std::uint32_t) -> OsCpuidRegisters
        {
            if (leaf == 0) return {4, 0, 0, 0};
            if (leaf == 2) return {1, 255, 0, 0};
            return deterministicCache(unifiedCache, 3, 12, 1, 64, 32768);
        },
        systemPage, &caches._l1Data, &caches._l1Instruction, &caches._l2Unified, &caches._pageSize);
    expectAbsent(caches._l1Data);
    expectAbsent(caches._l1Instruction);
    expectAbsent(caches._l2Unified);
}

// One of AMD: it has the leaf of descriptors, which is empty, and no deterministic-cache leaf.
Processor processorWithTheExtendedLeaf()
{
    Processor processor;
    processor._highestLeaf = 0x10;
    processor._rounds = {{0, 0, 0, 0}};
    processor._highestExtendedLeaf = 0x8000001F;
    processor._extended = {deterministicCache(dataCache, 1, 8, 1, 64, 64),
                           deterministicCache(instructionCache, 1, 4, 1, 64, 256),
                           deterministicCache(unifiedCache, 2, 8, 1, 64, 1024),
                           deterministicCache(unifiedCache, 3, 16, 1, 64, 16384)};
    return processor;
}

void expectExtended(const Caches& caches)
{
    expectCache(caches._l1Data, 32768, 8, 64);
    expectCache(caches._l1Instruction, 65536, 4, 64);
    expectCache(caches._l2Unified, 524288, 8, 64);
    EXPECT_EQ(caches._pageSize, systemPage);
}

// As such a processor has them, bit for bit: of the second generation of the family 17 hex.
TEST(OsCpuid, TheExtendedLeafIsReadWhereTheOthersAreEmpty)
{
    Processor processor = processorWithTheExtendedLeaf();
    expectExtended(processor.decode());
    processor._extended = {{0x00004121, 0x01C0003F, 0x0000003F, 0},
                           {0x00004122, 0x01C0003F, 0x0000003F, 0},
                           {0x00004143, 0x01C0003F, 0x000003FF, 2},
                           {0x0001C163, 0x03C0003F, 0x00003FFF, 1}};
    const Caches caches = processor.decode();
    expectCache(caches._l1Data, 32768, 8, 64);
    expectCache(caches._l1Instruction, 32768, 8, 64);
    expectCache(caches._l2Unified, 524288, 8, 64);
    EXPECT_EQ(caches._pageSize, systemPage);
}

TEST(OsCpuid, TheExtendedLeafIsReadWhereverNothingElseTellsACache)
{
    const std::vector<OsCpuidRegisters> answers = {
        {1, 0, 0, 0},          // no descriptors
        {0x80000001, 0, 0, 0}, // none that are valid
        {1, 0xF0, 0x5A, 0},    // unknown ones
        {1, 0x40, 0, 0},       // that there is no second level
        {1, 3, 0, 0},          // a page alone
        {1, 0xFF, 0, 0},       // a deterministic-cache leaf that is not there, or empty
    };
    for (const OsCpuidRegisters& answer : answers)
        for (const std::uint32_t highest : {2U, 4U, 0x10U})
        {
            Processor processor = processorWithTheExtendedLeaf();
            processor._highestLeaf = highest;
            processor._rounds = {answer};
            expectExtended(processor.decode());
        }
}

TEST(OsCpuid, TheExtendedLeafIsNotReadWhereAnotherOneTellsACache)
{
    Processor modern = modernProcessor();
    modern._highestExtendedLeaf = 0x8000001F;
    modern._extended = processorWithTheExtendedLeaf()._extended;
    expectCache(modern.decode()._l1Data, 49152, 12, 64);
    for (const std::uint32_t descriptor : {0x0CU, 0x08U, 0x44U})
    {
        Processor processor = processorWithTheExtendedLeaf();
        processor._rounds = {{1, descriptor, 0, 0}};
        const Caches caches = processor.decode();
        const int found =
            caches._l1Data._size + caches._l1Instruction._size + caches._l2Unified._size;
        EXPECT_EQ(found, descriptor == 0x44 ? 1048576 : 16384);
        EXPECT_EQ(caches._pageSize, 0);
    }
}

TEST(OsCpuid, WithoutTheExtendedLeafNothingIsKnown)
{
    for (const std::uint32_t highest : {0U, 0x80000000U, 0x80000008U, 0x8000001CU})
    {
        Processor processor = processorWithTheExtendedLeaf();
        processor._highestExtendedLeaf = highest;
        expectNothing(processor.decode());
    }
    Processor processor = processorWithTheExtendedLeaf();
    processor._highestExtendedLeaf = 0x8000001D;
    expectExtended(processor.decode());
    // It is there, and empty.
    processor._extended.clear();
    expectNothing(processor.decode());
    // A processor without descriptors is not queried further.
    processor = processorWithTheExtendedLeaf();
    processor._highestLeaf = 1;
    expectNothing(processor.decode());
}

TEST(OsCpuid, TypeGoesByTheArchitectureNumber)
{
    EXPECT_EQ(osCpuTypeOf(6), OsCpuInfo::IA64);
    EXPECT_EQ(osCpuTypeOf(9), OsCpuInfo::X64);
    for (const unsigned int other : {0U, 1U, 2U, 3U, 4U, 5U, 7U, 8U, 10U, 12U, 0xFFFFU})
        EXPECT_EQ(osCpuTypeOf(other), OsCpuInfo::UNKNOWN) << other;
}

// A processor with this leaf 1.
OsCpuid processorWithSignature(std::uint32_t highestLeaf, std::uint32_t signature)
{
    return [highestLeaf, signature](std::uint32_t leaf, std::uint32_t) -> OsCpuidRegisters {
        return {leaf == 0 ? highestLeaf : signature, 0, 0, 0};
    };
}

TEST(OsCpuid, SignatureIsFourBitsEachOfFamilyModelAndStepping)
{
    struct Row
    {
        std::uint32_t _signature;
        int _family;
        int _model;
        int _stepping;
    };
    const Row rows[] = {
        {0x00000000, 0, 0, 0},   {0x00000543, 5, 4, 3},   {0x00000FFF, 15, 15, 15},
        {0xFFFFF000, 0, 0, 0},   {0x000906EA, 6, 14, 10}, {0x00870F10, 15, 1, 0},
        {0xFFFFFF0F, 15, 0, 15}, {0xFFFFF0F0, 0, 15, 0},
    };
    for (const Row& row : rows)
    {
        int family = -1;
        int model = -1;
        int stepping = -1;
        osCpuSignature(processorWithSignature(1, row._signature), &family, &model, &stepping);
        EXPECT_EQ(family, row._family);
        EXPECT_EQ(model, row._model);
        EXPECT_EQ(stepping, row._stepping);
    }
}

TEST(OsCpuid, EachPartOfTheSignatureCanBeLeftOut)
{
    const OsCpuid processor = processorWithSignature(0x20, 0x543);
    int family = -1;
    int model = -1;
    int stepping = -1;
    osCpuSignature(processor, &family, nullptr, nullptr);
    EXPECT_EQ(family, 5);
    osCpuSignature(processor, nullptr, &model, nullptr);
    EXPECT_EQ(model, 4);
    osCpuSignature(processor, nullptr, nullptr, &stepping);
    EXPECT_EQ(stepping, 3);
    osCpuSignature(processor, nullptr, nullptr, nullptr);
}

TEST(OsCpuid, AProcessorIsAskedForItsSignatureOnlyWhereAPartIsWanted)
{
    int asked = 0;
    const OsCpuid counting = [&asked](std::uint32_t leaf, std::uint32_t) -> OsCpuidRegisters
    {
        ++asked;
        return {leaf == 0 ? 1U : 0x543U, 0, 0, 0};
    };
    osCpuSignature(counting, nullptr, nullptr, nullptr);
    EXPECT_EQ(asked, 0);
    int part = -1;
    osCpuSignature(counting, nullptr, nullptr, &part);
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(part, 3);
}

TEST(OsCpuid, WithoutASignatureTheVariablesStayAsTheyWere)
{
    int family = -1;
    int model = -2;
    int stepping = -3;
    osCpuSignature(processorWithSignature(0, 0x543), &family, &model, &stepping);
    EXPECT_EQ(family, -1);
    EXPECT_EQ(model, -2);
    EXPECT_EQ(stepping, -3);
}

} // namespace

/// @file
/// What an x86 processor tells of itself, apart from asking it. Internal to the library.

#ifndef ZU_BASE_OSCPUID_H
#define ZU_BASE_OSCPUID_H

#include "osCpuInfo.h"

#include <cstdint>
#include <functional>

namespace Zu
{

/// The registers that the instruction answers with.
struct OsCpuidRegisters
{
    std::uint32_t _eax;
    std::uint32_t _ebx;
    std::uint32_t _ecx;
    std::uint32_t _edx;
};

/// Answers a leaf and its sub-leaf: the processor, or a test's idea of one.
using OsCpuid = std::function<OsCpuidRegisters(std::uint32_t leaf, std::uint32_t subLeaf)>;

/// Asks the processor that this runs on.
OsCpuidRegisters osCpuid(std::uint32_t leaf, std::uint32_t subLeaf);

/// The kind of processor for a processor architecture as the Windows interfaces number it.
OsCpuInfo::Type osCpuTypeOf(unsigned int architecture);

/// Writes family, model and stepping where the pointers are not null and the processor has them.
void osCpuSignature(const OsCpuid& cpuid, int* family, int* model, int* stepping);

/// Decodes one descriptor byte of leaf 2; unknown ones are ignored. A second descriptor of one
/// target is a fatal error.
void osDecodeCacheDescriptor(unsigned int descriptor, OsCpuInfo::CacheInfo* l1Data,
                             OsCpuInfo::CacheInfo* l1Instruction, OsCpuInfo::CacheInfo* l2Unified,
                             int* pageSize);

/// Writes the caches and the page size from the descriptors of leaf 2. A processor that says there
/// that its caches are in the deterministic-cache leaf gets them from that, and `systemPageSize`.
/// One that tells no cache there, but has the extended leaf of the same form, as those of AMD do,
/// gets them from that, and `systemPageSize`.
void osMemoryInfo(const OsCpuid& cpuid, int systemPageSize, OsCpuInfo::CacheInfo* l1Data,
                  OsCpuInfo::CacheInfo* l1Instruction, OsCpuInfo::CacheInfo* l2Unified,
                  int* pageSize);

} // namespace Zu

#endif

/// @file
/// Decodes what an x86 processor reports about itself, separately from the query. Internal to the
/// library.

#ifndef ZU_BASE_OSCPUID_H
#define ZU_BASE_OSCPUID_H

#include "osCpuInfo.h"

#include <cstdint>
#include <functional>

namespace Zu
{

/// The registers in which the instruction returns its answer.
struct OsCpuidRegisters
{
    std::uint32_t _eax;
    std::uint32_t _ebx;
    std::uint32_t _ecx;
    std::uint32_t _edx;
};

/// Returns the registers for a leaf and its sub-leaf, from the processor or from a test's
/// imitation.
using OsCpuid = std::function<OsCpuidRegisters(std::uint32_t leaf, std::uint32_t subLeaf)>;

/// Queries the processor on which this runs.
OsCpuidRegisters osCpuid(std::uint32_t leaf, std::uint32_t subLeaf);

/// The kind of processor for a processor architecture as the Windows interfaces number it.
OsCpuInfo::Type osCpuTypeOf(unsigned int architecture);

/// Writes family, model and stepping where the pointers are not null and the processor has them.
void osCpuSignature(const OsCpuid& cpuid, int* family, int* model, int* stepping);

/// Decodes one descriptor byte of leaf 2; unknown ones are ignored. A second descriptor for the
/// same target is a fatal error.
void osDecodeCacheDescriptor(unsigned int descriptor, OsCpuInfo::CacheInfo* l1Data,
                             OsCpuInfo::CacheInfo* l1Instruction, OsCpuInfo::CacheInfo* l2Unified,
                             int* pageSize);

/// Writes the caches and the page size from the descriptors of leaf 2. If these refer to the
/// deterministic-cache leaf, writes the caches of that leaf, and `systemPageSize`. If no cache is
/// known then and the processor has the extended leaf of the same form, as those of AMD do, writes
/// the caches of that one, and `systemPageSize`.
void osMemoryInfo(const OsCpuid& cpuid, int systemPageSize, OsCpuInfo::CacheInfo* l1Data,
                  OsCpuInfo::CacheInfo* l1Instruction, OsCpuInfo::CacheInfo* l2Unified,
                  int* pageSize);

} // namespace Zu

#endif

/// @file
/// The kind of processor, and the platform's high-resolution counter.

#ifndef ZU_BASE_OSCPUINFO_H
#define ZU_BASE_OSCPUINFO_H

#include "baseApi.h"

#include <cstdint>

namespace Zu
{

/// Facts about the processor and the counter of the platform. The package "osal" runs
/// initialize(); the values are read-only after that and any thread may read them.
class ZU_BASE_API OsCpuInfo
{
    friend class OsMemoryArchImp;

public:
    OsCpuInfo() = delete;

    /// What kind of processor this is; UNKNOWN until initialize().
    enum Type
    {
        /// A MIPS processor.
        MIPS,
        /// A 32-bit x86 processor.
        IA32,
        /// An Itanium processor.
        IA64,
        /// A 64-bit x86 processor. Deliberately without a name, see getTypeName().
        X64,
        /// Unknown, or not determined yet.
        UNKNOWN
    };

    /// One cache.
    struct CacheInfo
    {
        /// In bytes; 0 when the cache is absent.
        int _size;
        /// Ways.
        int _associativity;
        /// Bytes per line.
        int _lineSize;
    };

    /// Determines the kind of processor, its features and the frequency of the counter. Raises
    /// ExSysErrorANSI if the platform has no counter.
    static void initialize();

    /// Does nothing.
    static void finalize();

    /// "MIPS", "IA32", "IA64" or "UNKNOWN". X64 has no name: asking for it ends the process with a
    /// failed assertion.
    static const char* getTypeName();

    /// Writes the kind of processor, and its family, model and stepping without their extended
    /// bits. A null pointer skips its value. Family, model and stepping are left unchanged if the
    /// processor does not report them.
    static void getDetailedType(Type* type, int* family, int* model, int* stepping);

    /// Whether the processor has MMX; false until initialize().
    static bool hasMMX();

    /// Whether the processor has SSE; false until initialize().
    static bool hasSSE();

    /// Ticks per second of the counter. Before initialize() a call ends the process with a failed
    /// assertion.
    static std::uint64_t getHwCounterFrequency();

    /// The counter, in ticks since some fixed moment; it never runs backwards. Raises
    /// ExSysErrorANSI.
    static std::uint64_t getHwCounterValue();

private:
    /// Writes what the processor reports about its caches. An absent cache has the size 0 and the
    /// associativity 1; its line size is left unchanged.
    static void getMemoryInfo(CacheInfo* l1Data, CacheInfo* l1Instruction, CacheInfo* l2Unified,
                              int* pageSize);

    static Type _type;
    static bool _hasMMX;
    static bool _hasSSE;
    static std::uint64_t _hwCounterFrequency;
};

} // namespace Zu

#endif

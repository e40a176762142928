/// @file
/// What belongs to a compiler or its standard library and takes a call. Internal to the library.

#ifndef ZU_BASE_COMPILERSUPPORT_H
#define ZU_BASE_COMPILERSUPPORT_H

#include <cstdint>
#include <fstream>
#include <string>

namespace Zu::Compiler
{

/// A run-time type name as a C++ programmer writes it; as it stands where that can't be known.
std::string demangled(const char* name);

/// The registers that the processor's CPUID instruction leaves; zeros where the compiler has no
/// way to it.
struct CpuidRegisters
{
    std::uint32_t _eax;
    std::uint32_t _ebx;
    std::uint32_t _ecx;
    std::uint32_t _edx;
};
CpuidRegisters cpuid(std::uint32_t leaf, std::uint32_t subLeaf);

/// Puts an open descriptor into a stream, without a buffer; the stream owns it from then on. False,
/// and the descriptor is still the caller's, if that failed.
bool adoptDescriptor(std::ofstream& file, int descriptor, std::ios::openmode mode);

} // namespace Zu::Compiler

#endif

/// @file
/// Features of the compiler or its standard library that need a function call. Internal to the
/// library.

#ifndef ZU_BASE_COMPILERSUPPORT_H
#define ZU_BASE_COMPILERSUPPORT_H

#include <cstdint>
#include <fstream>
#include <string>

namespace Zu::Compiler
{

/// A run-time type name as a C++ programmer writes it. It is returned unchanged where it can't be
/// demangled.
std::string demangled(const char* name);

/// The registers as the processor's CPUID instruction leaves them; zeros where the compiler gives
/// no access to it.
struct CpuidRegisters
{
    std::uint32_t _eax;
    std::uint32_t _ebx;
    std::uint32_t _ecx;
    std::uint32_t _edx;
};
CpuidRegisters cpuid(std::uint32_t leaf, std::uint32_t subLeaf);

/// Attaches an open descriptor to an unbuffered stream, which owns it from then on. On failure it
/// returns false and the descriptor stays the caller's.
bool adoptDescriptor(std::ofstream& file, int descriptor, std::ios::openmode mode);

} // namespace Zu::Compiler

#endif

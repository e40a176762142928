/// @file
/// The platform calls under OsCpuInfo. Internal to the library.

#ifndef ZU_BASE_OSCPUPLATFORM_H
#define ZU_BASE_OSCPUPLATFORM_H

#include <cstdint>

namespace Zu
{

/// The processor architecture as the Windows interfaces number it: 9 for 64-bit x86.
unsigned int osCpuArchitecture();

bool osCpuHasMMX();
bool osCpuHasSSE();

/// Writes the ticks per second of the counter; false, with `errno` set, if there is none.
bool osCounterFrequency(std::uint64_t& frequency);

/// The size of a page of memory, in bytes.
int osPageSize();

} // namespace Zu

#endif

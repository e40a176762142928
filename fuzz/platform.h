// Which platform the targets run on.

#ifndef ZU_FUZZ_PLATFORM_H
#define ZU_FUZZ_PLATFORM_H

namespace fuzz
{

#if defined(_WIN32)
constexpr bool onWindows = true;
#else
constexpr bool onWindows = false;
#endif

} // namespace fuzz

#endif

// Which platform the tests run on, and what only its own calls tell.

#ifndef ZU_TESTS_PLATFORM_H
#define ZU_TESTS_PLATFORM_H

#include <cstdint>

namespace support
{

#if defined(_WIN32)
constexpr bool onWindows = true;
#else
constexpr bool onWindows = false;
#endif

// The ids of the process and of the calling thread.
std::uint32_t processId();
std::uint32_t threadId();

// Sets the mode bits that new files do not get, and gives the bits that were set before. Windows
// has no such modes: nothing happens there.
unsigned int setModeMask(unsigned int mask);

// Whether the platform's own call resolves paths of up to 1,023 characters, as Windows does and
// Wine does not.
bool resolvesLongPaths();

// Waits until a child of this process has ended, and leaves it as it is; returns at once if there
// is no child, and on Windows.
void awaitEndOfAnyChild();

// Whether a child has ended that nobody has asked for its end; never so on Windows.
bool hasUnreapedChild();

} // namespace support

#endif

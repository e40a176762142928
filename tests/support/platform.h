// The platform on which the tests run, and what only its own calls can report.

#ifndef ZU_TESTS_PLATFORM_H
#define ZU_TESTS_PLATFORM_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace support
{

#if defined(_WIN32)
constexpr bool onWindows = true;
#else
constexpr bool onWindows = false;
#endif

// g++ has macros for its sanitizers, clang has features.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZU_TEST_ADDRESS_SANITIZER
#endif
#if __has_feature(thread_sanitizer)
#define ZU_TEST_THREAD_SANITIZER
#endif
#endif

// Whether AddressSanitizer is active, together with the checks of run-time types.
#if defined(__SANITIZE_ADDRESS__) || defined(ZU_TEST_ADDRESS_SANITIZER)
constexpr bool underAddressSanitizer = true;
#else
constexpr bool underAddressSanitizer = false;
#endif

// Whether a sanitizer replaces the runtime's own allocator and threads.
#if defined(__SANITIZE_THREAD__) || defined(ZU_TEST_THREAD_SANITIZER)
constexpr bool underSanitizer = true;
#else
constexpr bool underSanitizer = underAddressSanitizer;
#endif

// The ids of the process and of the calling thread.
std::uint32_t processId();
std::uint32_t threadId();

// The number of open handles or descriptors of the process, stable while none is opened or closed.
std::size_t openHandles();

// The numbers of the open descriptors of the runtime, in order; and whether children inherit one.
std::vector<int> openDescriptors();
bool isInherited(int descriptor);

// Closes the descriptors 0, 1 and 2.
void closeStandardStreams();

// The platform's name of this host, by a call that the library does not use.
std::string hostName();

// The size of a page of memory, in bytes.
int pageSize();

// Makes the runtime look below this directory for translations of its texts, and returns the name
// of the language that it looks for; none on Windows, whose runtime has no other language. The
// empty text restores the system's directory.
std::string translateRuntime(const std::string& directory);

// How many threads the process has, without those that belong to the system's own timer service.
std::size_t threadCount();

// Sets the mode bits that new files do not get, and returns the previous bits. Windows has no such
// modes: nothing happens there.
unsigned int setModeMask(unsigned int mask);

// The number of the user; 0 on Windows, which has none.
std::uint32_t userId();

// Makes another user the owner of a file, a link or a directory; false without the right to do so,
// and on Windows.
bool giveToAnotherUser(const std::string& path);

// Whether the platform's own call resolves paths of up to 1,023 characters: Windows does, Wine does
// not.
bool resolvesLongPaths();

// Whether the system can make all threads of a process pass a memory barrier.
bool hasProcessBarrier();

// Waits until a child of this process has ended, without reaping it; returns at once if there is no
// child, and on Windows.
void awaitEndOfAnyChild();

// Forks a copy of this process that continues from here with the calling thread alone; a child that
// does not end within minutes is ended by a signal.
enum class Side
{
    PARENT,
    CHILD,
    // On Windows, which can't fork.
    NEITHER
};
Side forkProcess();

// Waits for the end of the child that forkProcess() made; returns its exit value, or -1 if a signal
// ended it.
int awaitForkedChild();

// Whether an ended child has not been reaped yet; never true on Windows.
bool hasUnreapedChild();

} // namespace support

#endif

/// @file
/// The interface of a leak checker.

#ifndef ZU_BASE_HMGC_H
#define ZU_BASE_HMGC_H

#include "arrayPtr.h"
#include "baseApi.h"
#include "ownedPtr.h"

#include <iosfwd>

namespace Zu
{

/// When it is destroyed, checks for memory that was allocated in its lifetime and not freed. It
/// skips known leaks, prints the others with their call stacks, and may raise
/// HmGCEx::ExGarbageDetected. For that it needs a debugging heap, which this build does not have:
/// it keeps its settings and finds nothing. isMemDebugLoaded() reports whether there is such a
/// heap.
///
/// An object is local to a scope or part of another object; it is never allocated on the heap by
/// itself.
///
/// Thread-safety: an object belongs to one thread at a time.
class ZU_BASE_API HmGC
{
public:
    /// Prints nothing and raises nothing until it is configured to.
    HmGC();
    HmGC(const HmGC&) = default;
    HmGC& operator=(const HmGC&) = default;

    /// Checks; may raise HmGCEx::ExGarbageDetected where there is a debugging heap.
    ~HmGC() noexcept(false);

    /// Where leaks are printed; not owned.
    void setOutput(std::ostream* output);

    /// Whether a leak raises HmGCEx::ExGarbageDetected.
    void setThrowException(bool throwException);

    /// Whether leaks are printed with their call stacks; initially true.
    void setStackDump(bool stackDump);

    /// Whether there is a heap that reports leaks; false in this build.
    static bool isMemDebugLoaded();

    /// Checks a leak that the heap reports and prints it unless it is a known one. Does nothing in
    /// this build.
    void validateAndPrint(void* leak);

private:
    static void operator delete(void*);

    bool isLeakValid(ArrayPtr<char>* stack, const char* knownLeaks) const;
    void extractCallStack(void** frames, ArrayPtr<char>* names, ArrayPtr<char>* lines);
    void printLeak(ArrayPtr<char>& leak, ArrayPtr<char>* stack) const;

    std::ostream* _output = nullptr;
    bool _throwException = false;
    bool _stackDump = true;
};

/// The destructor may throw.
template <> inline constexpr bool ownedMayThrow<HmGC> = true;

} // namespace Zu

#endif

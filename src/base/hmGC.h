/// @file
/// The front of a leak checker.

#ifndef ZU_BASE_HMGC_H
#define ZU_BASE_HMGC_H

#include "arrayPtr.h"
#include "baseApi.h"
#include "ownedPtr.h"

#include <iosfwd>

namespace Zu
{

/// Checks, at its end, what was allocated in its lifetime and not freed: leaves known leaks out,
/// prints the others with their call stacks, and may raise HmGCEx::ExGarbageDetected. For that it
/// needs a debugging heap, and there is none in this build: it keeps its settings and finds
/// nothing. isMemDebugLoaded() tells.
///
/// An object stands in a scope, or is part of another: it is never released from the heap itself.
///
/// Thread-safety: an object is of one thread at a time.
class ZU_BASE_API HmGC
{
public:
    /// Prints nowhere and raises nothing, until it is told to.
    HmGC();
    HmGC(const HmGC&) = default;
    HmGC& operator=(const HmGC&) = default;

    /// Checks; may raise HmGCEx::ExGarbageDetected where there is a debugging heap.
    ~HmGC() noexcept(false);

    /// Where leaks are printed; not owned.
    void setOutput(std::ostream* output);

    /// Whether a leak raises HmGCEx::ExGarbageDetected.
    void setThrowException(bool throwException);

    /// Whether leaks are printed with their call stacks; true at first.
    void setStackDump(bool stackDump);

    /// Whether there is a heap that tells leaks; false here.
    static bool isMemDebugLoaded();

    /// Checks a leak that the heap tells, and prints it if it is not known; nothing here.
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

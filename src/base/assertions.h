/// @file
/// Checks that raise an exception.

#ifndef ZU_BASE_ASSERTIONS_H
#define ZU_BASE_ASSERTIONS_H

#include "base/baseApi.h"

namespace Zu
{

/// Turns a failed check into a thrown ExInternalError. None of the operations returns.
class ZU_BASE_API Assertions
{
public:
    Assertions() = delete;

    /// Raises "Assertion '<expr>' failed."
    [[noreturn]] static void throwAssertionFailed(const char* file, int line, const char* expr);

    /// Raises "Assertion '<expr>' failed, errno = <errnum> (<text of errnum>)."
    [[noreturn]] static void throwSysAssertionFailed(const char* file, int line, const char* expr,
                                                     int errnum);

    /// Raises "Program aborted."
    [[noreturn]] static void throwProgramAborted(const char* file, int line);
};

} // namespace Zu

#endif

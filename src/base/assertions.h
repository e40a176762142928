/// @file
/// Checks that raise an exception.

#ifndef ZU_BASE_ASSERTIONS_H
#define ZU_BASE_ASSERTIONS_H

#include "baseApi.h"

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

/// Raises ExInternalError "Assertion '<condition>' failed." when `condition` is false; active in
/// every build type. For the checks of levels, groups and sample sources. Most other checks are
/// either fatal (internalAssert.h) or raise an exception of their own.
#define ZU_ASSERT(condition)                                                                       \
    ((condition) ? void() : ::Zu::Assertions::throwAssertionFailed(__FILE__, __LINE__, #condition))

/// The same with an explicit text, for a check whose reported text is frozen although its code may
/// change.
#define ZU_ASSERT_TEXT(condition, text)                                                            \
    ((condition) ? void() : ::Zu::Assertions::throwAssertionFailed(__FILE__, __LINE__, text))

#endif

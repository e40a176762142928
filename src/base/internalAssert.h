/// @file
/// The fatal check of the library's own invariants.

#ifndef ZU_BASE_INTERNALASSERT_H
#define ZU_BASE_INTERNALASSERT_H

#include "baseApi.h"

namespace Zu
{

/// Writes "Assertion failed: <expression>, file <file>, line <line>" and a line feed to standard
/// error and aborts the process. Any thread may call it; it allocates nothing.
[[noreturn]] ZU_BASE_API void internalAssertionFailed(const char* expression, const char* file,
                                                      int line);

} // namespace Zu

/// Aborts the process when `condition` is false; active in every build type. It guards conditions
/// that only a defect can break; a mistake that a caller can make raises an exception of the ExBase
/// family.
///
/// The condition is stringised at this level of macro expansion, so that a macro inside it appears
/// as it was written.
#define ZU_INTERNAL_ASSERT(condition)                                                              \
    ((condition) ? void() : ::Zu::internalAssertionFailed(#condition, __FILE__, __LINE__))

/// The same with an explicit text, for a check whose reported text is frozen although its code may
/// change.
#define ZU_INTERNAL_ASSERT_TEXT(condition, text)                                                   \
    ((condition) ? void() : ::Zu::internalAssertionFailed(text, __FILE__, __LINE__))

#endif

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

/// Aborts the process when `condition` is false; active in every build type. It guards what only
/// a defect can break; a mistake that a caller can make raises an exception of the ExBase family.
///
/// The text is taken at this level of macro expansion, so that a macro inside the condition shows
/// as it was written.
#define ZU_INTERNAL_ASSERT(condition)                                                              \
    ((condition) ? void() : ::Zu::internalAssertionFailed(#condition, __FILE__, __LINE__))

/// The same with a stated text, for a check whose report is fixed while its code is not.
#define ZU_INTERNAL_ASSERT_TEXT(condition, text)                                                   \
    ((condition) ? void() : ::Zu::internalAssertionFailed(text, __FILE__, __LINE__))

#endif

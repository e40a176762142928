/// @file
/// Makes an owned string from text. Internal to the library.

#ifndef ZU_BASE_DUPLICATESTRING_H
#define ZU_BASE_DUPLICATESTRING_H

#include "arrayPtr.h"

namespace Zu
{

/// A terminated copy of at most `maxLength` characters of `text` in an array of `maxLength` + 1.
/// Nothing beyond the terminator of `text` is read. A null `text` or a `maxLength` of 0 gives the
/// empty string, never a null pointer.
ArrayPtrRet<char> duplicateString(const char* text, unsigned int maxLength);

/// A copy of the whole of `text`; null gives the empty string.
ArrayPtrRet<char> duplicateString(const char* text);

} // namespace Zu

#endif

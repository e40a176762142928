/// @file
/// The last error of the platform and its text. Internal to the library.

#ifndef ZU_BASE_EXSYSTEMCODE_H
#define ZU_BASE_EXSYSTEMCODE_H

#include <cstddef>

namespace Zu
{

/// The error code of the last failed platform call of this thread.
int lastSystemCode();

/// Sets the code that lastSystemCode() will return.
void setLastSystemCode(int code);

/// Writes the platform's text for `code`, unchanged, into `buffer` of `size` characters; the empty
/// text if there is none.
void systemCodeText(int code, char* buffer, std::size_t size);

/// The text of an `errno`, as `strerror()` gives it in the locale "C"; valid until the next call on
/// the same thread.
const char* errnoText(int code);

/// Checks the last character and the one before it, independently of each other, and replaces each
/// by a terminator if it is a carriage return or a line feed.
void cutLineEnd(char* text);

} // namespace Zu

#endif

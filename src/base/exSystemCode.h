/// @file
/// The last error of the platform and its text. Internal to the library.

#ifndef ZU_BASE_EXSYSTEMCODE_H
#define ZU_BASE_EXSYSTEMCODE_H

#include <cstddef>

namespace Zu
{

/// The error code of the last failed platform call of this thread.
int lastSystemCode();

/// Sets the code that lastSystemCode() returns next.
void setLastSystemCode(int code);

/// Writes the platform's text for `code` into `buffer` of `size` characters, as the platform gives
/// it; the empty text if it has none.
void systemCodeText(int code, char* buffer, std::size_t size);

/// The text of an `errno`, as `strerror()` gives it in the locale "C"; valid until the thread asks
/// again.
const char* errnoText(int code);

/// Looks at the last character and at the one before it, independently, and replaces each that is
/// a carriage return or a line feed by a terminator.
void cutLineEnd(char* text);

} // namespace Zu

#endif

/// @file
/// Texts to numbers. Internal to the library.

#ifndef ZU_BASE_TEXTTODOUBLE_H
#define ZU_BASE_TEXTTODOUBLE_H

namespace Zu
{

/// The number at the beginning of the text, as `atof` reads it by the rules of C99, whatever the
/// platform's own does: decimal, or hexadecimal behind "0x", or "inf" and "nan"; 0 for text that is
/// none. The locale does not matter. `errno` stays as it was.
double textToDouble(const char* text);

} // namespace Zu

#endif

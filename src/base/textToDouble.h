/// @file
/// Texts to numbers. Internal to the library.

#ifndef ZU_BASE_TEXTTODOUBLE_H
#define ZU_BASE_TEXTTODOUBLE_H

namespace Zu
{

/// The number at the beginning of the text, as `atof` reads it by the rules of C99, whatever the
/// platform's own does: decimal, hexadecimal after "0x", "inf" or "nan"; 0 for text that is not a
/// number. The locale does not matter. `errno` is left unchanged.
double textToDouble(const char* text);

} // namespace Zu

#endif

/// @file
/// Texts to whole numbers. Internal to the library.

#ifndef ZU_BASE_TEXTTOINT_H
#define ZU_BASE_TEXTTOINT_H

namespace Zu
{

/// The decimal number at the beginning of the text, as `atoi` reads it: 0 for text that is not a
/// number, and the nearest int for a number out of range. `errno` is left unchanged.
int textToInt(const char* text);

} // namespace Zu

#endif

/// @file
/// The list of known leaks. Internal to the library.

#ifndef ZU_BASE_HMKNOWNLEAKS_H
#define ZU_BASE_HMKNOWNLEAKS_H

#include "arrayPtr.h"

namespace Zu
{

/// Whether no entry of the list, which must not be null, matches a call stack. An entry is the word
/// "KNOWNLEAK", a blank, patterns for the first frames, with single blanks between, and the word
/// "ENDL". A frame matches when the pattern begins with the frame's whole name; deliberately not
/// the other way round.
///
/// A stack that has fewer frames than an entry has patterns must end in a null name; such an entry
/// does not match, and neither does one without its "ENDL".
bool hmIsUnknownLeak(const ArrayPtr<char>* stack, const char* knownLeaks);

} // namespace Zu

#endif

/// @file
/// The list of known leaks. Internal to the library.

#ifndef ZU_BASE_HMKNOWNLEAKS_H
#define ZU_BASE_HMKNOWNLEAKS_H

#include "arrayPtr.h"

namespace Zu
{

/// Whether no entry of the list, which must not be null, matches a call stack. An entry is the word
/// "KNOWNLEAK", patterns for the first frames, and the word "ENDL", all separated by single blanks.
/// A frame matches when the pattern begins with the frame's whole name, deliberately not the other
/// way round.
///
/// A stack with fewer frames than an entry has patterns must end in a null name. Such an entry does
/// not match, nor does one without its "ENDL".
bool hmIsUnknownLeak(const ArrayPtr<char>* stack, const char* knownLeaks);

} // namespace Zu

#endif

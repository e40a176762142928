/// @file
/// The switch for start-up diagnostics. Internal to the library.

#ifndef ZU_BASE_INDEBUG_H
#define ZU_BASE_INDEBUG_H

#include <iosfwd>

namespace Zu
{

/// Whether the environment variable ZU_DEBUG_INITIALIZE is currently set, to any value. Start-up
/// and shut-down then write what they do to standard error.
bool inDebugInitialize();

/// Standard error, usable even before any source file that prints has initialised it: packages are
/// declared that early.
std::ostream& inDebugStream();

} // namespace Zu

#endif

/// @file
/// The command line of a child process where it is a single text. Internal to the library.

#ifndef ZU_BASE_OSCOMMANDLINE_H
#define ZU_BASE_OSCOMMANDLINE_H

#include <string>

namespace Zu
{

/// Joins the words of a null-terminated array, each followed by one blank. Deliberately quotes
/// nothing.
std::string osCommandLine(const char* const* argv);

} // namespace Zu

#endif

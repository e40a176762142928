/// @file
/// The command line of a child where it is one text. Internal to the library.

#ifndef ZU_BASE_OSCOMMANDLINE_H
#define ZU_BASE_OSCOMMANDLINE_H

#include <string>

namespace Zu
{

/// Each word of a null-terminated array with one blank behind it. Deliberately nothing is quoted.
std::string osCommandLine(const char* const* argv);

} // namespace Zu

#endif

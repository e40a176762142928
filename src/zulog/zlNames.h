/// @file
/// Names of files, which are in UTF-8 on both platforms.

#ifndef ZU_ZULOG_ZLNAMES_H
#define ZU_ZULOG_ZLNAMES_H

#include <filesystem>
#include <string>

namespace Zu
{

/// A name in UTF-8 as a path, whatever the platform's own encoding is, and back. On Linux, bytes
/// that are no UTF-8 stay as they are.
/// @{
std::filesystem::path zlPathOf(const std::string& name);
std::string zlNameOf(const std::filesystem::path& path);
/// @}

/// The directory that a file is in; "." for a name without one. Not looked at.
std::string zlDirectoryOf(const std::string& name);

/// Whether there is a directory of this name. False for what can't be looked at.
bool zlIsDirectory(const std::string& name);

} // namespace Zu

#endif

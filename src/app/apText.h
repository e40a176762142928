/// @file
/// Texts that several parts of the kit make. Internal to the application kit.

#ifndef ZU_APP_APTEXT_H
#define ZU_APP_APTEXT_H

#include <string>
#include <string_view>
#include <vector>

namespace Zu
{

/// The names in their order, with ", " between them.
std::string apJoined(const std::vector<std::string>& names);

/// What follows the last separator of a path, "/" or "\", on each platform.
std::string_view apLastPart(std::string_view path);

} // namespace Zu

#endif

/// @file
/// The variables of the logger, checked for people. Internal to the kit.

#ifndef ZU_APP_APLOGCHECK_H
#define ZU_APP_APLOGCHECK_H

#include <string>
#include <string_view>
#include <vector>

namespace Zu
{

/// What in the value of `ZU_LOG_GROUPS` would end the start-up: a pair without a level. Empty if
/// there is nothing; otherwise a sentence without a full stop.
std::string apGroupsError(std::string_view value);

/// What in the value of `ZU_LOG_GROUPS` has no effect: texts that are no levels, and groups that
/// are not among `used`, the groups that statements belong to. Sentences without full stops.
std::vector<std::string> apGroupsNotes(std::string_view value,
                                       const std::vector<std::string>& used);

/// The same for `ZU_LOG_DEFAULT_LEVEL`; empty if the value is a level.
std::string apDefaultLevelNote(std::string_view value);

} // namespace Zu

#endif

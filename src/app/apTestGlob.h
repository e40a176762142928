/// @file
/// Names that a pattern stands for. Internal to the kit.

#ifndef ZU_APP_APTESTGLOB_H
#define ZU_APP_APTESTGLOB_H

#include <string_view>

namespace Zu
{

/// Whether the pattern stands for the whole text: "*" for any characters or none, "?" for one,
/// every other character for itself. Characters are those of UTF-8; a byte that is none counts as
/// one. Upper and lower case differ. The time is at most the product of both lengths.
bool apMatchesGlob(std::string_view pattern, std::string_view text);

/// Whether there is a "*" or a "?" in it.
bool apIsGlob(std::string_view text);

} // namespace Zu

#endif

/// @file
/// The name that a misspelt one may stand for. Internal to the kit.

#ifndef ZU_APP_APNEAREST_H
#define ZU_APP_APNEAREST_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Zu
{

/// How many characters must be inserted, removed, replaced, or exchanged with their neighbour, to
/// make one text of the other; ASCII letters of either case are the same. The algorithm is that for
/// the optimal string alignment distance; its time is the product of both lengths.
std::size_t apDistance(std::string_view a, std::string_view b);

/// The name that is nearest to `text`, the first of several; empty if none is near enough: a third
/// of the longer text, at least one character, may differ.
std::string apNearest(std::string_view text, const std::vector<std::string>& names);

/// "; did you mean 'NAME'?", or the empty text if no name is near enough.
std::string apDidYouMean(std::string_view text, const std::vector<std::string>& names);

} // namespace Zu

#endif

/// @file
/// What stands behind the text of a statement: where it is, and what its thread was working on.

#ifndef ZU_ZULOG_ZLSUFFIX_H
#define ZU_ZULOG_ZLSUFFIX_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Zu
{

/// The suffix of a text, as in "order 7 is late [orders.cpp:17] {request=4711, user=\"Ann Lee\"}".
struct ZlSuffix
{
    /// "orders.cpp:17"; empty if there is none.
    std::string _source;
    /// Names and values in their order.
    std::vector<std::pair<std::string, std::string>> _fields;
};

/// Finds the suffix at the end of a text whose escapes are undone. A text that only looks as if it
/// had one is taken for one.
ZlSuffix zlSuffixOf(std::string_view text);

} // namespace Zu

#endif

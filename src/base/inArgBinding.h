/// @file
/// Binds the options of a command line to the aliases. Internal to the library.

#ifndef ZU_BASE_INARGBINDING_H
#define ZU_BASE_INARGBINDING_H

#include "containers.h"

#include <set>

namespace Zu
{

class InContextAliasBase;

/// Initialises every alias with the value of its option in `args`, or with none, and erases from
/// `args` the words that the option parser consumed, except the first one. The first alias of a
/// letter, in the order of the set, decides whether the option takes a value. If an option is given
/// twice, the last value counts. An unknown option ends the binding without a message.
///
/// `args` owns its words, allocated with `new[]`; it must not be empty.
void inBindArguments(const std::set<InContextAliasBase*>& aliases, Vector<char*>& args);

} // namespace Zu

#endif

/// @file
/// The keys in use of a unique kind of alias. Internal to the library.

#ifndef ZU_BASE_INALIASKEYS_H
#define ZU_BASE_INALIASKEYS_H

#include <map>
#include <string>

namespace Zu
{

/// Counts the aliases of each key. Every operation takes the kind's map, null while there is no
/// alias of the kind, and makes or ends it.
class InAliasKeys
{
public:
    using Keys = std::map<std::string, int>;

    InAliasKeys() = delete;

    /// Notes a new key. Raises InEx::ExContextAliasAlreadyDefined when it is in use.
    static void create(Keys*& keys, const char* key);

    /// Notes one more alias of a key.
    static void share(Keys* keys, const char* key);

    /// Notes the end of an alias.
    static void release(Keys*& keys, const char* key);
};

} // namespace Zu

#endif

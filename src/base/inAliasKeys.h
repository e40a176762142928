/// @file
/// The keys in use of a unique kind of alias. Internal to the library.

#ifndef ZU_BASE_INALIASKEYS_H
#define ZU_BASE_INALIASKEYS_H

#include <map>
#include <string>

namespace Zu
{

/// Counts the aliases of each key. Every operation takes the kind's map, which is null while the
/// kind has no alias; the operations create and delete it as needed.
class InAliasKeys
{
public:
    using Keys = std::map<std::string, int>;

    InAliasKeys() = delete;

    /// Adds a new key. Raises InEx::ExContextAliasAlreadyDefined if it is in use.
    static void create(Keys*& keys, const char* key);

    /// Counts one more alias of a key.
    static void share(Keys* keys, const char* key);

    /// Counts one alias of a key less.
    static void release(Keys*& keys, const char* key);
};

} // namespace Zu

#endif

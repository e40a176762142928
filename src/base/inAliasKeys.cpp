#include "base/inAliasKeys.h"

#include "base/inEx.h"
#include "base/internalAssert.h"

namespace Zu
{

void InAliasKeys::create(Keys*& keys, const char* key)
{
    if (!keys) keys = new Keys;
    if (!keys->emplace(key, 1).second)
        throw InEx::ExContextAliasAlreadyDefined(__FILE__, __LINE__, key);
}

void InAliasKeys::share(Keys* keys, const char* key)
{
    ZU_INTERNAL_ASSERT_TEXT(keys, "_keys != 0");
    ++(*keys)[key];
}

void InAliasKeys::release(Keys*& keys, const char* key)
{
    ZU_INTERNAL_ASSERT_TEXT(keys, "_keys != 0");
    if (--(*keys)[key] > 0) return;
    const bool isErased = keys->erase(key) == 1;
    ZU_INTERNAL_ASSERT_TEXT(isErased, "_keys->erase( _key.get()) == 1");
    if (!keys->empty()) return;
    delete keys;
    keys = nullptr;
}

} // namespace Zu

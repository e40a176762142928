#include "base/inAliasKeys.h"

#include "base/inEx.h"

#include <gtest/gtest.h>

namespace
{

using Zu::InAliasKeys;

TEST(InAliasKeys, TheMapExistsOnlyWhileThereAreKeys)
{
    InAliasKeys::Keys* keys = nullptr;
    InAliasKeys::create(keys, "a");
    ASSERT_NE(keys, nullptr);
    InAliasKeys::create(keys, "b");
    EXPECT_EQ(keys->size(), 2U);
    InAliasKeys::release(keys, "a");
    EXPECT_EQ(keys->size(), 1U);
    InAliasKeys::release(keys, "b");
    EXPECT_EQ(keys, nullptr);
}

TEST(InAliasKeys, AKeyIsCreatedOnceAndSharedAnyNumberOfTimes)
{
    InAliasKeys::Keys* keys = nullptr;
    InAliasKeys::create(keys, "a");
    EXPECT_THROW(InAliasKeys::create(keys, "a"), Zu::InEx::ExContextAliasAlreadyDefined);
    InAliasKeys::share(keys, "a");
    InAliasKeys::share(keys, "a");
    EXPECT_EQ(keys->at("a"), 3);
    for (int i = 0; i < 3; ++i) InAliasKeys::release(keys, "a");
    EXPECT_EQ(keys, nullptr);
}

TEST(InAliasKeys, SharingAKeyThatIsAbsentAddsIt)
{
    InAliasKeys::Keys* keys = nullptr;
    InAliasKeys::create(keys, "a");
    InAliasKeys::share(keys, "b");
    EXPECT_EQ(keys->at("b"), 1);
    InAliasKeys::release(keys, "b");
    InAliasKeys::release(keys, "a");
}

TEST(InAliasKeysDeathTest, WorkWithoutAMapIsFatal)
{
    InAliasKeys::Keys* keys = nullptr;
    EXPECT_DEATH(InAliasKeys::share(keys, "a"), "Assertion failed: _keys != 0, file");
    EXPECT_DEATH(InAliasKeys::release(keys, "a"), "Assertion failed: _keys != 0, file");
}

} // namespace

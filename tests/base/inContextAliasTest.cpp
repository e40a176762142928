#include "base/inContextAlias.h"

#include "base/inEx.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <typeinfo>

namespace
{

using Zu::InArgAlias;
using Zu::InContextAliasBase;
using Zu::InDefAlias;
using Zu::InEnvAlias;
using Zu::InEx;
using Zu::InOvrAlias;

TEST(InContextAlias, KindsHaveTheirPriorities)
{
    EXPECT_EQ(InOvrAlias("1", "").getPriority(), 4294967295U);
    EXPECT_EQ(InArgAlias("1", "").getPriority(), 15U);
    EXPECT_EQ(InEnvAlias("1", "").getPriority(), 10U);
    EXPECT_EQ(InDefAlias("1", "").getPriority(), 0U);
}

TEST(InContextAlias, KeepsACopyOfItsKey)
{
    char key[] = "KEY";
    const InEnvAlias alias(key, "description");
    key[0] = 'X';
    EXPECT_STREQ(alias.getKey(), "KEY");
    EXPECT_STREQ(alias.getDescription(), "description");
    EXPECT_STREQ(InDefAlias(nullptr, nullptr).getKey(), "");
}

TEST(InContextAlias, NamesItsKind)
{
    EXPECT_STREQ(InOvrAlias::initSourceString(), "Zu::InContextAlias<Zu::InInitOvr, 0>");
    EXPECT_STREQ(InArgAlias::initSourceString(), "Zu::InContextAlias<Zu::InInitArg, 1>");
    EXPECT_STREQ(InEnvAlias::initSourceString(), "Zu::InContextAlias<Zu::InInitEnv, 1>");
    EXPECT_STREQ(InDefAlias::initSourceString(), "Zu::InContextAlias<Zu::InInitDef, 0>");
}

template <class Alias> std::string reasonOfSecondUse(const char* key)
{
    const Alias first(key, "first");
    try
    {
        const Alias second(key, "second");
    }
    catch (const InEx::ExContextAliasAlreadyDefined& exception)
    {
        return exception.getReason();
    }
    return "nothing raised";
}

TEST(InContextAlias, AKeyOfAUniqueKindIsUsedOnce)
{
    const std::string reason = "Trying to re-create an already existing Context Alias: 'twice'.";
    EXPECT_EQ(reasonOfSecondUse<InEnvAlias>("twice"), reason);
    EXPECT_EQ(reasonOfSecondUse<InArgAlias>("twice"), reason);
    EXPECT_EQ(reasonOfSecondUse<InDefAlias>("twice"), "nothing raised");
    EXPECT_EQ(reasonOfSecondUse<InOvrAlias>("twice"), "nothing raised");
}

TEST(InContextAlias, KindsDoNotShareKeys)
{
    const InEnvAlias env("k", "");
    EXPECT_NO_THROW(InArgAlias("k", ""));
}

TEST(InContextAlias, AKeyIsFreeAgainWhenAllThatUseItAreGone)
{
    std::unique_ptr<InContextAliasBase> copy;
    {
        const InEnvAlias alias("FREE_AGAIN", "");
        copy.reset(alias.clone());
    }
    EXPECT_THROW(InEnvAlias("FREE_AGAIN", ""), InEx::ExContextAliasAlreadyDefined);
    copy.reset();
    EXPECT_NO_THROW(InEnvAlias("FREE_AGAIN", ""));
}

TEST(InContextAlias, ACloneIsOfTheSameKindAndKey)
{
    InEnvAlias alias("CLONED", "description");
    alias.initialize("value");
    const std::unique_ptr<InContextAliasBase> copy(alias.clone());
    EXPECT_TRUE(typeid(*copy) == typeid(InEnvAlias));
    EXPECT_STREQ(copy->getKey(), "CLONED");
    EXPECT_STREQ(copy->getDescription(), "description");
    EXPECT_STREQ(copy->getValue(), "value");
    EXPECT_EQ(copy->getPriority(), 10U);
}

} // namespace

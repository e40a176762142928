#include "base/inContextAliasBase.h"

#include "base/inEx.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace
{

using Zu::InEx;

class SampleAlias : public Zu::InContextAliasBase
{
public:
    explicit SampleAlias(const char* description) : InContextAliasBase(description) {}

    InContextAliasBase* clone() const override
    {
        return new SampleAlias(*this);
    }
    std::uint32_t getPriority() const override
    {
        return 0;
    }
    const char* getKey() const override
    {
        return "key";
    }
};

template <class Exception> std::string reasonOfGetValue(const SampleAlias& alias)
{
    try
    {
        alias.getValue();
    }
    catch (const Exception& exception)
    {
        return exception.getReason();
    }
    return "nothing raised";
}

TEST(InContextAliasBase, HasNoValueBeforeItIsInitialised)
{
    const SampleAlias alias("what for");
    EXPECT_FALSE(alias.isValid());
    EXPECT_STREQ(alias.getDescription(), "what for");
    EXPECT_EQ(reasonOfGetValue<InEx::ExUninitializedObject>(alias),
              "Trying to access an object that is not fully initialized: 'what for'.");
}

TEST(InContextAliasBase, InitialisedWithNullItIsInvalid)
{
    SampleAlias alias("what for");
    alias.initialize(nullptr);
    EXPECT_FALSE(alias.isValid());
    EXPECT_EQ(reasonOfGetValue<InEx::ExInvalidObject>(alias),
              "Trying to access an object that has an invalid value: 'what for'.");
}

TEST(InContextAliasBase, KeepsACopyOfItsTexts)
{
    char description[] = "text";
    char value[] = "value";
    SampleAlias alias(description);
    alias.initialize(value);
    description[0] = value[0] = 'X';
    EXPECT_STREQ(alias.getDescription(), "text");
    EXPECT_STREQ(alias.getValue(), "value");
}

TEST(InContextAliasBase, AnEmptyValueIsValid)
{
    SampleAlias alias("");
    alias.initialize("");
    EXPECT_TRUE(alias.isValid());
    EXPECT_STREQ(alias.getValue(), "");
}

TEST(InContextAliasBase, FinalisedItIsUninitialisedAgainAndKeepsItsText)
{
    SampleAlias alias("what for");
    alias.initialize("value");
    alias.finalize();
    EXPECT_FALSE(alias.isValid());
    EXPECT_THROW(alias.getValue(), InEx::ExUninitializedObject);
    // Initialised with null it shows the text that it kept.
    alias.initialize(nullptr);
    EXPECT_STREQ(alias.getValue(), "value");
}

TEST(InContextAliasBase, ACopyHasStateDescriptionAndValue)
{
    SampleAlias alias("what for");
    const std::unique_ptr<Zu::InContextAliasBase> before(alias.clone());
    alias.initialize("value");
    const std::unique_ptr<Zu::InContextAliasBase> after(alias.clone());
    EXPECT_FALSE(before->isValid());
    EXPECT_STREQ(before->getDescription(), "what for");
    EXPECT_STREQ(after->getValue(), "value");
    EXPECT_NE(after->getValue(), alias.getValue());
}

TEST(InContextAliasBase, ANullDescriptionIsTheEmptyText)
{
    EXPECT_STREQ(SampleAlias(nullptr).getDescription(), "");
}

TEST(InContextAliasBaseDeathTest, WrongStatesAreFatal)
{
    SampleAlias alias("");
    EXPECT_DEATH(alias.finalize(), "Assertion failed: _isInitialized, file");
    alias.initialize("value");
    EXPECT_DEATH(alias.initialize("value"), "Assertion failed: !_isInitialized, file");
}

} // namespace

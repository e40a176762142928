#include "base/inVariable.h"

#include "base/inEx.h"
#include "base/inPackageInit.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace
{

using Zu::InDefAlias;
using Zu::InVariable;
using Zu::InVariableBase;

class NoPackage : public Zu::InPackageInitBase
{
public:
    void addDependency(InVariableBase*) override {}
    void removeDependency(InVariableBase*) override {}
};

// A variable whose one alias has this text.
template <class T> T valueOf(const char* text)
{
    NoPackage package;
    InDefAlias alias("key", "description");
    alias.initialize(text);
    InVariable<T> variable("test::inVariable", package, alias);
    variable.initialize();
    return variable.getValue();
}

TEST(InVariable, IntReadsTheDecimalNumberAtTheBeginning)
{
    const struct
    {
        const char* _text;
        int _value;
    } cases[] = {
        {"0", 0},
        {"42", 42},
        {"-7", -7},
        {"+7", 7},
        {"  12", 12},
        {"007", 7},
        {"0x10", 0},
        {"12abc", 12},
        {"abc", 0},
        {"", 0},
        {"-", 0},
        {"1.9", 1},
        {"2147483647", 2147483647},
        {"-2147483648", std::numeric_limits<int>::min()},
        {"2147483648", 2147483647},
        {"-2147483649", std::numeric_limits<int>::min()},
        {"99999999999999999999999", 2147483647},
        {"-99999999999999999999999", std::numeric_limits<int>::min()},
    };
    for (const auto& row : cases) EXPECT_EQ(valueOf<int>(row._text), row._value) << row._text;
}

TEST(InVariable, BoolIsFalseForZeroAndForFalseInAnyCaseOnly)
{
    for (const char* const text : {"0", "false", "FALSE", "False", "fAlSe"})
        EXPECT_FALSE(valueOf<bool>(text)) << text;
    for (const char* const text :
         {"1", "true", "TRUE", "no", "", "00", "0 ", " 0", "-0", "falsee", "fals", "off", "f"})
        EXPECT_TRUE(valueOf<bool>(text)) << text;
}

TEST(InVariable, TextIsTheAliasesOwn)
{
    NoPackage package;
    InDefAlias alias("key", "description");
    alias.initialize("some text");
    InVariable<const char*> variable("test::inVariable", package, alias);
    variable.initialize();
    EXPECT_STREQ(variable.getValue(), "some text");
    EXPECT_EQ(variable.getValue(), variable.contextAlias()->getValue());
}

template <class T> std::string reasonWithoutValue()
{
    NoPackage package;
    const InVariable<T> variable("test::inVariable", package, InVariableBase::_dummy);
    try
    {
        variable.getValue();
    }
    catch (const Zu::InEx::ExUninitializedObject& exception)
    {
        return exception.getReason();
    }
    return "nothing raised";
}

TEST(InVariable, EveryTypeRaisesWithoutAValue)
{
    const std::string reason =
        "Trying to access an object that is not fully initialized: 'test::inVariable'.";
    EXPECT_EQ(reasonWithoutValue<int>(), reason);
    EXPECT_EQ(reasonWithoutValue<bool>(), reason);
    EXPECT_EQ(reasonWithoutValue<const char*>(), reason);
}

} // namespace

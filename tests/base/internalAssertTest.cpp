#include "base/internalAssert.h"

#include "support/assertionText.h"

#include <gtest/gtest.h>
#include <string>

#define LIMIT 3

namespace
{

using support::AssertionText;

void requireBelowLimit(int value)
{
    ZU_INTERNAL_ASSERT(value < LIMIT);
}
constexpr int LINE_OF_REQUIREMENT = __LINE__ - 2;

void requireStated(bool condition)
{
    ZU_INTERNAL_ASSERT_TEXT(condition, "_what != stated");
}
constexpr int LINE_OF_STATEMENT = __LINE__ - 2;

class InternalAssert : public testing::Test
{
protected:
    InternalAssert()
    {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
    }
};

TEST_F(InternalAssert, AFailureNamesExpressionFileAndLineAndEndsTheProcess)
{
    EXPECT_DEATH(Zu::internalAssertionFailed("a == b", "dir/source.cpp", 1234),
                 AssertionText("a == b", "dir/source.cpp", 1234));
}

TEST_F(InternalAssert, AnExpressionIsNotTakenAsAFormat)
{
    EXPECT_DEATH(Zu::internalAssertionFailed("a % b == %s%n", "100%d.cpp", 7),
                 AssertionText("a % b == %s%n", "100%d.cpp", 7));
}

TEST_F(InternalAssert, ALongExpressionIsNamedInFull)
{
    const std::string expression(3000, 'e');
    EXPECT_DEATH(Zu::internalAssertionFailed(expression.c_str(), "long.cpp", 1),
                 AssertionText(expression, "long.cpp", 1));
}

TEST_F(InternalAssert, TheConditionIsShownAsWrittenWithTheMacrosInIt)
{
    EXPECT_DEATH(requireBelowLimit(3),
                 AssertionText("value < LIMIT", __FILE__, LINE_OF_REQUIREMENT));
}

TEST_F(InternalAssert, AStatedTextStandsInTheConditionsPlace)
{
    EXPECT_DEATH(requireStated(false),
                 AssertionText("_what != stated", __FILE__, LINE_OF_STATEMENT));
}

TEST_F(InternalAssert, AConditionThatHoldsGoesOn)
{
    requireBelowLimit(2);
    requireStated(true);
    SUCCEED();
}

TEST_F(InternalAssert, TheConditionIsEvaluatedOnce)
{
    int calls = 0;
    ZU_INTERNAL_ASSERT(++calls > 0);
    ZU_INTERNAL_ASSERT_TEXT(++calls > 0, "stated");
    EXPECT_EQ(calls, 2);
}

} // namespace

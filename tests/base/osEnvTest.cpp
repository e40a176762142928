#include "base/osEnv.h"

#include "base/exInternalError.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace
{

using Zu::OsEnv;

// What putVariable() raises; empty if it doesn't.
std::string refusalOf(const char* assignment)
{
    try
    {
        OsEnv::putVariable(assignment);
    }
    catch (const Zu::ExInternalError& ex)
    {
        return ex.getReason();
    }
    return "";
}

TEST(OsEnv, AnUnsetVariableIsNull)
{
    EXPECT_EQ(OsEnv::getVariable("ZU_TEST_NEVER_SET"), nullptr);
}

TEST(OsEnv, AVariableIsSetAndReplaced)
{
    OsEnv::putVariable("ZU_TEST_SET=first");
    EXPECT_STREQ(OsEnv::getVariable("ZU_TEST_SET"), "first");
    EXPECT_STREQ(std::getenv("ZU_TEST_SET"), "first");
    OsEnv::putVariable("ZU_TEST_SET=second");
    EXPECT_STREQ(OsEnv::getVariable("ZU_TEST_SET"), "second");
}

TEST(OsEnv, TheFirstEqualsSignEndsTheName)
{
    OsEnv::putVariable("ZU_TEST_EQUALS=a=b =c");
    EXPECT_STREQ(OsEnv::getVariable("ZU_TEST_EQUALS"), "a=b =c");
}

TEST(OsEnv, NothingBehindTheEqualsSignRemovesTheVariable)
{
    OsEnv::putVariable("ZU_TEST_REMOVED=x");
    OsEnv::putVariable("ZU_TEST_REMOVED=");
    EXPECT_EQ(OsEnv::getVariable("ZU_TEST_REMOVED"), nullptr);
    EXPECT_EQ(refusalOf("ZU_TEST_REMOVED="), "");
}

TEST(OsEnv, TheTextIsCopied)
{
    std::string text = "ZU_TEST_COPIED=before";
    OsEnv::putVariable(text.c_str());
    text.replace(15, 6, "behind");
    EXPECT_STREQ(OsEnv::getVariable("ZU_TEST_COPIED"), "before");
}

TEST(OsEnv, ATextWithoutNameOrEqualsSignIsRefused)
{
    for (const char* const text : {"ZU_TEST_NO_SIGN", "=value", "=", ""})
        EXPECT_EQ(refusalOf(text), "Could not set environment variable") << text;
    EXPECT_EQ(OsEnv::getVariable("ZU_TEST_NO_SIGN"), nullptr);
}

TEST(OsEnv, NullIsNoAssignmentAndNoName)
{
    EXPECT_EQ(refusalOf(nullptr), "Could not set environment variable");
    EXPECT_EQ(OsEnv::getVariable(nullptr), nullptr);
}

} // namespace

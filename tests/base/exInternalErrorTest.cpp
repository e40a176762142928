#include "base/exInternalError.h"

#include "support/exceptionChecks.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace
{

using Zu::ExInternalError;

support::ExceptionRow row()
{
    return support::exceptionRow<ExInternalError, std::runtime_error, Zu::ExBase>(
        "ExInternalError", "It failed.", std::string("It failed."));
}

TEST(ExInternalError, SaysWhereAndWhyItWasRaised)
{
    support::expectTexts(row());
}

TEST(ExInternalError, HandlersForTheStandardClassAndTheRootReadTheReason)
{
    support::expectHandlers(row());
}

TEST(ExInternalError, ACloneIsOfTheSameClassAndSaysTheSame)
{
    support::expectClone(row());
}

TEST(ExInternalError, TheStandardClassStandsFirst)
{
    EXPECT_TRUE(row()._observedFirstBase() == support::FirstBase::STANDARD);
}

TEST(ExInternalError, ANullReasonLeavesTheReasonEmpty)
{
    const ExInternalError error("a.cpp", 1, nullptr);
    EXPECT_STREQ(error.getReason(), "");
    EXPECT_STREQ(error.what(), "");
}

TEST(ExInternalError, AReasonKeepsItsFirst1023CharactersAndIsNoFormat)
{
    const std::string reason = "%s%n" + std::string(2000, 'r');
    EXPECT_EQ(ExInternalError("a.cpp", 1, reason.c_str()).what(), reason.substr(0, 1023));
}

} // namespace

#include "base/exBadException.h"

#include "support/exceptionChecks.h"

#include <exception>
#include <gtest/gtest.h>

namespace
{

support::ExceptionRow row()
{
    return support::rootFirst(
        support::exceptionRow<Zu::ExBadException, std::bad_exception, Zu::ExBase>(
            "ExBadException", "Invalid exception thrown."));
}

TEST(ExBadException, SaysThatAnInvalidExceptionWasThrown)
{
    support::expectTexts(row());
}

TEST(ExBadException, WhatGivesTheReasonAndNotTheTextOfTheStandardPart)
{
    const Zu::ExBadException exception("a.cpp", 1);
    const std::exception& standard = exception;
    EXPECT_STREQ(standard.what(), "Invalid exception thrown.");
    EXPECT_STRNE(standard.what(), row()._standardText().c_str());
}

TEST(ExBadException, HandlersForTheStandardClassAndTheRootReadTheReason)
{
    support::expectHandlers(row());
}

TEST(ExBadException, ACloneIsOfTheSameClassAndSaysTheSame)
{
    support::expectClone(row());
}

TEST(ExBadException, TheRootStandsFirst)
{
    EXPECT_TRUE(row()._observedFirstBase() == support::FirstBase::ROOT);
}

} // namespace

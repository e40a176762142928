#include "base/assertions.h"

#include "base/exInternalError.h"
#include "support/exceptionChecks.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace
{

using Zu::Assertions;

// The reason of the ExInternalError that `raise` throws from "dir/check.cpp", line 99.
template <class Raise> std::string reasonOf(Raise raise)
{
    return support::readBy<Zu::ExInternalError>(raise,
                                                [](const Zu::ExInternalError& error)
                                                {
                                                    EXPECT_STREQ(error.getFileName(),
                                                                 "dir/check.cpp");
                                                    EXPECT_EQ(error.getLineNo(), 99);
                                                    EXPECT_STREQ(error.what(), error.getReason());
                                                    return std::string(error.getReason());
                                                });
}

TEST(Assertions, AFailedCheckNamesItsExpression)
{
    EXPECT_EQ(reasonOf([] { Assertions::throwAssertionFailed("dir/check.cpp", 99, "a < b"); }),
              "Assertion 'a < b' failed.");
}

TEST(Assertions, AnExpressionIsNotTakenAsAFormat)
{
    EXPECT_EQ(
        reasonOf([] { Assertions::throwAssertionFailed("dir/check.cpp", 99, "a % b == %s%n"); }),
        "Assertion 'a % b == %s%n' failed.");
}

TEST(Assertions, ALongExpressionFillsTheReasonToItsEnd)
{
    const std::string expression(2000, 'e');
    EXPECT_EQ(
        reasonOf([&]
                 { Assertions::throwAssertionFailed("dir/check.cpp", 99, expression.c_str()); }),
        ("Assertion '" + expression).substr(0, 1023));
    EXPECT_EQ(
        reasonOf(
            [&]
            { Assertions::throwSysAssertionFailed("dir/check.cpp", 99, expression.c_str(), 2); }),
        ("Assertion '" + expression).substr(0, 1023));
}

TEST(Assertions, AFailedSystemCallNamesTheCodeAndItsText)
{
    EXPECT_EQ(
        reasonOf([]
                 { Assertions::throwSysAssertionFailed("dir/check.cpp", 99, "fd >= 0", ENOENT); }),
        "Assertion 'fd >= 0' failed, errno = 2 (No such file or directory).");
}

TEST(Assertions, TheCodeIsTheOneGivenAndNotErrno)
{
    errno = ENOENT;
    EXPECT_EQ(
        reasonOf([] { Assertions::throwSysAssertionFailed("dir/check.cpp", 99, "ok", EACCES); }),
        "Assertion 'ok' failed, errno = 13 (Permission denied).");
}

TEST(Assertions, AnAbortedProgramHasOneText)
{
    EXPECT_EQ(reasonOf([] { Assertions::throwProgramAborted("dir/check.cpp", 99); }),
              "Program aborted.");
}

TEST(Assertions, AHandlerForTheStandardClassReadsTheReason)
{
    EXPECT_EQ(support::readBy<std::runtime_error>(
                  [] { Assertions::throwAssertionFailed("a.cpp", 1, "x"); },
                  [](const std::runtime_error& error) { return error.what(); }),
              "Assertion 'x' failed.");
}

} // namespace

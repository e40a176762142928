#include "base/exRaise.h"
#include "base/exSysError.h"

#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace
{

// On both platforms 2 is the code of a file that is missing.
constexpr int MISSING = 2;
constexpr int OTHER = 5;

template <class Exception, class Action> Exception raisedBy(Action&& action)
{
    try
    {
        action();
    }
    catch (const Exception& exception)
    {
        return exception;
    }
    ADD_FAILURE() << "Nothing was raised";
    return Exception(__FILE__, __LINE__);
}

TEST(ExRaise, ASystemErrorHasTheCodeAndThePlaceOfTheStatement)
{
    Zu::setLastSystemCode(OTHER);
    const int line = __LINE__ + 1;
    const auto raised = raisedBy<Zu::ExSysErrorWindows>([] { ZU_RAISE_SYSTEM_ERROR(MISSING); });
    EXPECT_EQ(raised.getErrorCode(), MISSING);
    EXPECT_STREQ(raised.getFileName(), __FILE__);
    EXPECT_EQ(raised.getLineNo(), line);
}

TEST(ExRaise, TheLastErrorIsThatOfTheThreadsLastCall)
{
    Zu::setLastSystemCode(OTHER);
    const auto raised = raisedBy<Zu::ExSysErrorWindows>([] { ZU_RAISE_LAST_ERROR(); });
    EXPECT_EQ(raised.getErrorCode(), OTHER);
}

TEST(ExRaise, AnErrorOfTheRuntimeHasItsOwnType)
{
    errno = OTHER;
    const int line = __LINE__ + 1;
    const auto raised = raisedBy<Zu::ExSysErrorANSI>([] { ZU_RAISE_ERRNO(EACCES); });
    EXPECT_EQ(raised.getError(), EACCES);
    EXPECT_STREQ(raised.getReason(), std::strerror(EACCES));
    EXPECT_EQ(raised.getLineNo(), line);
}

TEST(ExRaise, WhatWasRaisedIsTheLastErrorAfterwards)
{
    raisedBy<Zu::ExSysErrorWindows>([] { ZU_RAISE_SYSTEM_ERROR(MISSING); });
    EXPECT_EQ(Zu::lastSystemCode(), MISSING);
    raisedBy<Zu::ExSysErrorANSI>([] { ZU_RAISE_ERRNO(EACCES); });
    EXPECT_EQ(errno, EACCES);
}

} // namespace

#include "base/inDebug.h"

#include "base/osEnv.h"

#include <gtest/gtest.h>

namespace
{

TEST(InDebug, IsOnWhileTheVariableIsSetToAnyValue)
{
    Zu::OsEnv::putVariable("ZU_DEBUG_INITIALIZE=");
    EXPECT_FALSE(Zu::inDebugInitialize());
    Zu::OsEnv::putVariable("ZU_DEBUG_INITIALIZE=0");
    EXPECT_TRUE(Zu::inDebugInitialize());
    Zu::OsEnv::putVariable("ZU_DEBUG_INITIALIZE=");
    EXPECT_FALSE(Zu::inDebugInitialize());
}

} // namespace

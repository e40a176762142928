#include "app/apLogGroup.h"

#include "support/runningLogger.h"
#include "support/streamCapture.h"

#include <gtest/gtest.h>
#include <iostream>
#include <string>

namespace
{

ZU_PACKAGE(apLogGroupPackage, "apLogGroupPackage");
ZU_LOG_GROUP(ApGroup, "ApMajor", apLogGroupPackage);

std::string logged()
{
    const support::StreamCapture capture(std::cout);
    ZU_LOG_WARNING(ApGroup, "warning");
    ZU_LOG_TRACING(ApGroup, "tracing");
    return capture.text();
}

TEST(ApLogGroup, MayBeLoggedToAtAnyTime)
{
    EXPECT_EQ(logged(), "ApGroup warning\n") << "before its package starts";
    {
        support::RunningLogger logger;
        Zu::LgMajorGroup::parse("ApMajor=Tracing");
        Zu::packageOf<apLogGroupPackage>().initialize();
        EXPECT_TRUE(Zu::LgMajorGroup::isUsed("ApMajor"));
        EXPECT_EQ(logged(), "ApGroup warning\nApGroup tracing\n") << "while it is up";
        Zu::packageOf<apLogGroupPackage>().finalize();
        EXPECT_EQ(logged(), "ApGroup warning\nApGroup tracing\n") << "when it has stopped";
    }
    EXPECT_EQ(logged(), "ApGroup warning\nApGroup tracing\n") << "when the logger has ended";
}

TEST(ApLogGroup, LeavesItsPackageWhenItEnds)
{
    static Zu::LgMinorGroup* handle = nullptr;
    {
        const Zu::ApLogGroup group(Zu::packageOf<apLogGroupPackage>(), "ApOther", "Other", handle);
        ASSERT_TRUE(handle);
        EXPECT_STREQ(handle->getName(), "Other");
    }
    ASSERT_TRUE(handle) << "statements may follow";
    const support::RunningLogger logger;
    Zu::packageOf<apLogGroupPackage>().initialize();
    EXPECT_FALSE(Zu::LgMajorGroup::isUsed("ApOther"));
    Zu::packageOf<apLogGroupPackage>().finalize();
}

} // namespace

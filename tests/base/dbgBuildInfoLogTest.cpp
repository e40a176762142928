#include "base/dbgBuildInfoLog.h"

#include "base/lgMajorGroup.h"

#include "support/assertionText.h"
#include "support/logTest.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

namespace DbgBuildInfoLog = Zu::DbgBuildInfoLog;
namespace LgTypes = Zu::LgTypes;

// The group lives as long as an object, and with it the groups of the process.
class StartedLog
{
public:
    explicit StartedLog(const char* groups)
    {
        Zu::LgMajorGroup::initialize(groups);
        DbgBuildInfoLog::start();
    }
    StartedLog(const StartedLog&) = delete;
    StartedLog& operator=(const StartedLog&) = delete;
    ~StartedLog()
    {
        DbgBuildInfoLog::stop();
        Zu::LgMajorGroup::finalize();
    }
};

std::string printedFor(LgTypes::Level level, const std::string& text)
{
    return support::printedBy([&] { DbgBuildInfoLog::log(level, text); });
}

TEST(DbgBuildInfoLog, ATextIsALineBehindTheNameOfTheGroup)
{
    const StartedLog log("Base=Warning");
    EXPECT_EQ(printedFor(LgTypes::FatalError, "two words"), "BuildInfo two words\n");
    EXPECT_EQ(printedFor(LgTypes::Warning, ""), "BuildInfo \n");
    EXPECT_EQ(printedFor(LgTypes::Error, "100%s%n"), "BuildInfo 100%s%n\n");
}

TEST(DbgBuildInfoLog, TheMajorGroupIsBase)
{
    {
        const StartedLog log("Base=Fatal Error,Other=Tracing");
        EXPECT_EQ(printedFor(LgTypes::FatalError, "x"), "BuildInfo x\n");
        EXPECT_EQ(printedFor(LgTypes::Error, "x"), "");
    }
    {
        const StartedLog log("Base=Informational");
        EXPECT_EQ(printedFor(LgTypes::Informational, "x"), "BuildInfo x\n");
        EXPECT_EQ(printedFor(LgTypes::Tracing, "x"), "");
    }
}

TEST(DbgBuildInfoLog, ItIsStartedAgainAfterItsEnd)
{
    for (int round = 0; round < 2; ++round)
    {
        const StartedLog log("Base=Warning");
        EXPECT_EQ(printedFor(LgTypes::FatalError, "x"), "BuildInfo x\n");
    }
}

TEST(DbgBuildInfoLogDeathTest, AGroupThatIsNotStartedIsFatal)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(DbgBuildInfoLog::log(LgTypes::FatalError, "x"), support::AssertionText("minor"));
    EXPECT_DEATH(
        {
            {
                const StartedLog log("Base=Warning");
            }
            DbgBuildInfoLog::log(LgTypes::FatalError, "x");
        },
        support::AssertionText("minor"));
}

} // namespace

#include "app/lgServiceEnds.h"

#include "app/lgService.h"
#include "base/lgEvent.h"
#include "base/lgLog.h"
#include "support/runningLogger.h"
#include "support/streamCapture.h"

#include <exception>
#include <gtest/gtest.h>
#include <string>
#include <vector>

ZU_DEFINE_LOG_GROUP(Ends);

namespace
{

namespace LgServiceEnds = Zu::LgServiceEnds;

class LgServiceEndsTest : public testing::Test
{
protected:
    LgServiceEndsTest()
    {
        ZU_START_LOG_GROUP("Kit", Ends);
    }

    ~LgServiceEndsTest() override
    {
        ZU_STOP_LOG_GROUP(Ends);
    }

    support::RunningLogger _logger;
};

TEST_F(LgServiceEndsTest, WhoIncludesItHasFilesThatAreNeverEmptied)
{
    EXPECT_TRUE(LgServiceEnds::isInstalled);
    {
        const Zu::LgService service;
        ZU_LOG_WARNING(Ends, "first");
    }
    ZU_STOP_LOG_GROUP(Ends);
    Zu::LgLog::destroy();
    Zu::LgLog::init();
    ZU_START_LOG_GROUP("Kit", Ends);
    {
        const Zu::LgService service;
        ZU_LOG_WARNING(Ends, "second");
    }
    EXPECT_EQ(_logger.textsOf("events.log"),
              (std::vector<std::string>{"Ends first", "Ends second"}));
}

TEST_F(LgServiceEndsTest, DrainingWaitsUntilAllIsWritten)
{
    const Zu::LgService service;
    for (int round = 0; round < 20; ++round)
    {
        ZU_LOG_WARNING(Ends, round);
        LgServiceEnds::drain();
        ASSERT_EQ(_logger.textsOf("events.log").size(), static_cast<std::size_t>(round + 1));
    }
}

TEST_F(LgServiceEndsTest, DrainingWithoutAServiceReturns)
{
    LgServiceEnds::drain();
    {
        const Zu::LgService service;
    }
    LgServiceEnds::drain();
}

void former() {}

TEST_F(LgServiceEndsTest, TheHandlerBeforeIsKeptAndTheServiceInstallsItsOwnOnce)
{
    std::set_terminate(&former);
    {
        const Zu::LgService service;
        EXPECT_EQ(std::get_terminate(), &LgServiceEnds::terminated);
        EXPECT_EQ(LgServiceEnds::previousHandler, &former);
    }
    {
        const Zu::LgService service;
        EXPECT_EQ(std::get_terminate(), &LgServiceEnds::terminated);
        EXPECT_EQ(LgServiceEnds::previousHandler, &former);
    }
}

} // namespace

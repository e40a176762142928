#include "app/lgServiceReader.h"

#include "base/lgLog.h"
#include "support/runningLogger.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace
{

using Zu::LgQueue;
using Zu::LgServiceReader;
using Zu::LgServiceThreads;
namespace LgTypes = Zu::LgTypes;

class LgServiceReaderTest : public testing::Test
{
protected:
    LgServiceReaderTest()
    {
        _threads.start();
    }

    ~LgServiceReaderTest() override
    {
        _threads.stop();
    }

    static void add(const std::string& text)
    {
        LgQueue& queue = *LgServiceThreads::queueOfThread();
        ASSERT_TRUE(queue.reserveEntry(LgTypes::Warning));
        queue.getStream() << text << Zu::ends;
        queue.addEntry();
    }

    support::RunningLogger _logger;
    LgServiceThreads& _threads = LgServiceThreads::instance();
};

TEST_F(LgServiceReaderTest, WritesWhatWaitedBeforeItAndWhatWaitsAtItsEnd)
{
    add("before");
    {
        const LgServiceReader reader(_threads);
        add("during");
    }
    EXPECT_EQ(_logger.textsOf("events.log"), (std::vector<std::string>{"before", "during"}));
}

TEST_F(LgServiceReaderTest, WakesUpForAnEvent)
{
    const LgServiceReader reader(_threads);
    for (int i = 0; i < 20; ++i)
    {
        add(std::to_string(i));
        const LgQueue& queue = *LgServiceThreads::queueOfThread();
        while (!queue.isEmpty()) std::this_thread::yield();
    }
    EXPECT_EQ(_logger.textsOf("events.log").size(), 20U);
}

TEST_F(LgServiceReaderTest, EndsThoughNothingWasEverLogged)
{
    const LgServiceReader reader(_threads);
}

} // namespace

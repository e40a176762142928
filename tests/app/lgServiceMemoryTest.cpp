#include "app/lgService.h"
#include "app/lgServiceThreads.h"
#include "base/lgLog.h"

#include "stress/failingMemory.h"
#include "support/runningLogger.h"
#include "support/tempDir.h"
#include "support/variableGuard.h"

#include <gtest/gtest.h>
#include <new>
#include <thread>

namespace
{

using Zu::LgServiceThreads;

// More allocations than anything here makes.
constexpr int MOST_ALLOCATIONS = 1000;

// Whether the action succeeds when its allocation of this number fails, in a thread of its own.
template <class Action> bool succeedsWithout(int allocation, const Action& action)
{
    bool isDone = false;
    std::thread(
        [&]
        {
            stress::countdown = allocation;
            try
            {
                action();
                isDone = true;
            }
            catch (const std::bad_alloc&)
            {
                // As expected.
            }
            stress::countdown = 0;
        })
        .join();
    return isDone;
}

class LgServiceMemoryTest : public testing::Test
{
protected:
    // A service looks at all maps that others have left, and allocates for each.
    LgServiceMemoryTest() : _mapDirectory("ZU_LOG_SERVICE_MAPPING_DIRECTORY")
    {
        _mapDirectory.set(_maps.path());
    }

    const support::TempDir _maps;
    support::VariableGuard _mapDirectory;
    support::RunningLogger _logger;
    LgServiceThreads& _threads = LgServiceThreads::instance();
};

TEST_F(LgServiceMemoryTest, AQueueThatCouldNotBeMadeIsNotLeftToTheNextService)
{
    _threads.start();
    int allocation = 1;
    while (!succeedsWithout(allocation, [] { LgServiceThreads::queueOfThread(); }))
    {
        _threads.stop();
        // A service begins with the queues of all threads.
        _threads.start();
        ASSERT_TRUE(Zu::LgLog::getRegistry()->getQueueList().empty()) << allocation;
        ASSERT_LT(++allocation, MOST_ALLOCATIONS);
    }
    _threads.stop();
    EXPECT_GT(allocation, 1);
}

TEST_F(LgServiceMemoryTest, AServiceThatCouldNotBeMadeDoesNotRun)
{
    int allocation = 1;
    while (!succeedsWithout(allocation, [] { const Zu::LgService service; }))
    {
        ASSERT_FALSE(_threads.isRunning()) << allocation;
        ASSERT_LT(++allocation, MOST_ALLOCATIONS);
    }
    EXPECT_GT(allocation, 1);
    // And one can be made afterwards.
    const Zu::LgService service;
    EXPECT_TRUE(_threads.isRunning());
}

} // namespace

#include "app/lgServiceRegistry.h"

#include "base/lgQueue.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace
{

using Zu::LgQueue;
using Zu::LgServiceRegistry;

TEST(LgServiceRegistry, KeepsQueuesInTheOrderOfTheirEntry)
{
    LgQueue a;
    LgQueue b;
    LgServiceRegistry registry;
    EXPECT_TRUE(registry.getQueueList().empty());
    registry.registerQueue(&b);
    registry.registerQueue(&a);
    EXPECT_EQ(registry.getQueueList(), (Zu::List<LgQueue*>{&b, &a}));
    registry.deregisterQueue(&b);
    EXPECT_EQ(registry.getQueueList(), (Zu::List<LgQueue*>{&a}));
    registry.deregisterQueue(&b);
    EXPECT_EQ(registry.getQueueList(), (Zu::List<LgQueue*>{&a}));
}

TEST(LgServiceRegistry, TakesOutEveryEntryOfAQueue)
{
    LgQueue queue;
    LgServiceRegistry registry;
    registry.registerQueue(&queue);
    registry.registerQueue(&queue);
    registry.deregisterQueue(&queue);
    EXPECT_TRUE(registry.getQueueList().empty());
}

TEST(LgServiceRegistry, SeveralThreadsMayUseItAtATime)
{
    LgServiceRegistry registry;
    const auto comeAndGo = [&registry]
    {
        LgQueue queue;
        for (int i = 0; i < 2000; ++i)
        {
            registry.registerQueue(&queue);
            EXPECT_LE(registry.getQueueList().size(), 4U);
            registry.deregisterQueue(&queue);
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(comeAndGo);
    for (std::thread& thread : threads) thread.join();
    EXPECT_TRUE(registry.getQueueList().empty());
}

} // namespace

#include "app/lgServiceRegistry.h"

#include "base/lgQueue.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace
{

using Zu::LgQueue;
using Zu::LgServiceRegistry;
using Queues = Zu::List<LgQueue*>;

// The queues of the registry's list that are among these; it also contains those of other tests'
// threads.
Queues among(const LgServiceRegistry& registry, const std::vector<LgQueue*>& own)
{
    Queues found = registry.getQueueList();
    found.remove_if([&own](LgQueue* queue)
                    { return std::find(own.begin(), own.end(), queue) == own.end(); });
    return found;
}

TEST(LgServiceRegistry, KeepsQueuesInTheOrderOfTheirEntry)
{
    LgQueue a;
    LgQueue b;
    LgServiceRegistry registry;
    EXPECT_EQ(among(registry, {&a, &b}), Queues());
    registry.registerQueue(&b);
    registry.registerQueue(&a);
    EXPECT_EQ(among(registry, {&a, &b}), (Queues{&b, &a}));
    registry.deregisterQueue(&b);
    EXPECT_EQ(among(registry, {&a, &b}), Queues{&a});
    registry.deregisterQueue(&b);
    EXPECT_EQ(among(registry, {&a, &b}), Queues{&a});
    registry.deregisterQueue(&a);
    EXPECT_EQ(among(registry, {&a, &b}), Queues());
}

TEST(LgServiceRegistry, TakesOutEveryEntryOfAQueue)
{
    LgQueue queue;
    LgServiceRegistry registry;
    registry.registerQueue(&queue);
    registry.registerQueue(&queue);
    EXPECT_EQ(among(registry, {&queue}), (Queues{&queue, &queue}));
    registry.deregisterQueue(&queue);
    EXPECT_EQ(among(registry, {&queue}), Queues());
}

// Whoever has seen no list has seen generation 0.
TEST(LgServiceRegistry, EachChangeBeginsAGeneration)
{
    LgQueue queue;
    LgServiceRegistry registry;
    std::vector<std::uint64_t> generations{0, LgServiceRegistry::getGeneration()};
    registry.registerQueue(&queue);
    generations.push_back(LgServiceRegistry::getGeneration());
    EXPECT_EQ(among(registry, {&queue}), Queues{&queue});
    EXPECT_EQ(LgServiceRegistry::getGeneration(), generations.back());
    LgServiceRegistry().deregisterQueue(&queue);
    generations.push_back(LgServiceRegistry::getGeneration());
    for (std::size_t i = 1; i < generations.size(); ++i)
        EXPECT_GT(generations[i], generations[i - 1]) << i;
}

TEST(LgServiceRegistry, ItsListCanBeGoneThroughWithoutACopy)
{
    LgQueue a;
    LgQueue b;
    LgServiceRegistry registry;
    registry.registerQueue(&b);
    registry.registerQueue(&a);
    Queues found;
    LgServiceRegistry::forEachQueue([&found](LgQueue* queue) { found.push_back(queue); });
    EXPECT_EQ(found, registry.getQueueList());
    EXPECT_EQ(among(registry, {&a, &b}), (Queues{&b, &a}));
    registry.deregisterQueue(&a);
    registry.deregisterQueue(&b);
}

TEST(LgServiceRegistry, AllObjectsHaveOneList)
{
    LgQueue queue;
    LgServiceRegistry().registerQueue(&queue);
    LgServiceRegistry other;
    EXPECT_EQ(among(other, {&queue}), Queues{&queue});
    other.deregisterQueue(&queue);
    EXPECT_EQ(among(LgServiceRegistry(), {&queue}), Queues());
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
            EXPECT_EQ(among(registry, {&queue}), Queues{&queue});
            registry.deregisterQueue(&queue);
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(comeAndGo);
    for (std::thread& thread : threads) thread.join();
}

} // namespace

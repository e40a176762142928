#include "app/lgBell.h"

#include "app/lgServicePlatform.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace
{

using Zu::LgBell;

constexpr std::chrono::milliseconds NEVER{600000};

// With the platform's barrier, where there is one, and without.
class LgBellTest : public testing::TestWithParam<bool>
{
protected:
    static bool barrierWorks()
    {
        return GetParam() && Zu::LgServicePlatform::prepareBarrier();
    }
};

TEST_P(LgBellTest, DoesNotSleepWhenItHasHappened)
{
    LgBell bell(barrierWorks());
    EXPECT_TRUE(bell.listen([] { return true; }, NEVER));
}

TEST_P(LgBellTest, EndsAtTheLimitWhenNobodyRings)
{
    LgBell bell(barrierWorks());
    EXPECT_FALSE(bell.listen([] { return false; }, std::chrono::milliseconds(1)));
}

TEST_P(LgBellTest, ARingBeforeAnybodyListensWakesNobody)
{
    LgBell bell(barrierWorks());
    bell.ring();
    EXPECT_FALSE(bell.listen([] { return false; }, std::chrono::milliseconds(1)));
}

TEST_P(LgBellTest, ARingBetweenTheLookAndTheSleepIsHeard)
{
    LgBell bell(barrierWorks());
    const auto ringAfterTheLook = [&bell]
    {
        std::thread([&bell] { bell.ring(); }).join();
        return false;
    };
    EXPECT_TRUE(bell.listen(ringAfterTheLook, NEVER));
}

TEST_P(LgBellTest, WakesAllWhoListen)
{
    LgBell bell(barrierWorks());
    std::atomic<bool> happened{false};
    std::atomic<int> listening{0};
    std::atomic<int> woken{0};
    const auto wait = [&]
    {
        while (!happened)
        {
            ++listening;
            bell.listen([&] { return happened.load(); }, NEVER);
        }
        ++woken;
    };
    std::thread first(wait);
    std::thread second(wait);
    while (listening < 2) std::this_thread::yield();
    happened = true;
    bell.ring();
    first.join();
    second.join();
    EXPECT_EQ(woken, 2);
}

// Two threads in turn, each asleep nearly always when the other one rings. A wake-up that got lost
// would sleep to the limit.
TEST_P(LgBellTest, LosesNoWakeUp)
{
    constexpr int TURNS = 20000;
    LgBell toEven(barrierWorks());
    LgBell toOdd(barrierWorks());
    std::atomic<int> turn{0};
    std::atomic<int> timeouts{0};
    const auto play = [&](int parity, LgBell& own, LgBell& other)
    {
        while (true)
        {
            while (turn.load(std::memory_order_acquire) % 2 != parity)
            {
                const auto isMine = [&]
                { return turn.load(std::memory_order_acquire) % 2 == parity; };
                if (!own.listen(isMine, NEVER)) ++timeouts;
            }
            const int now = turn.load(std::memory_order_relaxed);
            turn.store(now + 1, std::memory_order_release);
            other.ring();
            if (now >= TURNS) return;
        }
    };
    std::thread even([&] { play(0, toEven, toOdd); });
    std::thread odd([&] { play(1, toOdd, toEven); });
    even.join();
    odd.join();
    EXPECT_EQ(timeouts, 0);
    EXPECT_EQ(turn, TURNS + 2);
}

INSTANTIATE_TEST_SUITE_P(Both, LgBellTest, testing::Values(true, false));

} // namespace

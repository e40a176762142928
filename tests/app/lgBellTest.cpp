#include "app/lgBell.h"

#include "app/lgServicePlatform.h"
#include "base/compiler.h"
#include "support/platform.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace
{

using Zu::LgBell;

constexpr std::chrono::milliseconds NEVER{600000};

int refusals = 0;

// A barrier that works until it is called.
bool refuse()
{
    ++refusals;
    return false;
}

enum class Kind
{
    // The platform's barrier, where there is one.
    BARRIER,
    NO_BARRIER,
    REFUSED_BARRIER
};

class LgBellTest : public testing::TestWithParam<Kind>
{
protected:
    static LgBell::Barrier barrier()
    {
        if (GetParam() == Kind::REFUSED_BARRIER) return &refuse;
        const bool isThere = GetParam() == Kind::BARRIER && Zu::LgServicePlatform::prepareBarrier();
        return isThere ? &Zu::LgServicePlatform::barrier : nullptr;
    }
};

TEST_P(LgBellTest, DoesNotSleepWhenItHasHappened)
{
    LgBell bell(barrier());
    EXPECT_TRUE(bell.listen([] { return true; }, NEVER));
}

TEST_P(LgBellTest, EndsAtTheLimitWhenNobodyRings)
{
    LgBell bell(barrier());
    EXPECT_FALSE(bell.listen([] { return false; }, std::chrono::milliseconds(1)));
}

TEST_P(LgBellTest, ARingBeforeAnybodyListensWakesNobody)
{
    LgBell bell(barrier());
    bell.ring();
    EXPECT_FALSE(bell.listen([] { return false; }, std::chrono::milliseconds(1)));
}

TEST_P(LgBellTest, IsListenedToFromTheAnnouncementToTheRing)
{
    LgBell bell(barrier());
    bell.ring();
    EXPECT_FALSE(bell.isListenedTo());
    const auto ringOnce = [&bell]
    {
        EXPECT_TRUE(bell.isListenedTo());
        bell.ring();
        EXPECT_FALSE(bell.isListenedTo());
        bell.ring();
        EXPECT_FALSE(bell.isListenedTo());
        return true;
    };
    EXPECT_TRUE(bell.listen(ringOnce, NEVER));
}

TEST_P(LgBellTest, WhoRingsSeesTheMarkWhetherOrNotAnybodyListens)
{
    LgBell bell(barrier());
    EXPECT_FALSE(bell.ring());
    const auto ringMarked = [&bell](bool isMarked)
    {
        bell.setMark(isMarked);
        EXPECT_EQ(bell.ring(), isMarked);
        EXPECT_FALSE(bell.isListenedTo());
        const auto ring = [&]
        {
            EXPECT_TRUE(bell.isListenedTo());
            EXPECT_EQ(bell.ring(), isMarked);
            EXPECT_FALSE(bell.isListenedTo());
            return false;
        };
        EXPECT_TRUE(bell.listen(ring, NEVER));
    };
    for (const bool isMarked : {true, false, true, true, false, false}) ringMarked(isMarked);
}

TEST_P(LgBellTest, ARingBetweenTheLookAndTheSleepIsHeard)
{
    LgBell bell(barrier());
    const auto ringAfterTheLook = [&bell]
    {
        std::thread([&bell] { bell.ring(); }).join();
        return false;
    };
    EXPECT_TRUE(bell.listen(ringAfterTheLook, NEVER));
}

TEST_P(LgBellTest, WakesAllWhoListen)
{
    LgBell bell(barrier());
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

// Two threads take turns; each is nearly always asleep when the other one rings. After a lost
// wake-up a thread would sleep to the limit.
TEST_P(LgBellTest, LosesNoWakeUp)
{
    constexpr int TURNS = 20000;
    LgBell toEven(barrier());
    LgBell toOdd(barrier());
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

// In the child of a fork: threads wait and are woken, in turn with the ringing one.
bool wakesThreads(LgBell& bell)
{
    for (int i = 0; i < 3; ++i)
    {
        bool isWoken = false;
        std::promise<void> isListening;
        std::thread listener(
            [&]
            {
                const auto look = [&isListening]
                {
                    isListening.set_value();
                    return false;
                };
                isWoken = bell.listen(look, NEVER);
            });
        isListening.get_future().wait();
        bell.ring();
        listener.join();
        if (!isWoken) return false;
    }
    return true;
}

// The child has copies of locks and waits of threads that it does not have.
TEST_P(LgBellTest, BeginsAnewInAChildWhoeverListenedInTheParent)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no fork";
    if (support::underSanitizer)
        GTEST_SKIP() << "what the sanitizers lock does not survive a fork beside other threads";
    LgBell bell(barrier());
    std::atomic<bool> isOver{false};
    std::atomic<int> looks{0};
    std::vector<std::thread> listeners;
    for (int i = 0; i < 3; ++i)
        listeners.emplace_back(
            [&]
            {
                const auto look = [&]
                {
                    ++looks;
                    return isOver.load();
                };
                while (!isOver) bell.listen(look, NEVER);
            });
    // Occasionally one of them is woken, so some are about to sleep and others about to wake up.
    for (int round = 1; round <= 20; ++round)
    {
        while (looks < 3 * round) std::this_thread::yield();
        const support::Side side = support::forkProcess();
        if (side == support::Side::CHILD)
        {
            bell.beginAnewInChild();
            std::_Exit(wakesThreads(bell) ? 0 : 1);
        }
        EXPECT_EQ(support::awaitForkedChild(), 0);
        bell.ring();
    }
    isOver = true;
    bell.ring();
    for (std::thread& listener : listeners) listener.join();
}

// For a barrier that takes some time.
std::promise<void> isInBarrier;
std::promise<void> mayLeaveBarrier;

TEST(LgBell, BeginsAnewInAChildWhoeverHadLockedItInTheParent)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no fork";
    if (support::underSanitizer)
        GTEST_SKIP() << "what the sanitizers lock does not survive a fork beside other threads";
    static int calls = 0;
    LgBell bell(
        []
        {
            if (++calls > 1) return true;
            isInBarrier.set_value();
            mayLeaveBarrier.get_future().wait();
            return true;
        });
    std::thread listener([&bell] { bell.listen([] { return true; }, NEVER); });
    isInBarrier.get_future().wait();
    if (support::forkProcess() == support::Side::CHILD)
    {
        bell.beginAnewInChild();
        std::_Exit(wakesThreads(bell) ? 0 : 1);
    }
    EXPECT_EQ(support::awaitForkedChild(), 0);
    mayLeaveBarrier.set_value();
    listener.join();
}

TEST(LgBell, ChargesTheListenerWhereThereIsABarrier)
{
    EXPECT_TRUE(LgBell(&Zu::LgServicePlatform::barrier).usesBarrier());
    EXPECT_FALSE(LgBell(nullptr).usesBarrier());
}

TEST(LgBell, AsksABarrierThatRefusesNeverAgain)
{
    LgBell bell(&refuse);
    refusals = 0;
    for (int i = 0; i < 3; ++i) bell.listen([] { return true; }, NEVER);
    EXPECT_EQ(refusals, 1);
    EXPECT_FALSE(bell.usesBarrier());
}

TEST(LgBell, KeepsABarrierThatWorks)
{
    static int calls = 0;
    LgBell bell(
        []
        {
            ++calls;
            return true;
        });
    for (int i = 0; i < 3; ++i) bell.listen([] { return true; }, NEVER);
    EXPECT_EQ(calls, 3);
    EXPECT_TRUE(bell.usesBarrier());
}

// A system that has the barrier and does not use it would only be slower.
TEST(LgBell, ThePlatformsBarrierIsFoundWhereTheSystemHasIt)
{
    const bool isUsed = support::hasProcessBarrier() && ZU_THREAD_SANITIZER == 0;
    ASSERT_EQ(Zu::LgServicePlatform::prepareBarrier(), isUsed);
    if (!isUsed) GTEST_SKIP() << "the system has none, or a sanitizer that does not know it";
    EXPECT_TRUE(Zu::LgServicePlatform::barrier());
}

INSTANTIATE_TEST_SUITE_P(All, LgBellTest,
                         testing::Values(Kind::BARRIER, Kind::NO_BARRIER, Kind::REFUSED_BARRIER));

} // namespace

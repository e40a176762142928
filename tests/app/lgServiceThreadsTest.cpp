#include "app/lgServiceThreads.h"

#include "app/lgServiceRegistry.h"
#include "base/compiler.h"
#include "base/exInternalError.h"
#include "base/hwCounter.h"
#include "base/lgLog.h"
#include "base/lgReader.h"
#include "support/platform.h"
#include "support/privateMember.h"
#include "support/runningLogger.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <gtest/gtest.h>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace support
{

struct WrittenBell
{
    using Member = Zu::LgBell Zu::LgServiceThreads::*;
    friend Member memberOf(WrittenBell);
};
template struct PrivateMember<WrittenBell, &Zu::LgServiceThreads::_written>;

} // namespace support

namespace
{

using Zu::LgQueue;
using Zu::LgServiceThreads;
namespace LgTypes = Zu::LgTypes;

bool add(LgQueue& queue, const std::string& text)
{
    if (!queue.reserveEntry(LgTypes::Warning)) return false;
    queue.getStream() << text << Zu::ends;
    queue.addEntry();
    return true;
}

class LgServiceThreadsTest : public testing::Test
{
protected:
    ~LgServiceThreadsTest() override
    {
        _threads.stop();
        Zu::LgReader().flushAll();
    }

    static std::size_t registered(const LgQueue* queue)
    {
        std::size_t count = 0;
        for (const LgQueue* const entry : Zu::LgLog::getRegistry()->getQueueList())
            if (entry == queue) ++count;
        return count;
    }

    // Rung for those who wait until events are written.
    Zu::LgBell& written()
    {
        return _threads.*memberOf(support::WrittenBell());
    }

    // Like the thread of a service.
    void writeAll()
    {
        const std::lock_guard guard(_threads.reading());
        Zu::LgReader().flushAll();
        _threads.endWaitsUntilWritten();
    }

    bool writesWhatIsWaitedFor();

    support::RunningLogger _logger;
    LgServiceThreads& _threads = LgServiceThreads::instance();
};

TEST_F(LgServiceThreadsTest, EveryThreadHasOneQueueOfItsOwn)
{
    LgQueue* const mine = LgServiceThreads::queueOfThread();
    EXPECT_EQ(LgServiceThreads::queueOfThread(), mine);
    EXPECT_EQ(mine->getThreadId(), support::threadId());
    std::thread(
        [mine]
        {
            LgQueue* const other = LgServiceThreads::queueOfThread();
            EXPECT_NE(other, mine);
            EXPECT_EQ(LgServiceThreads::queueOfThread(), other);
            EXPECT_EQ(other->getThreadId(), support::threadId());
        })
        .join();
}

TEST_F(LgServiceThreadsTest, QueuesFromBeforeAndDuringAServiceAreRegisteredOnce)
{
    LgQueue* const before = LgServiceThreads::queueOfThread();
    EXPECT_EQ(registered(before), 0U);
    _threads.start();
    EXPECT_TRUE(_threads.isRunning());
    EXPECT_EQ(registered(before), 1U);
    std::thread([] { EXPECT_EQ(registered(LgServiceThreads::queueOfThread()), 1U); }).join();
    _threads.stop();
    EXPECT_FALSE(_threads.isRunning());
    EXPECT_EQ(registered(before), 1U);
    _threads.start();
    EXPECT_EQ(registered(before), 1U);
}

TEST_F(LgServiceThreadsTest, AQueueIsTheReadersWhenItsThreadHasEnded)
{
    _threads.start();
    LgQueue* queue = nullptr;
    std::thread(
        [&queue]
        {
            queue = LgServiceThreads::queueOfThread();
            EXPECT_TRUE(queue->isCreatorAlive());
            add(*queue, "last words");
        })
        .join();
    EXPECT_EQ(registered(queue), 1U);
    EXPECT_FALSE(queue->isCreatorAlive());
    Zu::LgReader().flushAll();
    EXPECT_EQ(registered(queue), 0U);
    EXPECT_EQ(_logger.textsOf("events.log"), std::vector<std::string>{"last words"});
}

TEST_F(LgServiceThreadsTest, WhatIsWrittenUpToATimeDependsOnNoLaterEvent)
{
    _threads.start();
    LgQueue& queue = *LgServiceThreads::queueOfThread();
    const std::chrono::milliseconds none(0);
    const std::uint64_t before = Zu::HwCounter::timeStamp();
    EXPECT_TRUE(_threads.waitUntilWritten(before, none));
    add(queue, "an event");
    EXPECT_TRUE(_threads.waitUntilWritten(before - 1, none));
    const std::uint64_t behind = Zu::HwCounter::timeStamp() + 1;
    EXPECT_FALSE(_threads.waitUntilWritten(behind, none));
    EXPECT_FALSE(_threads.waitUntilWritten(behind, std::chrono::milliseconds(5)));
    Zu::LgReader().flushAll();
    EXPECT_TRUE(_threads.waitUntilWritten(behind, none));
    EXPECT_TRUE(_threads.waitUntilWritten(behind, std::chrono::milliseconds::max()));
}

TEST_F(LgServiceThreadsTest, CountsTheLossesOfLivingAndOfEndedThreads)
{
    _threads.start();
    const std::uint64_t before = _threads.getLostCount();
    const auto loseThree = []
    {
        LgQueue& queue = *LgServiceThreads::queueOfThread();
        while (add(queue, "kept")) continue;
        EXPECT_FALSE(add(queue, "lost"));
        EXPECT_FALSE(add(queue, "lost"));
    };
    loseThree();
    EXPECT_EQ(_threads.getLostCount() - before, 3U);
    std::thread(loseThree).join();
    EXPECT_EQ(_threads.getLostCount() - before, 6U);
    Zu::LgReader().flushAll();
    EXPECT_EQ(_threads.getLostCount() - before, 6U);
}

TEST_F(LgServiceThreadsTest, AProducerMakesRoomItselfWhenNoServiceRuns)
{
    _threads.start();
    LgQueue& queue = *LgServiceThreads::queueOfThread();
    while (add(queue, "kept")) continue;
    _threads.stop();
    EXPECT_TRUE(queue.isFull());
    queue.waitForSpace(100);
    EXPECT_FALSE(queue.isFull());
    EXPECT_TRUE(add(queue, "further"));
}

TEST_F(LgServiceThreadsTest, RoomThatJustDoesIsNotWaitedFor)
{
    _threads.start();
    LgQueue& queue = *LgServiceThreads::queueOfThread();
    ASSERT_TRUE(add(queue, "kept"));
    _threads.stop();
    const auto room = static_cast<int>(queue.getStream().getNumCharacters());
    queue.waitForSpace(room);
    EXPECT_FALSE(queue.isEmpty());
    // A producer that lacks room while no service runs writes events itself.
    queue.waitForSpace(room + 1);
    EXPECT_TRUE(queue.isEmpty());
}

// Fails for a while, like a lock whose holder is gone.
class HesitantRegistry : public Zu::LgServiceRegistry
{
public:
    Zu::List<LgQueue*> getQueueList() const override
    {
        if (_refusals == 0) return LgServiceRegistry::getQueueList();
        --_refusals;
        throw Zu::ExInternalError(__FILE__, __LINE__, "no list");
    }

    static inline int _refusals = 0;
};

TEST_F(LgServiceThreadsTest, AProducerThatMakesRoomTriesAgainWhatFails)
{
    Zu::LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(new HesitantRegistry));
    _threads.start();
    LgQueue& queue = *LgServiceThreads::queueOfThread();
    while (add(queue, "kept")) continue;
    _threads.stop();
    HesitantRegistry::_refusals = LgServiceThreads::LAST_TRIES - 1;
    EXPECT_NO_THROW(queue.waitForSpace(100));
    EXPECT_EQ(HesitantRegistry::_refusals, 0);
    EXPECT_FALSE(queue.isFull());
    HesitantRegistry::_refusals = LgServiceThreads::LAST_TRIES;
    while (add(queue, "kept")) continue;
    EXPECT_THROW(queue.waitForSpace(100), Zu::ExInternalError);
    EXPECT_EQ(HesitantRegistry::_refusals, 0);
}

// Fails until a moment, however often it is asked.
class LateRegistry : public Zu::LgServiceRegistry
{
public:
    using Clock = std::chrono::steady_clock;

    Zu::List<LgQueue*> getQueueList() const override
    {
        if (Clock::now() >= _end) return LgServiceRegistry::getQueueList();
        throw Zu::ExInternalError(__FILE__, __LINE__, "no list yet");
    }

    static inline Clock::time_point _end;
};

// The tries are worth something because time passes between them.
TEST_F(LgServiceThreadsTest, AProducerThatMakesRoomOutlastsWhatFailsForAWhile)
{
    constexpr std::chrono::milliseconds WHILE(200);
    static_assert((LgServiceThreads::LAST_TRIES - 1) * LgServiceThreads::PAUSE > 2 * WHILE);
    Zu::LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(new LateRegistry));
    _threads.start();
    LgQueue& queue = *LgServiceThreads::queueOfThread();
    while (add(queue, "kept")) continue;
    _threads.stop();
    LateRegistry::_end = LateRegistry::Clock::now() + WHILE;
    EXPECT_NO_THROW(queue.waitForSpace(100));
    LateRegistry::_end = {};
    EXPECT_FALSE(queue.isFull());
}

// Fails in one thread.
class RefusingRegistry : public Zu::LgServiceRegistry
{
public:
    Zu::List<LgQueue*> getQueueList() const override
    {
        if (_refused != std::this_thread::get_id()) return LgServiceRegistry::getQueueList();
        ++_refusals;
        throw Zu::ExInternalError(__FILE__, __LINE__, "no list for this thread");
    }

    static inline std::atomic<std::thread::id> _refused;
    static inline std::atomic<int> _refusals{0};
};

TEST_F(LgServiceThreadsTest, AProducerLeavesMakingRoomToAServiceThatHasBegunMeanwhile)
{
    Zu::LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(new RefusingRegistry));
    _threads.start();
    _threads.stop();
    std::atomic<bool> isDone{false};
    std::thread producer(
        [&isDone]
        {
            LgQueue& queue = *LgServiceThreads::queueOfThread();
            while (add(queue, "kept")) continue;
            RefusingRegistry::_refused = std::this_thread::get_id();
            queue.waitForSpace(100);
            isDone = true;
        });
    // It found no service, and is about to write events itself.
    while (RefusingRegistry::_refusals == 0) std::this_thread::yield();
    _threads.start();
    RefusingRegistry::_refused = std::thread::id();
    while (!_threads.room().isListenedTo() && !isDone) std::this_thread::yield();
    EXPECT_TRUE(_logger.linesOf("events.log").empty());
    writeAll();
    producer.join();
}

TEST_F(LgServiceThreadsTest, AProducerThatWaitsForRoomGoesOnWhenAnEventIsTaken)
{
    _threads.start();
    LgQueue& queue = *LgServiceThreads::queueOfThread();
    while (add(queue, "kept")) continue;
    std::thread reader([] { Zu::LgReader().flushAll(); });
    queue.waitForSpace(30000);
    EXPECT_GE(queue.getStream().getNumCharacters(), 30000U);
    reader.join();
}

TEST_F(LgServiceThreadsTest, AWaitIsOverWhenThereIsRoomOrNobodyMakesIt)
{
    _threads.start();
    LgQueue& queue = *LgServiceThreads::queueOfThread();
    ASSERT_TRUE(add(queue, "kept"));
    const auto room = static_cast<int>(queue.getStream().getNumCharacters());
    EXPECT_TRUE(_threads.isWaitOver(queue, room));
    EXPECT_FALSE(_threads.isWaitOver(queue, room + 1));
    while (add(queue, "kept")) continue;
    EXPECT_FALSE(_threads.isWaitOver(queue, 1));
    _threads.stop();
    EXPECT_TRUE(_threads.isWaitOver(queue, 1));
    Zu::LgReader().flushAll();
    EXPECT_TRUE(_threads.isWaitOver(queue, room));
}

// A producer that waits for room for a warning, or has been refused it.
class WaitingProducer
{
public:
    // Fills the queue of a thread of its own, and adds one more event as soon as it may.
    explicit WaitingProducer(LgServiceThreads& threads) : _threads(threads)
    {
        LgQueue::setRoomFunction(&LgServiceThreads::waitForRoom);
        _threads.setWaiting({});
        _thread = std::thread([this] { run(); });
        while (!_isFull) std::this_thread::yield();
    }

    ~WaitingProducer()
    {
        LgQueue::setRoomFunction(nullptr);
        _threads.setWaiting({});
    }

    // Whether the event was accepted.
    bool isAccepted()
    {
        _thread.join();
        return _isAccepted;
    }

private:
    void run()
    {
        LgQueue& queue = *LgServiceThreads::queueOfThread();
        while (add(queue, "kept")) continue;
        _threads.setWaiting({1U << LgTypes::Warning, -1, std::chrono::hours(24)});
        _isFull = true;
        _isAccepted = add(queue, "waited");
    }

    LgServiceThreads& _threads;
    std::thread _thread;
    std::atomic<bool> _isFull{false};
    bool _isAccepted = false;
};

TEST_F(LgServiceThreadsTest, AnEventOfALevelThatWaitsIsAcceptedWhenThereIsRoom)
{
    _threads.start();
    WaitingProducer producer(_threads);
    Zu::LgReader().flushAll();
    EXPECT_TRUE(producer.isAccepted());
    Zu::LgReader().flushAll();
    EXPECT_EQ(_logger.textsOf("events.log").back(), "waited");
}

TEST_F(LgServiceThreadsTest, AWaitForRoomEndsWhenFilesFailOrTheServiceEnds)
{
    _threads.start();
    {
        WaitingProducer producer(_threads);
        _threads.setFailing(true);
        EXPECT_FALSE(producer.isAccepted());
    }
    {
        WaitingProducer producer(_threads);
        _threads.stop();
        EXPECT_FALSE(producer.isAccepted());
    }
    Zu::LgReader().flushAll();
}

TEST_F(LgServiceThreadsTest, OnlyTheLevelsThatWaitDo)
{
    _threads.start();
    LgQueue::setRoomFunction(&LgServiceThreads::waitForRoom);
    _threads.setWaiting({1U << LgTypes::Error, -1, std::chrono::hours(24)});
    LgQueue& queue = *LgServiceThreads::queueOfThread();
    while (add(queue, "kept")) continue;
    EXPECT_FALSE(LgServiceThreads::waitForRoom(queue, LgTypes::Warning));
    // The queue of another thread, or of the application.
    EXPECT_FALSE(std::async(std::launch::async, [&queue]
                            { return LgServiceThreads::waitForRoom(queue, LgTypes::Error); })
                     .get());
    // The thread that writes.
    _threads.setWriter(std::this_thread::get_id());
    EXPECT_FALSE(LgServiceThreads::waitForRoom(queue, LgTypes::Error));
    _threads.setWriter({});
    Zu::LgReader().flushAll();
    EXPECT_TRUE(LgServiceThreads::waitForRoom(queue, LgTypes::Error));
    LgQueue::setRoomFunction(nullptr);
    _threads.setWaiting({});
}

// If each of these waited, that would take more than an hour.
TEST_F(LgServiceThreadsTest, AfterAWaitInVainNobodyWaitsUntilSomethingIsWritten)
{
    _threads.start();
    LgQueue::setRoomFunction(&LgServiceThreads::waitForRoom);
    LgQueue& queue = *LgServiceThreads::queueOfThread();
    while (add(queue, "kept")) continue;
    _threads.setWaiting({1U << LgTypes::Warning, -1, std::chrono::milliseconds(50)});
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 100'000; ++i) EXPECT_FALSE(add(queue, "lost"));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(50));
    _threads.endVainWaits();
    const auto middle = std::chrono::steady_clock::now();
    EXPECT_FALSE(add(queue, "lost"));
    EXPECT_GE(std::chrono::steady_clock::now() - middle, std::chrono::milliseconds(50));
    LgQueue::setRoomFunction(nullptr);
    _threads.setWaiting({});
}

// Many producers wait for room at the same time, and only the rings wake them.
TEST_F(LgServiceThreadsTest, ProducersThatWaitForRoomAreWokenByItOrByTheEnd)
{
    constexpr int PRODUCERS = 3;
    constexpr int EVENTS = 4000;
    _threads.setPatience(std::chrono::hours(24));
    _threads.start();
    std::atomic<int> published{0};
    std::vector<std::thread> producers;
    for (int i = 0; i < PRODUCERS; ++i)
        producers.emplace_back(
            [&published]
            {
                LgQueue& queue = *LgServiceThreads::queueOfThread();
                for (int event = 0; event < EVENTS; ++event, ++published)
                {
                    queue.waitForSpace(10);
                    EXPECT_TRUE(add(queue, "waited"));
                }
            });
    // When nobody reads any more, the producers write the rest themselves.
    while (published < PRODUCERS * EVENTS / 2)
    {
        const std::lock_guard guard(_threads.reading());
        Zu::LgReader().flushEarliest();
    }
    _threads.stop();
    for (std::thread& producer : producers) producer.join();
    _threads.setPatience(LgServiceThreads::PATIENCE);
    Zu::LgReader().flushAll();
    EXPECT_EQ(_logger.textsOf("events.log").size(), std::size_t{PRODUCERS * EVENTS});
}

TEST_F(LgServiceThreadsTest, WhoWaitsForAnEventThatIsKnownToWaitGoesOnWaiting)
{
    constexpr std::uint64_t TIME = 1000;
    _threads.start();
    Zu::LgReader().flushAll();
    // Who has waited before may still be listed as a listener.
    written().ring();
    const std::lock_guard reading(_threads.reading());
    std::atomic<bool> isOver{false};
    std::thread waiting(
        [&]
        {
            EXPECT_TRUE(_threads.waitUntilWritten(TIME, std::chrono::hours(1)));
            isOver = true;
        });
    while (!written().isListenedTo()) std::this_thread::yield();
    for (const std::uint64_t time : {TIME - 1, TIME})
    {
        _threads.endWaitsUntilWritten(time);
        EXPECT_TRUE(written().isListenedTo());
        EXPECT_FALSE(isOver);
    }
    _threads.endWaitsUntilWritten(TIME + 1);
    waiting.join();
    EXPECT_TRUE(isOver);
}

TEST_F(LgServiceThreadsTest, AReaderHasWorkWithEventsAndWithQueuesOfEndedThreads)
{
    _threads.start();
    Zu::LgReader().flushAll();
    EXPECT_FALSE(_threads.isWorkWaiting());
    add(*LgServiceThreads::queueOfThread(), "event");
    EXPECT_TRUE(_threads.isWorkWaiting());
    Zu::LgReader().flushAll();
    EXPECT_FALSE(_threads.isWorkWaiting());
    std::thread([] { LgServiceThreads::queueOfThread(); }).join();
    EXPECT_TRUE(_threads.isWorkWaiting());
    Zu::LgReader().flushAll();
    EXPECT_FALSE(_threads.isWorkWaiting());
}

TEST_F(LgServiceThreadsTest, NoServiceRunsInAChild)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no fork";
    const auto stateOfChild = [this]
    {
        if (support::forkProcess() == support::Side::CHILD)
            std::_Exit((_threads.isRunning() ? 2 : 0) + (_threads.isForked() ? 1 : 0));
        return support::awaitForkedChild();
    };
    EXPECT_EQ(stateOfChild(), 0);
    _threads.start();
    EXPECT_EQ(stateOfChild(), 1);
    EXPECT_TRUE(_threads.isRunning());
    EXPECT_FALSE(_threads.isForked());
}

// In the child of a fork: a thread waits in turn with the one that writes.
bool LgServiceThreadsTest::writesWhatIsWaitedFor()
{
    _threads.start();
    // The mark of a thread of the parent may be left.
    written().ring();
    for (int i = 0; i < 3; ++i)
    {
        add(*LgServiceThreads::queueOfThread(), "of a child");
        const std::uint64_t behind = Zu::HwCounter::timeStamp() + 1;
        bool isWritten = false;
        std::thread waiting(
            [&] { isWritten = _threads.waitUntilWritten(behind, std::chrono::hours(24)); });
        while (!written().isListenedTo()) std::this_thread::yield();
        writeAll();
        waiting.join();
        if (!isWritten) return false;
    }
    // Its process ends without the ends of the kit's objects.
    _threads.stop();
    _threads.leaveNothing();
    return true;
}

TEST_F(LgServiceThreadsTest, AChildWaitsUntilItsOwnEventsAreWrittenWhoeverWaitedInTheParent)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no fork";
    if (support::underSanitizer)
        GTEST_SKIP() << "what the sanitizers lock does not survive a fork beside other threads";
    _threads.setPatience(std::chrono::hours(24));
    _threads.start();
    add(*LgServiceThreads::queueOfThread(), "of the parent");
    const std::uint64_t behind = Zu::HwCounter::timeStamp() + 1;
    std::thread waiting(
        [this, behind] { EXPECT_TRUE(_threads.waitUntilWritten(behind, std::chrono::hours(24))); });
    while (!written().isListenedTo()) std::this_thread::yield();
    for (int i = 0; i < 3 && !HasFailure(); ++i)
    {
        if (support::forkProcess() == support::Side::CHILD)
            std::_Exit(writesWhatIsWaitedFor() ? 0 : 1);
        EXPECT_EQ(support::awaitForkedChild(), 0);
    }
    writeAll();
    waiting.join();
    _threads.setPatience(LgServiceThreads::PATIENCE);
    std::vector<std::string> texts(9, "of a child");
    texts.emplace_back("of the parent");
    EXPECT_EQ(_logger.textsOf("events.log"), texts);
}

// The thread has its queue in hand at that moment.
TEST_F(LgServiceThreadsTest, AStatementInWhichAForkHappensIsCompletedByBothProcesses)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no fork";
    _threads.start();
    LgQueue& queue = *LgServiceThreads::queueOfThread();
    const auto complete = [&queue](const char* text)
    {
        queue.getStream() << text << Zu::ends;
        queue.endInsertion();
        Zu::LgReader().flushAll();
    };
    ASSERT_TRUE(queue.reserveEntry(LgTypes::Warning));
    queue.beginInsertion();
    queue.getStream() << "completed by ";
    if (support::forkProcess() == support::Side::CHILD)
    {
        // Its reader must not take the queue for that of a thread that has ended.
        const bool isKept = LgServiceThreads::queueOfThread() == &queue && queue.isCreatorAlive() &&
                            registered(&queue) == 1;
        complete("the child");
        add(queue, "and another one of the child");
        Zu::LgReader().flushAll();
        std::_Exit(isKept ? 0 : 1);
    }
    EXPECT_EQ(support::awaitForkedChild(), 0);
    complete("the parent");
    EXPECT_EQ(_logger.textsOf("events.log"),
              (std::vector<std::string>{"completed by the child", "and another one of the child",
                                        "completed by the parent"}));
}

// Outside a statement the thread's queue is left to the next reader like those of others.
TEST_F(LgServiceThreadsTest, AChildsNextStatementGetsANewQueue)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no fork";
    _threads.start();
    const LgQueue* const queue = LgServiceThreads::queueOfThread();
    if (support::forkProcess() == support::Side::CHILD)
    {
        const bool isLeft = !queue->isCreatorAlive() && registered(queue) == 1;
        std::_Exit(isLeft && LgServiceThreads::queueOfThread() != queue ? 0 : 1);
    }
    EXPECT_EQ(support::awaitForkedChild(), 0);
    EXPECT_EQ(LgServiceThreads::queueOfThread(), queue);
}

// Without the barrier everything works as well, but more slowly.
TEST_F(LgServiceThreadsTest, RingingCostsNoMoreThanTheSystemAsksFor)
{
    const bool isUsed = support::hasProcessBarrier() && ZU_THREAD_SANITIZER == 0;
    EXPECT_EQ(_threads.news().usesBarrier(), isUsed);
    EXPECT_EQ(_threads.room().usesBarrier(), isUsed);
}

TEST_F(LgServiceThreadsTest, ALoggerThatIsStartedAnewForgetsNoQueueOfAThreadThatHasEnded)
{
    _threads.start();
    _threads.stop();
    std::thread([] { add(*LgServiceThreads::queueOfThread(), "between services"); }).join();
    Zu::LgLog::destroy();
    Zu::LgLog::init();
    _threads.start();
    Zu::LgReader().flushAll();
    EXPECT_EQ(_logger.textsOf("events.log"), std::vector<std::string>{"between services"});
}

} // namespace

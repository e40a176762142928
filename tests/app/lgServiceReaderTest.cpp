#include "app/lgServiceReader.h"

#include "app/lgServiceRegistry.h"
#include "base/lgLog.h"
#include "base/lgReader.h"
#include "support/runningLogger.h"
#include "support/streamCapture.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <iostream>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace
{

using Zu::LgQueue;
using Zu::LgServiceReader;
using Zu::LgServiceRegistry;
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

// Calls functions around the copies of the list that a reader thread makes, until there were
// enough.
class HookedRegistry : public Zu::LgServiceRegistry
{
public:
    Zu::List<LgQueue*> getQueueList() const override
    {
        const bool isReaders = !_isBusy && std::this_thread::get_id() != _thread;
        if (!isReaders || ++_copies > ENOUGH) return LgServiceRegistry::getQueueList();
        _isBusy = true;
        _before();
        const Zu::List<LgQueue*> queues = LgServiceRegistry::getQueueList();
        _behind();
        _isBusy = false;
        return queues;
    }

    // Sets the functions to call, and the thread for which nothing is done.
    static void prepare(std::function<void()> before, std::function<void()> behind)
    {
        _thread = std::this_thread::get_id();
        _copies = 0;
        _before = std::move(before);
        _behind = std::move(behind);
        Zu::LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(new HookedRegistry));
    }

    static void awaitCopies()
    {
        while (_copies <= ENOUGH) std::this_thread::yield();
    }

private:
    // More copies than a reader makes before it first checks whether it may sleep.
    static constexpr int ENOUGH = 40;

    static inline std::atomic<int> _copies{0};
    static inline std::atomic<bool> _isBusy{false};
    static inline std::thread::id _thread;
    static inline std::function<void()> _before;
    static inline std::function<void()> _behind;
};

// A thread with a queue, until it is asked to end.
class Guest
{
public:
    Guest()
    {
        std::promise<void> isThere;
        _thread = std::thread(
            [this, &isThere]
            {
                LgServiceThreads::queueOfThread();
                isThere.set_value();
                _end.get_future().wait();
            });
        isThere.get_future().wait();
    }

    void end()
    {
        _end.set_value();
        _thread.join();
    }

private:
    std::promise<void> _end;
    std::thread _thread;
};

// A producer that waited for room when the last service ended reads itself, and may delete the
// queue of an ended thread at any moment: here whenever the reader has a copy of the list.
TEST_F(LgServiceReaderTest, NobodyDeletesQueuesOfAListThatItGoesThrough)
{
    std::optional<Guest> guest;
    int reads = 0;
    const auto readIfFree = [&]
    {
        const std::unique_lock lock(_threads.reading(), std::try_to_lock);
        if (!lock) return;
        ++reads;
        Zu::LgReader().flushEarliest();
    };
    HookedRegistry::prepare([&] { guest.emplace(); },
                            [&]
                            {
                                guest->end();
                                std::thread(readIfFree).join();
                            });
    {
        const LgServiceReader reader(_threads);
        HookedRegistry::awaitCopies();
    }
    EXPECT_EQ(reads, 0);
}

// A thread that ends may ring between the reader's last walk and its sleep, when nobody listens.
// Here no service runs, so it does not ring at all. A reader that slept would never wake up.
TEST_F(LgServiceReaderTest, SleepsNotBesideTheQueueOfAThreadThatHasEnded)
{
    _threads.setPatience(std::chrono::hours(24));
    _threads.stop();
    HookedRegistry::prepare([] { Guest().end(); }, [] {});
    {
        const LgServiceReader reader(_threads);
        HookedRegistry::awaitCopies();
    }
    _threads.setPatience(LgServiceThreads::PATIENCE);
}

TEST_F(LgServiceReaderTest, EventsAndEndsOfThreadsWakeItUp)
{
    constexpr int ROUNDS = 20;
    _threads.setPatience(std::chrono::hours(24));
    // This removes the queues of threads that have ended.
    Zu::LgReader().flushAll();
    LgQueue& own = *LgServiceThreads::queueOfThread();
    const std::size_t others = LgServiceRegistry().getQueueList().size();
    {
        const LgServiceReader reader(_threads);
        const auto awaitSleep = [this]
        {
            while (!_threads.news().isListenedTo()) std::this_thread::yield();
        };
        for (int i = 0; i < ROUNDS; ++i)
        {
            awaitSleep();
            add("event");
            while (!own.isEmpty()) std::this_thread::yield();
            Guest guest;
            awaitSleep();
            guest.end();
            while (LgServiceRegistry().getQueueList().size() > others) std::this_thread::yield();
        }
    }
    _threads.setPatience(LgServiceThreads::PATIENCE);
    EXPECT_EQ(_logger.textsOf("events.log").size(), std::size_t{ROUNDS});
}

TEST_F(LgServiceReaderTest, ItsOwnEndWakesItUp)
{
    _threads.setPatience(std::chrono::hours(24));
    for (int i = 0; i < 20; ++i)
    {
        const LgServiceReader reader(_threads);
        while (!_threads.news().isListenedTo()) std::this_thread::yield();
    }
    _threads.setPatience(LgServiceThreads::PATIENCE);
}

// A registry that fails, in place of a lock that can't be taken: the reader sees the same.
class FailingRegistry : public Zu::LgRegistry
{
public:
    void registerQueue(LgQueue* queue) override
    {
        _queues.push_back(queue);
    }

    void deregisterQueue(LgQueue* queue) override
    {
        _queues.remove(queue);
    }

    Zu::List<LgQueue*> getQueueList() const override
    {
        ++_asked;
        if (_failing) throw std::runtime_error("no list");
        return _queues;
    }

    static inline std::atomic<int> _asked{0};
    static inline std::atomic<bool> _failing{false};

private:
    Zu::List<LgQueue*> _queues;
};

class LgServiceReaderFailureTest : public LgServiceReaderTest
{
protected:
    LgServiceReaderFailureTest() : _errors(std::cerr)
    {
        Zu::LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(new FailingRegistry));
        FailingRegistry::_failing = true;
    }

    ~LgServiceReaderFailureTest() override
    {
        FailingRegistry::_failing = false;
    }

    static void waitForTries(int count)
    {
        const int before = FailingRegistry::_asked;
        while (FailingRegistry::_asked < before + count) std::this_thread::yield();
    }

    support::StreamCapture _errors;
};

TEST_F(LgServiceReaderFailureTest, EndsThoughEveryTryFails)
{
    {
        const LgServiceReader reader(_threads);
        // More failures than the tries at the end.
        waitForTries(LgServiceThreads::LAST_TRIES + 5);
    }
    EXPECT_EQ(_errors.text(), "The log service can't write an event and tries again: no list\n"
                              "The log service ends with events that it could not write.\n");
}

TEST_F(LgServiceReaderFailureTest, GoesOnWhenTryingHelps)
{
    {
        const LgServiceReader reader(_threads);
        waitForTries(3);
        FailingRegistry::_failing = false;
        waitForTries(3);
    }
    EXPECT_EQ(_errors.text(), "The log service can't write an event and tries again: no list\n");
}

} // namespace

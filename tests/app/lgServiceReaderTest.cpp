#include "app/lgServiceReader.h"

#include "base/lgLog.h"
#include "support/runningLogger.h"
#include "support/streamCapture.h"

#include <atomic>
#include <gtest/gtest.h>
#include <iostream>
#include <stdexcept>
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

// A registry that can't be asked, in place of a lock that can't be taken: the reader sees the same.
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
        // More failures than are tried at the end.
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

// Many threads, short-lived threads, and a reader that can't keep up.

#include "app/lgService.h"
#include "base/lgTrace.h"
#include "stress/roundLogger.h"
#include "stress/scenario.h"
#include "stress/streamBetween.h"
#include "support/platform.h"
#include "support/variableGuard.h"

#include <atomic>
#include <fstream>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace
{

using stress::Account;
using stress::FileAccount;
using stress::Producer;
using stress::RoundLogger;
using stress::Scenario;
using Zu::LgService;

// Sanitizers and Wine are slow; a round should not be all of a scenario's time there.
constexpr unsigned SLOWNESS = support::underSanitizer || support::onWindows ? 5 : 1;

// Runs this many producers, with ids from this one on, each in a thread of its own; all begin at
// once.
Account runProducers(unsigned count, unsigned firstId, const std::function<void(Producer&)>& work)
{
    std::promise<void> start;
    const std::shared_future<void> started = start.get_future().share();
    std::vector<std::future<Account>> producers;
    for (unsigned i = 0; i < count; ++i)
        producers.push_back(std::async(std::launch::async,
                                       [&work, started, id = firstId + i]
                                       {
                                           started.wait();
                                           Producer producer(id);
                                           work(producer);
                                           return producer.account();
                                       }));
    start.set_value();
    Account sum;
    for (std::future<Account>& producer : producers) sum += producer.get();
    return sum;
}

TEST(StressLoad, ManyProducersAtFullSpeed)
{
    constexpr unsigned PRODUCERS = 24;
    constexpr unsigned EVENTS = 100000 / SLOWNESS;
    Scenario scenario("24 threads at full speed");
    while (scenario.goesOn())
    {
        RoundLogger logger;
        Account account;
        {
            const LgService service;
            account = runProducers(PRODUCERS, 0, [](Producer& producer) { producer.log(EVENTS); });
            account._lost = service.getLostCount();
        }
        const FileAccount file = logger.read();
        scenario.add(account, file);
        EXPECT_EQ(account._attempted, PRODUCERS * EVENTS);
        EXPECT_EQ(file._written, account._accepted);
        EXPECT_EQ(file._torn, 0U);
        // Each gets a queue's content through, whatever the others do.
        for (unsigned id = 0; id < PRODUCERS; ++id) EXPECT_GE(file.writtenFrom(id, 1), 100U);
    }
}

// Long texts find slots in the queue, but not always room for all their parts.
TEST(StressLoad, ManyProducersOfLongTexts)
{
    constexpr unsigned PRODUCERS = 16;
    constexpr unsigned EVENTS = 100000 / SLOWNESS;
    Scenario scenario("16 threads at full speed, long texts");
    scenario.allowShortened();
    while (scenario.goesOn())
    {
        RoundLogger logger;
        Account account;
        {
            const LgService service;
            account = runProducers(PRODUCERS, stress::WORDY,
                                   [](Producer& producer) { producer.log(EVENTS); });
            account._lost = service.getLostCount();
        }
        const FileAccount file = logger.read();
        scenario.add(account, file);
        EXPECT_EQ(file._written, account._accepted);
        EXPECT_EQ(file._torn, 0U);
    }
}

TEST(StressLoad, ThreadsThatLiveForAFewEvents)
{
    constexpr unsigned PARENTS = 4;
    constexpr unsigned CHILDREN = 500 / SLOWNESS;
    constexpr unsigned EVENTS = 5;
    Scenario scenario("threads that live for 5 events");
    std::uint64_t threads = 0;
    while (scenario.goesOn())
    {
        RoundLogger logger;
        Account account;
        {
            const LgService service;
            std::vector<std::future<Account>> parents;
            for (unsigned parent = 0; parent < PARENTS; ++parent)
                parents.push_back(std::async(std::launch::async,
                                             [parent]
                                             {
                                                 Account sum;
                                                 for (unsigned child = 0; child < CHILDREN; ++child)
                                                     sum +=
                                                         runProducers(1, parent * CHILDREN + child,
                                                                      [](Producer& producer)
                                                                      { producer.log(EVENTS); });
                                                 return sum;
                                             }));
            for (std::future<Account>& parent : parents) account += parent.get();
            account._lost = service.getLostCount();
        }
        threads += PARENTS * CHILDREN;
        // All threads have ended, and the service has seen the end of each queue; this thread has
        // one from the rounds of other scenarios at most.
        EXPECT_LE(Zu::LgLog::getRegistry()->getQueueList().size(), 1U);
        const FileAccount file = logger.read();
        scenario.add(account, file);
        EXPECT_EQ(account._attempted, PARENTS * CHILDREN * EVENTS);
        EXPECT_EQ(account._lost, 0U);
        EXPECT_EQ(file._written, account._attempted);
        EXPECT_EQ(file._torn, 0U);
    }
    scenario.note(std::to_string(threads) + " threads");
}

TEST(StressLoad, AReaderThatIsSlow)
{
    constexpr unsigned PRODUCERS = 4;
    constexpr unsigned EVENTS = 20000 / SLOWNESS;
    constexpr int TURNS = 20;
    Scenario scenario("a slow disk");
    while (scenario.goesOn())
    {
        RoundLogger logger;
        Account account;
        {
            stress::Gate gate(Zu::LgTypes::Warning);
            gate.slowDown(TURNS);
            const LgService service;
            account = runProducers(PRODUCERS, 0, [](Producer& producer) { producer.log(EVENTS); });
            account._lost = service.getLostCount();
            gate.slowDown(0);
        }
        const FileAccount file = logger.read();
        scenario.add(account, file);
        EXPECT_EQ(file._written, account._accepted);
        EXPECT_EQ(file._torn, 0U);
    }
}

// While the reader is blocked, threads log, begin and end, and none of them waits: if one did,
// nothing would open the gate.
TEST(StressLoad, AReaderThatStandsStillAndGoesOn)
{
    constexpr unsigned PRODUCERS = 4;
    constexpr unsigned EVENTS = 5000;
    constexpr unsigned STOPS = 3;
    Scenario scenario("a disk that stands still and goes on");
    while (scenario.goesOn())
    {
        RoundLogger logger;
        Account account;
        {
            stress::Gate gate(Zu::LgTypes::Warning);
            const LgService service;
            Producer own(0);
            for (unsigned stop = 0; stop < STOPS; ++stop)
            {
                gate.close();
                while (!gate.isReaderThere()) own.log();
                const Account standing =
                    runProducers(PRODUCERS, 1 + stop * PRODUCERS,
                                 [](Producer& producer) { producer.log(EVENTS); });
                // No more than a queue holds.
                EXPECT_LE(standing._accepted, PRODUCERS * 4094);
                EXPECT_GT(standing._accepted, 0U);
                account += standing;
                own.log(EVENTS);
                gate.open();
                Producer::awaitReader();
                // There is room again at once.
                const std::uint64_t lost = service.getLostCount();
                own.log(1);
                EXPECT_EQ(service.getLostCount(), lost);
            }
            account += own.account();
            account._lost = service.getLostCount();
        }
        const FileAccount file = logger.read();
        scenario.add(account, file);
        EXPECT_GT(account._lost, 0U);
        EXPECT_GT(file._overflowLines, 0U);
        EXPECT_EQ(file._written, account._accepted);
        EXPECT_EQ(file._torn, 0U);
    }
}

// The one kind of line that waits for the reader.
TEST(StressLoad, BlockingTraceBeforeASlowReader)
{
    constexpr unsigned PRODUCERS = 4;
    constexpr unsigned LINES = 5000 / SLOWNESS;
    Scenario scenario("blocking trace, a slow disk");
    while (scenario.goesOn())
    {
        // Trace lines look like the events of the group, except for their level.
        const support::VariableGuard variable("ZU_LOG_TRACING");
        const support::TempDir dir;
        variable.set(dir.file("trace.log"));
        RoundLogger logger;
        Zu::LgLog::setBlockingTrace(true);
        Account account;
        {
            stress::Gate gate(Zu::LgTypes::Tracing);
            gate.slowDown(5);
            const LgService service;
            runProducers(PRODUCERS, 0,
                         [](Producer&)
                         {
                             static std::atomic<unsigned> threads{0};
                             const std::string own = std::to_string(++threads) + " ";
                             for (unsigned i = 0; i < LINES; ++i)
                                 Zu::LgTrace::print((own + std::to_string(i)).c_str());
                         });
            account._attempted = PRODUCERS * LINES;
            account._lost = service.getLostCount();
            account._accepted = account._attempted - account._lost;
        }
        Zu::LgLog::setBlockingTrace(false);
        logger.stop();
        FileAccount file;
        std::map<std::string, unsigned> next;
        std::ifstream stream(dir.file("trace.log"), std::ios::binary);
        for (std::string line; std::getline(stream, line);)
        {
            const std::string mark = ") Tracing: ";
            const std::size_t at = line.find(mark);
            if (at == std::string::npos) continue;
            std::istringstream words(line.substr(at + mark.size()));
            std::string thread;
            unsigned number = 0;
            words >> thread >> number;
            ASSERT_EQ(number, next[thread]++) << line;
            ++file._written;
        }
        scenario.add(account, file);
        EXPECT_EQ(account._lost, 0U);
        EXPECT_EQ(file._written, account._attempted);
    }
}

} // namespace

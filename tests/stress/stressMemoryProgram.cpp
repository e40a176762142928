// A client of the log service that gets no memory. The first word selects when. It prints its
// counts: attempted, accepted and lost, and how often an exception reported that there is no
// memory.

#include "app/lgService.h"
#include "app/lgServiceThreads.h"
#include "base/base.h"
#include "stress/failingMemory.h"
#include "stress/hardEnd.h"
#include "stress/producer.h"
#include "stress/watchdog.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <future>
#include <iostream>
#include <map>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace
{

using stress::Account;
using stress::countdown;
using stress::isMemoryGone;
using stress::isSpared;
using stress::Producer;
using stress::Resource;
using stress::ResourceLimit;
using Zu::LgService;

void print(const Account& account, unsigned refused)
{
    std::cout << "account " << account._attempted << ' ' << account._accepted << ' '
              << account._lost << "\nrefused " << refused << std::endl;
}

bool isOutOfMemory(const std::function<void()>& act)
{
    try
    {
        act();
        return false;
    }
    catch (const std::bad_alloc&)
    {
        return true;
    }
}

// Whether the statement raised; if not, the event was accepted.
bool isStatementRefused(unsigned id)
{
    return isOutOfMemory([id] { Producer::state(id, 0); });
}

// In consecutive threads, each time the next of the allocations of a first event fails, until there
// is none left. The next event of the same thread succeeds.
void failInStatements()
{
    const LgService service;
    Account account;
    unsigned refused = 0;
    unsigned id = 0;
    for (bool goesOn = true; goesOn; id += 2)
        std::thread(
            [&]
            {
                countdown = static_cast<int>(id / 2 + 1);
                goesOn = isStatementRefused(id);
                countdown = 0;
                if (goesOn)
                    ++refused;
                else
                    account += {1, 1, 0};
                Producer producer(id + 1);
                producer.log();
                account += producer.account();
            })
            .join();
    account._lost = service.getLostCount();
    print(account, refused);
}

// The same while a service is made, which then succeeds at a further try. There are queues already,
// from the service before.
void failInServices()
{
    Producer producer(0);
    {
        const LgService service;
        producer.log();
    }
    unsigned refused = 0;
    std::uint64_t lost = 0;
    for (bool goesOn = true; goesOn;)
    {
        std::optional<LgService> service;
        countdown = static_cast<int>(refused + 1);
        goesOn = isOutOfMemory([&service] { service.emplace(); });
        countdown = 0;
        if (goesOn)
        {
            ++refused;
            service.emplace();
        }
        producer.log();
        lost += service->getLostCount();
    }
    Account account = producer.account();
    account._lost = lost;
    print(account, refused);
}

// Waits until the reader has fallen asleep.
void awaitIdleReader()
{
    Producer::awaitReader();
    while (!Zu::LgServiceThreads::instance().news().isListenedTo()) std::this_thread::yield();
}

// Threads that have their queues go on logging without memory, others can't; when memory is
// available again, everything is written. The reader is busy when the memory runs out, or asleep.
void loseAllMemory(bool isAsleep)
{
    constexpr unsigned THREADS = 8;
    constexpr unsigned ROUNDS = 4;
    const LgService service;
    Producer own(0);
    Account account;
    unsigned refused = 0;
    unsigned id = 1;
    isSpared = true;
    for (unsigned round = 0; round < ROUNDS; ++round)
    {
        own.log(10);
        if (isAsleep) awaitIdleReader();
        isMemoryGone = true;
        own.log(100);
        std::atomic<unsigned> failures{0};
        std::vector<std::thread> threads;
        for (unsigned i = 0; i < THREADS; ++i)
            threads.emplace_back(
                [&failures, i, id]
                {
                    if (isStatementRefused(id + i)) ++failures;
                });
        for (std::thread& thread : threads) thread.join();
        refused += failures;
        account += {THREADS - failures, THREADS - failures, 0};
        id += THREADS;
        isMemoryGone = false;
        Producer::awaitReader();
    }
    account += own.account();
    account._lost = service.getLostCount();
    print(account, refused);
}

// The reader's allocations fail one by one. It allocates when threads come and go, so they do that
// until one has failed.
void failInTheReader()
{
    // More than the reader makes for one thread.
    constexpr int ALLOCATIONS = 12;
    const LgService service;
    Account account;
    unsigned id = 0;
    isSpared = true;
    for (int i = 1; i <= ALLOCATIONS; ++i)
    {
        stress::unsparedCountdown = i;
        while (stress::unsparedCountdown > 0)
        {
            std::thread(
                [&account, id]
                {
                    isSpared = true;
                    Producer own(id);
                    own.log(3);
                    account += own.account();
                })
                .join();
            ++id;
            Producer::awaitReader();
        }
    }
    account._lost = service.getLostCount();
    print(account, ALLOCATIONS);
}

// The system has no more memory for queues.
void limitAddressSpace()
{
    constexpr unsigned THREADS = 100;
    constexpr std::uint64_t ROOM = 1 << 20;
    const LgService service;
    std::promise<void> start;
    std::promise<void> goOn;
    const std::shared_future<void> started = start.get_future().share();
    const std::shared_future<void> goneOn = goOn.get_future().share();
    std::atomic<unsigned> tried{0};
    std::atomic<unsigned> refused{0};
    std::vector<Account> accounts(THREADS);
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < THREADS; ++i)
        threads.emplace_back(
            [&, i]
            {
                started.wait();
                if (isStatementRefused(2 * i))
                    ++refused;
                else
                    accounts[i] += {1, 1, 0};
                ++tried;
                goneOn.wait();
                Producer producer(2 * i + 1);
                producer.log(10);
                accounts[i] += producer.account();
            });
    {
        const ResourceLimit limit(Resource::ADDRESS_SPACE, stress::addressSpace() + ROOM);
        start.set_value();
        while (tried < THREADS) std::this_thread::yield();
    }
    goOn.set_value();
    for (std::thread& thread : threads) thread.join();
    Account sum;
    for (const Account& account : accounts) sum += account;
    sum._lost = service.getLostCount();
    print(sum, refused);
}

} // namespace

int main(int, char** words)
{
    const std::string mode = words[1];
    const stress::Watchdog watchdog("stressMemoryProgram " + mode);
    const std::map<std::string, std::function<void()>> modes = {
        {"addressSpace", limitAddressSpace},
        {"all", [] { loseAllMemory(false); }},
        {"allAsleep", [] { loseAllMemory(true); }},
        {"reader", failInTheReader},
        {"services", failInServices},
        {"statements", failInStatements},
    };
    int count = 1;
    const Zu::InInitGuard guard(count, words);
    const stress::Group group;
    modes.at(mode)();
    return 0;
}

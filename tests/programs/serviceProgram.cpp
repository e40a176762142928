// A client of the log service, for tests that need a whole process. The first word selects the
// action.

#include "app/lgLimit.h"
#include "app/lgService.h"
#include "app/lgServiceEx.h"
#include "base/base.h"

#include "support/platform.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

ZU_DEFINE_LOG_GROUP(Service);

namespace
{

// Takes the lock between processes of this name and dies with it.
void dieWithLock(const char* name)
{
    Zu::LgInterProcessLock::create(name)->lock();
    std::_Exit(0);
}

// Ends with an event that the service can't write, since the program has the logger's lock between
// processes.
[[noreturn]] void leaveAnEvent()
{
    static const Zu::LgService* const service = new Zu::LgService;
    Zu::LgLog::getInterProcessLock()->lock();
    if (service) ZU_LOG_WARNING(Service, "left behind");
    std::_Exit(0);
}

void makeService()
{
    try
    {
        const Zu::LgService service;
    }
    catch (const Zu::LgServiceEx& exception)
    {
        std::cout << exception.getReason() << "\n";
    }
}

// Threads log while the process shuts down in an orderly way.
void logFromThreads()
{
    const Zu::LgService service;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 3; ++thread)
        threads.emplace_back(
            [thread]
            {
                for (int i = 0; i < 100; ++i)
                    ZU_LOG_WARNING(Service, "thread " << thread << " event " << i);
            });
    for (std::thread& thread : threads) thread.join();
}

// The process ends while the service lives and a thread logs.
[[noreturn]] void exitInTheMiddle()
{
    static const Zu::LgService* const service = new Zu::LgService;
    static std::atomic<int> events{0};
    static const std::thread* const endless = new std::thread(
        []
        {
            while (true)
            {
                ZU_LOG_WARNING(Service, "event " << events.load());
                ++events;
            }
        });
    while (endless && events < 100) std::this_thread::yield();
    std::cout << "lost some: " << (service->getLostCount() > 1000000000) << "\n";
    std::exit(7);
}

// The process ends while the service lives and a statement owes a count.
[[noreturn]] void exitOwing()
{
    static const Zu::LgService* const service = new Zu::LgService;
    for (int i = 0; service && i < 5; ++i)
        ZU_LOG_EVERY(Service, Zu::LgTypes::Warning, 3, "number " << i);
    std::exit(8);
}

void tellLock()
{
    std::cout << (Zu::LgLog::getInterProcessLock() ? "a lock" : "no lock") << std::endl;
}

// A child of a fork continues without the threads of its parent. Its exit value shows how far it
// got.
int forkInTheMiddle()
{
    const Zu::LgService service;
    std::atomic<bool> stop{false};
    auto producer = std::make_unique<std::thread>(
        [&stop]
        {
            // Limited, as the child may take any time.
            for (int i = 0; i < 20000 && !stop; ++i) ZU_LOG_INFORMATIONAL(Service, "busy");
        });
    ZU_LOG_WARNING(Service, "before the fork");
    const support::Side side = support::forkProcess();
    if (side == support::Side::CHILD)
    {
        static const std::thread* const ofTheParent = producer.release();
        if (!ofTheParent) return 4;
        ZU_LOG_WARNING(Service, "in the child");
        // A thread of the child logs and ends, too.
        std::thread([] { ZU_LOG_WARNING(Service, "in a thread of the child"); }).join();
        // It can make a service, and so can a child of the child.
        const bool isGrandchild = support::forkProcess() == support::Side::CHILD;
        if (!isGrandchild) support::awaitForkedChild();
        const Zu::LgService own;
        ZU_LOG_WARNING(Service, "by a service of its own");
        return 3;
    }
    const int child = support::awaitForkedChild();
    stop = true;
    producer->join();
    ZU_LOG_WARNING(Service, "child ended with " << child);
    return 0;
}

// A value whose insertion forks the process.
struct ForkingValue
{
    support::Side& _side;
};

Zu::LgStream& operator<<(Zu::LgStream& stream, const ForkingValue& value)
{
    value._side = support::forkProcess();
    return stream << (value._side == support::Side::CHILD ? "child" : "parent");
}

// The fork happens in the middle of a statement, which both processes complete.
int forkInAStatement()
{
    const Zu::LgService service;
    support::Side side = support::Side::NEITHER;
    const ForkingValue value{side};
    ZU_LOG_WARNING(Service, "completed by the " << value << ", once");
    if (side == support::Side::CHILD)
    {
        ZU_LOG_WARNING(Service, "next of the child");
        const Zu::LgService own;
        ZU_LOG_WARNING(Service, "by a service of its own");
        return 3;
    }
    const int child = support::awaitForkedChild();
    ZU_LOG_WARNING(Service, "child ended with " << child);
    return 0;
}

// Like a thread that found the logger active just before the end of the service.
void addLate(const char* text)
{
    Zu::LgQueue& queue = Zu::LgLog::getQueue();
    if (!queue.reserveEntry(Zu::LgTypes::Warning)) return;
    queue.getStream() << "Service " << text << Zu::ends;
    queue.addEntry();
}

// A child of a fork between two services, with events that came too late for the first one: of the
// forking thread, of a living thread, and of an ended one.
// The log file can't be opened until the child has ended.
int forkWhileAFileFails()
{
    constexpr std::chrono::seconds LIMIT(30);
    const Zu::LgService service;
    ZU_LOG_WARNING(Service, "in the parent");
    service.flush(LIMIT);
    if (support::forkProcess() == support::Side::CHILD)
    {
        const Zu::LgService own;
        ZU_LOG_WARNING(Service, "in the child");
        own.flush(LIMIT);
        return 3;
    }
    const int child = support::awaitForkedChild();
    std::filesystem::remove(std::filesystem::path(std::getenv("B7Q_TEST_DIR")) / "events.log");
    return child;
}

int forkBetweenServices()
{
    {
        const Zu::LgService service;
        ZU_LOG_WARNING(Service, "in time");
    }
    addLate("late");
    // Enough events to leave the mark of a loss, too.
    while (Zu::LgLog::getQueue().getLostCount() < 2) addLate("late");
    std::thread([] { addLate("late of an ended thread"); }).join();
    std::promise<void> isThere;
    std::promise<void> end;
    auto living = std::make_unique<std::thread>(
        [&]
        {
            addLate("late of a living thread");
            isThere.set_value();
            end.get_future().wait();
        });
    isThere.get_future().wait();
    if (support::forkProcess() == support::Side::CHILD)
    {
        static const std::thread* const ofTheParent = living.release();
        if (!ofTheParent) return 4;
        // A reader in the child finds nothing of the parent's.
        Zu::LgReader reader;
        if (reader.eventsPending()) return 5;
        reader.flushAll();
        addLate("late of the child");
        auto service = std::make_unique<Zu::LgService>();
        ZU_LOG_WARNING(Service, "in the child");
        std::thread([] { ZU_LOG_WARNING(Service, "in a thread of the child"); }).join();
        const std::uint64_t lost = service->getLostCount();
        service.reset();
        std::cout << "in the child: lost " << lost << ", queues "
                  << Zu::LgLog::getRegistry()->getQueueList().size() << "\n";
        return 3;
    }
    const int child = support::awaitForkedChild();
    end.set_value();
    living->join();
    const Zu::LgService service;
    // The queue is full.
    while (!Zu::LgLog::getQueue().isEmpty()) std::this_thread::yield();
    ZU_LOG_WARNING(Service, "child ended with " << child);
    return 0;
}

int run(const std::string& what, char** words)
{
    if (what == "die") dieWithLock(words[2]);
    if (what == "early") makeService();
    int count = 1;
    const Zu::InInitGuard guard(count, words);
    ZU_START_LOG_GROUP("Test", Service);
    int result = 0;
    if (what == "service") const Zu::LgService service;
    if (what == "threads") logFromThreads();
    if (what == "leave") leaveAnEvent();
    if (what == "exit") exitInTheMiddle();
    if (what == "owe") exitOwing();
    if (what == "lock") tellLock();
    if (what == "fork") result = forkInTheMiddle();
    if (what == "forkInside") result = forkInAStatement();
    if (what == "forkBetween") result = forkBetweenServices();
    if (what == "forkFailing") result = forkWhileAFileFails();
    ZU_STOP_LOG_GROUP(Service);
    return result;
}

} // namespace

int main(int, char** words)
{
    return run(words[1], words);
}

// A client of the log service that is killed, forked, or runs into limits. The first word selects
// the action, the second is the id of its first producer. The variable STRESS_DIR names the
// directory of the files by which processes communicate. It prints its counts: attempted, accepted
// and lost.

#include "app/lgService.h"
#include "app/lgServiceEx.h"
#include "base/base.h"
#include "stress/hardEnd.h"
#include "stress/producer.h"
#include "stress/roundLogger.h"
#include "stress/streamBetween.h"
#include "stress/watchdog.h"
#include "support/marker.h"
#include "support/platform.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <future>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace
{

using stress::Account;
using stress::Producer;
using stress::Resource;
using stress::ResourceLimit;
using support::Side;
using Zu::LgInterProcessLock;
using Zu::LgLog;
using Zu::LgReader;
using Zu::LgService;

constexpr unsigned THREADS = 3;
constexpr unsigned BURST = 100;
constexpr std::uint64_t STANDARD_STREAMS = 3;

unsigned firstId = 0;

std::string file(const std::string& name)
{
    return std::string(Zu::OsEnv::getVariable("STRESS_DIR")) + "/" + name;
}

void print(const Account& account)
{
    std::cout << "account " << account._attempted << ' ' << account._accepted << ' '
              << account._lost << ' ' << account._unwritten << std::endl;
}

// Signals that this process is ready, and waits for the others.
void meet()
{
    support::setMarker(file("ready" + std::to_string(firstId)));
    if (!support::awaitMarker(file("go"))) std::abort();
}

// Runs producers in threads of their own, until all are done.
Account runProducers(const LgService& service, const std::function<void(Producer&)>& work)
{
    std::vector<std::future<Account>> producers;
    for (unsigned i = 0; i < THREADS; ++i)
        producers.push_back(std::async(std::launch::async,
                                       [&work, id = firstId + i]
                                       {
                                           Producer producer(id);
                                           work(producer);
                                           return producer.account();
                                       }));
    Account sum;
    for (std::future<Account>& producer : producers) sum += producer.get();
    sum._lost = service.getLostCount();
    return sum;
}

void logInBursts(Producer& producer)
{
    producer.logInBursts(20 * BURST, BURST);
}

// One of several processes, each with threads that log at full speed, or nearly so.
void share()
{
    const LgService service;
    meet();
    print(runProducers(service,
                       [](Producer& producer)
                       {
                           producer.log(20 * BURST);
                           logInBursts(producer);
                       }));
}

// Goes on while another one ends, and for some time after it.
void survive()
{
    const LgService service;
    const std::string end = file("ended");
    meet();
    print(runProducers(service,
                       [&end](Producer& producer)
                       {
                           while (!support::isMarked(end)) producer.logInBursts(BURST, BURST);
                           logInBursts(producer);
                       }));
}

// Is killed while it holds the lock. What was logged before is written, what comes after is not.
void dieWithLock()
{
    const LgService service;
    meet();
    Account account = runProducers(service, logInBursts);
    LgLog::getInterProcessLock()->lock();
    Producer late(firstId + THREADS);
    late.log(BURST);
    account += late.account();
    print(account);
    stress::killSelf();
}

// Writes half of a line, and is killed: in the thread that writes, under the lock.
class TornLine : public stress::StreamBetween
{
public:
    TornLine(bool byLimit, int lines)
        : StreamBetween(Zu::LgTypes::Warning), _byLimit(byLimit), _lines(lines)
    {
    }

protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override
    {
        if (_lines-- > 0) return file().sputn(text, size);
        constexpr std::streamsize PART = 41;
        if (_byLimit)
        {
            // The system writes what is allowed, and kills the process when it tries to write the
            // rest.
            const std::string log = ::file("shared.log");
            stress::letLongFilesKill();
            static const ResourceLimit limit(Resource::FILE_SIZE,
                                             std::filesystem::file_size(log) + PART);
            file().sputn(text, size);
            file().pubsync();
            // Not reached, and can't be mistaken for the end by the limit.
            std::_Exit(0);
        }
        file().sputn(text, PART);
        file().pubsync();
        stress::killSelf();
    }

private:
    bool _byLimit;
    int _lines;
};

void dieInALine(bool byLimit)
{
    constexpr int LINES = 1000;
    const TornLine tornLine(byLimit, LINES);
    const LgService service;
    meet();
    Producer producer(firstId);
    producer.logInBursts(LINES, BURST);
    LgLog::getInterProcessLock()->lock();
    producer.log();
    Account account = producer.account();
    account._lost = service.getLostCount();
    print(account);
    LgLog::getInterProcessLock()->unlock();
    support::awaitMarker(file("never"));
}

// Ends while the reader is busy with full queues.
void endInTheMiddle(const std::function<void()>& end)
{
    const LgService service;
    print(runProducers(service, [](Producer& producer) { producer.log(50 * BURST); }));
    end();
}

// What the reader has taken is written, the rest is not.
void abortAtAKnownMoment()
{
    const LgService service;
    Account account = runProducers(service, logInBursts);
    LgLog::getInterProcessLock()->lock();
    Producer late(firstId + THREADS);
    late.log(BURST);
    account += late.account();
    account._lost = service.getLostCount();
    print(account);
    std::abort();
}

// Children of a process whose threads log.
void forkInTheMiddle()
{
    constexpr int FORKS = 8;
    const LgService service;
    std::atomic<bool> stop{false};
    auto account = std::async(std::launch::async,
                              [&]
                              {
                                  return runProducers(service,
                                                      [&stop](Producer& producer)
                                                      {
                                                          do logInBursts(producer);
                                                          while (!stop);
                                                      });
                              });
    for (int i = 0; i < FORKS; ++i)
    {
        std::cout.flush();
        if (support::forkProcess() == Side::CHILD)
        {
            Producer::state(firstId + 100, 0);
            {
                const LgService second;
                Producer(firstId + 200 + static_cast<unsigned>(i)).log(1);
            }
            std::cout << "served" << std::endl;
            std::_Exit(0);
        }
        if (support::awaitForkedChild() != 0) std::cout << "a child failed" << std::endl;
    }
    stop = true;
    print(account.get());
}

// A file that can't grow for a time.
void fillDisk()
{
    Account account;
    {
        const LgService service;
        {
            const ResourceLimit limit(Resource::FILE_SIZE, 65536);
            account = runProducers(service, logInBursts);
        }
        firstId += THREADS;
        account += runProducers(service, logInBursts);
        account._lost = service.getLostCount();
    }
    account._unwritten = LgReader::getUnwrittenCount();
    print(account);
}

void logToTheEnd()
{
    const std::uint64_t before = LgReader::getUnwrittenCount();
    Account account;
    {
        const LgService service;
        account = runProducers(service, logInBursts);
    }
    account._unwritten = LgReader::getUnwrittenCount() - before;
    print(account);
}

// A separate logger, which may be limited; prints how much of what it logged is in its file.
void runLogger(std::optional<ResourceLimit>& limit)
{
    stress::RoundLogger logger;
    logToTheEnd();
    logger.stop();
    // Removing the directory needs a descriptor.
    limit.reset();
    std::cout << "written " << stress::read(logger.file())._written << std::endl;
}

int askForLocks(int count)
{
    int refused = 0;
    for (int i = 0; i < count; ++i)
    {
        try
        {
            const std::unique_ptr<LgInterProcessLock> lock(
                LgInterProcessLock::create(Zu::OsEnv::getVariable("STRESS_LOCK")));
        }
        catch (const Zu::ExSysErrorWindows& exception)
        {
            if (exception.getErrorCode() == EMFILE) ++refused;
        }
    }
    return refused;
}

// A logger before, one while nothing can be opened, and one after it.
void runOutOfDescriptors()
{
    std::optional<ResourceLimit> limit;
    runLogger(limit);
    const std::size_t before = support::openHandles();
    limit.emplace(Resource::DESCRIPTORS, STANDARD_STREAMS);
    std::cout << "refused " << askForLocks(100) << std::endl;
    runLogger(limit);
    runLogger(limit);
    std::cout << "refused " << askForLocks(100) << std::endl;
    std::cout << "left open " << support::openHandles() - before << std::endl;
}

void start(const std::string& mode, char** words)
{
    const std::map<std::string, std::function<void()>> modes = {
        {"abort", [] { endInTheMiddle([] { std::abort(); }); }},
        {"abortKnown", abortAtAKnownMoment},
        {"dieInALine", [] { dieInALine(false); }},
        {"dieInALineByLimit", [] { dieInALine(true); }},
        {"dieWithLock", dieWithLock},
        {"fillDisk", fillDisk},
        {"fork", forkInTheMiddle},
        {"kill", [] { endInTheMiddle([] { stress::killSelf(); }); }},
        {"log", logToTheEnd},
        {"logWithoutDescriptors", logToTheEnd},
        {"recover", [] { const LgService service; }},
        {"share", share},
        {"survive", survive},
    };
    std::optional<ResourceLimit> limit;
    if (mode == "logWithoutDescriptors") limit.emplace(Resource::DESCRIPTORS, STANDARD_STREAMS);
    int count = 1;
    const Zu::InInitGuard guard(count, words);
    const stress::Group group;
    modes.at(mode)();
}

} // namespace

int main(int, char** words)
{
    const std::string mode = words[1];
    const stress::Watchdog watchdog("stressProgram " + mode);
    firstId = static_cast<unsigned>(std::stoul(words[2]));
    try
    {
        if (mode == "descriptors")
            runOutOfDescriptors();
        else
            start(mode, words);
    }
    catch (const Zu::ExSysErrorWindows& exception)
    {
        std::cout << "raised " << (exception.getErrorCode() == EMFILE ? "EMFILE" : "another")
                  << std::endl;
        return 1;
    }
    return 0;
}

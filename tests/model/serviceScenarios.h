// Scenarios of the log service: its own thread, beside threads that log and wait. A wake-up that is
// lost is a deadlock, as waits don't expire unless the scenario's limit is part of it.

#ifndef ZU_TESTS_MODEL_SERVICESCENARIOS_H
#define ZU_TESTS_MODEL_SERVICESCENARIOS_H

#include "app/lgServiceReader.h"
#include "app/lgServiceRegistry.h"
#include "app/lgServiceThreads.h"
#include "base/lgQueue.h"
#include "base/lgReader.h"
#include "base/lgStream.h"
#include "base/lgTypes.h"
#include "modelChecker.h"
#include "queueScenarios.h"
#include "scenario.h"
#include "servicePlatform.h"

#include <chrono>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace serviceScenarios
{

using servicePlatform::isWritten;
using servicePlatform::Sizes;
using Zu::LgQueue;
using Zu::LgServiceReader;
using Zu::LgServiceThreads;
namespace LgTypes = Zu::LgTypes;

// Longer than any execution takes.
constexpr std::chrono::hours LONG{24 * 365};

// There is one object of the kit's, which a scenario leaves as it was, or as it was when something
// went wrong. So each begins with a copy of its bytes.
class State
{
public:
    static State& instance()
    {
        static State theState;
        return theState;
    }

    void restore()
    {
        std::memcpy(static_cast<void*>(&LgServiceThreads::instance()), _bytes.data(),
                    _bytes.size());
        Zu::LgServiceRegistry::queues().clear();
        servicePlatform::reset();
    }

private:
    State() : _bytes(sizeof(LgServiceThreads))
    {
        queueScenarios::prepareLibrary();
        servicePlatform::reset();
        LgServiceThreads& threads = LgServiceThreads::instance();
        threads.start();
        threads.setPatience(LONG);
        Zu::LgServiceRegistry::mutex();
        // So that it needs no memory of a scenario.
        Zu::LgServiceRegistry::queues().reserve(2 * model::MAX_THREADS);
        std::memcpy(_bytes.data(), static_cast<const void*>(&threads), _bytes.size());
    }

    std::vector<char> _bytes;
};

// Logs an event; false if it is lost.
inline bool log(const char* text)
{
    LgQueue& queue = *LgServiceThreads::queueOfThread();
    if (!queue.reserveEntry(LgTypes::Warning)) return false;
    queue.beginInsertion();
    queue.getStream() << text;
    queue.endInsertion();
    return true;
}

// A service, as LgService begins and ends it.
class Service
{
public:
    explicit Service(const LgServiceThreads::Waiting& waiting, const Sizes& sizes = {4, 64})
    {
        State::instance().restore();
        servicePlatform::sizes = sizes;
        _threads.setWaiting(waiting);
        const bool isWaiting = waiting._levels != 0;
        LgQueue::setRoomFunction(isWaiting ? &LgServiceThreads::waitForRoom : nullptr);
        Zu::LgStream::setRoomFunction(isWaiting ? &LgServiceThreads::waitForTextRoom : nullptr);
        LgServiceThreads::queueOfThread();
    }

    void begin()
    {
        _reader.emplace(_threads, Zu::LgLineForm::Plain);
    }

    // Goes on after the end of the scenario.
    void beginForEver()
    {
        new LgServiceReader(_threads, Zu::LgLineForm::Plain);
        model::leaveOthers();
    }

    // What the reader does when it is awake, once.
    std::thread beginLook()
    {
        return std::thread(
            [this]
            {
                const std::lock_guard guard(_threads.reading());
                Zu::LgServiceWriter writer(_threads.map(), _threads.waiting(),
                                           Zu::LgLineForm::Plain);
                writer.writeBatch();
                _threads.endVainWaits();
                _threads.endWaitsUntilWritten(writer.getEarliestLeft());
            });
    }

    void end()
    {
        _reader.reset();
        _threads.stop();
    }

    // So that the next scenario has none.
    static void endOwnThread()
    {
        servicePlatform::endThread();
        Zu::LgReader().flushAll();
    }

    LgServiceThreads& threads()
    {
        return _threads;
    }

private:
    LgServiceThreads& _threads = LgServiceThreads::instance();
    std::optional<LgServiceReader> _reader;
};

inline LgServiceThreads::Waiting waitingForRoom(std::chrono::milliseconds limit = LONG)
{
    return {1U << LgTypes::Warning, -1, limit};
}

// So that there is no room for another one.
inline void fill()
{
    model::require(log("a") && log("b"), "two events have room");
}

// A thread that logs and ends.
inline std::thread producer(std::function<void()> body)
{
    return std::thread(
        [body = std::move(body)]
        {
            body();
            servicePlatform::endThread();
        });
}

inline void waitForAnEvent()
{
    Service service({});
    log("a");
    service.beginForEver();
    const std::uint64_t time = Zu::HwCounter::timeStamp();
    model::require(service.threads().waitUntilWritten(time, LONG), "the wait is not in vain");
    model::require(isWritten("a"), "what is waited for is written");
}

inline void waitForOwnEvent()
{
    Service service({});
    service.beginForEver();
    log("a");
    const std::uint64_t time = Zu::HwCounter::timeStamp();
    model::require(service.threads().waitUntilWritten(time, LONG), "the wait is not in vain");
    model::require(isWritten("a"), "what is waited for is written");
}

// In one look, whose thread does not wait to be woken.
inline void waitForALook()
{
    Service service({});
    log("a");
    std::thread look = service.beginLook();
    log("b");
    const std::uint64_t time = Zu::HwCounter::timeStamp();
    const bool isDone = service.threads().waitUntilWritten(time, std::chrono::milliseconds(1));
    model::require(!isDone || (isWritten("a") && isWritten("b")), "what is waited for is written");
    look.join();
    Zu::LgReader().flushAll();
}

// Each thread waits for its own event.
inline void waitOfTwoForALook()
{
    Service service({});
    const auto waitFor = [&service](const char* text)
    {
        log(text);
        const std::uint64_t time = Zu::HwCounter::timeStamp();
        const bool isDone = service.threads().waitUntilWritten(time, std::chrono::milliseconds(1));
        model::require(!isDone || isWritten(text), "what is waited for is written");
    };
    std::thread look = service.beginLook();
    std::thread other = producer([&waitFor] { waitFor("b"); });
    waitFor("a");
    look.join();
    other.join();
    servicePlatform::endThread();
    Zu::LgReader().flushAll();
}

// Another thread publishes an event that is later, or earlier than what is waited for.
inline void waitBesideAnEvent()
{
    Service service({});
    log("a");
    const std::uint64_t time = Zu::HwCounter::timeStamp();
    service.beginForEver();
    std::thread other = producer([] { log("b"); });
    model::require(service.threads().waitUntilWritten(time, LONG), "the wait is not in vain");
    model::require(isWritten("a"), "what is waited for is written");
    other.join();
}

inline void waitOfTwoThreads()
{
    Service service({});
    log("a");
    const std::uint64_t time = Zu::HwCounter::timeStamp();
    service.beginForEver();
    const auto wait = [&service, time]
    {
        model::require(service.threads().waitUntilWritten(time, LONG), "the wait is not in vain");
        model::require(isWritten("a"), "what is waited for is written");
    };
    std::thread other(wait);
    wait();
    other.join();
}

// By a statement.
inline void flush()
{
    Service service({0, LgTypes::Warning, LONG});
    service.beginForEver();
    log("a");
    model::require(isWritten("a"), "what is waited for is written");
}

inline void endOfService()
{
    Service service({});
    service.begin();
    log("a");
    service.end();
    model::require(isWritten("a"), "what was logged before the end is written");
    Service::endOwnThread();
}

inline void waitForRoom()
{
    Service service(waitingForRoom());
    fill();
    std::thread look = service.beginLook();
    model::require(log("c"), "no event is lost");
    look.join();
}

inline void waitForRoomOfText()
{
    Service service(waitingForRoom(), {8, 8});
    model::require(log("abcd"), "a text has room");
    std::thread look = service.beginLook();
    log("efg");
    look.join();
    Zu::LgReader().flushAll();
    model::require(isWritten("efg"), "no text is cut");
}

// Nobody makes room any more.
inline void waitForRoomUntilStop()
{
    Service service(waitingForRoom());
    fill();
    std::thread stop([&service] { service.threads().stop(); });
    model::require(!log("c"), "there is no room");
    stop.join();
}

inline void waitForRoomUntilFailure()
{
    Service service(waitingForRoom());
    fill();
    std::thread reader([&service] { service.threads().setFailing(true); });
    model::require(!log("c"), "there is no room");
    reader.join();
}

// The limit may be over before there is room.
inline void waitForRoomOrLimit()
{
    Service service(waitingForRoom());
    fill();
    std::thread look = service.beginLook();
    const auto begin = std::chrono::steady_clock::now();
    const bool isLogged = log("c");
    const auto passed = std::chrono::steady_clock::now() - begin;
    model::require(isLogged || passed >= LONG, "an event is lost only when the limit is over");
    look.join();
}

inline void waitForRoomUntilLimit()
{
    Service service(waitingForRoom(std::chrono::milliseconds(2)));
    fill();
    const auto begin = std::chrono::steady_clock::now();
    model::require(!log("c"), "there is no room");
    const auto end = std::chrono::steady_clock::now();
    model::require(end - begin >= std::chrono::milliseconds(2), "the limit is over");
    model::require(!log("d"), "there is no room");
    const auto passed = std::chrono::steady_clock::now() - end;
    model::require(passed < std::chrono::milliseconds(1), "nobody waits in vain twice");
}

// Of an observer.
inline void waitForSpace()
{
    Service service({});
    fill();
    service.beginForEver();
    LgServiceThreads::queueOfThread()->waitForSpace(1);
    model::require(log("c"), "there is room");
}

inline void waitForSpaceUntilStop()
{
    Service service({});
    fill();
    std::thread stop([&service] { service.threads().stop(); });
    LgServiceThreads::queueOfThread()->waitForSpace(1);
    model::require(log("c"), "who waited has made room");
    stop.join();
}

inline const Scenario TWO_FOR_A_LOOK{"wait of two threads for a look", &waitOfTwoForALook, 1};

inline std::vector<Scenario> all()
{
    return {{"wait for an event", &waitForAnEvent},
            {"wait for a look", &waitForALook, 1},
            {"end of the service", &endOfService},
            {"wait for room", &waitForRoom},
            {"wait for room, or the limit", &waitForRoomOrLimit, 1},
            {"wait for room of a text", &waitForRoomOfText},
            {"wait for room until the end", &waitForRoomUntilStop},
            {"wait for room until files fail", &waitForRoomUntilFailure},
            {"wait for room until the limit", &waitForRoomUntilLimit},
            {"wait for space", &waitForSpace},
            {"wait for space until the end", &waitForSpaceUntilStop}};
}

inline std::vector<Scenario> forLongRun()
{
    return {{"wait for an own event", &waitForOwnEvent},
            {"wait of two threads", &waitOfTwoThreads},
            {"wait beside an event", &waitBesideAnEvent},
            TWO_FOR_A_LOOK,
            {"flush", &flush}};
}

} // namespace serviceScenarios

#endif

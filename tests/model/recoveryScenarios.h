// Scenarios of the hand-over: threads that log into the map, and the one that writes, any of which
// may be killed anywhere. See handOver.h.

#ifndef ZU_TESTS_MODEL_RECOVERYSCENARIOS_H
#define ZU_TESTS_MODEL_RECOVERYSCENARIOS_H

#include "app/lgServiceLog.h"
#include "app/lgServiceMap.h"
#include "app/lgServiceRegistry.h"
#include "app/lgServiceWaiting.h"
#include "app/lgServiceWriter.h"
#include "base/lgLog.h"
#include "base/lgQueue.h"
#include "mapPlatform.h"
#include "modelChecker.h"
#include "queueScenarios.h"
#include "scenario.h"

#include <cstring>
#include <functional>
#include <iostream>
#include <string_view>
#include <thread>
#include <vector>

namespace recoveryScenarios
{

using mapPlatform::Note;
using Zu::LgQueue;
using Zu::LgServiceMap;
using Zu::LgServiceRegistry;
using Zu::LgServiceWriter;
namespace LgTypes = Zu::LgTypes;

// The rings of queues: two events have room.
constexpr std::uint32_t ENTRIES = 4;
constexpr std::uint32_t CHARACTERS = 64;

// What is there before a process logs. There is one map, which a scenario leaves in any state; so
// each begins with a copy of its bytes.
class Prepared
{
public:
    static Prepared& instance()
    {
        static Prepared thePrepared;
        return thePrepared;
    }

    LgServiceMap& map()
    {
        return _map;
    }

    void restore()
    {
        std::memcpy(static_cast<void*>(&_map), _bytes.data(), _bytes.size());
        LgServiceRegistry::queues().clear();
    }

private:
    Prepared() : _map(*new LgServiceMap), _bytes(sizeof(LgServiceMap))
    {
        queueScenarios::prepareLibrary();
        Zu::LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(new LgServiceRegistry));
        LgServiceRegistry::mutex();
        // So that it needs no memory of a scenario.
        LgServiceRegistry::queues().reserve(2 * model::MAX_THREADS);
        // Short lines, and no dates: the process may be killed behind each byte.
        Zu::LgLog::disableTimeStamps();
        Zu::LgServiceLog::Settings settings;
        settings._hasBanner = false;
        Zu::LgServiceLog::setSettings(settings);
        // Of files that fail.
        std::cerr.rdbuf(nullptr);
        LgServiceMap::Settings ofMap;
        ofMap._entries = ENTRIES;
        ofMap._characters = CHARACTERS;
        _map.begin(ofMap);
        mapPlatform::keep();
        std::memcpy(_bytes.data(), static_cast<const void*>(&_map), _bytes.size());
    }

    LgServiceMap& _map;
    std::vector<char> _bytes;
};

// A process with its log.
class Process
{
public:
    Process()
    {
        Prepared::instance().restore();
        mapPlatform::setOutput(&_log);
    }

    // A thread's queue, which it gets with its first event.
    LgQueue& begin(std::uint32_t thread)
    {
        LgQueue* const queue = _map.makeQueue(thread);
        LgServiceRegistry().registerQueue(queue);
        return *queue;
    }

    LgServiceMap& map()
    {
        return _map;
    }

    // The thread that writes, which looks so many times whether there is anything.
    std::thread writer(int looks, bool isEnding = false)
    {
        return std::thread(
            [this, looks, isEnding]
            {
                LgServiceWriter writer(_map, _waiting, Zu::LgLineForm::Plain);
                for (int i = 0; i < looks; ++i) writer.writeBatch();
                if (isEnding) writer.finish();
            });
    }

private:
    LgServiceMap& _map = Prepared::instance().map();
    Zu::LgServiceWaiting _waiting{_map};
    Zu::LgServiceLog _log{"log"};
};

// A statement for each letter, which is the text of an event.
inline void log(LgQueue& queue, std::string_view letters)
{
    for (const char letter : letters)
    {
        mapPlatform::note(Note::Begun, letter);
        const bool isAccepted = queue.reserveEntry(LgTypes::Warning);
        if (isAccepted)
        {
            queue.beginInsertion();
            queue.getStream() << mapPlatform::textOf(letter);
            queue.endInsertion();
        }
        mapPlatform::note(isAccepted ? Note::Accepted : Note::Lost, letter);
    }
}

// The writer beside one thread, which has logged something before.
inline void oneThread(std::string_view before, std::string_view letters, int looks)
{
    Process process;
    LgQueue& queue = process.begin(1);
    log(queue, before);
    std::thread writer = process.writer(looks);
    log(queue, letters);
    writer.join();
}

inline void events()
{
    oneThread("", "ab", 2);
}

// Of several events, while further ones come.
inline void batch()
{
    oneThread("ab", "c", 2);
}

// Entries are used again while they are being moved.
inline void entriesAgain()
{
    oneThread("ab", "cd", 2);
}

// A place for a batch is used again.
inline void threeBatches()
{
    oneThread("a", "bc", 3);
}

inline void overflow()
{
    oneThread("abcd", "e", 2);
}

inline void overflowBesideWriter()
{
    oneThread("ab", "cde", 1);
}

inline void twoThreads()
{
    Process process;
    LgQueue& first = process.begin(1);
    LgQueue& second = process.begin(2);
    log(first, "a");
    log(second, "n");
    std::thread writer = process.writer(1);
    std::thread other([&second] { log(second, "o"); });
    log(first, "b");
    writer.join();
    other.join();
}

// What the file does not take waits in the map, and is written at the end of the service.
inline void fileThatFails()
{
    Process process;
    mapPlatform::setQueues(1);
    LgQueue& queue = process.begin(1);
    log(queue, "ab");
    // In the middle of a line.
    mapPlatform::failNextWrite(1);
    std::thread writer = process.writer(1);
    log(queue, "c");
    writer.join();
    process.writer(1, true).join();
}

// While its thread logs.
inline void fileThatFailsBesideTheEnd()
{
    Process process;
    mapPlatform::setQueues(1);
    LgQueue& queue = process.begin(1);
    log(queue, "ab");
    mapPlatform::failNextWrite(1);
    std::thread writer = process.writer(2, true);
    log(queue, "c");
    writer.join();
}

inline void endOfThread()
{
    Process process;
    LgQueue& queue = process.begin(1);
    std::thread writer = process.writer(3);
    log(queue, "a");
    queue.creatorExit();
    writer.join();
}

// They came from inside of another event.
inline void lossesInNoEntry()
{
    Process process;
    LgQueue& queue = process.begin(1);
    log(queue, "a");
    queue.beginInsertion();
    log(queue, "bc");
    queue.endInsertion();
    std::thread writer = process.writer(2);
    queue.creatorExit();
    writer.join();
}

inline void lossesAtTheEnd()
{
    Process process;
    LgQueue& queue = process.begin(1);
    log(queue, "a");
    queue.beginInsertion();
    log(queue, "bc");
    queue.endInsertion();
    std::thread writer = process.writer(2, true);
    writer.join();
}

// The thread lives on, and logs.
inline void eventBesideTheEnd()
{
    Process process;
    LgQueue& queue = process.begin(1);
    log(queue, "a");
    queue.beginInsertion();
    log(queue, "bc");
    queue.endInsertion();
    std::thread writer = process.writer(1, true);
    log(queue, "d");
    writer.join();
}

inline void lossBesideTheEnd()
{
    Process process;
    LgQueue& queue = process.begin(1);
    log(queue, "a");
    queue.beginInsertion();
    log(queue, "b");
    queue.endInsertion();
    std::thread writer = process.writer(1, true);
    log(queue, "cde");
    writer.join();
}

// The second thread gets the queue of the first one if the writer has given it back by then.
inline void queueAgain()
{
    Process process;
    LgQueue& queue = process.begin(1);
    log(queue, "a");
    queue.creatorExit();
    std::thread writer = process.writer(3);
    LgQueue& other = process.begin(2);
    log(other, "n");
    writer.join();
}

inline void queueAgainWithLosses()
{
    Process process;
    LgQueue& queue = process.begin(1);
    log(queue, "abcd");
    queue.creatorExit();
    std::thread writer = process.writer(2);
    LgQueue& other = process.begin(2);
    log(other, "no");
    writer.join();
}

inline std::vector<Scenario> all()
{
    return {{"events", &events},
            {"a batch of two events", &batch},
            {"entries that are used again", &entriesAgain},
            {"three batches", &threeBatches},
            {"losses", &overflow},
            {"losses beside the writer", &overflowBesideWriter},
            {"two threads", &twoThreads},
            {"a file that fails", &fileThatFails},
            {"the end of a thread", &endOfThread},
            {"losses that are in no entry", &lossesInNoEntry},
            {"losses at the end of the service", &lossesAtTheEnd},
            {"a queue that is used again", &queueAgain},
            {"a queue that is used again, with losses", &queueAgainWithLosses}};
}

// Threads that log while a service ends.
inline std::vector<Scenario> besideTheEnd()
{
    return {{"an event beside the end of the service", &eventBesideTheEnd},
            {"losses beside the end of the service", &lossBesideTheEnd},
            {"a file that fails until the end of the service", &fileThatFailsBesideTheEnd}};
}

// Of one queue, without losses.
inline std::vector<Scenario> simple()
{
    return {{"events", &events}, {"the end of a thread", &endOfThread}};
}

inline void manyEvents()
{
    oneThread("ab", "cdef", 3);
}

inline void twoThreadsAndTwoBatches()
{
    Process process;
    LgQueue& first = process.begin(1);
    LgQueue& second = process.begin(2);
    std::thread writer = process.writer(2);
    std::thread other([&second] { log(second, "no"); });
    log(first, "ab");
    writer.join();
    other.join();
}

inline void queueAgainBesideItsThread()
{
    Process process;
    LgQueue& queue = process.begin(1);
    std::thread writer = process.writer(3);
    log(queue, "ab");
    queue.creatorExit();
    LgQueue& other = process.begin(2);
    log(other, "no");
    writer.join();
}

inline std::vector<Scenario> forLongRun()
{
    return {{"many events", &manyEvents},
            {"two threads and two batches", &twoThreadsAndTwoBatches},
            {"a queue that is used again while its thread ends", &queueAgainBesideItsThread}};
}

} // namespace recoveryScenarios

#endif

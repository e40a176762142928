// Scenarios of the log's reader beside threads that come, log and end.

#ifndef ZU_TESTS_MODEL_READERSCENARIOS_H
#define ZU_TESTS_MODEL_READERSCENARIOS_H

#include "base/lgLog.h"
#include "base/lgQueue.h"
#include "base/lgReader.h"
#include "base/lgRegistry.h"
#include "modelChecker.h"
#include "queueScenarios.h"
#include "scenario.h"

#include <array>
#include <cstddef>
#include <functional>
#include <mutex>
#include <vector>

namespace readerScenarios
{

using Zu::LgQueue;

// A registry for threads that come and go. It is there before a scenario begins, and so has no
// memory of the scenario's.
class Registry : public Zu::LgRegistry
{
public:
    static Registry& instance()
    {
        static auto* const theInstance = new Registry;
        return *theInstance;
    }

    void clear()
    {
        _count = 0;
    }

    bool isEmpty() const
    {
        return _count == 0;
    }

    void registerQueue(LgQueue* queue) override
    {
        const std::lock_guard guard(_mutex);
        _queues.at(_count++) = queue;
    }

    void deregisterQueue(LgQueue* queue) override
    {
        const std::lock_guard guard(_mutex);
        std::size_t kept = 0;
        for (std::size_t i = 0; i < _count; ++i)
            if (_queues.at(i) != queue) _queues.at(kept++) = _queues.at(i);
        _count = kept;
    }

    Zu::List<LgQueue*> getQueueList() const override
    {
        const std::lock_guard guard(_mutex);
        return Zu::List<LgQueue*>(_queues.begin(),
                                  _queues.begin() + static_cast<std::ptrdiff_t>(_count));
    }

private:
    mutable std::mutex _mutex;
    std::array<LgQueue*, model::MAX_THREADS> _queues{};
    std::size_t _count = 0;
};

inline void prepareLogger()
{
    queueScenarios::prepareLibrary();
    if (Zu::LgLog::getRegistry() == &Registry::instance()) return;
    Zu::LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(&Registry::instance()));
}

struct Case
{
    const char* _name;
    // How many events each thread logs.
    std::vector<int> _threads;
    int _looks;
};

// A thread with a queue of its own, which belongs to the reader after its end.
inline void logAndEnd(int events)
{
    auto* const queue = new LgQueue(7);
    Registry::instance().registerQueue(queue);
    queueScenarios::Producer producer(*queue);
    for (int i = 0; i < events; ++i) producer.log(queueScenarios::A);
    queue->creatorExit();
}

inline std::function<void()> reading(const Case& c)
{
    return [&c]
    {
        Registry::instance().clear();
        int waiting = 0;
        for (const int events : c._threads)
        {
            waiting += events;
            model::thread([events] { logAndEnd(events); });
        }
        for (int i = 0; i < c._looks; ++i) waiting -= Zu::LgReader().flushEarliest();
        model::join();
        while (Zu::LgReader().flushEarliest()) --waiting;
        model::require(waiting == 0, "each event is written once");
        model::require(Registry::instance().isEmpty(), "the queues of ended threads are deleted");
    };
}

inline const Case CASES[] = {
    {"reader, one thread", {1}, 2},
    {"reader, a thread of two events", {2}, 2},
    {"reader, two threads", {1, 1}, 2},
};

inline std::vector<Scenario> all()
{
    std::vector<Scenario> scenarios;
    for (const Case& c : CASES) scenarios.push_back({c._name, reading(c)});
    return scenarios;
}

} // namespace readerScenarios

#endif

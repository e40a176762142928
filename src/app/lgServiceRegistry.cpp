#include "app/lgServiceRegistry.h"

namespace Zu
{

// Not 0, so that nobody has seen the first one.
constinit std::atomic<std::uint64_t> LgServiceRegistry::_generation{1};

std::mutex& LgServiceRegistry::mutex()
{
    static std::mutex* const theMutex = new std::mutex;
    return *theMutex;
}

std::vector<LgQueue*>& LgServiceRegistry::queues()
{
    static auto* const theQueues = new std::vector<LgQueue*>;
    return *theQueues;
}

void LgServiceRegistry::registerQueue(LgQueue* queue)
{
    const std::lock_guard guard(mutex());
    queues().push_back(queue);
    _generation.fetch_add(1, std::memory_order_release);
}

void LgServiceRegistry::deregisterQueue(LgQueue* queue)
{
    const std::lock_guard guard(mutex());
    std::erase(queues(), queue);
    _generation.fetch_add(1, std::memory_order_release);
}

List<LgQueue*> LgServiceRegistry::getQueueList() const
{
    const std::lock_guard guard(mutex());
    return {queues().begin(), queues().end()};
}

} // namespace Zu

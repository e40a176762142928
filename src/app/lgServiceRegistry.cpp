#include "app/lgServiceRegistry.h"

namespace Zu
{

std::mutex& LgServiceRegistry::mutex()
{
    static std::mutex* const theMutex = new std::mutex;
    return *theMutex;
}

List<LgQueue*>& LgServiceRegistry::queues()
{
    static auto* const theQueues = new List<LgQueue*>;
    return *theQueues;
}

void LgServiceRegistry::registerQueue(LgQueue* queue)
{
    const std::lock_guard guard(mutex());
    queues().push_back(queue);
}

void LgServiceRegistry::deregisterQueue(LgQueue* queue)
{
    const std::lock_guard guard(mutex());
    queues().remove(queue);
}

List<LgQueue*> LgServiceRegistry::getQueueList() const
{
    const std::lock_guard guard(mutex());
    return queues();
}

} // namespace Zu

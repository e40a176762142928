#include "app/lgServiceRegistry.h"

namespace Zu
{

std::mutex& LgServiceRegistry::mutex()
{
    static std::mutex* const theMutex = new std::mutex;
    return *theMutex;
}

void LgServiceRegistry::registerQueue(LgQueue* queue)
{
    const std::lock_guard guard(mutex());
    _queues.push_back(queue);
}

void LgServiceRegistry::deregisterQueue(LgQueue* queue)
{
    const std::lock_guard guard(mutex());
    _queues.remove(queue);
}

List<LgQueue*> LgServiceRegistry::getQueueList() const
{
    const std::lock_guard guard(mutex());
    return _queues;
}

} // namespace Zu

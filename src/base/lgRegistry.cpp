#include "base/lgRegistry.h"

namespace Zu
{

LgRegistry::~LgRegistry() = default;

LgSimpleRegistry::~LgSimpleRegistry() = default;

void LgSimpleRegistry::registerQueue(LgQueue* queue)
{
    _queues.push_back(queue);
}

void LgSimpleRegistry::deregisterQueue(LgQueue* queue)
{
    _queues.remove(queue);
}

List<LgQueue*> LgSimpleRegistry::getQueueList() const
{
    return _queues;
}

} // namespace Zu

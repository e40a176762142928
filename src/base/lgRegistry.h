/// @file
/// The list of queues that the log reader serves.

#ifndef ZU_BASE_LGREGISTRY_H
#define ZU_BASE_LGREGISTRY_H

#include "baseApi.h"
#include "containers.h"

namespace Zu
{

class LgQueue;

/// Where the queues of a process are registered for the log reader. It owns none of them.
class ZU_BASE_API LgRegistry
{
public:
    LgRegistry() = default;
    LgRegistry(const LgRegistry&) = default;
    LgRegistry& operator=(const LgRegistry&) = default;
    virtual ~LgRegistry();

    /// Appends a queue to the list.
    virtual void registerQueue(LgQueue* queue) = 0;

    /// Removes a queue.
    virtual void deregisterQueue(LgQueue* queue) = 0;

    /// The queues, in order of registration.
    virtual List<LgQueue*> getQueueList() const = 0;
};

/// The registry of a process whose queues come and go only while no reader runs.
///
/// Thread-safety: none. If threads come and go while a reader runs, the registry must guard its
/// three operations; the application kit has such a registry.
class ZU_BASE_API LgSimpleRegistry : public LgRegistry
{
public:
    ~LgSimpleRegistry() override;

    /// Appends the queue, even if it is already registered.
    void registerQueue(LgQueue* queue) override;

    /// Removes every occurrence of the queue; does nothing if it is not registered.
    void deregisterQueue(LgQueue* queue) override;

    List<LgQueue*> getQueueList() const override;

private:
    List<LgQueue*> _queues;
};

} // namespace Zu

#endif

/// @file
/// The list of queues that the log reader looks at.

#ifndef ZU_BASE_LGREGISTRY_H
#define ZU_BASE_LGREGISTRY_H

#include "baseApi.h"
#include "containers.h"

namespace Zu
{

class LgQueue;

/// Where the queues of a process are entered for the log reader. It owns none of them.
class ZU_BASE_API LgRegistry
{
public:
    LgRegistry() = default;
    LgRegistry(const LgRegistry&) = default;
    LgRegistry& operator=(const LgRegistry&) = default;
    virtual ~LgRegistry();

    /// Enters a queue, behind those that are there.
    virtual void registerQueue(LgQueue* queue) = 0;

    /// Takes a queue out.
    virtual void deregisterQueue(LgQueue* queue) = 0;

    /// The queues, in the order in which they were entered.
    virtual List<LgQueue*> getQueueList() const = 0;
};

/// The registry of a process whose queues come and go only while no reader runs.
///
/// Thread-safety: none. Threads that come and go beside a reader need a registry that guards its
/// three operations; the application kit has one.
class ZU_BASE_API LgSimpleRegistry : public LgRegistry
{
public:
    ~LgSimpleRegistry() override;

    /// Enters the queue, once more if it is there.
    void registerQueue(LgQueue* queue) override;

    /// Takes the queue out wherever it stands; nothing if it is not there.
    void deregisterQueue(LgQueue* queue) override;

    List<LgQueue*> getQueueList() const override;

private:
    List<LgQueue*> _queues;
};

} // namespace Zu

#endif

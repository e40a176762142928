/// @file
/// The registry of queues of threads that come and go. Internal to the application kit.

#ifndef ZU_APP_LGSERVICEREGISTRY_H
#define ZU_APP_LGSERVICEREGISTRY_H

#include "../base/containers.h"
#include "../base/lgRegistry.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

namespace Zu
{

/// A registry whose operations any thread may call at any time. All objects share one list, which
/// lives as long as the process: a logger that is started anew destroys the object, but no queue is
/// forgotten.
class LgServiceRegistry : public LgRegistry
{
public:
    void registerQueue(LgQueue* queue) override;
    void deregisterQueue(LgQueue* queue) override;
    List<LgQueue*> getQueueList() const override;

    /// Changes whenever the list does. Whoever has seen a list keeps it as long as this stays the
    /// same; read it first.
    static std::uint64_t getGeneration()
    {
        return _generation.load(std::memory_order_acquire);
    }

    /// The mutex of all objects of this class; a fork locks it first, so that the child finds it
    /// usable. It lives as long as the process.
    static std::mutex& mutex();

    /// The shared list; the caller must hold mutex().
    static std::vector<LgQueue*>& queues();

    /// Calls a function with each queue of the shared list. Takes no memory, unlike a copy of the
    /// list; threads that come wait meanwhile.
    template <class Function> static void forEachQueue(Function function)
    {
        const std::lock_guard guard(mutex());
        for (LgQueue* const queue : queues()) function(queue);
    }

private:
    static std::atomic<std::uint64_t> _generation;
};

} // namespace Zu

#endif

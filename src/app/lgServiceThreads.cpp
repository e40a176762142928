#include "app/lgServiceThreads.h"

#include "app/lgServicePlatform.h"
#include "app/lgServiceRegistry.h"
#include "app/threadSlot.h"
#include "base/exBase.h"
#include "base/lgLog.h"
#include "base/lgReader.h"
#include "base/osUtils.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

namespace Zu
{

namespace
{

class ServiceObserver : public LgQueue::Observer
{
public:
    explicit ServiceObserver(LgServiceThreads& threads) : _threads(threads) {}

    void entryAdded(LgQueue&) override
    {
        _threads.news().ring();
    }

    void entryRemoved(LgQueue&) override
    {
        _threads.room().ring();
    }

    void waitForSpace(const LgQueue& queue, int size) override
    {
        _threads.waitForSpace(queue, size);
    }

private:
    LgServiceThreads& _threads;
};

LgBell::Barrier barrier()
{
    return LgServicePlatform::prepareBarrier() ? &LgServicePlatform::barrier : nullptr;
}

// Takes all events out of a queue, unwritten. Only for a process with a single thread, whose stack
// may be small.
void dropEvents(LgQueue& queue)
{
    static char text[LgStream::BufSize];
    // An overflow entry has no text; this takes the next one's then, or nothing.
    for (; !queue.isEmpty(); queue.removeEntry()) queue.getStream().take(text);
}

bool hasSpace(const LgQueue& queue, int size)
{
    return !queue.isFull() && queue.getStream().getNumCharacters() >= static_cast<unsigned>(size);
}

// The logger's registry if a service has installed it. The default one must not get queues while a
// reader runs.
LgServiceRegistry* serviceRegistry()
{
    return dynamic_cast<LgServiceRegistry*>(LgLog::getRegistry());
}

} // namespace

LgServiceThreads& LgServiceThreads::instance()
{
    static LgServiceThreads* const theInstance = new LgServiceThreads;
    return *theInstance;
}

LgServiceThreads::LgServiceThreads() : _news(barrier()), _room(barrier())
{
    ThreadSlot::setThreadEnded(ThreadSlot::Queue, [](void* queue)
                               { instance().threadEnded(static_cast<LgQueue*>(queue)); });
    LgServicePlatform::onFork([] { instance().lockForFork(); },
                              [] { instance().unlockAfterFork(); },
                              [] { instance().goOnInChild(); });
}

LgServiceThreads::~LgServiceThreads() = default;

LgQueue* LgServiceThreads::queueOfThread()
{
    if (void* const queue = ThreadSlot::get(ThreadSlot::Queue)) return static_cast<LgQueue*>(queue);
    return instance().makeQueue();
}

LgQueue* LgServiceThreads::makeQueue()
{
    auto queue = std::make_unique<LgQueue>(OsUtils::getThreadId());
    queue->changeObserver(ObjPtr<LgQueue::Observer>(new ServiceObserver(*this)));
    const std::lock_guard guard(_mutex);
    _queues.push_back(queue.get());
    try
    {
        ThreadSlot::set(ThreadSlot::Queue, queue.get());
        // Last: from here on a reader may look at it.
        LgServiceRegistry().registerQueue(queue.get());
    }
    catch (...)
    {
        _queues.remove(queue.get());
        if (ThreadSlot::get(ThreadSlot::Queue)) ThreadSlot::set(ThreadSlot::Queue, nullptr);
        throw;
    }
    return queue.release();
}

void LgServiceThreads::threadEnded(LgQueue* queue)
{
    {
        const std::lock_guard guard(_mutex);
        _queues.remove(queue);
        _lostOfEnded += queue->getLostCount();
        // From here on the queue is the reader's, which deletes it. Without a service it waits for
        // the next one.
        queue->creatorExit();
    }
    if (isRunning()) _news.ring();
}

void LgServiceThreads::start()
{
    const std::lock_guard guard(_mutex);
    if (!serviceRegistry()) LgLog::setRegistry(ObjPtr<LgRegistry>(new LgServiceRegistry));
    // They may be in a registry of the application's own that is gone by now.
    const List<LgQueue*> entered = serviceRegistry()->getQueueList();
    for (LgQueue* const queue : _queues)
        if (std::find(entered.begin(), entered.end(), queue) == entered.end())
            serviceRegistry()->registerQueue(queue);
    _running.store(true, std::memory_order_release);
}

void LgServiceThreads::stop()
{
    _running.store(false, std::memory_order_release);
    _room.ring();
}

std::uint64_t LgServiceThreads::getLostCount()
{
    const std::lock_guard guard(_mutex);
    std::uint64_t count = _lostOfEnded;
    for (const LgQueue* const queue : _queues) count += queue->getLostCount();
    return count;
}

bool LgServiceThreads::isWorkWaiting()
{
    const std::lock_guard guard(_reading);
    const List<LgQueue*> queues = LgLog::getRegistry()->getQueueList();
    return std::any_of(queues.begin(), queues.end(),
                       [](const LgQueue* queue)
                       { return !queue->isEmpty() || !queue->isCreatorAlive(); });
}

bool LgServiceThreads::isWaitOver(const LgQueue& queue, int size) const
{
    return hasSpace(queue, size) || !isRunning();
}

void LgServiceThreads::waitForSpace(const LgQueue& queue, int size)
{
    while (!hasSpace(queue, size))
    {
        if (isRunning())
        {
            _room.listen([&] { return isWaitOver(queue, size); }, _patience);
            continue;
        }
        // The service has ended between the caller's check and its event: nobody else will read.
        if (!writeOne()) return;
    }
}

// False if there is no event. A failing lock is tried again, as the service does.
bool LgServiceThreads::writeOne()
{
    for (int tries = 1;; ++tries)
    {
        try
        {
            const std::lock_guard guard(_reading);
            return LgReader().flushEarliest();
        }
        catch (const ExBase&)
        {
            if (tries == LAST_TRIES) throw;
            std::this_thread::sleep_for(PAUSE);
        }
    }
}

void LgServiceThreads::lockForFork()
{
    _reading.lock();
    _mutex.lock();
    LgServiceRegistry::mutex().lock();
}

void LgServiceThreads::unlockAfterFork()
{
    LgServiceRegistry::mutex().unlock();
    _mutex.unlock();
    _reading.unlock();
}

// The child of a process with a service has no reader: its events go to standard output.
void LgServiceThreads::goOnInChild()
{
    // The child of such a child counts as well.
    _isForked = _isForked || isRunning();
    if (_isForked) LgLog::setLoggerActivation(false);
    _running.store(false, std::memory_order_release);
    _news.beginAnewInChild();
    _room.beginAnewInChild();
    unlockAfterFork();
    leaveEventsToParent();
}

// What waited at the fork is written by the parent only. The child has a single thread; the queues
// of the others belong to the next reader. Nothing is locked: queues of the application may be
// among them, whose observers are notified and may log.
void LgServiceThreads::leaveEventsToParent()
{
    const List<LgQueue*> registered = LgServiceRegistry::queues();
    for (LgQueue* const queue : registered) dropEvents(*queue);
    const void* const own = ThreadSlot::get(ThreadSlot::Queue);
    _queues.remove_if(
        [this, own](LgQueue* queue)
        {
            dropEvents(*queue);
            if (queue == own) return false;
            _lostOfEnded += queue->getLostCount();
            queue->creatorExit();
            return true;
        });
}

} // namespace Zu

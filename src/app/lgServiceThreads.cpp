#include "app/lgServiceThreads.h"

#include "app/lgServiceLog.h"
#include "app/lgServicePlatform.h"
#include "app/lgServiceRegistry.h"
#include "app/threadSlot.h"
#include "base/compiler.h"
#include "base/exBase.h"
#include "base/hwCounter.h"
#include "base/lgLog.h"
#include "base/lgReader.h"
#include "base/osUtils.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>
#include <typeinfo>
#include <vector>

namespace Zu
{

namespace
{

class ServiceObserver : public LgQueue::Observer
{
public:
    explicit ServiceObserver(LgServiceThreads& threads) : _threads(threads) {}

    void entryAdded(LgQueue& queue) override
    {
        if (_threads.news().isWorthRinging()) _threads.entryAdded(queue);
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

// Calls a function with each queue of the logger's registry. Another kind of registry, or one that
// is derived, may have a list of its own.
template <class Function> void forEachQueue(Function function)
{
    const LgRegistry& registry = *LgLog::getRegistry();
    if (typeid(registry) == typeid(LgServiceRegistry))
        return LgServiceRegistry::forEachQueue(function);
    for (LgQueue* const queue : registry.getQueueList()) function(queue);
}

} // namespace

LgServiceThreads& LgServiceThreads::instance()
{
    static LgServiceThreads* const theInstance = new LgServiceThreads;
    return *theInstance;
}

LgServiceThreads::LgServiceThreads() : _news(barrier()), _room(barrier()), _written(barrier())
{
    ThreadSlot::setThreadEnded(ThreadSlot::Queue, [](void* queue)
                               { instance().threadEnded(static_cast<LgQueue*>(queue)); });
    LgServicePlatform::onFork([] { instance().lockForFork(); },
                              [] { instance().unlockAfterFork(); },
                              [] { instance().goOnInChild(); });
}

LgServiceThreads::~LgServiceThreads() = default;

// Enters a wait for as long as its thread waits.
class LgServiceThreads::WaitEntry
{
public:
    WaitEntry(LgServiceThreads& threads, Wait& wait) : _threads(threads), _wait(wait)
    {
        const std::lock_guard guard(_threads._waitMutex);
        _threads._waits.push_back(&_wait);
        _threads.noteWaits();
    }
    ~WaitEntry()
    {
        const std::lock_guard guard(_threads._waitMutex);
        _threads._waits.remove(&_wait);
        _threads.noteWaits();
    }
    WaitEntry(const WaitEntry&) = delete;
    WaitEntry& operator=(const WaitEntry&) = delete;

private:
    LgServiceThreads& _threads;
    Wait& _wait;
};

LgQueue* LgServiceThreads::queueOfThread()
{
    if (void* const queue = ThreadSlot::get(ThreadSlot::Queue)) return static_cast<LgQueue*>(queue);
    return firstQueueOfThread();
}

// Not inlined: otherwise each event would save registers for it.
ZU_NEVER_INLINE LgQueue* LgServiceThreads::firstQueueOfThread()
{
    return instance().makeQueue();
}

LgQueue* LgServiceThreads::makeQueue()
{
    auto observer = std::make_unique<ServiceObserver>(*this);
    const std::uint32_t thread = OsUtils::getThreadId();
    std::unique_ptr<LgQueue, void (*)(LgQueue*)> queue(_map.makeQueue(thread, observer.get()),
                                                       &LgQueue::end);
    queue->changeObserver(ObjPtr<LgQueue::Observer>(observer.release()));
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

void LgServiceThreads::start(const LgServiceMap::Settings& settings)
{
    _map.begin(settings);
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

// The threads can't end meanwhile, and so the reader does not delete their queues.
std::vector<const LgQueue*> LgServiceThreads::addHealth(LgServiceHealth& health)
{
    const std::lock_guard guard(_mutex);
    for (const LgQueue* const queue : _queues)
    {
        const std::uint32_t waiting = queue->getWaitingCount();
        health._waiting += waiting;
        health._queues.push_back(
            {queue->getThreadId(), queue->getNumEntries(), waiting, 0, queue->getLostCount()});
    }
    return {_queues.begin(), _queues.end()};
}

std::uint64_t LgServiceThreads::getLostCount()
{
    const std::lock_guard guard(_mutex);
    std::uint64_t count = _lostOfEnded;
    for (const LgQueue* const queue : _queues) count += queue->getLostCount();
    return count;
}

bool LgServiceThreads::isWrittenUpTo(std::uint64_t time)
{
    return findEarliestWaiting() > time;
}

std::uint64_t LgServiceThreads::findEarliestWaiting()
{
    std::uint64_t earliest = NOTHING_WAITS;
    forEachQueue(
        [&earliest](const LgQueue* queue)
        {
            if (!queue->isEmpty()) earliest = std::min(earliest, queue->readEntry().getTimeStamp());
        });
    return earliest;
}

bool LgServiceThreads::isWorkWaiting()
{
    if (_hasWaits.load(std::memory_order_acquire)) return true;
    const std::lock_guard guard(_reading);
    bool isWaiting = false;
    forEachQueue([&isWaiting](const LgQueue* queue)
                 { isWaiting = isWaiting || !queue->isEmpty() || !queue->isCreatorAlive(); });
    return isWaiting;
}

std::chrono::steady_clock::time_point LgServiceThreads::endOf(std::chrono::milliseconds timeout)
{
    constexpr std::chrono::milliseconds LONGEST = std::chrono::hours(24 * 365);
    return std::chrono::steady_clock::now() +
           std::clamp(timeout, std::chrono::milliseconds(0), LONGEST);
}

bool LgServiceThreads::waitUntilWritten(std::uint64_t time, std::chrono::milliseconds timeout)
{
    using Clock = std::chrono::steady_clock;
    {
        // The reader may be busy for long, and so it is asked, further down. Nobody may be reading.
        const std::unique_lock free(_reading, std::try_to_lock);
        if (free && isWrittenUpTo(time)) return true;
    }
    const Clock::time_point end = endOf(timeout);
    Wait wait{time};
    const auto isOver = [&wait] { return wait._isOver.load(std::memory_order_acquire); };
    const WaitEntry entry(*this, wait);
    _news.ring();
    while (!isOver())
    {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0) return false;
        _written.listen(isOver, std::min(left, _patience));
    }
    return true;
}

void LgServiceThreads::drain() noexcept
{
    // Processors may read the counter a little before what stands in front of it is done.
    constexpr std::uint64_t MARGIN = 10'000;
    const std::chrono::milliseconds limit(_endLimit.load(std::memory_order_relaxed));
    if (isRunning() && !isWriter()) tryToWaitUntilWritten(HwCounter::timeStamp() + MARGIN, limit);
}

// What is not written stays in the map.
bool LgServiceThreads::tryToWaitUntilWritten(std::uint64_t time,
                                             std::chrono::milliseconds timeout) noexcept
{
    try
    {
        return waitUntilWritten(time, timeout);
    }
    catch (const std::exception&)
    {
        return false;
    }
}

void LgServiceThreads::setWaiting(const Waiting& waiting)
{
    _waitLevels.store(waiting._levels, std::memory_order_relaxed);
    _flushLevel.store(waiting._flushLevel, std::memory_order_relaxed);
    _waitLimit.store(waiting._limit.count(), std::memory_order_relaxed);
    _isFailing.store(false, std::memory_order_relaxed);
    _isWaitVain.store(false, std::memory_order_relaxed);
    _news.setMark(waiting._flushLevel >= 0);
}

// Who has waited in vain must not wait again with each event: then a disk that hangs would stop the
// program.
bool LgServiceThreads::mayWait() const
{
    return isRunning() && !_isFailing.load(std::memory_order_relaxed) &&
           !_isWaitVain.load(std::memory_order_relaxed) && !isWriter();
}

bool LgServiceThreads::waitForRoom(LgQueue& queue, LgTypes::Level level)
{
    // Queues of the application are its own.
    if (ThreadSlot::get(ThreadSlot::Queue) != &queue) return false;
    return instance().waitUntil([&queue] { return queue.canReserve(); }, level);
}

void LgServiceThreads::waitForTextRoom(LgStream& stream, std::size_t length)
{
    auto* const queue = static_cast<LgQueue*>(ThreadSlot::get(ThreadSlot::Queue));
    if (!queue || &queue->getStream() != &stream) return;
    instance().waitUntil([&stream, length] { return stream.hasRoomFor(length); },
                         queue->getReservedEntry().getLevel());
}

template <class HasRoom> bool LgServiceThreads::waitUntil(HasRoom hasRoom, LgTypes::Level level)
{
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::microseconds FIRST_PAUSE{20};
    constexpr std::chrono::microseconds LONGEST_PAUSE{1000};
    if (((_waitLevels.load(std::memory_order_relaxed) >> level) & 1) == 0) return false;
    const Clock::time_point end =
        Clock::now() + std::chrono::milliseconds(_waitLimit.load(std::memory_order_relaxed));
    for (auto pause = FIRST_PAUSE; mayWait(); pause = std::min(2 * pause, LONGEST_PAUSE))
    {
        if (hasRoom()) return true;
        if (Clock::now() >= end)
        {
            _isWaitVain.store(true, std::memory_order_relaxed);
            return false;
        }
        std::this_thread::sleep_for(pause);
    }
    return hasRoom();
}

void LgServiceThreads::entryAdded(const LgQueue& queue) noexcept
{
    if (!_news.ring()) return;
    const LgQueue::Entry& entry = queue.getAddedEntry();
    if (entry.getLevel() > _flushLevel.load(std::memory_order_relaxed) || !mayWait()) return;
    const std::chrono::milliseconds limit(_waitLimit.load(std::memory_order_relaxed));
    if (!tryToWaitUntilWritten(entry.getTimeStamp(), limit))
        _isWaitVain.store(true, std::memory_order_relaxed);
}

void LgServiceThreads::leaveNothing() noexcept
{
    if (!isRunning()) _map.removeFileIfEmpty();
}

// With the mutex of the waits locked.
void LgServiceThreads::noteWaits()
{
    const bool hasWaits = std::any_of(_waits.begin(), _waits.end(),
                                      [](const Wait* wait)
                                      { return !wait->_isOver.load(std::memory_order_relaxed); });
    _hasWaits.store(hasWaits, std::memory_order_release);
}

// The look at the queues comes after the lock: the events of all who wait are published by then.
void LgServiceThreads::endWaitsUntilWritten(std::uint64_t waiting)
{
    if (!_hasWaits.load(std::memory_order_acquire)) return;
    {
        const std::lock_guard guard(_waitMutex);
        const auto mayBeOver = [waiting](const Wait* wait) { return wait->_time < waiting; };
        if (std::none_of(_waits.begin(), _waits.end(), mayBeOver)) return;
        const std::uint64_t earliest = std::min(waiting, findEarliestWaiting());
        for (Wait* const wait : _waits)
            // The release pairs with the acquire of the thread that waits: its events are written.
            if (wait->_time < earliest) wait->_isOver.store(true, std::memory_order_release);
        noteWaits();
    }
    _written.ring();
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

// False if there is no event and no service. A failing lock is tried again, as the service does.
bool LgServiceThreads::writeOne()
{
    for (int tries = 1;; ++tries)
    {
        try
        {
            const std::lock_guard guard(_reading);
            // A service that has begun meanwhile may be in the middle of what a look has found.
            if (isRunning()) return true;
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
    _waitMutex.lock();
    LgServiceRegistry::mutex().lock();
    _map.mutex().lock();
    // The child completes the statement, too. It can't look for itself: the parent goes on in
    // memory that both see until the child has replaced it.
    const auto* const own = static_cast<const LgQueue*>(ThreadSlot::get(ThreadSlot::Queue));
    _kept = own && own->isInserting() ? own : nullptr;
    _map.keepForChild(_kept);
}

void LgServiceThreads::unlockAfterFork()
{
    _map.forgetKept();
    _map.mutex().unlock();
    LgServiceRegistry::mutex().unlock();
    _waitMutex.unlock();
    _mutex.unlock();
    _reading.unlock();
}

// The child of a process with a service has no reader: its events go to standard output.
void LgServiceThreads::goOnInChild()
{
    // The child of such a child counts as well.
    _isForked = _isForked || isRunning();
    ++_forks;
    // First of all: what the parent's threads do must not be seen from here on.
    _map.leaveInChild();
    _waiting.leaveInChild();
    // What waits for a file that fails is the parent's to write.
    for (int level = 0; level < LgTypes::NUM_LEVELS; ++level)
    {
        std::ostream* const stream = LgLog::getLevelOutput(static_cast<LgTypes::Level>(level));
        if (auto* const log = dynamic_cast<LgServiceLog*>(stream)) log->takeWaiting();
    }
    if (_isForked) LgLog::setLoggerActivation(false);
    _running.store(false, std::memory_order_release);
    _news.beginAnewInChild();
    _room.beginAnewInChild();
    // Their threads are not here.
    _written.beginAnewInChild();
    _waits.clear();
    _hasWaits.store(false, std::memory_order_relaxed);
    unlockAfterFork();
    leaveEventsToParent();
}

// What waited at the fork is written by the parent only. The child has a single thread; the queues
// of the others belong to the next reader. Nothing is locked: queues of the application may be
// among them, whose observers are notified and may log.
void LgServiceThreads::leaveEventsToParent()
{
    const std::vector<LgQueue*> registered = LgServiceRegistry::queues();
    for (LgQueue* const queue : registered) dropEvents(*queue);
    // Unless it is in the middle of a statement, the thread gets a new queue with its next event.
    if (!_kept && ThreadSlot::get(ThreadSlot::Queue)) ThreadSlot::set(ThreadSlot::Queue, nullptr);
    _queues.remove_if(
        [this](LgQueue* queue)
        {
            dropEvents(*queue);
            if (queue == _kept) return false;
            _lostOfEnded += queue->getLostCount();
            queue->creatorExit();
            return true;
        });
}

} // namespace Zu

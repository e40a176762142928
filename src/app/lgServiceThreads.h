/// @file
/// The queues of the threads that log. Internal to the application kit.

#ifndef ZU_APP_LGSERVICETHREADS_H
#define ZU_APP_LGSERVICETHREADS_H

#include "../base/lgQueue.h"
#include "lgBell.h"
#include "lgServiceHealth.h"
#include "lgServiceMap.h"
#include "lgServiceWaiting.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <list>
#include <mutex>
#include <thread>
#include <vector>

namespace Zu
{

/// Gives every thread a queue of its own, from its first event to its end, so it does not matter
/// whether a thread or a service comes first. There is one object, which lives as long as the
/// process: threads may log and end at any time, even when no service runs any more.
class LgServiceThreads
{
public:
    static LgServiceThreads& instance();

    LgServiceThreads(const LgServiceThreads&) = delete;
    LgServiceThreads& operator=(const LgServiceThreads&) = delete;

    /// The calling thread's queue; the logger's queue function while a service runs and after it.
    static LgQueue* queueOfThread();

    /// Begins a service: the logger gets a thread-safe registry that contains the queues of all
    /// threads, and the queues of threads to come are made in the map.
    void start(const LgServiceMap::Settings& settings = LgServiceMap::Settings());

    /// Ends a service: from here on a producer that waits for room makes room itself.
    void stop();

    bool isRunning() const
    {
        return _running.load(std::memory_order_acquire);
    }

    /// Whether this process is the child of one in which a service ran at the fork.
    bool isForked() const
    {
        return _isForked;
    }

    /// How many forks lie between the first process and this one.
    int getForks() const
    {
        return _forks;
    }

    /// Where the queues are.
    LgServiceMap& map()
    {
        return _map;
    }

    /// What keeps there the lines that wait for files that fail.
    LgServiceWaiting& waiting()
    {
        return _waiting;
    }

    /// Enters the queues of living threads, and what is waiting in them. Returns which they are;
    /// they may be deleted afterwards.
    std::vector<const LgQueue*> addHealth(LgServiceHealth& health);

    /// How many events all threads of the process have lost.
    std::uint64_t getLostCount();

    /// Rung when an event was published or a thread has ended.
    LgBell& news()
    {
        return _news;
    }

    /// Rung when an event was taken from a queue.
    LgBell& room()
    {
        return _room;
    }

    /// To be held while reading events or looking at the queues of other threads, since a reader
    /// deletes queues; a fork waits until it is free.
    std::mutex& reading()
    {
        return _reading;
    }

    /// Whether a reader has something to do: an event is waiting, or there is the queue of a thread
    /// that has ended. Locks reading(). Raises what the registry raises.
    bool isWorkWaiting();

    /// Whether no event of this time or an earlier one is waiting. For a thread that holds
    /// reading(). Raises what the registry raises.
    static bool isWrittenUpTo(std::uint64_t time);

    /// When a wait ends that begins now; a timeout below 0 counts as 0, an endless one as a year.
    static std::chrono::steady_clock::time_point endOf(std::chrono::milliseconds timeout);

    /// Waits until no event of this time or an earlier one is waiting, in ticks of
    /// HwCounter::timeStamp(); false if the timeout expires first. Raises what the registry raises.
    bool waitUntilWritten(std::uint64_t time, std::chrono::milliseconds timeout);

    /// Later than the time of any event.
    static constexpr std::uint64_t NOTHING_WAITS = ~std::uint64_t{0};

    /// Ends the waits that are over. For the reader, which holds reading(). `waiting` is the time
    /// of an event that is known to wait: those who wait for this one or a later one need no look
    /// at the queues. Raises what the registry raises.
    void endWaitsUntilWritten(std::uint64_t waiting = NOTHING_WAITS);

    /// How long drain() waits at most.
    void setEndLimit(std::chrono::milliseconds limit)
    {
        _endLimit.store(limit.count(), std::memory_order_relaxed);
    }

    /// How statements wait.
    struct Waiting
    {
        /// The levels, as bits, whose events wait for room instead of being lost.
        std::uint32_t _levels = 0;
        /// Events of this level or a more severe one wait until they are written; -1 for none.
        int _flushLevel = -1;
        /// How long a statement waits at most.
        std::chrono::milliseconds _limit{1000};
    };

    /// Sets how statements wait while a service runs. For phases without a service.
    void setWaiting(const Waiting& waiting);

    /// For the reader: whether what it writes is failing. Then no statement waits, or goes on
    /// waiting.
    void setFailing(bool isFailing)
    {
        _isFailing.store(isFailing, std::memory_order_relaxed);
    }

    /// For the reader: something was written, so waiting makes sense again after a wait in vain.
    void endVainWaits()
    {
        if (_isWaitVain.load(std::memory_order_relaxed))
            _isWaitVain.store(false, std::memory_order_relaxed);
    }

    /// The logger's room function: waits until the queue has room for an event, if events of this
    /// level wait. Returns whether it has. Only short sleeps and looks at the clock, no locks.
    static bool waitForRoom(LgQueue& queue, LgTypes::Level level);

    /// The streams' room function: the same for the text of an event that has room itself.
    static void waitForTextRoom(LgStream& stream, std::size_t length);

    /// For the thread that has published an event: wakes the reader if it sleeps, and waits until
    /// the event is written if events of its level do.
    void entryAdded(const LgQueue& queue) noexcept;

    /// Waits until all that was logged so far is written, or the end limit is over. Does nothing
    /// without a service, and on the thread that writes.
    void drain() noexcept;

    /// For the end of the process: without a service, removes the file with the queues if nothing
    /// waits in it. With one it stays, for what is logged until the very end.
    void leaveNothing() noexcept;

    /// Sets which thread writes.
    void setWriter(std::thread::id id)
    {
        _writer.store(id, std::memory_order_relaxed);
    }

    /// Whether the calling thread is the one that writes. May be called in a signal handler.
    bool isWriter() const noexcept
    {
        return _writer.load(std::memory_order_relaxed) == std::this_thread::get_id();
    }

    /// Waits until the queue has room for `size` characters; called by the producer.
    void waitForSpace(const LgQueue& queue, int size);

    /// Whether that wait is over: there is room, or no service runs any more that would make room.
    bool isWaitOver(const LgQueue& queue, int size) const;

    /// The longest time that a thread sleeps, should a wake-up ever get lost.
    std::chrono::milliseconds getPatience() const
    {
        return _patience;
    }

    /// For tests, while nobody sleeps: with an endless sleep a lost wake-up becomes visible.
    void setPatience(std::chrono::milliseconds patience)
    {
        _patience = patience;
    }

    /// The default of getPatience(). No lost wake-up is known; this limits the delay if one occurs.
    static constexpr std::chrono::milliseconds PATIENCE{250};

    /// The pause after a failing lock, and the number of tries at the end of the service.
    static constexpr std::chrono::milliseconds PAUSE{20};
    static constexpr int LAST_TRIES = 50;

private:
    // One that waits until the events up to a time are written.
    struct Wait
    {
        std::uint64_t _time;
        std::atomic<bool> _isOver{false};
    };

    class WaitEntry;

    LgServiceThreads();
    ~LgServiceThreads();

    static LgQueue* firstQueueOfThread();
    LgQueue* makeQueue();
    static std::uint64_t findEarliestWaiting();
    bool mayWait() const;
    template <class HasRoom> bool waitUntil(HasRoom hasRoom, LgTypes::Level level);
    bool tryToWaitUntilWritten(std::uint64_t time, std::chrono::milliseconds timeout) noexcept;
    bool writeOne();
    void noteWaits();
    void threadEnded(LgQueue* queue);
    void lockForFork();
    void unlockAfterFork();
    void goOnInChild();
    void leaveEventsToParent();

    std::mutex _mutex;
    // The queues of living threads. A reader deletes all others.
    std::list<LgQueue*> _queues;
    std::uint64_t _lostOfEnded = 0;
    bool _isForked = false;
    int _forks = 0;
    // The queue of the thread that forks, if it is in the middle of a statement.
    const LgQueue* _kept = nullptr;
    LgServiceMap _map;
    LgServiceWaiting _waiting{_map};
    std::atomic<bool> _running{false};
    std::atomic<std::int64_t> _endLimit{5000};
    std::atomic<std::uint32_t> _waitLevels{0};
    std::atomic<int> _flushLevel{-1};
    std::atomic<std::int64_t> _waitLimit{1000};
    std::atomic<bool> _isFailing{false};
    // After a wait whose time was over: nobody waits until something is written.
    std::atomic<bool> _isWaitVain{false};
    std::atomic<std::thread::id> _writer{};
    std::chrono::milliseconds _patience{PATIENCE};
    std::mutex _reading;
    // The waits of waitUntilWritten(), on the stacks of its callers; whether one is not over.
    std::mutex _waitMutex;
    std::list<Wait*> _waits;
    std::atomic<bool> _hasWaits{false};
    LgBell _news;
    LgBell _room;
    LgBell _written;
};

} // namespace Zu

#endif

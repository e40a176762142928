/// @file
/// The queue of log events from one thread to the reader.

#ifndef ZU_BASE_LGQUEUE_H
#define ZU_BASE_LGQUEUE_H

#include "baseApi.h"
#include "lgRingIndex.h"
#include "lgStream.h"
#include "lgTypes.h"
#include "objPtr.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace Zu
{

/// Carries log events from one producing thread to one reading thread. It never blocks the
/// producer, allocates nothing after its construction and takes no lock. 1,024 entries hold levels
/// and time stamps, an LgStream their texts in the same order: one entry, one string. An event that
/// finds no room in either is lost, and an overflow entry in its place counts a burst of losses.
///
/// A broken rule of the queue is fatal.
///
/// Thread-safety: exactly two actors, of which each calls only what is said to be its own: the
/// producer and the reader. Each index has one writer; moving it is a release that pairs with the
/// other side's acquire, so an entry and its text are complete before they can be seen, and the
/// reader is done with a slot before it is used again. Copies share both rings.
class ZU_BASE_API LgQueue
{
public:
    /// One event, or a burst of lost ones.
    class ZU_BASE_API Entry
    {
    public:
        Entry() = default;

        /// Whether this stands for lost events.
        bool isOverflowEntry() const
        {
            return _oflow;
        }

        /// How many events were lost, as far as the entry knows: losses that meet the reader are
        /// missing, and a slot that bears the mark of an earlier use keeps its count. The exact
        /// total is LgQueue::getLostCount(). Asserts "_oflow".
        std::int32_t getOverflowCount() const;

        /// The event's level. Asserts "!_oflow".
        LgTypes::Level getLevel() const;

        /// In ticks of HwCounter::timeStamp(): when the event was reserved, or the first one lost.
        std::uint64_t getTimeStamp() const
        {
            return _timeStamp;
        }

        /// Makes this an overflow entry with the count 1 or an event of level Tracing; nothing if
        /// it is of that kind already.
        void setOverflowEntry(bool oflow);

        /// Counts one more lost event. Asserts "_oflow".
        void incOverflowCount();

        /// Asserts "!_oflow".
        void setLevel(LgTypes::Level level);

        /// In ticks of HwCounter::timeStamp().
        void setTimeStamp(std::uint64_t timeStamp)
        {
            _timeStamp = timeStamp;
        }

    private:
        bool _oflow = false;
        // The level or the count. A count may grow while the reader looks at it.
        std::atomic<std::int32_t> _value{LgTypes::InternalError};
        std::uint64_t _timeStamp = 0;
    };

    /// Is told of what happens to a queue. Owned by it.
    class ZU_BASE_API Observer
    {
    public:
        Observer() = default;
        Observer(const Observer&) = delete;
        Observer& operator=(const Observer&) = delete;
        virtual ~Observer();

        /// An event was published; called by the producer.
        virtual void entryAdded(LgQueue& queue) = 0;

        /// An event was removed; called by the reader.
        virtual void entryRemoved(LgQueue& queue) = 0;

        /// Waits until there is room for `size` characters; called by the producer.
        virtual void waitForSpace(const LgQueue& queue, int size) = 0;
    };

    /// While one lives, all events of the producer vanish, uncounted. The producer's.
    class ZU_BASE_API SuppressGuard
    {
    public:
        /// The queue must outlive the guard.
        explicit SuppressGuard(LgQueue& queue);
        SuppressGuard(const SuppressGuard&) = delete;
        SuppressGuard& operator=(const SuppressGuard&) = delete;
        ~SuppressGuard();

    private:
        LgQueue& _queue;
    };

    /// A queue for the thread with this id.
    explicit LgQueue(std::uint32_t threadId = 0);

    /// @{
    /// A copy shares both rings with its source, whose observer moves to it.
    LgQueue(LgQueue& source);
    LgQueue& operator=(LgQueue& source);
    /// @}

    /// Asserts "_beg == _end": a queue is drained before it ends.
    ~LgQueue();

    // What the producer calls.

    /// Starts an event. On true its text goes into getStream(), and addEntry() publishes it; on
    /// false the event is gone: counted as lost, unless events are suppressed.
    bool reserveEntry(LgTypes::Level level);

    /// Publishes the reserved event; nothing if there is none. An event without text is dropped,
    /// and a text that was not ended is ended here.
    void addEntry();

    /// How many events found no room since the queue was made. Any thread may ask.
    std::uint64_t getLostCount() const
    {
        return _lost.load(std::memory_order_relaxed);
    }

    /// What the call-site macros put around the insertion of a reserved event's text. Between them
    /// every further event of the same thread, from inside an insertion operator, would mix its
    /// text into that of the first: it is refused, and counted in getLostCount() alone.
    void beginInsertion()
    {
        _inserting = true;
    }

    /// Whether the text of an event is being inserted; the producer's.
    bool isInserting() const
    {
        return _inserting;
    }

    /// Publishes the event whose text was inserted.
    void endInsertion()
    {
        _inserting = false;
        addEntry();
    }

    /// Takes the event back with what there is of its text, because an insertion failed.
    void cancelInsertion();

    /// Asks the observer to wait until there is room for `size` characters; without an observer it
    /// returns at once.
    void waitForSpace(int size) const;

    /// Says that the producer's thread has ended; from here on the queue is the reader's.
    void creatorExit();

    // What the reader calls.

    /// The oldest entry. Asserts "_beg != _end".
    const Entry& readEntry() const;

    /// Drops the oldest entry, whose text must have been taken from the stream. Asserts
    /// "_beg != _end".
    void removeEntry();

    /// Whether the producer's thread lives.
    bool isCreatorAlive() const
    {
        return _creatorAlive.load(std::memory_order_acquire);
    }

    // What both may call.

    /// Whether no entry waits.
    bool isEmpty() const
    {
        return _end.get() == _beg.get();
    }

    /// Whether the next event will be lost for want of an entry.
    bool isFull() const;

    /// How many entries may wait at once: 1,023, of which the last is for lost events.
    static unsigned int getMaxSize();

    /// @{
    /// The texts; insertion is the producer's, extraction the reader's.
    LgStream& getStream()
    {
        return _stream;
    }

    const LgStream& getStream() const
    {
        return _stream;
    }
    /// @}

    /// The id that the constructor was given.
    std::uint32_t getThreadId() const
    {
        return _threadId;
    }

    /// Installs the observer, once, before the queue is used by two threads; returns null. Asserts
    /// "_observer.isNull()".
    ObjPtrRet<Observer> changeObserver(ObjPtr<Observer> observer);

protected:
    /// Rings of other sizes, powers of two from 4 on, for tests.
    LgQueue(std::uint32_t threadId, std::uint32_t entries, std::uint32_t characters);

private:
    static constexpr std::uint32_t NUM_ENTRIES = 1024;
    static constexpr std::size_t CACHE_LINE = 64;

    bool hasRoom()
    {
        return isFree() || isFreeNow();
    }

    // Two free slots: one for the event, and one that stays for lost ones.
    bool isFree() const
    {
        return _end.distanceTo(_begSeen) - 1 >= 2;
    }

    bool isFreeNow();
    void fetchAhead();
    bool refuse();
    bool countLoss();

    LgStream _stream;
    std::shared_ptr<Entry[]> _entries;
    alignas(CACHE_LINE) LgRingIndex _beg;
    alignas(CACHE_LINE) LgRingIndex _end;
    std::atomic<bool> _creatorAlive;
    bool _reserved;
    bool _inserting;
    std::uint32_t _threadId;
    ObjPtr<Observer> _observer;
    std::int32_t _suppress;
    // Written by the producer alone.
    std::atomic<std::uint64_t> _lost;
    // Where the reader was when the producer last looked; it can only have moved on since.
    std::uint32_t _begSeen;
    // Where the reserved event's text begins.
    LgStream::Mark _mark;
};

} // namespace Zu

#endif

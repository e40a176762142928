/// @file
/// The queue of log events from one thread to the reader.

#ifndef ZU_BASE_LGQUEUE_H
#define ZU_BASE_LGQUEUE_H

#include "baseApi.h"
#include "lgRingIndex.h"
#include "lgRingMemory.h"
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
/// producer, allocates nothing after construction and takes no lock. 1,024 entries hold levels and
/// time stamps; an LgStream holds their texts in the same order, one string per entry. An event
/// that finds no room in either is lost, and an overflow entry in its place counts the burst of
/// losses.
///
/// A broken rule of the queue is fatal.
///
/// Thread-safety: there are exactly two actors, the producer and the reader, and each calls only
/// the operations marked as its own. Each index has one writer. Moving it is a release that pairs
/// with the other side's acquire, so an entry and its text are complete before they can be seen,
/// and the reader is done with a slot before it is reused. Copies share both rings.
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

        /// How many events were lost. The number is approximate: losses that race with the reader
        /// are missing, and a slot that was an overflow entry before keeps its earlier count.
        /// LgQueue::getLostCount() has the exact total. Asserts "_oflow".
        std::int32_t getOverflowCount() const;

        /// The event's level. Asserts "!_oflow".
        LgTypes::Level getLevel() const;

        /// When the event was reserved, or the first one was lost, in ticks of
        /// HwCounter::timeStamp().
        std::uint64_t getTimeStamp() const
        {
            return _timeStamp;
        }

        /// Makes this an overflow entry with the count 1, or an event of level Tracing. Does
        /// nothing if it already is of that kind.
        void setOverflowEntry(bool oflow);

        /// Counts one more lost event. Asserts "_oflow".
        void incOverflowCount();

        /// Sets the event's level. Asserts "!_oflow".
        void setLevel(LgTypes::Level level);

        /// Sets the time stamp, in ticks of HwCounter::timeStamp().
        void setTimeStamp(std::uint64_t timeStamp)
        {
            _timeStamp = timeStamp;
        }

    private:
        bool _oflow = false;
        // The level or the count. A count may grow while the reader reads it.
        std::atomic<std::int32_t> _value{LgTypes::InternalError};
        std::uint64_t _timeStamp = 0;
    };

    /// Is notified of what happens to a queue, which owns it.
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

    /// The memory of a queue that is not on the heap: for instance in a file that outlives the
    /// process, from which another one can read the events that were left. Provided by the user of
    /// the queue, which it outlives.
    class ZU_BASE_API Home
    {
    public:
        Home() = default;
        Home(const Home&) = delete;
        Home& operator=(const Home&) = delete;
        virtual ~Home();

        /// The ring of entries; an element is an Entry.
        virtual LgRingMemory& getEntries() = 0;

        /// The ring of characters, at least 32,768.
        virtual LgRingMemory& getCharacters() = 0;

        /// The queue was destroyed by LgQueue::end(), so its memory is free.
        virtual void queueEnded() noexcept = 0;
    };

    /// Where a reader that looks ahead stands in both rings.
    struct ReadPosition
    {
        /// In the ring of entries: the entry that is next.
        std::uint32_t _entry;
        /// In the ring of characters: the end of the string before the next one.
        std::uint32_t _text;
    };

    /// Where a queue's positions stand, in bytes from its first byte, for those who find its memory
    /// after its process has ended. All are 32-bit numbers but the number of lost events, which has
    /// 64 bits.
    struct Places
    {
        /// The oldest entry.
        std::uint32_t _entriesBegin;
        /// Where the next entry goes.
        std::uint32_t _entriesEnd;
        /// The end of the text that was taken last.
        std::uint32_t _textBegin;
        /// The end of the text that was completed last.
        std::uint32_t _textEnd;
        /// The number of lost events.
        std::uint32_t _lost;
    };

    /// While one exists, all events of the producer are dropped without being counted. For the
    /// producer.
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

    /// A queue whose rings are in provided memory. The object itself may be made there, too, by
    /// placement new; end() destroys it then.
    LgQueue(std::uint32_t threadId, Home& home);

    /// @{
    /// A copy shares both rings with its source, whose observer moves to it.
    LgQueue(LgQueue& source);
    LgQueue& operator=(LgQueue& source);
    /// @}

    /// Asserts "_beg == _end": a queue is drained before it ends.
    ~LgQueue();

    /// Ends a queue as its reader does: deletes it or, if its memory was provided, destroys it and
    /// notifies its home.
    static void end(LgQueue* queue);

    /// Who provides the memory; null if it is on the heap.
    Home* getHome() const
    {
        return _home;
    }

    /// Where the positions stand.
    Places getPlaces() const;

    /// Called by a producer whose event finds no room: it may wait until the reader has made some.
    /// The event is lost unless the function returns true and there is room then.
    using RoomFunction = bool (*)(LgQueue& queue, LgTypes::Level level);

    /// Sets the function for the queues of all threads; null, the default, for none: then events
    /// without room are lost. Any thread may call it.
    static void setRoomFunction(RoomFunction function);

    /// Inserts what shall stand behind the text of a statement, in the thread that executes it:
    /// `file` and `line` are where the statement is. What it raises withdraws the event.
    using SuffixFunction = void (*)(LgStream& stream, const char* file, int line);

    /// Sets the function for the statements of all threads; null, the default, for none. Any thread
    /// may call it.
    static void setSuffixFunction(SuffixFunction function);

    /// Inserts what the function inserts, if there is one. For a text that goes through no queue.
    static void insertSuffix(LgStream& stream, const char* file, int line);

    // For the producer.

    /// Starts an event. If it returns true, the text goes into getStream() and addEntry() publishes
    /// the event. If it returns false, the event is lost and counted as such, unless events are
    /// suppressed.
    bool reserveEntry(LgTypes::Level level);

    /// Whether the next event will find room.
    bool canReserve()
    {
        return hasRoom() && !_stream.isFullForWriter();
    }

    /// The entry of the event whose text is being inserted. For the producer.
    const Entry& getReservedEntry() const
    {
        return _entries[_end.own()];
    }

    /// The entry that was published last. For an observer, in entryAdded().
    const Entry& getAddedEntry() const
    {
        return _entries[_end.minus(1)];
    }

    /// Publishes the reserved event; does nothing if there is none. An event without text is
    /// dropped. A text that has not been ended is ended here.
    void addEntry();

    /// How many events were lost since the queue was constructed, including those refused during an
    /// insertion. Any thread may call this.
    std::uint64_t getLostCount() const
    {
        return _lost.load(std::memory_order_relaxed);
    }

    /// The call-site macros put beginInsertion() and endInsertion() around the insertion of a
    /// reserved event's text. A further event of the same thread in between, from inside an
    /// insertion operator, would mix its text into that of the first. It is refused, and counted
    /// only in getLostCount().
    void beginInsertion()
    {
        _inserting = true;
    }

    /// Whether the text of an event is being inserted. For the producer.
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

    /// The same behind the suffix of a statement in this file and line.
    void endInsertion(const char* file, int line);

    /// Withdraws the event with the part of its text already inserted, because an insertion failed.
    void cancelInsertion();

    /// Asks the observer to wait until there is room for `size` characters. Without an observer it
    /// returns at once.
    void waitForSpace(int size) const;

    /// Announces that the producer's thread has ended. From here on the queue belongs to the
    /// reader.
    void creatorExit();

    // For the reader.

    /// The oldest entry. Asserts "_beg != _end".
    const Entry& readEntry() const;

    /// Removes the oldest entry, whose text must have been taken from the stream. Asserts
    /// "_beg != _end".
    void removeEntry();

    /// @{
    /// For a reader that looks ahead, and removes events when they are written: where the oldest
    /// entry is; whether there is an entry at a position; the position of the entry that is
    /// published next, so that entries before it are there; an entry; its text. getTextAt() moves
    /// to the end of the text and is not called for an overflow entry, which has none; `scratch`
    /// has room for 32,768 characters and is used where the text wraps. stepEntry() moves to the
    /// next entry. removeUpTo() removes all entries and texts before a position. Of all these,
    /// isWaiting() and getEntriesEnd() alone touch what the producer writes for each event: a
    /// reader that asks once for many entries does not slow it down.
    ReadPosition getReadPosition() const
    {
        return {_beg.own(), _stream._readPos.own()};
    }

    bool isWaiting(const ReadPosition& position) const
    {
        return _end.get() != position._entry;
    }

    std::uint32_t getEntriesEnd() const
    {
        return _end.get();
    }

    const Entry& getEntryAt(const ReadPosition& position) const
    {
        return _entries[position._entry];
    }

    std::string_view getTextAt(ReadPosition& position, char* scratch) const
    {
        return _stream.peek(position._text, scratch);
    }

    void stepEntry(ReadPosition& position) const
    {
        position._entry = (position._entry + 1) & (_beg.size() - 1);
    }

    void removeUpTo(const ReadPosition& position);
    /// @}

    /// Whether the producer's thread is still alive.
    bool isCreatorAlive() const
    {
        return _creatorAlive.load(std::memory_order_acquire);
    }

    // For both.

    /// How many entries are waiting; any thread may ask for it.
    std::uint32_t getWaitingCount() const
    {
        return (_end.get() - _beg.get()) & (_beg.size() - 1);
    }

    /// How many entries the ring has.
    std::uint32_t getNumEntries() const
    {
        return _beg.size();
    }

    /// Whether no entry is waiting.
    bool isEmpty() const
    {
        return _end.get() == _beg.get();
    }

    /// Whether the next event will be lost because no entry is free.
    bool isFull() const;

    /// How many entries can wait at once: 1,023, the last of which is reserved for lost events.
    static unsigned int getMaxSize();

    /// @{
    /// The stream of texts. Insertion is for the producer, extraction for the reader.
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

    /// Installs the observer, once, before two threads use the queue; returns null. Asserts
    /// "_observer.isNull()".
    ObjPtrRet<Observer> changeObserver(ObjPtr<Observer> observer);

protected:
    /// Makes rings of other sizes, powers of two from 4 on, for tests.
    LgQueue(std::uint32_t threadId, std::uint32_t entries, std::uint32_t characters);

private:
    static constexpr std::uint32_t NUM_ENTRIES = 1024;
    static constexpr std::size_t CACHE_LINE = 64;

    bool hasRoom()
    {
        return isFree() || isFreeNow();
    }

    // Two free slots are needed: one for the event and one reserved for lost events.
    bool isFree() const
    {
        return _end.distanceTo(_begSeen) - 1 >= 2;
    }

    bool isFreeNow();
    bool hasGrown();
    void fetchAhead();
    bool awaitRoom(LgTypes::Level level);
    bool refuse();
    bool countLoss();

    // Of both. Each character and each entry belongs to the producer until it is published, then to
    // the reader until it is removed.
    LgStream _stream;
    std::shared_ptr<Entry[]> _entries;

    // Written by the reader, read by both: the oldest entry.
    alignas(CACHE_LINE) LgRingIndex _beg;

    // Written by the producer, read by both: where the next entry goes, and whether its thread
    // lives.
    alignas(CACHE_LINE) LgRingIndex _end;
    std::atomic<bool> _creatorAlive;

    // The producer's: whether an event is reserved, and whether its text is being inserted.
    bool _reserved;
    bool _inserting;

    // Set before two threads use the queue, then read by both.
    std::uint32_t _threadId;
    ObjPtr<Observer> _observer;

    // The producer's: how many guards suppress events.
    std::int32_t _suppress;

    // Written by the producer, read by any thread.
    std::atomic<std::uint64_t> _lost;

    // The producer's: the reader's position when it last looked, which can only have advanced
    // since.
    std::uint32_t _begSeen;

    // The producer's: where the reserved event's text begins.
    LgStream::Mark _mark;

    // Who provides the memory; null if it is on the heap. The producer's: how many entries can be
    // used so far.
    Home* _home = nullptr;
    std::uint32_t _usable = 0;
};

} // namespace Zu

#endif

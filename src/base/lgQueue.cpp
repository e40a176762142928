#include "base/lgQueue.h"

#include "base/compiler.h"
#include "base/hwCounter.h"
#include "base/internalAssert.h"

#include <atomic>
#include <limits>

namespace Zu
{

namespace
{

constexpr unsigned int TEXT_INSERTED = 1;

constinit std::atomic<LgQueue::RoomFunction> roomFunction{nullptr};
constinit std::atomic<LgQueue::SuffixFunction> suffixFunction{nullptr};

} // namespace

std::int32_t LgQueue::Entry::getOverflowCount() const
{
    ZU_INTERNAL_ASSERT(_oflow);
    return _value.load(std::memory_order_relaxed);
}

LgTypes::Level LgQueue::Entry::getLevel() const
{
    ZU_INTERNAL_ASSERT(!_oflow);
    return static_cast<LgTypes::Level>(_value.load(std::memory_order_relaxed));
}

void LgQueue::Entry::setOverflowEntry(bool oflow)
{
    if (_oflow == oflow) return;
    _oflow = oflow;
    _value.store(oflow ? 1 : static_cast<std::int32_t>(LgTypes::Tracing),
                 std::memory_order_relaxed);
}

void LgQueue::Entry::incOverflowCount()
{
    ZU_INTERNAL_ASSERT(_oflow);
    // There is only one writer: a load and a store suffice, and a locked instruction would cost
    // more.
    const std::int32_t count = _value.load(std::memory_order_relaxed);
    if (count != std::numeric_limits<std::int32_t>::max())
        _value.store(count + 1, std::memory_order_relaxed);
}

void LgQueue::Entry::setLevel(LgTypes::Level level)
{
    ZU_INTERNAL_ASSERT(!_oflow);
    _value.store(level, std::memory_order_relaxed);
}

LgQueue::Observer::~Observer() = default;

LgQueue::SuppressGuard::SuppressGuard(LgQueue& queue) : _queue(queue)
{
    ++_queue._suppress;
}

LgQueue::SuppressGuard::~SuppressGuard()
{
    --_queue._suppress;
}

LgQueue::LgQueue(std::uint32_t threadId)
    : _entries(new Entry[NUM_ENTRIES]), _beg(NUM_ENTRIES), _end(NUM_ENTRIES), _creatorAlive(true),
      _reserved(false), _inserting(false), _threadId(threadId), _suppress(0), _lost(0),
      _begSeen(0), _mark{}
{
}

LgQueue::LgQueue(std::uint32_t threadId, std::uint32_t entries, std::uint32_t characters)
    : _stream(characters), _entries(new Entry[entries]), _beg(entries), _end(entries),
      _creatorAlive(true), _reserved(false), _inserting(false), _threadId(threadId), _suppress(0),
      _lost(0), _begSeen(0), _mark{}
{
}

LgQueue::LgQueue(std::uint32_t threadId, Home& home)
    : _stream(home.getCharacters()),
      _entries(std::shared_ptr<void>(), static_cast<Entry*>(home.getEntries().getBegin())),
      _beg(home.getEntries().getSize()), _end(home.getEntries().getSize()), _creatorAlive(true),
      _reserved(false), _inserting(false), _threadId(threadId), _suppress(0), _lost(0),
      _begSeen(0), _mark{}, _home(&home), _usable(home.getEntries().getUsable())
{
    // As if the reader were where the usable part ends.
    if (_usable < _beg.size()) _begSeen = _usable;
}

LgQueue::LgQueue(LgQueue& source)
    : _stream(source._stream), _entries(source._entries), _beg(source._beg), _end(source._end),
      _creatorAlive(source.isCreatorAlive()), _reserved(source._reserved),
      _inserting(source._inserting), _threadId(source._threadId), _observer(source._observer),
      _suppress(source._suppress), _lost(source.getLostCount()), _begSeen(source._begSeen),
      _mark(source._mark), _home(source._home), _usable(source._usable)
{
}

LgQueue& LgQueue::operator=(LgQueue& source)
{
    if (this == &source) return *this;
    _stream = source._stream;
    _entries = source._entries;
    _beg = source._beg;
    _end = source._end;
    _creatorAlive = source.isCreatorAlive();
    _reserved = source._reserved;
    _inserting = source._inserting;
    _threadId = source._threadId;
    _observer = source._observer;
    _suppress = source._suppress;
    _lost = source.getLostCount();
    _begSeen = source._begSeen;
    _mark = source._mark;
    _home = source._home;
    _usable = source._usable;
    return *this;
}

LgQueue::~LgQueue()
{
    ZU_INTERNAL_ASSERT_TEXT(_beg.get() == _end.get(), "_beg == _end");
}

LgQueue::Home::~Home() = default;

void LgQueue::end(LgQueue* queue)
{
    Home* const home = queue ? queue->_home : nullptr;
    if (!home)
    {
        delete queue;
        return;
    }
    queue->~LgQueue();
    home->queueEnded();
}

void LgQueue::setRoomFunction(RoomFunction function)
{
    roomFunction.store(function, std::memory_order_release);
}

void LgQueue::setSuffixFunction(SuffixFunction function)
{
    suffixFunction.store(function, std::memory_order_release);
}

void LgQueue::insertSuffix(LgStream& stream, const char* file, int line)
{
    const SuffixFunction function = suffixFunction.load(std::memory_order_acquire);
    if (function) function(stream, file, line);
}

void LgQueue::endInsertion(const char* file, int line)
{
    try
    {
        insertSuffix(_stream, file, line);
    }
    catch (...)
    {
        cancelInsertion();
        throw;
    }
    endInsertion();
}

LgQueue::Places LgQueue::getPlaces() const
{
    const auto placeOf = [this](const void* member)
    {
        const auto* const begin = reinterpret_cast<const char*>(this);
        return static_cast<std::uint32_t>(static_cast<const char*>(member) - begin);
    };
    return {placeOf(_beg.place()), placeOf(_end.place()), placeOf(_stream._readPos.place()),
            placeOf(_stream._lastComplete.place()), placeOf(&_lost)};
}

bool LgQueue::reserveEntry(LgTypes::Level level)
{
    if (_suppress != 0 || _inserting) return refuse();
    if (!canReserve() && !awaitRoom(level)) return countLoss();
    Entry& entry = _entries[_end.own()];
    entry.setTimeStamp(HwCounter::timeStamp());
    // The slot may still be marked as an overflow entry from an earlier use.
    entry.setOverflowEntry(false);
    entry.setLevel(level);
    _stream.resetOutputFlags();
    _mark = _stream.getMark();
    _reserved = true;
    return true;
}

bool LgQueue::awaitRoom(LgTypes::Level level)
{
    const RoomFunction function = roomFunction.load(std::memory_order_acquire);
    return function && function(*this, level) && canReserve();
}

bool LgQueue::isFreeNow()
{
    if (_home && _usable < _beg.size() && !hasGrown()) return isFree();
    // Pairs with the release in removeEntry(): the reader is done with the slots before.
    _begSeen = _beg;
    return isFree();
}

// Whether more entries can be used. While that is not yet the whole ring, the producer behaves as
// if the reader were where the usable part ends.
bool LgQueue::hasGrown()
{
    _usable = _home->getEntries().grow(_usable + 1);
    if (_usable == _beg.size()) return true;
    _begSeen = _usable;
    return false;
}

// A suppressed event leaves no trace. One from inside another's insertion is lost, and has no slot
// in which the loss could be recorded.
bool LgQueue::refuse()
{
    if (_suppress == 0) _lost.store(getLostCount() + 1, std::memory_order_relaxed);
    return false;
}

bool LgQueue::countLoss()
{
    _lost.store(getLostCount() + 1, std::memory_order_relaxed);
    Entry& last = _entries[_end.minus(1)];
    if (last.isOverflowEntry())
    {
        // The reader may already have taken this entry; then the loss appears in no entry.
        last.incOverflowCount();
        return false;
    }
    Entry& entry = _entries[_end.own()];
    entry.setTimeStamp(HwCounter::timeStamp());
    entry.setOverflowEntry(true);
    ++_end;
    return false;
}

void LgQueue::addEntry()
{
    if (!_reserved || _inserting) return;
    _reserved = false;
    const unsigned int flags = _stream.getOutputFlags();
    if ((flags & TEXT_INSERTED) == 0)
    {
        // A string that was only ended is empty, and no entry would ever take it.
        _stream.resetTo(_mark);
        return;
    }
    _stream.completeOne(_mark);
    ZU_INTERNAL_ASSERT_TEXT(_end.plus(1) != _begSeen, "_end+1U != _beg");
    ZU_INTERNAL_ASSERT_TEXT(_end.plus(2) != _begSeen, "_end+2U != _beg");
    // Pairs with the reader's acquire: entry and text are complete.
    ++_end;
    fetchAhead();
    if (!_observer.isNull()) _observer->entryAdded(*this);
}

// The slots of coming events are in the reader's cache; prefetching brings them back before their
// turn.
ZU_CAN_PREFETCH_FOR_WRITING void LgQueue::fetchAhead()
{
    constexpr std::uint32_t ENTRIES = 4;
    Compiler::prefetchForWriting(&_entries[_end.plus(ENTRIES)]);
    _stream.fetchAhead();
}

void LgQueue::cancelInsertion()
{
    _inserting = false;
    _reserved = false;
    _stream.resetTo(_mark);
}

void LgQueue::waitForSpace(int size) const
{
    if (!_observer.isNull()) _observer->waitForSpace(*this, size);
}

void LgQueue::creatorExit()
{
    _creatorAlive.store(false, std::memory_order_release);
}

const LgQueue::Entry& LgQueue::readEntry() const
{
    ZU_INTERNAL_ASSERT_TEXT(_beg.get() != _end.get(), "_beg != _end");
    return _entries[_beg];
}

void LgQueue::removeEntry()
{
    ZU_INTERNAL_ASSERT_TEXT(_beg.get() != _end.get(), "_beg != _end");
    // Pairs with the acquire in isFreeNow(): the reader is done with the slot.
    ++_beg;
    if (!_observer.isNull()) _observer->entryRemoved(*this);
}

void LgQueue::removeUpTo(const ReadPosition& position)
{
    _stream.takeUpTo(position._text);
    // Pairs with the acquire in isFreeNow(): the reader is done with the slots.
    _beg = position._entry;
    if (!_observer.isNull()) _observer->entryRemoved(*this);
}

bool LgQueue::isFull() const
{
    const std::uint32_t beg = _beg;
    return _end.plus(1) == beg || _end.plus(2) == beg;
}

unsigned int LgQueue::getMaxSize()
{
    return NUM_ENTRIES - 1;
}

ObjPtrRet<LgQueue::Observer> LgQueue::changeObserver(ObjPtr<Observer> observer)
{
    ZU_INTERNAL_ASSERT(_observer.isNull());
    ObjPtrRet<Observer> former(_observer);
    _observer = observer;
    return former;
}

} // namespace Zu

// One byte each for the sizes of the rings and for the presence of an observer, and a byte for each
// action, followed by its operands.

#include "base/lgQueue.h"
#include "base/lgTypes.h"
#include "base/objPtr.h"

#include "fuzzTarget.h"
#include "hardwareCounter.h"
#include "streamModel.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace
{

using fuzz::StreamModel;
using Zu::LgQueue;

class Queue : public LgQueue
{
public:
    Queue(std::uint32_t entries, std::uint32_t characters) : LgQueue(7, entries, characters) {}
};

struct Notices
{
    std::size_t _added = 0;
    std::size_t _removed = 0;
    int _waitedFor = 0;
};

class Observer : public LgQueue::Observer
{
public:
    explicit Observer(Notices& notices) : _notices(notices) {}

    void entryAdded(LgQueue&) override
    {
        ++_notices._added;
    }

    void entryRemoved(LgQueue&) override
    {
        ++_notices._removed;
    }

    void waitForSpace(const LgQueue&, int size) override
    {
        _notices._waitedFor += size;
    }

private:
    Notices& _notices;
};

// A slot for an entry; its mark outlives the entry.
struct Slot
{
    bool _isOverflow = false;
    int _count = 0;
    int _level = 0;
};

class Model
{
public:
    Model(std::size_t entries, std::size_t characters) : _stream(characters), _slots(entries) {}

    // Whether the event may be begun.
    bool reserve(int level)
    {
        if (_suppressed > 0) return false;
        ++_attempted;
        if (_isInserting)
        {
            ++_lost;
            return false;
        }
        if (isFull() || _stream.room() == 0)
        {
            ++_lost;
            countLoss();
            return false;
        }
        ++_accepted;
        Slot& slot = slotAt(_end);
        slot._isOverflow = false;
        slot._level = level;
        _stream.resetFlags();
        _mark = _stream.mark();
        _isReserved = true;
        return true;
    }

    // Whether an entry was published.
    bool add()
    {
        if (!_isReserved || _isInserting) return false;
        _isReserved = false;
        if (!_stream.isInserted())
        {
            _stream.resetTo(_mark);
            return false;
        }
        if (!_stream.hasFinishedSince(_mark)) _stream.finish();
        _stream.keepFirst(_mark);
        ++_end;
        return true;
    }

    void cancel()
    {
        _isReserved = _isInserting = false;
        _stream.resetTo(_mark);
    }

    bool isEmpty() const
    {
        return _begin == _end;
    }

    // One slot of the ring stays free, and one is reserved for lost events.
    bool isFull() const
    {
        return _end - _begin >= _slots.size() - 2;
    }

    Slot& slotAt(std::size_t position)
    {
        return _slots[position % _slots.size()];
    }

    StreamModel _stream;
    std::size_t _begin = 0;
    std::size_t _end = 0;
    std::size_t _attempted = 0;
    std::size_t _accepted = 0;
    std::size_t _lost = 0;
    int _suppressed = 0;
    bool _isReserved = false;
    bool _isInserting = false;

private:
    void countLoss()
    {
        Slot& last = slotAt(_end + _slots.size() - 1);
        if (last._isOverflow)
        {
            ++last._count;
            return;
        }
        Slot& slot = slotAt(_end);
        // An existing mark keeps its count.
        if (!slot._isOverflow) slot._count = 1;
        slot._isOverflow = true;
        ++_end;
    }

    std::vector<Slot> _slots;
    StreamModel::Mark _mark{};
};

class Session
{
public:
    Session(std::uint32_t entries, std::uint32_t characters, bool isObserved)
        : _queue(entries, characters), _model(entries, characters), _isObserved(isObserved)
    {
        if (!isObserved) return;
        const Zu::ObjPtr<LgQueue::Observer> former(
            _queue.changeObserver(Zu::ObjPtr<LgQueue::Observer>(new Observer(_notices))));
        FUZZ_REQUIRE(former.isNull());
    }

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // After a violated property entries may be left, and a queue must be empty when it is
    // destroyed.
    ~Session()
    {
        while (!_queue.isEmpty()) _queue.removeEntry();
    }

    void act(fuzz::Input& input)
    {
        const std::uint8_t action = input.takeByte();
        switch (action % 12)
        {
        case 0:
            return reserve(action / 12 % Zu::LgTypes::NUM_LEVELS);
        case 1:
            return add();
        case 2:
            return remove();
        case 3:
            return suppress();
        case 4:
            return unsuppress();
        case 5:
            // The two enclose the insertion into one reserved event.
            if (!_model._isReserved || _model._isInserting) return;
            _queue.beginInsertion();
            _model._isInserting = true;
            return;
        case 6:
            if (!_model._isInserting) return;
            _model._isInserting = false;
            return finish([this] { _queue.endInsertion(); });
        case 7:
            if (!_model._isReserved) return;
            _queue.cancelInsertion();
            return _model.cancel();
        case 8:
            if (!_model._isReserved) return;
            _queue.getStream() << Zu::ends;
            return _model._stream.finish();
        case 9:
            // A whole event.
            reserve(action / 12 % Zu::LgTypes::NUM_LEVELS);
            insert(std::to_string(action));
            return add();
        case 10:
            return insert(std::string(std::size_t{input.takeByte()}, 'x'));
        default:
            return insert(input.takeLine());
        }
    }

    void check() const
    {
        FUZZ_REQUIRE(_queue.getLostCount() == _model._lost);
        // Every event outside the guards is accepted or counted.
        FUZZ_REQUIRE(_accepted + _queue.getLostCount() == _model._attempted);
        FUZZ_REQUIRE(_queue.isEmpty() == _model.isEmpty());
        FUZZ_REQUIRE(_queue.isFull() == _model.isFull());
        FUZZ_REQUIRE(_queue.isInserting() == _model._isInserting);
        const Zu::LgStream& stream = _queue.getStream();
        FUZZ_REQUIRE(stream.getNumCharacters() == _model._stream.room());
        FUZZ_REQUIRE(stream.hasOverflowed() == _model._stream.hasOverflowed());
        FUZZ_REQUIRE(_notices._added == (_isObserved ? _published : 0));
        FUZZ_REQUIRE(_notices._removed == (_isObserved ? _model._begin : 0));
    }

    // A queue must be empty when it is destroyed.
    void drain()
    {
        if (_model._isReserved)
        {
            _queue.cancelInsertion();
            _model.cancel();
        }
        while (!_model.isEmpty()) remove();
        FUZZ_REQUIRE(_queue.isEmpty());
        FUZZ_REQUIRE(_queue.getStream().getNextSize() == 0);
        _queue.waitForSpace(3);
        FUZZ_REQUIRE(_notices._waitedFor == (_isObserved ? 3 : 0));
        _queue.creatorExit();
        FUZZ_REQUIRE(!_queue.isCreatorAlive() && _queue.getThreadId() == 7);
    }

private:
    void reserve(int level)
    {
        // An event is completed before the next one begins, except one inside an insertion.
        if (_model._isReserved && !_model._isInserting && _model._suppressed == 0) return;
        const bool isReserved = _queue.reserveEntry(static_cast<Zu::LgTypes::Level>(level));
        FUZZ_REQUIRE(isReserved == _model.reserve(level));
        if (isReserved) ++_accepted;
    }

    void insert(const std::string& text)
    {
        if (!_model._isReserved) return;
        _queue.getStream() << fuzz::exactCopy(text).get();
        _model._stream.insert(text);
    }

    void add()
    {
        finish([this] { _queue.addEntry(); });
    }

    template <class Finish> void finish(Finish doFinish)
    {
        doFinish();
        if (_model.add()) ++_published;
    }

    void remove()
    {
        if (_model.isEmpty()) return;
        const Slot& slot = _model.slotAt(_model._begin);
        const LgQueue::Entry& entry = _queue.readEntry();
        FUZZ_REQUIRE(entry.isOverflowEntry() == slot._isOverflow);
        if (slot._isOverflow)
        {
            FUZZ_REQUIRE(entry.getOverflowCount() == slot._count);
        }
        else
        {
            FUZZ_REQUIRE(entry.getLevel() == static_cast<Zu::LgTypes::Level>(slot._level));
            const std::string expected = _model._stream.take();
            const std::unique_ptr<char[]> text(new char[expected.size() + 1]);
            FUZZ_REQUIRE(_queue.getStream().getNextSize() == expected.size());
            _queue.getStream() >> text.get();
            FUZZ_REQUIRE(text.get() == expected);
        }
        _queue.removeEntry();
        ++_model._begin;
    }

    void suppress()
    {
        if (_guards.size() == 3) return;
        _guards.push_back(std::make_unique<LgQueue::SuppressGuard>(_queue));
        ++_model._suppressed;
    }

    void unsuppress()
    {
        if (_guards.empty()) return;
        _guards.pop_back();
        --_model._suppressed;
    }

    Notices _notices;
    Queue _queue;
    Model _model;
    bool _isObserved;
    std::size_t _accepted = 0;
    std::size_t _published = 0;
    std::vector<std::unique_ptr<LgQueue::SuppressGuard>> _guards;
};

void run(fuzz::Input input)
{
    fuzz::startHardwareCounter();
    constexpr std::uint32_t entries[] = {4, 8, 16, 1024};
    constexpr std::uint32_t characters[] = {4, 8, 16, 32, 64, 256, 1024, 32768};
    const std::uint8_t sizes = input.takeByte();
    const bool isObserved = (input.takeByte() & 1) != 0;
    Session session(entries[sizes % 4], characters[sizes / 4 % 8], isObserved);
    session.check();
    while (!input.isEmpty())
    {
        session.act(input);
        session.check();
    }
    session.drain();
}

} // namespace

FUZZ_TARGET(queueOperations, run);

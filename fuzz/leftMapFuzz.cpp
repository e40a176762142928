// A byte for each action, followed by its operands. The actions make a map as a process does: its
// queues, events, losses, and the steps of a batch; and then they spoil it. What was made and not
// spoiled is compared with a model; the rest is only checked for what holds in any case.

#include "app/lgLeftMap.h"
#include "app/lgMapLayout.h"

#include "fuzzTarget.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace
{

using Zu::LgLeftMap;
namespace LgMap = Zu::LgMap;

constexpr std::size_t LONGEST_TEXT = 32766;
constexpr std::int32_t LEVELS = 7;
constexpr std::size_t MOST_MODEL_QUEUES = 12;
constexpr std::uint64_t MOST_MEMORY = 1ULL << 27;
constexpr std::uint64_t LONGEST_FILE = 1ULL << 24;

// Where the positions of a queue are in its block here.
constexpr std::uint32_t ENTRIES_BEGIN = 64;
constexpr std::uint32_t ENTRIES_END = 128;
constexpr std::uint32_t TEXT_BEGIN = 192;
constexpr std::uint32_t TEXT_END = 256;
constexpr std::uint32_t LOST = 320;

// A file with holes.
class SparseFile
{
public:
    void write(std::uint64_t at, const void* from, std::size_t size)
    {
        const auto* bytes = static_cast<const char*>(from);
        while (size > 0)
        {
            const std::uint64_t inPage = at % LgMap::PAGE;
            const std::size_t part = std::min<std::size_t>(size, LgMap::PAGE - inPage);
            std::memcpy(_pages[at / LgMap::PAGE].data() + inPage, bytes, part);
            bytes += part;
            at += part;
            size -= part;
        }
    }

    template <class Value> void put(std::uint64_t at, const Value& value)
    {
        write(at, &value, sizeof value);
    }

    bool read(std::uint64_t at, void* to, std::size_t size) const
    {
        if (at > _size || size > _size - at) return false;
        auto* place = static_cast<char*>(to);
        while (size > 0)
        {
            const std::uint64_t inPage = at % LgMap::PAGE;
            const std::size_t part = std::min<std::size_t>(size, LgMap::PAGE - inPage);
            const auto page = _pages.find(at / LgMap::PAGE);
            if (page == _pages.end())
                std::memset(place, 0, part);
            else
                std::memcpy(place, page->second.data() + inPage, part);
            place += part;
            at += part;
            size -= part;
        }
        return true;
    }

    std::uint64_t _size = 0;

private:
    std::map<std::uint64_t, std::array<char, LgMap::PAGE>> _pages;
};

struct Expected
{
    std::uint64_t _time;
    bool _isOverflow;
    std::int32_t _value;
    std::string _text;
};

struct Position
{
    std::uint32_t _entry;
    std::uint32_t _text;
    std::uint64_t _reported;
};

// A queue as its thread and the writing thread see it.
struct Producer
{
    std::uint64_t placeOfSlot() const
    {
        return LgMap::QUEUES_AT + _index * sizeof _facts;
    }

    // The room that the writing thread has not given back.
    std::uint32_t freeEntries() const
    {
        return (_begin._entry - _endEntry - 1) & (_facts._entries - 1);
    }

    std::uint32_t freeCharacters() const
    {
        return (_begin._text - _endText - 1) & (_facts._characters - 1);
    }

    std::uint32_t _index;
    LgMap::Queue _facts;
    Position _begin;
    std::uint32_t _endEntry;
    std::uint32_t _endText;
    std::uint64_t _lost = 0;
    // All that it was ever given, and how many of these were removed.
    std::vector<Expected> _events;
    std::size_t _removed = 0;
    // How many are in the batch, and where the queue is before and behind it.
    std::size_t _inBatch = 0;
    Position _before;
    Position _behind;
    int _steps = 0;
};

class Map
{
public:
    Map()
    {
        LgMap::Header header = {};
        std::memcpy(header._magic, LgMap::MAGIC, sizeof header._magic);
        header._version = LgMap::VERSION;
        header._headerSize = sizeof(LgMap::Header);
        header._batchSize = sizeof(LgMap::Batch);
        header._queueSize = sizeof(LgMap::Queue);
        header._batches = LgMap::BATCHES_AT;
        header._queues = LgMap::QUEUES_AT;
        header._originTick = 12;
        _file.put(0, header);
        _file._size = LgMap::BLOCKS_AT;
    }

    void addQueue(fuzz::Input& input)
    {
        if (_queues.size() == MOST_MODEL_QUEUES) return;
        Producer queue = {};
        const std::uint8_t sizes = input.takeByte();
        LgMap::Queue& facts = queue._facts;
        facts._block = _file._size;
        facts._thread = static_cast<std::uint32_t>(100 + _queues.size());
        facts._entries = LgMap::LEAST_ENTRIES << (sizes & 3U);
        facts._characters = LgMap::LEAST_CHARACTERS << (sizes >> 2 & 1U);
        facts._usableEntries = facts._entries;
        facts._usableCharacters = facts._characters;
        facts._entriesAt = LgMap::PAGE;
        facts._charactersAt = LgMap::PAGE + facts._entries * sizeof(LgMap::Entry);
        facts._entriesBegin = ENTRIES_BEGIN;
        facts._entriesEnd = ENTRIES_END;
        facts._textBegin = TEXT_BEGIN;
        facts._textEnd = TEXT_END;
        facts._lost = LOST;
        // It begins near the end of its rings.
        queue._endEntry = (0U - input.takeByte()) & (facts._entries - 1);
        queue._endText = (0U - input.takeByte()) & (facts._characters - 1);
        queue._begin = {queue._endEntry, queue._endText, 0};
        queue._index = static_cast<std::uint32_t>(_queues.size());
        _file._size += facts._charactersAt + facts._characters;
        _file.put(queue.placeOfSlot(), facts);
        _queues.push_back(queue);
        store(_queues.back());
        _file.put(offsetof(LgMap::Header, _queueCount), static_cast<std::uint32_t>(_queues.size()));
    }

    void addEvent(fuzz::Input& input, bool isLong)
    {
        Producer* const queue = takeQueue(input);
        const auto level = static_cast<std::int32_t>(input.takeByte() % LEVELS);
        // Other times than those of other threads; now and then it goes back.
        _time += input.takeByte();
        const std::uint64_t back = isLong ? input.takeByte() : 0;
        std::string text = input.takeLine();
        if (isLong) text.append(std::size_t{input.takeByte()} * 130, '.');
        text.resize(std::min(text.size(), LONGEST_TEXT));
        if (!queue || queue->freeEntries() < 2 || queue->freeCharacters() <= text.size()) return;
        const std::uint32_t characters = queue->_facts._characters;
        const std::uint64_t ring = queue->_facts._block + queue->_facts._charactersAt;
        const std::uint32_t begin = (queue->_endText + 1) & (characters - 1);
        const std::size_t size = text.size() + 1;
        const std::size_t tillWrap = std::min<std::size_t>(size, characters - begin);
        _file.write(ring + begin, text.c_str(), tillWrap);
        _file.write(ring, text.c_str() + tillWrap, size - tillWrap);
        queue->_endText = (queue->_endText + static_cast<std::uint32_t>(size)) & (characters - 1);
        const std::uint64_t time = _time - std::min(_time, back);
        addEntry(*queue, {0, {}, level, time});
        queue->_events.push_back({time, false, level, text});
    }

    // Losses, with or without an entry that stands for them.
    void addLost(fuzz::Input& input, bool hasEntry)
    {
        Producer* const queue = takeQueue(input);
        const std::int32_t count = input.takeByte() + 1;
        if (!queue || (hasEntry && queue->freeEntries() < 2)) return;
        queue->_lost += static_cast<std::uint64_t>(count);
        if (hasEntry)
        {
            addEntry(*queue, {1, {}, count, _time});
            queue->_events.push_back({_time, true, count, {}});
        }
        store(*queue);
    }

    // Commits a batch of so many events of each queue.
    void beginBatch(fuzz::Input& input)
    {
        const std::size_t most = input.takeByte();
        if (_state != LgMap::Idle) return;
        LgMap::Batch batch = {};
        batch._fileCount = 1;
        batch._files[0] = {1, 2, 3, 4, LgMap::NONE, 1, 0, 0};
        batch._lines[batch._lineCount++] = {5, 6, LgMap::NONE, 0, 0};
        for (Producer& queue : _queues)
        {
            queue._inBatch = std::min(most, queue._events.size() - queue._removed);
            queue._before = queue._behind = queue._begin;
            queue._steps = 0;
            if (queue._inBatch == 0) continue;
            const auto number = static_cast<std::uint16_t>(batch._queueCount);
            batch._queues[batch._queueCount++] = {queue._index, queue._begin._entry,
                                                  queue._begin._text, 0, queue._begin._reported};
            for (std::size_t i = 0; i < queue._inBatch; ++i)
            {
                if (batch._lineCount == LgMap::MOST_EVENTS) queue._inBatch = i;
                if (batch._lineCount == LgMap::MOST_EVENTS) break;
                const Expected& event = queue._events[queue._removed + i];
                const auto lost = static_cast<std::uint32_t>(event._isOverflow ? event._value : 0);
                batch._lines[batch._lineCount++] = {7, 8, number, 0, lost};
                step(queue, event);
            }
        }
        commit(LgMap::Writing, _number + 1);
        _file.put(LgMap::BATCHES_AT + (_number & 1) * LgMap::BATCH_SPACE, batch);
    }

    void commitAgain()
    {
        if (_state == LgMap::Writing) commit(LgMap::Written, _number);
    }

    // The next step of moving a queue behind the batch: the losses, the text, the entries.
    void moveQueue(fuzz::Input& input)
    {
        Producer* const queue = takeQueue(input);
        if (!queue || _state != LgMap::Written || queue->_inBatch == 0 || queue->_steps == 3)
            return;
        const int steps = ++queue->_steps;
        if (steps == 1) queue->_begin._reported = queue->_behind._reported;
        if (steps == 2) queue->_begin._text = queue->_behind._text;
        if (steps == 3) queue->_begin._entry = queue->_behind._entry;
        store(*queue);
    }

    // Commits the end of a batch whose queues are all moved.
    void endBatch()
    {
        const auto isMoved = [](const Producer& queue)
        { return queue._inBatch == 0 || queue._steps == 3; };
        if (_state != LgMap::Written || !std::all_of(_queues.begin(), _queues.end(), isMoved))
            return;
        for (Producer& queue : _queues)
        {
            queue._removed += queue._inBatch;
            queue._inBatch = 0;
        }
        commit(LgMap::Idle, _number);
    }

    // Stores lines that wait for a log: some more of them, or others.
    void wait(fuzz::Input& input)
    {
        const std::uint32_t number = input.takeByte() % LgMap::MOST_FILES;
        const bool isContinued = input.takeByte() % 2 == 0;
        std::string& text = _waiting[number];
        if (!isContinued) text.clear();
        text += input.takeLine() + '\n';
        const std::uint64_t slot =
            offsetof(LgMap::Header, _waiting) + number * sizeof(LgMap::WaitingLog);
        LgMap::WaitingLog log = {};
        if (!_file.read(slot, &log, sizeof log)) return;
        log._current = 1 - (log._current & 1);
        log._waiting[log._current] = {
            _file._size, text.size(), LgMap::hashBytes(text.data(), text.size()), _number, 1, 2};
        _file._size += text.size();
        _file.write(log._waiting[log._current]._place, text.data(), text.size());
        _file.put(slot, log);
    }

    // Writes a number to a place near one that means something.
    void spoil(fuzz::Input& input)
    {
        const std::uint8_t area = input.takeByte();
        std::uint64_t at = input.takeByte() * 4;
        if (area % 4 == 1) at += LgMap::BATCHES_AT + (area >> 2 & 1U) * LgMap::BATCH_SPACE;
        if (area % 4 == 2) at += LgMap::QUEUES_AT;
        if (area % 4 == 3 && !_queues.empty())
        {
            const LgMap::Queue& facts = _queues[(area >> 3) % _queues.size()]._facts;
            at += facts._block + (area & 4U ? facts._entriesAt : 0);
        }
        const std::uint64_t number = input.takeNumber();
        if (area < 128)
            _file.put(at, static_cast<std::uint32_t>(number));
        else
            _file.put(at, number);
        _isSpoiled = true;
    }

    // Makes all lines of both batches the same, so that a batch may have any number of them.
    void fillLines(fuzz::Input& input)
    {
        const auto queue = static_cast<std::uint16_t>(input.takeByte() - 1);
        for (std::uint64_t i = 0; i < 2; ++i)
            for (std::uint64_t j = 0; j < LgMap::MOST_LINES; ++j)
                _file.put(LgMap::BATCHES_AT + i * LgMap::BATCH_SPACE +
                              offsetof(LgMap::Batch, _lines) + j * sizeof(LgMap::BatchLine),
                          LgMap::BatchLine{1, 2, queue, 0, 0});
        _isSpoiled = true;
    }

    // Fills the table with its first queue.
    void repeatQueue(fuzz::Input& input)
    {
        LgMap::Queue facts = {};
        if (!_file.read(LgMap::QUEUES_AT, &facts, sizeof facts)) return;
        const std::uint32_t count = input.takeByte();
        for (std::uint32_t i = 0; i < count; ++i)
            _file.put(LgMap::QUEUES_AT + i * sizeof facts, facts);
        _file.put(offsetof(LgMap::Header, _queueCount), count);
        _isSpoiled = true;
    }

    void cut(fuzz::Input& input)
    {
        const std::uint64_t part = input.takeByte();
        _file._size = input.takeByte() % 2 == 0 ? _file._size * part / 256
                                                : std::min(LONGEST_FILE, _file._size + part * 4096);
        _isSpoiled = true;
    }

    void overwrite(const std::vector<std::uint8_t>& bytes)
    {
        _file.write(0, bytes.data(), bytes.size());
        _isSpoiled = true;
    }

    void check() const
    {
        std::uint64_t asked = 0;
        const auto read = [this, &asked](std::uint64_t offset, void* to, std::size_t size)
        {
            FUZZ_REQUIRE(offset + size >= offset);
            asked += size;
            return _file.read(offset, to, size);
        };
        LgLeftMap map;
        const bool isLoaded = map.load(read, MOST_MEMORY);
        FUZZ_REQUIRE(isLoaded == map.getReason().empty());
        FUZZ_REQUIRE(asked <= 2 * MOST_MEMORY);
        if (isLoaded) checkAny(map);
        if (_isSpoiled) return;
        FUZZ_REQUIRE(isLoaded);
        checkAll(map);
    }

private:
    Producer* takeQueue(fuzz::Input& input)
    {
        const std::uint8_t number = input.takeByte();
        return _queues.empty() ? nullptr : &_queues[number % _queues.size()];
    }

    void addEntry(Producer& queue, const LgMap::Entry& entry)
    {
        const LgMap::Queue& facts = queue._facts;
        _file.put(facts._block + facts._entriesAt + queue._endEntry * sizeof entry, entry);
        queue._endEntry = (queue._endEntry + 1) & (facts._entries - 1);
        store(queue);
    }

    void store(const Producer& queue)
    {
        const std::uint64_t block = queue._facts._block;
        _file.put(block + ENTRIES_BEGIN, queue._begin._entry);
        _file.put(block + ENTRIES_END, queue._endEntry);
        _file.put(block + TEXT_BEGIN, queue._begin._text);
        _file.put(block + TEXT_END, queue._endText);
        _file.put(block + LOST, queue._lost);
        _file.put(queue.placeOfSlot() + offsetof(LgMap::Queue, _reported), queue._begin._reported);
    }

    // The place behind a further event of the batch.
    static void step(Producer& queue, const Expected& event)
    {
        Position& place = queue._behind;
        place._entry = (place._entry + 1) & (queue._facts._entries - 1);
        if (event._isOverflow)
            place._reported += static_cast<std::uint64_t>(event._value);
        else
            place._text = static_cast<std::uint32_t>(place._text + 1 + event._text.size()) &
                          (queue._facts._characters - 1);
    }

    void commit(LgMap::State state, std::uint64_t number)
    {
        _state = state;
        _number = number;
        _file.put(offsetof(LgMap::Header, _state), number << LgMap::STATE_BITS | state);
    }

    bool isBatchOver(const Producer& queue) const
    {
        const bool hasMoved = queue._begin._entry != queue._before._entry ||
                              queue._begin._text != queue._before._text;
        return _state == LgMap::Written && queue._inBatch > 0 && hasMoved;
    }

    // What holds whatever the file contains.
    void checkAny(const LgLeftMap& map) const
    {
        FUZZ_REQUIRE(map.getQueues().size() <= LgMap::MOST_QUEUES);
        FUZZ_REQUIRE(map.getState() <= LgMap::Written);
        FUZZ_REQUIRE(map.getWaiting().size() == LgMap::MOST_FILES);
        FUZZ_REQUIRE(map.getBatchEvents() <= map.getEvents().size());
        FUZZ_REQUIRE(map.getBatchEvents() <= LgMap::MOST_EVENTS);
        FUZZ_REQUIRE(map.getState() != LgMap::Idle || map.getBatchEvents() == 0);
        std::vector<Position> places;
        std::vector<std::uint32_t> counts(map.getQueues().size(), 0);
        for (const LgLeftMap::Queue& queue : map.getQueues())
            places.push_back({queue._entry, queue._text, 0});
        std::vector<std::uint64_t> losses(map.getQueues().size(), 0);
        std::uint64_t size = 0;
        for (std::size_t i = 0; i < map.getEvents().size(); ++i)
        {
            const LgLeftMap::Event& event = map.getEvents()[i];
            FUZZ_REQUIRE(event._queue < map.getQueues().size());
            const LgLeftMap::Queue& queue = map.getQueues()[event._queue];
            const bool isInBatch = counts[event._queue]++ < queue._inBatch;
            FUZZ_REQUIRE(isInBatch == (i < map.getBatchEvents()));
            FUZZ_REQUIRE(event._thread == queue._facts._thread);
            FUZZ_REQUIRE(event._value >= 0);
            FUZZ_REQUIRE(event._isOverflow || event._value < LEVELS);
            FUZZ_REQUIRE(event._text.size() <= LONGEST_TEXT);
            checkStep(queue._facts, places[event._queue], event);
            if (event._isOverflow) losses[event._queue] += static_cast<std::uint32_t>(event._value);
            size += event._text.size();
        }
        FUZZ_REQUIRE(size + map.getEvents().size() * sizeof(LgLeftMap::Event) <=
                     MOST_MEMORY + map.getQueues().size() * sizeof(LgLeftMap::Event));
        // The losses that were not reported, unless their number is that of no process.
        constexpr std::uint64_t MOST = std::numeric_limits<std::int32_t>::max();
        for (std::size_t i = 0; i < losses.size(); ++i)
        {
            const LgLeftMap::Queue& queue = map.getQueues()[i];
            const bool isCounted = queue._lost > queue._reported;
            const std::uint64_t rest = queue._lost - queue._reported;
            FUZZ_REQUIRE(!isCounted || losses[i] == rest || (rest > MOST && losses[i] >= MOST));
        }
    }

    // Events of a queue follow each other in both rings, and are what stands there.
    void checkStep(const LgMap::Queue& facts, Position& place, const LgLeftMap::Event& event) const
    {
        FUZZ_REQUIRE(event._nextEntry < facts._entries && event._nextText < facts._characters);
        const std::uint32_t characters =
            event._isOverflow ? 0 : static_cast<std::uint32_t>(event._text.size() + 1);
        // Losses that no entry has leave the queue where it is.
        const bool isRest = event._isOverflow && event._nextEntry == place._entry;
        const std::uint32_t entry = (place._entry + 1) & (facts._entries - 1);
        FUZZ_REQUIRE(isRest || event._nextEntry == entry);
        FUZZ_REQUIRE(event._nextText == ((place._text + characters) & (facts._characters - 1)));
        if (!event._isOverflow)
            FUZZ_REQUIRE(textAt(facts, place._text + 1, characters) == event._text + '\0');
        place = {event._nextEntry, event._nextText, 0};
    }

    std::string textAt(const LgMap::Queue& facts, std::uint32_t place, std::uint32_t size) const
    {
        const std::uint32_t begin = place & (facts._characters - 1);
        const std::uint32_t tillWrap = std::min(size, facts._characters - begin);
        const std::uint64_t ring = facts._block + facts._charactersAt;
        std::string text(size, '\0');
        FUZZ_REQUIRE(_file.read(ring + begin, text.data(), tillWrap));
        FUZZ_REQUIRE(_file.read(ring, text.data() + tillWrap, size - tillWrap));
        return text;
    }

    struct Row
    {
        bool _isBehindBatch;
        std::uint64_t _time;
        std::uint32_t _thread;
        Expected _event;
    };

    void checkAll(const LgLeftMap& map) const
    {
        std::vector<Row> rows;
        std::size_t inBatch = 0;
        for (const Producer& queue : _queues) inBatch += expect(queue, rows);
        std::stable_sort(rows.begin(), rows.end(),
                         [](const Row& one, const Row& other)
                         {
                             if (one._isBehindBatch != other._isBehindBatch)
                                 return other._isBehindBatch;
                             return one._time < other._time;
                         });
        FUZZ_REQUIRE(map.getState() == _state);
        FUZZ_REQUIRE(map.getNumber() == _number);
        FUZZ_REQUIRE(map.getDamaged() == 0);
        FUZZ_REQUIRE(map.getQueues().size() == _queues.size());
        for (std::size_t i = 0; i < _waiting.size(); ++i)
            FUZZ_REQUIRE(map.getWaiting()[i]._text == _waiting[i]);
        FUZZ_REQUIRE(map.getBatchEvents() == inBatch);
        FUZZ_REQUIRE(map.getEvents().size() == rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i)
        {
            const LgLeftMap::Event& event = map.getEvents()[i];
            FUZZ_REQUIRE(event._thread == rows[i]._thread);
            FUZZ_REQUIRE(event._time == rows[i]._event._time);
            FUZZ_REQUIRE(event._isOverflow == rows[i]._event._isOverflow);
            FUZZ_REQUIRE(event._value == rows[i]._event._value);
            FUZZ_REQUIRE(event._text == rows[i]._event._text);
        }
    }

    // Adds what a queue has left; returns how many of these the batch has.
    std::size_t expect(const Producer& queue, std::vector<Row>& rows) const
    {
        const bool isOver = isBatchOver(queue);
        const std::size_t inBatch = isOver ? 0 : queue._inBatch;
        std::size_t next = queue._removed + (isOver ? queue._inBatch : 0);
        std::uint64_t reported =
            queue._inBatch == 0 || isOver ? queue._begin._reported : queue._before._reported;
        std::uint64_t latest = 0;
        std::uint64_t lastTime = 12;
        for (std::size_t i = 0; next < queue._events.size(); ++i, ++next)
        {
            const Expected& event = queue._events[next];
            latest = std::max(latest, event._time);
            lastTime = event._time;
            if (event._isOverflow) reported += static_cast<std::uint64_t>(event._value);
            rows.push_back({i >= inBatch, latest, queue._facts._thread, event});
        }
        if (queue._lost > reported)
        {
            const auto rest = static_cast<std::int32_t>(queue._lost - reported);
            rows.push_back({true,
                            std::max(latest, lastTime),
                            queue._facts._thread,
                            {lastTime, true, rest, {}}});
        }
        return inBatch;
    }

    SparseFile _file;
    std::vector<Producer> _queues;
    std::array<std::string, LgMap::MOST_FILES> _waiting;
    LgMap::State _state = LgMap::Idle;
    std::uint64_t _number = 0;
    std::uint64_t _time = 100;
    bool _isSpoiled = false;
};

void run(fuzz::Input input)
{
    constexpr std::uint8_t ACTIONS = 17;
    Map map;
    while (!input.isEmpty())
    {
        switch (input.takeByte() % ACTIONS)
        {
        case 0:
            map.addQueue(input);
            break;
        case 1:
        case 2:
            map.addEvent(input, false);
            break;
        case 3:
            map.addEvent(input, true);
            break;
        case 4:
            map.addLost(input, true);
            break;
        case 5:
            map.addLost(input, false);
            break;
        case 6:
            map.beginBatch(input);
            break;
        case 7:
            map.commitAgain();
            break;
        case 8:
        case 9:
            map.moveQueue(input);
            break;
        case 10:
            map.endBatch();
            break;
        case 11:
            map.fillLines(input);
            break;
        case 12:
            map.repeatQueue(input);
            break;
        case 13:
            map.cut(input);
            break;
        case 14:
            map.spoil(input);
            break;
        case 16:
            map.wait(input);
            break;
        default:
            map.overwrite(input.takeRest());
        }
    }
    map.check();
}

} // namespace

FUZZ_TARGET(leftMap, run);

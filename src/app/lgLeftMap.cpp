#include "app/lgLeftMap.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <map>

namespace Zu
{

namespace
{

constexpr std::uint32_t LEVELS = 7;
constexpr std::uint32_t LONGEST_TEXT = 32766;
// No file is longer than this; so sums of offsets don't overflow.
constexpr std::uint64_t LONGEST_FILE = 1ULL << 48;
constexpr std::uint64_t MOST_PLACE = 65536;

bool isPowerWithin(std::uint32_t value, std::uint32_t least, std::uint32_t most)
{
    return value >= least && value <= most && (value & (value - 1)) == 0;
}

bool isSane(const LgMap::Queue& queue)
{
    return queue._block < LONGEST_FILE && queue._entriesAt < LONGEST_FILE &&
           queue._charactersAt < LONGEST_FILE &&
           isPowerWithin(queue._entries, LgMap::LEAST_ENTRIES, LgMap::MOST_ENTRIES) &&
           isPowerWithin(queue._characters, LgMap::LEAST_CHARACTERS, LgMap::MOST_CHARACTERS) &&
           queue._usableEntries <= queue._entries && queue._usableCharacters <= queue._characters &&
           queue._entriesBegin < MOST_PLACE && queue._entriesEnd < MOST_PLACE &&
           queue._textBegin < MOST_PLACE && queue._textEnd < MOST_PLACE && queue._lost < MOST_PLACE;
}

bool readNumber(const LgLeftMap::Read& read, std::uint64_t offset, std::uint32_t& number)
{
    return read(offset, &number, sizeof number);
}

// A part of a ring, which may wrap. False if a piece of it is not in the file.
bool readRing(const LgLeftMap::Read& read, std::uint64_t at, std::uint32_t size,
              std::uint32_t usable, std::uint32_t begin, std::uint32_t count, std::uint32_t bytes,
              char* to)
{
    const std::uint32_t tillWrap = std::min(count, size - begin);
    if (std::uint64_t(begin) + tillWrap > usable || count - tillWrap > usable) return false;
    const std::size_t first = std::size_t(tillWrap) * bytes;
    return read(at + std::uint64_t(begin) * bytes, to, first) &&
           read(at, to + first, std::size_t(count - tillWrap) * bytes);
}

} // namespace

bool LgLeftMap::load(const Read& read, std::uint64_t most)
{
    _most = most;
    if (!loadHeader(read)) return false;
    loadBatch(read);
    loadWaiting(read);
    for (std::uint32_t i = 0; i < _header._queueCount; ++i) loadQueue(read, i);
    order();
    return true;
}

bool LgLeftMap::loadHeader(const Read& read)
{
    _reason = "it is not a map of events";
    if (!read(0, &_header, sizeof _header)) return false;
    if (std::memcmp(_header._magic, LgMap::MAGIC, sizeof LgMap::MAGIC) != 0) return false;
    _reason = "it has another version";
    if (_header._version != LgMap::VERSION || _header._headerSize != sizeof(LgMap::Header) ||
        _header._batchSize != sizeof(LgMap::Batch) || _header._queueSize != sizeof(LgMap::Queue))
        return false;
    _reason = "it is damaged";
    if (_header._queueCount > LgMap::MOST_QUEUES || _header._batches != LgMap::BATCHES_AT ||
        _header._queues != LgMap::QUEUES_AT)
        return false;
    _header._host[LgMap::NAME_SIZE - 1] = '\0';
    _header._boot[LgMap::NAME_SIZE - 1] = '\0';
    _header._directory[LgMap::DIRECTORY_SIZE - 1] = '\0';
    _reason.clear();
    return true;
}

// A batch that makes no sense is none: then events may be written twice, but none is lost.
void LgLeftMap::loadBatch(const Read& read)
{
    const auto state = static_cast<std::uint32_t>(_header._state & ((1U << LgMap::STATE_BITS) - 1));
    if (state != LgMap::Writing && state != LgMap::Written) return;
    const std::uint64_t at = LgMap::BATCHES_AT + (getNumber() & 1) * LgMap::BATCH_SPACE;
    if (!read(at, &_batch, sizeof _batch)) return;
    if (_batch._fileCount > LgMap::MOST_FILES || _batch._queueCount > LgMap::MOST_LINES ||
        _batch._lineCount > LgMap::MOST_LINES)
        return;
    std::uint32_t events = 0;
    for (std::uint32_t i = 0; i < _batch._lineCount; ++i)
    {
        const std::uint16_t queue = _batch._lines[i]._queue;
        if (queue >= _batch._queueCount) continue;
        ++_batchLines[queue];
        ++events;
    }
    if (events > LgMap::MOST_EVENTS) return;
    for (std::uint32_t i = 0; i < _batch._queueCount; ++i)
        if (_batch._queues[i]._restLines != 0 && _batchLines[i] > 0) --_batchLines[i];
    _state = static_cast<LgMap::State>(state);
}

// Lines that are damaged are left out, since their bytes would go into the log as they are. Then
// the log file shows which lines of the batch are written.
void LgLeftMap::loadWaiting(const Read& read)
{
    for (std::uint32_t i = 0; i < LgMap::MOST_FILES; ++i)
    {
        const LgMap::WaitingLog& log = _header._waiting[i];
        const LgMap::Waiting& stored = log._waiting[log._current & 1];
        Waiting& waiting = _waiting[i];
        bool isWhole = stored._size <= LgMap::MOST_WAITING && stored._place < LONGEST_FILE &&
                       stored._size <= _most - std::min(_most, _size);
        if (isWhole)
        {
            _size += stored._size;
            waiting._text.resize(stored._size);
        }
        isWhole =
            isWhole && (stored._size == 0 ||
                        (read(stored._place, waiting._text.data(), stored._size) &&
                         LgMap::hashBytes(waiting._text.data(), stored._size) == stored._hash));
        if (!isWhole)
        {
            waiting = {};
            ++_damaged;
            continue;
        }
        waiting._batch = stored._batch;
        waiting._dropped = stored._dropped;
        waiting._failingSince = stored._failingSince;
    }
}

bool LgLeftMap::isEmpty() const
{
    const auto hasNothing = [](const Waiting& waiting)
    { return waiting._text.empty() && waiting._dropped == 0; };
    return _events.empty() && _damaged == 0 &&
           std::all_of(_waiting.begin(), _waiting.end(), hasNothing);
}

void LgLeftMap::loadQueue(const Read& read, std::uint32_t index)
{
    Queue queue{};
    LgMap::Queue& facts = queue._facts;
    if (!read(LgMap::QUEUES_AT + index * sizeof facts, &facts, sizeof facts)) return;
    if (facts._block == 0) return;
    std::uint32_t end = 0;
    std::uint32_t textEnd = 0;
    const bool isThere = isSane(facts) &&
                         readNumber(read, facts._block + facts._entriesBegin, queue._entry) &&
                         readNumber(read, facts._block + facts._entriesEnd, end) &&
                         readNumber(read, facts._block + facts._textBegin, queue._text) &&
                         readNumber(read, facts._block + facts._textEnd, textEnd) &&
                         read(facts._block + facts._lost, &queue._lost, sizeof queue._lost);
    queue._index = index;
    queue._reported = facts._reported;
    for (std::uint32_t i = 0; _state != LgMap::Idle && i < _batch._queueCount; ++i)
        if (_batch._queues[i]._queue == index) goBack(queue, i, end);
    if (!isThere || queue._entry >= facts._entries || end >= facts._entries ||
        queue._text >= facts._characters || textEnd >= facts._characters)
    {
        ++_damaged;
        return;
    }
    _queues.push_back(queue);
    const std::size_t first = _events.size();
    loadEvents(read, queue, end, textEnd);
    addRestOfBatch(_queues.back(), first);
    takeLossesOfBatch(_queues.back(), first);
    addRestOfLosses(queue, first);
}

// The line of the batch says how many.
void LgLeftMap::addRestOfBatch(Queue& queue, std::size_t first)
{
    if (!queue._hasRest || _events.size() < first + queue._inBatch) return;
    Event event{_header._originTick,
                queue._facts._thread,
                static_cast<std::uint32_t>(_queues.size() - 1),
                true,
                true,
                std::numeric_limits<std::int32_t>::max(),
                {},
                queue._entry,
                queue._text};
    if (queue._inBatch > 0)
    {
        const Event& before = _events[first + queue._inBatch - 1];
        event._time = before._time;
        event._nextEntry = before._nextEntry;
        event._nextText = before._nextText;
    }
    _events.insert(_events.begin() + static_cast<std::ptrdiff_t>(first + queue._inBatch++),
                   std::move(event));
}

// What the batch reports of an entry of lost events: the producer may have counted more there
// since.
void LgLeftMap::takeLossesOfBatch(const Queue& queue, std::size_t first)
{
    std::size_t place = first;
    const std::size_t end = std::min(_events.size(), first + queue._inBatch);
    for (std::uint32_t i = 0; i < _batch._lineCount && place < end; ++i)
    {
        const LgMap::BatchLine& line = _batch._lines[i];
        if (line._queue >= _batch._queueCount || _batch._queues[line._queue]._queue != queue._index)
            continue;
        Event& event = _events[place++];
        if (event._isOverflow && line._lost < static_cast<std::uint32_t>(event._value))
            event._value = static_cast<std::int32_t>(line._lost);
    }
}

// Losses that raced with the writing of their entry are in no entry. Without a count of losses, the
// entries count.
void LgLeftMap::addRestOfLosses(const Queue& queue, std::size_t first)
{
    std::uint64_t known = queue._reported;
    if (queue._lost == 0) return;
    for (std::size_t i = first; i < _events.size(); ++i)
    {
        if (!_events[i]._isOverflow) continue;
        // Its place may have the count of an earlier burst in it.
        const std::uint64_t rest = queue._lost - std::min(known, queue._lost);
        if (static_cast<std::uint32_t>(_events[i]._value) > rest)
            _events[i]._value = static_cast<std::int32_t>(rest);
        known += static_cast<std::uint32_t>(_events[i]._value);
    }
    if (queue._lost <= known) return;
    constexpr std::uint64_t MOST = std::numeric_limits<std::int32_t>::max();
    Event event{_header._originTick,
                queue._facts._thread,
                static_cast<std::uint32_t>(_queues.size() - 1),
                true,
                true,
                static_cast<std::int32_t>(std::min(queue._lost - known, MOST)),
                {},
                queue._entry,
                queue._text};
    if (_events.size() > first)
    {
        event._time = _events.back()._time;
        event._nextEntry = _events.back()._nextEntry;
        event._nextText = _events.back()._nextText;
    }
    _events.push_back(std::move(event));
}

// To where the queue was before the batch. If its positions are being moved already, its producer
// may have overwritten what is before them: then to where it is behind the batch. The text moves
// first.
void LgLeftMap::goBack(Queue& queue, std::uint32_t inBatch, std::uint32_t end) const
{
    const LgMap::BatchQueue& before = _batch._queues[inBatch];
    const bool isMoved = queue._entry != before._entry || queue._text != before._text;
    if (_state == LgMap::Written && isMoved)
    {
        // The entries move in one step, behind the text. Losses that are in no entry have a line.
        if (queue._entry != before._entry) return;
        const std::uint32_t mask = queue._facts._entries - 1;
        queue._entry =
            (before._entry + std::min(_batchLines[inBatch], (end - before._entry) & mask)) & mask;
        queue._isMoving = true;
        return;
    }
    queue._entry = before._entry;
    queue._text = before._text;
    queue._reported = before._reported;
    queue._inBatch = _batchLines[inBatch];
    queue._hasRest = before._restLines != 0;
}

void LgLeftMap::loadEvents(const Read& read, const Queue& queue, std::uint32_t end,
                           std::uint32_t textEnd)
{
    const LgMap::Queue& facts = queue._facts;
    const std::uint32_t count = (end - queue._entry) & (facts._entries - 1);
    // The text begins behind the end of the one before.
    const std::uint32_t size = (textEnd - queue._text) & (facts._characters - 1);
    // An event takes more than its entry, and events without text can be many.
    _size += size + std::uint64_t(count) * sizeof(Event);
    if (count == 0) return;
    if (_size > _most)
    {
        _damaged += count;
        return;
    }
    std::vector<LgMap::Entry> entries(count);
    std::string texts(size, '\0');
    const std::uint32_t textAt = (queue._text + 1) & (facts._characters - 1);
    const bool isThere = readRing(read, facts._block + facts._entriesAt, facts._entries,
                                  facts._usableEntries, queue._entry, count, sizeof(LgMap::Entry),
                                  reinterpret_cast<char*>(entries.data())) &&
                         readRing(read, facts._block + facts._charactersAt, facts._characters,
                                  facts._usableCharacters, textAt, size, 1, texts.data());
    if (!isThere)
    {
        _damaged += count;
        return;
    }
    const auto number = static_cast<std::uint32_t>(_queues.size() - 1);
    std::size_t position = 0;
    for (std::uint32_t i = 0; i < count; ++i)
    {
        const LgMap::Entry& entry = entries[i];
        Event event{entry._time,
                    facts._thread,
                    number,
                    entry._isOverflow != 0,
                    false,
                    entry._value,
                    {},
                    0,
                    0};
        if (event._isOverflow && event._value < 1)
        {
            _damaged += count - i;
            return;
        }
        if (!event._isOverflow)
        {
            const std::size_t textLength = texts.find('\0', position) - position;
            // The last text ends at the very end. A level that is none is damage, too.
            if (position >= texts.size() || textLength > LONGEST_TEXT ||
                static_cast<std::uint32_t>(entry._value) >= LEVELS)
            {
                _damaged += count - i;
                return;
            }
            event._text = texts.substr(position, textLength);
            position += textLength + 1;
        }
        event._nextEntry = (queue._entry + i + 1) & (facts._entries - 1);
        event._nextText =
            (queue._text + static_cast<std::uint32_t>(position)) & (facts._characters - 1);
        _events.push_back(std::move(event));
    }
}

void LgLeftMap::order()
{
    // Those of a queue stay in their order even if their times do not.
    std::vector<std::uint64_t> latest(_queues.size(), 0);
    std::vector<std::uint32_t> counts(_queues.size(), 0);
    struct Key
    {
        bool _isBehindBatch;
        std::uint64_t _time;
        std::size_t _event;
        bool operator<(const Key& other) const
        {
            if (_isBehindBatch != other._isBehindBatch) return other._isBehindBatch;
            return _time != other._time ? _time < other._time : _event < other._event;
        }
    };
    std::vector<Key> keys;
    for (std::size_t i = 0; i < _events.size(); ++i)
    {
        const Event& event = _events[i];
        latest[event._queue] = std::max(latest[event._queue], event._time);
        const bool isBehind = counts[event._queue]++ >= _queues[event._queue]._inBatch;
        if (!isBehind) ++_batchEvents;
        keys.push_back({isBehind, latest[event._queue], i});
    }
    std::sort(keys.begin(), keys.end());
    std::vector<Event> ordered;
    ordered.reserve(_events.size());
    for (const Key& key : keys) ordered.push_back(std::move(_events[key._event]));
    _events = std::move(ordered);
}

} // namespace Zu

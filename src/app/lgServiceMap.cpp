#include "app/lgServiceMap.h"

#include "base/hwCounter.h"
#include "base/lgLog.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <iostream>
#include <new>

namespace Zu
{

namespace
{

constexpr std::uint64_t GRANULE = 0x10000;
// What a queue takes from the system at first, and then at a time, in bytes.
constexpr std::uint64_t FIRST_ENTRIES = 8192;
constexpr std::uint64_t FIRST_CHARACTERS = 16384;
constexpr std::uint64_t STEP = 32768;
constexpr std::uint32_t SMALL_ENTRIES = 1024;
constexpr std::uint32_t SMALL_CHARACTERS = LgStream::BufSize;
constexpr std::uint32_t QUEUES_PER_PAGE = LgMap::PAGE / sizeof(LgMap::Queue);

constexpr const char* SOME_NOT_KEPT = "Some events are not kept in case the process is killed";

static_assert(sizeof(LgQueue) <= LgMap::PAGE);
static_assert(sizeof(LgQueue::Entry) == sizeof(LgMap::Entry));

std::uint64_t roundUp(std::uint64_t size, std::uint64_t unit)
{
    return (size + unit - 1) / unit * unit;
}

std::uint64_t bytesOf(std::uint32_t entries)
{
    return entries * sizeof(LgMap::Entry);
}

void copyName(char* to, std::size_t size, const std::string& from)
{
    const std::size_t length = std::min(size - 1, from.size());
    std::memcpy(to, from.data(), length);
    std::memset(to + length, 0, size - length);
}

} // namespace

// A ring in a block. What the producer has not gone through yet is not taken from the system.
class LgServiceMap::Ring : public LgRingMemory
{
public:
    Ring(Block& block, void* begin, std::uint32_t size, std::uint32_t usable, std::uint64_t at,
         std::uint32_t bytesEach)
        : LgRingMemory(begin, size, usable), _block(block), _at(at), _bytesEach(bytesEach)
    {
    }

    std::uint32_t grow(std::uint32_t needed) override;

private:
    Block& _block;
    // Where it begins, from the beginning of the block.
    std::uint64_t _at;
    std::uint32_t _bytesEach;
};

class LgServiceMap::Block : public LgQueue::Home
{
public:
    Block(LgServiceMap& map, const Room& space, std::uint32_t index, std::uint32_t entries,
          std::uint32_t characters)
        : _map(map), _space(space), _index(index),
          _entries(*this, _space._place + LgMap::PAGE, entries, usable(entries, FIRST_ENTRIES / 16),
                   LgMap::PAGE, sizeof(LgMap::Entry)),
          _characters(*this, _space._place + LgMap::PAGE + bytesOf(entries), characters,
                      usable(characters, FIRST_CHARACTERS), LgMap::PAGE + bytesOf(entries), 1)
    {
    }

    LgRingMemory& getEntries() override
    {
        return _entries;
    }

    LgRingMemory& getCharacters() override
    {
        return _characters;
    }

    void queueEnded() noexcept override
    {
        _map.giveBack(*this);
    }

    LgServiceMap& _map;
    Room _space;
    // The same, for the list of free spaces: giving it back must not need memory.
    std::list<Room> _spaces;
    std::uint32_t _index;
    Ring _entries;
    Ring _characters;
    // What the queue owns; see makeQueue().
    const LgQueue::Observer* _observer = nullptr;
    // Whether a part of it, or all of it, is in memory that the process alone has.
    bool _isPrivate = false;

private:
    static std::uint32_t usable(std::uint32_t size, std::uint64_t first)
    {
        if (!LgMapFile::reservesInSteps()) return size;
        return static_cast<std::uint32_t>(std::min<std::uint64_t>(size, first));
    }
};

// Called by the producer, whose ring is nearly at the end of what it can use. If the system refuses
// more, the rest of the ring is put into private memory: nothing is lost as long as the process
// lives.
std::uint32_t LgServiceMap::Ring::grow(std::uint32_t needed)
{
    LgServiceMap& map = _block._map;
    const std::lock_guard guard(map._mutex);
    const std::uint64_t from = std::uint64_t(getUsable()) * _bytesEach;
    const std::uint64_t whole = std::uint64_t(getSize()) * _bytesEach;
    const std::uint64_t wanted = std::max(from + STEP, std::uint64_t(needed) * _bytesEach);
    const std::uint64_t to = std::min(whole, roundUp(wanted, LgMap::PAGE));
    if (_block._index != LgMap::NONE)
    {
        if (map._file->reserve(_block._space._offset + _at + from, to - from))
        {
            setUsable(static_cast<std::uint32_t>(to / _bytesEach));
            LgMap::Queue& slot = map.queueAt(_block._index);
            (_bytesEach == 1 ? slot._usableCharacters : slot._usableEntries) = getUsable();
            return getUsable();
        }
        map.reportOnce(SOME_NOT_KEPT, map._file->getError());
    }
    if (!LgMapFile::replaceByPrivate(_block._space._place + _at + from, whole - from))
        return getUsable();
    _block._isPrivate = true;
    setUsable(getSize());
    return getUsable();
}

void LgServiceMap::begin(const Settings& settings)
{
    const std::lock_guard guard(_mutex);
    if (!isOpen() && !open(settings)) return;
    if (settings._logDirectory != _settings._logDirectory && !_settings._logDirectory.empty())
        _file->rename(newPath(settings));
    _settings = settings;
    const LgProcessFacts facts = lgProcessFacts();
    const std::uint64_t tick = HwCounter::timeStamp();
    _header->_start = LgLog::getStart();
    _header->_originTick = tick;
    _header->_originWall = lgWallClock();
    _header->_ticksPerSecond =
        static_cast<std::uint64_t>(std::llround(1 / HwCounter::resolution()));
    _header->_process = facts._process;
    _header->_processStart = facts._processStart;
    copyName(_header->_host, sizeof _header->_host, facts._host);
    copyName(_header->_boot, sizeof _header->_boot, facts._boot);
    copyName(_header->_directory, sizeof _header->_directory, settings._logDirectory);
}

bool LgServiceMap::open(const Settings& settings)
{
    auto file = std::make_unique<LgMapFile>();
    if (file->create(newPath(settings)) && makeHeader(*file))
    {
        _file = std::move(file);
        _end = LgMap::BLOCKS_AT;
        _used = 0;
        _tableRoom = 0;
        return true;
    }
    _header = nullptr;
    if (!file->getPath().empty()) file->remove();
    reportOnce("Events are not kept in case the process is killed", file->getError());
    return false;
}

// The page of the header and the batches are taken from the system at once.
bool LgServiceMap::makeHeader(LgMapFile& file)
{
    if (!file.extend(LgMap::BLOCKS_AT) || !file.reserve(0, LgMap::QUEUES_AT)) return false;
    auto* const place = static_cast<char*>(file.map(0, LgMap::BLOCKS_AT));
    if (!place) return false;
    _header = new (place) LgMap::Header{};
    for (std::uint64_t i = 0; i < 2; ++i)
        _batches[i] =
            reinterpret_cast<LgMap::Batch*>(place + LgMap::BATCHES_AT + i * LgMap::BATCH_SPACE);
    _queues = reinterpret_cast<LgMap::Queue*>(place + LgMap::QUEUES_AT);
    _header->_version = LgMap::VERSION;
    _header->_headerSize = sizeof(LgMap::Header);
    _header->_batchSize = sizeof(LgMap::Batch);
    _header->_queueSize = sizeof(LgMap::Queue);
    _header->_batches = LgMap::BATCHES_AT;
    _header->_queues = LgMap::QUEUES_AT;
    // Last: whoever finds the file earlier finds nothing in it.
    std::atomic_signal_fence(std::memory_order_seq_cst);
    std::memcpy(_header->_magic, LgMap::MAGIC, sizeof LgMap::MAGIC);
    return true;
}

std::string LgServiceMap::prefixFor(const std::string& logDirectory)
{
    // FNV-1a.
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char character : logDirectory)
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001B3;
    std::string text;
    for (int i = 0; i < 16; ++i, hash >>= 4) text += "0123456789abcdef"[hash & 15];
    return lgMapPrefix() + text + "-";
}

// The time keeps apart processes that have the same number one after the other.
std::string LgServiceMap::newPath(const Settings& settings)
{
    static std::atomic<int> count{0};
    const std::string directory =
        settings._mapDirectory.empty() ? lgMapDirectory() : settings._mapDirectory;
    return directory + prefixFor(settings._logDirectory) + std::to_string(lgWallClock()) + "-" +
           std::to_string(lgProcessFacts()._process) + "-" + std::to_string(++count);
}

LgQueue* LgServiceMap::makeQueue(std::uint32_t threadId, const LgQueue::Observer* observer)
{
    const std::lock_guard guard(_mutex);
    LgQueue* const queue = isOpen() ? makeInFile(threadId, observer) : nullptr;
    if (queue) return queue;
    if (isOpen())
        reportOnce("The events of some threads are not kept in case the process is killed",
                   _file->getError());
    auto onHeap = std::make_unique<LgQueue>(threadId);
    _onHeap[onHeap.get()] = 0;
    return onHeap.release();
}

std::optional<std::uint64_t> LgServiceMap::getReportedOnHeap(const LgQueue& queue)
{
    const std::lock_guard guard(_mutex);
    const auto found = _onHeap.find(&queue);
    return found != _onHeap.end() ? std::optional(found->second) : std::nullopt;
}

void LgServiceMap::addReportedOnHeap(const LgQueue& queue, std::uint64_t count)
{
    const std::lock_guard guard(_mutex);
    const auto found = _onHeap.find(&queue);
    if (found != _onHeap.end()) found->second += count;
}

void LgServiceMap::forgetOnHeap(const LgQueue& queue)
{
    const std::lock_guard guard(_mutex);
    _onHeap.erase(&queue);
}

LgQueue* LgServiceMap::makeInFile(std::uint32_t threadId, const LgQueue::Observer* observer)
{
    std::uint32_t entries = _settings._entries;
    std::uint32_t characters = _settings._characters;
    if (_used + bytesOf(entries) + characters > _settings._limit)
    {
        entries = std::min(entries, SMALL_ENTRIES);
        characters = std::min(characters, SMALL_CHARACTERS);
    }
    const std::uint64_t size = roundUp(LgMap::PAGE + bytesOf(entries) + characters, GRANULE);
    std::list<Room> spaces;
    if (!findSpace(size, spaces)) return nullptr;
    const std::optional<std::uint32_t> index = findIndex();
    if (!index || !reserveFirst(spaces.front(), entries, characters))
    {
        if (index) _freeIndices.push_back(*index);
        _free.splice(_free.end(), spaces);
        return nullptr;
    }
    try
    {
        LgQueue* const queue = makeInSpace(threadId, spaces, *index, entries, characters);
        _blocks.back()->_observer = observer;
        return queue;
    }
    catch (...)
    {
        _free.splice(_free.end(), spaces);
        _freeIndices.push_back(*index);
        throw;
    }
}

// Takes the space out of the list when nothing can fail any more.
LgQueue* LgServiceMap::makeInSpace(std::uint32_t threadId, std::list<Room>& spaces,
                                   std::uint32_t index, std::uint32_t entries,
                                   std::uint32_t characters)
{
    auto block = std::make_unique<Block>(*this, spaces.front(), index, entries, characters);
    std::list<Block*> entered{block.get()};
    auto* const queue = new (block->_space._place) LgQueue(threadId, *block);
    enter(*block, *queue, entries, characters);
    _used += block->_space._size;
    block->_spaces.splice(block->_spaces.end(), spaces);
    _blocks.splice(_blocks.end(), entered);
    static_cast<void>(block.release());
    return queue;
}

bool LgServiceMap::findSpace(std::uint64_t size, std::list<Room>& found)
{
    const auto same = std::find_if(_free.begin(), _free.end(),
                                   [size](const Room& space) { return space._size == size; });
    if (same != _free.end())
    {
        found.splice(found.end(), _free, same);
        return true;
    }
    if (!_file->extend(_end + size)) return false;
    found.push_back({nullptr, _end, size});
    found.back()._place = static_cast<char*>(_file->map(_end, size));
    if (!found.back()._place) return false;
    _end += size;
    return true;
}

std::optional<std::uint32_t> LgServiceMap::findIndex()
{
    if (!_freeIndices.empty())
    {
        const std::uint32_t index = _freeIndices.back();
        _freeIndices.pop_back();
        return index;
    }
    const std::uint32_t index = _header->_queueCount;
    if (index == LgMap::MOST_QUEUES || !hasTableRoom(index)) return std::nullopt;
    // All can be given back without memory.
    _freeIndices.reserve(index + 1);
    ++_header->_queueCount;
    return index;
}

bool LgServiceMap::hasTableRoom(std::uint32_t index)
{
    if (index < _tableRoom) return true;
    const std::uint64_t at = LgMap::QUEUES_AT + std::uint64_t(index) * sizeof(LgMap::Queue);
    const std::uint64_t begin = at / LgMap::PAGE * LgMap::PAGE;
    // An entry may lie across the border of two pages.
    if (!_file->reserve(begin, 2 * LgMap::PAGE)) return false;
    _tableRoom = index + QUEUES_PER_PAGE;
    return true;
}

bool LgServiceMap::reserveFirst(const Room& space, std::uint32_t entries, std::uint32_t characters)
{
    const std::uint64_t firstEntries = std::min(bytesOf(entries), FIRST_ENTRIES);
    const std::uint64_t firstCharacters = std::min<std::uint64_t>(characters, FIRST_CHARACTERS);
    const std::uint64_t charactersAt = space._offset + LgMap::PAGE + bytesOf(entries);
    return _file->reserve(space._offset, roundUp(LgMap::PAGE + firstEntries, LgMap::PAGE)) &&
           _file->reserve(charactersAt / LgMap::PAGE * LgMap::PAGE,
                          roundUp(firstCharacters, LgMap::PAGE));
}

void LgServiceMap::enter(const Block& block, const LgQueue& queue, std::uint32_t entries,
                         std::uint32_t characters)
{
    const LgQueue::Places places = queue.getPlaces();
    LgMap::Queue& slot = queueAt(block._index);
    slot._thread = queue.getThreadId();
    slot._entries = entries;
    slot._characters = characters;
    slot._usableEntries = block._entries.getUsable();
    slot._usableCharacters = block._characters.getUsable();
    slot._entriesAt = LgMap::PAGE;
    slot._charactersAt = LgMap::PAGE + bytesOf(entries);
    slot._entriesBegin = places._entriesBegin;
    slot._entriesEnd = places._entriesEnd;
    slot._textBegin = places._textBegin;
    slot._textEnd = places._textEnd;
    slot._lost = places._lost;
    slot._reported = 0;
    // Last: from here on it counts.
    __atomic_store_n(&slot._block, block._space._offset, __ATOMIC_RELEASE);
}

// The queue is empty and destroyed.
void LgServiceMap::giveBack(Block& block) noexcept
{
    const std::lock_guard guard(_mutex);
    const std::unique_ptr<Block> owned(&block);
    _blocks.remove(&block);
    if (block._index == LgMap::NONE)
    {
        // One of the parent's, in the child of a fork.
        LgMapFile::unmap(block._space._place, block._space._size);
        return;
    }
    __atomic_store_n(&queueAt(block._index)._block, std::uint64_t(0), __ATOMIC_RELEASE);
    _freeIndices.push_back(block._index);
    _used -= block._space._size;
    clear(block);
    if (!block._isPrivate)
        _free.splice(_free.end(), block._spaces);
    else
        LgMapFile::unmap(block._space._place, block._space._size);
}

// Gives back the room of what was used.
void LgServiceMap::clear(const Block& block)
{
    const Room& space = block._space;
    const std::uint64_t entries = bytesOf(block._entries.getSize());
    const std::uint64_t parts[][2] = {
        {0, LgMap::PAGE + bytesOf(queueAt(block._index)._usableEntries)},
        {LgMap::PAGE + entries, queueAt(block._index)._usableCharacters}};
    for (const auto& [at, size] : parts)
        _file->clear(space._place + at, space._offset + at, roundUp(size, LgMap::PAGE));
}

void LgServiceMap::reportOnce(const char* what, const std::string& reason)
{
    if (_hasReported) return;
    _hasReported = true;
    std::cerr << what << ": " << reason << std::endl;
}

std::uint32_t LgServiceMap::indexOf(const LgQueue& queue) const
{
    const auto* const block = dynamic_cast<const Block*>(queue.getHome());
    return block && &block->_map == this ? block->_index : LgMap::NONE;
}

LgServiceMap::Room LgServiceMap::makeRoom(std::uint64_t size)
{
    const std::lock_guard guard(_mutex);
    std::list<Room> found;
    if (!isOpen() || !findSpace(roundUp(size, GRANULE), found)) return {};
    _used += found.front()._size;
    _rooms.splice(_rooms.end(), found);
    return _rooms.back();
}

bool LgServiceMap::reserve(const Room& room, std::uint64_t from, std::uint64_t to)
{
    const std::lock_guard guard(_mutex);
    const std::uint64_t begin = from / LgMap::PAGE * LgMap::PAGE;
    return isOpen() && _file->reserve(room._offset + begin, roundUp(to, LgMap::PAGE) - begin);
}

void LgServiceMap::giveBack(const Room& room)
{
    const std::lock_guard guard(_mutex);
    const auto isIt = [&room](const Room& other) { return other._offset == room._offset; };
    const auto place = std::find_if(_rooms.begin(), _rooms.end(), isIt);
    if (!room._place || place == _rooms.end()) return;
    _used -= room._size;
    _file->clear(room._place, room._offset, room._size);
    _free.splice(_free.end(), _rooms, place);
}

void LgServiceMap::reportNotKept(const std::string& reason)
{
    const std::lock_guard guard(_mutex);
    reportOnce(SOME_NOT_KEPT, reason.empty() && isOpen() ? _file->getError() : reason);
}

void LgServiceMap::commit(std::uint64_t number, LgMap::State state)
{
    const std::uint64_t word = (number << LgMap::STATE_BITS) | state;
    __atomic_store_n(&_header->_state, word, __ATOMIC_RELEASE);
}

void LgServiceMap::removeFileIfEmpty()
{
    const std::unique_lock guard(_mutex, std::try_to_lock);
    if (!guard || !isOpen()) return;
    for (const Block* const block : _blocks)
    {
        const auto* const queue = reinterpret_cast<const LgQueue*>(block->_space._place);
        if (!queue->isEmpty()) return;
    }
    for (const LgMap::WaitingLog& log : _header->_waiting)
    {
        const LgMap::Waiting& waiting = log._waiting[log._current];
        if (waiting._size > 0 || waiting._dropped > 0) return;
    }
    _file->remove();
}

void LgServiceMap::keepForChild(const LgQueue* own)
{
    for (const Block* const block : _blocks)
    {
        if (block->_index == LgMap::NONE) continue;
        Copy& copy = _kept.emplace_back();
        copy._place = block->_space._place;
        copy._hasEvents = copy._place == reinterpret_cast<const char*>(own);
        if (!copy._hasEvents)
        {
            copy._head.assign(copy._place, sizeof(LgQueue));
            continue;
        }
        const char* const entries = copy._place + LgMap::PAGE;
        copy._head.assign(copy._place, LgMap::PAGE + bytesOf(block->_entries.getUsable()));
        copy._text.assign(entries + bytesOf(block->_entries.getSize()),
                          block->_characters.getUsable());
    }
}

void LgServiceMap::forgetKept()
{
    _kept.clear();
}

void LgServiceMap::replace(const Block& block, const Copy& copy)
{
    char* const place = block._space._place;
    if (!LgMapFile::replaceByPrivate(place, block._space._size)) return;
    std::memcpy(place, copy._head.data(), copy._head.size());
    const std::uint64_t entries = bytesOf(block._entries.getSize());
    if (copy._hasEvents)
        std::memcpy(place + LgMap::PAGE + entries, copy._text.data(), copy._text.size());
}

// Other threads are not here, and what the parent's do meanwhile goes on in the shared memory until
// it is replaced: their queues are as they were before the fork, and will be emptied.
void LgServiceMap::leaveInChild()
{
    if (!isOpen()) return;
    for (Block* const block : _blocks)
    {
        if (block->_index == LgMap::NONE) continue;
        block->_index = LgMap::NONE;
        const auto isIt = [block](const Copy& copy) { return copy._place == block->_space._place; };
        const auto copy = std::find_if(_kept.begin(), _kept.end(), isIt);
        if (copy != _kept.end()) replace(*block, *copy);
    }
    for (const std::list<Room>* const rooms : {&_free, &_rooms})
        for (const Room& room : *rooms) LgMapFile::unmap(room._place, room._size);
    LgMapFile::unmap(_header, LgMap::BLOCKS_AT);
    _free.clear();
    _rooms.clear();
    _freeIndices.clear();
    _header = nullptr;
    _queues = nullptr;
    _file.reset();
}

} // namespace Zu

#include "base/lgStream.h"

#include "base/lgNumberText.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace Zu
{

namespace
{

constexpr char LOST_TEXT = '#';
constexpr std::size_t DECIMALS = 6;

// In a ring that is not wholly usable yet, this many places stay free before the end of the usable
// part: a mark for lost text, terminators, and the place of the next character.
constexpr std::uint32_t SPARE = 4;

constinit std::atomic<LgStream::RoomFunction> roomFunction{nullptr};

} // namespace

LgStream::LgStream() : LgStream(BufSize) {}

LgStream::LgStream(std::uint32_t size)
    : _buffer(new char[size]), _readPos(size), _writePos(size), _lastComplete(size),
      _overflowed(false), _terminatorPending(false), _outputFlags(0), _readPosSeen(0),
      _straightEnd(0), _usable(size), _memory(nullptr)
{
    _buffer[0] = '\0';
}

LgStream::LgStream(LgRingMemory& memory)
    : _buffer(std::shared_ptr<void>(), static_cast<char*>(memory.getBegin())),
      _readPos(memory.getSize()), _writePos(memory.getSize()), _lastComplete(memory.getSize()),
      _overflowed(false), _terminatorPending(false), _outputFlags(0), _readPosSeen(0),
      _straightEnd(0), _usable(memory.getUsable()), _memory(&memory)
{
    // As if an empty string had been read.
    _buffer[0] = '\0';
    _writePos = 1;
}

LgStream::LgStream(const LgStream& other)
    : _buffer(other._buffer), _readPos(other._readPos), _writePos(other._writePos),
      _lastComplete(other._lastComplete), _overflowed(other.hasOverflowed()),
      _terminatorPending(other._terminatorPending), _outputFlags(other._outputFlags),
      _readPosSeen(other._readPosSeen), _straightEnd(other._straightEnd), _usable(other._usable),
      _memory(other._memory)
{
}

LgStream& LgStream::operator=(const LgStream& other)
{
    if (this == &other) return *this;
    _buffer = other._buffer;
    _readPos = other._readPos;
    _writePos = other._writePos;
    _lastComplete = other._lastComplete;
    _overflowed.store(other.hasOverflowed(), std::memory_order_relaxed);
    _terminatorPending = other._terminatorPending;
    _outputFlags = other._outputFlags;
    _readPosSeen = other._readPosSeen;
    _straightEnd = other._straightEnd;
    _usable = other._usable;
    _memory = other._memory;
    return *this;
}

LgStream::~LgStream() = default;

LgStream& LgStream::operator<<(std::string_view text)
{
    if (text.empty()) return insert("", 0);
    // An embedded NUL would end the string for the reader.
    return insert(text.data(), std::min(text.find('\0'), text.size()));
}

LgStream& LgStream::operator<<(const std::string& text)
{
    return *this << std::string_view(text);
}

LgStream& LgStream::operator<<(signed char character)
{
    return *this << static_cast<char>(character);
}

LgStream& LgStream::operator<<(unsigned char character)
{
    return *this << static_cast<char>(character);
}

LgStream& LgStream::operator<<(bool value)
{
    return *this << (value ? "true" : "false");
}

template <class Integer> LgStream& LgStream::insertInteger(Integer value)
{
    // The digits go straight into the ring if they are sure to fit.
    constexpr std::uint32_t LENGTH = std::numeric_limits<Integer>::digits10 + 2;
    const std::uint32_t position = _writePos.own();
    if (position + LENGTH < _straightEnd)
    {
        char* const place = _buffer.get() + position;
        const char* const end = std::to_chars(place, place + LENGTH, value).ptr;
        _outputFlags |= TEXT_INSERTED;
        _writePos = position + static_cast<std::uint32_t>(end - place);
        return *this;
    }
    char text[LENGTH];
    const char* const end = std::to_chars(text, text + LENGTH, value).ptr;
    return insert(text, static_cast<std::size_t>(end - text));
}

LgStream& LgStream::operator<<(short value)
{
    return insertInteger(value);
}

LgStream& LgStream::operator<<(unsigned short value)
{
    return insertInteger(value);
}

LgStream& LgStream::operator<<(int value)
{
    return insertInteger(value);
}

LgStream& LgStream::operator<<(unsigned int value)
{
    return insertInteger(value);
}

LgStream& LgStream::operator<<(long value)
{
    return insertInteger(value);
}

LgStream& LgStream::operator<<(unsigned long value)
{
    return insertInteger(value);
}

LgStream& LgStream::operator<<(long long value)
{
    return insertInteger(value);
}

LgStream& LgStream::operator<<(unsigned long long value)
{
    return insertInteger(value);
}

LgStream& LgStream::operator<<(float value)
{
    return *this << static_cast<double>(value);
}

LgStream& LgStream::operator<<(double value)
{
    // The text goes straight into the ring if it is sure to fit.
    const std::uint32_t position = _writePos.own();
    if (position + LG_USUAL_DOUBLE_TEXT_SIZE < _straightEnd)
    {
        char* const place = _buffer.get() + position;
        if (const char* const end = lgWriteUsualDouble(place, value))
        {
            _outputFlags |= TEXT_INSERTED;
            _writePos = position + static_cast<std::uint32_t>(end - place);
            return *this;
        }
    }
    char text[LG_DOUBLE_TEXT_SIZE];
    const char* const end = lgWriteDouble(text, value);
    return insert(text, static_cast<std::size_t>(end - text));
}

LgStream& LgStream::operator<<(long double value)
{
    if (std::isnan(value)) return *this << "nan";
    // Sign, digits before the point, decimal point of any locale, six digits, terminator.
    char text[std::numeric_limits<long double>::max_exponent10 + 10 + MB_LEN_MAX];
    const int length = std::snprintf(text, sizeof text, "%Lf", value);
    const auto size = static_cast<std::size_t>(std::max(length, 0));
    if (length < 0 || std::isinf(value)) return insert(text, size);
    // The separator between the whole number and the decimals is the locale's.
    const std::size_t point = std::strspn(text, "-0123456789");
    std::memmove(text + point + 1, text + size - DECIMALS, DECIMALS);
    text[point] = '.';
    return insert(text, point + 1 + DECIMALS);
}

LgStream& LgStream::operator<<(void* pointer)
{
    return *this << static_cast<const void*>(pointer);
}

LgStream& LgStream::operator<<(const void* pointer)
{
    char text[40];
    const int length = std::snprintf(text, sizeof text, "%p", pointer);
    return insert(text, static_cast<std::size_t>(std::max(length, 0)));
}

LgStream& LgStream::operator<<(LgStream& (*manipulator)(LgStream&))
{
    return manipulator(*this);
}

LgStream& ends(LgStream& stream)
{
    stream.completeString();
    return stream;
}

// Handles what insert() does not: a piece that wraps or may find no room.
LgStream& LgStream::insertAtEdge(const char* text, std::size_t length)
{
    if (!makeRoom()) return *this;
    _outputFlags |= TEXT_INSERTED;
    grow(length);
    if (length <= roomNow() || hasRoomFor(length) || awaitRoom(length))
        insertWrapping(text, length);
    else
        overflow();
    findStraightEnd();
    return *this;
}

void LgStream::insertWrapping(const char* text, std::size_t length)
{
    const std::uint32_t position = _writePos.own();
    const std::size_t tillWrap = std::min<std::size_t>(length, _writePos.size() - position);
    std::memcpy(_buffer.get() + position, text, tillWrap);
    std::memcpy(_buffer.get(), text + tillWrap, length - tillWrap);
    _writePos = static_cast<std::uint32_t>(position + length);
}

void LgStream::lookForRoom()
{
    // Pairs with the release in take(): the reader has copied everything before its position.
    _readPosSeen = _readPos;
    findStraightEnd();
}

void LgStream::setRoomFunction(RoomFunction function)
{
    roomFunction.store(function, std::memory_order_release);
}

bool LgStream::hasRoomFor(std::size_t length)
{
    lookForRoom();
    return length <= roomNow();
}

// Whether there would be room if the reader had taken everything before this text.
bool LgStream::canEverHaveRoomFor(std::size_t length) const
{
    const std::uint32_t used = _lastComplete.distanceTo(_writePos.own());
    return length <= std::min(leftOfUsable(), leftOfText()) &&
           used + length + SPARE <= _writePos.size();
}

bool LgStream::awaitRoom(std::size_t length)
{
    const RoomFunction function = roomFunction.load(std::memory_order_acquire);
    if (!function || !canEverHaveRoomFor(length)) return false;
    function(*this, length);
    return hasRoomFor(length);
}

void LgStream::findStraightEnd()
{
    const std::uint32_t size = _writePos.size();
    if (_terminatorPending)
        _straightEnd = 0;
    else if (_readPosSeen > _writePos.own())
        _straightEnd = _readPosSeen - 1;
    else
        _straightEnd = _readPosSeen == 0 ? size - 1 : size;
    if (_usable < size) _straightEnd = std::min(_straightEnd, _usable - SPARE);
    if (size > BufSize) _straightEnd = std::min(_straightEnd, _writePos.own() + leftOfText());
}

// Makes the places of this many more characters usable, and of what follows them, as far as
// possible.
void LgStream::grow(std::size_t length)
{
    const std::uint32_t size = _writePos.size();
    if (_usable == size) return;
    const std::size_t end = _writePos.own() + length + std::size_t{2} * SPARE;
    const auto needed = static_cast<std::uint32_t>(std::min<std::size_t>(end, size));
    if (needed <= _usable) return;
    _usable = _memory->grow(needed);
    findStraightEnd();
}

// How many places there are before the end of the usable part; enough if that is the whole ring.
std::uint32_t LgStream::leftOfUsable() const
{
    const std::uint32_t position = _writePos.own();
    if (_usable == _writePos.size()) return _usable;
    return position + SPARE < _usable ? _usable - SPARE - position : 0;
}

// How many characters the string that is being inserted may still get.
std::uint32_t LgStream::leftOfText() const
{
    if (_writePos.size() <= BufSize) return BufSize;
    const std::uint32_t length = _lastComplete.distanceTo(_writePos.own());
    return length < BufSize - 1 ? BufSize - 1 - length : 0;
}

// The same as room(), for the writer: what it can use at once, as far as it has seen the reader.
std::uint32_t LgStream::roomNow() const
{
    return std::min({room(_readPosSeen), leftOfUsable(), leftOfText()});
}

// Whether the writer must not step further.
bool LgStream::isAtEnd() const
{
    return _writePos.plus(1) == _readPosSeen || leftOfUsable() == 0;
}

// Steps past a terminator on which the last string was left. If there is no room for a character,
// it closes the string where it is and returns false.
bool LgStream::makeRoom()
{
    if (isFullAtEdge() && !awaitRoom(1))
    {
        _overflowed.store(true, std::memory_order_relaxed);
        // A pending terminator is already there, and the reader may be reading it.
        if (!_terminatorPending) _buffer[_writePos.own()] = '\0';
        _outputFlags |= STRING_CLOSED;
        return false;
    }
    if (_terminatorPending)
    {
        ++_writePos;
        _terminatorPending = false;
    }
    return true;
}

bool LgStream::isFullAtEdge()
{
    grow(1);
    if (roomNow() == 0) lookForRoom();
    return roomNow() == 0;
}

// How many characters there is room for before a reader at this position. One place stays free, and
// a terminator that was not stepped past takes another.
std::uint32_t LgStream::room(std::uint32_t readPos) const
{
    const std::uint32_t ahead = _writePos.distanceTo(readPos - 1);
    return ahead == 0 ? 0 : ahead - (_terminatorPending ? 1 : 0);
}

// Inserts the mark in place of the lost text.
void LgStream::overflow()
{
    _overflowed.store(true, std::memory_order_relaxed);
    _buffer[_writePos++] = LOST_TEXT;
    _buffer[_writePos.own()] = '\0';
}

// Handles what completeString() does not: the end of the ring, a ring that is nearly full, an empty
// string at the very beginning.
void LgStream::completeAtEdge()
{
    noteEnd();
    // The steps below must never pass the position at which the reader was last seen.
    _readPosSeen = _readPos;
    grow(1);
    if (_terminatorPending)
    {
        // Nothing was inserted since the last string was closed on the pending terminator: there is
        // no other string.
        if (isAtEnd()) return;
        ++_writePos;
        _terminatorPending = false;
        findStraightEnd();
        return;
    }
    // An empty string at the very beginning would leave no trace. It is put after the first NUL,
    // which then counts as read.
    if (_writePos.own() == _lastComplete.own()) ++_writePos;
    _buffer[_writePos.own()] = '\0';
    // From this store on the reader sees the string.
    _lastComplete = _writePos.own();
    if (isAtEnd())
        _terminatorPending = true;
    else
        ++_writePos;
    findStraightEnd();
}

void LgStream::resetTo(const Mark& mark)
{
    _writePos = mark._writePos;
    _lastComplete = mark._lastComplete;
    _terminatorPending = mark._terminatorPending;
    // Text that began on the NUL of a fresh ring has overwritten it.
    if (mark._writePos == mark._lastComplete && !mark._terminatorPending)
        _buffer[mark._writePos] = '\0';
    findStraightEnd();
}

// The string was ended and then more was inserted. The reader has not seen what follows: it takes
// one text per entry, and this entry is not published yet.
void LgStream::keepFirst(const Mark& mark)
{
    const std::uint32_t mask = _writePos.size() - 1;
    std::uint32_t end = mark._terminatorPending ? mark._writePos + 1 : mark._writePos;
    // There is no text on the NUL of a fresh ring, but its end may follow.
    if (end == mark._lastComplete && _buffer[end & mask] == '\0') ++end;
    while (_buffer[end & mask] != '\0') ++end;
    _lastComplete = end & mask;
    _writePos = end & mask;
    _readPosSeen = _readPos;
    _terminatorPending = isAtEnd();
    if (!_terminatorPending) ++_writePos;
    findStraightEnd();
}

bool LgStream::isFull() const
{
    return room(_readPos) == 0;
}

unsigned int LgStream::getNumCharacters() const
{
    return room(_readPos);
}

unsigned int LgStream::getMaxSize()
{
    return BufSize - 2;
}

unsigned int LgStream::getNextSize() const
{
    Next next{};
    return findNext(next) ? next._length : 0;
}

bool LgStream::findNext(Next& next) const
{
    // Pairs with the release in completeString(): the characters up to there are complete.
    const std::uint32_t complete = _lastComplete;
    if (complete == _readPos.own()) return false;
    next = getNextAt(_readPos.own());
    return true;
}

LgStream::Next LgStream::getNextAt(std::uint32_t position) const
{
    Next next{};
    // The reader is on the terminator of the previous string, except at the very beginning.
    const std::uint32_t size = _readPos.size();
    next._begin = _buffer[position] == '\0' ? (position + 1) & (size - 1) : position;
    const char* const begin = _buffer.get() + next._begin;
    const std::uint32_t tillWrap = size - next._begin;
    const void* const end = std::memchr(begin, '\0', tillWrap);
    next._length = end ? static_cast<std::uint32_t>(static_cast<const char*>(end) - begin)
                       : tillWrap + static_cast<std::uint32_t>(std::strlen(_buffer.get()));
    return next;
}

// Whoever knows that the entry of the text is published need not ask the producer's cache line
// whether the text is complete.
std::string_view LgStream::peek(std::uint32_t& position, char* scratch) const
{
    const Next next = getNextAt(position);
    position = (next._begin + next._length) & (_readPos.size() - 1);
    const std::uint32_t tillWrap = _readPos.size() - next._begin;
    if (next._length <= tillWrap) return {_buffer.get() + next._begin, next._length};
    std::memcpy(scratch, _buffer.get() + next._begin, tillWrap);
    std::memcpy(scratch + tillWrap, _buffer.get(), next._length - tillWrap);
    return {scratch, next._length};
}

unsigned int LgStream::take(char* destination)
{
    unsigned int length = 0;
    take(destination, _readPos.size(), length);
    return length;
}

bool LgStream::take(char* destination, std::size_t capacity, unsigned int& length)
{
    Next next{};
    const bool isThere = findNext(next);
    length = next._length;
    if (length >= capacity) return false;
    if (!isThere)
    {
        *destination = '\0';
        return true;
    }
    const std::uint32_t tillWrap = std::min(next._length, _readPos.size() - next._begin);
    std::memcpy(destination, _buffer.get() + next._begin, tillWrap);
    std::memcpy(destination + tillWrap, _buffer.get(), next._length - tillWrap);
    destination[next._length] = '\0';
    _readPos = next._begin + next._length;
    _overflowed.store(false, std::memory_order_relaxed);
    return true;
}

} // namespace Zu

#include "base/lgStream.h"

#include "base/lgNumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace Zu
{

namespace
{

constexpr unsigned char TEXT_INSERTED = 1;
constexpr unsigned char STRING_CLOSED = 2;

constexpr char LOST_TEXT = '#';

} // namespace

LgStream::LgStream() : LgStream(BufSize) {}

LgStream::LgStream(std::uint32_t size)
    : _buffer(new char[size]), _readPos(size), _writePos(size), _lastComplete(size),
      _overflowed(false), _terminatorPending(false), _outputFlags(0), _readPosSeen(0)
{
    _buffer[0] = '\0';
}

LgStream::LgStream(const LgStream& other)
    : _buffer(other._buffer), _readPos(other._readPos), _writePos(other._writePos),
      _lastComplete(other._lastComplete), _overflowed(other.hasOverflowed()),
      _terminatorPending(other._terminatorPending), _outputFlags(other._outputFlags),
      _readPosSeen(other._readPosSeen)
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
    return *this;
}

LgStream::~LgStream() = default;

LgStream& LgStream::operator<<(const char* text)
{
    if (!text) text = "(null)";
    return insert(text, std::strlen(text));
}

LgStream& LgStream::operator<<(char* text)
{
    return *this << static_cast<const char*>(text);
}

LgStream& LgStream::operator<<(std::string_view text)
{
    // A NUL inside would end the string for the reader.
    return insert(text.data(), std::min(text.find('\0'), text.size()));
}

LgStream& LgStream::operator<<(const std::string& text)
{
    return *this << std::string_view(text);
}

LgStream& LgStream::operator<<(char character)
{
    return insertCharacter(character);
}

LgStream& LgStream::operator<<(signed char character)
{
    return insertCharacter(static_cast<char>(character));
}

LgStream& LgStream::operator<<(unsigned char character)
{
    return insertCharacter(static_cast<char>(character));
}

LgStream& LgStream::operator<<(bool value)
{
    return *this << (value ? "true" : "false");
}

template <class Integer> LgStream& LgStream::insertInteger(Integer value)
{
    char text[std::numeric_limits<Integer>::digits10 + 3];
    const char* const end = std::to_chars(text, text + sizeof text, value).ptr;
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
    char text[LG_DOUBLE_TEXT_SIZE];
    const char* const end = lgWriteDouble(text, value);
    return insert(text, static_cast<std::size_t>(end - text));
}

LgStream& LgStream::operator<<(long double value)
{
    if (std::isnan(value)) return *this << "nan";
    // Sign, digits before the point, point, six digits, terminator.
    char text[std::numeric_limits<long double>::max_exponent10 + 10];
    const int length = std::snprintf(text, sizeof text, "%Lf", value);
    return insert(text, static_cast<std::size_t>(std::max(length, 0)));
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

LgStream& LgStream::insert(const char* text, std::size_t length)
{
    if (!makeRoom()) return *this;
    _outputFlags |= TEXT_INSERTED;
    if (length > room(_readPosSeen))
    {
        _readPosSeen = _readPos;
        if (length > room(_readPosSeen))
        {
            overflow();
            return *this;
        }
    }
    const std::uint32_t position = _writePos;
    const std::size_t tillWrap = std::min<std::size_t>(length, _writePos.size() - position);
    std::memcpy(_buffer.get() + position, text, tillWrap);
    std::memcpy(_buffer.get(), text + tillWrap, length - tillWrap);
    _writePos = static_cast<std::uint32_t>(position + length);
    return *this;
}

LgStream& LgStream::insertCharacter(char character)
{
    if (!makeRoom()) return *this;
    _outputFlags |= TEXT_INSERTED;
    _buffer[_writePos++] = character;
    return *this;
}

// Steps past a terminator on which the last string was left; false, and the string is closed where
// it stands, if there is no room for a character.
bool LgStream::makeRoom()
{
    if (room(_readPosSeen) == 0)
    {
        _readPosSeen = _readPos;
        if (room(_readPosSeen) == 0)
        {
            _overflowed.store(true, std::memory_order_relaxed);
            _buffer[_writePos] = '\0';
            _outputFlags |= STRING_CLOSED;
            return false;
        }
    }
    if (_terminatorPending)
    {
        ++_writePos;
        _terminatorPending = false;
    }
    return true;
}

// The characters that find room before a reader at this position; one place stays free, and one
// more is taken by a terminator that was not stepped past.
std::uint32_t LgStream::room(std::uint32_t readPos) const
{
    const std::uint32_t ahead = _writePos.distanceTo(readPos - 1);
    return ahead == 0 ? 0 : ahead - (_terminatorPending ? 1 : 0);
}

// Puts the mark of lost text in its place.
void LgStream::overflow()
{
    _overflowed.store(true, std::memory_order_relaxed);
    _buffer[_writePos++] = LOST_TEXT;
    _buffer[_writePos] = '\0';
}

void LgStream::completeString()
{
    _outputFlags |= STRING_CLOSED;
    // The position below is stepped past, which must never lead past the reader that was seen.
    _readPosSeen = _readPos;
    if (_terminatorPending)
    {
        // Nothing was inserted since the last string was closed, on a terminator that stands yet.
        if (_writePos.plus(1) == _readPosSeen) return;
        ++_writePos;
        _terminatorPending = false;
    }
    // An empty string at the very beginning would leave no trace: it is put behind the first NUL,
    // which then counts as read.
    if (_writePos == _lastComplete) ++_writePos;
    _buffer[_writePos] = '\0';
    // From this store on the reader sees the string.
    _lastComplete = _writePos;
    if (_writePos.plus(1) == _readPosSeen)
        _terminatorPending = true;
    else
        ++_writePos;
}

LgStream::Mark LgStream::getMark() const
{
    return {_writePos, _lastComplete, _terminatorPending};
}

void LgStream::resetTo(const Mark& mark)
{
    _writePos = mark._writePos;
    _lastComplete = mark._lastComplete;
    _terminatorPending = mark._terminatorPending;
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
    const std::uint32_t complete = _lastComplete;
    const std::uint32_t position = _readPos;
    if (complete == position) return 0;
    const std::uint32_t mask = _readPos.size() - 1;
    std::uint32_t first = position;
    if (_buffer[first] == '\0') first = (first + 1) & mask;
    std::uint32_t length = 0;
    while (_buffer[(first + length) & mask] != '\0') ++length;
    return length;
}

LgStream& LgStream::operator>>(char* destination)
{
    // Pairs with the release in completeString(): the characters up to there are complete.
    const std::uint32_t complete = _lastComplete;
    std::uint32_t position = _readPos;
    if (complete == position)
    {
        *destination = '\0';
        return *this;
    }
    const std::uint32_t mask = _readPos.size() - 1;
    if (_buffer[position] == '\0') position = (position + 1) & mask;
    for (; _buffer[position] != '\0'; position = (position + 1) & mask)
        *destination++ = _buffer[position];
    *destination = '\0';
    _readPos = position;
    _overflowed.store(false, std::memory_order_relaxed);
    return *this;
}

} // namespace Zu

/// @file
/// A ring of text from one thread to another.

#ifndef ZU_BASE_LGSTREAM_H
#define ZU_BASE_LGSTREAM_H

#include "baseApi.h"
#include "compiler.h"
#include "lgRingIndex.h"
#include "lgRingMemory.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace Zu
{

/// A ring of 32,768 characters. One thread writes strings into it with insertion operators, and
/// another takes them when they are finished. It never allocates, blocks or raises after
/// construction: a piece of text that does not fit becomes "#", and one that finds no room at all
/// is dropped.
///
/// It has no formatting state. Integers are decimal; `float`, `double` and `long double` have six
/// decimals; a NaN is "nan" without a sign; `bool` is "true" or "false"; the three character types
/// are characters; pointers have the platform's form; a null text is "(null)". A number is never
/// shortened, however long.
///
/// Thread-safety: one writer and one reader, without a lock. hasOverflowed() is only a hint. Copies
/// share the ring; streams are not meant to be copied on their own.
class ZU_BASE_API LgStream
{
    friend class LgQueue;

public:
    /// How many characters the ring has.
    static constexpr std::uint32_t BufSize = 32768;

    /// An empty stream with a ring of its own.
    LgStream();

    /// @{
    /// Shares the ring of the other stream and copies its positions.
    LgStream(const LgStream& other);
    LgStream& operator=(const LgStream& other);
    /// @}

    ~LgStream();

    // For the writer.

    /// @{
    /// Inserts a value in the form documented at the class. A text is inserted up to its first NUL;
    /// a NUL character inserts nothing.
    LgStream& operator<<(const char* text)
    {
        if (!text) text = "(null)";
        return insert(text, std::strlen(text));
    }

    LgStream& operator<<(char* text)
    {
        return *this << static_cast<const char*>(text);
    }

    LgStream& operator<<(std::string_view text);
    LgStream& operator<<(const std::string& text);
    LgStream& operator<<(char character)
    {
        // A NUL would end the string, so it is not inserted.
        return insert(&character, character == '\0' ? 0 : 1);
    }

    LgStream& operator<<(signed char character);
    LgStream& operator<<(unsigned char character);
    LgStream& operator<<(bool value);
    LgStream& operator<<(short value);
    LgStream& operator<<(unsigned short value);
    LgStream& operator<<(int value);
    LgStream& operator<<(unsigned int value);
    LgStream& operator<<(long value);
    LgStream& operator<<(unsigned long value);
    LgStream& operator<<(long long value);
    LgStream& operator<<(unsigned long long value);
    LgStream& operator<<(float value);
    LgStream& operator<<(double value);
    LgStream& operator<<(long double value);
    LgStream& operator<<(void* pointer);
    LgStream& operator<<(const void* pointer);
    /// @}

    /// Applies a manipulator; ends() is the only one.
    LgStream& operator<<(LgStream& (*manipulator)(LgStream&));

    /// How many characters insertPadded() reads.
    static constexpr std::size_t PADDED_SIZE = 32;

    /// Inserts the first `length` of PADDED_SIZE characters, from 1 to all of them, with no
    /// NUL among them. A copy of fixed size takes less time than one of any length. Returns false,
    /// and has done nothing, where it can't be made: then the operators above are to be used.
    bool insertPadded(const char* text, std::uint32_t length)
    {
        const std::uint32_t position = _writePos.own();
        if (position + PADDED_SIZE >= _straightEnd) return false;
        _outputFlags |= TEXT_INSERTED;
        // Up to the end of the straight part the places are the writer's; the next piece replaces
        // what is too much.
        std::memcpy(_buffer.get() + position, text, PADDED_SIZE);
        _writePos = position + length;
        return true;
    }

    /// Ends the string. From here on the reader can take it.
    void completeString()
    {
        const std::uint32_t position = _writePos.own();
        if (position + 1 >= _straightEnd || position == _lastComplete.own())
            return completeAtEdge();
        noteEnd();
        _buffer[position] = '\0';
        // From this store on the reader sees the string.
        _lastComplete = position;
        _writePos = position + 1;
    }

    /// Clears the output flags, for a new string.
    void resetOutputFlags()
    {
        _outputFlags = 0;
    }

    /// Bit 0: text, even empty text, was inserted since the last reset. Bit 1: the string is
    /// closed.
    unsigned int getOutputFlags() const
    {
        return _outputFlags & (TEXT_INSERTED | STRING_CLOSED);
    }

    /// Whether there is no room for another character.
    bool isFull() const;

    /// Whether text was lost since the reader last took a string.
    bool hasOverflowed() const
    {
        return _overflowed.load(std::memory_order_relaxed);
    }

    /// How many characters there is room for.
    unsigned int getNumCharacters() const;

    /// Called by a producer whose text finds no room for as many characters as are to be inserted
    /// next: it may wait until hasRoomFor() returns true. What there is no room for afterwards is
    /// lost.
    using RoomFunction = void (*)(LgStream& stream, std::size_t length);

    /// Sets the function for the streams of all threads; null, the default, for none. Any thread
    /// may call it.
    static void setRoomFunction(RoomFunction function);

    /// Whether there is room for a text of this length. For the producer, in its room function.
    bool hasRoomFor(std::size_t length);

    /// The length of the longest string that the ring can hold.
    static unsigned int getMaxSize();

    // For the reader.

    /// The length of the next string, without terminator; 0 if there is none.
    unsigned int getNextSize() const;

    /// Takes the next string, or the empty one if there is none. `destination` must have room for
    /// 32,768 characters.
    LgStream& operator>>(char* destination)
    {
        take(destination);
        return *this;
    }

    /// The same; returns the length of the string.
    unsigned int take(char* destination);

    /// The same for a `destination` with room for `capacity` characters, the terminator included:
    /// returns whether the next string fits, and sets `length`. One that does not fit stays.
    bool take(char* destination, std::size_t capacity, unsigned int& length);

protected:
    /// Makes a ring of another size, a power of two from 4 on, for tests.
    explicit LgStream(std::uint32_t size);

    /// Makes a ring of this memory's size, from 32,768 characters on. A string is never longer than
    /// it can be in a ring of 32,768.
    explicit LgStream(LgRingMemory& memory);

private:
    // The writer's data have a cache line of their own, which the reader's moves do not invalidate.
    static constexpr std::size_t CACHE_LINE = 64;

    // Where a string begins, so that it can be withdrawn before the reader may look at it.
    struct Mark
    {
        std::uint32_t _writePos;
        std::uint32_t _lastComplete;
        bool _terminatorPending;
    };

    static constexpr unsigned char TEXT_INSERTED = 1;
    static constexpr unsigned char STRING_CLOSED = 2;
    // Not exposed: the string was closed a second time.
    static constexpr unsigned char CLOSED_AGAIN = 4;

    Mark getMark() const
    {
        return {_writePos.own(), _lastComplete.own(), _terminatorPending};
    }

    void resetTo(const Mark& mark);

    void noteEnd()
    {
        const int again = (_outputFlags & STRING_CLOSED) << 1;
        _outputFlags = static_cast<unsigned char>(_outputFlags | STRING_CLOSED | again);
    }

    // Closes what was inserted since the mark unless it is closed already, and makes sure that it
    // is one string, as an event has only one.
    void completeOne(const Mark& mark)
    {
        if (_lastComplete.own() == mark._lastComplete) completeString();
        const bool isBehindEnd = _terminatorPending || _writePos.own() == _lastComplete.plus(1);
        if (!isBehindEnd || (_outputFlags & CLOSED_AGAIN) != 0) keepFirst(mark);
    }

    void keepFirst(const Mark& mark);

    // The same as isFull(), for the writer.
    bool isFullForWriter()
    {
        return _writePos.own() >= _straightEnd && isFullAtEdge();
    }

    // Inline for text that is copied in one piece with room to spare, which is nearly always the
    // case.
    LgStream& insert(const char* text, std::size_t length)
    {
        const std::uint32_t position = _writePos.own();
        if (position + length >= _straightEnd) return insertAtEdge(text, length);
        _outputFlags |= TEXT_INSERTED;
        std::memcpy(_buffer.get() + position, text, length);
        _writePos = static_cast<std::uint32_t>(position + length);
        return *this;
    }

    // Where the next string begins and how long it is; false if there is none.
    struct Next
    {
        std::uint32_t _begin;
        std::uint32_t _length;
    };
    bool findNext(Next& next) const;

    // The string behind the one that ends at `position`; it must be complete.
    Next getNextAt(std::uint32_t position) const;

    // For a reader that looks ahead: the same; `position` moves to the end of the string. `scratch`
    // has room for the longest string; it is used if the string wraps.
    std::string_view peek(std::uint32_t& position, char* scratch) const;

    // The reader is done with everything up to the end of a string.
    void takeUpTo(std::uint32_t position)
    {
        _readPos = position;
        // Asked first, since it stands in the writer's cache line.
        if (_overflowed.load(std::memory_order_relaxed))
            _overflowed.store(false, std::memory_order_relaxed);
    }

    // Prefetches a place that will be written soon.
    void fetchAhead() const
    {
        constexpr std::uint32_t CHARACTERS = 256;
        Compiler::prefetchForWriting(_buffer.get() + _writePos.plus(CHARACTERS));
    }

    LgStream& insertAtEdge(const char* text, std::size_t length);
    void completeAtEdge();
    bool isFullAtEdge();
    template <class Integer> LgStream& insertInteger(Integer value);
    void lookForRoom();
    bool canEverHaveRoomFor(std::size_t length) const;
    bool awaitRoom(std::size_t length);
    void findStraightEnd();
    bool makeRoom();
    void insertWrapping(const char* text, std::size_t length);
    std::uint32_t room(std::uint32_t readPos) const;
    std::uint32_t roomNow() const;
    std::uint32_t leftOfUsable() const;
    std::uint32_t leftOfText() const;
    bool isAtEnd() const;
    void grow(std::size_t length);
    void overflow();

    std::shared_ptr<char[]> _buffer;
    alignas(CACHE_LINE) LgRingIndex _readPos;
    alignas(CACHE_LINE) LgRingIndex _writePos;
    LgRingIndex _lastComplete;
    std::atomic<bool> _overflowed;
    bool _terminatorPending;
    unsigned char _outputFlags;
    // The reader's position when the writer last looked; it can only have advanced since.
    std::uint32_t _readPosSeen;
    // The writer may advance to just before this position without checking the reader or wrapping;
    // 0 while it has to check first.
    std::uint32_t _straightEnd;
    // How many characters of the ring can be used so far, and who makes more of them usable; null
    // if all can be used from the beginning.
    std::uint32_t _usable;
    LgRingMemory* _memory;
};

/// Ends the string that is being inserted.
ZU_BASE_API LgStream& ends(LgStream& stream);

} // namespace Zu

#endif

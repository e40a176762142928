// The floor of a logger, hand-written: a ring of fixed entries, and a thread that writes them in
// batches. It counts no losses, needs one producer, and lets no event outlive the process.

#ifndef ZU_BENCH_FLOORQUEUE_H
#define ZU_BENCH_FLOORQUEUE_H

#include <array>
#include <atomic>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace bench
{

// An event: what a line needs.
class FloorEntry
{
public:
    void begin(std::uint64_t time, std::uint32_t thread)
    {
        _time = time;
        _thread = thread;
        _length = 0;
    }

    void put(const char* text, std::size_t length)
    {
        std::memcpy(_text.data() + _length, text, length);
        _length += static_cast<std::uint32_t>(length);
    }

    template <class Number> void putNumber(Number number)
    {
        endAt(std::to_chars(end(), limit(), number).ptr);
    }

    void putFixed(double number)
    {
        endAt(std::to_chars(end(), limit(), number, std::chars_format::fixed, 6).ptr);
    }

    // Formats the line, of at most LONGEST_LINE characters, and returns its end.
    char* putLine(char* place) const
    {
        place = putDigits(place, static_cast<std::uint32_t>(_time >> 32));
        *place++ = ' ';
        place = putDigits(place, static_cast<std::uint32_t>(_time));
        std::memcpy(place, " (0x", 4);
        place += 4;
        for (int shift = 28; shift >= 0; shift -= 4)
            *place++ = "0123456789abcdef"[(_thread >> shift) & 15U];
        std::memcpy(place, ") Warning: ", 11);
        place += 11;
        std::memcpy(place, _text.data(), _length);
        place += _length;
        *place++ = '\n';
        return place;
    }

    static constexpr std::size_t LONGEST_LINE = 192;

private:
    char* end()
    {
        return _text.data() + _length;
    }

    char* limit()
    {
        return _text.data() + _text.size();
    }

    void endAt(const char* end)
    {
        _length = static_cast<std::uint32_t>(end - _text.data());
    }

    static char* putDigits(char* place, std::uint32_t number)
    {
        for (int i = 9; i >= 0; --i, number /= 10) place[i] = static_cast<char>('0' + number % 10);
        return place + 10;
    }

    std::uint64_t _time = 0;
    std::uint32_t _thread = 0;
    std::uint32_t _length = 0;
    std::array<char, 112> _text;
};

// Lines gathered for a file, and written when so many bytes are there; with 0, after each line.
class FloorFile
{
public:
    FloorFile(const std::string& name, std::size_t batch)
        : _file(open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600)), _batch(batch),
          _buffer(batch + FloorEntry::LONGEST_LINE), _place(_buffer.data())
    {
    }

    FloorFile(const FloorFile&) = delete;
    FloorFile& operator=(const FloorFile&) = delete;

    ~FloorFile()
    {
        flush();
        close(_file);
    }

    void put(const FloorEntry& entry)
    {
        _place = entry.putLine(_place);
        if (_place >= _buffer.data() + _batch) flush();
    }

    void flush()
    {
        if (_place == _buffer.data()) return;
        if (write(_file, _buffer.data(), static_cast<std::size_t>(_place - _buffer.data())) < 0)
            std::perror("write");
        _place = _buffer.data();
    }

private:
    int _file;
    std::size_t _batch;
    std::vector<char> _buffer;
    char* _place;
};

// The ring, and its thread, which asks for new entries again and again.
class FloorQueue
{
public:
    static constexpr std::size_t SIZE = 4096;

    explicit FloorQueue(const std::string& name) : _file(name, std::size_t{256} * 1024) {}

    FloorQueue(const FloorQueue&) = delete;
    FloorQueue& operator=(const FloorQueue&) = delete;

    ~FloorQueue()
    {
        _isOver.store(true);
        _thread.join();
    }

    // For the producer. Waits while the ring is full.
    FloorEntry& reserve()
    {
        while (_reserved - _seenTaken == SIZE) _seenTaken = _taken.load(std::memory_order_acquire);
        return (*_entries)[_reserved % SIZE];
    }

    void publish()
    {
        _published.store(++_reserved, std::memory_order_release);
    }

    // Whether everything is written.
    bool isEmpty() const
    {
        return _taken.load(std::memory_order_acquire) == _reserved;
    }

private:
    void run()
    {
        for (;;)
        {
            const bool isOver = _isOver.load();
            if (writeAll()) continue;
            if (isOver) return;
            std::this_thread::yield();
        }
    }

    bool writeAll()
    {
        const std::uint64_t taken = _taken.load(std::memory_order_relaxed);
        const std::uint64_t end = _published.load(std::memory_order_acquire);
        for (std::uint64_t i = taken; i < end; ++i) _file.put((*_entries)[i % SIZE]);
        _file.flush();
        // The places are given back when the lines are written.
        _taken.store(end, std::memory_order_release);
        return end > taken;
    }

    FloorFile _file;
    std::unique_ptr<std::array<FloorEntry, SIZE>> _entries =
        std::make_unique<std::array<FloorEntry, SIZE>>();
    std::uint64_t _reserved = 0;
    std::uint64_t _seenTaken = 0;
    alignas(64) std::atomic<std::uint64_t> _published{0};
    alignas(64) std::atomic<std::uint64_t> _taken{0};
    alignas(64) std::atomic<bool> _isOver{false};
    std::thread _thread{[this] { run(); }};
};

} // namespace bench

#endif

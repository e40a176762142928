// What can be between a log stream and its file: a disk that is slow, stalls or is full.

#ifndef ZU_TESTS_STRESS_STREAMBETWEEN_H
#define ZU_TESTS_STRESS_STREAMBETWEEN_H

#include "base/lgLog.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <ostream>
#include <streambuf>
#include <thread>

namespace stress
{

// Inserted and removed while no reader runs.
class StreamBetween : public std::streambuf
{
public:
    explicit StreamBetween(Zu::LgTypes::Level level)
        : _stream(*Zu::LgLog::getLevelOutput(level)), _file(_stream.rdbuf(this))
    {
    }
    StreamBetween(const StreamBetween&) = delete;
    StreamBetween& operator=(const StreamBetween&) = delete;

    ~StreamBetween() override
    {
        // Restored below, as exchanging the buffer makes the stream good again.
        const std::ios::iostate state = _stream.rdstate();
        _stream.rdbuf(_file);
        _stream.setstate(state);
    }

protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override = 0;

    int_type overflow(int_type character) override
    {
        const char byte = traits_type::to_char_type(character);
        return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
    }

    int sync() override
    {
        return _file->pubsync();
    }

    std::streambuf& file()
    {
        return *_file;
    }

private:
    std::ostream& _stream;
    std::streambuf* _file;
};

// Lets lines through at once, slowly, or not at all.
class Gate : public StreamBetween
{
public:
    using StreamBetween::StreamBetween;

    // From here on each line takes at least this many turns of other threads.
    void slowDown(int turns)
    {
        _turns = turns;
    }

    void close()
    {
        const std::lock_guard guard(_mutex);
        _isClosed = true;
    }

    // Whether the reader waits at the closed gate.
    bool isReaderThere() const
    {
        return _isReaderThere;
    }

    void open()
    {
        const std::lock_guard guard(_mutex);
        _isClosed = false;
        _changed.notify_all();
    }

protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override
    {
        for (int i = 0; i < _turns; ++i) std::this_thread::yield();
        {
            std::unique_lock guard(_mutex);
            _isReaderThere = _isClosed;
            _changed.wait(guard, [this] { return !_isClosed; });
            _isReaderThere = false;
        }
        return file().sputn(text, size);
    }

private:
    std::atomic<int> _turns{0};
    std::mutex _mutex;
    std::condition_variable _changed;
    bool _isClosed = false;
    std::atomic<bool> _isReaderThere{false};
};

// Has room for this many bytes; of a line that finds too little room, it takes what fits.
class SmallDisk : public StreamBetween
{
public:
    SmallDisk(Zu::LgTypes::Level level, std::streamsize room) : StreamBetween(level), _room(room) {}

    void makeRoom(std::streamsize room)
    {
        _room = room;
    }

    // Whether a line has found no room.
    bool wasFull() const
    {
        return _wasFull;
    }

protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override
    {
        const std::streamsize taken = std::min<std::streamsize>(size, _room);
        if (taken < size) _wasFull = true;
        _room -= taken;
        const std::streamsize written = file().sputn(text, taken);
        file().pubsync();
        return written;
    }

private:
    std::atomic<std::streamsize> _room;
    std::atomic<bool> _wasFull{false};
};

} // namespace stress

#endif

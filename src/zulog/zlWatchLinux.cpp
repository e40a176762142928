#include "zulog/zlFollow.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <map>
#include <poll.h>
#include <set>
#include <sys/inotify.h>
#include <unistd.h>

namespace Zu
{

namespace
{

constexpr std::uint32_t MOVES = IN_CREATE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE;

// Counts down, but not from a negative number.
class Patience
{
public:
    explicit Patience(int milliseconds)
        : _milliseconds(milliseconds), _end(Clock::now() + std::chrono::milliseconds(milliseconds))
    {
    }

    int getRest() const
    {
        if (_milliseconds < 0) return _milliseconds;
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(_end - Clock::now());
        return rest.count() > 0 ? static_cast<int>(rest.count()) : 0;
    }

private:
    using Clock = std::chrono::steady_clock;
    const int _milliseconds;
    const Clock::time_point _end;
};

} // namespace

// A directory is watched together with those on the way to it, since it is not reported that one
// of them was renamed, and another one made at its place.
class ZlWatch::Impl
{
public:
    Impl()
    {
        open();
    }
    ~Impl()
    {
        if (_queue >= 0) close(_queue);
    }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    bool add(const std::string& directory)
    {
        bool isWatched = true;
        for (std::size_t end = 0; end < directory.size();)
        {
            const std::size_t begin = directory.find_first_not_of('/', end);
            if (begin == std::string::npos) break;
            end = std::min(directory.find('/', begin), directory.size());
            isWatched &= addPart(directory.substr(0, begin), directory.substr(begin, end - begin));
        }
        constexpr std::uint32_t CHANGES = MOVES | IN_MODIFY | IN_ATTRIB;
        const int watch = addWatch(directory, CHANGES);
        if (watch >= 0) _directories.insert(watch);
        return watch >= 0 && isWatched;
    }

    // Waits for a change. False when the time is over.
    bool wait(int milliseconds)
    {
        const Patience patience(milliseconds);
        for (;;)
        {
            pollfd descriptor = {_queue, POLLIN, 0};
            if (poll(&descriptor, 1, patience.getRest()) <= 0) return false;
            if (readEvents()) return true;
        }
    }

    bool isOpen() const
    {
        return _queue >= 0;
    }

    std::set<std::string> _watched;

private:
    void open()
    {
        _queue = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    }

    // Watches names anew, because they may lead to other directories.
    void reset()
    {
        close(_queue);
        open();
        _watched.clear();
        _parts.clear();
        _directories.clear();
    }

    int addWatch(const std::string& directory, std::uint32_t events) const
    {
        return inotify_add_watch(_queue, directory.c_str(), events | IN_ONLYDIR | IN_MASK_ADD);
    }

    bool addPart(const std::string& parent, const std::string& name)
    {
        if (name == "." || name == "..") return true;
        const int watch = addWatch(parent.empty() ? "." : parent, MOVES);
        if (watch >= 0) _parts[watch].insert(name);
        return watch >= 0;
    }

    // Whether something has changed. What that is is seen from the files themselves.
    bool readEvents()
    {
        bool isChanged = false;
        bool isMoved = false;
        alignas(inotify_event) char events[16 * 1024];
        ssize_t size = 0;
        while ((size = read(_queue, events, sizeof events)) > 0)
        {
            inotify_event event = {};
            for (const char* place = events; place < events + size;
                 place += sizeof event + event.len)
            {
                std::memcpy(&event, place, sizeof event);
                const std::string name = event.len > 0 ? place + sizeof event : "";
                isMoved = isMoved || isOfPart(event, name);
                isChanged = isChanged || _directories.contains(event.wd);
            }
        }
        if (isMoved) reset();
        return isChanged || isMoved;
    }

    bool isOfPart(const inotify_event& event, const std::string& name) const
    {
        if ((event.mask & (IN_IGNORED | IN_UNMOUNT | IN_Q_OVERFLOW)) != 0) return true;
        const auto part = _parts.find(event.wd);
        return (event.mask & MOVES) != 0 && part != _parts.end() && part->second.contains(name);
    }

    int _queue = -1;
    // The names on the way that are in a directory, by its watch.
    std::map<int, std::set<std::string>> _parts;
    std::set<int> _directories;
};

ZlWatch::ZlWatch() : _impl(std::make_unique<Impl>()) {}

ZlWatch::~ZlWatch() = default;

bool ZlWatch::add(const std::vector<std::string>& directories)
{
    bool areAllWatched = _impl->isOpen();
    for (const std::string& directory : directories)
    {
        if (_impl->_watched.contains(directory)) continue;
        if (_impl->add(directory))
            _impl->_watched.insert(directory);
        else
            areAllWatched = false;
    }
    return areAllWatched;
}

bool ZlWatch::wait(int milliseconds)
{
    return _impl->wait(milliseconds);
}

} // namespace Zu

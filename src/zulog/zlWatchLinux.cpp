#include "zulog/zlFollow.h"

#include <cstring>
#include <poll.h>
#include <set>
#include <sys/inotify.h>
#include <unistd.h>

namespace Zu
{

namespace
{

// Whether the watch of a directory has ended, because that was removed.
bool isAnyGone(const char* place, const char* end)
{
    inotify_event event = {};
    for (; place < end; place += sizeof event + event.len)
    {
        std::memcpy(&event, place, sizeof event);
        if ((event.mask & IN_IGNORED) != 0) return true;
    }
    return false;
}

} // namespace

class ZlWatch::Impl
{
public:
    int _queue = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    std::set<std::string> _watched;
};

ZlWatch::ZlWatch() : _impl(std::make_unique<Impl>()) {}

ZlWatch::~ZlWatch()
{
    if (_impl->_queue >= 0) close(_impl->_queue);
}

bool ZlWatch::add(const std::vector<std::string>& directories)
{
    constexpr std::uint32_t CHANGES =
        IN_MODIFY | IN_CREATE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE | IN_ATTRIB;
    bool areAllWatched = _impl->_queue >= 0;
    for (const std::string& directory : directories)
    {
        if (_impl->_watched.contains(directory)) continue;
        if (inotify_add_watch(_impl->_queue, directory.c_str(), CHANGES | IN_ONLYDIR) >= 0)
            _impl->_watched.insert(directory);
        else
            areAllWatched = false;
    }
    return areAllWatched;
}

bool ZlWatch::wait(int milliseconds)
{
    pollfd descriptor = {_impl->_queue, POLLIN, 0};
    if (poll(&descriptor, 1, milliseconds) <= 0) return false;
    // What has changed is seen from the files themselves.
    alignas(inotify_event) char events[16 * 1024];
    ssize_t size = 0;
    while ((size = read(_impl->_queue, events, sizeof events)) > 0)
        if (isAnyGone(events, events + size)) _impl->_watched.clear();
    return true;
}

} // namespace Zu

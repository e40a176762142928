#include "zulog/zlFollow.h"

#include <algorithm>
#include <windows.h>

namespace Zu
{

// The system reports the growth of open files late, so they are looked at from time to time.
class ZlWatch::Impl
{
};

ZlWatch::ZlWatch() : _impl(std::make_unique<Impl>()) {}

ZlWatch::~ZlWatch() = default;

bool ZlWatch::add(const std::vector<std::string>&)
{
    return true;
}

bool ZlWatch::wait(int milliseconds)
{
    constexpr int PERIOD = 25;
    Sleep(static_cast<DWORD>(milliseconds < 0 ? PERIOD : std::min(milliseconds, PERIOD)));
    return true;
}

} // namespace Zu

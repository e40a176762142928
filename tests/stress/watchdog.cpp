#include "stress/watchdog.h"

#include "base/osEnv.h"

#include <cstdlib>
#include <iostream>

namespace stress
{

namespace
{

// A working test never comes near it, however busy the machine is.
constexpr std::chrono::seconds PATIENCE{300};

} // namespace

std::chrono::seconds timeOfScenario()
{
    constexpr int USUAL = 1;
    const char* const text = Zu::OsEnv::getVariable("ZU_STRESS_SECONDS");
    return std::chrono::seconds(text && *text != '\0' ? std::stoi(text) : USUAL);
}

Watchdog::Watchdog(const std::string& what) : _what(what), _thread([this] { watch(); }) {}

Watchdog::~Watchdog()
{
    {
        const std::lock_guard guard(_mutex);
        _isOver = true;
    }
    _changed.notify_all();
    _thread.join();
}

void Watchdog::watch()
{
    std::unique_lock guard(_mutex);
    if (_changed.wait_for(guard, PATIENCE + timeOfScenario(), [this] { return _isOver; })) return;
    std::cerr << "Hangs: " << _what << std::endl;
    std::abort();
}

} // namespace stress

#include "base/sleeper.h"

#include "base/exRaise.h"
#include "base/osCpuInfo.h"
#include "base/timerPeriod.h"

#include <memory>
#include <mutex>
#include <vector>
#include <windows.h>

#include <timeapi.h>

namespace Zu
{

namespace
{

// A time that every timer device accepts.
constexpr std::uint32_t LONGEST = 60000;

// The event of one thread.
class Holder
{
public:
    Holder() : _event(CreateEventA(nullptr, FALSE, FALSE, nullptr)) {}

    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    ~Holder()
    {
        if (_event) CloseHandle(_event);
    }

    // False if the platform has no event or no timer available.
    bool sleep(std::uint32_t milliseconds)
    {
        if (!_event) return false;
        const MMRESULT timer =
            timeSetEvent(milliseconds, 1, reinterpret_cast<LPTIMECALLBACK>(_event), 0,
                         TIME_ONESHOT | TIME_CALLBACK_EVENT_SET);
        if (timer == 0) return false;
        WaitForSingleObject(_event, INFINITE);
        timeKillEvent(timer);
        return true;
    }

private:
    HANDLE _event;
};

} // namespace

class SleeperWindows final : public Sleeper
{
public:
    SleeperWindows()
    {
        // Lets the timer settle.
        Sleep(10);
        _secondsPerTick = 1.0 / static_cast<double>(OsCpuInfo::getHwCounterFrequency());
        _slot = TlsAlloc();
        if (_slot == TLS_OUT_OF_INDEXES) ZU_RAISE_LAST_ERROR();
    }

    ~SleeperWindows() override
    {
        TlsFree(_slot);
    }

    double getTime() override
    {
        return static_cast<double>(OsCpuInfo::getHwCounterValue()) * _secondsPerTick;
    }

    double getResolution() override
    {
        return TimerPeriod::resolution();
    }

    bool sleep(double seconds) override
    {
        return timerSleep(seconds, LONGEST,
                          [this](std::uint32_t milliseconds)
                          {
                              if (!holderOfThread().sleep(milliseconds)) Sleep(milliseconds);
                          });
    }

    Holder& holderOfThread()
    {
        if (void* const holder = TlsGetValue(_slot)) return *static_cast<Holder*>(holder);
        auto holder = std::make_unique<Holder>();
        const std::lock_guard guard(_lock);
        _holders.push_back(std::move(holder));
        TlsSetValue(_slot, _holders.back().get());
        return *_holders.back();
    }

private:
    double _secondsPerTick;
    TimerPeriod _period;
    // They are kept to the end, as the end of a thread is not reported.
    std::vector<std::unique_ptr<Holder>> _holders;
    std::mutex _lock;
    DWORD _slot;
};

Sleeper* Sleeper::create()
{
    return new SleeperWindows;
}

void Sleeper::prepareThread(Sleeper& sleeper)
{
    static_cast<SleeperWindows&>(sleeper).holderOfThread();
}

} // namespace Zu

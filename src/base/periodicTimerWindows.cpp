#include "base/periodicTimerBeat.h"

#include "base/exRaise.h"
#include "base/internalAssert.h"
#include "base/timerPeriod.h"

#include <windows.h>

#include <timeapi.h>

namespace Zu
{

namespace
{

class Event
{
public:
    Event() : _handle(CreateEventA(nullptr, TRUE, FALSE, nullptr))
    {
        if (!_handle) ZU_RAISE_LAST_ERROR();
    }

    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    ~Event()
    {
        CloseHandle(_handle);
    }

    HANDLE _handle;
};

} // namespace

class PeriodicTimerWindows final : public PeriodicTimerBeat
{
public:
    explicit PeriodicTimerWindows(double interval) : PeriodicTimerBeat(interval)
    {
        const bool beats = isBeating(getResolution(), [this] { return getCurrentTime(); });
        ZU_INTERNAL_ASSERT_TEXT(beats, "waitBeating( *this )");
    }

    ~PeriodicTimerWindows() override
    {
        stop();
    }

private:
    void beginBeat(std::uint32_t milliseconds) override
    {
        _timerId = timeSetEvent(milliseconds, 1, reinterpret_cast<LPTIMECALLBACK>(_event._handle),
                                0, TIME_PERIODIC | TIME_CALLBACK_EVENT_SET);
    }

    void endBeat() override
    {
        timeKillEvent(_timerId);
        _timerId = 0;
    }

    void waitForBeat(int limit) override
    {
        ResetEvent(_event._handle);
        WaitForSingleObject(_event._handle, limit < 0 ? INFINITE : static_cast<DWORD>(limit));
    }

    TimerPeriod _period;
    UINT _timerId = 0;
    Event _event;
};

PeriodicTimer* PeriodicTimer::create(double interval)
{
    return new PeriodicTimerWindows(interval);
}

} // namespace Zu

#include "app/lgServiceReader.h"

#include "app/lgServicePlatform.h"
#include "base/lgReader.h"

#include <chrono>
#include <exception>
#include <iostream>
#include <mutex>

namespace Zu
{

namespace
{

// After so many events a fork may have its turn.
constexpr int EVENTS_IN_A_ROW = 256;

// A queue does not fill in so many naps, unless events come faster than they can be written.
constexpr int NAPS = 5;

} // namespace

LgServiceReader::LgServiceReader(LgServiceThreads& threads) : _threads(threads)
{
    const LgServicePlatform::SignalBlock block;
    _thread = std::thread([this] { run(); });
}

LgServiceReader::~LgServiceReader()
{
    _stop.store(true, std::memory_order_release);
    _threads.news().ring();
    _thread.join();
}

// Sleeps until there is news: first in naps, so that a steady stream of events need not wake it for
// each, then until it is rung.
void LgServiceReader::rest(int& naps)
{
    if (naps < NAPS && LgServicePlatform::nap())
    {
        ++naps;
        return;
    }
    _threads.news().listen([this] { return _stop || isWorkWaiting(); }, _threads.getPatience());
}

// What can't be asked is looked at: the failure that is met then is told, and tried again.
bool LgServiceReader::isWorkWaiting()
{
    try
    {
        return _threads.isWorkWaiting();
    }
    catch (const std::exception&)
    {
        return true;
    }
}

void LgServiceReader::run()
{
    int naps = 0;
    int lastFailures = 0;
    while (lastFailures < LgServiceThreads::LAST_TRIES)
    {
        // Asked first: what was published before the stop is seen by the look that follows.
        const bool stop = _stop.load(std::memory_order_acquire);
        const Outcome outcome = writeSome();
        if (outcome == Outcome::WROTE) naps = 0;
        if (outcome == Outcome::FAILED)
        {
            lastFailures = stop ? lastFailures + 1 : 0;
            std::this_thread::sleep_for(LgServiceThreads::PAUSE);
        }
        else if (outcome == Outcome::NOTHING)
        {
            if (stop) return;
            rest(naps);
        }
    }
    std::cerr << "The log service ends with events that it could not write." << std::endl;
}

LgServiceReader::Outcome LgServiceReader::writeSome()
{
    const std::lock_guard guard(_threads.reading());
    try
    {
        LgReader reader;
        for (int i = 0; i < EVENTS_IN_A_ROW; ++i)
            if (!reader.flushEarliest()) return i > 0 ? Outcome::WROTE : Outcome::NOTHING;
        return Outcome::WROTE;
    }
    catch (const std::exception& exception)
    {
        report(exception.what());
        return Outcome::FAILED;
    }
}

void LgServiceReader::report(const char* reason)
{
    if (_reported) return;
    _reported = true;
    std::cerr << "The log service can't write an event and tries again: " << reason << std::endl;
}

} // namespace Zu

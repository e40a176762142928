#include "app/lgServiceReader.h"

#include "app/lgServiceFatal.h"
#include "app/lgServicePlatform.h"

#include <chrono>
#include <exception>
#include <iostream>
#include <mutex>

namespace Zu
{

namespace
{

// A queue does not fill up during this many naps, unless events come faster than they can be
// written.
constexpr int NAPS = 5;

} // namespace

constinit std::atomic<bool> LgServiceReader::_isReopenDue{false};

LgServiceReader::LgServiceReader(LgServiceThreads& threads, LgLineForm form, bool isRaw,
                                 LgServiceCompressor::Factory compressor)
    : _threads(threads), _writer(threads.map(), threads.waiting(), form, isRaw),
      _sync(threads.reading()), _forks(threads.getForks())
{
    // In the child of a fork, the parent's thread may have been asleep.
    LgServiceFatal::noteIdle(false);
    const LgServicePlatform::SignalBlock block;
    // Not in this thread, which a signal of a file that can't get longer would end.
    std::thread([this] { openLogs(); }).join();
    if (compressor)
        _compression = std::make_unique<LgServiceCompression>(threads.reading(), compressor);
    _thread = std::thread([this] { run(); });
}

LgServiceReader::~LgServiceReader()
{
    _stop.store(true, std::memory_order_release);
    _threads.news().ring();
    _thread.join();
    // A thread to come may get the same id.
    _threads.setWriter({});
}

// Sleeps until there is something to do: first in naps, so that a steady stream need not wake the
// thread for each event, then until the bell is rung.
void LgServiceReader::rest(int& naps)
{
    if (naps < NAPS && LgServicePlatform::nap())
    {
        ++naps;
        return;
    }
    const auto isNeeded = [this]
    {
        const bool isIdle = !_stop && !isWorkWaiting();
        LgServiceFatal::noteIdle(isIdle);
        return !isIdle;
    };
    _threads.news().listen(isNeeded, _threads.getPatience());
    LgServiceFatal::noteIdle(false);
}

// A query that fails counts as work: reading then meets the same failure, reports it and tries
// again.
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
    _threads.setWriter(std::this_thread::get_id());
    int naps = 0;
    int lastFailures = 0;
    while (lastFailures < LgServiceThreads::LAST_TRIES)
    {
        // Read first: what was published before the stop is seen by the writeSome() that follows.
        const bool stop = _stop.load(std::memory_order_acquire);
        const Outcome outcome = writeSome();
        if (outcome == Outcome::Wrote) naps = 0;
        if (outcome == Outcome::Failed)
        {
            lastFailures = stop ? lastFailures + 1 : 0;
            std::this_thread::sleep_for(LgServiceThreads::PAUSE);
        }
        else if (outcome == Outcome::Nothing)
        {
            if (stop) return finish();
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
        if (_isReopenDue.exchange(false, std::memory_order_acquire)) _writer.reopen();
        // Here, where no fork can happen meanwhile.
        if (LgServiceControl* const control = _presentControl.load(std::memory_order_acquire))
            control->answerIfAsked();
        const bool hasWritten = _writer.writeBatch();
        _threads.setFailing(_writer.isFailing());
        if (hasWritten) _threads.endVainWaits();
        _threads.endWaitsUntilWritten(_writer.getEarliestLeft());
        LgServiceFatal::noteWritten();
        if (_compression && LgServiceLog::takeRotated()) _compression->ask();
        return hasWritten ? Outcome::Wrote : Outcome::Nothing;
    }
    catch (const std::exception& exception)
    {
        _threads.setFailing(true);
        report(exception.what());
        return Outcome::Failed;
    }
}

// Files that can't be opened are reported at once, not with the first event.
void LgServiceReader::openLogs()
{
    try
    {
        _writer.openLogs();
    }
    catch (const std::exception& exception)
    {
        report(exception.what());
    }
}

void LgServiceReader::finish()
{
    const std::lock_guard guard(_threads.reading());
    auto rest = LgServiceWriter::Rest::Lost;
    try
    {
        rest = _writer.finish();
    }
    catch (const std::exception& exception)
    {
        report(exception.what());
    }
    if (rest == LgServiceWriter::Rest::Lost)
        std::cerr << "The log service ends with events that it could not write." << std::endl;
    if (rest == LgServiceWriter::Rest::Kept)
        std::cerr << "The log service ends with events that it could not write. The next one "
                     "writes them."
                  << std::endl;
}

void LgServiceReader::report(const char* reason)
{
    if (_reported) return;
    _reported = true;
    std::cerr << "The log service can't write an event and tries again: " << reason << std::endl;
}

} // namespace Zu

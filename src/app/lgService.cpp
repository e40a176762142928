#include "app/lgService.h"

#include "app/lgServiceEx.h"
#include "app/lgServiceReader.h"
#include "app/lgServiceThreads.h"
#include "base/hwCounter.h"
#include "base/lgLog.h"

#include <atomic>

namespace Zu
{

namespace
{

std::atomic<bool> there{false};

// What a child can't destroy; kept here so that it is not reported as a leak.
[[maybe_unused]] LgServiceReader* leftToTheParent = nullptr;

} // namespace

LgService::LgService()
{
    if (!LgLog::getRegistry()) throw LgServiceEx::ExLoggerNotStarted(__FILE__, __LINE__);
    LgServiceThreads& threads = LgServiceThreads::instance();
    if (threads.isForked()) throw LgServiceEx::ExForked(__FILE__, __LINE__);
    if (there.exchange(true)) throw LgServiceEx::ExAlreadyRunning(__FILE__, __LINE__);
    try
    {
        _lostBefore = threads.getLostCount();
        threads.start();
        LgLog::setQueueFunction(&LgServiceThreads::queueOfThread);
        _reader = std::make_unique<LgServiceReader>(threads);
    }
    catch (...)
    {
        threads.stop();
        there = false;
        throw;
    }
    LgLog::setLoggerActivation(true);
}

LgService::~LgService()
{
    LgServiceThreads& threads = LgServiceThreads::instance();
    if (threads.isRunning())
    {
        LgLog::setLoggerActivation(false);
        _reader.reset();
        threads.stop();
    }
    else
    {
        // The child of a fork: the thread is not here, and nothing may wait for it.
        leftToTheParent = _reader.release();
    }
    there = false;
}

bool LgService::flush(std::chrono::milliseconds timeout) const
{
    if (_reader->isOnThisThread()) return false;
    // Processors may read the counter a little before what stands in front of it is done.
    constexpr std::uint64_t MARGIN = 10'000;
    return LgServiceThreads::instance().waitUntilWritten(HwCounter::timeStamp() + MARGIN, timeout);
}

std::uint64_t LgService::getLostCount() const
{
    return LgServiceThreads::instance().getLostCount() - _lostBefore;
}

} // namespace Zu

#include "base/hwCounter.h"

#include "base/exRaise.h"
#include "base/internalAssert.h"
#include "base/osCpuPlatform.h"

#include <cerrno>
#include <memory>

namespace Zu
{

namespace
{

// Asks the platform and not OsCpuInfo, which knows the frequency from the start of its package on
// only: static objects come before.
std::unique_ptr<HwCounterEng> makeEngine()
{
    std::uint64_t frequency = 0;
    if (!osCounterFrequency(frequency)) ZU_RAISE_ERRNO(errno);
    ZU_INTERNAL_ASSERT(frequency != 0);
    return std::unique_ptr<HwCounterEng>(HwCounterEng::create(frequency));
}

} // namespace

std::atomic<HwCounterEng*> HwCounter::_theHwCounter = nullptr;

void HwCounter::init()
{
    if (engine()) return;
    std::unique_ptr<HwCounterEng> made = makeEngine();
    HwCounterEng* none = nullptr;
    // Releases the new engine to the loads of engine(). Of threads that come together one wins, and
    // the others' engines have been seen by nobody.
    if (_theHwCounter.compare_exchange_strong(none, made.get(), std::memory_order_release,
                                              std::memory_order_relaxed))
        made.release();
}

std::uint64_t HwCounter::timeStamp()
{
    // The test stands here, so that a read makes no call but the engine's.
    if (!engine()) [[unlikely]]
        init();
    return timeStampInline();
}

double HwCounter::seconds()
{
    init();
    return secondsInline();
}

double HwCounter::seconds(std::uint64_t start, std::uint64_t end)
{
    init();
    return secondsInline(start, end);
}

void HwCounter::dump(std::ostream& os)
{
    init();
    engine()->dump(os);
}

double HwCounter::resolution()
{
    return engine()->resolution();
}

int HwCounter::getRateNumerator()
{
    return engine()->getRateNumerator();
}

int HwCounter::getRateDenominator()
{
    return engine()->getRateDenominator();
}

} // namespace Zu

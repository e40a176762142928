#include "base/hwCounter.h"

#include "base/exRaise.h"
#include "base/hwCounterIA32.h"
#include "base/internalAssert.h"
#include "base/osCpuInfo.h"
#include "base/osCpuPlatform.h"

#include <cerrno>
#include <memory>

namespace Zu
{

namespace
{

// How far the engine shifts the platform's counter; negative until it is known. Every event reads
// the counter, which takes no call of the engine once the shift is here. It is the same for each
// engine of the platform, and nothing else is read after it, so it needs no order.
constinit std::atomic<int> engineShift{-1};

// Asks the platform and not OsCpuInfo, which has the frequency only once its package has started;
// static objects come earlier.
std::uint64_t counterFrequency()
{
    std::uint64_t frequency = 0;
    if (!osCounterFrequency(frequency)) ZU_RAISE_ERRNO(errno);
    ZU_INTERNAL_ASSERT(frequency != 0);
    return frequency;
}

std::unique_ptr<HwCounterEng> makeEngine()
{
    return std::unique_ptr<HwCounterEng>(HwCounterEng::create(counterFrequency()));
}

int findEngineShift()
{
    HwCounter::init();
    const auto shift = static_cast<int>(hwCounterRate(counterFrequency())._shift);
    engineShift.store(shift, std::memory_order_relaxed);
    return shift;
}

} // namespace

std::atomic<HwCounterEng*> HwCounter::_theHwCounter = nullptr;

void HwCounter::init()
{
    if (engine()) return;
    std::unique_ptr<HwCounterEng> made = makeEngine();
    HwCounterEng* none = nullptr;
    // The release pairs with the acquire in engine(). If several threads get here at once, one
    // wins; nobody has seen the engines of the others.
    if (_theHwCounter.compare_exchange_strong(none, made.get(), std::memory_order_release,
                                              std::memory_order_relaxed))
        static_cast<void>(made.release());
}

std::uint64_t HwCounter::timeStamp()
{
    int shift = engineShift.load(std::memory_order_relaxed);
    if (shift < 0) [[unlikely]]
        shift = findEngineShift();
    return OsCpuInfo::getHwCounterValue() >> shift;
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

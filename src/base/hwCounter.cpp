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

// Asks the platform and not OsCpuInfo, which has the frequency only once its package has started;
// static objects come earlier.
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
    // The release pairs with the acquire in engine(). If several threads get here at once, one
    // wins; nobody has seen the engines of the others.
    if (_theHwCounter.compare_exchange_strong(none, made.get(), std::memory_order_release,
                                              std::memory_order_relaxed))
        static_cast<void>(made.release());
}

std::uint64_t HwCounter::timeStamp()
{
    // The test is repeated here, so that a read usually makes no call but the engine's.
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

#include "base/hwCounter.h"

namespace Zu
{

HwCounterEng* HwCounter::_theHwCounter = nullptr;

void HwCounter::init()
{
    if (!_theHwCounter) _theHwCounter = HwCounterEng::create();
}

std::uint64_t HwCounter::timeStamp()
{
    // The test stands here, so that a read makes no call but the engine's.
    if (!_theHwCounter) [[unlikely]]
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
    _theHwCounter->dump(os);
}

double HwCounter::resolution()
{
    return _theHwCounter->resolution();
}

int HwCounter::getRateNumerator()
{
    return _theHwCounter->getRateNumerator();
}

int HwCounter::getRateDenominator()
{
    return _theHwCounter->getRateDenominator();
}

} // namespace Zu

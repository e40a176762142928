#include "base/dtRefTime.h"

#include "base/dtRefClockEx.h"

#include <cstring>
#include <ostream>

namespace Zu
{

std::ostream& DtRefTime::dump(std::ostream& os) const
{
    return os << "(" << _index << " @ " << _rate << ")";
}

std::ostream& operator<<(std::ostream& os, const DtRefTime& time)
{
    return time.dump(os);
}

DtRefTimeFactory& DtRefTimeFactory::getInstance()
{
    static DtRefTimeFactory* const theFactory = new DtRefTimeFactory;
    return *theFactory;
}

DtRefTimeFactory::DtRefTimeFactory() : _source(new DtRefClockSourceHwCounter) {}

DtRefTimeFactory::~DtRefTimeFactory() = default;

const DtRefClockSource& DtRefTimeFactory::getClockSource() const
{
    return *_source;
}

DtRefTime DtRefTimeFactory::create() const
{
    return DtRefTime(_source->getCount(), _source->getRate());
}

DtRefTime DtRefTimeFactory::create(const DtTimeIndex& count, const char* sourceName) const
{
    if (std::strcmp(sourceName, _source->getName()) != 0)
        throw DtRefClockEx::SourceMismatch(__FILE__, __LINE__);
    return DtRefTime(count, _source->getRate());
}

DtRefTime DtRefTimeFactory::create(const DtRefTime& base, const DtTimeIndex& delta,
                                   const Rational& rate) const
{
    const DtTimeIndex ticks = delta.convert(rate, _source->getRate(), std::round_toward_zero);
    return DtRefTime(base.getCount() + ticks, _source->getRate());
}

} // namespace Zu

#include "base/dtTimeMark.h"

#include <ostream>

namespace Zu
{

DtTimeMark::DtTimeMark(const DtTime& streamTime, const DtRefTime& refTime)
    : _streamTime(streamTime), _refTime(refTime)
{
}

DtTime DtTimeMark::getStreamTime() const
{
    return _streamTime;
}

DtRefTime DtTimeMark::getRefTime() const
{
    return _refTime;
}

DtTimeMark DtTimeMark::evalTime(const DtRefTime& refTime) const
{
    const DtTimeIndex passed = refTime.getCount() - _refTime.getCount();
    const DtTimeIndex ticks =
        passed.convert(_refTime.getRate(), _streamTime.getRate(), std::round_toward_zero);
    return DtTimeMark(_streamTime + ticks, refTime);
}

DtTimeMark DtTimeMark::evalTime(const DtTime& streamTime) const
{
    const DtTime base = _streamTime.convertRate(streamTime.getRate());
    const DtTimeIndex passed = streamTime.getCount() - base.getCount();
    const DtRefTimeFactory& factory = DtRefTimeFactory::getInstance();
    return DtTimeMark(streamTime, factory.create(_refTime, passed, streamTime.getRate()));
}

void DtTimeMark::dump(std::ostream& os) const
{
    os << "(" << _streamTime << " " << _refTime << ")";
}

std::ostream& operator<<(std::ostream& os, const DtTimeMark& mark)
{
    mark.dump(os);
    return os;
}

} // namespace Zu

#include "sampleTime.h"

#include "base/base.h"

#include <iostream>

namespace sample
{

void showTime()
{
    // The stream begins now; the reference clock reaches its frame 750 in 30 seconds.
    const Zu::DtRefTime now = Zu::DtRefTimeFactory::getInstance().create();
    const Zu::DtTimeMark beginning(Zu::DtTime(0, 25, 1), now);
    const Zu::DtTimeMark mark = beginning.evalTime(Zu::DtTime(750, 25, 1));
    const long long ticks = mark.getRefTime().getCount() - now.getCount();
    std::cout << "  stream time " << mark.getStreamTime() << std::endl
              << "  reference time " << mark.getRefTime() << ", " << ticks << " ticks from now"
              << std::endl;
    const auto text = Zu::DtTimeUtil::getDtStringFromDtTime(mark.getStreamTime());
    const Zu::DtTime read = Zu::DtTimeUtil::getDtTimeFromDtString(text.get());
    std::cout << "  as text '" << text.get() << "', read again " << read
              << (read == mark.getStreamTime() ? ", the same" : ", DIFFERENT") << std::endl;
}

} // namespace sample

#include "app/lgServiceEnds.h"

#include "app/lgServiceLimits.h"
#include "app/lgServiceLog.h"
#include "app/lgServicePlatform.h"
#include "app/lgServiceThreads.h"
#include "base/hwCounter.h"
#include "base/lgLog.h"

namespace Zu::LgServiceEnds
{

void useFiles() noexcept
{
    LgLog::setOutputFunction(&LgServiceLog::open);
}

void drain() noexcept
{
    if (LgServicePlatform::isEnding()) return;
    LgServiceThreads::instance().drain();
}

void endProcess() noexcept
{
    if (LgServicePlatform::isEnding()) return;
    // Otherwise a wait without success has just ended, and another one would be as long.
    if (lgReportAllLimits(&drain)) LgServiceThreads::instance().drain();
    LgServiceThreads::instance().leaveNothing();
}

void endAtQuickExit() noexcept
{
    LgServicePlatform::onQuickExit(&endProcess);
}

} // namespace Zu::LgServiceEnds

#include "app/lgServiceLimits.h"

#include "app/apText.h"
#include "app/lgLimit.h"
#include "base/lgEvent.h"
#include "base/lgLog.h"
#include "base/lgQueue.h"
#include "base/lgStream.h"

#include <cstddef>
#include <cstdint>

namespace Zu
{

namespace
{

LgServiceHealth::Limit partOf(const LgLimit& limit)
{
    LgServiceHealth::Limit part;
    part._file = limit.getFile();
    part._line = limit.getLine();
    part._group = limit.getGroup();
    part._level = limit.getLevel();
    part._isPerSecond = limit.getKind() == LgLimit::Kind::PerSecond;
    part._number = limit.getNumber();
    // In this order, so that what is owed is not more than what was left out.
    part._owed = limit.getOwedCount();
    part._leftOut = limit.getLeftOutCount();
    part._written = limit.getWrittenCount();
    return part;
}

bool report(LgLimit& limit)
{
    if (limit.getOwedCount() == 0) return true;
    LgQueue& queue = LgLog::getQueue();
    // Within an operand's insertion, the attempt alone would count as a loss.
    if (queue.isInserting() || !queue.canReserve()) return false;
    if (!queue.reserveEntry(limit.getLevel())) return false;
    LgInsertion insertion(queue);
    const std::uint64_t leftOut = limit.takeLeftOut();
    // Another thread's line may have reported it by now; then nothing remains of this event.
    if (leftOut == 0) return true;
    queue.getStream() << limit.getGroup() << " (" << leftOut << " left out, "
                      << apLastPart(limit.getFile()) << ':' << limit.getLine() << ')';
    insertion.complete();
    return true;
}

} // namespace

void lgAddLimits(LgServiceHealth& health)
{
    const auto add = [&health](const LgLimit& limit)
    {
        const LgServiceHealth::Limit part = partOf(limit);
        LgServiceHealth::LimitSum& sum = part._isPerSecond ? health._perSecond : health._everyNth;
        ++sum._statements;
        sum._written += part._written;
        sum._leftOut += part._leftOut;
        if (part._leftOut != 0) health._limits.push_back(part);
    };
    LgLimit::visitAll(add);
}

std::size_t lgReportLimits() noexcept
try
{
    std::size_t left = 0;
    if (!LgLog::isLoggerActive()) return 0;
    LgLimit::visitAll([&](LgLimit& limit) { left += report(limit) ? 0U : 1U; });
    return left;
}
catch (...)
{
    return 0;
}

bool lgReportAllLimits(void (*drain)()) noexcept
{
    std::size_t left = lgReportLimits();
    while (left > 0)
    {
        drain();
        const std::size_t before = left;
        left = lgReportLimits();
        if (left >= before) return false;
    }
    return true;
}

} // namespace Zu

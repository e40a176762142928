/// @file
/// What limited statements have left out, for the service. Internal to the application kit.

#ifndef ZU_APP_LGSERVICELIMITS_H
#define ZU_APP_LGSERVICELIMITS_H

#include "lgServiceHealth.h"

#include <cstddef>

namespace Zu
{

/// Adds the counts of the limited statements.
void lgAddLimits(LgServiceHealth& health);

/// Logs one event for each limited statement that has left out executions since its last line:
///
///     Orders (12 left out, orders.cpp:17)
///
/// It has the level of the statement, whatever the group lets through by now. Returns how many
/// found no room; those stay to be reported, and no event counts as lost. Does nothing while the
/// logger is inactive.
std::size_t lgReportLimits() noexcept;

/// The same for all of them. Where the queue has no room, `drain` makes some. Returns false, right
/// after a call of it, when it has made none.
bool lgReportAllLimits(void (*drain)()) noexcept;

} // namespace Zu

#endif

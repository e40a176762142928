/// @file
/// What limited statements have left out, for the service. Internal to the application kit.

#ifndef ZU_APP_LGSERVICELIMITS_H
#define ZU_APP_LGSERVICELIMITS_H

#include "lgServiceHealth.h"

namespace Zu
{

/// Adds the counts of the limited statements.
void lgAddLimits(LgServiceHealth& health);

/// Logs one event for each limited statement that has left out executions behind its last line:
///
///     Orders (12 left out, orders.cpp:17)
///
/// It has the level of the statement, whatever the group lets through by now. Returns whether all
/// of them found room; the others stay to be reported. Does nothing while the logger is inactive.
bool lgReportLimits() noexcept;

} // namespace Zu

#endif

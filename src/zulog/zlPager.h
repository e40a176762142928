/// @file
/// The pager in which output is shown on a terminal.

#ifndef ZU_ZULOG_ZLPAGER_H
#define ZU_ZULOG_ZLPAGER_H

#include "zlReports.h"

#include <cstdio>
#include <string>
#include <string_view>

namespace Zu
{

/// Starts $PAGER, or the platform's own pager without that. Null if there is none; one that $PAGER
/// names is then reported. ZlPlatform::closePager() ends it.
std::FILE* zlOpenPager(ZlReports& reports);

/// The program that a command of the shell begins with; empty if only the shell knows that.
std::string zlProgramOf(std::string_view command);

} // namespace Zu

#endif

/// @file
/// The texts of records.

#ifndef ZU_ZULOG_ZLTEXT_H
#define ZU_ZULOG_ZLTEXT_H

#include "zlRecord.h"

#include <string>

namespace Zu
{

/// The text of a record, whose lines are separated by line feeds alone. With `isRaw`, the log
/// service's escapes are undone in that of an event.
std::string zlTextOf(const ZlRecord& record, bool isRaw);

} // namespace Zu

#endif

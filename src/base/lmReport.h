/// @file
/// The report of loaded libraries. Internal to the library.

#ifndef ZU_BASE_LMREPORT_H
#define ZU_BASE_LMREPORT_H

#include "lmLibrary.h"

#include <vector>

namespace Zu
{

/// Writes libraries and their blocks to standard output, both numbered from 0, and flushes it. For
/// a block of size 0 only its number is written.
void lmPrintReport(const std::vector<LmLibrary>& libraries);

} // namespace Zu

#endif

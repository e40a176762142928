/// @file
/// The report of loaded libraries. Internal to the library.

#ifndef ZU_BASE_LMREPORT_H
#define ZU_BASE_LMREPORT_H

#include "lmLibrary.h"

#include <vector>

namespace Zu
{

/// Writes libraries and their blocks to standard output, both numbered from 0, and flushes it. Of a
/// block without a size only its number is written.
void lmPrintReport(const std::vector<LmLibrary>& libraries);

} // namespace Zu

#endif

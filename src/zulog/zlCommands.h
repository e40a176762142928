/// @file
/// What the commands of zulog do.

#ifndef ZU_ZULOG_ZLCOMMANDS_H
#define ZU_ZULOG_ZLCOMMANDS_H

#include "zlCommandLine.h"

namespace Zu
{

/// Does what a command line asks for, and returns the exit value of the program. Writes to standard
/// output, or to a pager, and reports on standard error.
int zlRunCommand(const ZlCommand& command);

/// Counts what is in the files. Raises ZlError for what can't be used or written.
void zlCount(const ZlCommand& command, ZlOutput& output, ZlReports& reports);

/// Makes a page for a browser. Raises ZlError likewise; a page that is there already then stays. So
/// it does if nothing could be read.
void zlMakePage(const ZlCommand& command, ZlReports& reports);

} // namespace Zu

#endif

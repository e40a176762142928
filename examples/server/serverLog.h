// How the server's log service is set up.

#ifndef ZU_EXAMPLES_SERVERLOG_H
#define ZU_EXAMPLES_SERVERLOG_H

#include "app/lgServiceOptions.h"

namespace server
{

// The options of the log service, with the log files in this directory unless it is empty.
Zu::LgServiceOptions logOptions(const char* directory);

} // namespace server

#endif

/// @file
/// The library's own log group. Internal to the library.

#ifndef ZU_BASE_DBGBUILDINFOLOG_H
#define ZU_BASE_DBGBUILDINFOLOG_H

#include "lgTypes.h"

#include <string>

/// The minor group "BuildInfo" of the major group "Base". The package "debugging" starts and stops
/// it.
namespace Zu::DbgBuildInfoLog
{

void start();
void stop();

/// Whether the group has been started.
bool isStarted();

/// Logs a text if the group lets the level through. A group that is not started is fatal.
void log(LgTypes::Level level, const std::string& text);

} // namespace Zu::DbgBuildInfoLog

#endif

// What this server wants of its log; the operator's environment can change all but the directory.
#include "serverLog.h"
#include "base/lgTypes.h"

Zu::LgServiceOptions server::logOptions(const char* directory)
{
    Zu::LgServiceOptions options;
    options._lineForm = Zu::LgServiceOptions::LineForm::Utc;
    options._rotateSize = 64 << 20;
    options._drainOnFatalSignals = true;
    // A request is answered when it is logged: if the log can't keep up, the workers wait for it.
    options._waitLevels = 1U << Zu::LgTypes::Warning | 1U << Zu::LgTypes::Informational;
    // They wait for entries, so there are characters for as many of the longest requests.
    options._entries = 1024;
    options._characters = 8 << 20;
    options.readEnvironment();
    if (*directory != '\0') options._directory = directory;
    return options;
}

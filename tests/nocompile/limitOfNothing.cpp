// A limited statement writes something.
// error: the limit of a log statement is at least 1
#include "app/lgLimit.h"

ZU_DEFINE_LOG_GROUP(Orders);

void log()
{
    ZU_LOG_AT_MOST(Orders, ::Zu::LgTypes::Warning, 0, "text");
}

// A form that a number does not have.
// error: only integers have a hexadecimal form
// note: double
#include "base/lgEvent.h"
#include "base/lgFormat.h"

ZU_DEFINE_LOG_GROUP(Orders);

void log()
{
    ZU_LOG_WARNING(Orders, Zu::lgHex(1.5));
}

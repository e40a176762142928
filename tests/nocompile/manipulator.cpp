// A log statement ends its text itself, and flushes nothing.
// error: deleted
#include "base/lgEvent.h"

#include <ostream>

ZU_DEFINE_LOG_GROUP(Orders);

void log()
{
    ZU_LOG_WARNING(Orders, "text" << std::endl);
}

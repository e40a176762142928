// A format fits its arguments.
// error: constexpr
// lines: 50
// note: invalid type specifier
#define FMT_HEADER_ONLY
#include "appFormat/lgFormatted.h"

ZU_DEFINE_LOG_GROUP(Orders);

void log()
{
    ZU_LOGF_WARNING(Orders, "order {:d}", "text");
}

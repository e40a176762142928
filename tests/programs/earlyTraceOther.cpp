#include "earlyTraceOther.h"

#include "base/traceStatement.h"

ZU_TRACE_LEVEL(There);

void traceOther(const char* text)
{
    ZU_TRACE_SCOPE(There, "there");
    ZU_TRACE(There, text);
}

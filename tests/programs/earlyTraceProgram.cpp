// Traces in constructors of static objects before the levels used there are constructed: one of
// this source, and one of another. The object is constructed before all objects without a priority.

#include "base/traceStatement.h"

#include "earlyTraceOther.h"

#include <iostream>

namespace
{

void trace();

struct Early
{
    Early()
    {
        trace();
        traceOther("early");
    }
};

const Early theEarly __attribute__((init_priority(200)));

} // namespace

ZU_TRACE_LEVEL(Here);

namespace
{

void trace()
{
    ZU_TRACE_SCOPE(Here, "here");
    ZU_TRACE(Here, "text");
}

} // namespace

int main()
{
    traceOther("main");
    Zu::Trace::printLevels(std::cout);
    return 0;
}

// A job in cycles: how long its parts take, as a log event, with a trace of one cycle.
#include "app/lgService.h"
#include "base/base.h"
#include <cmath>

ZU_TRACE_LEVEL(Job);
ZU_DEFINE_LOG_GROUP(Jobs);

namespace
{

double work(int cycle)
{
    ZU_TRACE_SCOPE(Job, "work");
    double sum = 0;
    for (int i = 1; i <= 10000; ++i) sum += std::sqrt(cycle * i);
    ZU_TRACE(Job, "sum " << sum);
    return sum;
}

} // namespace

int main(int argc, char** argv)
{
    const Zu::InInitGuard guard(argc, argv);
    ZU_START_LOG_GROUP("Jobs", Jobs);
    Zu::LgMajorGroup::getInstanceForName("Jobs").setLogThreshold(Zu::LgTypes::Profiling, false);

    Zu::Profiler<Zu::HwIntervalTimer> profiler("work");
    double sum = 0;
    for (int cycle = 0; cycle < 100; ++cycle)
    {
        // Only the first cycle is traced; ZU_TRACE_OPTIONS can show all or none.
        Zu::Trace::setOptions(cycle == 0 ? "show=Job" : "hide=Job");
        const Zu::ProfilerCycle whole(profiler);
        const Zu::ProfilerSpan span(profiler);
        sum += work(cycle);
    }
    {
        const Zu::LgService service;
        ZU_LOG_PROFILING(Jobs, profiler); // to prof.log
    }
    ZU_STOP_LOG_GROUP(Jobs);
    return sum > 0 ? 0 : 1;
}

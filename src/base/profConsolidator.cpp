#include "base/profConsolidator.h"

#include "base/profilerReport.h"

namespace Zu
{

void ProfConsolidator::consolidate(ProfilerBase& profiler)
{
    _cycles += profiler.cycles();
    _total += profiler.totalTime();
    if (profiler.minTime() < _minimum) _minimum = profiler.minTime();
    if (profiler.maxTime() > _maximum) _maximum = profiler.maxTime();
}

double ProfConsolidator::totalTime() const
{
    return _total;
}

double ProfConsolidator::averageTime() const
{
    return _cycles == 0 ? 0.0 : _total / _cycles;
}

double ProfConsolidator::minTime() const
{
    return _cycles == 0 ? 0.0 : _minimum;
}

double ProfConsolidator::maxTime() const
{
    return _maximum;
}

int ProfConsolidator::cycles() const
{
    return _cycles;
}

std::ostream& operator<<(std::ostream& os, const ProfConsolidator& consolidator)
{
    ProfilerReport report(os);
    os << "Profiler Consolidator:" << std::endl;
    report.row("Nb of cycles:", consolidator.cycles());
    report.row("Total time:", consolidator.totalTime());
    report.row("Average time:", consolidator.averageTime());
    report.row("Minimum time:", consolidator.minTime());
    report.row("Maximum time:", consolidator.maxTime());
    return os << std::endl;
}

} // namespace Zu

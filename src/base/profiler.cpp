#include "base/profiler.h"

#include "base/profilerReport.h"

#include <charconv>
#include <cstddef>
#include <string_view>

namespace Zu
{

namespace
{

void writeRow(LgStream& stream, const char* label, double value)
{
    // All digits of the largest number, and nine decimals.
    char text[340];
    const char* const end =
        std::to_chars(text, text + sizeof text, withoutNaNSign(value), std::chars_format::fixed, 9)
            .ptr;
    stream << label << std::string_view(text, static_cast<std::size_t>(end - text)) << "\n";
}

} // namespace

ProfilerBase::~ProfilerBase() = default;

std::ostream& operator<<(std::ostream& os, const ProfilerBase& profiler)
{
    ProfilerReport report(os);
    os << "Profiler " << ProfilerReport::shownName(profiler) << ":" << std::endl;
    report.row("Nb of cycles:", profiler.cycles());
    report.row("Total time:", profiler.totalTime());
    report.row("Average time:", profiler.averageTime());
    report.row("Minimum time:", profiler.minTime());
    report.row("Maximum time:", profiler.maxTime());
    report.row("Standard dev:", profiler.standardDeviation());
    return os << std::endl;
}

LgStream& operator<<(LgStream& stream, const ProfilerBase& profiler)
{
    stream << "Profiler " << profiler.getName() << ":\n"
           << "        Nb of cycles:   " << profiler.cycles() << "\n";
    writeRow(stream, "        Total time  :   ", profiler.totalTime());
    writeRow(stream, "        Average time:   ", profiler.averageTime());
    writeRow(stream, "        Minimum time:   ", profiler.minTime());
    writeRow(stream, "        Maximum time:   ", profiler.maxTime());
    writeRow(stream, "        Standard dev:   ", profiler.standardDeviation());
    return stream << "\n";
}

} // namespace Zu

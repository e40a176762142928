/// @file
/// The form that reports of profilers share. Internal to the library.

#ifndef ZU_BASE_PROFILERREPORT_H
#define ZU_BASE_PROFILERREPORT_H

#include "plainNumber.h"
#include "streamFormat.h"

#include <iomanip>
#include <ostream>

namespace Zu
{

/// The rows of a report on a stream: left-justified, in fixed notation, filled with blanks.
/// Restores flags, width and fill character when it is destroyed. A width that is set on the stream
/// is deliberately left for the first text of the report.
class ProfilerReport
{
public:
    explicit ProfilerReport(std::ostream& os) : _os(os), _format(os)
    {
        _os.fill(' ');
        _os << std::left << std::fixed;
    }

    ProfilerReport(const ProfilerReport&) = delete;
    ProfilerReport& operator=(const ProfilerReport&) = delete;

    /// The name of a timer or profiler as reports have it.
    template <class Named> static const char* shownName(const Named& named)
    {
        const char* const name = named.getName();
        return name ? name : "(null)";
    }

    template <class Value> void row(const char* label, Value value)
    {
        _os << std::setw(8) << "" << std::setw(16) << label << plainNumber(value) << std::endl;
    }

private:
    std::ostream& _os;
    StreamFormat _format;
};

} // namespace Zu

#endif

/// @file
/// The form that reports of profilers share. Internal to the library.

#ifndef ZU_BASE_PROFILERREPORT_H
#define ZU_BASE_PROFILERREPORT_H

#include "withoutNaNSign.h"

#include <iomanip>
#include <ostream>

namespace Zu
{

/// The rows of a report on a stream: left-justified and fixed, with blanks. Puts flags, width and
/// fill character back at its end.
class ProfilerReport
{
public:
    explicit ProfilerReport(std::ostream& os)
        : _os(os), _flags(os.flags()), _width(os.width(0)), _fill(os.fill(' '))
    {
        _os << std::left << std::fixed;
    }

    ProfilerReport(const ProfilerReport&) = delete;
    ProfilerReport& operator=(const ProfilerReport&) = delete;

    ~ProfilerReport()
    {
        _os.flags(_flags);
        _os.width(_width);
        _os.fill(_fill);
    }

    template <class Value> void row(const char* label, Value value)
    {
        _os << std::setw(8) << "" << std::setw(16) << label << withoutNaNSign(value) << std::endl;
    }

private:
    std::ostream& _os;
    std::ios_base::fmtflags _flags;
    std::streamsize _width;
    char _fill;
};

} // namespace Zu

#endif

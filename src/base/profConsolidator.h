/// @file
/// Merges profilers.

#ifndef ZU_BASE_PROFCONSOLIDATOR_H
#define ZU_BASE_PROFCONSOLIDATOR_H

#include "baseApi.h"
#include "compiler.h"
#include "profiler.h"

#include <iosfwd>
#include <limits>

namespace Zu
{

// Deliberately without a virtual destructor: nobody deletes one through a base.
ZU_IGNORE_NON_VIRTUAL_DTOR

/// The figures of several profilers together, but for the deviation.
class ZU_BASE_API ProfConsolidator
{
public:
    ProfConsolidator() = default;
    ProfConsolidator(const ProfConsolidator&) = default;
    ProfConsolidator& operator=(const ProfConsolidator&) = default;

    /// Adds the profiler's closed cycles. One without cycles has a least time of 0, which
    /// deliberately counts.
    virtual void consolidate(ProfilerBase& profiler);

    /// @{
    /// Of all cycles, in seconds; 0 when there is none.
    double totalTime() const;
    double averageTime() const;
    double minTime() const;
    double maxTime() const;
    /// @}

    /// How many cycles were added.
    int cycles() const;

private:
    int _cycles = 0;
    double _total = 0;
    double _minimum = std::numeric_limits<double>::max();
    double _maximum = 0;
};

ZU_END_IGNORE

/// Writes the report of a profiler, without name and deviation.
ZU_BASE_API std::ostream& operator<<(std::ostream& os, const ProfConsolidator& consolidator);

} // namespace Zu

#endif

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

// Deliberately without a virtual destructor: objects are not deleted through a base.
ZU_IGNORE_NON_VIRTUAL_DTOR

/// The combined figures of several profilers, except for the deviation.
class ZU_BASE_API ProfConsolidator
{
public:
    ProfConsolidator() = default;
    ProfConsolidator(const ProfConsolidator&) = default;
    ProfConsolidator& operator=(const ProfConsolidator&) = default;

    /// Adds the profiler's closed cycles. A profiler without cycles has a minimum time of 0, which
    /// deliberately counts.
    virtual void consolidate(ProfilerBase& profiler);

    /// @{
    /// Over all cycles, in seconds; 0 if there are none.
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

/// @file
/// Which libraries are loaded into the process.

#ifndef ZU_BASE_LMLIBRARIES_H
#define ZU_BASE_LMLIBRARIES_H

#include "baseApi.h"
#include "lmLibrary.h"

#include <vector>

namespace Zu
{

/// Asks the system and not the loader: whatever module stands in the memory of the process is
/// listed. On Windows these are the allocations that a module's file stands behind, on Linux the
/// files with a mapping that can be executed. Nothing fails: what can't be found out is left out.
///
/// Thread-safety: one call at a time.
class ZU_BASE_API LmLibraries
{
public:
    LmLibraries() = delete;

    /// The libraries of this moment, by their addresses. There is one list: the next call fills it
    /// afresh.
    static const std::vector<LmLibrary>& getList();

    /// Prints them to standard output.
    static void dumpList();

private:
    // Appends the present libraries.
    static void performGetList(std::vector<LmLibrary>& libraries);
};

} // namespace Zu

#endif

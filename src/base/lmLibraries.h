/// @file
/// Which libraries are loaded into the process.

#ifndef ZU_BASE_LMLIBRARIES_H
#define ZU_BASE_LMLIBRARIES_H

#include "baseApi.h"
#include "lmLibrary.h"

#include <vector>

namespace Zu
{

/// Asks the system rather than the loader: every module in the memory of the process is listed. On
/// Windows these are the allocations backed by a module's file, on Linux the files with an
/// executable mapping. Nothing fails: anything that can't be determined is left out.
///
/// Thread-safety: one call at a time.
class ZU_BASE_API LmLibraries
{
public:
    LmLibraries() = delete;

    /// The libraries loaded at this moment, in the order of their addresses. There is only one
    /// list, which the next call refills.
    static const std::vector<LmLibrary>& getList();

    /// Prints them to standard output.
    static void dumpList();

private:
    // Appends the libraries loaded at this moment.
    static void performGetList(std::vector<LmLibrary>& libraries);
};

} // namespace Zu

#endif

/// @file
/// The main program of tests.

#ifndef ZU_BASE_TESTMGR_H
#define ZU_BASE_TESTMGR_H

#include "baseApi.h"

namespace Zu
{

/// Runs the test groups of a program by its command line:
///
/// @code
/// int main(int argc, char** argv)
/// {
///     return Zu::TestMgr::runTest(argc, argv);
/// }
/// @endcode
///
/// docs/testing.md documents the words of the command line.
class ZU_BASE_API TestMgr
{
public:
    TestMgr() = delete;

    /// Starts the packages, registers the program as an application, runs what the words request,
    /// and stops the packages. Returns
    /// - 0 for a group that ran through, a performance run, a list of libraries, and no words
    /// - 1 for a name that no group has, and for "-perf" without a file
    /// - 2 for an exception that got this far
    /// - 3 for a leak
    ///
    /// TestInform reports why the result is not 0, except for a leak. Call it from the main thread,
    /// once in a process: the packages can't be started again, so every further call runs nothing
    /// and returns 2, with "The packages have stopped: tests run once in a process." as the reason.
    static int runTest(int argc, char** const argv);

    /// Sets whether the program was instrumented for profiling.
    static void setIsPixified(bool isPixified);
};

} // namespace Zu

#endif

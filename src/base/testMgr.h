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
/// docs/testing.md has the words of the command line.
class ZU_BASE_API TestMgr
{
public:
    TestMgr() = delete;

    /// Starts the packages, registers the program as an application, runs what the words say, and
    /// stops the packages. Returns 0 for a group that ran through, a performance run, a list of
    /// libraries, and for no words; 1 for a name that no group has, and for "-perf" without a file;
    /// 2 when an exception came here; 3 for a leak. Why it is not 0 is told by TestInform, but for
    /// a leak. For the main thread, once in a process: the packages have no second life, so every
    /// further call runs nothing and returns 2, with "The packages have stopped: tests run once in
    /// a process." as the reason.
    static int runTest(int argc, char** const argv);

    /// Says whether the program was instrumented for profiling.
    static void setIsPixified(bool isPixified);
};

} // namespace Zu

#endif

/// @file
/// The main program of tests with checks.

#ifndef ZU_APP_APTESTRUNNER_H
#define ZU_APP_APTESTRUNNER_H

#include "../base/testGroup.h"
#include "apCheck.h"
#include "appApi.h"

namespace Zu
{

/// Runs the groups of a program that its command line names, one after the other, in the order in
/// which they registered themselves; it takes the place of TestMgr::runTest(), which takes one
/// name:
///
/// @code
/// class LookupTest : public Zu::TestGroup
/// {
/// public:
///     LookupTest() : TestGroup("Lookup") {}
///     void run(int, char** const) override { ZU_CHECK_EQUAL(lookUp("one"), 1); }
/// } theLookupTest;
///
/// int main(int argc, char** argv)
/// {
///     return Zu::runTests(argc, argv);
/// }
/// @endcode
///
/// docs/testing.md documents the command line and the output. The packages are started before the
/// first group and stopped after the last one; their options are not read, so variables have the
/// values of the environment or their defaults. A group that fails a check goes on; an exception
/// ends it, and the others still run. Groups get no words, but their names if they request these.
/// Groups without a name are not run.
///
/// Returns
/// - 0 if all that ran has passed, and for "--help" and "--list"
/// - 2 if a check or a group has failed, a check was made while no group ran, the packages could
///   not be started or stopped, or the output or a report could not be written
/// - 2 for words that can't be used, and for none: then nothing was run, and standard error says
///   why
///
/// Call it from the main thread, once in a process: the packages can't be started again.
ZU_APP_API int runTests(int argc, const char* const* argv);

} // namespace Zu

#endif

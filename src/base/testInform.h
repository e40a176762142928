/// @file
/// Why a test did not pass.

#ifndef ZU_BASE_TESTINFORM_H
#define ZU_BASE_TESTINFORM_H

#include "baseApi.h"

namespace Zu
{

/// Reports to the driver of the tests why a run did not pass: in the file that the variable
/// ZU_RUN_TEST_MSGS names, which then contains only the last message, or otherwise through the
/// trace manager. If the file can't be opened, the message is lost.
///
/// Thread-safety: one thread at a time.
class ZU_BASE_API TestInform
{
public:
    TestInform() = delete;

    /// "Test not performed: <text>"
    static void testNotPerformed(const char* text);

    /// "Exception encountered: <text>"
    static void exceptionEncountered(const char* text);

    /// "Abnormal termination: <text>"
    static void abnormalTermination(const char* text);
};

} // namespace Zu

#endif

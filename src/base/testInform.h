/// @file
/// Why a test did not pass.

#ifndef ZU_BASE_TESTINFORM_H
#define ZU_BASE_TESTINFORM_H

#include "baseApi.h"

namespace Zu
{

/// Tells whoever drives the tests why a run did not pass: into the file that the variable
/// ZU_RUN_TEST_MSGS names, which holds the last message alone, or through the trace manager. A file
/// that can't be opened loses the message.
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

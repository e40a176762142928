/// @file
/// Where tests report what has failed. Internal to the kit.

#ifndef ZU_APP_APTESTINFORM_H
#define ZU_APP_APTESTINFORM_H

#include <string>

namespace Zu
{

/// Reports why a run did not pass, at the place where TestInform does so: in the file that the
/// variable ZU_RUN_TEST_MSGS names, or otherwise through the trace manager. Unlike there, the file
/// then contains all the messages of the process, each in one piece. If the file can't be opened,
/// the message goes to standard error.
///
/// Thread-safety: any thread, while none changes the environment.
void apTestInform(const std::string& message);

/// The text of the exception that is being handled, as TestMgr reports it; to be called in a
/// handler.
std::string apExceptionText();

} // namespace Zu

#endif

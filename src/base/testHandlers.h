/// @file
/// What a test program does when the language's runtime gives up. Internal to the library.

#ifndef ZU_BASE_TESTHANDLERS_H
#define ZU_BASE_TESTHANDLERS_H

/// Each runs on the thread that gave up.
namespace Zu::TestHandlers
{

/// Makes the two functions below the handlers of the process.
void install();

/// Tells "Abnormal termination: Terminate handler called." and aborts.
[[noreturn]] void onTerminate();

/// Raises ExBadException; code of the present language never gets here.
[[noreturn]] void onUnexpected();

} // namespace Zu::TestHandlers

#endif

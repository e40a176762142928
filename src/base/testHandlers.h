/// @file
/// What a test program does when the language's runtime terminates it. Internal to the library.

#ifndef ZU_BASE_TESTHANDLERS_H
#define ZU_BASE_TESTHANDLERS_H

/// Each runs on the thread that caused it.
namespace Zu::TestHandlers
{

/// Makes the two functions below the handlers of the process.
void install();

/// Reports "Abnormal termination: Terminate handler called." and aborts.
[[noreturn]] void onTerminate();

/// Raises ExBadException; code in current C++ never gets here.
[[noreturn]] void onUnexpected();

} // namespace Zu::TestHandlers

#endif

/// @file
/// What happens to waiting events when the process ends.

#ifndef ZU_APP_LGSERVICEENDS_H
#define ZU_APP_LGSERVICEENDS_H

#include "appApi.h"

#include <cstdlib>
#include <exception>

/// Included by programs with a log service, by way of lgService.h. What is registered for the end
/// of the process is registered by the program, not by the library: when a library's exit handlers
/// run on Windows, all other threads are gone.
namespace Zu::LgServiceEnds
{

/// Has the logger open its files through the kit, which never empties them. Called before main.
ZU_APP_API void useFiles() noexcept;

/// Waits until all events that were logged so far are written, at most as long as the options of
/// the service say. Returns at once without a service, on the thread that writes, in the child of a
/// fork, and while a Windows process is already ending its threads. Any thread may call it.
ZU_APP_API void drain() noexcept;

/// The same for the end of the process. Without a service, removes the file with the queues if
/// nothing waits in it.
ZU_APP_API void endProcess() noexcept;

/// Has endProcess() called by quick_exit(), where the platform has that.
ZU_APP_API void endAtQuickExit() noexcept;

/// The handler that was installed before terminated().
inline std::terminate_handler previousHandler = nullptr;

/// Writes what is waiting when the program ends by std::terminate(), for example after an exception
/// that nobody caught, and goes on with the handler before.
[[noreturn]] inline void terminated() noexcept
{
    drain();
    if (previousHandler) previousHandler();
    std::abort();
}

/// Once in each program or library that includes this.
inline bool install() noexcept
{
    useFiles();
    endAtQuickExit();
    return std::atexit(&endProcess) == 0;
}

#ifndef ZU_APP_BUILD
/// Whether the handler of exit() is installed. Not in the library itself: a program that does not
/// include this keeps its logger as it is.
inline const bool isInstalled = install();
#endif

/// Installs terminated(), unless it is already the handler. Returns true.
inline bool handleTerminate() noexcept
{
    if (std::get_terminate() != &terminated) previousHandler = std::set_terminate(&terminated);
    return true;
}

} // namespace Zu::LgServiceEnds

#endif

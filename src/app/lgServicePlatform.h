/// @file
/// What the log service needs from the platform. Internal to the application kit.

#ifndef ZU_APP_LGSERVICEPLATFORM_H
#define ZU_APP_LGSERVICEPLATFORM_H

#include <cstddef>
#include <memory>
#include <string>

namespace Zu::LgServicePlatform
{

/// Whether barrier() works here. Called before barrier() is.
bool prepareBarrier();

/// Makes every other thread of the process pass a full memory barrier; false if the system refuses,
/// for example for lack of memory.
bool barrier();

/// Sleeps for a tenth of a millisecond; where a sleep takes much longer, returns false at once.
bool nap();

/// Has the calling thread run only when others leave it a processor, as far as the system allows.
void lowerPriority();

/// How many bytes of a thread's name the system keeps.
extern const std::size_t LONGEST_THREAD_NAME;

/// Gives the calling thread this name, in UTF-8, not empty and not longer, if the system can.
void nameThread(const std::string& name);

/// Has `prepare` called before a fork, and `parent` and `child` after it in the two processes. Does
/// nothing where there is no fork. Raises std::system_error if the system refuses.
void onFork(void (*prepare)(), void (*parent)(), void (*child)());

/// Has a function called by quick_exit(), once; does nothing where there is none.
void onQuickExit(void (*function)());

/// Has a function called when the process is sent a hangup, SIGHUP, in the signal handler; null
/// ends that. The handler that was there is called afterwards, and is restored at the end, as is
/// the default or ignoring; a handler that is installed later has to call the one before it. The
/// child of a fork begins without it. Does nothing on Windows, which has no such signal. One thread
/// at a time.
void onHangup(void (*function)());

/// Has a function called when a thread of the process crashes, in that thread, before what would
/// have happened without it: on SIGSEGV, SIGBUS, SIGFPE, SIGILL and SIGABRT, on Windows by the
/// filter of exceptions that nobody handles and on SIGABRT. Then the handler that was there is
/// restored, and on Linux gets the same signal with the same information again; on Windows the
/// filter that was there is called. So the end of the process is as it would have been. Null ends
/// this and restores what was there, unless another handler was installed since. The function runs
/// on the alternate stack of a thread that has one; none is installed. It is not called in the
/// child of a fork. One thread at a time.
void onFatalSignals(void (*function)());

/// Whether the process is ending and its other threads are gone, which happens on Windows.
bool isEnding();

/// While one lives, newly started threads receive no signals that the process might handle.
class SignalBlock
{
public:
    SignalBlock();
    SignalBlock(const SignalBlock&) = delete;
    SignalBlock& operator=(const SignalBlock&) = delete;
    ~SignalBlock();

private:
    struct Saved;
    std::unique_ptr<Saved> _saved;
};

} // namespace Zu::LgServicePlatform

#endif

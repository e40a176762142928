#include "app/lgServicePlatform.h"

#include "base/compiler.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <linux/membarrier.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

namespace Zu::LgServicePlatform
{

namespace
{

bool callBarrier(int command)
{
    return syscall(SYS_membarrier, command, 0, 0) == 0;
}

std::atomic<void (*)()> hangupFunction{nullptr};

// What was there before the handler, and whether the handler is there. It stays there if another
// one was installed since, which may call it.
struct sigaction beforeHangup;
bool isHangupHandled = false;

bool isFunction(const struct sigaction& action)
{
    if (action.sa_flags & SA_SIGINFO) return true;
    return action.sa_handler != SIG_DFL && action.sa_handler != SIG_IGN;
}

void callHangupFunction()
{
    void (*const function)() = hangupFunction.load();
    if (function) function();
}

void handleHangup(int signal)
{
    const int error = errno;
    callHangupFunction();
    if (isFunction(beforeHangup)) beforeHangup.sa_handler(signal);
    errno = error;
}

// For a handler before it that takes as much.
void handleHangupWithInfo(int signal, siginfo_t* info, void* context)
{
    const int error = errno;
    callHangupFunction();
    beforeHangup.sa_sigaction(signal, info, context);
    errno = error;
}

struct sigaction presentHangup()
{
    struct sigaction present;
    sigaction(SIGHUP, nullptr, &present);
    return present;
}

bool isHandleHangup(const struct sigaction& action)
{
    // Whatever the flags: signal() restores a handler without them.
    return action.sa_handler == &handleHangup || action.sa_sigaction == &handleHangupWithInfo;
}

void installHangup()
{
    const struct sigaction present = presentHangup();
    // In the second case what was installed since calls it: it must not be called in turn.
    if (isHandleHangup(present) || (isHangupHandled && isFunction(present))) return;
    beforeHangup = present;
    struct sigaction handler = {};
    handler.sa_mask = present.sa_mask;
    handler.sa_flags = SA_RESTART | SA_ONSTACK | (present.sa_flags & SA_SIGINFO);
    if (handler.sa_flags & SA_SIGINFO)
        handler.sa_sigaction = &handleHangupWithInfo;
    else
        handler.sa_handler = &handleHangup;
    sigaction(SIGHUP, &handler, nullptr);
    isHangupHandled = true;
}

void removeHangup()
{
    hangupFunction = nullptr;
    if (!isHandleHangup(presentHangup())) return;
    sigaction(SIGHUP, &beforeHangup, nullptr);
    isHangupHandled = false;
}

std::atomic<void (*)()> fatalFunction{nullptr};
std::atomic<pid_t> fatalProcess{0};

// A signal, what was there before the handler, and whether the handler may still be called by what
// was installed since.
struct FatalSignal
{
    int _number;
    struct sigaction _before;
    std::atomic<bool> _isHandled{false};
};

FatalSignal fatalSignals[] = {
    {SIGSEGV, {}}, {SIGBUS, {}}, {SIGFPE, {}}, {SIGILL, {}}, {SIGABRT, {}}};

// To this thread, which gets it when the handler returns: in the place where it was. What a fault
// was about stays known.
void sendAgain(int signal, siginfo_t* info)
{
    if (syscall(SYS_rt_tgsigqueueinfo, getpid(), syscall(SYS_gettid), signal, info) != 0)
        raise(signal);
}

void handleFatal(int signal, siginfo_t* info, void*)
{
    const int error = errno;
    void (*const function)() = fatalFunction.load();
    if (function && fatalProcess == getpid()) function();
    for (FatalSignal& fatal : fatalSignals)
    {
        if (fatal._number != signal) continue;
        sigaction(signal, &fatal._before, nullptr);
        fatal._isHandled = false;
    }
    sendAgain(signal, info);
    errno = error;
}

struct sigaction presentAction(int signal)
{
    struct sigaction present;
    sigaction(signal, nullptr, &present);
    return present;
}

bool isHandleFatal(const struct sigaction& action)
{
    return action.sa_sigaction == &handleFatal;
}

void installFatal(FatalSignal& fatal)
{
    const struct sigaction present = presentAction(fatal._number);
    // In the second case what was installed since calls it: it must not be called in turn.
    if (isHandleFatal(present) || (fatal._isHandled && isFunction(present))) return;
    fatal._before = present;
    struct sigaction handler = {};
    handler.sa_sigaction = &handleFatal;
    handler.sa_flags = SA_SIGINFO | SA_ONSTACK;
    fatal._isHandled = true;
    sigaction(fatal._number, &handler, nullptr);
}

void removeFatal(FatalSignal& fatal)
{
    if (!isHandleFatal(presentAction(fatal._number))) return;
    sigaction(fatal._number, &fatal._before, nullptr);
    fatal._isHandled = false;
}

} // namespace

bool prepareBarrier()
{
#if ZU_THREAD_SANITIZER
    // The sanitizer only models ordering between atomics.
    return false;
#else
    return callBarrier(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED);
#endif
}

bool barrier()
{
    return callBarrier(MEMBARRIER_CMD_PRIVATE_EXPEDITED);
}

bool nap()
{
    const timespec length{0, 100000};
    nanosleep(&length, nullptr);
    return true;
}

// Not at the lowest one: the thread holds a lock for the time of a few renames.
void lowerPriority()
{
    constexpr int NICE = 10;
    setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), NICE);
}

const std::size_t LONGEST_THREAD_NAME = 15;

void nameThread(const std::string& name)
{
    pthread_setname_np(pthread_self(), name.c_str());
}

void onFork(void (*prepare)(), void (*parent)(), void (*child)())
{
    const int code = pthread_atfork(prepare, parent, child);
    if (code != 0) throw std::system_error(code, std::generic_category(), "pthread_atfork");
}

void onQuickExit(void (*function)())
{
    // The list of functions is that of the process.
    [[maybe_unused]] static const bool isRegistered = std::at_quick_exit(function) == 0;
}

void onHangup(void (*function)())
{
    if (!function) return removeHangup();
    [[maybe_unused]] static const bool isRegistered =
        pthread_atfork(nullptr, nullptr, &removeHangup) == 0;
    hangupFunction = function;
    installHangup();
}

void onFatalSignals(void (*function)())
{
    fatalProcess = getpid();
    fatalFunction = function;
    for (FatalSignal& fatal : fatalSignals) function ? installFatal(fatal) : removeFatal(fatal);
}

bool isEnding()
{
    return false;
}

struct SignalBlock::Saved
{
    sigset_t _signals;
};

SignalBlock::SignalBlock() : _saved(new Saved)
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &_saved->_signals);
}

SignalBlock::~SignalBlock()
{
    pthread_sigmask(SIG_SETMASK, &_saved->_signals, nullptr);
}

} // namespace Zu::LgServicePlatform

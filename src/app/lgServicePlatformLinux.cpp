#include "app/lgServicePlatform.h"

#include "base/compiler.h"

#include <csignal>
#include <ctime>
#include <linux/membarrier.h>
#include <pthread.h>
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

void onFork(void (*prepare)(), void (*parent)(), void (*child)())
{
    const int code = pthread_atfork(prepare, parent, child);
    if (code != 0) throw std::system_error(code, std::generic_category(), "pthread_atfork");
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

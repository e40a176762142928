#include "app/crash.h"

#include <csignal>
#include <cstdlib>
#include <initializer_list>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

void (*theReport)(int) = nullptr;

void handle(int signal)
{
    theReport(signal);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

} // namespace

void crashQuietly() {}

void onCrash(void (*report)(int))
{
    theReport = report;
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
        std::signal(signal, &handle);
}

int endOfChild(void (*crash)())
{
    const pid_t child = fork();
    if (child == 0)
    {
        crash();
        std::_Exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

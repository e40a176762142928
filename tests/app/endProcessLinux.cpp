#include "endProcess.h"

#include <csignal>
#include <sys/types.h>

bool support::killProcess(std::uint32_t id)
{
    return kill(static_cast<pid_t>(id), SIGKILL) == 0;
}

bool support::askProcessToEnd(std::uint32_t id)
{
    return kill(static_cast<pid_t>(id), SIGTERM) == 0;
}

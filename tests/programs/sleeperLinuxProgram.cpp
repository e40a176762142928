// Prints by how much the system may delay the wake-ups of this thread, in nanoseconds: before,
// during and after a sleep. Linux only.

#include "base/base.h"
#include "base/sleeper.h"

#include <cerrno>
#include <ctime>
#include <iostream>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

// Neither what the system gives to a new process nor what a sleep may want.
constexpr int OWN = 70001;

int during = OWN;

int slack()
{
    return prctl(PR_GET_TIMERSLACK);
}

} // namespace

// Stands before the C library's function for the whole program, so it sees what a sleep has set.
extern "C" int clock_nanosleep(clockid_t clock, int flags, const timespec* time, timespec* rest)
{
    during = slack();
    return syscall(SYS_clock_nanosleep, clock, flags, time, rest) == 0 ? 0 : errno;
}

int main(int count, char** words)
{
    const Zu::InInitGuard guard(count, words);
    prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(OWN));
    std::cout << "before " << slack() << '\n';
    Zu::Sleeper::getInstance().sleep(0.02);
    std::cout << "during " << during << '\n' << "after " << slack() << std::endl;
}

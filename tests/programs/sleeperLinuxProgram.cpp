// Prints by how much the system may delay the wake-ups of this thread, in nanoseconds: before,
// during and after a sleep. Linux only.

#include "base/base.h"
#include "base/sleeper.h"

#include <csignal>
#include <iostream>
#include <sys/prctl.h>
#include <sys/time.h>

namespace
{

// Neither what the system gives to a new process nor what a sleep may want.
constexpr int OWN = 70001;

volatile std::sig_atomic_t during = OWN;

int slack()
{
    return prctl(PR_GET_TIMERSLACK);
}

// On the thread that sleeps, there is no other. It may come before the sleep, or behind it.
void look(int)
{
    const int now = slack();
    if (now != OWN) during = now;
}

void lookEveryMillisecond()
{
    struct sigaction action = {};
    action.sa_handler = look;
    action.sa_flags = SA_RESTART;
    sigaction(SIGALRM, &action, nullptr);
    const itimerval millisecond = {{0, 1000}, {0, 1000}};
    setitimer(ITIMER_REAL, &millisecond, nullptr);
}

} // namespace

int main(int count, char** words)
{
    constexpr int TRIES = 100;
    const Zu::InInitGuard guard(count, words);
    prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(OWN));
    std::cout << "before " << slack() << '\n';
    lookEveryMillisecond();
    for (int i = 0; i < TRIES && during == OWN; ++i) Zu::Sleeper::getInstance().sleep(0.02);
    const itimerval never = {};
    setitimer(ITIMER_REAL, &never, nullptr);
    std::cout << "during " << during << '\n' << "after " << slack() << std::endl;
}

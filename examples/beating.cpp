// Ten beats of a hundredth of a second, and a sleep of two milliseconds.
#include "base/base.h"
#include <iostream>
#include <memory>

int main(int argc, char** argv)
{
    const Zu::InInitGuard guard(argc, argv);
    const std::unique_ptr<Zu::PeriodicTimer> timer(Zu::PeriodicTimer::create(0.01));
    timer->start();
    // A thread that is busy for longer than a beat misses some: rely on the count, not on returns.
    while (timer->wait() < 10) continue;
    std::cout << "beat " << timer->getCurrentCount() << "\n";
    timer->stop();
    const bool hasSlept = Zu::Sleeper::getInstance().sleep(0.002);
    std::cout << (hasSlept ? "slept\n" : "too short a sleep\n");
}

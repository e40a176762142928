// A program with a log service whose threads are all alive at the same time when they have logged:
// so each has a queue of its own. Then it ends in order, or is killed.

#include "app/lgService.h"
#include "base/base.h"

#include "stress/hardEnd.h"

#include <barrier>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

ZU_DEFINE_LOG_GROUP(Victim);

namespace
{

constexpr int NO_GROUP = 3;

void logNumbers(std::barrier<>& barrier, int thread, int count, bool isKilled)
{
    for (int i = 0; i < count; ++i)
    {
        ZU_LOG_WARNING(Victim, "t" << thread << " n" << i << " end");
        if (i == 0) barrier.arrive_and_wait();
    }
    barrier.arrive_and_wait();
    if (thread == 0 && isKilled) stress::killSelf();
    // Nobody ends before.
    barrier.arrive_and_wait();
}

} // namespace

// <"main" or "kill"> <threads> <events of each, at least 1>
int main(int argc, char** argv)
{
    if (argc != 4) return 2;
    const bool isKilled = std::string(argv[1]) == "kill";
    const int threads = std::atoi(argv[2]);
    const int count = std::atoi(argv[3]);
    // A group of processes that share a limit of memory, which the test has made.
    if (const char* const group = std::getenv("VICTIM_GROUP"))
        if (!(std::ofstream(group) << getpid() << std::flush)) return NO_GROUP;
    int words = 1;
    const Zu::InInitGuard guard(words, argv);
    ZU_START_LOG_GROUP("Victim", Victim);
    {
        const Zu::LgService service;
        std::barrier<> barrier(threads);
        std::vector<std::thread> others;
        for (int i = 0; i < threads; ++i)
            others.emplace_back([&, i] { logNumbers(barrier, i, count, isKilled); });
        for (std::thread& other : others) other.join();
    }
    ZU_STOP_LOG_GROUP(Victim);
    return 0;
}

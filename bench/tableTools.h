// What the tables of the log service share.

#ifndef ZU_BENCH_TABLETOOLS_H
#define ZU_BENCH_TABLETOOLS_H

#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace bench
{

using Clock = std::chrono::steady_clock;

template <class Value> Value median(std::vector<Value> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

inline double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// The processor time of a thread of this process, in seconds, by its id in the system.
inline double processorTimeOf(int thread)
{
    // As pthread_getcpuclockid() forms it.
    const clockid_t clock = static_cast<clockid_t>((~static_cast<unsigned>(thread) << 3) | 6);
    std::timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// The ids of the threads of this process.
inline std::vector<int> threads()
{
    std::vector<int> ids;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task"))
        ids.push_back(std::stoi(entry.path().filename().string()));
    std::sort(ids.begin(), ids.end());
    return ids;
}

// The thread that an action starts.
template <class Action> int threadMadeBy(Action action)
{
    const std::vector<int> before = threads();
    action();
    for (const int id : threads())
        if (!std::binary_search(before.begin(), before.end(), id)) return id;
    return getpid();
}

} // namespace bench

#endif

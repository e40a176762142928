// Tables of what a logger costs where little is logged: the first event of a thread, the memory of
// threads that have logged once, and an idle logger. The log service and spdlog, asynchronous.

#include "app/lgService.h"
#include "base/lgEvent.h"
#include "benchLogger.h"
#include "tableTools.h"

#include <barrier>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <memory>
#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <string>
#include <thread>
#include <vector>

ZU_DEFINE_LOG_GROUP(Load);

namespace
{

using bench::Clock;
using bench::median;
using bench::secondsSince;

struct Memory
{
    double _resident = 0;
    double _shared = 0;
};

// Of this process, in KiB: exact, where the counters of /proc/self/status are estimates.
Memory memory()
{
    Memory result;
    std::ifstream file("/proc/self/smaps_rollup");
    std::string word;
    while (file >> word)
        if (word == "Rss:")
            file >> result._resident;
        else if (word == "Pss_Shmem:")
            file >> result._shared;
    return result;
}

// What each of many threads adds to the memory with its first event.
template <class Log> Memory memoryOfThread(Log log)
{
    constexpr int COUNT = 256;
    std::barrier<> barrier(COUNT + 1);
    std::vector<std::thread> threads;
    threads.reserve(COUNT);
    for (int i = 0; i < COUNT; ++i)
        threads.emplace_back(
            [&]
            {
                barrier.arrive_and_wait();
                barrier.arrive_and_wait();
                log();
                barrier.arrive_and_wait();
                barrier.arrive_and_wait();
            });
    // All run, and wait.
    barrier.arrive_and_wait();
    const Memory before = memory();
    barrier.arrive_and_wait();
    barrier.arrive_and_wait();
    const Memory after = memory();
    barrier.arrive_and_wait();
    for (std::thread& thread : threads) thread.join();
    return {(after._resident - before._resident) / COUNT, (after._shared - before._shared) / COUNT};
}

// Milliseconds of processor time per second of a process that does nothing itself.
double idle()
{
    const std::chrono::seconds length(3);
    const std::clock_t before = std::clock();
    std::this_thread::sleep_for(length);
    const double used = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
    return used * 1000 / static_cast<double>(length.count());
}

struct Times
{
    double _first;
    double _second;
};

// Medians in microseconds, of threads that come one after the other.
template <class Log> Times timesOfEvents(Log log)
{
    std::vector<double> first;
    std::vector<double> second;
    for (int i = 0; i < 101; ++i)
        std::thread(
            [&]
            {
                const Clock::time_point start = Clock::now();
                log();
                first.push_back(secondsSince(start) * 1e6);
                const Clock::time_point middle = Clock::now();
                log();
                second.push_back(secondsSince(middle) * 1e6);
            })
            .join();
    return {median(first), median(second)};
}

class Service
{
public:
    explicit Service(const bench::Logger&) {}

    static void log()
    {
        ZU_LOG_WARNING(Load, "an event");
    }

private:
    Zu::LgService _service;
};

class Peer
{
public:
    explicit Peer(const bench::Logger& logger)
    {
        spdlog::init_thread_pool(8192, 1);
        _logger = spdlog::basic_logger_mt<spdlog::async_factory>("peer", logger.file("peer.log"));
    }

    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    ~Peer()
    {
        _logger.reset();
        spdlog::drop_all();
        spdlog::shutdown();
    }

    void log() const
    {
        _logger->warn("an event");
    }

private:
    std::shared_ptr<spdlog::logger> _logger;
};

// Measures each with a new logger, so that none finds memory that another has used.
template <class Kind> void print(const char* name, const bench::Logger& logger)
{
    const auto with = [&logger](auto measure)
    {
        const Kind kind(logger);
        return measure([&kind] { kind.log(); });
    };
    const Memory ofThread = with([](auto log) { return memoryOfThread(log); });
    const Times times = with([](auto log) { return timesOfEvents(log); });
    const double ofIdle = with(
        [](auto log)
        {
            log();
            return idle();
        });
    std::printf("%-8s %10.1f us %10.2f us %8.1f KiB %8.1f KiB %8.3f ms/s\n", name, times._first,
                times._second, ofThread._resident, ofThread._shared, ofIdle);
}

} // namespace

int main()
{
    const bench::Logger logger;
    ZU_START_LOG_GROUP("Load", Load);
    std::printf("Of a thread: its first event and its second (medians of 101), and its memory, "
                "resident and of that shared\n(the mean of 256); then the logger, idle\n");
    std::printf("%-8s %13s %13s %12s %12s %13s\n", "", "first", "second", "resident", "shared",
                "idle");
    print<Service>("service", logger);
    print<Peer>("spdlog", logger);
    ZU_STOP_LOG_GROUP(Load);
}

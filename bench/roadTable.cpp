// Tables of the road from an event to the file: what the writing thread does in a second, alone and
// beside silent threads; losses of threads that sleep between bursts; how long single events take
// beside a busy writing thread. Compared with spdlog and with hand-written floors.

#include "app/lgService.h"
#include "base/lgEvent.h"
#include "benchLogger.h"
#include "floorQueue.h"
#include "tableTools.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <iterator>
#include <memory>
#include <optional>
#include <semaphore>
#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

ZU_DEFINE_LOG_GROUP(Road);

namespace
{

using bench::Clock;
using bench::FloorEntry;
using bench::FloorFile;
using bench::FloorQueue;
using bench::median;
using Zu::LgService;

constexpr int RUNS = 5;
// These fit into a queue.
constexpr int BURST = 3000;
constexpr int BURSTS = 100;
constexpr std::chrono::seconds PATIENCE(20);
// Behind the head of a line and the group this makes 80 characters.
const std::string TEXT(80 - 44 - 5 - 1, 'x');
// The floor has no groups, so they are part of the text.
const std::string TEXT_OF_FLOOR = "Road " + TEXT;

// Lines per second until all are written, and processor time of the writing thread per line.
struct Rate
{
    std::vector<double> _lines;
    std::vector<double> _micros;

    void add(double lines, double seconds, double processor)
    {
        _lines.push_back(lines / seconds / 1e6);
        _micros.push_back(processor / lines * 1e6);
    }

    double lines() const
    {
        return median(_lines);
    }

    void print(const char* name, double reference) const
    {
        std::printf("%-44s %8.2f %8.2f %8.2f %10.3f\n", name, lines(),
                    *std::min_element(_lines.begin(), _lines.end()), lines() / reference,
                    median(_micros));
    }
};

void logBurst(int count)
{
    for (int i = 0; i < count; ++i) ZU_LOG_WARNING(Road, TEXT);
}

// A thread that logs when it is asked to.
class Worker
{
public:
    Worker() : _thread([this] { run(); }) {}

    ~Worker()
    {
        _isOver = true;
        _start.release();
        _thread.join();
    }

    void begin(int count)
    {
        _count = count;
        _start.release();
    }

    void await()
    {
        _done.acquire();
    }

private:
    void run()
    {
        for (;;)
        {
            _start.acquire();
            if (_isOver) return;
            logBurst(_count);
            _done.release();
        }
    }

    std::binary_semaphore _start{0};
    std::binary_semaphore _done{0};
    int _count = 0;
    bool _isOver = false;
    std::thread _thread;
};

// So many threads live beside the one that logs; those that are filled log first.
Rate drain(int silent, int filled)
{
    Rate rate;
    for (int run = 0; run < RUNS; ++run)
    {
        std::optional<LgService> service;
        const int writer = bench::threadMadeBy([&service] { service.emplace(); });
        std::vector<std::unique_ptr<Worker>> others;
        for (int i = 0; i < silent + filled; ++i)
        {
            others.push_back(std::make_unique<Worker>());
            others.back()->begin(i < filled ? BURST : 1);
            others.back()->await();
            if (i < filled) service->flush(PATIENCE);
        }
        service->flush(PATIENCE);
        const double processor = bench::processorTimeOf(writer);
        const Clock::time_point start = Clock::now();
        for (int i = 0; i < BURSTS; ++i)
        {
            logBurst(BURST);
            service->flush(PATIENCE);
        }
        rate.add(BURST * BURSTS, bench::secondsSince(start),
                 bench::processorTimeOf(writer) - processor);
        if (service->getLostCount() > 0) std::printf("(some events were lost)\n");
    }
    return rate;
}

Rate drainOfPeer(const bench::Logger& logger)
{
    Rate rate;
    for (int run = 0; run < RUNS; ++run)
    {
        const int writer = bench::threadMadeBy([] { spdlog::init_thread_pool(8192, 1); });
        const auto peer =
            spdlog::basic_logger_mt<spdlog::async_factory>("peer", logger.file("peer.log"));
        const auto drained = [] { return spdlog::thread_pool()->queue_size() == 0; };
        const double processor = bench::processorTimeOf(writer);
        const Clock::time_point start = Clock::now();
        for (int i = 0; i < BURSTS; ++i)
        {
            for (int j = 0; j < BURST; ++j) peer->warn(TEXT);
            while (!drained()) std::this_thread::yield();
        }
        rate.add(BURST * BURSTS, bench::secondsSince(start),
                 bench::processorTimeOf(writer) - processor);
        spdlog::drop_all();
        spdlog::shutdown();
    }
    return rate;
}

FloorEntry& beginEvent(FloorQueue& queue)
{
    FloorEntry& entry = queue.reserve();
    entry.begin(Zu::HwCounter::timeStamp(), 0xabc);
    return entry;
}

// A ring and a thread that writes, as the service has.
Rate floorWithQueue(const bench::Logger& logger)
{
    Rate rate;
    for (int run = 0; run < RUNS; ++run)
    {
        std::optional<FloorQueue> queue;
        const int writer = bench::threadMadeBy([&] { queue.emplace(logger.file("floor.log")); });
        const double processor = bench::processorTimeOf(writer);
        const Clock::time_point start = Clock::now();
        for (int i = 0; i < BURSTS; ++i)
        {
            for (int j = 0; j < BURST; ++j)
            {
                beginEvent(*queue).put(TEXT_OF_FLOOR.data(), TEXT_OF_FLOOR.size());
                queue->publish();
            }
            while (!queue->isEmpty()) std::this_thread::yield();
        }
        rate.add(BURST * BURSTS, bench::secondsSince(start),
                 bench::processorTimeOf(writer) - processor);
    }
    return rate;
}

// No ring and no second thread: formats the same entries again and again.
Rate floorWithoutQueue(const bench::Logger& logger, std::size_t batch)
{
    Rate rate;
    std::vector<FloorEntry> entries(BURST);
    for (FloorEntry& entry : entries)
    {
        entry.begin(0x123456789abcU, 0xabc);
        entry.put(TEXT_OF_FLOOR.data(), TEXT_OF_FLOOR.size());
    }
    for (int run = 0; run < RUNS; ++run)
    {
        FloorFile file(logger.file("floor.log"), batch);
        const double processor = bench::processorTimeOf(getpid());
        const Clock::time_point start = Clock::now();
        for (int i = 0; i < BURSTS; ++i)
            for (const FloorEntry& entry : entries) file.put(entry);
        file.flush();
        rate.add(BURST * BURSTS, bench::secondsSince(start),
                 bench::processorTimeOf(getpid()) - processor);
    }
    return rate;
}

void printRates(const bench::Logger& logger)
{
    std::printf("%-44s %8s %8s %8s %10s\n", "lines of 80 bytes", "M/s", "worst", "share",
                "us of CPU");
    const Rate alone = drain(0, 0);
    alone.print("service", alone.lines());
    for (const int silent : {16, 256, 1024})
        drain(silent, 0).print(
            ("service beside " + std::to_string(silent) + " silent threads").c_str(),
            alone.lines());
    drain(0, 256).print("service beside 256 threads that were busy", alone.lines());
    drainOfPeer(logger).print("spdlog, asynchronous", alone.lines());
    floorWithQueue(logger).print("floor, a queue and calls for up to 256 KiB", alone.lines());
    floorWithoutQueue(logger, std::size_t{256} * 1024)
        .print("floor, no queue, a call for 256 KiB", alone.lines());
    floorWithoutQueue(logger, 0).print("floor, no queue, a call for each line", alone.lines());
}

enum Wait
{
    SLEEPING,
    BUSY
};

void waitUntil(const std::timespec& due, Wait wait)
{
    if (wait == SLEEPING)
    {
        while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &due, nullptr) == EINTR) continue;
        return;
    }
    std::timespec now = {};
    do clock_gettime(CLOCK_MONOTONIC, &now);
    while (std::pair(now.tv_sec, now.tv_nsec) < std::pair(due.tv_sec, due.tv_nsec));
}

// Logs at a rate, in bursts between which it waits; late bursts are caught up.
template <class Log> void pace(double perSecond, double seconds, Wait wait, Log log)
{
    constexpr int EACH = 100;
    const auto bursts = static_cast<int>(perSecond * seconds / EACH);
    std::timespec next = {};
    clock_gettime(CLOCK_MONOTONIC, &next);
    for (int i = 0; i < bursts; ++i)
    {
        next.tv_nsec += static_cast<long>(EACH / perSecond * 1e9);
        if (next.tv_nsec >= 1000000000)
        {
            next.tv_nsec -= 1000000000;
            ++next.tv_sec;
        }
        waitUntil(next, wait);
        for (int j = 0; j < EACH; ++j) log();
    }
}

// What threads do together.
struct Load
{
    int _threads;
    double _perSecond;
    Wait _wait;

    static constexpr double SECONDS = 0.3;

    template <class Log> void run(Log log) const
    {
        std::vector<std::thread> threads;
        threads.reserve(static_cast<std::size_t>(_threads));
        for (int i = 0; i < _threads; ++i)
            threads.emplace_back([=, this] { pace(_perSecond / _threads, SECONDS, _wait, log); });
        for (std::thread& thread : threads) thread.join();
    }

    double percentOf(std::uint64_t lost) const
    {
        return 100 * static_cast<double>(lost) / (_perSecond * SECONDS);
    }
};

double lostByService(const Load& load)
{
    const LgService service;
    load.run([] { ZU_LOG_WARNING(Road, TEXT); });
    return load.percentOf(service.getLostCount());
}

// The oldest events are discarded.
double lostByPeer(const Load& load, const bench::Logger& logger)
{
    spdlog::init_thread_pool(8192, 1);
    double lost = 0;
    {
        const auto peer = spdlog::basic_logger_mt<spdlog::async_factory_nonblock>(
            "peer", logger.file("peer.log"));
        load.run([&peer] { peer->warn(TEXT); });
        lost = load.percentOf(spdlog::thread_pool()->overrun_counter());
    }
    spdlog::drop_all();
    spdlog::shutdown();
    return lost;
}

void printLost(const char* name, const Load& load, const std::vector<double>& lost)
{
    std::printf("%-8s %8d %8.1f M %10s %13.3f %% %13.3f %%\n", name, load._threads,
                load._perSecond / 1e6, load._wait == SLEEPING ? "sleep" : "busy", median(lost),
                *std::max_element(lost.begin(), lost.end()));
}

void printLosses(const bench::Logger& logger)
{
    constexpr int LOSS_RUNS = 9;
    std::printf("\n%-8s %8s %10s %10s %15s %15s\n", "lost", "threads", "events/s", "waiting",
                "median", "worst");
    for (const Wait wait : {SLEEPING, BUSY})
        for (const Load& load : {Load{1, 1e6, wait}, {1, 2e6, wait}, {2, 2e6, wait}})
        {
            std::vector<double> own;
            std::vector<double> peers;
            for (int run = 0; run < LOSS_RUNS; ++run)
            {
                own.push_back(lostByService(load));
                peers.push_back(lostByPeer(load, logger));
            }
            printLost("service", load, own);
            printLost("spdlog", load, peers);
        }
}

// Times single events, at half a million per second.
template <class Event> std::vector<std::int64_t> timeEvents(Event event)
{
    constexpr int WARM_UP = 20000;
    constexpr int COUNT = 200000;
    constexpr std::chrono::microseconds PERIOD(2);
    std::vector<std::int64_t> times;
    times.reserve(COUNT);
    Clock::time_point next = Clock::now();
    for (int i = 0; i < WARM_UP + COUNT; ++i)
    {
        next = std::max(next + PERIOD, Clock::now() - 10 * PERIOD);
        while (Clock::now() < next) continue;
        const Clock::time_point start = Clock::now();
        event(i);
        const Clock::time_point end = Clock::now();
        if (i >= WARM_UP) times.push_back((end - start) / std::chrono::nanoseconds(1));
    }
    std::sort(times.begin(), times.end());
    return times;
}

// Medians of several runs, and the longest event of all.
template <class Event> void printLatency(const char* name, Event event)
{
    constexpr double SHARES[] = {0.5, 0.99, 0.999};
    std::vector<std::int64_t> found[std::size(SHARES)];
    std::int64_t longest = 0;
    for (int run = 0; run < RUNS; ++run)
    {
        const std::vector<std::int64_t> times = timeEvents(event);
        for (std::size_t i = 0; i < std::size(SHARES); ++i)
            found[i].push_back(
                times[static_cast<std::size_t>(SHARES[i] * static_cast<double>(times.size() - 1))]);
        longest = std::max(longest, times.back());
    }
    std::printf("%-36s", name);
    for (const auto& each : found) std::printf(" %8ld", static_cast<long>(median(each)));
    std::printf(" %9ld\n", static_cast<long>(longest));
}

void printLatencyOfService()
{
    const LgService service;
    printLatency("service, a literal", [](int) { ZU_LOG_WARNING(Road, "a text of some words "); });
    printLatency(
        "service, text and integers", [](int i)
        { ZU_LOG_WARNING(Road, "a text of some words " << -i << static_cast<unsigned int>(i)); });
    printLatency("service, text, double and word",
                 [](int i) {
                     ZU_LOG_WARNING(Road, "a text of some words " << i << i * 0.37 << bench::WORD);
                 });
    if (service.getLostCount() > 0)
        std::printf("(%llu events were lost)\n",
                    static_cast<unsigned long long>(service.getLostCount()));
}

FloorEntry& beginTextOf(FloorQueue& queue)
{
    FloorEntry& entry = beginEvent(queue);
    entry.put("Road ", 5);
    entry.put("a text of some words ", 21);
    return entry;
}

void printLatencyOfFloor(const bench::Logger& logger)
{
    FloorQueue queue(logger.file("floor.log"));
    printLatency("floor, a literal",
                 [&](int)
                 {
                     beginTextOf(queue);
                     queue.publish();
                 });
    printLatency("floor, text and integers",
                 [&](int i)
                 {
                     FloorEntry& entry = beginTextOf(queue);
                     entry.putNumber(-i);
                     entry.putNumber(static_cast<unsigned int>(i));
                     queue.publish();
                 });
    printLatency("floor, text, double and word",
                 [&](int i)
                 {
                     FloorEntry& entry = beginTextOf(queue);
                     entry.putNumber(i);
                     entry.putFixed(i * 0.37);
                     entry.put(bench::WORD, std::strlen(bench::WORD));
                     queue.publish();
                 });
}

void printLatencyOfPeer(const bench::Logger& logger)
{
    spdlog::init_thread_pool(8192, 1);
    {
        const auto peer =
            spdlog::basic_logger_mt<spdlog::async_factory>("peer", logger.file("peer.log"));
        printLatency("spdlog, a literal", [&](int) { peer->warn("Road a text of some words "); });
        printLatency(
            "spdlog, text and integers", [&](int i)
            { peer->warn("Road a text of some words {}{}", -i, static_cast<unsigned int>(i)); });
        printLatency(
            "spdlog, text, double and word", [&](int i)
            { peer->warn("Road a text of some words {}{:.6f}{}", i, i * 0.37, bench::WORD); });
    }
    spdlog::drop_all();
    spdlog::shutdown();
}

void printLatencies(const bench::Logger& logger)
{
    std::printf("\n%-36s %8s %8s %8s %9s\n", "a single event, ns", "p50", "p99", "p99.9",
                "longest");
    printLatency("(two readings of the clock)", [](int) {});
    printLatencyOfService();
    printLatencyOfFloor(logger);
    printLatencyOfPeer(logger);
}

// How often the system takes the processor from a thread that wants it, per second. A queue of
// 4,094 events lasts 2 ms at 2 M events per second.
void printInterruptions()
{
    constexpr double SECONDS = 5;
    constexpr int THREADS = 2;
    constexpr std::array<double, 4> LIMITS = {0.1, 0.5, 1, 2};
    std::array<std::array<int, LIMITS.size()>, THREADS> counts{};
    std::array<double, THREADS> worst{};
    const auto watch = [&](std::size_t thread)
    {
        const auto start = bench::Clock::now();
        double last = 0;
        double longest = 0;
        while (last < SECONDS)
        {
            const double now = bench::secondsSince(start);
            const double gap = (now - last) * 1000;
            for (std::size_t i = 0; i < LIMITS.size(); ++i)
                if (gap > LIMITS[i]) ++counts[thread][i];
            longest = std::max(longest, gap);
            last = now;
        }
        worst[thread] = longest;
    };
    std::thread other(watch, 1U);
    watch(0);
    other.join();
    std::printf("\n%-44s %8s %8s %8s %8s %8s\n", "interruptions of a spinning thread per second",
                "> 0.1 ms", "> 0.5", "> 1", "> 2", "longest");
    for (std::size_t thread = 0; thread < THREADS; ++thread)
    {
        std::printf("thread %-38zu", thread + 1);
        for (const int count : counts[thread]) std::printf(" %8.1f", count / SECONDS);
        std::printf(" %8.1f\n", worst[thread]);
    }
}

} // namespace

int main()
{
    const bench::Logger logger;
    ZU_START_LOG_GROUP("Road", Road);
    printRates(logger);
    printLosses(logger);
    printLatencies(logger);
    printInterruptions();
    ZU_STOP_LOG_GROUP(Road);
}

// Tables of the road from an event to the file: what the writing thread does in a second, alone and
// beside silent threads; losses of threads that sleep between bursts; how long single events take
// beside a busy writing thread. Compared with spdlog and with hand-written floors.

#include "app/lgService.h"
#include "base/lgEvent.h"
#include "benchLogger.h"
#include "tableTools.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <semaphore>
#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

ZU_DEFINE_LOG_GROUP(Road);

namespace
{

using bench::Clock;
using bench::median;
using Zu::LgService;

constexpr int RUNS = 5;
// These fit into a queue.
constexpr int BURST = 3000;
constexpr int BURSTS = 100;
constexpr std::chrono::seconds PATIENCE(20);
// Behind the head of a line and the group this makes 80 characters.
const std::string TEXT(80 - 44 - 5 - 1, 'x');

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
        std::printf("%-44s %8.2f %8.2f %10.3f\n", name, lines(), lines() / reference,
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

// The events of a floor: what a line needs.
struct Entry
{
    std::uint64_t _time;
    std::uint32_t _thread;
    std::array<char, 36> _text;
};

char* putDigits(char* place, std::uint32_t number)
{
    for (int i = 9; i >= 0; --i, number /= 10) place[i] = static_cast<char>('0' + number % 10);
    return place + 10;
}

char* putLine(char* place, const Entry& entry)
{
    place = putDigits(place, static_cast<std::uint32_t>(entry._time >> 32));
    *place++ = ' ';
    place = putDigits(place, static_cast<std::uint32_t>(entry._time));
    std::memcpy(place, " (0x", 4);
    place += 4;
    for (int shift = 28; shift >= 0; shift -= 4)
        *place++ = "0123456789abcdef"[(entry._thread >> shift) & 15U];
    std::memcpy(place, ") Warning: ", 11);
    place += 11;
    std::memcpy(place, entry._text.data(), entry._text.size() - 1);
    place += entry._text.size() - 1;
    *place++ = '\n';
    return place;
}

// Writes when so many bytes are there; 0 is after each line.
Rate floor(const bench::Logger& logger, std::size_t batch)
{
    Rate rate;
    std::vector<Entry> entries(BURST);
    for (Entry& entry : entries)
    {
        entry = {0x123456789abcU, 0xabc, {}};
        entry._text.fill('x');
    }
    std::vector<char> buffer(batch + 128);
    for (int run = 0; run < RUNS; ++run)
    {
        const int file = open(logger.file("floor.log").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const double processor = bench::processorTimeOf(getpid());
        const Clock::time_point start = Clock::now();
        char* place = buffer.data();
        const auto flush = [&]
        {
            if (write(file, buffer.data(), static_cast<std::size_t>(place - buffer.data())) < 0)
                std::perror("write");
            place = buffer.data();
        };
        for (int i = 0; i < BURSTS; ++i)
            for (const Entry& entry : entries)
            {
                place = putLine(place, entry);
                if (place >= buffer.data() + batch) flush();
            }
        flush();
        rate.add(BURST * BURSTS, bench::secondsSince(start),
                 bench::processorTimeOf(getpid()) - processor);
        close(file);
    }
    return rate;
}

void printRates(const bench::Logger& logger)
{
    std::printf("%-44s %8s %8s %10s\n", "lines of 80 bytes", "M/s", "share", "us of CPU");
    const Rate alone = drain(0, 0);
    alone.print("service", alone.lines());
    for (const int silent : {16, 256, 1024})
        drain(silent, 0).print(
            ("service beside " + std::to_string(silent) + " silent threads").c_str(),
            alone.lines());
    drain(0, 256).print("service beside 256 threads that were busy", alone.lines());
    drainOfPeer(logger).print("spdlog, asynchronous", alone.lines());
    floor(logger, 0).print("floor, a call for each line", alone.lines());
    floor(logger, std::size_t{256} * 1024).print("floor, a call for 256 KiB", alone.lines());
}

// Logs at a rate, in bursts between which it sleeps; late bursts are caught up.
template <class Log> void pace(double perSecond, double seconds, Log log)
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
        while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr) == EINTR) continue;
        for (int j = 0; j < EACH; ++j) log();
    }
}

template <class Log> void runThreads(int count, double perSecond, double seconds, Log log)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back([=] { pace(perSecond / count, seconds, log); });
    for (std::thread& thread : threads) thread.join();
}

void printLosses(const bench::Logger& logger)
{
    constexpr int LOSS_RUNS = 9;
    constexpr double SECONDS = 0.3;
    std::printf("\n%-24s %10s %15s %15s\n", "lost, sleeping threads", "events/s", "median",
                "worst");
    for (const auto& [count, perSecond] : {std::pair(1, 1e6), {1, 2e6}, {2, 2e6}})
    {
        std::vector<double> own;
        std::vector<double> peers;
        for (int run = 0; run < LOSS_RUNS; ++run)
        {
            const double all = perSecond * SECONDS / 100;
            {
                const LgService service;
                runThreads(count, perSecond, SECONDS, [] { ZU_LOG_WARNING(Road, TEXT); });
                own.push_back(static_cast<double>(service.getLostCount()) / all);
            }
            spdlog::init_thread_pool(8192, 1);
            const auto peer = spdlog::basic_logger_mt<spdlog::async_factory_nonblock>(
                "peer", logger.file("peer.log"));
            runThreads(count, perSecond, SECONDS, [&peer] { peer->warn(TEXT); });
            peers.push_back(static_cast<double>(spdlog::thread_pool()->overrun_counter()) / all);
            spdlog::drop_all();
            spdlog::shutdown();
        }
        const auto print = [&](const char* name, const std::vector<double>& lost)
        {
            std::printf("%-14s %d threads %8.1f M %13.3f %% %13.3f %%\n", name, count,
                        perSecond / 1e6, median(lost), *std::max_element(lost.begin(), lost.end()));
        };
        print("service", own);
        print("spdlog", peers);
    }
}

// Times single events, at half a million per second.
template <class Event> void printLatency(const char* name, Event event)
{
    constexpr int WARM_UP = 20000;
    constexpr int COUNT = 300000;
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
    const auto at = [&times](double share)
    { return static_cast<long>(times[static_cast<std::size_t>(share * (COUNT - 1))]); };
    std::printf("%-36s %8ld %8ld %8ld %8ld\n", name, at(0.5), at(0.99), at(0.999), at(1));
}

void printLatencies(const bench::Logger& logger)
{
    std::printf("\n%-36s %8s %8s %8s %8s\n", "a single event, ns", "p50", "p99", "p99.9", "most");
    printLatency("(two readings of the clock)", [](int) {});
    {
        const LgService service;
        printLatency("service, a literal",
                     [](int) { ZU_LOG_WARNING(Road, "a text of some words "); });
        printLatency("service, text and integers",
                     [](int i) {
                         ZU_LOG_WARNING(Road, "a text of some words "
                                                  << -i << static_cast<unsigned int>(i));
                     });
        printLatency(
            "service, text, double and word", [](int i)
            { ZU_LOG_WARNING(Road, "a text of some words " << i << i * 0.37 << bench::WORD); });
    }
    spdlog::init_thread_pool(8192, 1);
    const auto peer =
        spdlog::basic_logger_mt<spdlog::async_factory>("peer", logger.file("peer.log"));
    printLatency("spdlog, a literal", [&](int) { peer->warn("Road a text of some words "); });
    printLatency("spdlog, text and integers",
                 [&](int i) {
                     peer->warn("Road a text of some words {}{}", -i, static_cast<unsigned int>(i));
                 });
    printLatency("spdlog, text, double and word", [&](int i)
                 { peer->warn("Road a text of some words {}{:.6f}{}", i, i * 0.37, bench::WORD); });
    spdlog::drop_all();
    spdlog::shutdown();
}

} // namespace

int main()
{
    const bench::Logger logger;
    ZU_START_LOG_GROUP("Road", Road);
    printRates(logger);
    printLosses(logger);
    printLatencies(logger);
    ZU_STOP_LOG_GROUP(Road);
}

// Tables of the log service under load: losses at a given rate, the first event of a thread, and
// the cost of an idle service.

#include "app/lgService.h"
#include "base/lgEvent.h"
#include "benchLogger.h"
#include "tableTools.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <thread>
#include <vector>

ZU_DEFINE_LOG_GROUP(Load);

namespace
{

using bench::Clock;
using bench::median;

constexpr int RUNS = 5;
constexpr std::chrono::milliseconds LENGTH{300};

struct Run
{
    std::uint64_t _attempted = 0;
    std::uint64_t _lost = 0;
    double _seconds = 0;

    double lostShare() const
    {
        return 100.0 * static_cast<double>(_lost) / static_cast<double>(_attempted);
    }

    double written() const
    {
        return static_cast<double>(_attempted - _lost) / _seconds / 1e6;
    }
};

// Logs at a steady rate, and catches up after a delay.
void produce(double perSecond, std::uint64_t count)
{
    const auto start = Clock::now();
    for (std::uint64_t i = 0; i < count; ++i)
    {
        const std::chrono::duration<double> due(static_cast<double>(i) / perSecond);
        while (Clock::now() - start < due) continue;
        ZU_LOG_WARNING(Load, "event number " << i << " of many");
    }
}

Run runPaced(double perSecond, int threads)
{
    const double each = perSecond / threads;
    const double seconds = std::chrono::duration<double>(LENGTH).count();
    const auto count = static_cast<std::uint64_t>(each * seconds);
    Run run;
    run._attempted = count * static_cast<std::uint64_t>(threads);
    const auto start = Clock::now();
    {
        const Zu::LgService service;
        std::vector<std::thread> producers;
        for (int i = 0; i < threads; ++i)
            producers.emplace_back([each, count] { produce(each, count); });
        for (std::thread& producer : producers) producer.join();
        run._lost = service.getLostCount();
    }
    run._seconds = std::chrono::duration<double>(Clock::now() - start).count();
    return run;
}

void printLosses()
{
    std::printf("Lost at a pace, and written per second until all was drained\n");
    std::printf("%8s %12s %14s %14s %16s\n", "threads", "events/s", "lost, median", "lost, worst",
                "written, median");
    for (const int threads : {1, 2})
        for (const double pace : {0.1e6, 0.5e6, 1e6, 2e6})
        {
            std::vector<double> lost;
            std::vector<double> written;
            for (int i = 0; i < RUNS; ++i)
            {
                const Run run = runPaced(pace, threads);
                lost.push_back(run.lostShare());
                written.push_back(run.written());
            }
            std::printf("%8d %10.1f M %12.2f %% %12.2f %% %12.2f M/s\n", threads, pace / 1e6,
                        median(lost), *std::max_element(lost.begin(), lost.end()), median(written));
        }
}

void printFirstEvent()
{
    const Zu::LgService service;
    std::vector<double> first;
    std::vector<double> second;
    for (int i = 0; i < 101; ++i)
        std::thread(
            [&]
            {
                const auto start = Clock::now();
                ZU_LOG_WARNING(Load, "first");
                const auto middle = Clock::now();
                ZU_LOG_WARNING(Load, "second");
                const auto end = Clock::now();
                first.push_back(std::chrono::duration<double>(middle - start).count());
                second.push_back(std::chrono::duration<double>(end - middle).count());
            })
            .join();
    std::printf("\nFirst event of a thread: %.1f us (median of 101); the second: %.2f us\n",
                median(first) * 1e6, median(second) * 1e6);
}

void printIdle()
{
    const Zu::LgService service;
    const std::chrono::seconds length(3);
    const std::clock_t before = std::clock();
    std::this_thread::sleep_for(length);
    const double used = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
    std::printf("Processor time of an idle service: %.2f ms per second\n",
                used * 1000 / static_cast<double>(length.count()));
}

} // namespace

int main()
{
    const bench::Logger logger;
    ZU_START_LOG_GROUP("Load", Load);
    printLosses();
    printFirstEvent();
    printIdle();
    ZU_STOP_LOG_GROUP(Load);
}

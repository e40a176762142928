// A read of the counter, compared with the platform's bare call and the standard library's clock.

#include "base/hwCounter.h"
#include "base/osCpuInfo.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <ctime>

namespace
{

void bareClockGettime(benchmark::State& state)
{
    for (auto _ : state)
    {
        timespec now;
        clock_gettime(CLOCK_MONOTONIC, &now);
        benchmark::DoNotOptimize(now);
    }
}
BENCHMARK(bareClockGettime);

void hwCounterTimeStamp(benchmark::State& state)
{
    Zu::OsCpuInfo::initialize();
    Zu::HwCounter::init();
    for (auto _ : state) benchmark::DoNotOptimize(Zu::HwCounter::timeStamp());
}
BENCHMARK(hwCounterTimeStamp);

void osCpuInfoCounterValue(benchmark::State& state)
{
    for (auto _ : state) benchmark::DoNotOptimize(Zu::OsCpuInfo::getHwCounterValue());
}
BENCHMARK(osCpuInfoCounterValue);

void stdSteadyClock(benchmark::State& state)
{
    for (auto _ : state) benchmark::DoNotOptimize(std::chrono::steady_clock::now());
}
BENCHMARK(stdSteadyClock);

void hwCounterSeconds(benchmark::State& state)
{
    Zu::OsCpuInfo::initialize();
    Zu::HwCounter::init();
    std::uint64_t start = 12345;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(start);
        benchmark::DoNotOptimize(Zu::HwCounter::seconds(start, 987654321));
    }
}
BENCHMARK(hwCounterSeconds);

} // namespace

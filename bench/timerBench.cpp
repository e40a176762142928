// Timers and profilers compared with bare reads of the counter, and a trace statement that is off.

#include "base/hwCounter.h"
#include "base/osCpuInfo.h"
#include "base/profiler.h"
#include "base/traceStatement.h"

#include <benchmark/benchmark.h>

ZU_TRACE_LEVEL(Bench);

namespace
{

void twoCounterReads(benchmark::State& state)
{
    Zu::OsCpuInfo::initialize();
    Zu::HwCounter::init();
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(Zu::HwCounter::timeStamp());
        benchmark::DoNotOptimize(Zu::HwCounter::timeStamp());
    }
}

void hwIntervalTimer(benchmark::State& state)
{
    Zu::OsCpuInfo::initialize();
    Zu::HwIntervalTimer timer;
    for (auto _ : state)
    {
        timer.start();
        timer.stop();
        benchmark::ClobberMemory();
    }
}

void profilerCycle(benchmark::State& state)
{
    Zu::OsCpuInfo::initialize();
    Zu::Profiler<Zu::HwIntervalTimer> profiler;
    for (auto _ : state)
    {
        profiler.start();
        profiler.stop();
        profiler.endCycle();
        benchmark::ClobberMemory();
    }
}

void disabledTrace(benchmark::State& state)
{
    int number = 0;
    for (auto _ : state)
    {
        ZU_TRACE(Bench, "not evaluated " << ++number);
        benchmark::ClobberMemory();
    }
    if (number != 0) state.SkipWithError("the level was on");
}

void disabledScope(benchmark::State& state)
{
    for (auto _ : state)
    {
        ZU_TRACE_SCOPE(Bench, "not entered");
        benchmark::ClobberMemory();
    }
}

BENCHMARK(twoCounterReads);
BENCHMARK(hwIntervalTimer);
BENCHMARK(profilerCycle);
BENCHMARK(disabledTrace);
BENCHMARK(disabledScope);

} // namespace

// Start-up and shut-down of whole processes, as they measure themselves.

#include <benchmark/benchmark.h>
#include <cstdio>
#include <string>

namespace
{

// Runs a program once for each iteration; the time is the one that the program prints.
void startAndStop(benchmark::State& state, const char* shape)
{
    const std::string command = std::string(ZU_BENCH_BIN_DIR "/startupProbe ") + shape + " " +
                                std::to_string(state.range(0));
    double stopping = 0;
    for (auto _ : state)
    {
        std::FILE* const probe = popen(command.c_str(), "r");
        long long up = 0;
        long long down = 0;
        const bool read = probe && std::fscanf(probe, "%lld %lld", &up, &down) == 2;
        if (!probe || pclose(probe) != 0 || !read)
        {
            state.SkipWithError("the probe failed");
            break;
        }
        state.SetIterationTime(static_cast<double>(up) * 1e-9);
        stopping += static_cast<double>(down) * 1e-3;
    }
    state.counters["shutDown_us"] =
        benchmark::Counter(stopping, benchmark::Counter::kAvgIterations);
}

BENCHMARK_CAPTURE(startAndStop, libraryAlone, "star")->Arg(0)->UseManualTime()->Iterations(20);
BENCHMARK_CAPTURE(startAndStop, chain, "chain")
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->UseManualTime()
    ->Iterations(10)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(startAndStop, star, "star")
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->UseManualTime()
    ->Iterations(10)
    ->Unit(benchmark::kMicrosecond);

} // namespace

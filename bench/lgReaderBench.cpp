// Lines per second of the reader, which flushes each, compared with a bare loop of one write per
// line.

#include "base/lgQueue.h"
#include "base/lgReader.h"
#include "benchLogger.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace
{

constexpr int BATCH = 500;

// With the prefix of a line this makes 80 characters.
const std::string TEXT(80 - 44 - 1, 'x');

template <class Prepare, class Work>
void runBatches(benchmark::State& state, Prepare prepare, Work work)
{
    for (auto _ : state)
    {
        prepare();
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(time.count());
    }
    state.counters["perLine"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * BATCH,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void writePerLine(benchmark::State& state)
{
    const bench::Logger logger;
    const int file = open(logger.file("bare.log").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const std::string line(79, 'x');
    const std::string text = line + "\n";
    const auto work = [&]
    {
        for (int i = 0; i < BATCH; ++i)
            benchmark::DoNotOptimize(write(file, text.data(), text.size()));
    };
    runBatches(
        state, [] {}, work);
    close(file);
}

void readerLine(benchmark::State& state)
{
    const bench::Logger logger;
    Zu::LgQueue queue;
    Zu::LgLog::getRegistry()->registerQueue(&queue);
    const auto prepare = [&]
    {
        for (int i = 0; i < BATCH; ++i)
        {
            if (!queue.reserveEntry(Zu::LgTypes::Warning)) continue;
            queue.getStream() << TEXT << Zu::ends;
            queue.addEntry();
        }
    };
    runBatches(state, prepare, [] { Zu::LgReader().flushAll(); });
    Zu::LgLog::getRegistry()->deregisterQueue(&queue);
    state.counters["lost"] = static_cast<double>(queue.getLostCount());
}

BENCHMARK(writePerLine)->UseManualTime();
BENCHMARK(readerLine)->UseManualTime();

} // namespace

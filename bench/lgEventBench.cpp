// One event from the level test to its publication: on a bare queue and through the log service,
// compared with a hand-written floor with the same counter read, and with spdlog. Events come in
// batches that fit into every ring; between batches, off the clock, everything is written. Where
// the time goes beside a busy reader is shown by steps: beside a thread that calculates, beside one
// that writes lines of its own, and a floor with a reader. "Steady" are events at a rate that keeps
// the reader busy: what they add to the work between them.

#include "app/lgService.h"
#include "appFormat/lgFormatted.h"
#include "base/lgEvent.h"
#include "benchLogger.h"
#include "floorQueue.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <benchmark/benchmark.h>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <memory>
#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <thread>

ZU_DEFINE_LOG_GROUP(Bench);

namespace
{

using bench::LITERAL;
using bench::Shape;
using bench::TEXT_AND_DOUBLE;
using bench::TEXT_AND_INTEGERS;
using bench::WORD;
namespace LgTypes = Zu::LgTypes;

constexpr int BATCH = 256;

// Times batches of `Event`; `Settle` runs after each batch and is not timed.
template <class Event, class Settle>
void runBatches(benchmark::State& state, Event event, Settle settle)
{
    int number = -12345;
    for (auto _ : state)
    {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < BATCH; ++i)
        {
            benchmark::DoNotOptimize(number);
            event(number);
        }
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(time.count());
        settle();
    }
    state.counters["perEvent"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * BATCH,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// What a program does between its events: some 200 ns, each step of which waits for the one before.
void work()
{
    std::uint64_t value = 1;
    for (int i = 0; i < 150; ++i)
    {
        value = value * 3 + 1;
        benchmark::DoNotOptimize(value);
    }
}

// What events add to the work between them. Their reader is busy all the time, as some four million
// come per second.
template <class Event> void runSteadily(benchmark::State& state, Event event)
{
    using Clock = std::chrono::steady_clock;
    int number = -12345;
    const auto timeOf = [&](bool isLogging)
    {
        const auto start = Clock::now();
        for (int i = 0; i < BATCH; ++i)
        {
            work();
            benchmark::DoNotOptimize(number);
            if (isLogging) event(number);
        }
        return std::chrono::duration<double>(Clock::now() - start).count();
    };
    double alone = timeOf(false);
    for (int i = 0; i < 1000; ++i) alone = std::min(alone, timeOf(false));
    for (auto _ : state) state.SetIterationTime(std::max(timeOf(true) - alone, 1e-9));
    state.counters["perEvent"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * BATCH,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// The floor's ring of characters.
class Ring
{
public:
    void put(const char* text, std::size_t length)
    {
        const std::size_t position = _end & (_characters.size() - 1);
        const std::size_t tillWrap = std::min(length, _characters.size() - position);
        std::memcpy(_characters.data() + position, text, tillWrap);
        std::memcpy(_characters.data(), text + tillWrap, length - tillWrap);
        _end += length;
    }

    template <class Number> void putNumber(Number number)
    {
        char text[32];
        put(text,
            static_cast<std::size_t>(std::to_chars(text, text + sizeof text, number).ptr - text));
    }

    void putFixed(double number)
    {
        char text[330];
        const char* const end =
            std::to_chars(text, text + sizeof text, number, std::chars_format::fixed, 6).ptr;
        put(text, static_cast<std::size_t>(end - text));
    }

    void publish(std::uint64_t time)
    {
        put(reinterpret_cast<const char*>(&time), sizeof time);
        _published.store(_end, std::memory_order_release);
    }

private:
    std::array<char, 32768> _characters{};
    std::size_t _end = 0;
    std::atomic<std::size_t> _published{0};
};

// A second thread that shares nothing with the first one but the machine.
class Company
{
public:
    enum Kind
    {
        NONE,
        CALCULATES,
        WRITES
    };

    explicit Company(Kind kind)
    {
        if (kind == CALCULATES) _thread = std::thread([this] { calculate(); });
        if (kind == WRITES) _thread = std::thread([this] { write(); });
    }
    Company(const Company&) = delete;
    Company& operator=(const Company&) = delete;

    ~Company()
    {
        _isOver = true;
        if (_thread.joinable()) _thread.join();
    }

private:
    void calculate()
    {
        for (std::uint64_t i = 1; !_isOver; i = i * 3 + 1) benchmark::DoNotOptimize(i);
    }

    void write()
    {
        bench::FloorEntry entry;
        const auto name = std::filesystem::temp_directory_path() / "zuBenchCompany";
        while (!_isOver)
        {
            bench::FloorFile lines(name.string(), std::size_t{64} * 1024);
            for (int i = 0; i < 100000 && !_isOver; ++i)
            {
                entry.begin(Zu::HwCounter::timeStamp(), 1);
                entry.put("Bench a text of some words ", 27);
                lines.put(entry);
            }
        }
        std::filesystem::remove(name);
    }

    std::atomic<bool> _isOver{false};
    std::thread _thread;
};

template <class Runner> void floorWith(Shape shape, Company::Kind kind, Runner run)
{
    Zu::OsCpuInfo::initialize();
    Zu::HwCounter::init();
    const Company company(kind);
    const auto ring = std::make_unique<Ring>();
    const auto event = [&](int number)
    {
        const std::uint64_t time = Zu::HwCounter::timeStamp();
        ring->put("Bench ", 6);
        ring->put("a text of some words ", 21);
        if (shape != LITERAL) ring->putNumber(number);
        if (shape == TEXT_AND_INTEGERS) ring->putNumber(static_cast<unsigned int>(-number));
        if (shape == TEXT_AND_DOUBLE)
        {
            ring->putFixed(number * 0.37);
            ring->put(WORD, std::strlen(WORD));
        }
        ring->publish(time);
    };
    run(event);
}

void floorBeside(benchmark::State& state, Shape shape, Company::Kind kind)
{
    floorWith(shape, kind, [&](auto event) { runBatches(state, event, [] {}); });
}

void floorOf(benchmark::State& state, Shape shape)
{
    floorBeside(state, shape, Company::NONE);
}

void floorSteady(benchmark::State& state, Shape shape)
{
    floorWith(shape, Company::NONE, [&](auto event) { runSteadily(state, event); });
}

void floorBesideWork(benchmark::State& state, Shape shape)
{
    floorBeside(state, shape, Company::CALCULATES);
}

void floorBesideLines(benchmark::State& state, Shape shape)
{
    floorBeside(state, shape, Company::WRITES);
}

// With a reader.
template <class Runner> void readFloor(Shape shape, Runner run)
{
    const bench::Logger logger;
    {
        bench::FloorQueue queue(logger.file("floor.log"));
        const auto event = [&](int number)
        {
            const std::uint64_t time = Zu::HwCounter::timeStamp();
            bench::FloorEntry& entry = queue.reserve();
            entry.begin(time, 1);
            entry.put("Bench ", 6);
            entry.put("a text of some words ", 21);
            if (shape != LITERAL) entry.putNumber(number);
            if (shape == TEXT_AND_INTEGERS) entry.putNumber(static_cast<unsigned int>(-number));
            if (shape == TEXT_AND_DOUBLE)
            {
                entry.putFixed(number * 0.37);
                entry.put(WORD, std::strlen(WORD));
            }
            queue.publish();
        };
        run(event, queue);
    }
}

void floorWithReader(benchmark::State& state, Shape shape)
{
    readFloor(shape,
              [&](auto event, bench::FloorQueue& queue)
              {
                  const auto settle = [&]
                  {
                      while (!queue.isEmpty()) std::this_thread::yield();
                  };
                  runBatches(state, event, settle);
              });
}

void floorWithReaderSteady(benchmark::State& state, Shape shape)
{
    readFloor(shape, [&](auto event, bench::FloorQueue&) { runSteadily(state, event); });
}

// The statement; its operands are those of the shape.
void logEvent(Shape shape, int number)
{
    if (shape == LITERAL)
        ZU_LOG_WARNING(Bench, "a text of some words ");
    else if (shape == TEXT_AND_INTEGERS)
        ZU_LOG_WARNING(Bench,
                       "a text of some words " << number << static_cast<unsigned int>(-number));
    else
        ZU_LOG_WARNING(Bench, "a text of some words " << number << number * 0.37 << WORD);
}

void logFormatted(Shape shape, int number)
{
    if (shape == LITERAL)
        ZU_LOGF_WARNING(Bench, "a text of some words ");
    else if (shape == TEXT_AND_INTEGERS)
        ZU_LOGF_WARNING(Bench, "a text of some words {}{}", number,
                        static_cast<unsigned int>(-number));
    else
        ZU_LOGF_WARNING(Bench, "a text of some words {}{:.6f}{}", number, number * 0.37, WORD);
}

void queueBeside(benchmark::State& state, Shape shape, Company::Kind kind)
{
    const bench::Logger logger;
    const Company company(kind);
    static Zu::LgQueue* theQueue = nullptr;
    Zu::LgQueue bare;
    theQueue = &bare;
    ZU_START_LOG_GROUP("Bench", Bench);
    Zu::LgLog::setQueueFunction([] { return theQueue; });
    Zu::LgLog::setLoggerActivation(true);
    std::array<char, 32768> text;
    const auto settle = [&]
    {
        for (; !bare.isEmpty(); bare.removeEntry()) bare.getStream() >> text.data();
    };
    runBatches(
        state, [&](int number) { logEvent(shape, number); }, settle);
    Zu::LgLog::setLoggerActivation(false);
    Zu::LgLog::setQueueFunction(nullptr);
    ZU_STOP_LOG_GROUP(Bench);
    state.counters["lost"] = static_cast<double>(bare.getLostCount());
}

void queue(benchmark::State& state, Shape shape)
{
    queueBeside(state, shape, Company::NONE);
}

void queueBesideWork(benchmark::State& state, Shape shape)
{
    queueBeside(state, shape, Company::CALCULATES);
}

void queueBesideLines(benchmark::State& state, Shape shape)
{
    queueBeside(state, shape, Company::WRITES);
}

template <class Event> void serviceWith(benchmark::State& state, Shape shape, Event event)
{
    const bench::Logger logger;
    ZU_START_LOG_GROUP("Bench", Bench);
    {
        const Zu::LgService theService;
        const Zu::LgQueue& own = Zu::LgLog::getQueue();
        const auto settle = [&]
        {
            while (!own.isEmpty()) std::this_thread::yield();
        };
        runBatches(
            state, [&](int number) { event(shape, number); }, settle);
        state.counters["lost"] = static_cast<double>(theService.getLostCount());
    }
    ZU_STOP_LOG_GROUP(Bench);
}

void service(benchmark::State& state, Shape shape)
{
    serviceWith(state, shape, &logEvent);
}

void serviceSteady(benchmark::State& state, Shape shape)
{
    const bench::Logger logger;
    ZU_START_LOG_GROUP("Bench", Bench);
    {
        const Zu::LgService theService;
        runSteadily(state, [&](int number) { logEvent(shape, number); });
        state.counters["lost"] = static_cast<double>(theService.getLostCount());
    }
    ZU_STOP_LOG_GROUP(Bench);
}

void serviceFormatted(benchmark::State& state, Shape shape)
{
    serviceWith(state, shape, &logFormatted);
}

void logToPeer(spdlog::logger& peer, Shape shape, int number)
{
    if (shape == LITERAL)
        peer.warn("Bench a text of some words ");
    else if (shape == TEXT_AND_INTEGERS)
        peer.warn("Bench a text of some words {}{}", number, static_cast<unsigned int>(-number));
    else
        peer.warn("Bench a text of some words {}{:.6f}{}", number, number * 0.37, WORD);
}

void spdlogAsync(benchmark::State& state, Shape shape)
{
    const bench::Logger logger;
    spdlog::init_thread_pool(8192, 1);
    {
        const auto peer =
            spdlog::basic_logger_mt<spdlog::async_factory>("async", logger.file("peer.log"));
        const auto settle = []
        {
            while (spdlog::thread_pool()->queue_size() > 0) std::this_thread::yield();
        };
        runBatches(
            state, [&](int number) { logToPeer(*peer, shape, number); }, settle);
    }
    spdlog::drop_all();
}

void spdlogSync(benchmark::State& state, Shape shape)
{
    const bench::Logger logger;
    {
        const auto peer = spdlog::basic_logger_st("sync", logger.file("peer.log"));
        runBatches(
            state, [&](int number) { logToPeer(*peer, shape, number); }, [] {});
    }
    spdlog::drop_all();
}

void disabledStatement(benchmark::State& state)
{
    const bench::Logger logger;
    ZU_START_LOG_GROUP("Bench", Bench);
    int number = 0;
    for (auto _ : state)
    {
        ZU_LOG_TRACING(Bench, "not evaluated " << ++number);
        benchmark::ClobberMemory();
    }
    ZU_STOP_LOG_GROUP(Bench);
    if (number != 0) state.SkipWithError("the statement was not disabled");
}

void emptyLoop(benchmark::State& state)
{
    for (auto _ : state) benchmark::ClobberMemory();
}

void registerShape(const std::string& name, Shape shape)
{
    const struct
    {
        const char* _name;
        void (*_run)(benchmark::State&, Shape);
    } works[] = {{"floor", floorOf},
                 {"floorBesideWork", floorBesideWork},
                 {"floorBesideLines", floorBesideLines},
                 {"floorWithReader", floorWithReader},
                 {"floorSteady", floorSteady},
                 {"floorWithReaderSteady", floorWithReaderSteady},
                 {"queue", queue},
                 {"queueBesideWork", queueBesideWork},
                 {"queueBesideLines", queueBesideLines},
                 {"service", service},
                 {"serviceSteady", serviceSteady},
                 {"serviceFormatted", serviceFormatted},
                 {"spdlogAsync", spdlogAsync},
                 {"spdlogSync", spdlogSync}};
    for (const auto& work : works)
        benchmark::RegisterBenchmark(("event/" + name + "/" + work._name).c_str(), work._run, shape)
            ->UseManualTime();
}

const bool registered = []
{
    registerShape("a", LITERAL);
    registerShape("b", TEXT_AND_INTEGERS);
    registerShape("c", TEXT_AND_DOUBLE);
    return true;
}();

BENCHMARK(disabledStatement);
BENCHMARK(emptyLoop);

} // namespace

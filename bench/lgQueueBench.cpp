// One event from the level test to its publication, on a bare queue that the same thread empties,
// beside a hand-written floor: the same counter read, std::to_chars, a copy into a ring and a
// release store.

#include "base/hwCounter.h"
#include "base/lgMinorGroup.h"
#include "base/lgQueue.h"
#include "base/osCpuInfo.h"

#include <array>
#include <atomic>
#include <benchmark/benchmark.h>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string>

namespace
{

namespace LgTypes = Zu::LgTypes;

constexpr const char* WORD = "twelve chars";

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
    void publish()
    {
        put("", 1);
        _published.store(_end, std::memory_order_release);
    }

private:
    std::array<char, 32768> _characters{};
    std::size_t _end = 0;
    std::atomic<std::size_t> _published{0};
};

enum Shape
{
    LITERAL,
    TEXT_AND_INTEGERS,
    TEXT_AND_DOUBLE
};

void floorEvent(benchmark::State& state, Shape shape)
{
    Zu::OsCpuInfo::initialize();
    Ring ring;
    int number = -12345;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(Zu::HwCounter::timeStamp());
        benchmark::DoNotOptimize(number);
        ring.put("a text of some words ", 21);
        if (shape != LITERAL) ring.putNumber(number);
        if (shape == TEXT_AND_INTEGERS) ring.putNumber(static_cast<unsigned int>(-number));
        if (shape == TEXT_AND_DOUBLE)
        {
            ring.putFixed(number * 0.37);
            ring.put(WORD, std::strlen(WORD));
        }
        ring.publish();
    }
}

void queueEvent(benchmark::State& state, Shape shape)
{
    Zu::OsCpuInfo::initialize();
    const Zu::LgMajorGroup major;
    const Zu::LgMinorGroup minor(major, "Bench");
    Zu::LgQueue queue;
    std::array<char, 32768> text;
    int number = -12345;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(number);
        if (minor.isLevelEnabled(LgTypes::Warning) && queue.reserveEntry(LgTypes::Warning))
        {
            Zu::LgStream& stream = queue.getStream();
            stream << "a text of some words ";
            if (shape != LITERAL) stream << number;
            if (shape == TEXT_AND_INTEGERS) stream << static_cast<unsigned int>(-number);
            if (shape == TEXT_AND_DOUBLE) stream << number * 0.37 << WORD;
            stream << Zu::ends;
            queue.addEntry();
        }
        if (!queue.isFull() && queue.getStream().getNumCharacters() > 200) continue;
        state.PauseTiming();
        while (!queue.isEmpty())
        {
            queue.getStream() >> text.data();
            queue.removeEntry();
        }
        state.ResumeTiming();
    }
    while (!queue.isEmpty())
    {
        queue.getStream() >> text.data();
        queue.removeEntry();
    }
    state.counters["lost"] = static_cast<double>(queue.getLostCount());
}

void disabledEvent(benchmark::State& state)
{
    const Zu::LgMajorGroup major;
    const Zu::LgMinorGroup minor(major, "Bench");
    for (auto _ : state)
    {
        bool enabled = minor.isLevelEnabled(LgTypes::Tracing);
        benchmark::DoNotOptimize(enabled);
    }
}

BENCHMARK_CAPTURE(floorEvent, literal, LITERAL);
BENCHMARK_CAPTURE(queueEvent, literal, LITERAL);
BENCHMARK_CAPTURE(floorEvent, textIntUnsigned, TEXT_AND_INTEGERS);
BENCHMARK_CAPTURE(queueEvent, textIntUnsigned, TEXT_AND_INTEGERS);
BENCHMARK_CAPTURE(floorEvent, textIntDoubleText, TEXT_AND_DOUBLE);
BENCHMARK_CAPTURE(queueEvent, textIntDoubleText, TEXT_AND_DOUBLE);
BENCHMARK(disabledEvent);

} // namespace

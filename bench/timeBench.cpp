// Rational numbers and times, compared with boost::rational and std::chrono. Operands are random
// and used in turn, so that nothing is computed at compile time.

#include "base/dtTime.h"

#include <array>
#include <benchmark/benchmark.h>
#include <boost/rational.hpp>
#include <chrono>
#include <cstdint>
#include <random>

namespace
{

using Zu::DtTime;
using Zu::Rational;
using Peer = boost::rational<std::int64_t>;

// Enough values to keep the branch predictor from memorising the branches.
constexpr std::size_t COUNT = 16384;

struct Pair
{
    std::int32_t _numerator;
    std::int32_t _denominator;
};

const std::array<Pair, COUNT>& pairs()
{
    static const std::array<Pair, COUNT> values = []
    {
        std::mt19937 random(1);
        std::array<Pair, COUNT> made{};
        for (Pair& pair : made)
            pair = {static_cast<std::int32_t>(random() >> 1),
                    static_cast<std::int32_t>((random() >> 1) | 1)};
        return made;
    }();
    return values;
}

template <class Made, class Make> std::array<Made, COUNT> makeAll(Make make)
{
    std::array<Made, COUNT> made{};
    for (std::size_t i = 0; i < COUNT; ++i) made[i] = make(pairs()[i]);
    return made;
}

// Neighbours are at different rates.
DtTime mixedTime(std::size_t i)
{
    const std::int32_t count = pairs()[i]._numerator % 10000000;
    return i % 2 == 0 ? DtTime(count, 30000, 1001) : DtTime(count, 25, 1);
}

// The same instant in seconds.
Peer instantOf(std::size_t i)
{
    const DtTime time = mixedTime(i);
    return Peer(static_cast<std::int64_t>(time.getCount())) *
           Peer(time.getRate().getDenominator(), time.getRate().getNumerator());
}

template <class Made, class Make> std::array<Made, COUNT> makeMixed(Make make)
{
    std::array<Made, COUNT> made{};
    for (std::size_t i = 0; i < COUNT; ++i) made[i] = make(i);
    return made;
}

// Applies an operation on two neighbours to all values in turn.
template <class Value, class Work>
void runOver(benchmark::State& state, const std::array<Value, COUNT>& values, Work work)
{
    std::size_t i = 0;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(work(values[i], values[(i + 1) % COUNT]));
        i = (i + 1) % COUNT;
    }
}

void rationalMake(benchmark::State& state)
{
    runOver(state, pairs(),
            [](const Pair& a, const Pair&) { return Rational(a._numerator, a._denominator); });
}

void boostMake(benchmark::State& state)
{
    runOver(state, pairs(),
            [](const Pair& a, const Pair&)
            { return boost::rational<std::int32_t>(a._numerator, a._denominator); });
}

void rationalLess(benchmark::State& state)
{
    const auto values = makeAll<Rational>([](const Pair& pair)
                                          { return Rational(pair._numerator, pair._denominator); });
    runOver(state, values, [](const Rational& a, const Rational& b) { return a < b; });
}

void boostLess(benchmark::State& state)
{
    using Small = boost::rational<std::int32_t>;
    const auto values =
        makeAll<Small>([](const Pair& pair) { return Small(pair._numerator, pair._denominator); });
    runOver(state, values, [](const Small& a, const Small& b) { return a < b; });
}

void timeConvertRate(benchmark::State& state)
{
    const auto values =
        makeAll<DtTime>([](const Pair& pair) { return DtTime(pair._numerator, 30000, 1001); });
    Rational target(25, 1);
    benchmark::DoNotOptimize(target);
    runOver(state, values,
            [&target](const DtTime& a, const DtTime&) { return a.convertRate(target); });
}

void boostConvertRate(benchmark::State& state)
{
    const auto values =
        makeAll<Peer>([](const Pair& pair) { return Peer(pair._numerator) * Peer(1001, 30000); });
    Peer target(25, 1);
    benchmark::DoNotOptimize(target);
    runOver(state, values,
            [&target](const Peer& a, const Peer&)
            { return boost::rational_cast<std::int64_t>(a * target); });
}

void chronoConvertRate(benchmark::State& state)
{
    using From = std::chrono::duration<std::int64_t, std::ratio<1001, 30000>>;
    using To = std::chrono::duration<std::int64_t, std::ratio<1, 25>>;
    const auto values = makeAll<From>([](const Pair& pair) { return From(pair._numerator); });
    runOver(state, values,
            [](const From& a, const From&) { return std::chrono::duration_cast<To>(a); });
}

void timeLessMixed(benchmark::State& state)
{
    runOver(state, makeMixed<DtTime>(mixedTime),
            [](const DtTime& a, const DtTime& b) { return a < b; });
}

void boostLessMixed(benchmark::State& state)
{
    runOver(state, makeMixed<Peer>(instantOf), [](const Peer& a, const Peer& b) { return a < b; });
}

void timeAddMixed(benchmark::State& state)
{
    runOver(state, makeMixed<DtTime>(mixedTime),
            [](const DtTime& a, const DtTime& b) { return a + b; });
}

void boostAddMixed(benchmark::State& state)
{
    runOver(state, makeMixed<Peer>(instantOf), [](const Peer& a, const Peer& b) { return a + b; });
}

void timeAddEqualRates(benchmark::State& state)
{
    const auto values =
        makeAll<DtTime>([](const Pair& pair) { return DtTime(pair._numerator, 48000, 1); });
    runOver(state, values, [](const DtTime& a, const DtTime& b) { return a + b; });
}

BENCHMARK(rationalMake);
BENCHMARK(boostMake);
BENCHMARK(rationalLess);
BENCHMARK(boostLess);
BENCHMARK(timeConvertRate);
BENCHMARK(boostConvertRate);
BENCHMARK(chronoConvertRate);
BENCHMARK(timeLessMixed);
BENCHMARK(boostLessMixed);
BENCHMARK(timeAddMixed);
BENCHMARK(boostAddMixed);
BENCHMARK(timeAddEqualRates);

} // namespace

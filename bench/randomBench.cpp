// Random numbers compared with those of the standard library, of Boost and of the GNU Scientific
// Library: time per sample, in blocks of 4096.

#include "base/rnDirectionalRng.h"
#include "base/rnGaussianRng.h"
#include "base/rnHaltonRng.h"
#include "base/rnHistogram.h"
#include "base/rnHistogramRng.h"
#include "base/rnLecuyerUniformRng.h"
#include "base/rnNiederreiterMultiRng.h"
#include "base/rnNumRecUniformRng.h"
#include "base/rnSeparableRng.h"
#include "base/rnVanDerCorputRng.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <boost/histogram.hpp>
#include <boost/random/additive_combine.hpp>
#include <boost/random/discrete_distribution.hpp>
#include <boost/random/linear_congruential.hpp>
#include <boost/random/niederreiter_base2.hpp>
#include <boost/random/uniform_01.hpp>
#include <cmath>
#include <gsl/gsl_histogram.h>
#include <gsl/gsl_qrng.h>
#include <gsl/gsl_randist.h>
#include <gsl/gsl_rng.h>
#include <random>
#include <vector>

namespace
{

constexpr unsigned int SAMPLES = 4096;

std::vector<double>& buffer(int i = 0)
{
    static std::vector<double> buffers[4] = {
        std::vector<double>(SAMPLES), std::vector<double>(SAMPLES), std::vector<double>(SAMPLES),
        std::vector<double>(SAMPLES)};
    return buffers[i];
}

double** buffers()
{
    static double* pointers[4] = {buffer(0).data(), buffer(1).data(), buffer(2).data(),
                                  buffer(3).data()};
    return pointers;
}

// Times work that makes all samples, and reports the time for one.
template <class Work> void perSample(benchmark::State& state, const Work& work)
{
    for (auto _ : state)
    {
        work();
        benchmark::ClobberMemory();
    }
    state.counters["per_sample"] = benchmark::Counter(
        SAMPLES, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// The same with one call for each sample.
template <class Draw> void eachSample(benchmark::State& state, const Draw& draw)
{
    perSample(state,
              [&draw]
              {
                  for (double& value : buffer()) value = draw();
              });
}

// Hides from the compiler which source it is.
template <class T> T& opaque(T& object)
{
    T* pointer = &object;
    benchmark::DoNotOptimize(pointer);
    return *pointer;
}

gsl_rng* gslRng()
{
    static gsl_rng* const rng = gsl_rng_alloc(gsl_rng_taus2);
    return rng;
}

void lecuyerSequence(benchmark::State& state)
{
    Zu::RnLecuyerUniformRng<double> rng;
    perSample(state, [&rng] { rng.getSequence(SAMPLES, buffer().data()); });
}

void lecuyerSingle(benchmark::State& state)
{
    Zu::RnLecuyerUniformRng<double> object;
    Zu::RnRng<double>& rng = opaque<Zu::RnRng<double>>(object);
    eachSample(state, [&rng] { return rng(); });
}

void lecuyerBoost(benchmark::State& state)
{
    boost::random::ecuyer1988 engine;
    boost::random::uniform_01<double> distribution;
    eachSample(state, [&] { return distribution(engine); });
}

void uniformGslTaus2(benchmark::State& state)
{
    eachSample(state, [] { return gsl_rng_uniform(gslRng()); });
}

void uniformStdMersenneTwister(benchmark::State& state)
{
    std::mt19937 engine;
    std::uniform_real_distribution<double> distribution;
    eachSample(state, [&] { return distribution(engine); });
}

void shuffleSequence(benchmark::State& state)
{
    Zu::RnNumRecUniformRng<double> rng;
    perSample(state, [&rng] { rng.getSequence(SAMPLES, buffer().data()); });
}

void shuffleStd(benchmark::State& state)
{
    std::shuffle_order_engine<std::linear_congruential_engine<std::uint32_t, 2416, 374441, 1771875>,
                              97>
        engine;
    eachSample(state, [&engine] { return engine() * (1.0 / 1771875); });
}

void vanDerCorputSequence(benchmark::State& state)
{
    Zu::RnVanDerCorputRng<double> rng;
    perSample(state,
              [&rng]
              {
                  rng.restart();
                  rng.getSequence(SAMPLES, buffer().data());
              });
}

void haltonSequence(benchmark::State& state)
{
    Zu::RnHaltonMultiRng<double, 3> rng;
    perSample(state,
              [&rng]
              {
                  rng.restart();
                  rng.getSequence(SAMPLES, buffers());
              });
}

void drawGsl(benchmark::State& state, const gsl_qrng_type* type, unsigned int dimensions)
{
    gsl_qrng* const rng = gsl_qrng_alloc(type, dimensions);
    perSample(state,
              [rng, dimensions]
              {
                  gsl_qrng_init(rng);
                  for (unsigned int i = 0; i < SAMPLES; ++i)
                  {
                      double values[4];
                      gsl_qrng_get(rng, values);
                      for (unsigned int d = 0; d < dimensions; ++d) buffers()[d][i] = values[d];
                  }
              });
    gsl_qrng_free(rng);
}

void haltonGsl(benchmark::State& state)
{
    drawGsl(state, gsl_qrng_halton, 3);
}

void niederreiterSequence(benchmark::State& state)
{
    Zu::RnNiederreiterMultiRng<double> rng;
    perSample(state,
              [&rng]
              {
                  rng.restart();
                  rng.getSequence(SAMPLES, buffers());
              });
}

void niederreiterSingle(benchmark::State& state)
{
    Zu::RnNiederreiterMultiRng<double> object;
    Zu::RnMultiRng<double, 4>& rng = opaque<Zu::RnMultiRng<double, 4>>(object);
    perSample(state,
              [&rng]
              {
                  double values[4];
                  for (unsigned int i = 0; i < SAMPLES; ++i) rng.getSample(values);
                  benchmark::DoNotOptimize(values);
              });
}

void niederreiterGsl(benchmark::State& state)
{
    drawGsl(state, gsl_qrng_niederreiter_2, 4);
}

void niederreiterBoost(benchmark::State& state)
{
    boost::random::niederreiter_base2 engine(4);
    const double scale = 1.0 / (static_cast<double>(engine.max()) + 1.0);
    perSample(state,
              [&]
              {
                  for (unsigned int i = 0; i < SAMPLES; ++i)
                      for (int d = 0; d < 4; ++d)
                          buffers()[d][i] = static_cast<double>(engine()) * scale;
              });
}

void gaussianSequence(benchmark::State& state)
{
    Zu::RnLecuyerUniformRng<double> source;
    Zu::RnGaussianRng<double> rng(&source);
    perSample(state, [&rng] { rng.getSequence(SAMPLES, buffer().data()); });
}

void gaussianGslZiggurat(benchmark::State& state)
{
    eachSample(state, [] { return gsl_ran_gaussian_ziggurat(gslRng(), 1.0); });
}

void gaussianStd(benchmark::State& state)
{
    std::mt19937 engine;
    std::normal_distribution<double> distribution;
    eachSample(state, [&] { return distribution(engine); });
}

std::vector<double> weights(unsigned int nBins)
{
    std::vector<double> values(nBins);
    for (unsigned int i = 0; i < nBins; ++i) values[i] = 1.0 + 0.9 * std::sin(0.1 * i);
    return values;
}

std::vector<double> edges(unsigned int nBins)
{
    std::vector<double> values(nBins + 1);
    for (unsigned int i = 0; i <= nBins; ++i) values[i] = static_cast<double>(i) / nBins;
    return values;
}

void samplerSequence(benchmark::State& state)
{
    const auto nBins = static_cast<unsigned int>(state.range(0));
    const std::vector<double> bins = weights(nBins);
    Zu::RnHistogram<double> histogram(nBins, 0.0, 1.0);
    for (unsigned int i = 0; i < nBins; ++i) histogram.addValue((i + 0.5) / nBins, bins[i]);
    Zu::RnLecuyerUniformRng<double> source;
    Zu::RnHistogramRng<double> rng(histogram, &source);
    perSample(state, [&rng] { rng.getSequence(SAMPLES, buffer().data()); });
}

void samplerGsl(benchmark::State& state)
{
    const auto nBins = static_cast<unsigned int>(state.range(0));
    gsl_histogram* const histogram = gsl_histogram_alloc(nBins);
    gsl_histogram_set_ranges(histogram, edges(nBins).data(), nBins + 1);
    for (unsigned int i = 0; i < nBins; ++i)
        gsl_histogram_accumulate(histogram, (i + 0.5) / nBins, weights(nBins)[i]);
    gsl_histogram_pdf* const pdf = gsl_histogram_pdf_alloc(nBins);
    gsl_histogram_pdf_init(pdf, histogram);
    eachSample(state, [pdf] { return gsl_histogram_pdf_sample(pdf, gsl_rng_uniform(gslRng())); });
    gsl_histogram_pdf_free(pdf);
    gsl_histogram_free(histogram);
}

void samplerStdPiecewise(benchmark::State& state)
{
    const auto nBins = static_cast<unsigned int>(state.range(0));
    const std::vector<double> ends = edges(nBins);
    const std::vector<double> bins = weights(nBins);
    std::piecewise_constant_distribution<double> distribution(ends.begin(), ends.end(),
                                                              bins.begin());
    std::mt19937 engine;
    eachSample(state, [&] { return distribution(engine); });
}

void samplerBoostAlias(benchmark::State& state)
{
    const auto nBins = static_cast<unsigned int>(state.range(0));
    const boost::random::discrete_distribution<int, double> distribution(weights(nBins));
    std::mt19937 engine;
    eachSample(state, [&] { return distribution(engine); });
}

void fillWith(Zu::RnHistogram<double>& histogram, benchmark::State& state)
{
    Zu::RnLecuyerUniformRng<double> source;
    source.getSequence(SAMPLES, buffer().data());
    Zu::RnHistogram<double>& target = opaque(histogram);
    perSample(state,
              [&target]
              {
                  for (const double value : buffer()) target.addValue(value, 1.0);
              });
}

void fillUniformAtOnce(benchmark::State& state)
{
    Zu::RnUniformHistogram<double> histogram(100, 0.0, 1.0);
    Zu::RnLecuyerUniformRng<double> source;
    source.getSequence(SAMPLES, buffer().data());
    perSample(state, [&histogram] { histogram.addValues(SAMPLES, buffer().data()); });
}

void fillSearchAtOnce(benchmark::State& state)
{
    Zu::RnHistogram<double> histogram(100, 0.0, 1.0);
    Zu::RnLecuyerUniformRng<double> source;
    source.getSequence(SAMPLES, buffer().data());
    perSample(state, [&histogram] { histogram.addValues(SAMPLES, buffer().data()); });
}

void fillUniform(benchmark::State& state)
{
    Zu::RnUniformHistogram<double> histogram(100, 0.0, 1.0);
    fillWith(histogram, state);
}

void fillSearch(benchmark::State& state)
{
    Zu::RnHistogram<double> histogram(100, 0.0, 1.0);
    fillWith(histogram, state);
}

void fillUniformFromSource(benchmark::State& state)
{
    Zu::RnUniformHistogram<double> histogram(100, 0.0, 1.0);
    Zu::RnLecuyerUniformRng<double> source;
    perSample(state, [&] { histogram.addSamples(&source, SAMPLES); });
}

void fillSearchFromSource(benchmark::State& state)
{
    Zu::RnHistogram<double> histogram(100, 0.0, 1.0);
    Zu::RnLecuyerUniformRng<double> source;
    perSample(state, [&] { histogram.addSamples(&source, SAMPLES); });
}

template <class Axis> void fillBoost(benchmark::State& state, const Axis& axis)
{
    auto histogram = boost::histogram::make_histogram_with(std::vector<double>(), axis);
    Zu::RnLecuyerUniformRng<double> source;
    source.getSequence(SAMPLES, buffer().data());
    perSample(state,
              [&histogram]
              {
                  for (const double value : buffer()) histogram(value);
              });
}

void fillUniformBoost(benchmark::State& state)
{
    fillBoost(state, boost::histogram::axis::regular<>(100, 0.0, 1.0));
}

void fillSearchBoost(benchmark::State& state)
{
    fillBoost(state, boost::histogram::axis::variable<>(edges(100)));
}

void fillGsl(benchmark::State& state, gsl_histogram* histogram)
{
    Zu::RnLecuyerUniformRng<double> source;
    source.getSequence(SAMPLES, buffer().data());
    perSample(state,
              [histogram]
              {
                  for (const double value : buffer()) gsl_histogram_increment(histogram, value);
              });
    gsl_histogram_free(histogram);
}

// The library guesses the bin first, and searches where the guess is wrong.
void fillUniformGsl(benchmark::State& state)
{
    gsl_histogram* const histogram = gsl_histogram_alloc(100);
    gsl_histogram_set_ranges_uniform(histogram, 0.0, 1.0);
    fillGsl(state, histogram);
}

void cosineHemisphereXYZ(benchmark::State& state)
{
    Zu::RnLecuyerUniformRng<double> source;
    Zu::RnSeparableBiRng<double> pairs(&source);
    Zu::RnCosineHemisphericalRng<double> rng(&pairs);
    perSample(state,
              [&rng] {
                  rng.getSequenceXYZ(SAMPLES, buffer(0).data(), buffer(1).data(), buffer(2).data());
              });
}

BENCHMARK(lecuyerSequence);
BENCHMARK(lecuyerSingle);
BENCHMARK(lecuyerBoost);
BENCHMARK(uniformGslTaus2);
BENCHMARK(uniformStdMersenneTwister);
BENCHMARK(shuffleSequence);
BENCHMARK(shuffleStd);
BENCHMARK(vanDerCorputSequence);
BENCHMARK(haltonSequence);
BENCHMARK(haltonGsl);
BENCHMARK(niederreiterSequence);
BENCHMARK(niederreiterSingle);
BENCHMARK(niederreiterGsl);
BENCHMARK(niederreiterBoost);
BENCHMARK(gaussianSequence);
BENCHMARK(gaussianGslZiggurat);
BENCHMARK(gaussianStd);
BENCHMARK(samplerSequence)->Arg(64)->Arg(4096)->Arg(100000)->Arg(1000000);
BENCHMARK(samplerGsl)->Arg(64)->Arg(4096);
BENCHMARK(samplerStdPiecewise)->Arg(64)->Arg(4096);
BENCHMARK(samplerBoostAlias)->Arg(64)->Arg(4096);
BENCHMARK(fillUniform);
BENCHMARK(fillUniformAtOnce);
BENCHMARK(fillUniformFromSource);
BENCHMARK(fillUniformBoost);
BENCHMARK(fillUniformGsl);
BENCHMARK(fillSearch);
BENCHMARK(fillSearchAtOnce);
BENCHMARK(fillSearchFromSource);
BENCHMARK(fillSearchBoost);
BENCHMARK(cosineHemisphereXYZ);

} // namespace

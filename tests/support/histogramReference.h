// A slow and literal reference of histograms and their samplers, and sources for them.

#ifndef ZU_TESTS_HISTOGRAMREFERENCE_H
#define ZU_TESTS_HISTOGRAMREFERENCE_H

#include "base/ieeeDivide.h"
#include "base/rnRng.h"

#include "support/sameNumbers.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

// A separate namespace, as headers of other tests in the same program use the same names.
namespace support
{
inline namespace histogramTests
{

using FloatAndDouble = testing::Types<float, double>;

template <class T> inline constexpr T INFINITE = std::numeric_limits<T>::infinity();
template <class T> inline constexpr T NO_NUMBER = std::numeric_limits<T>::quiet_NaN();

template <class T> T before(T value)
{
    return std::nextafter(value, -INFINITE<T>);
}

template <class T> T behind(T value)
{
    return std::nextafter(value, INFINITE<T>);
}

// Edges of bins of equal width.
template <class T> std::vector<T> toldEdges(unsigned int nBins, T min, T max)
{
    std::vector<T> edges;
    for (unsigned int i = 0; i < nBins; ++i)
        edges.push_back(i == 0 ? min : T(i) / T(nBins) * (max - min) + min);
    edges.push_back(max);
    return edges;
}

// A binary search for the first greater entry: returns how many precede it, and 0 for a NaN.
template <class T> unsigned int toldSearch(const std::vector<T>& entries, T value)
{
    if (std::isnan(value)) return 0;
    const auto found = std::upper_bound(entries.begin(), entries.end(), value);
    return static_cast<unsigned int>(found - entries.begin());
}

template <class T> int toldBin(const std::vector<T>& edges, T value)
{
    return static_cast<int>(toldSearch(edges, value)) - 1;
}

// Rounded down; a value that does not fit in an int gives the lowest one.
template <class T> int toldFloor(T value)
{
    const double floored = std::floor(value);
    if (!(floored >= -0x1p31 && floored < 0x1p31)) return std::numeric_limits<int>::min();
    return static_cast<int>(floored);
}

template <class T> int toldUniformBin(unsigned int nBins, T min, T max, T value)
{
    return toldFloor(Zu::ieeeDivide(value - min, max - min) * T(nBins));
}

template <class T> std::vector<T> toldCdf(const std::vector<T>& bins)
{
    T sum = 0;
    for (std::size_t i = 0; i < bins.size(); ++i) sum += bins[i];
    const T inv = Zu::ieeeDivide(T(1), sum);
    T c = 0;
    std::vector<T> cdf{T(0)};
    for (std::size_t i = 0; i < bins.size(); ++i)
    {
        c += inv * bins[i];
        cdf.push_back(c);
    }
    return cdf;
}

// The cell that a draw chooses and the place in it: either the fraction that the draw reaches, or
// one of the ends, for draws outside the table.
enum class Place
{
    NONE,
    WITHIN,
    BEGINNING,
    END
};

template <class T> struct ToldChoice
{
    Place _place = Place::NONE;
    std::size_t _cell = 0;
    T _fraction = 0;
};

template <class T>
ToldChoice<T> toldChoice(const std::vector<T>& weights, const std::vector<T>& cdf, T u)
{
    const auto hasWeight = [](T weight) { return weight > T(0); };
    const auto first = std::find_if(weights.begin(), weights.end(), hasWeight);
    if (first == weights.end() || std::isnan(u)) return {};
    if (u >= cdf.back())
    {
        const auto last = std::find_if(weights.rbegin(), weights.rend(), hasWeight);
        return {Place::END, static_cast<std::size_t>(weights.rend() - last) - 1, T(1)};
    }
    if (u < cdf.front())
        return {Place::BEGINNING, static_cast<std::size_t>(first - weights.begin()), T(0)};
    const std::size_t k = toldSearch(cdf, u) - 1;
    return {Place::WITHIN, k, (u - cdf[k]) / (cdf[k + 1] - cdf[k])};
}

// The position of a choice between the edges of its bin.
template <class T> T toldPlace(const ToldChoice<T>& choice, T low, T high)
{
    switch (choice._place)
    {
    case Place::WITHIN:
        return choice._fraction * (high - low) + low;
    case Place::BEGINNING:
        return low;
    case Place::END:
        return high;
    case Place::NONE:
        break;
    }
    return NO_NUMBER<T>;
}

// Gives the values of a script, repeatedly, to single calls only, and counts them.
template <class T> class RepeatingRng : public Zu::RnRng<T>
{
public:
    explicit RepeatingRng(std::vector<T> values) : _values(std::move(values)) {}
    virtual ~RepeatingRng() = default;

    T operator()() override
    {
        const T value = _values[_draws % _values.size()];
        ++_draws;
        return value;
    }

    void getSample(T& value) override
    {
        ADD_FAILURE() << "not to be called";
        value = T(0);
    }

    void getSequence(unsigned int n, T* values) override
    {
        ADD_FAILURE() << "not to be called";
        std::fill_n(values, n, T(0));
    }

    T getEfficientWidth() const override
    {
        return T(1);
    }

    T getEfficientMin() const override
    {
        return T(0);
    }

    T getEfficientMax() const override
    {
        return T(1);
    }

    T getEfficientFraction() const override
    {
        return T(1);
    }

    T getPdf(T) const override
    {
        return T(1);
    }

    void restart() override
    {
        _draws = 0;
        ++_restarts;
    }

    const char* getName() const override
    {
        return "Scripted";
    }

    std::size_t _draws = 0;
    unsigned int _restarts = 0;

private:
    std::vector<T> _values;
};

// Numbers that are the same on every platform.
class HistogramRandom
{
public:
    explicit HistogramRandom(std::uint64_t seed) : _engine(seed) {}

    std::uint64_t bits()
    {
        return _engine();
    }

    unsigned int below(unsigned int bound)
    {
        return static_cast<unsigned int>(bits() % bound);
    }

    // At least 0 and less than 1.
    template <class T> T unit()
    {
        constexpr int DIGITS = std::numeric_limits<T>::digits;
        return std::ldexp(static_cast<T>(bits() >> (64 - DIGITS)), -DIGITS);
    }

    template <class T> T within(T low, T high)
    {
        return unit<T>() * (high - low) + low;
    }

    // Uniform over all magnitudes between two powers of ten.
    template <class T> T magnitude(int lowest, int highest)
    {
        const int power =
            lowest + static_cast<int>(below(static_cast<unsigned int>(highest - lowest + 1)));
        double number = 1.0;
        for (int i = 0; i < std::abs(power); ++i) number *= 10.0;
        return static_cast<T>(power < 0 ? 1.0 / number : number) * (T(1) + unit<T>());
    }

private:
    std::mt19937_64 _engine;
};

// Difficult weights for a table, with a word about each.
template <class T>
std::vector<std::pair<std::string, std::vector<T>>> weightTables(std::size_t nBins)
{
    HistogramRandom random(750 + nBins);
    std::vector<T> even(nBins, T(1));
    std::vector<T> uneven;
    std::vector<T> rising;
    for (std::size_t i = 0; i < nBins; ++i)
    {
        uneven.push_back(random.magnitude<T>(-12, 12));
        rising.push_back(T(i) * T(0.37));
    }
    const auto emptied = [&](std::size_t from, std::size_t to)
    {
        std::vector<T> weights;
        for (std::size_t i = 0; i < nBins; ++i)
            weights.push_back(i >= from && i < to ? T(0) : random.within(T(0.1), T(3)));
        return weights;
    };
    std::vector<T> single(nBins, T(0));
    single[nBins / 2] = T(5);
    std::vector<T> negligible(nBins, T(1e-12));
    negligible[nBins / 2] = T(1e12);
    return {{"even", even},
            {"uneven", uneven},
            {"rising", rising},
            {"empty at the beginning", emptied(0, (nBins + 1) / 3)},
            {"empty in the middle", emptied(nBins / 3, nBins - nBins / 3)},
            {"empty at the end", emptied(nBins - nBins / 3, nBins)},
            {"a single one", single},
            {"negligible but for one", negligible},
            {"all empty", std::vector<T>(nBins, T(0))}};
}

// Difficult draws for a table: its entries and their neighbours, the ends of the unit interval,
// values outside it, and NaN.
template <class T> std::vector<T> hardDraws(const std::vector<T>& cdf)
{
    std::vector<T> draws{T(0),    -T(0),        before(T(0)), behind(T(0)), T(0.25),
                         T(0.5),  before(T(1)), T(1),         behind(T(1)), T(2),
                         T(-0.5), INFINITE<T>,  -INFINITE<T>, NO_NUMBER<T>};
    const std::size_t step = std::max<std::size_t>(1, cdf.size() / 64);
    for (std::size_t i = 0; i < cdf.size(); i += step)
        for (const T draw : {before(cdf[i]), cdf[i], behind(cdf[i])}) draws.push_back(draw);
    for (const T draw : {before(cdf.back()), cdf.back(), behind(cdf.back())}) draws.push_back(draw);
    return draws;
}

// The text of the length error that an act raises.
template <class Act> std::string lengthErrorOf(const Act& act)
{
    try
    {
        act();
    }
    catch (const std::length_error& error)
    {
        return error.what();
    }
    return "(no length error)";
}

} // namespace histogramTests
} // namespace support

#endif

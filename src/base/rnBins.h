/// @file
/// Bins, edges and scenes, as histograms of all kinds use them.

#ifndef ZU_BASE_RNBINS_H
#define ZU_BASE_RNBINS_H

#include "ieeeDivide.h"
#include "plainNumber.h"
#include "truncateTo.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <vector>

/// Internal to the histograms.
namespace Zu::RnBins
{

/// `count` zeros for each of `rows` rows. Raises std::length_error for a size beyond the maximum of
/// a vector, with the text of Zu::Vector, since the texts of the runtime libraries differ.
template <class T> std::vector<T> zeros(std::size_t count, std::size_t rows = 1)
{
    const std::size_t most = std::vector<T>().max_size();
    if (rows > 0 && count > most / rows) throw std::length_error("vector<T> too long");
    return std::vector<T>(count * rows);
}

/// The edges of `nBins` bins of equal width. The last one is `max` itself.
template <class T> std::vector<T> edgesOf(unsigned int nBins, T min, T max)
{
    std::vector<T> edges = zeros<T>(std::size_t(nBins) + 1);
    edges[0] = min;
    for (unsigned int i = 1; i < nBins; ++i)
        edges[i] = static_cast<T>(i) / static_cast<T>(nBins) * (max - min) + min;
    edges[nBins] = max;
    return edges;
}

/// A copy of the edges of `nBins` bins, one more than there are bins.
template <class T> std::vector<T> edgesOf(unsigned int nBins, const T* edges)
{
    std::vector<T> copy = zeros<T>(std::size_t(nBins) + 1);
    std::copy_n(edges, copy.size(), copy.begin());
    return copy;
}

/// Rounds down; a NaN, and what does not fit in an `int`, gives the smallest `int`. The standard
/// library's function is not inlined for first-generation processors.
template <class T> int floorToInt(T value)
{
    const int truncated = truncateTo<int>(value);
    if (truncated == std::numeric_limits<int>::min()) return truncated;
    return truncated - static_cast<int>(value < static_cast<T>(truncated));
}

/// The bin among bins of equal width.
template <class T> int uniformBin(T x, T first, T width, unsigned int nBins)
{
    return floorToInt(ieeeDivide(x - first, width) * static_cast<T>(nBins));
}

/// Whether there is a bin of this index.
inline bool isBin(int i, unsigned int nBins)
{
    return i >= 0 && static_cast<unsigned int>(i) < nBins;
}

/// Counts values by their bins. Values go to several tables in turn, as a processor that has just
/// written a count must wait before it reads it again.
class Counter
{
public:
    /// `nBins` bins, all at 0.
    explicit Counter(unsigned int nBins)
        : _nBins(nBins), _counts(zeros<std::uint32_t>(tableSize(), TABLES))
    {
    }

    /// Whether counting `n` values costs less than adding each.
    static bool pays(unsigned int nBins, unsigned int n)
    {
        return n / TABLES >= nBins;
    }

    /// Counts the bins of `n` values; the number of bins itself means no bin.
    void add(unsigned int n, const std::int32_t* bins)
    {
        for (unsigned int k = 0; k < n; ++k)
            ++_counts[k % TABLES * tableSize() + static_cast<std::uint32_t>(bins[k])];
    }

    /// How many values were added to the bin.
    std::uint32_t countOf(unsigned int bin) const
    {
        std::uint32_t count = 0;
        for (unsigned int table = 0; table < TABLES; ++table)
            count += _counts[table * tableSize() + bin];
        return count;
    }

private:
    static constexpr unsigned int TABLES = 4;

    std::size_t tableSize() const
    {
        return std::size_t(_nBins) + 1;
    }

    unsigned int _nBins;
    std::vector<std::uint32_t> _counts;
};

/// The sum of a number and `count` ones, added one by one.
template <class T> T withOnes(T number, std::uint32_t count)
{
    // The order does not matter for whole numbers that are exact.
    constexpr T EXACT = static_cast<T>(std::uint64_t(1) << std::numeric_limits<T>::digits);
    if (number >= 0 && number <= EXACT - static_cast<T>(count) && std::floor(number) == number)
        return number + static_cast<T>(count);
    for (; count > 0 && number + T(1) != number; --count) number += T(1);
    return number;
}

/// The cumulative table of all bins, which starts at 0 and ends near 1. Without weight, all entries
/// after the first are NaNs.
template <class T> std::vector<T> cumulated(const std::vector<T>& bins)
{
    T sum = 0;
    for (const T bin : bins) sum += bin;
    const T inverse = ieeeDivide(T(1), sum);
    std::vector<T> table = zeros<T>(bins.size() + 1);
    T running = 0;
    for (std::size_t i = 0; i < bins.size(); ++i)
    {
        running += inverse * bins[i];
        table[i + 1] = running;
    }
    return table;
}

/// A number as dumps show it.
template <class T> PlainNumber<T> shown(T number)
{
    return plainNumber(number);
}

/// Writes the beginning of each scene, up to its points.
inline void beginScene(std::ostream& out)
{
    out << "#Inventor V2.1 ascii\n"
           "Separator { \n"
           "  LightModel { model\tBASE_COLOR }\n"
           "  DrawStyle { pointSize 2 }\n"
           "  PointSet { vertexProperty VertexProperty { vertex [ \n";
}

/// Writes what is between points and lines.
inline void beginLines(std::ostream& out)
{
    out << "] } }\n"
           "  LineSet { vertexProperty VertexProperty { vertex [ \n";
}

} // namespace Zu::RnBins

#endif

/// @file
/// Histograms of single values.

#ifndef ZU_BASE_RNHISTOGRAM_H
#define ZU_BASE_RNHISTOGRAM_H

#include "rnBins.h"
#include "rnRng.h"
#include "rnSearch.h"

#include <cstdint>
#include <iosfwd>
#include <vector>

namespace Zu
{

template <class T> class RnHistogramRng;

/// Collects weighted values into bins. Bin `i` extends from edge `i` up to, but not including, edge
/// `i + 1`. Values outside all bins are silently dropped.
///
/// A number of bins beyond the maximum of a vector raises std::length_error "vector<T> too long".
///
/// Thread-safety: filling belongs to one thread at a time; any number of threads may read in
/// between.
template <class T> class RnHistogram
{
    friend class RnHistogramRng<T>;

public:
    /// Copies `nBins + 1` edges, which must ascend; that is not checked.
    RnHistogram(unsigned int nBins, const T* edges);

    /// Bins of equal width from `min` to `max`.
    RnHistogram(unsigned int nBins, T min, T max);

    RnHistogram(const RnHistogram&) = default;
    RnHistogram& operator=(const RnHistogram&) = default;
    virtual ~RnHistogram();

    /// The bin of `x`: -1 below the first edge and for a NaN; the number of bins from the last edge
    /// on.
    virtual int getBinIndex(T x) const;

    /// Adds the weight to the bin of `x`.
    void addValue(T x, T weight);

    /// Adds `n` values, each with the weight 1. This is faster than adding them one by one.
    void addValues(unsigned int n, const T* values);

    /// Draws `n` values and adds each with the weight 1.
    void addSamples(RnRng<T>* rng, unsigned int n);

    /// The weight in bin `i`, which must exist; that is not checked.
    T getBin(int i) const;

    /// The edges of bin `i`.
    void getBinLimits(unsigned int i, T& low, T& high) const;

    /// The first and the last edge.
    void getLimits(T& min, T& max) const;

    /// The weight in all bins.
    T getTotal() const;

    /// The number of bins.
    T getSize() const;

    /// Removes all weights from the bins.
    void clear();

    /// Writes a line for each bin: its edges and its weight, in the stream's format.
    void dumpText(std::ostream& out) const;

    /// Writes a scene for viewers of Open Inventor files: the density as points, with lines along
    /// the range and for the unit. A histogram without weight has densities of `nan`, which no
    /// viewer reads.
    void dumpInventor(std::ostream& out) const;

protected:
    /// The number of bins, as an integer.
    unsigned int getBinCount() const
    {
        return _nBins;
    }

    /// The first edge.
    T getFirstEdge() const
    {
        return _edges.front();
    }

private:
    // How the library's two classes find bins is known. A client's derived class may have its own
    // bins, and may read the weights between values.
    enum class Kind
    {
        Searched,
        Uniform,
        Derived
    };

    Kind kind() const;
    bool mayCount(unsigned int n) const;
    void count(unsigned int n, const T* values, RnBins::Counter& counter) const;
    void findBins(unsigned int n, const T* values, std::int32_t* bins) const;
    void addCounts(const RnBins::Counter& counter);

    std::uint32_t _nBins;
    std::vector<T> _bins;
    std::vector<T> _edges;
    T _total;
    RnSearch<T> _search;
};

/// A histogram with bins of equal width, which are computed and not searched for. Near an edge,
/// rounding may give the neighbour of the bin whose edges enclose the value.
template <class T> class RnUniformHistogram : public RnHistogram<T>
{
public:
    /// `nBins` bins from `min` to `max`.
    RnUniformHistogram(unsigned int nBins, T min, T max);
    RnUniformHistogram(const RnUniformHistogram&) = default;
    RnUniformHistogram& operator=(const RnUniformHistogram&) = default;
    ~RnUniformHistogram() override;

    /// A result that does not fit in an `int` counts as below the first bin.
    int getBinIndex(T x) const override;

private:
    friend class RnHistogram<T>;

    bool findUniformBins(unsigned int n, const T* values, std::int32_t* bins) const;

    T _width;
};

} // namespace Zu

#include "rnHistogram.imp"

#endif

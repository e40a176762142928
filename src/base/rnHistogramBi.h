/// @file
/// Histograms of pairs.

#ifndef ZU_BASE_RNHISTOGRAMBI_H
#define ZU_BASE_RNHISTOGRAMBI_H

#include "rnRng.h"
#include "rnSearch.h"

#include <cstdint>
#include <iosfwd>
#include <vector>

namespace Zu
{

template <class T> class RnHistogramBiRng;

/// Collects weighted pairs in the cells of a rectangular grid. A cell extends from its lower edges
/// up to, but not including, its upper ones. Pairs outside on either axis are silently dropped.
///
/// A number of cells beyond the maximum of a vector raises std::length_error "vector<T> too long".
///
/// Thread-safety: filling belongs to one thread at a time; any number of threads may read in
/// between.
template <class T> class RnHistogramBi
{
    friend class RnHistogramBiRng<T>;

public:
    /// Copies `nBinsX + 1` and `nBinsY + 1` edges, which must ascend; that is not checked.
    RnHistogramBi(unsigned int nBinsX, unsigned int nBinsY, const T* edgesX, const T* edgesY);

    /// Cells of equal size.
    RnHistogramBi(unsigned int nBinsX, unsigned int nBinsY, T minX, T maxX, T minY, T maxY);

    RnHistogramBi(const RnHistogramBi&) = default;
    RnHistogramBi& operator=(const RnHistogramBi&) = default;
    virtual ~RnHistogramBi();

    /// The cell of a pair. On each axis it is -1 below the first edge and for a NaN, and the number
    /// of bins from the last edge on.
    virtual void getBinIndices(T x, T y, int& i, int& j) const;

    /// Adds the weight to the cell of the pair.
    void addValue(T x, T y, T weight);

    /// Draws `n` pairs with getSample() and adds each with the weight 1.
    void addSamples(RnBiRng<T>* rng, unsigned int n);

    /// The weight in a cell, which must exist; that is not checked.
    T getBin(unsigned int i, int j) const;

    /// The edges of a cell.
    void getBinLimits(unsigned int i, unsigned int j, T& lowX, T& highX, T& lowY, T& highY) const;

    /// The first and the last edge on each axis.
    void getLimits(T& minX, T& maxX, T& minY, T& maxY) const;

    /// The weight in all cells.
    T getTotal() const;

    /// @{
    /// The number of bins on each axis.
    T getSizeX() const;
    T getSizeY() const;
    /// @}

    /// Removes all weights from the cells.
    void clear();

    /// Writes a line for each cell, with x varying fastest: its edges on x and y and its weight, in
    /// the stream's format.
    void dumpText(std::ostream& out) const;

    /// Writes a scene for viewers of Open Inventor files: the density as points, with lines around
    /// the range and for the unit. The place of the latter deliberately takes both coordinates from
    /// the range on x. A histogram without weight has densities of `nan`, which no viewer reads.
    void dumpInventor(std::ostream& out) const;

protected:
    /// @{
    /// The number of bins on an axis, as an integer.
    unsigned int getBinCountX() const
    {
        return _nBinsX;
    }

    unsigned int getBinCountY() const
    {
        return _nBinsY;
    }
    /// @}

    /// @{
    /// The first edge on an axis.
    T getFirstEdgeX() const
    {
        return _edgesX.front();
    }

    T getFirstEdgeY() const
    {
        return _edgesY.front();
    }
    /// @}

private:
    // The index of a cell in storage; false for a pair outside.
    bool findCell(T x, T y, std::size_t& cell) const;
    void dumpLines(std::ostream& out) const;

    std::uint32_t _nBinsX;
    std::uint32_t _nBinsY;
    std::vector<T> _bins;
    std::vector<T> _edgesX;
    std::vector<T> _edgesY;
    T _total;
    RnSearch<T> _searchX;
    RnSearch<T> _searchY;
};

/// A histogram with cells of equal size, which are computed and not searched for. Near an edge,
/// rounding may give the neighbour of the cell whose edges enclose the pair.
template <class T> class RnUniformHistogramBi : public RnHistogramBi<T>
{
public:
    /// `nBinsX` times `nBinsY` cells, between the limits on each axis.
    RnUniformHistogramBi(unsigned int nBinsX, unsigned int nBinsY, T minX, T maxX, T minY, T maxY);
    RnUniformHistogramBi(const RnUniformHistogramBi&) = default;
    RnUniformHistogramBi& operator=(const RnUniformHistogramBi&) = default;
    ~RnUniformHistogramBi() override;

    /// A result that does not fit in an `int` counts as below the first bin.
    void getBinIndices(T x, T y, int& i, int& j) const override;

private:
    T _widthX;
    T _widthY;
};

} // namespace Zu

#include "rnHistogramBi.imp"

#endif

/// @file
/// Histograms of directions.

#ifndef ZU_BASE_RNDIRECTIONALHISTOGRAM_H
#define ZU_BASE_RNDIRECTIONALHISTOGRAM_H

#include "rnRng.h"

#include <cstdint>
#include <iosfwd>
#include <vector>

namespace Zu
{

/// What the histograms of directions have in common. Cells have equal solid angles: the polar index
/// runs upwards over equal intervals of the cosine, the other one over equal intervals of `phi`. A
/// cosine of 1 and a `phi` of 2 pi belong to the last cells. A direction whose index is negative,
/// or does not fit in an `int`, is dropped and counted nowhere.
///
/// `Range` defines the range of cosines.
///
/// A number of cells beyond the maximum of a vector raises std::length_error "vector<T> too long".
///
/// Thread-safety: filling belongs to one thread at a time; any number of threads may read in
/// between.
template <class T, class Range> class RnDirectionalHistogram
{
public:
    /// Cells without weight, `nBinsTheta` times `nBinsPhi` of them.
    RnDirectionalHistogram(unsigned int nBinsTheta, unsigned int nBinsPhi);
    RnDirectionalHistogram(const RnDirectionalHistogram&) = default;
    RnDirectionalHistogram& operator=(const RnDirectionalHistogram&) = default;
    virtual ~RnDirectionalHistogram();

    /// The cell of a pair of angles, in radians; it may not exist. Filling does not use this.
    virtual void getBinIndices(T theta, T phi, int& i, int& j) const;

    /// The cell of a cosine and an angle. Values beyond the last cells belong to those.
    virtual void getBinIndicesCosine(T cosTheta, T phi, int& i, int& j) const;

    /// Adds the weight to the cell of the direction, which getBinIndicesCosine() returns for the
    /// cosine of `theta`.
    void addAngles(T theta, T phi, T weight);

    /// The same with the weight 1.
    void addAngles(T theta, T phi);

    /// Adds the weight to the cell that getBinIndicesCosine() returns.
    void addCosine(T cosTheta, T phi, T weight);

    /// The same with the weight 1.
    void addCosine(T cosTheta, T phi);

    /// Draws `n` directions with getSampleCosine() and adds each with the weight 1. Deliberately
    /// takes the cosine of the drawn cosine once more, so the cells are not those that addCosine()
    /// fills with the same samples.
    void addSamples(RnSphericalRng<T>* rng, unsigned int n);

    /// The value at index `i * nBinsTheta + j` of the storage, but filling uses the index
    /// `i * nBinsPhi + j`. This is deliberate: the value is the cell's weight only if both numbers
    /// of bins are the same, or `i` is 0. Beyond the end of the storage it is 0.
    T getBin(unsigned int i, unsigned int j) const;

    /// The weight in all cells.
    T getTotal() const;

    /// The number of bins of the cosine.
    T getSizeTheta() const;

    /// The number of bins of `phi`.
    T getSizePhi() const;

    /// Removes all weights from the cells.
    void clear();

    /// Writes a line for each cell, with `phi` varying fastest: the limits of its cosine and of its
    /// `phi`, and its weight, in the stream's format.
    void dumpText(std::ostream& out) const;

    /// Writes a scene for viewers of Open Inventor files: the density as the distance of points
    /// from the origin, over a square. A histogram without weight has points of `nan`, which no
    /// viewer reads.
    void dumpInventor(std::ostream& out) const;

private:
    void addToCell(int i, int j, T weight);

    std::uint32_t _nBinsTheta;
    std::uint32_t _nBinsPhi;
    std::vector<T> _bins;
    T _scaleTheta;
    T _scalePhi;
    T _total;
};

/// Cosines from -1 to 1.
struct RnSphericalRange
{
    /// The width of the range of cosines.
    template <class T> static constexpr T SPAN = T(2);

    /// The lowest cosine.
    template <class T> static constexpr T LOWEST = T(-1);

    /// The solid angle of all directions, in steradians.
    template <class T> static constexpr T SOLID_ANGLE = T(12.566370614359172);
};

/// Cosines from 0 to 1.
struct RnHemisphericalRange
{
    /// The width of the range of cosines.
    template <class T> static constexpr T SPAN = T(1);

    /// The lowest cosine.
    template <class T> static constexpr T LOWEST = T(0);

    /// The solid angle of all directions, in steradians.
    template <class T> static constexpr T SOLID_ANGLE = T(6.283185307179586);
};

/// A histogram of directions on the whole sphere.
template <class T> class RnHistogramSpherical : public RnDirectionalHistogram<T, RnSphericalRange>
{
public:
    using RnDirectionalHistogram<T, RnSphericalRange>::RnDirectionalHistogram;
};

/// A histogram of directions on the upper half.
template <class T>
class RnHistogramHemispherical : public RnDirectionalHistogram<T, RnHemisphericalRange>
{
public:
    using RnDirectionalHistogram<T, RnHemisphericalRange>::RnDirectionalHistogram;
};

} // namespace Zu

#include "rnDirectionalHistogram.imp"

#endif

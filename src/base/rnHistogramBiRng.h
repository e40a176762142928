/// @file
/// Pairs of a measured distribution.

#ifndef ZU_BASE_RNHISTOGRAMBIRNG_H
#define ZU_BASE_RNHISTOGRAMBIRNG_H

#include "rnHistogramBi.h"
#include "rnRng.h"
#include "rnSampler.h"

#include <cstdint>
#include <vector>

namespace Zu
{

/// Draws pairs that follow a histogram. Two draws of a uniform source make a pair: the first one
/// chooses the cell, in proportion to its weight, and the place on x, the second one the place on
/// y. A cell without weight is never chosen; what RnHistogramRng documents about the ends of the
/// table applies here, too. Weights must not be negative. For a histogram without weight, all x and
/// all densities in its range are NaNs; so are the samples for one without cells.
///
/// The histogram is copied. The source must live as long as it is drawn from; it is not owned.
/// Copies share it.
template <class T> class RnHistogramBiRng : public RnBiRng<T>
{
public:
    /// Raises ExInternalError "Assertion '_rng' failed." for a null source.
    RnHistogramBiRng(const RnHistogramBi<T>& histogram, RnRng<T>* rng);

    void getSample(T& x, T& y) override;

    /// The pairs of `n` calls of getSample(), which a derived class may have overridden.
    void getSequence(unsigned int n, T* x, T* y) override;

    /// @{
    /// Of the range from the first to the last edge on each axis.
    void getEfficientWidth(T& x, T& y) const override;
    void getEfficientMin(T& x, T& y) const override;
    void getEfficientMax(T& x, T& y) const override;
    T getEfficientFraction() const override;
    /// @}

    /// The probability of the cell of a pair; 0 outside all cells. It is deliberately not divided
    /// by the area of the cell.
    T getPdf(T x, T y) const override;

    /// Restarts the source.
    void restart() override;

    /// "HistogramBi".
    const char* getName() const override;

    virtual ~RnHistogramBiRng();

private:
    void map(const typename RnSampler<T>::Choice& choice, T v, T& x, T& y) const;
    void getBlocks(unsigned int n, T* x, T* y);

    std::uint32_t _nBinsX;
    std::uint32_t _nBinsY;
    RnSampler<T> _cdf;
    std::vector<T> _edgesX;
    std::vector<T> _edgesY;
    RnRng<T>* _rng;
    RnSearch<T> _searchX;
    RnSearch<T> _searchY;
};

} // namespace Zu

#include "rnHistogramBiRng.imp"

#endif

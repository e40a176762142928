/// @file
/// Samples of a measured distribution.

#ifndef ZU_BASE_RNHISTOGRAMRNG_H
#define ZU_BASE_RNHISTOGRAMRNG_H

#include "rnHistogram.h"
#include "rnRng.h"
#include "rnSampler.h"

#include <cstdint>
#include <vector>

namespace Zu
{

/// Draws values that follow a histogram: one draw of a uniform source chooses the bin, in
/// proportion to its weight, and the place in it. A bin without weight is never chosen. A draw at
/// or above the last entry of the table, which rounding may leave below 1, gives the end of the
/// last bin that has weight; a draw below 0 gives the beginning of the first one. Weights must not
/// be negative. For a histogram without weight, all samples and all densities in its range are
/// NaNs; so are the samples for one without bins.
///
/// The histogram is copied. The source must live as long as it is drawn from; it is not owned.
/// Copies share it.
template <class T> class RnHistogramRng : public RnRng<T>
{
public:
    /// Raises ExInternalError "Assertion '_rng' failed." for a null source.
    RnHistogramRng(const RnHistogram<T>& histogram, RnRng<T>* rng);

    T operator()() override;
    void getSample(T& value) override;
    void getSequence(unsigned int n, T* values) override;

    /// @{
    /// Of the range from the first to the last edge, whatever the bins contain.
    T getEfficientWidth() const override;
    T getEfficientMin() const override;
    T getEfficientMax() const override;
    T getEfficientFraction() const override;
    /// @}

    /// The density in the bin of `x`; 0 outside all bins.
    T getPdf(T x) const override;

    /// Restarts the source.
    void restart() override;

    /// "Histogram".
    const char* getName() const override;

    virtual ~RnHistogramRng();

private:
    T sampleAt(const typename RnSampler<T>::Choice& choice) const;
    T sampleFor(T u) const;

    std::uint32_t _nBins;
    RnSampler<T> _cdf;
    std::vector<T> _edges;
    RnRng<T>* _rng;
    RnSearch<T> _search;
};

} // namespace Zu

#include "rnHistogramRng.imp"

#endif

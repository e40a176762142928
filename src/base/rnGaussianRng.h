/// @file
/// Normally distributed samples.

#ifndef ZU_BASE_RNGAUSSIANRNG_H
#define ZU_BASE_RNGAUSSIANRNG_H

#include "rnRng.h"

#include <cstdint>

namespace Zu
{

/// The declared fraction of a Gaussian source: that within four sigmas on each side.
template <class T> struct RnGaussianFraction;

/// In single precision.
template <> struct RnGaussianFraction<float>
{
    /// The fraction.
    static constexpr float VALUE = 0x1.fff7b2p-1F;
};

/// In double precision.
template <> struct RnGaussianFraction<double>
{
    /// The fraction.
    static constexpr double VALUE = 0x1.fff7b2a98afe5p-1;
};

/// Shapes a uniform source by the polar method: G. Marsaglia and T. Bray, "A convenient method for
/// generating normal variables", 1964. Values come in pairs, of which the second is kept for the
/// next draw. A pair takes two draws of the source, and two more each time it is rejected. A pair
/// of draws of exactly 0.5 gives NaNs.
///
/// The efficient range is two sigmas on each side, while the fraction is that of four; the mismatch
/// is deliberate.
///
/// The source must live as long as it is drawn from; it is not owned. Copies share it.
template <class T> class RnGaussianRng : public RnRng<T>
{
public:
    /// @{
    /// Mean 0 and sigma 1 unless they are given. Raises ExInternalError "Assertion '_uniRng'
    /// failed." for a null source, and then "Assertion '_sigma > 0' failed."; a NaN passes.
    explicit RnGaussianRng(RnRng<T>* uniRng);
    RnGaussianRng(RnRng<T>* uniRng, T mean, T sigma);
    /// @}

    T operator()() override;
    void getSample(T& value) override;
    void getSequence(unsigned int n, T* values) override;
    T getEfficientWidth() const override;
    T getEfficientMin() const override;
    T getEfficientMax() const override;
    T getEfficientFraction() const override;
    T getPdf(T x) const override;

    /// Restarts the source. Deliberately, a value that was kept stays and comes first.
    void restart() override;

    /// "Gaussian".
    const char* getName() const override;

    virtual ~RnGaussianRng();

    /// The mean of the samples.
    T getMean() const;

    /// The standard deviation of the samples.
    T getSigma() const;

    /// The source that is shaped.
    RnRng<T>* getUniRng() const;

    /// The next value for mean 0 and sigma 1.
    T evalUnit();

private:
    static bool isInside(T s);
    static T factorOf(T s);
    void addPairs(unsigned int nPairs, T* end, T*& values);

    T _mean;
    T _sigma;
    T _sigma2;
    T _norm;
    bool _hasSpare;
    T _spare;
    RnRng<T>* _uniRng;
};

} // namespace Zu

#include "rnGaussianRng.imp"

#endif

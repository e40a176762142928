/// @file
/// The Halton sequence.

#ifndef ZU_BASE_RNHALTONRNG_H
#define ZU_BASE_RNHALTONRNG_H

#include "baseApi.h"
#include "rnUnitBox.h"
#include "rnVanDerCorputRng.h"

#include <cstddef>
#include <cstdint>

namespace Zu
{

/// Points of N = 2 or 3 coordinates, each the van der Corput sequence in a base of its own: J.
/// Halton, "On the efficiency of certain quasi-random sequences of points", 1960. The bases should
/// be different primes, which is not checked. The first point is number 1. Objects may be copied.
template <class T, int N> class ZU_BASE_VISIBLE RnHaltonMultiRng : public RnUnitBoxRng<T, N>
{
public:
    /// @{
    /// The first N primes as bases, unless N others are given.
    RnHaltonMultiRng();
    explicit RnHaltonMultiRng(const unsigned int* const primes);
    /// @}

    void getSample(T* const values) override;
    void getSequence(unsigned int n, T** const arrays) override;

    /// The next point is number 1.
    void restart() override;

    /// "Halton".
    const char* getName() const override;

    virtual ~RnHaltonMultiRng();

    /// The next point is number `n + 1`.
    void restart(unsigned int n);

    /// Leaves out the next `n` points, at no cost.
    void skip(std::uint64_t n);

    /// The N bases.
    void getPrimeNumbers(unsigned int* const primes) const;

    /// N other bases, from the next point on; the points' numbers go on.
    void setPrimeNumbers(const unsigned int* const primes);

private:
    RnVanDerCorputRng<T> _rngs[std::size_t(N)];
};

/// The Halton sequence of two coordinates as a source of pairs.
template <class T>
class ZU_BASE_VISIBLE RnHaltonBiRng : public RnUnitSquareRng<T, RnHaltonMultiRng<T, 2>>
{
public:
    using RnUnitSquareRng<T, RnHaltonMultiRng<T, 2>>::restart;

    /// @{
    /// Bases 2 and 3 unless they are given.
    RnHaltonBiRng();
    RnHaltonBiRng(unsigned int prime0, unsigned int prime1);
    /// @}

    virtual ~RnHaltonBiRng();

    /// The next point is number `n + 1`.
    void restart(unsigned int n);

    /// The bases.
    void getPrimeNumbers(unsigned int& prime0, unsigned int& prime1) const;

private:
    using RnUnitSquareRng<T, RnHaltonMultiRng<T, 2>>::_rng;
};

#if ZU_BASE_IMPORTS_TEMPLATES
extern template class ZU_BASE_API RnHaltonMultiRng<float, 2>;
extern template class ZU_BASE_API RnHaltonMultiRng<float, 3>;
extern template class ZU_BASE_API RnHaltonMultiRng<double, 2>;
extern template class ZU_BASE_API RnHaltonMultiRng<double, 3>;
extern template class ZU_BASE_API RnHaltonBiRng<float>;
extern template class ZU_BASE_API RnHaltonBiRng<double>;
#endif

} // namespace Zu

#endif

/// @file
/// Hammersley's point sets.

#ifndef ZU_BASE_RNHAMMERSLEYRNG_H
#define ZU_BASE_RNHAMMERSLEYRNG_H

#include "rnUnitBox.h"
#include "rnVanDerCorputRng.h"

#include <cstddef>
#include <cstdint>

namespace Zu
{

/// A set of `length` points of N = 2 or 3 coordinates: J. Hammersley, "Monte Carlo methods for
/// solving multivariable problems", 1960. The first coordinate is a regular grid, (k + 0.5) /
/// length for k from 0 on; the others are van der Corput sequences, which start with number 1.
///
/// Drawing does not stop at the end of the set: the grid starts again and the sequences run on, so
/// a second pass is another set on the same grid. A sequence of points takes its grid from 0 on,
/// whatever the current point, and does not advance it, while the other coordinates go on. Both are
/// deliberate; restart to get the same points again. A length of 0 divides by zero in getSample().
/// Objects may be copied.
template <class T, int N> class RnHammersleyMultiRng : public RnUnitBoxRng<T, N>
{
public:
    /// @{
    /// The first N - 1 primes as bases, unless N - 1 others are given. They are not checked.
    explicit RnHammersleyMultiRng(unsigned int length);
    RnHammersleyMultiRng(unsigned int length, const unsigned int* const primes);
    /// @}

    void getSample(T* const values) override;

    /// Raises ExInternalError "Assertion 'n <= _length' failed." before anything is written.
    void getSequence(unsigned int n, T** const arrays) override;

    /// Back to the first point.
    void restart() override;

    /// "Hammersley".
    const char* getName() const override;

    virtual ~RnHammersleyMultiRng();

    /// Goes to point `n`, counted from 0. Beyond the length, the first coordinate of that point is
    /// deliberately above 1.
    void restart(unsigned int n);

    /// Leaves out the next `n` points of getSample(), at no cost.
    void skip(std::uint64_t n);

    /// The N - 1 bases.
    void getPrimeNumbers(unsigned int* const primes) const;

    /// N - 1 other bases, from the next point on.
    void setPrimeNumbers(const unsigned int* const primes);

private:
    // Both instantiations compute the sum in `double` and the quotient in their own type.
    T gridAt(std::uint32_t index) const;

    std::uint32_t _length;
    std::uint32_t _index;
    RnVanDerCorputRng<T> _rngs[std::size_t(N - 1)];
};

/// Hammersley's set of two coordinates as a source of pairs.
template <class T> class RnHammersleyBiRng : public RnUnitSquareRng<T, RnHammersleyMultiRng<T, 2>>
{
public:
    using RnUnitSquareRng<T, RnHammersleyMultiRng<T, 2>>::restart;

    /// @{
    /// The base of the second coordinate is 2 unless it is given.
    explicit RnHammersleyBiRng(unsigned int length);
    RnHammersleyBiRng(unsigned int length, unsigned int prime);
    /// @}

    virtual ~RnHammersleyBiRng();

    /// As for RnHammersleyMultiRng.
    void restart(unsigned int n);

private:
    using RnUnitSquareRng<T, RnHammersleyMultiRng<T, 2>>::_rng;
};

} // namespace Zu

#include "rnHammersleyRng.imp"

#endif

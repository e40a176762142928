/// @file
/// The interfaces of sample sources.

#ifndef ZU_BASE_RNRNG_H
#define ZU_BASE_RNRNG_H

#include "baseApi.h"

/// Sources of samples come for `float` and `double`. A sampler that is written against one of these
/// interfaces runs unchanged on pseudo-random, low-discrepancy, shaped and measured sources.
///
/// None of the interfaces has a destructor that a client could call: objects are destroyed through
/// their own type, and a wrapper never owns its source.
///
/// Thread-safety, for all of them: a draw changes the source, which belongs to one thread at a
/// time. So does everything that draws from it.
namespace Zu
{

/// A source of single values.
template <class T> class ZU_BASE_VISIBLE RnRng
{
public:
    /// The next value.
    virtual T operator()() = 0;

    /// The same draw, delivered through the reference.
    virtual void getSample(T& value) = 0;

    /// The next `n` values, as `n` successive draws, into `values[0..n-1]`.
    virtual void getSequence(unsigned int n, T* values) = 0;

    /// @{
    /// The range in which samples effectively lie: its width, lower and upper end.
    virtual T getEfficientWidth() const = 0;
    virtual T getEfficientMin() const = 0;
    virtual T getEfficientMax() const = 0;
    /// @}

    /// The fraction of the probability that the range is declared to contain.
    virtual T getEfficientFraction() const = 0;

    /// The probability density at `x`.
    virtual T getPdf(T x) const = 0;

    /// Goes back to the start of the sequence, as far as the source can.
    virtual void restart() = 0;

    /// The name of the source, a static text.
    virtual const char* getName() const = 0;

protected:
    RnRng() = default;
    RnRng(const RnRng&) = default;
    RnRng& operator=(const RnRng&) = default;
    ~RnRng() = default;
};

/// A source of pairs.
template <class T> class ZU_BASE_VISIBLE RnBiRng
{
public:
    /// The next pair.
    virtual void getSample(T& x, T& y) = 0;

    /// The next `n` pairs, into two arrays of `n` values.
    virtual void getSequence(unsigned int n, T* x, T* y) = 0;

    /// @{
    /// The range of each coordinate: its width, lower and upper end.
    virtual void getEfficientWidth(T& x, T& y) const = 0;
    virtual void getEfficientMin(T& x, T& y) const = 0;
    virtual void getEfficientMax(T& x, T& y) const = 0;
    /// @}

    /// The fraction of the probability that the whole rectangle is declared to contain.
    virtual T getEfficientFraction() const = 0;

    /// The joint density.
    virtual T getPdf(T x, T y) const = 0;

    /// @{
    /// As for RnRng.
    virtual void restart() = 0;
    virtual const char* getName() const = 0;
    /// @}

protected:
    RnBiRng() = default;
    RnBiRng(const RnBiRng&) = default;
    RnBiRng& operator=(const RnBiRng&) = default;
    ~RnBiRng() = default;
};

/// A source of N-tuples.
template <class T, int N> class ZU_BASE_VISIBLE RnMultiRng
{
public:
    /// The next tuple, into `values[0..N-1]`.
    virtual void getSample(T* const values) = 0;

    /// The next `n` tuples; `arrays` holds N pointers, one array of `n` values per coordinate.
    virtual void getSequence(unsigned int n, T** const arrays) = 0;

    /// @{
    /// The range of each coordinate: its width, lower and upper end, N values each.
    virtual void getEfficientWidth(T* const widths) const = 0;
    virtual void getEfficientMin(T* const mins) const = 0;
    virtual void getEfficientMax(T* const maxs) const = 0;
    /// @}

    /// The fraction of the probability that the whole box is declared to contain.
    virtual T getEfficientFraction() const = 0;

    /// The joint density at `values[0..N-1]`.
    virtual T getPdf(T* const values) const = 0;

    /// @{
    /// As for RnRng.
    virtual void restart() = 0;
    virtual const char* getName() const = 0;
    /// @}

protected:
    RnMultiRng() = default;
    RnMultiRng(const RnMultiRng&) = default;
    RnMultiRng& operator=(const RnMultiRng&) = default;
    ~RnMultiRng() = default;
};

/// A source of directions, given as `x, y, z` on the unit sphere, as angles (`theta` from the +z
/// axis, `phi` around it, in radians), or as the cosine of `theta` and `phi`.
template <class T> class ZU_BASE_VISIBLE RnSphericalRng
{
public:
    /// @{
    /// The next direction.
    virtual void getSampleXYZ(T& x, T& y, T& z) = 0;
    virtual void getSampleAngles(T& theta, T& phi) = 0;
    virtual void getSampleCosine(T& cosTheta, T& phi) = 0;
    /// @}

    /// @{
    /// The next `n` directions, into arrays of `n` values.
    virtual void getSequenceXYZ(unsigned int n, T* x, T* y, T* z) = 0;
    virtual void getSequenceAngles(unsigned int n, T* theta, T* phi) = 0;
    virtual void getSequenceCosine(unsigned int n, T* cosTheta, T* phi) = 0;
    /// @}

    /// @{
    /// The density, per steradian.
    virtual T getPdfXYZ(T x, T y, T z) const = 0;
    virtual T getPdfAngles(T theta, T phi) const = 0;
    virtual T getPdfCosine(T cosTheta, T phi) const = 0;
    /// @}

    /// @{
    /// As for RnRng.
    virtual void restart() = 0;
    virtual const char* getName() const = 0;
    /// @}

protected:
    RnSphericalRng() = default;
    RnSphericalRng(const RnSphericalRng&) = default;
    RnSphericalRng& operator=(const RnSphericalRng&) = default;
    ~RnSphericalRng() = default;
};

/// A source of directions on the upper hemisphere.
template <class T> class ZU_BASE_VISIBLE RnHemisphericalRng : public RnSphericalRng<T>
{
protected:
    RnHemisphericalRng() = default;
    RnHemisphericalRng(const RnHemisphericalRng&) = default;
    RnHemisphericalRng& operator=(const RnHemisphericalRng&) = default;
    ~RnHemisphericalRng() = default;
};

} // namespace Zu

#endif

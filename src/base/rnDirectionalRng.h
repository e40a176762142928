/// @file
/// Sources of directions.

#ifndef ZU_BASE_RNDIRECTIONALRNG_H
#define ZU_BASE_RNDIRECTIONALRNG_H

#include "baseApi.h"
#include "rnRng.h"

namespace Zu
{

/// What the sources of directions have in common: `Shape` maps the first value of a pair to the
/// cosine of the polar angle; the second value times 2 pi is `phi`.
///
/// getSequenceXYZ() takes `phi` from the first values of its pairs and the polar part from the
/// second ones; everything else does the opposite. This is deliberate, so that with a
/// low-discrepancy source the two forms give different points.
///
/// Sine, cosine and arc cosine are the platform's, so results may differ between platforms in
/// their last bits. The source of pairs must live as long as it is drawn from; it is not owned.
/// Copies share it.
template <class T, class Interface, class Shape>
class ZU_BASE_VISIBLE RnDirectionalRng : public Interface
{
public:
    /// The next direction, from the next pair of the source.
    void getSampleXYZ(T& x, T& y, T& z) override;

    /// The next direction, from the next pair of the source.
    void getSampleAngles(T& theta, T& phi) override;

    /// The next direction, from the next pair of the source.
    void getSampleCosine(T& cosTheta, T& phi) override;

    /// `n` directions from a sequence of the source, with the values of its pairs swapped.
    void getSequenceXYZ(unsigned int n, T* x, T* y, T* z) override;

    /// `n` directions from a sequence of the source.
    void getSequenceAngles(unsigned int n, T* theta, T* phi) override;

    /// `n` directions from a sequence of the source.
    void getSequenceCosine(unsigned int n, T* cosTheta, T* phi) override;

    /// The density of the shape where the cosine is `z`; `x` and `y` don't matter.
    T getPdfXYZ(T x, T y, T z) const override;

    /// The density of the shape at the cosine of `theta`; `phi` doesn't matter.
    T getPdfAngles(T theta, T phi) const override;

    /// The density of the shape at the cosine; `phi` doesn't matter.
    T getPdfCosine(T cosTheta, T phi) const override;

    /// Restarts the source.
    void restart() override;

    /// The name of the shape.
    const char* getName() const override;

protected:
    /// Raises ExInternalError "Assertion '_rng' failed." for a null source.
    explicit RnDirectionalRng(RnBiRng<T>* rng);
    RnDirectionalRng(const RnDirectionalRng&) = default;
    RnDirectionalRng& operator=(const RnDirectionalRng&) = default;
    ~RnDirectionalRng() = default;

private:
    RnBiRng<T>* _rng;
};

/// The whole sphere, evenly.
struct RnUniformSphericalShape
{
    /// The result of getName().
    static constexpr const char* NAME = "Uniform spherical";

    /// The cosine of the polar angle for the first value of a pair.
    template <class T> static T cosTheta(T u);

    /// The density at a cosine of the polar angle, per steradian.
    template <class T> static T density(T cosTheta);
};

/// The upper half, evenly. The density reported for the lower half is the same.
struct RnUniformHemisphericalShape
{
    /// The result of getName().
    static constexpr const char* NAME = "Uniform hemispherical";

    /// The cosine of the polar angle for the first value of a pair.
    template <class T> static T cosTheta(T u);

    /// The density at a cosine of the polar angle, per steradian.
    template <class T> static T density(T cosTheta);
};

/// The upper half, in proportion to the cosine. The density reported for the lower half is
/// negative.
struct RnCosineHemisphericalShape
{
    /// The result of getName().
    static constexpr const char* NAME = "Cosine hemispherical";

    /// The cosine of the polar angle for the first value of a pair.
    template <class T> static T cosTheta(T u);

    /// The density at a cosine of the polar angle, per steradian.
    template <class T> static T density(T cosTheta);
};

/// "Uniform spherical": every direction is equally probable, with a density of 1/(4 pi).
template <class T>
class ZU_BASE_VISIBLE RnUniformSphericalRng
    : public RnDirectionalRng<T, RnSphericalRng<T>, RnUniformSphericalShape>
{
public:
    /// Raises ExInternalError "Assertion '_rng' failed." for a null source.
    explicit RnUniformSphericalRng(RnBiRng<T>* rng);
    virtual ~RnUniformSphericalRng();
};

/// "Uniform hemispherical": every direction of the upper half, with a density of 1/(2 pi).
template <class T>
class ZU_BASE_VISIBLE RnUniformHemisphericalRng
    : public RnDirectionalRng<T, RnHemisphericalRng<T>, RnUniformHemisphericalShape>
{
public:
    /// Raises ExInternalError "Assertion '_rng' failed." for a null source.
    explicit RnUniformHemisphericalRng(RnBiRng<T>* rng);
    virtual ~RnUniformHemisphericalRng();
};

/// "Cosine hemispherical": directions of the upper half, with a density of cos(theta)/pi.
template <class T>
class ZU_BASE_VISIBLE RnCosineHemisphericalRng
    : public RnDirectionalRng<T, RnHemisphericalRng<T>, RnCosineHemisphericalShape>
{
public:
    /// Raises ExInternalError "Assertion '_rng' failed." for a null source.
    explicit RnCosineHemisphericalRng(RnBiRng<T>* rng);
    virtual ~RnCosineHemisphericalRng();
};

#if ZU_BASE_IMPORTS_TEMPLATES
extern template class ZU_BASE_API
    RnDirectionalRng<float, RnSphericalRng<float>, RnUniformSphericalShape>;
extern template class ZU_BASE_API
    RnDirectionalRng<double, RnSphericalRng<double>, RnUniformSphericalShape>;
extern template class ZU_BASE_API
    RnDirectionalRng<float, RnHemisphericalRng<float>, RnUniformHemisphericalShape>;
extern template class ZU_BASE_API
    RnDirectionalRng<double, RnHemisphericalRng<double>, RnUniformHemisphericalShape>;
extern template class ZU_BASE_API
    RnDirectionalRng<float, RnHemisphericalRng<float>, RnCosineHemisphericalShape>;
extern template class ZU_BASE_API
    RnDirectionalRng<double, RnHemisphericalRng<double>, RnCosineHemisphericalShape>;
extern template class ZU_BASE_API RnUniformSphericalRng<float>;
extern template class ZU_BASE_API RnUniformSphericalRng<double>;
extern template class ZU_BASE_API RnUniformHemisphericalRng<float>;
extern template class ZU_BASE_API RnUniformHemisphericalRng<double>;
extern template class ZU_BASE_API RnCosineHemisphericalRng<float>;
extern template class ZU_BASE_API RnCosineHemisphericalRng<double>;
#endif

} // namespace Zu

#endif

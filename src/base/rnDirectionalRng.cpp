#include "base/rnDirectionalRng.h"

#include "base/assertions.h"
#include "base/rnSquareRoot.h"

#include <cmath>

namespace Zu
{

namespace
{

template <class T> constexpr T TWO_PI = T(6.283185307179586);
template <class T> constexpr T ONE_OVER_PI = T(0.3183098861837907);
template <class T> constexpr T ONE_OVER_2_PI = T(0.15915494309189535);
template <class T> constexpr T ONE_OVER_4_PI = T(0.07957747154594767);

template <class T> void toXYZ(T cosTheta, T phi, T& x, T& y, T& z)
{
    const T sinTheta = rnSquareRoot(T(1) - cosTheta * cosTheta);
    x = std::cos(phi) * sinTheta;
    y = std::sin(phi) * sinTheta;
    z = cosTheta;
}

} // namespace

template <class T> T RnUniformSphericalShape::cosTheta(T u)
{
    return T(2) * u - T(1);
}

template <class T> T RnUniformSphericalShape::density(T)
{
    return ONE_OVER_4_PI<T>;
}

template <class T> T RnUniformHemisphericalShape::cosTheta(T u)
{
    return u;
}

template <class T> T RnUniformHemisphericalShape::density(T)
{
    return ONE_OVER_2_PI<T>;
}

template <class T> T RnCosineHemisphericalShape::cosTheta(T u)
{
    return rnSquareRoot(u);
}

template <class T> T RnCosineHemisphericalShape::density(T cosTheta)
{
    return cosTheta * ONE_OVER_PI<T>;
}

template <class T, class Interface, class Shape>
RnDirectionalRng<T, Interface, Shape>::RnDirectionalRng(RnBiRng<T>* rng) : _rng(rng)
{
    ZU_ASSERT(_rng);
}

template <class T, class Interface, class Shape>
void RnDirectionalRng<T, Interface, Shape>::getSampleXYZ(T& x, T& y, T& z)
{
    T cosTheta;
    T phi;
    RnDirectionalRng::getSampleCosine(cosTheta, phi);
    toXYZ(cosTheta, phi, x, y, z);
}

template <class T, class Interface, class Shape>
void RnDirectionalRng<T, Interface, Shape>::getSampleAngles(T& theta, T& phi)
{
    T cosTheta;
    RnDirectionalRng::getSampleCosine(cosTheta, phi);
    theta = std::acos(cosTheta);
}

template <class T, class Interface, class Shape>
void RnDirectionalRng<T, Interface, Shape>::getSampleCosine(T& cosTheta, T& phi)
{
    T u;
    T v;
    _rng->getSample(u, v);
    cosTheta = Shape::cosTheta(u);
    phi = v * TWO_PI<T>;
}

template <class T, class Interface, class Shape>
void RnDirectionalRng<T, Interface, Shape>::getSequenceXYZ(unsigned int n, T* x, T* y, T* z)
{
    _rng->getSequence(n, x, z);
    for (unsigned int i = 0; i < n; ++i)
        toXYZ(Shape::cosTheta(z[i]), x[i] * TWO_PI<T>, x[i], y[i], z[i]);
}

template <class T, class Interface, class Shape>
void RnDirectionalRng<T, Interface, Shape>::getSequenceAngles(unsigned int n, T* theta, T* phi)
{
    RnDirectionalRng::getSequenceCosine(n, theta, phi);
    for (unsigned int i = 0; i < n; ++i) theta[i] = std::acos(theta[i]);
}

template <class T, class Interface, class Shape>
void RnDirectionalRng<T, Interface, Shape>::getSequenceCosine(unsigned int n, T* cosTheta, T* phi)
{
    _rng->getSequence(n, cosTheta, phi);
    for (unsigned int i = 0; i < n; ++i)
    {
        cosTheta[i] = Shape::cosTheta(cosTheta[i]);
        phi[i] = phi[i] * TWO_PI<T>;
    }
}

template <class T, class Interface, class Shape>
T RnDirectionalRng<T, Interface, Shape>::getPdfXYZ(T, T, T z) const
{
    return Shape::density(z);
}

template <class T, class Interface, class Shape>
T RnDirectionalRng<T, Interface, Shape>::getPdfAngles(T theta, T) const
{
    return Shape::density(std::cos(theta));
}

template <class T, class Interface, class Shape>
T RnDirectionalRng<T, Interface, Shape>::getPdfCosine(T cosTheta, T) const
{
    return Shape::density(cosTheta);
}

template <class T, class Interface, class Shape>
void RnDirectionalRng<T, Interface, Shape>::restart()
{
    _rng->restart();
}

template <class T, class Interface, class Shape>
const char* RnDirectionalRng<T, Interface, Shape>::getName() const
{
    return Shape::NAME;
}

template <class T>
RnUniformSphericalRng<T>::RnUniformSphericalRng(RnBiRng<T>* rng)
    : RnDirectionalRng<T, RnSphericalRng<T>, RnUniformSphericalShape>(rng)
{
}

template <class T> RnUniformSphericalRng<T>::~RnUniformSphericalRng() = default;

template <class T>
RnUniformHemisphericalRng<T>::RnUniformHemisphericalRng(RnBiRng<T>* rng)
    : RnDirectionalRng<T, RnHemisphericalRng<T>, RnUniformHemisphericalShape>(rng)
{
}

template <class T> RnUniformHemisphericalRng<T>::~RnUniformHemisphericalRng() = default;

template <class T>
RnCosineHemisphericalRng<T>::RnCosineHemisphericalRng(RnBiRng<T>* rng)
    : RnDirectionalRng<T, RnHemisphericalRng<T>, RnCosineHemisphericalShape>(rng)
{
}

template <class T> RnCosineHemisphericalRng<T>::~RnCosineHemisphericalRng() = default;

template class ZU_BASE_API RnDirectionalRng<float, RnSphericalRng<float>, RnUniformSphericalShape>;
template class ZU_BASE_API
    RnDirectionalRng<double, RnSphericalRng<double>, RnUniformSphericalShape>;
template class ZU_BASE_API
    RnDirectionalRng<float, RnHemisphericalRng<float>, RnUniformHemisphericalShape>;
template class ZU_BASE_API
    RnDirectionalRng<double, RnHemisphericalRng<double>, RnUniformHemisphericalShape>;
template class ZU_BASE_API
    RnDirectionalRng<float, RnHemisphericalRng<float>, RnCosineHemisphericalShape>;
template class ZU_BASE_API
    RnDirectionalRng<double, RnHemisphericalRng<double>, RnCosineHemisphericalShape>;
template class ZU_BASE_API RnUniformSphericalRng<float>;
template class ZU_BASE_API RnUniformSphericalRng<double>;
template class ZU_BASE_API RnUniformHemisphericalRng<float>;
template class ZU_BASE_API RnUniformHemisphericalRng<double>;
template class ZU_BASE_API RnCosineHemisphericalRng<float>;
template class ZU_BASE_API RnCosineHemisphericalRng<double>;

} // namespace Zu
